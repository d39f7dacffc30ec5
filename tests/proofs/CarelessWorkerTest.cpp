// The proofs tell of a worker that makes a mistake: each of them one of every kind that it is for.

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "tests/proofs/Failures.h"
#include "tests/proofs/Kills.h"
#include "tests/proofs/PowerLoss.h"
#include "tests/proofs/Readers.h"
#include "tests/proofs/Sizes.h"

namespace kelvane::proofs {
namespace {

struct Mistake {
  const char* proof;
  const char* job;
  const char* name;  // of CarelessCalls.cpp
  const char* told;
  std::uint64_t stride = 1;  // with which the mistake has its point among those that are tried
};

// What ends a proof that has told what it should.
struct Told {};

void proveInWorld(const Mistake& mistake, const Tell& tell) {
  World world(scenarioNamed(mistake.job));
  const std::string proof = mistake.proof;
  if (proof == "kills") proveKills(world, mistake.stride, 1, tell);
  if (proof == "calls") proveCalls(world, mistake.stride, 1, tell);
  if (proof == "memory") proveMemory(world, mistake.stride, 1, tell);
  // As many as it takes on a busy machine, where a reader may sleep through a mistake.
  if (proof == "readings") proveReadings(world, 200'000, tell);
  if (proof == "consoles") proveConsoles(world, 1, tell);
  if (proof == "size") proveSize(world, 1000, tell);
}

// Whether the proof tells of the mistake by these words; `all` is all that it tells.
bool isTold(const Mistake& mistake, std::string& all) {
  const bool isOfDisk = std::string(mistake.proof) == "power-loss";
  const auto isAmong = [&] { return all.find(mistake.told) != std::string::npos; };
  const Tell tell = [&](const std::string& deviation) {
    all.append(deviation).append("\n");
    // Of a power failure is told in the middle of a run, which has to come to its end.
    if (!isOfDisk && isAmong()) throw Told();
  };
  try {
    isOfDisk ? void(provePowerLoss(mistake.job, mistake.stride, tell))
             : proveInWorld(mistake, tell);
  } catch (const Told&) {
    return true;
  } catch (const std::runtime_error& caught) {
    all.append(caught.what());
  }
  return isAmong();
}

class CarelessWorker : public ::testing::TestWithParam<Mistake> {};

TEST_P(CarelessWorker, IsTold) {
  const Carelessness carelessness(GetParam().name);
  std::string all;
  EXPECT_TRUE(isTold(GetParam(), all)) << all;
}

constexpr Mistake kMistakes[] = {
    {"kills", "query", "writes-in-place", "is none of its versions, or not the last", 50},
    {"kills", "query", "leaves-a-file", " is left over", 50},
    {"kills", "query", "leaves-a-child", "sh outlived the worker", 50},
    {"kills", "download", "moves-in-pieces", " is not whole", 50},
    {"kills", "query", "adds-blanks", "BGPLog.json had another version", 50},
    {"kills", "query-unbegun", "works-once", "the next worker leaves another outcome", 50},
    {"kills", "query-unbegun", "fails-the-next", "the next worker fails", 50},
    {"kills", "qvxf", "overwrites-controllers",
     "fleet.json is none of its versions, or not the last", 7},
    {"calls", "query-unbegun", "writes-in-place", " is not the version put in place last", 13},
    {"calls", "query-unbegun", "leaves-a-child", "sh is left running", 13},
    {"calls", "query-unbegun", "leaves-a-descriptor", "a file stays open", 13},
    {"calls", "query-unbegun", "leaves-temporaries", "a version is left over", 13},
    {"calls", "query-unbegun", "takes-short-for-whole", "a version of the job file has no job", 13},
    {"calls", "query-unbegun", "gives-up-when-interrupted", "the job file had other versions", 13},
    {"calls", "query-unbegun", "fails-loudly", "exit status 1", 13},
    {"calls", "query-unbegun", "crashes", "ended by Aborted", 13},
    {"calls", "query-unbegun", "tells-failures", "a write that failed is told", 13},
    {"calls", "query", "tells-failures", "the log is another", 11},
    {"calls", "query-unbegun", "leaves-a-file", " is missing", 13},
    {"calls", "query-unbegun", "keeps-memory", "pieces of memory are not given back", 13},
    {"calls", "query", "never-waits", "a job that could not start its program is FREE", 13},
    {"memory", "query-unbegun", "writes-in-place", " is not the version put in place last", 13},
    {"memory", "query-unbegun", "leaves-a-child", "sh is left running", 13},
    {"memory", "query-unbegun", "leaves-a-descriptor", "a file stays open", 13},
    {"memory", "query-unbegun", "keeps-memory", "pieces of memory are not given back", 13},
    {"memory", "query-unbegun", "fails-loudly", "exit status 1", 13},
    {"memory", "query-unbegun", "crashes", "ended by Aborted", 13},
    {"power-loss", "qvxf", "overwrites-controllers", "fleet.json is neither old nor new"},
    {"power-loss", "query", "writes-in-place", " is neither old nor new"},
    {"power-loss", "query", "removes-first", " is gone"},
    {"power-loss", "query", "skips-files", " is neither old nor new"},
    {"power-loss", "query", "skips-folders", "has not replaced"},
    {"power-loss", "query", "loses-the-log", "the log has lost what it held"},
    {"power-loss", "download", "moves-in-pieces", " is not whole", 10},
    {"power-loss", "download", "skips-trees", "the download is not there", 10},
    {"power-loss", "installation", "skips-trees", "the application is not there"},
    {"readings", "query", "writes-in-place", "a reader saw what is no version"},
    {"readings", "query", "goes-back", "a reader saw an older version again"},
    {"readings", "query", "removes-first", "the job file was not there"},
    {"consoles", "download", "drops-others", "two consoles and a worker: "},
    {"size", "query", "drops-others", "records are lost"},
    {"size", "query", "changes-others", "the other record has changed"},
    {"size", "query", "stays-running", "the job has not ended"},
};

INSTANTIATE_TEST_SUITE_P(Proofs, CarelessWorker, ::testing::ValuesIn(kMistakes),
                         [](const auto& instance) {
                           std::string name;
                           for (const char* part : {instance.param.proof, "_", instance.param.job,
                                                    "_", instance.param.name}) {
                             name += part;
                           }
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
}  // namespace kelvane::proofs
