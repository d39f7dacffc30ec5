// The apparatus in its quick form: the worker and the floor do the same work, and it is measured.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane {
namespace {

using platform::Value;

class Run : public ::testing::Test {
 protected:
  test::Ended run(std::vector<std::string> options) const {
    options.insert(options.begin(), {KELVANE_PYTHON, KELVANE_RUN, "--small", "--pairs", "1",
                                     "--no-calls", "--build", KELVANE_BUILD});
    return test::runProgram(options, folder.path());
  }

  test::TempFolder folder;
};

double number(const Value& side, const char* key) { return std::stod(side.get(key).digits()); }

TEST_F(Run, MeasuresTheWorkerBesideTheFloor) {
  const test::Ended ended = run({"--json", "updates-3", "catalogue-xml"});
  ASSERT_EQ(ended.exitStatus, 0) << ended.err;
  const Value rows = platform::parseJson(ended.out).get("rows");
  ASSERT_EQ(rows.count(), 2U) << ended.out;
  for (const Value& row : rows.elements()) {
    for (const char* side : {"worker", "floor"}) {
      for (const char* key : {"cpu", "wall", "peak"}) EXPECT_GT(number(row.get(side), key), 0);
    }
  }
}

TEST_F(Run, ShowsWhatWasMeasuredEarlierAsATable) {
  const test::Ended measured = run({"--json", "start"});
  ASSERT_EQ(measured.exitStatus, 0) << measured.err;
  const std::string file = folder.write("earlier.json", measured.out);
  const test::Ended shown = run({"--markdown", "--from", file});
  EXPECT_EQ(shown.exitStatus, 0) << shown.err;
  EXPECT_THAT(shown.out, ::testing::HasSubstr("\n| start | "));
}

TEST_F(Run, RefusesWhatIsNoMeasurement) {
  for (const char* text : {"", "[]", "{\"rows\": []}"}) {
    const std::string file = folder.write("other.json", text);
    const test::Ended ended = run({"--from", file});
    EXPECT_EQ(ended.exitStatus, 1) << text;
    EXPECT_EQ(ended.err, file + ": not what `run --json` prints\n");
  }
}

TEST_F(Run, RefusesARowThatItDoesNotKnow) {
  const test::Ended ended = run({"everything"});
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_THAT(ended.err, ::testing::HasSubstr("everything"));
}

}  // namespace
}  // namespace kelvane
