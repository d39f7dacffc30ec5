#include "online_update/Parameters.h"

#include "Kelvane.h"
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

Value engineArguments(const Value& engine, const char* verb, const Value& parameters,
                      const Value& logId, const Value& jobFile, const Value& sharedFolder) {
  // A slash of its own after the shared folder, which has one already: meant so.
  const std::string logFolder = platform::format("%@/utility/logs/", sharedFolder);
  return platform::argumentList(
      engine,
      {verb, "-productid", parameters.get(job::kProductId), "-version",
       parameters.get(job::kVersion), "-url", parameters.get(job::kUrl), "-folder",
       parameters.get(job::kFolder), "-logId", logId, "-logPath", jobFile, "-log", logFolder});
}

}  // namespace kelvane
