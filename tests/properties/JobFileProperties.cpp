// The job file's store: a rewrite changes what was set, and nothing else.

#include <string>
#include <vector>

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "tests/fuzz/MemoryDisk.h"
#include "tests/properties/Drawn.h"
#include "tests/support/FakeHost.h"
#include "tests/support/PlainJson.h"

namespace kelvane::properties {
namespace {

using platform::Value;
using test::PlainJson;
using test::plainJson;

constexpr char kPath[] = "/BGPLog.json";
constexpr const char* kLogIds[] = {"16", "17", "18"};

Value drawnRecord() {
  Value record = *objects();
  if (*between(0, 8) != 0) {
    record.set(job::kLogId, kLogIds[*between<std::size_t>(0, std::size(kLogIds))]);
  }
  return record;
}

// The file's text as it has to stand once the changes are made, made without the platform.
PlainJson rewritten(PlainJson file, const Value& changes) {
  const PlainJson set = plainJson(changes);
  for (PlainJson& record : file.elements) {
    const PlainJson* const logId = record.find(job::kLogId);
    if (logId == nullptr || !(*logId == *set.find(job::kLogId))) continue;
    for (std::size_t i = 0; i < set.keys.size(); ++i) record.set(set.keys[i], set.elements[i]);
  }
  return file;
}

RC_GTEST_PROP(JobFileProperties, ARewriteChangesWhatWasSetAlone, ()) {
  Value before = Value::array();
  const int count = *between(0, 5);
  for (int i = 0; i < count; ++i) before.append(drawnRecord());
  Value changes = *objects();
  changes.set(job::kLogId, "17");

  fuzz::MemoryDisk disk;
  disk.put(kPath, test::printed(plainJson(before)));
  test::FakeHost host;
  Kelvane worker(host);
  worker.setBGPPath(kPath);
  worker.updateJSONFile(changes);
  RC_ASSERT(disk.bytesOf(kPath) == test::printed(rewritten(plainJson(before), changes)));
}

// Again and again by one worker, which remembers what it has read and written.
RC_GTEST_PROP(JobFileProperties, ManyRewritesAreAsIfEachWereTheFirst, ()) {
  const Value before = Value::array({drawnRecord(), drawnRecord(), drawnRecord()});
  fuzz::MemoryDisk disk;
  PlainJson expected = plainJson(before);
  disk.put(kPath, test::printed(expected));
  test::FakeHost host;
  Kelvane worker(host);
  worker.setBGPPath(kPath);
  const auto all = *rc::gen::resize(6, rc::gen::container<std::vector<Value>>(objects()));
  for (Value changes : all) {
    changes.set(job::kLogId, kLogIds[*between<std::size_t>(0, std::size(kLogIds))]);
    worker.updateJSONFile(changes);
    expected = rewritten(expected, changes);
    RC_ASSERT(disk.bytesOf(kPath) == test::printed(expected));
  }
}

}  // namespace
}  // namespace kelvane::properties
