#include <gtest/gtest.h>

#include "console/devices/Nearest.h"

namespace kelvane::console {
namespace {

const std::vector<std::string> kKnown = {"50000000000000A1", "50000000000000B2",
                                         "500a098000000001"};

TEST(NearestWwn, IsTheOneWithTheFewestMistakes) {
  EXPECT_EQ(nearestWwn("50000000000000A2", kKnown), "50000000000000A1");
  EXPECT_EQ(nearestWwn("5000000000000B2", kKnown), "50000000000000B2");
  EXPECT_EQ(nearestWwn("500a0980000000101", kKnown), "500a098000000001");
}

TEST(NearestWwn, CaseAndSignsBetweenMakeNoDifference) {
  EXPECT_EQ(nearestWwn("50:00:00:00:00:00:00:b2", kKnown), "50000000000000B2");
  EXPECT_EQ(nearestWwn("500A098000000001", kKnown), "500a098000000001");
}

TEST(NearestWwn, IsNoneWhereNoneIsAlike) {
  EXPECT_EQ(nearestWwn("60123456789ABCDE", kKnown), "");
  EXPECT_EQ(nearestWwn("A1", kKnown), "");
  EXPECT_EQ(nearestWwn("", kKnown), "");
  EXPECT_EQ(nearestWwn("50000000000000A1", {}), "");
  EXPECT_EQ(nearestWwn("A1", {"B2"}), "");
}

TEST(NearestWwn, AShortOneMayHaveAMistakeInEveryTwoLetters) {
  EXPECT_EQ(nearestWwn("A2", {"A1"}), "A1");
}

}  // namespace
}  // namespace kelvane::console
