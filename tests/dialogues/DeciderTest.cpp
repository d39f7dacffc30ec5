#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogues/Decider.h"

namespace kelvane::dialogues {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> allScripts(const std::function<void(Decider&)>& dialogue) {
  std::vector<std::string> scripts;
  Tree tree;
  while (tree.next()) {
    dialogue(tree);
    scripts.push_back(textOf(tree.script()));
  }
  return scripts;
}

TEST(TreeOfDialogues, TellsEveryWayOnce) {
  EXPECT_THAT(allScripts([](Decider& decider) {
                if (decider.branch(3) != 1) decider.branch(2);
              }),
              ElementsAre("0.0", "0.1", "1", "2.0", "2.1"));
}

TEST(TreeOfDialogues, ATurnAddsNoDialogue) {
  const auto scripts = allScripts([](Decider& decider) {
    decider.branch(100);
    decider.turn(2);
  });
  EXPECT_EQ(scripts.size(), 100U);
  std::set<char> taken;
  for (const std::string& script : scripts) taken.insert(script.back());
  EXPECT_THAT(taken, ElementsAre('0', '1'));
}

TEST(TreeOfDialogues, BehindACutTheBranchesAreToldWholeOnce) {
  const auto scripts = allScripts([](Decider& decider) {
    decider.branch(3);
    decider.cut("the same state");
    decider.branch(4);
  });
  EXPECT_EQ(scripts.size(), 4U + 1U + 1U);
}

TEST(TreeOfDialogues, AnotherStateHasBranchesOfItsOwn) {
  const auto scripts = allScripts([](Decider& decider) {
    decider.cut(std::to_string(decider.branch(3)));
    decider.branch(4);
  });
  EXPECT_EQ(scripts.size(), 12U);
}

TEST(TreeOfDialogues, ABranchThatDependsOnATurnIsRefused) {
  EXPECT_THROW(allScripts([](Decider& decider) {
                 decider.branch(1 + decider.turn(5));
                 decider.branch(50);
               }),
               std::logic_error);
}

TEST(Script, OfAnotherTreeIsRefused) {
  Replay replay(scriptOf("0.7"));
  EXPECT_EQ(replay.branch(2), 0U);
  EXPECT_THROW(replay.branch(2), std::out_of_range);
}

}  // namespace
}  // namespace kelvane::dialogues
