// The laws of text, of names, of JSON and of the engine's output bite.
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/fuzz/laws/JsonLaws.h"
#include "tests/fuzz/laws/NameLaws.h"
#include "tests/fuzz/laws/OutputLaws.h"
#include "tests/fuzz/laws/TextLaws.h"
#include "tests/support/PlainText.h"
#include "tests/support/PlainUtf8.h"

namespace kelvane::fuzz {
namespace {

using platform::FormatArgument;
using platform::Value;

TEST(PlainUtf8, IsEveryCharacterFromTheFirstToTheLastOfItsLength) {
  for (const char* text :
       {"", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(test::isPlainUtf8(text)) << text;
    EXPECT_EQ(test::plainlyRepaired(text), text);
  }
  EXPECT_EQ(test::plainCharacters("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"),
            std::u32string({'a', 0xE4, 0x20AC, 0x1F600}));
}

TEST(PlainUtf8, IsNothingElse) {
  for (const char* bytes :
       {"\x80", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xC2\xC2", "\xE0\x9F\xBF", "\xE1\x80",
        "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80", "\xF4\x90\x80\x80",
        "\xF8\x88\x80\x80\x80", "\xFF"}) {
    EXPECT_FALSE(test::isPlainUtf8(bytes)) << bytes;
  }
  EXPECT_EQ(test::plainlyRepaired("a\xE2\x82z\xFF"), "a\xEF\xBF\xBD\xEF\xBF\xBDz\xEF\xBF\xBD");
}

TEST(Utf8Law, IsBrokenByEitherMistake) {
  requireUtf8("a\xC3\xA4", true, "a\xC3\xA4");
  requireUtf8("\xC3", false, "\xEF\xBF\xBD");
  EXPECT_DEATH(requireUtf8("\xED\xA0\x80", true, ""), "UTF-8 is told");
  EXPECT_DEATH(requireUtf8("\xC3\xA4", false, "\xC3\xA4"), "UTF-8 is told");
  EXPECT_DEATH(requireUtf8("\xC3", false, ""), "is repaired");
}

// Of every kind of value.
const char kShown[] =
    "(\n"
    "        {\n"
    "        \"\" = \"\";\n"
    "        a =         (\n"
    "        );\n"
    "        b =         {\n"
    "        };\n"
    "        c = 0;\n"
    "        \"log_id\" = 1e3;\n"
    "    },\n"
    "    \"a\\\"\\\\\\n\\r\\t\",\n"
    "    \"\xC3\xA4\",\n"
    "    \"<null>\",\n"
    "    1,\n"
    "    \"-1\",\n"
    "    \"<00ab>\",\n"
    "    \"2026-01-31 23:59:59 +0000\"\n"
    ")";

Value everyKind() {
  const Value inner = Value::dictionary({{"log_id", Value::number("1e3")},
                                         {"c", Value::boolean(false)},
                                         {"b", Value::dictionary()},
                                         {"a", Value::array()},
                                         {"", ""}});
  return Value::array({inner, "a\"\\\n\r\t", "\xC3\xA4", Value::null(), Value::boolean(true),
                       Value::number("-1"), Value::data(std::string("\x00\xAB", 2)),
                       platform::Date{1769903999}});
}

TEST(ShownLaw, TellsEveryKindOfValue) {
  EXPECT_EQ(test::plainlyShown(everyKind()), kShown);
  EXPECT_EQ(test::plainlyShown("a b"), "a b");
  EXPECT_EQ(test::plainlyShown(Value()), "(null)");
  EXPECT_EQ(test::plainlyShown(Value::null()), "<null>");
  requireShown(everyKind(), kShown);
  std::string deeper = kShown;
  EXPECT_DEATH(requireShown(everyKind(), deeper.insert(2, " ")), "\"%@\" shows");
  EXPECT_DEATH(requireShown(Value::array({"a b"}), "(\n    a b\n)"), "\"%@\" shows");
  EXPECT_DEATH(requireShown(Value::null(), "(null)"), "\"%@\" shows");
  EXPECT_DEATH(
      requireShown(Value::dictionary({{"b", "1"}, {"a", "2"}}), "{\n    b = 1;\n    a = 2;\n}"),
      "\"%@\" shows");
}

const std::vector<FormatArgument> kArguments = {Value("v"), std::string_view("t"), "c",
                                                std::int64_t{-7}, std::uint64_t{255}};

TEST(FormatLaw, TellsWhatTheWorkersPlaceholdersShow) {
  requireFilled("%@ %@ %s|%4d|%lx%%", kArguments, "v t c|  -7|ff%");
  requireFilled("%@", {static_cast<const char*>(nullptr)}, "(null)");
  EXPECT_DEATH(requireFilled("%@ %@ %s|%4d|%lx%%", kArguments, "v t c|-7  |ff%"), "shows its");
  EXPECT_DEATH(requireFilled("%@", kArguments, ""), "shows its");
  EXPECT_DEATH(requireFilled("a", {}, std::nullopt), "raises where");
}

TEST(FormatLaw, TellsWhereAFormatRaises) {
  requireFilled("%@ %d", {Value("v")}, std::nullopt);
  EXPECT_DEATH(requireFilled("%@ %d", {Value("v")}, "v 0"), "raises where");
  EXPECT_DEATH(requireFilled("%d", {Value("v")}, "0"), "raises where");
  EXPECT_DEATH(requireFilled("%d", {"c"}, "0"), "raises where");
  EXPECT_DEATH(requireFilled("%@", {std::int64_t{1}}, "1"), "raises where");
  EXPECT_DEATH(requireFilled("%s", {std::uint64_t{1}}, "1"), "raises where");
}

TEST(FormatLaw, TellsNothingOfOtherPlaceholders) {
  for (const char* format : {"%-4d", "%04d", "%5s", "%l@", "%q", "%", "%x"}) {
    requireFilled(format, {std::int64_t{-1}}, "anything");
  }
}

const Caller kCaller = {3, "/a/File.cpp", 7, "-[Kelvane run:]"};

TEST(LineLaw, IsOfEveryFieldAndTheWholeMessage) {
  requireLine(kCaller, "m", "[14:03:07] [File.cpp][7][run][error] m\n");
  requireLine({7, "File.cpp", -1, "main"}, std::string("m\0n\xFF", 4),
              "[14:03:07] [File.cpp][-1][][debug] m\n");
  requireLine(kCaller, "\xFF", "[14:03:07] [File.cpp][7][run][error] \xEF\xBF\xBD\n");
  requireLine(kCaller, std::nullopt, "");
  for (const char* line :
       {"", "[14:03:08] [File.cpp][7][run][error] m\n",
        "[14:03:07] [/a/File.cpp][7][run][error] m\n", "[14:03:07] [File.cpp][8][run][error] m\n",
        "[14:03:07] [File.cpp][7][run:][error] m\n", "[14:03:07] [File.cpp][7][run][debug] m\n",
        "[14:03:07] [File.cpp][7][run][error] \n", "[14:03:07] [File.cpp][7][run][error] m"}) {
    EXPECT_DEATH(requireLine(kCaller, "m", line), "a line of the log") << line;
  }
  EXPECT_DEATH(requireLine(kCaller, std::nullopt, "[14:03:07] "), "no line is written");
}

TEST(SwitchLaw, IsOfTheLevelsOwnSwitchAndOfOneAlone) {
  requireSwitched(3, 3, 1, 1);
  requireSwitched(7, 0, 2, 0);
  EXPECT_DEATH(requireSwitched(3, 3, 2, 1), "its switch is 1");
  EXPECT_DEATH(requireSwitched(3, 2, 0, 0), "its switch is 1");
  EXPECT_DEATH(requireSwitched(5, 0, 0, 1), "its switch is 1");
}

TEST(NameLaws, AreOfFunctionsFilesAndGenerations) {
  EXPECT_EQ(plainFunction("-[Kelvane readJSONFile]"), "readJSONFile]");
  EXPECT_EQ(plainFunction("String *fileRename(String *path, unsigned n)"), "*fileRename");
  EXPECT_EQ(plainGeneration("/a/b/.profile.txt", 3), "/a/b/.profile(3).txt");
  EXPECT_EQ(plainGeneration("logs/x", 3), "/x(3)");
  EXPECT_DEATH(requireFunction("-[Kelvane run:]", "run:"), "cut out of its name");
  EXPECT_DEATH(requireFunction("main", "main"), "cut out of its name");
  EXPECT_DEATH(requireFile("/a/b", "/b"), "last part");
  EXPECT_DEATH(requireFile("/a/b", ""), "last part");
  EXPECT_DEATH(requireGeneration("/a/x.tar.gz", 1, "/a/x(1).tar.gz"), "in front of its ending");
}

TEST(RotationLaw, IsBrokenByALogThatIsLostOrStays) {
  requireRotated({"l", "", "l"}, false);
  requireRotated({"l", "l", std::nullopt}, true);
  EXPECT_DEATH(requireRotated({"l", "", ""}, false), "lowest free generation");
  EXPECT_DEATH(requireRotated({"l", "l", "l"}, false), "begins anew");
  EXPECT_DEATH(requireRotated({"l", std::nullopt, "l"}, false), "begins anew");
  EXPECT_DEATH(requireRotated({"l", "", "l"}, true), "begins anew");
}

TEST(JsonLaws, AreOfEveryDigitAndTheWholeText) {
  const Value value = Value::dictionary({{"a", Value::number("1.50")}});
  const test::PlainJson plain = *test::readPlainJson(R"({"a": 1.50})");
  requireRead(plain, value);
  requirePrinted(plain, "{\n  \"a\": 1.50\n}");
  requireLineOfJson(plain, "{\"a\": 1.50}");
  EXPECT_DEATH(requireRead(plain, Value::dictionary({{"a", Value::number("1.5")}})),
               "to the digit");
  EXPECT_DEATH(requireRead(plain, Value("a")), "an array or an object");
  EXPECT_DEATH(requirePrinted(plain, "{\"a\": 1.50}"), "what is written");
  EXPECT_DEATH(requireLineOfJson(plain, "{\"a\":\n1.50}"), "one line");
  EXPECT_DEATH(requireLineOfJson(plain, "{\"a\": 1.5}"), "one line");
}

TEST(JsonLaws, AreBrokenBeyondTheDepth) {
  Value deep = Value::array();
  test::PlainJson plain = test::plainJson(deep);
  for (int level = 1; level < 513; ++level) deep = Value::array({deep});
  EXPECT_DEATH(requireRead(plain, deep), "beyond the depth");
}

TEST(OutputLaws, AreOfAllThatTheEngineWrote) {
  requireGathered("a\n", "a\n");
  requireGathered("\xFF", std::nullopt);
  requireLogged("a\n", "[run][debug] execute EngineRunner result = a\n\n");
  requireLogged("\xFF", "[run][debug] execute EngineRunner result = (null)\n");
  EXPECT_DEATH(requireGathered("a", "b"), "is what is read");
  EXPECT_DEATH(requireGathered("a", std::nullopt), "UTF-8 is text");
  EXPECT_DEATH(requireGathered("\xFF", "\xFF"), "UTF-8 is text");
  EXPECT_DEATH(requireLogged("ab", "[run][debug] execute EngineRunner result = a\n"), "log shows");
  EXPECT_DEATH(requireLogged("\xFF", "[run][debug] execute EngineRunner result = \xFF\n"), "shows");
  EXPECT_DEATH(requireLogged("a", ""), "log shows");
  EXPECT_DEATH(requireNotLogged("execute EngineRunner result = a"), "nothing is shown");
}

}  // namespace
}  // namespace kelvane::fuzz
