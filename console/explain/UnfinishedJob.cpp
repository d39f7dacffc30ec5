#include "console/explain/UnfinishedJob.h"

#include "console/display/ShellQuoting.h"
#include "console/job/RecordValues.h"
#include "console/job/UnwrittenJob.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string commandFor(const Value& record, const char* subCommand,
                       const std::string& sharedFolder) {
  std::string text = "\"";
  text += consoleCommand(subCommand, sharedFolder, stringOf(record.get(job::kLogId)));
  return text.append("\"");
}

}  // namespace

std::string adviceForUnfinished(const Value& record, const LogStretch& log,
                                const std::string& sharedFolder) {
  // Submitted again it would stand in the file twice.
  const std::string retry = commandFor(record, "retry", sharedFolder);
  if (mayHaveBeenDone(record, log)) {
    return "a worker took it, and its record does not tell what became of it: " +
           whatMayHaveBeenDone(record, log) + "." + lastSeenText(log) +
           " \"kelvane-console check\" tells whether anything keeps the record from being written; "
           "look what was done before it is submitted again";
  }
  if (record.get(job::kStateId) == Value(job::kWait)) {
    const std::string begun = log.absence.empty()
                                  ? "it was not begun. "
                                  : "whether it was begun is not known, as there is no log. ";
    return begun + "\"kelvane-console check\" tells what may be in the way; then " + retry +
           " runs it: its record is still waiting";
  }
  if (record.get(job::kJobId) == Value(job::kUpdateFW)) {
    return "nobody goes on with it. Leave the enclosures powered for some minutes, as a flash may "
           "still be going on in a controller; then " +
           retry + " adds it anew";
  }
  return "nobody goes on with it. " + commandFor(record, "explain", sharedFolder) +
         " tells what the log says; " + retry + " adds it anew";
}

}  // namespace kelvane::console
