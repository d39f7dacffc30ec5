#include <set>
#include <string>

#include <gtest/gtest.h>

#include "tests/dialogues/Answers.h"

namespace kelvane::dialogues {
namespace {

// Always the pick of one number, as far as there are so many.
class NumberedPick : public Decider {
 public:
  explicit NumberedPick(unsigned number) : number_(number) {}
  unsigned branch(unsigned count) override { return number_ % count; }
  unsigned turn(unsigned count) override { return number_ % count; }
  void cut(const std::string&) override {}

 private:
  unsigned number_;
};

std::set<unsigned> highBytesOf(const std::string& kind) {
  std::set<unsigned> bytes;
  for (unsigned number = 0; number < 256; ++number) {
    NumberedPick decider(number);
    char picked = '-';
    bytes.insert(productIdentifier(decider, kind, picked) >> 8U);
    EXPECT_EQ(std::string(1, picked), kind);
  }
  return bytes;
}

TEST(Answers, HaveEveryHighByteInOneKindOfProduct) {
  EXPECT_EQ(highBytesOf("u"), (std::set<unsigned>{0x43, 0x44, 0x45, 0x46, 0x47, 0x88}));
  EXPECT_EQ(highBytesOf("s"), std::set<unsigned>{0x42});
  EXPECT_EQ(highBytesOf("q"), (std::set<unsigned>{0x48, 0x49}));
  EXPECT_EQ(highBytesOf("x").size(), 256U - 9U);
}

TEST(Answers, OfTheLastPollOfACpldEndIt) {
  Tree tree;
  unsigned answers = 0;
  for (; tree.next(); ++answers) {
    const Progress progress = cpldProgress(tree, {0, 0, 0}, true);
    EXPECT_TRUE(progress.callStatus != 0 || progress.status == 1 || progress.status == 2 ||
                (progress.status == 0 && progress.stage == 2));
  }
  EXPECT_EQ(answers, 4U + 14U + 1U);
}

TEST(Answers, OfTheLastPollOfAFlashEndIt) {
  Tree tree;
  unsigned answers = 0;
  for (; tree.next(); ++answers) {
    const Progress progress = flashProgress(tree, {0, 0, 0}, true);
    EXPECT_TRUE(progress.callStatus != 0 || progress.status == 1 || progress.status == 3 ||
                (progress.status == 0 && progress.stage == 5));
  }
  EXPECT_EQ(answers, 3U + 8U + 1U);
}

TEST(Answers, OfAnEarlierPollMayGoOn) {
  Tree tree;
  unsigned goingOn = 0;
  while (tree.next()) {
    if (flashProgress(tree, {0, 0, 0}, false).callStatus == 0) ++goingOn;
  }
  EXPECT_EQ(goingOn, 8U);
}

}  // namespace
}  // namespace kelvane::dialogues
