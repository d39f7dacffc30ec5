// Both settings files, in front of a job of each command.

#include <string>

#include "contract/JobFile.h"
#include "platform/Json.h"
#include "platform/Value.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/WorkerInMemory.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

Value parametersOf(const std::string& command, const std::string& product) {
  if (command == job::kUpdateSW) return Value::dictionary({{job::kFilePath, "/dl/Manager.app"}});
  const Value one = Value::dictionary({{job::kProductId, product},
                                       {job::kVersion, "1"},
                                       {job::kUrl, "/service"},
                                       {job::kFolder, "/dl"}});
  return command == job::kGetOnlineUpdateData ? one : Value::array({one});
}

void runJob(const std::string& command, const std::string& product, const std::string& shared,
            const std::string& settings) {
  WorkerInMemory world;
  world.disk.put(kSharedSettingsPath, shared);
  world.disk.put(kProductSettingsPath, settings);
  world.disk.put("/A/Contents/Resources/EngineRunner", "");
  world.engine = [&world](const std::string& folder) {
    world.disk.put(folder + "/catalogue.plist",
                   "<plist><dict><key>Rules</key><array/></dict></plist>");
    return std::string();
  };
  const Value record = Value::dictionary({{job::kLogId, kLogId},
                                          {job::kJobId, command},
                                          {job::kStateId, job::kWait},
                                          {job::kInputParameters, parametersOf(command, product)}});
  world.disk.put(kJobFilePath, platform::printJson(Value::array({record})).value_or(""));
  world.run();
  world.requireBegun();
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::Bytes bytes(data, size);
  const std::string shared = bytes.part();
  const std::string settings = bytes.rest();
  for (const char* command :
       {job::kGetOnlineUpdateData, job::kDownloadOnlineUpdateFile, job::kUpdateSW}) {
    fuzz::runJob(command, "sw", shared, settings);
  }
  return 0;
}
