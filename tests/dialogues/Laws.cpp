#include "tests/dialogues/Laws.h"

#include <string_view>

#include "tests/support/FrameworkLaws.h"

namespace kelvane::dialogues {
namespace {

using Events = std::vector<std::string>;

// Whether the job file is read anew before it is written, and marked free once, at the end.
bool keepsTheFile(const Events& events) {
  bool hasRead = false;
  bool isFree = false;
  for (const std::string& event : events) {
    if (event == "read") hasRead = true;
    if (isFree && test::isFrameworkCall(event)) return false;
    if (!test::begins(event, "write")) continue;
    if (!hasRead || isFree) return false;
    hasRead = false;
    // The job is the file's last record.
    isFree = event.find(R"("state_id": "FREE")", event.rfind(R"("log_id")")) != std::string::npos;
  }
  return isFree;
}

bool logsNoError(const Events& events) {
  for (const std::string& event : events) {
    if (test::begins(event, "odd line")) return false;
    if (!test::begins(event, "log ")) continue;
    const std::string_view head = std::string_view(event).substr(0, event.find(": "));
    if (head.ends_with(" error")) return false;
  }
  return true;
}

}  // namespace

std::string brokenLaw(const Events& events) {
  if (!logsNoError(events)) return "a line of the log is none, or tells an error";
  if (!keepsTheFile(events)) return "the job file is not read before it is written, or not freed";
  return test::brokenFrameworkLaw(events);
}

}  // namespace kelvane::dialogues
