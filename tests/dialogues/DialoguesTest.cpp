#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/dialogues/Proof.h"

namespace kelvane::dialogues {
namespace {

using Events = std::vector<std::string>;

void expectNoDeviation(const Deviation& deviation) { ADD_FAILURE() << textOf(deviation); }

// --- a slice of what tools/prove-dialogues plays whole

class EachForm : public ::testing::TestWithParam<std::string> {};

TEST_P(EachForm, WalksThroughItsDialoguesDoNotDeviate) {
  constexpr std::uint64_t kWalks = 60;
  const Form& form = formNamed(GetParam());
  for (std::uint64_t number = 1; number <= kWalks; ++number) {
    Walk walk(number);
    const std::string found = deviationOf(form, tell(form, walk));
    EXPECT_EQ(found, "") << textOf({form.name, number, walk.script(), found});
  }
}

std::vector<std::string> formNames() {
  std::vector<std::string> names;
  for (const Form& form : forms()) names.push_back(form.name);
  return names;
}

INSTANTIATE_TEST_SUITE_P(Dialogues, EachForm, ::testing::ValuesIn(formNames()),
                         [](const auto& instance) {
                           std::string name = instance.param;
                           std::erase(name, '-');
                           return name;
                         });

TEST(Dialogues, OfAStrangerBeforeAControllerNoneDeviates) {
  EXPECT_EQ(prove(formNamed("stranger-first"), expectNoDeviation), 103U);
}

TEST(Dialogues, WithoutAListOfEntriesThereIsOne) {
  EXPECT_EQ(prove(formNamed("missing"), expectNoDeviation), 1U);
}

// --- what the slice is worth

// The dialogue in which everything succeeds at once.
Dialogue smoothDialogue(const Form& form) {
  Replay replay({});
  return tell(form, replay);
}

TEST(Dialogues, AnyOtherAnswerThanToldIsSeen) {
  const Form& form = formNamed("one");
  const Dialogue told = smoothDialogue(form);
  // Whose failure changes nothing; there are no subsystems.
  const std::set<std::string> uncounted = {"zr_initialize", "zr_getNumberOfSubsystem",
                                           "decod_getStringWWN", "getErrorDescription"};
  std::size_t tried = 0;
  for (std::size_t i = 0; i < told.answers.size(); ++i) {
    if (uncounted.count(told.answers[i].function) != 0) continue;
    Dialogue other = told;
    other.answers[i].answer.status = 0x1234;
    other.answers[i].answer.progress.callStatus = 0x1234;
    EXPECT_NE(difference(told.events, play(form, other)), "") << told.answers[i].function;
    ++tried;
  }
  EXPECT_EQ(tried, 26U);
}

TEST(Dialogues, AnyEventThatIsMissingIsSeen) {
  const Form& form = formNamed("one");
  const Dialogue told = smoothDialogue(form);
  const Events seen = play(form, told);
  ASSERT_EQ(difference(told.events, seen), "");
  for (std::size_t i = 0; i < seen.size(); ++i) {
    Events fewer = seen;
    fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
    EXPECT_NE(difference(told.events, fewer), "") << seen[i];
  }
}

TEST(Dialogues, AScriptTellsItsDialogueAgain) {
  const Form& form = formNamed("two-usb");
  for (std::uint64_t number = 1; number <= 20; ++number) {
    Walk walk(number);
    const Dialogue told = tell(form, walk);
    Replay replay(scriptOf(textOf(walk.script())));
    EXPECT_EQ(tell(form, replay).events, told.events);
  }
}

}  // namespace
}  // namespace kelvane::dialogues
