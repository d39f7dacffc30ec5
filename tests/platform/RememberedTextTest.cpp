// Containers remember the texts that were made of them. Whatever is done to them, what is shown and
// written is what they hold.

#include <initializer_list>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/Json.h"
#include "platform/Text.h"
#include "platform/Value.h"
#include "tests/support/FreshValue.h"

namespace kelvane::platform {
namespace {

using test::fresh;

// Shown and written twice, so that the second time what was remembered is used.
void expectItsOwnTexts(const Value& value) {
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(format("%@", value), describe(fresh(value)));
    EXPECT_EQ(describe(value), describe(fresh(value)));
    EXPECT_EQ(printJson(value), printJson(fresh(value)));
    EXPECT_EQ(printJsonLine(value), printJsonLine(fresh(value)));
  }
}

Value record(const char* logId) {
  return Value::dictionary(
      {{"log_id", logId}, {"output", Value::array({Value::dictionary({{"wwn", "A"}})})}});
}
Value jobFile() { return Value::array({record("1"), record("2"), record("3")}); }

TEST(RememberedText, IsWhatWouldBeMadeAnew) { expectItsOwnTexts(jobFile()); }

TEST(RememberedText, OfOneRecordServesTheOthersFile) {
  const Value first = jobFile();
  expectItsOwnTexts(first);
  Value second = Value::array();
  for (const Value& element : first.elements()) second.append(element);
  second.append(record("4"));
  expectItsOwnTexts(second);
  expectItsOwnTexts(first);
}

TEST(RememberedText, IsLostWhereAnElementIsAppended) {
  Value jobs = jobFile();
  expectItsOwnTexts(jobs);
  jobs.append(record("4"));
  expectItsOwnTexts(jobs);
}

TEST(RememberedText, IsLostWhereAKeyIsSet) {
  Value job = record("1");
  expectItsOwnTexts(job);
  job.set("state_id", "RUN");
  expectItsOwnTexts(job);
  job.set("state_id", "FREE");
  expectItsOwnTexts(job);
  job.setAll(Value::dictionary({{"log_id", "2"}}));
  expectItsOwnTexts(job);
}

TEST(RememberedText, OfARecordThatIsChangedIsNotThatOfItsCopies) {
  const Value jobs = jobFile();
  expectItsOwnTexts(jobs);
  Value changed = jobs.at(1);
  changed.set("state_id", "RUN");
  expectItsOwnTexts(changed);
  expectItsOwnTexts(jobs);
  expectItsOwnTexts(Value::array({jobs.at(0), changed, jobs.at(2)}));
}

TEST(RememberedText, OfACopyThatIsChangedWhileTheOriginalIsHeld) {
  const Value original = jobFile();
  Value copy = original;
  expectItsOwnTexts(copy);
  copy.append("one more");
  expectItsOwnTexts(copy);
  expectItsOwnTexts(original);
}

TEST(RememberedText, OfAnOriginalThatIsChangedWhileACopyIsHeld) {
  Value original = jobFile();
  const Value copy = original;
  expectItsOwnTexts(copy);
  original.append("one more");
  expectItsOwnTexts(copy);
  expectItsOwnTexts(original);
}

TEST(RememberedText, StandsAtItsDepthAlone) {
  const Value job = record("1");
  Value around = job;
  for (int depth = 0; depth < 4; ++depth) {
    expectItsOwnTexts(around);
    expectItsOwnTexts(job);
    around = Value::array({around});
  }
}

TEST(RememberedText, OfAContainerInSeveralPlacesIsThatOfEach) {
  const Value job = record("1");
  const Value everywhere = Value::dictionary({{"self", job},
                                              {"list", Value::array({job, job})},
                                              {"more", Value::dictionary({{"x", job}})}});
  expectItsOwnTexts(everywhere);
  expectItsOwnTexts(Value::array({everywhere, job, everywhere.get("list")}));
  expectItsOwnTexts(job);
}

TEST(RememberedText, AllTogetherHaveALimit) {
  const std::string megabytes(std::size_t{22} << 20U, 'a');
  const Value list =
      Value::array({Value::dictionary({{"a", megabytes}}), Value::dictionary({{"b", megabytes}}),
                    Value::dictionary({{"c", megabytes}})});
  const std::string shown = describe(list);
  EXPECT_NE(list.at(1).rememberedText(Value::Form::shownInside), nullptr);
  EXPECT_EQ(list.at(2).rememberedText(Value::Form::shownInside), nullptr);
  EXPECT_EQ(format("%@", list), shown);
  EXPECT_EQ(list.rememberedText(Value::Form::shownAlone), nullptr);
  EXPECT_EQ(describe(fresh(list)), shown);
}

TEST(RememberedText, IsKeptUpToTheLimitAndNotAByteMore) {
  const Value list = Value::array();
  std::string text((std::size_t{64} << 20U) + 1, 'a');
  EXPECT_EQ(list.rememberText(Value::Form::shownAlone, text), nullptr);
  text.pop_back();
  EXPECT_NE(list.rememberText(Value::Form::shownAlone, text), nullptr);
  std::string more = "a";
  EXPECT_EQ(list.rememberText(Value::Form::shownInside, more), nullptr);
}

TEST(RememberedText, LeavesItsRoomToOthersWhenItsContainerGoes) {
  const std::string megabytes(std::size_t{33} << 20U, 'a');
  for (int time = 0; time < 2; ++time) {
    const Value list = Value::array({Value::dictionary({{"a", megabytes}})});
    describe(list);
    EXPECT_NE(list.at(0).rememberedText(Value::Form::shownInside), nullptr) << time;
  }
}

TEST(RememberedText, IsTheFirstThatWasTakenOver) {
  const Value record = Value::dictionary({{"a", "1"}});
  std::string first = "first";
  std::string second = "second";
  const std::string* kept = record.rememberText(Value::Form::shownAlone, first);
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(record.rememberText(Value::Form::shownAlone, second), nullptr);
  EXPECT_EQ(second, "second");
  EXPECT_EQ(record.rememberedText(Value::Form::shownAlone), kept);
  EXPECT_EQ(*kept, "first");
}

TEST(RememberedText, OfOnePlaceholderOutlivesTheNext) {
  const Value inner = Value::array({std::string(200, 'x')});
  EXPECT_EQ(format("%@|%@|%@", inner, Value::array({inner}), inner),
            describe(inner) + "|" + describe(fresh(Value::array({inner}))) + "|" + describe(inner));
}

TEST(RememberedText, IsNotMadeOfWhatHasNoJson) {
  const Value jobs = Value::array({Value::dictionary({{"when", Date{0}}}), "after"});
  for (int time = 0; time < 2; ++time) {
    EXPECT_FALSE(printJson(jobs).has_value());
    EXPECT_EQ(jobs.at(0).rememberedText(Value::Form::jsonInside), nullptr);
  }
}

// What an update costs grows with what it changes, not with the file: of the other records' texts
// none is made again.
TEST(RememberedText, IsKeptByTheRecordsThatAnUpdateLeavesAlone) {
  const Value jobs = jobFile();
  expectItsOwnTexts(jobs);
  const std::string* shown = jobs.at(0).rememberedText(Value::Form::shownInside);
  const std::string* json = jobs.at(0).rememberedText(Value::Form::jsonInside);
  ASSERT_NE(shown, nullptr);
  ASSERT_NE(json, nullptr);
  Value changed = jobs.at(1);
  changed.set("state_id", "RUN");
  const Value next = Value::array({jobs.at(0), changed, jobs.at(2)});
  expectItsOwnTexts(next);
  EXPECT_EQ(next.at(0).rememberedText(Value::Form::shownInside), shown);
  EXPECT_EQ(next.at(0).rememberedText(Value::Form::jsonInside), json);
}

}  // namespace
}  // namespace kelvane::platform
