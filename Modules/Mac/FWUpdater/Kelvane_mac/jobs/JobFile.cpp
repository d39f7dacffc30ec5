// The job file store: every read goes to the disk, every update is a full read, merge and rewrite.

#include "contract/JobFile.h"

#include <optional>
#include <string>

#include "Kelvane.h"
#include "log/iLog.h"
#include "platform/File.h"
#include "platform/Json.h"

namespace kelvane {

using platform::Value;

Value Kelvane::readJSONFile() { return _jobFile.valueOfFile(_BGPPath.string()); }

Value Kelvane::readJSONFileDict(const Value& query) {
  Value current = Value::dictionary();
  try {
    const Value jobs = readJSONFile();
    KELVANE_LOG("readJSONFileDict:", "currentJobArray = %@", jobs);
    const Value& wanted = query.get(job::kLogId);
    if (wanted.isNothing()) return current;
    for (const Value& record : jobs.elements()) {
      current = record;  // without a match, the last record is the answer: meant so
      const Value& logId = record.get(job::kLogId);
      if (!logId.isNothing() && platform::equalStrings(logId, wanted)) break;
    }
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("readJSONFileDict:", caught);
  }
  return current;
}

void Kelvane::writeJSONFile(const Value& records) {
  std::optional<std::string> text = platform::printJson(records);
  KELVANE_LOG("writeJSONFile:", "writeJSONFile, newArray = %@", records);
  KELVANE_LOG("writeJSONFile:", "writeJSONFile, _BGPPath = %@", _BGPPath);
  if (!text) return;
  platform::replaceFile(_BGPPath.string(), *text);
  if (records.isArray()) _jobFile.keep(*std::move(text), records);
}

void Kelvane::updateJSONFile(const Value& changes) {
  Value updated = Value::array();
  const Value jobs = readJSONFile();
  KELVANE_LOG("updateJSONFile:", "currentJobArray = %@", jobs);
  const Value& logId = changes.get(job::kLogId);
  if (logId.isNothing()) return;
  for (const Value& record : jobs.elements()) {
    Value merged = record;
    if (platform::equalStrings(record.get(job::kLogId), logId)) merged.setAll(changes);
    updated.append(merged);
  }
  KELVANE_LOG("updateJSONFile:", "updateJSONFile, newJobArray = %@", updated);
  writeJSONFile(updated);
}

void Kelvane::startJob(Value& record, const Value& changes) {
  record.set(job::kStateId, job::kRun);
  record.setAll(changes);
  updateJSONFile(record);
}

void Kelvane::finishJob(Value& stored, const Value& changes) {
  stored.set(job::kStateId, job::kFree);
  stored.setAll(changes);
  updateJSONFile(stored);
}

}  // namespace kelvane
