// The laws of what a report keeps to itself bite.
#include <string>

#include <gtest/gtest.h>

#include "tests/fuzz/laws/RedactionLaws.h"

namespace kelvane::fuzz {
namespace {

TEST(RedactionLaws, KnowWhichNamesAreSecret) {
  for (const char* name : {"al", "Ann", "j\xC3\xB6rg", "users", "12345", "a_1"}) {
    EXPECT_TRUE(isSecretName(name)) << name;
  }
  for (const char* name : {"", "a", "1234", "root", "Shared", "ann lee"}) {
    EXPECT_FALSE(isSecretName(name)) << name;
  }
  EXPECT_FALSE(isWord(std::string(256, 'a')));
  EXPECT_TRUE(isValue("pass1"));
  EXPECT_FALSE(isValue("Null"));
}

TEST(RedactionLaws, ANameThatIsLeftIsTold) {
  requireHidden("ann", "[user-1]: annex, Joann [user-1]2");
  requireHidden("user", "[user-1]");
  for (const char* shown : {"ann", "x ANN.", "[ann", "ann]", "ann7", "_ann", "[user-1]ann"}) {
    EXPECT_DEATH(requireHidden("ann", shown), "no secret word") << shown;
  }
  EXPECT_DEATH(requireHidden("deadbeef", "xDeadbeefs"), "no secret word");
}

TEST(RedactionLaws, AWwnThatIsLeftIsTold) {
  requireNoWwn("500000000000000A1, 50:00:00:00:00:00:00:A1:02 50:00:00:00:00:00:00");
  requireNoWwn("[wwn-1]50000000000000A1 [user-1]:50:00:00:00:00:00:00:A1");
  for (const char* shown :
       {"50000000000000A1", "x50000000000000A1z", "0x50000000000000a1", "50-00-00-00-00-00-00-A1",
        "a:50-00-00-00-00-00-00-A1:a", "aa-50:00:00:00:00:00:00:A1"}) {
    EXPECT_DEATH(requireNoWwn(shown), "no WWN is left") << shown;
  }
  requireAbsent("50000000000000a1", "[wwn-1]1");
  EXPECT_DEATH(requireAbsent("50000000000000a1", "050000000000000A10"), "left nowhere");
}

TEST(RedactionLaws, WhatStandsAroundASecretStays) {
  requireReplaced("?token=", "&x", "?token=[credentials-2]&x");
  EXPECT_DEATH(requireReplaced("?token=", "&x", "?token=[credentials-1]"), "the rest of a line");
  EXPECT_DEATH(requireReplaced("?token=", "&x", "[credentials-1]&x"), "the rest of a line");
  EXPECT_DEATH(requireReplaced("?token=", "&x", "?token=ann&x"), "has a stand-in");
  EXPECT_DEATH(requireReplaced("?token=", "&x", "?token=a[user-1]&x"), "has a stand-in");
  EXPECT_DEATH(requireReplaced("?token=", "&x", "?token=[]&x"), "has a stand-in");
  requireBeginning("a [user-1]", "a [user-1] b");
  EXPECT_DEATH(requireBeginning("a an", "a [user-1] b"), "the beginning of the whole");
}

}  // namespace
}  // namespace kelvane::fuzz
