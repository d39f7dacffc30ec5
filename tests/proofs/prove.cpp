// Disturbs the real worker in one of several ways, and tells where it does not hold.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/proofs/Failures.h"
#include "tests/proofs/Kills.h"
#include "tests/proofs/PowerLoss.h"
#include "tests/proofs/Readers.h"
#include "tests/proofs/Sizes.h"
#include "tests/proofs/World.h"

namespace kelvane::proofs {
namespace {

constexpr char kUsage[] =
    "usage: prove_faults KIND parts                   what the proof is made of\n"
    "       prove_faults KIND PART [STRIDE [FIRST]]   a part of it, or every STRIDE-th point\n"
    "kinds: kills, calls, memory, power-loss, readers, sizes\n";

constexpr std::uint64_t kReadings = 100'000;  // of each job
constexpr std::uint64_t kRounds = 10;
constexpr std::uint64_t kLargest = 100'000'000;  // bytes
constexpr char kConsoles[] = "consoles";

struct Part {
  std::string name;
  std::uint64_t stride;
  std::uint64_t first;
};

struct Kind {
  const char* name;
  const char* points;
  std::function<std::vector<std::string>()> parts;
  std::function<Tally(const Part&, const Tell&)> prove;
};

std::vector<std::string> scenarioNames() {
  std::vector<std::string> names;
  for (const Scenario& scenario : scenarios()) names.emplace_back(scenario.name);
  return names;
}

std::vector<std::string> readerNames() {
  std::vector<std::string> names = scenarioNames();
  names.emplace_back(kConsoles);
  return names;
}

using OfWorld = Tally (*)(World&, std::uint64_t, std::uint64_t, const Tell&);

std::function<Tally(const Part&, const Tell&)> inWorld(OfWorld prove) {
  return [prove](const Part& part, const Tell& tell) {
    World world(scenarioNamed(part.name));
    return prove(world, part.stride, part.first, tell);
  };
}

Tally proveReaders(const Part& part, const Tell& tell) {
  if (part.name == kConsoles) {
    World world(scenarioNamed("download"));
    return proveConsoles(world, std::max(kRounds / part.stride, std::uint64_t{1}), tell);
  }
  World world(scenarioNamed(part.name));
  return proveReadings(world, kReadings / part.stride, tell);
}

const std::vector<Kind>& kinds() {
  static const std::vector<Kind> all = {
      {"kills", "kills", scenarioNames, inWorld(proveKills)},
      {"calls", "failing calls", scenarioNames, inWorld(proveCalls)},
      {"memory", "failing requests", scenarioNames, inWorld(proveMemory)},
      {"power-loss", "states of the disk", powerLossNames,
       [](const Part& part, const Tell& tell) {
         return provePowerLoss(part.name, part.stride, tell);
       }},
      {"readers", "readings", readerNames, proveReaders},
      {"sizes", "job file", sizeNames,
       [](const Part& part, const Tell& tell) {
         World world(scenarioNamed(part.name));
         return proveSize(world, kLargest / part.stride, tell);
       }},
  };
  return all;
}

const Kind& kindNamed(const std::string& name) {
  for (const Kind& kind : kinds()) {
    if (kind.name == name) return kind;
  }
  throw std::invalid_argument("there is no proof " + name);
}

int provePart(const Kind& kind, const Part& part) {
  constexpr std::uint64_t kMostTold = 20;
  std::uint64_t told = 0;
  const Tally tally = kind.prove(part, [&](const std::string& deviation) {
    if (++told <= kMostTold) std::printf("%s\n", deviation.c_str());
  });
  const std::string outcome =
      tally.deviations == 0 ? "no deviation" : std::to_string(tally.deviations) + " deviate";
  std::printf("%-22s %8llu %s, %s\n", part.name.c_str(),
              static_cast<unsigned long long>(tally.points),
              part.name == kConsoles ? "rounds" : kind.points, outcome.c_str());
  return tally.deviations == 0 && tally.points > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() < 2) throw std::invalid_argument("a kind and a part are to be named");
  const Kind& kind = kindNamed(arguments[0]);
  if (arguments[1] == "parts") {
    for (const std::string& name : kind.parts()) std::printf("%s\n", name.c_str());
    return EXIT_SUCCESS;
  }
  const std::uint64_t stride = arguments.size() > 2 ? std::stoull(arguments[2]) : 1;
  const std::uint64_t first = arguments.size() > 3 ? std::stoull(arguments[3]) : 1;
  return provePart(kind, {arguments[1], stride, first});
}

}  // namespace
}  // namespace kelvane::proofs

int main(int count, char** values) {
  try {
    return kelvane::proofs::run({values + 1, values + count});
  } catch (const std::invalid_argument& wrong) {
    std::fprintf(stderr, "%s\n%s", wrong.what(), kelvane::proofs::kUsage);
    return 2;
  } catch (const std::exception& caught) {
    std::fprintf(stderr, "%s\n", caught.what());
    return 2;
  }
}
