// The job file's store: a rewrite changes what was set, and nothing else.

#include <string>
#include <vector>

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "platform/Json.h"
#include "tests/fuzz/MemoryDisk.h"
#include "tests/properties/Drawn.h"
#include "tests/support/FakeHost.h"
#include "tests/support/FreshValue.h"

namespace kelvane::properties {
namespace {

using platform::Value;
using test::fresh;

constexpr char kPath[] = "/BGPLog.json";
constexpr const char* kLogIds[] = {"16", "17", "18"};

Value drawnRecord() {
  Value record = *objects();
  if (*rc::gen::inRange(0, 8) != 0) {
    record.set(job::kLogId, kLogIds[*rc::gen::inRange<std::size_t>(0, std::size(kLogIds))]);
  }
  return record;
}

bool isMeant(const Value& record, const Value& changes) {
  return record.get(job::kLogId) == changes.get(job::kLogId);
}

RC_GTEST_PROP(JobFileProperties, ARewriteChangesWhatWasSetAlone, ()) {
  Value before = Value::array();
  const int count = *rc::gen::inRange(0, 5);
  for (int i = 0; i < count; ++i) before.append(drawnRecord());
  Value changes = *objects();
  changes.set(job::kLogId, "17");

  fuzz::MemoryDisk disk;
  disk.put(kPath, platform::printJson(before).value_or(""));
  test::FakeHost host;
  Kelvane worker(host);
  worker.setBGPPath(kPath);
  worker.updateJSONFile(changes);
  const Value after = platform::parseJson(disk.bytesOf(kPath).value_or(""));

  RC_ASSERT(after.count() == before.count());
  for (std::size_t i = 0; i < before.count(); ++i) {
    Value expected = before.at(i);
    if (isMeant(expected, changes)) expected.setAll(changes);
    RC_ASSERT(platform::printJson(after.at(i)) == platform::printJson(expected));
  }
}

// Again and again by one worker, which remembers what it has read and written.
RC_GTEST_PROP(JobFileProperties, ManyRewritesAreAsIfEachWereTheFirst, ()) {
  Value before = Value::array({drawnRecord(), drawnRecord(), drawnRecord()});
  fuzz::MemoryDisk disk;
  disk.put(kPath, platform::printJson(before).value_or(""));
  test::FakeHost host;
  Kelvane worker(host);
  worker.setBGPPath(kPath);
  const auto all = *rc::gen::resize(6, rc::gen::container<std::vector<Value>>(objects()));
  for (Value changes : all) {
    changes.set(job::kLogId, kLogIds[*rc::gen::inRange<std::size_t>(0, std::size(kLogIds))]);
    const Value as = platform::parseJson(disk.bytesOf(kPath).value_or(""));
    worker.updateJSONFile(changes);
    Value expected = Value::array();
    for (Value record : as.elements()) {
      if (isMeant(record, changes)) record.setAll(changes);
      expected.append(record);
    }
    RC_ASSERT(disk.bytesOf(kPath) == platform::printJson(fresh(expected)));
  }
}

}  // namespace
}  // namespace kelvane::properties
