#include "online_update/Parameters.h"

#include "contract/Engine.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "platform/ChildProcess.h"
#include "platform/Text.h"

namespace kelvane {

using platform::Value;

Value firstParameters(const Value& inputs) {
  if (inputs.isDictionary()) return inputs;
  return inputs.count() == 0 ? Value() : inputs.at(0);
}

bool areComplete(const Value& parameters) {
  for (const char* key : {job::kProductId, job::kVersion, job::kUrl, job::kFolder}) {
    if (!parameters.has(key)) return false;
  }
  return true;
}

Value engineArguments(const Value& enginePath, const char* verb, const Value& parameters,
                      const Value& logId, const Value& jobFile, const Value& sharedFolder) {
  // A slash of its own after the shared folder, which has one already: meant so.
  const std::string logFolder = platform::format("%@/%s", sharedFolder, paths::kLogFolder);
  return platform::argumentList(
      enginePath, {verb, engine::kProductId, parameters.get(job::kProductId), engine::kVersion,
                   parameters.get(job::kVersion), engine::kUrl, parameters.get(job::kUrl),
                   engine::kFolder, parameters.get(job::kFolder), engine::kLogId, logId,
                   engine::kLogPath, jobFile, engine::kLog, logFolder});
}

}  // namespace kelvane
