// Texts quoted for shells.

#include <gtest/gtest.h>

#include "console/display/ShellQuoting.h"

namespace kelvane::console {
namespace {

TEST(ShellQuoted, KeepsQuotes) {
  EXPECT_EQ(shellQuoted("it's"), "'it'\\''s'");
  EXPECT_EQ(shellQuoted(""), "''");
}

TEST(ConsoleCommand, HasTheSharedFolderWhereItIsKnown) {
  EXPECT_EQ(consoleCommand("retry", "/a/b/", "17"), "kelvane-console retry --shared /a/b/ 17");
  EXPECT_EQ(consoleCommand("retry", "/a b/", "1 7"),
            "kelvane-console retry --shared '/a b/' '1 7'");
  EXPECT_EQ(consoleCommand("retry", "", "17"), "kelvane-console retry 17");
}

}  // namespace
}  // namespace kelvane::console
