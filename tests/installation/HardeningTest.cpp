// What is installed of ours is hardened: mistakes that are left are harder to exploit.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/installation/Elf.h"
#include "tests/installation/InstalledTree.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {
namespace {

TEST(Hardening, IsInEveryProgramAndLibraryOfOurs) {
  const TempFolder bundle{".app"};
  for (const char* component : {"worker", "console", "simulators"}) {
    installComponent(component, bundle.path());
  }
  std::size_t count = 0;
  for (const std::string& name : binariesBelow(bundle.path())) {
    if (name.find("libplist") != name.npos) continue;  // the system's, brought along
    const Hardening found = hardeningOf(bundle / name);
    EXPECT_TRUE(found.positionIndependent) << name;
    EXPECT_TRUE(found.readOnlyRelocations) << name;
    EXPECT_TRUE(found.immediateBinding) << name;
    EXPECT_TRUE(found.stackWithoutCode) << name;
    EXPECT_TRUE(found.stackProtector) << name;
#ifdef KELVANE_FORTIFIED
    EXPECT_TRUE(found.fortified) << name;
#endif
#ifdef __x86_64__
    EXPECT_TRUE(found.controlFlow) << name;
#endif
    ++count;
  }
  EXPECT_EQ(count, 6U);
}

TEST(Hardening, IsNotSeenWhereItIsNot) {
  const Hardening found = hardeningOf(KELVANE_PLAIN_PROGRAM);
  EXPECT_FALSE(found.positionIndependent);
  EXPECT_FALSE(found.readOnlyRelocations);
  EXPECT_FALSE(found.immediateBinding);
  EXPECT_FALSE(found.stackWithoutCode);
  EXPECT_FALSE(found.stackProtector);
  EXPECT_FALSE(found.fortified);
  EXPECT_FALSE(found.controlFlow);
}

}  // namespace
}  // namespace kelvane::test
