#include "tests/proofs/Sizes.h"

#include <filesystem>

#include "tests/support/Program.h"

namespace kelvane::proofs {
namespace {

using platform::Value;

std::string faultOf(const World& world, const std::string& padding) {
  const Command command = world.command();
  const test::Ended ended = test::runProgram(command.argv, command.folder, command.variables);
  if (ended.exitStatus != 0) return "exit status " + std::to_string(ended.exitStatus);
  const Value records = world.jobs();
  if (records.count() != 2) return "records are lost";
  if (records.at(0) != Value::dictionary({{"log_id", "3"}, {"padding", padding}})) {
    return "the other record has changed";
  }
  const bool isFree = records.at(1).get("state_id") == Value("FREE");
  return isFree ? "" : "the job has not ended";
}

}  // namespace

std::vector<std::string> sizeNames() { return {"query", "download", "installation"}; }

Tally proveSize(World& world, std::size_t bytes, const Tell& tell) {
  const std::string padding(bytes, 'x');
  world.reset();
  std::filesystem::remove(world.folder / kLogPath);
  std::string text = bytesOf(world.before(), kJobFilePath);
  text.insert(1, "{\"log_id\": \"3\", \"padding\": \"" + padding + "\"},");
  world.folder.write(kJobFilePath, text);
  const std::string fault = faultOf(world, padding);
  if (fault.empty()) return {.points = 1};
  tell(std::string(world.scenario().name) + " beside " + std::to_string(bytes) +
       " bytes: " + fault);
  return {.points = 1, .deviations = 1};
}

}  // namespace kelvane::proofs
