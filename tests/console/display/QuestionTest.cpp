// A question to the user.

#include <sstream>

#include <gtest/gtest.h>

#include "console/display/Question.h"

namespace kelvane::console {
namespace {

std::string asked(std::size_t columns) {
  std::ostringstream out;
  Screen screen{out};
  screen.columns = columns;
  showQuestion("Remove the application and install the new one?", screen);
  return out.str();
}

TEST(Question, WaitsForTheAnswerOnItsLastLine) {
  EXPECT_EQ(asked(0), "Remove the application and install the new one? [y/N] ");
  EXPECT_EQ(asked(79), asked(0));
}

TEST(Question, IsWrappedWhereTheScreenIsNarrow) {
  EXPECT_EQ(asked(39), "Remove the application and install the\nnew one? [y/N] ");
}

TEST(Question, OnlyAClearYesIsOne) {
  for (const char* answer : {"y", "yes\n", "Y\n"}) {
    std::istringstream in(answer);
    EXPECT_TRUE(isAgreement(in)) << answer;
  }
  for (const char* answer : {"", "\n", "n\n", "yess\n"}) {
    std::istringstream in(answer);
    EXPECT_FALSE(isAgreement(in)) << answer;
  }
}

}  // namespace
}  // namespace kelvane::console
