// The words of a command line that is still being typed.

#include <cstdlib>

#include <gtest/gtest.h>

#include "console/command_line/completion/TypedWords.h"

namespace kelvane::console {
namespace {

TEST(TypedWords, AWordIsReadAsAShellReadsIt) {
  EXPECT_EQ(asShellReads("plain/path"), "plain/path");
  EXPECT_EQ(asShellReads("'a b'/c"), "a b/c");
  EXPECT_EQ(asShellReads("\"a \\\"b\\\" \\c\""), "a \"b\" \\c");
  EXPECT_EQ(asShellReads("a\\ b"), "a b");
  EXPECT_EQ(asShellReads("\"it's\""), "it's");
  EXPECT_EQ(asShellReads("'still open"), "still open");
  EXPECT_EQ(asShellReads("end\\"), "end\\");
}

TEST(TypedWords, AHomeFolderAndAVariableArePutIn) {
  ::setenv("KELVANE_TEST_FOLDER", "/a b", 1);
  const std::string home = std::getenv("HOME") == nullptr ? "" : std::getenv("HOME");
  EXPECT_EQ(asShellReads("~/Shared"), home + "/Shared");
  EXPECT_EQ(asShellReads("~"), home);
  EXPECT_EQ(asShellReads("a~/b"), "a~/b");
  EXPECT_EQ(asShellReads("$KELVANE_TEST_FOLDER/c"), "/a b/c");
  EXPECT_EQ(asShellReads("\"${KELVANE_TEST_FOLDER}\"c"), "/a bc");
  EXPECT_EQ(asShellReads("'$KELVANE_TEST_FOLDER'"), "$KELVANE_TEST_FOLDER");
  ::unsetenv("KELVANE_TEST_FOLDER");
  EXPECT_EQ(asShellReads("$KELVANE_TEST_FOLDER/c"), "/c");
}

TEST(TypedWords, NothingIsRunForAWord) {
  for (const char* word : {"$(date)", "`date`", "a\"`date`\"", "${a:-b}", "$", "${", "$'a'"}) {
    EXPECT_EQ(asShellReads(word), "") << word;
  }
}

TEST(TypedWords, AValueIsFoundHoweverItIsGiven) {
  EXPECT_EQ(valueAmong({"show", "--shared", "a b", "17"}, "--shared"), "a b");
  EXPECT_EQ(valueAmong({"show", "--shared='a b'"}, "--shared"), "a b");
  EXPECT_EQ(valueAmong({"--shared", "=", "'a b'", "show"}, "--shared"), "a b");
  EXPECT_EQ(valueAmong({"--shared", "a", "--shared=b"}, "--shared"), "b");
}

TEST(TypedWords, AValueThatIsStillMissingIsNone) {
  EXPECT_EQ(valueAmong({"show", "--shared"}, "--shared"), std::nullopt);
  EXPECT_EQ(valueAmong({"show", "--shared", "="}, "--shared"), std::nullopt);
  EXPECT_EQ(valueAmong({"show", "--shared-folder", "a"}, "--shared"), std::nullopt);
  EXPECT_EQ(valueAmong({}, "--shared"), std::nullopt);
}

}  // namespace
}  // namespace kelvane::console
