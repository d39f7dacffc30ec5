// Texts quoted for shells.

#include <gtest/gtest.h>

#include "console/display/ShellQuoting.h"

namespace kelvane::console {
namespace {

TEST(ShellQuoted, KeepsQuotes) {
  EXPECT_EQ(shellQuoted("it's"), "'it'\\''s'");
  EXPECT_EQ(shellQuoted(""), "''");
}

}  // namespace
}  // namespace kelvane::console
