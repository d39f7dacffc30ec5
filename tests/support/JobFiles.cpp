#include "tests/support/JobFiles.h"

#include "platform/Json.h"

namespace kelvane::test {

using platform::Value;

std::string waitingJob(const std::string& command, const Value& inputs, const std::string& logId) {
  const Value record = Value::dictionary(
      {{"log_id", logId}, {"job_id", command}, {"state_id", "WAIT"}, {"input_parameters", inputs}});
  return *platform::printJson(Value::array({record}));
}

}  // namespace kelvane::test
