// The progress entries in a running firmware job's "output": one per controller, found by WWN.

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "log/iLog.h"

namespace kelvane {

using platform::Value;

namespace {

Value progressEntries(const Value& inputs) {
  Value entries = Value::array();
  for (const Value& input : inputs.elements()) {
    Value entry = input.asDictionary();
    if (!entry.has(job::kWwn) || !entry.has(job::kFilePath)) continue;
    for (const char* key : {job::kFwPercentage, job::kCpldPercentage, job::kTotalPercentage}) {
      entry.set(key, Value::integer(0));
    }
    entries.append(entry);
  }
  return entries;
}

// The output list with the update set into every entry of its WWN; `found` tells whether there
// was one, and is never cleared here.
Value mergedOutput(const Value& output, const Value& update, bool& found) {
  Value merged = Value::array();
  for (const Value& entry : output.elements()) {
    Value copy = entry;
    if (platform::equalStrings(entry.get(job::kWwn), update.get(job::kWwn))) {
      copy.setAll(update);
      found = true;
    }
    merged.append(copy);
  }
  return merged;
}

// The last record of the file that is of this job or of none, with the update in its output; or
// nothing where no progress entry matched in any of them. A record without a log id counts as the
// job asked for, and `found` holds from one record to the next: both meant so.
Value pendingRecord(const Value& jobs, const Value& update, const Value& logId) {
  bool found = false;
  Value pending;
  for (const Value& record : jobs.elements()) {
    const Value& recordLogId = record.get(job::kLogId);
    if (!recordLogId.isNothing() && !platform::equalStrings(recordLogId, logId)) continue;
    pending = record.asDictionary();
    if (!record.has(job::kOutput)) continue;
    const Value output = mergedOutput(record.get(job::kOutput), update, found);
    if (found) pending.set(job::kOutput, output);
  }
  return found ? pending : Value();
}

}  // namespace

void Kelvane::initUpgradeFWStatus(const Value& record) {
  try {
    const Value entries = progressEntries(record.get(job::kInputParameters));
    if (entries.count() == 0) return;
    Value started = record;
    started.set(job::kOutput, entries);
    startJob(started, {});
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("initUpgradeFWStatus:", caught);
  }
}

void Kelvane::updateFWUpdateStatus(const Value& update, const Value& logId) {
  try {
    const Value jobs = readJSONFile();
    KELVANE_LOG("updateFWUpdateStatus:withLogId:", "currentJobArray = %@", jobs);
    if (!update.has(job::kWwn)) return;
    const Value pending = pendingRecord(jobs, update, logId);
    if (!pending.isNothing()) updateJSONFile(pending);
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("updateFWUpdateStatus:withLogId:", caught);
  }
}

}  // namespace kelvane
