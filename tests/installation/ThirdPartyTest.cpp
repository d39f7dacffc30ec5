// The notices and bills of materials that are installed, held against what is in the programs.

#include <algorithm>
#include <functional>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/File.h"
#include "platform/Json.h"
#include "tests/installation/Elf.h"
#include "tests/installation/InstalledTree.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {
namespace {

using platform::Value;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

using NameSet = std::set<std::string>;

struct Place {
  const char* component;
  const char* folder;
  std::vector<const char*> programs;
};

const std::vector<Place> kPlaces = {
    {"worker", "Contents/Resources/third-party/", {"Contents/Resources/Kelvane"}},
    {"console", "share/doc/kelvane/third-party/", {"bin/kelvane-console"}},
    {"simulators",
     "Contents/Resources/third-party/",
     {"Contents/Frameworks/libZORAPI.so", "Contents/Resources/EngineRunner", "bin/make-image",
      "bin/make-service"}}};

// What shows that a library is linked in: a part of a function's name.
const std::vector<std::pair<const char*, const char*>> kMarks = {{"fmt", "N3fmt"},
                                                                 {"nlohmann-json", "N8nlohmann"},
                                                                 {"CLI11", "N3CLI"},
                                                                 {"pcre2", "pcre2_match_8"},
                                                                 {"expat", "XML_ParserCreate"},
                                                                 {"zlib", "crc32"},
                                                                 {"libcrypto", "EVP_Digest"},
                                                                 {"libstdc++", "__cxa_throw"},
                                                                 {"libgcc", "_Unwind_Resume"}};

// What of others is in a program, or is brought along for it.
NameSet foundIn(const std::string& program) {
  NameSet found;
  for (const std::string& symbol : definedSymbols(program)) {
    for (const auto& [library, mark] : kMarks) {
      if (symbol.find(mark) != symbol.npos) found.insert(library);
    }
  }
  for (const std::string& library : neededLibraries(program)) {
    if (library.find("libplist") != library.npos) found.insert("libplist");
  }
  return found;
}

NameSet textsIn(const Value& list) {
  NameSet found;
  for (std::size_t i = 0; i < list.count(); ++i) found.insert(list.at(i).string());
  return found;
}

class ThirdParty : public ::testing::TestWithParam<Place> {
 protected:
  ThirdParty() { installComponent(GetParam().component, prefix.path()); }

  std::string read(const std::string& ending) const {
    return platform::readFile(prefix / (GetParam().folder + (GetParam().component + ending)));
  }
  Value bill() const { return platform::parseJson(read(".cdx.json")); }
  // The libraries of the bill, by their names.
  NameSet components() const {
    NameSet found;
    const Value list = bill().get("components");
    for (std::size_t i = 0; i < list.count(); ++i) found.insert(list.at(i).get("name").string());
    return found;
  }
  // What the bill says of a program.
  NameSet dependenciesOf(const std::string& program) const {
    const Value list = bill().get("dependencies");
    for (std::size_t i = 0; i < list.count(); ++i) {
      if (list.at(i).get("ref").string() == program) return textsIn(list.at(i).get("dependsOn"));
    }
    ADD_FAILURE() << program << " is not in the bill";
    return {};
  }

  const TempFolder prefix;
};

TEST_P(ThirdParty, BillNamesWhatIsInEachProgramAndNoOther) {
  NameSet all;
  for (const std::string path : GetParam().programs) {
    const NameSet found = foundIn(prefix / path);
    EXPECT_EQ(dependenciesOf(path.substr(path.rfind('/') + 1)), found) << path;
    all.insert(found.begin(), found.end());
  }
  EXPECT_EQ(components(), all);
}

TEST_P(ThirdParty, BillIsOfAKnownKindAndTellsVersionsAndLicences) {
  EXPECT_EQ(bill().get("bomFormat"), Value("CycloneDX"));
  EXPECT_EQ(bill().get("specVersion"), Value("1.5"));
  const Value list = bill().get("components");
  for (std::size_t i = 0; i < list.count(); ++i) {
    const Value& library = list.at(i);
    EXPECT_THAT(library.get("version").string(), Not(IsEmpty()));
    EXPECT_THAT(library.get("licenses").at(0).get("expression").string(), Not(IsEmpty()));
    EXPECT_THAT(library.get("purl").string(), HasSubstr("pkg:deb/debian/"));
  }
}

TEST_P(ThirdParty, NoticesHoldTheTextsOfEachLibrary) {
  const std::string notices = read("-notices.txt");
  EXPECT_THAT(notices, Not(HasSubstr("not found")));
  EXPECT_THAT(notices, HasSubstr("Copyright"));
  for (const std::string& name : components()) EXPECT_THAT(notices, HasSubstr("\n" + name + " "));
}

TEST(ThirdPartyWithoutPackages, HasTheVersionsThatAreKnownAndSaysWhatIsMissing) {
  const TempFolder folder;
  const std::string build = KELVANE_BUILD;
  const Ended ended = runProgram(
      {KELVANE_CMAKE, "-DCMAKE_IGNORE_PATH=/usr/bin;/bin;/usr/sbin;/sbin",
       "-Dtable=" + build + "/third-party/libraries.cmake", "-Dcomponent=console",
       "-Dbase=" + folder / "console", "-Dprograms=" + build + "/console/kelvane-console", "-P",
       KELVANE_SOURCES "cmake/MakeThirdParty.cmake"},
      "/");
  ASSERT_EQ(ended.exitStatus, 0) << ended.err;
  const Value list = platform::parseJson(folder.read("console.cdx.json")).get("components");
  ASSERT_GT(list.count(), 0U);
  for (std::size_t i = 0; i < list.count(); ++i) {
    EXPECT_THAT(list.at(i).get("version").string(), Not(IsEmpty()));
    EXPECT_TRUE(list.at(i).get("purl").isNothing());
  }
  EXPECT_THAT(folder.read("console-notices.txt"), HasSubstr("whoever ships it has to add them"));
}

INSTANTIATE_TEST_SUITE_P(Of, ThirdParty, ::testing::ValuesIn(kPlaces),
                         [](const auto& test) { return std::string(test.param.component); });

}  // namespace
}  // namespace kelvane::test
