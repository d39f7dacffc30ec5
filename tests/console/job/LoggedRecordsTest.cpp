// The job file's records, out of the log.

#include <gtest/gtest.h>

#include "console/job/LoggedRecords.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/console/job/LogLines.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;
using test::runLine;

std::string shown(const std::string& records) { return platform::describe(parseJson(records)); }

TEST(LoggedRecords, AreThoseThatTheLogShowsLast) {
  const std::string log = runLine("currentJobArray = " + shown(R"([{"log_id": "1"}])")) +
                          runLine("writeJSONFile, newArray = " + shown(R"([{"log_id": "2"}])")) +
                          runLine("another line");
  EXPECT_EQ(lastRecordsIn(parseLog(log)), parseJson(R"([{"log_id": "2"}])"));
}

TEST(LoggedRecords, HaveTheirNumbersAgain) {
  const std::string records = R"([{"log_id": "1", "result": 259, "output": [
      {"fw_percentage": 50, "version": "17", "size": 12}], "n": 1}, {"result": "none"}])";
  const Value found = lastRecordsIn(parseLog(runLine("currentJobArray = " + shown(records))));
  EXPECT_EQ(found, parseJson(R"([{"log_id": "1", "result": 259, "output": [
      {"fw_percentage": 50, "version": "17", "size": 12}], "n": "1"}, {"result": "none"}])"));
}

TEST(LoggedRecords, HaveNoNumbersThatJsonHasNot) {
  for (const char* text : {"007", "00", "-", "-01", "1234567890123456789", "1.5", "+1"}) {
    const Value record = Value::dictionary({{"result", text}});
    const std::string log =
        runLine("currentJobArray = " + platform::describe(Value::array({record})));
    EXPECT_EQ(lastRecordsIn(parseLog(log)).at(0).get("result"), Value(text)) << text;
  }
}

TEST(LoggedRecords, ThatAreCutAreNotTaken) {
  const std::string whole = runLine("currentJobArray = " + shown(R"([{"log_id": "1"}])"));
  const std::string cut = runLine("writeJSONFile, newArray = (\n        {\n        \"log_id\" = 2");
  EXPECT_EQ(lastRecordsIn(parseLog(whole + cut)), parseJson(R"([{"log_id": "1"}])"));
  EXPECT_TRUE(lastRecordsIn(parseLog(cut)).isNothing());
  EXPECT_TRUE(lastRecordsIn(parseLog(runLine("currentJobArray = (null)"))).isNothing());
}

}  // namespace
}  // namespace kelvane::console
