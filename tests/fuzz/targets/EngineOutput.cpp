// What the update engine writes, in a query and in a download.

#include <string>

#include "platform/ChildProcess.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/WorkerInMemory.h"
#include "tests/fuzz/laws/OutputLaws.h"

namespace kelvane::fuzz {
namespace {

constexpr char kQuery[] =
    R"([{"log_id": "17", "job_id": "getOnlineUpdateData", "state_id": "WAIT", "input_parameters":
    {"productid": "t3", "version": "1", "url": "/service", "folder": "/dl"}}])";
constexpr char kDownload[] =
    R"([{"log_id": "17", "job_id": "downloadOnlineUpdateFile", "state_id": "WAIT",
    "input_parameters": [{"productid": "t3", "version": "1", "url": "/s", "folder": "/dl"}]}])";

std::string logAfter(const char* jobs, const std::string& output, bool outlivesIt) {
  WorkerInMemory world;
  world.programs.outlivesItsOutput = outlivesIt;
  world.engine = [&output](const std::string&) { return output; };
  world.disk.put(kJobFilePath, jobs);
  std::string line;
  const auto judge = world.disk.onAppend;
  world.disk.onAppend = [&](const std::string& path, std::string_view text) {
    judge(path, text);
    if (text.find("execute EngineRunner result = ") != std::string_view::npos) line = text;
  };
  world.run();
  world.requireFinished();  // whatever the engine says
  return line;
}

// In pieces of this size.
void gather(const std::string& output, std::size_t piece) {
  platform::ChildOutput gathered;
  for (std::size_t at = 0; at < output.size(); at += piece) {
    gathered.append(std::string_view(output).substr(at, piece));
  }
  require(gathered.isWhole(), "there is room for what is written");
  requireGathered(output, gathered.text());
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::Bytes bytes(data, size);
  const std::size_t piece = bytes.byte() + std::size_t{1};
  const bool outlivesIt = bytes.flag();
  const std::string output = bytes.rest().substr(0, 60'000);  // a pipe has room for more
  fuzz::gather(output, piece);
  fuzz::requireLogged(output, fuzz::logAfter(fuzz::kQuery, output, outlivesIt));
  fuzz::requireNotLogged(fuzz::logAfter(fuzz::kDownload, output, outlivesIt));
  return 0;
}
