// The job file's records, out of the log.

#include <gtest/gtest.h>

#include "console/job/LoggedRecords.h"
#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;

std::string line(const std::string& message) {
  return "[14:03:07] [x.cpp][1][run][debug] " + message + "\n";
}

std::string shown(const std::string& records) { return platform::describe(parseJson(records)); }

TEST(LoggedRecords, AreThoseThatTheLogShowsLast) {
  const std::string log = line("currentJobArray = " + shown(R"([{"log_id": "1"}])")) +
                          line("writeJSONFile, newArray = " + shown(R"([{"log_id": "2"}])")) +
                          line("another line");
  EXPECT_EQ(lastRecordsIn(parseLog(log)), parseJson(R"([{"log_id": "2"}])"));
}

TEST(LoggedRecords, HaveTheirNumbersAgain) {
  const std::string records = R"([{"log_id": "1", "result": 259, "output": [
      {"fw_percentage": 50, "version": "17", "size": 12}], "n": 1}, {"result": "none"}])";
  const Value found = lastRecordsIn(parseLog(line("currentJobArray = " + shown(records))));
  EXPECT_EQ(found, parseJson(R"([{"log_id": "1", "result": 259, "output": [
      {"fw_percentage": 50, "version": "17", "size": 12}], "n": "1"}, {"result": "none"}])"));
}

TEST(LoggedRecords, HaveNoNumbersThatJsonHasNot) {
  for (const char* text : {"007", "00", "-", "-01", "1234567890123456789", "1.5", "+1"}) {
    const Value record = Value::dictionary({{"result", text}});
    const std::string log = line("currentJobArray = " + platform::describe(Value::array({record})));
    EXPECT_EQ(lastRecordsIn(parseLog(log)).at(0).get("result"), Value(text)) << text;
  }
}

TEST(LoggedRecords, ThatAreCutAreNotTaken) {
  const std::string whole = line("currentJobArray = " + shown(R"([{"log_id": "1"}])"));
  const std::string cut = line("writeJSONFile, newArray = (\n        {\n        \"log_id\" = 2");
  EXPECT_EQ(lastRecordsIn(parseLog(whole + cut)), parseJson(R"([{"log_id": "1"}])"));
  EXPECT_TRUE(lastRecordsIn(parseLog(cut)).isNothing());
  EXPECT_TRUE(lastRecordsIn(parseLog(line("currentJobArray = (null)"))).isNothing());
}

}  // namespace
}  // namespace kelvane::console
