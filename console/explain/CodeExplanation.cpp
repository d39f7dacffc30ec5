#include "console/explain/CodeExplanation.h"

#include "console/explain/ResultCodes.h"
#include "contract/JobFile.h"
#include "platform/Text.h"

namespace kelvane::console {
namespace {

std::string numberText(std::int64_t code) {
  return code < 0 ? platform::format("result %ld", code)
                  : platform::format("result %ld (0x%04lX)", code, code);
}

Explanation known(const ResultCode& code) {
  Explanation explanation;
  explanation.subject = platform::format("%@, %s: %s", numberText(code.code), code.name, code.text);
  explanation.meaning = code.meaning;
  explanation.whoActs = code.whoActs;
  explanation.advice = code.advice;
  explanation.tryAgain = code.tryAgain ? "yes" : "no";
  return explanation;
}

Explanation frameworkStatus(std::int64_t code) {
  Explanation explanation;
  explanation.subject = numberText(code) + ": a status of the controller framework's own";
  explanation.meaning =
      "It is none of the results that the worker makes or tests. Only a firmware job ends with "
      "such a status: one of the framework's calls gave it, and the controllers after it were not "
      "started.";
  explanation.whoActs = "support";
  explanation.advice =
      "Read the job's resultStr, which is what the framework says of it, and find the step that "
      "failed at the end of the job's lines in the log. What the number means is the framework "
      "maker's to say; of the simulated one the statuses stand in docs/simulators.md.";
  explanation.tryAgain = "when the cause is known";
  return explanation;
}

}  // namespace

bool isKnownCode(std::int64_t code) { return findResultCode(code) != nullptr; }

std::vector<Explanation> explainCode(std::int64_t code) {
  const ResultCode* found = findResultCode(code);
  if (found == nullptr) return {frameworkStatus(code)};
  if (code != job::kFileNotFound) return {known(*found)};
  Explanation download = known(*found);
  download.note = "This is so for downloadOnlineUpdateFile alone.";
  Explanation firmware = frameworkStatus(code);
  firmware.note = "This is so for updateFW.";
  return {download, firmware};
}

Explanation explainResult(std::int64_t code, const std::string& command, const std::string& text) {
  const ResultCode* found = findResultCode(code);
  const bool isOfFramework = code == job::kFileNotFound && command == job::kUpdateFW;
  if (found != nullptr && !isOfFramework) return known(*found);
  Explanation explanation = frameworkStatus(code);
  explanation.subject += ", which says \"" + text + "\"";
  return explanation;
}

}  // namespace kelvane::console
