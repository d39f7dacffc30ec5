// docs/integration.md: the clients that it shows, and what it says of the worker, tried.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "contract/Catalogue.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/docs/Page.h"
#include "tests/end_to_end/OnlineInstallation.h"
#include "tests/support/JobFiles.h"

namespace kelvane::docs {
namespace {

namespace fs = std::filesystem;

using platform::Value;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::SizeIs;

using Names = std::set<std::string>;

std::string integrationPage() { return readSource("docs/integration.md"); }
std::vector<Row> integrationTable(const char* heading) {
  return tableRows(section(integrationPage(), heading));
}

// What stands between the first two of this character in the cell.
std::string between(const std::string& cell, char mark) {
  const std::size_t start = cell.find(mark) + 1;
  return cell.substr(start, cell.find(mark, start) - start);
}

// --- what is shown

TEST(IntegrationPage, ShowsTheClientsCodeAsItIs) {
  const std::string client = readSource("docs/integration/client.py");
  const auto shown = codeBlocks(integrationPage(), "python");
  EXPECT_THAT(shown, SizeIs(2));
  for (const std::string& block : shown) EXPECT_THAT(client, HasSubstr(block));
}

TEST(IntegrationPage, NamesEveryClientAndNoOther) {
  Names named;
  for (const Row& row : integrationTable("## The clients")) named.insert(between(row.at(0), '`'));
  Names there;
  for (const auto& entry : fs::directory_iterator(KELVANE_SOURCES "docs/integration")) {
    if (entry.is_regular_file()) there.insert(entry.path().filename().string());
  }
  EXPECT_EQ(named, there);
}

TEST(IntegrationPage, NamesEveryKeyOfARule) {
  EXPECT_THAT(namesOf(integrationTable("## The catalogue's rules")),
              ElementsAreArray({catalogue::kProductId, catalogue::kVersion, catalogue::kSize,
                                catalogue::kHash, catalogue::kMinimumOs, catalogue::kCodebase}));
}

// --- what is said of the worker

class Integration : public OnlineInstallation {
 protected:
  Integration() {
    makeImage("standard.img",
              {"standard", "--product", "0x43", "--firmware", "2.4.0", "--cpld", "1.7"});
    writeController("[]");
  }

  // The one controller, with these faults, and these of the framework's functions.
  void writeController(const std::string& faults, const std::string& ofFunctions = "[]") const {
    writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "2.3.0",
                    "cpld": "1.6", "usb_bridge": "3.0", "cpld_transfer_seconds": 4,
                    "cpld_programming_seconds": 4, "firmware_seconds": 20, "faults": )" +
                   faults + "}]",
               ofFunctions);
  }
  void update() const { updateFirmware({{"50000000000000A1", folder / "standard.img"}}); }
  void writeEngine(const std::string& script) const {
    const std::string engine =
        bundle.write("Contents/Resources/EngineRunner", "#!/bin/sh\n" + script + "\n");
    ::chmod(engine.c_str(), 0755);
  }
};

TEST_F(Integration, WithoutTheSlashNoJobFileIsFoundAndNothingLogged) {
  writeJobs(test::waitingJob("updateSW", Value::dictionary({{"file_path", "/nowhere"}})));
  runWorker({"17", folder / "shared"});
  EXPECT_EQ(job().get("state_id"), Value("WAIT"));
  EXPECT_EQ(log(), "");
}

TEST_F(Integration, AJobFileThatIsMissingIsNotMade) {
  runWorker({"17", shared()});
  EXPECT_FALSE(fs::exists(folder / test::kJobFile));
}

TEST_F(Integration, TheFileIsReplacedAlsoWhereNoPercentageHasChanged) {
  writeController(R"([{"flash": "firmware", "do": "stall", "at": 50, "seconds": 20}])");
  update();
  std::size_t same = 0;
  for (std::size_t i = 1; i < versions().size(); ++i) {
    if (versions()[i] == versions()[i - 1]) ++same;
  }
  EXPECT_GE(same, 9U);
}

TEST_F(Integration, ControllersAreFoundByTheCallsThatAreNamed) {
  update();
  std::vector<std::string> named;
  const std::string text = section(integrationPage(), "## Where WWNs come from");
  for (std::size_t at = text.find("`zr_"); at != std::string::npos;
       at = text.find("`zr_", at + 1)) {
    named.push_back(between(text.substr(at), '`'));
  }
  named.push_back("decod_getStringWWN");
  std::vector<std::string> made = calls();
  made.resize(named.size());
  EXPECT_EQ(made, named);
}

TEST_F(Integration, AWorkerWhoseBundleIsReplacedGoesOn) {
  writeEngine("rm -Rf '" + bundle.path() + "' && cp -R '" + (folder / "Manager.app") + "' '" +
              bundle.path() + "'");
  query();
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_FALSE(fs::exists(worker));
}

TEST_F(Integration, TheEnginesComplaintsStandOnStandardErrorAlone) {
  writeEngine("echo 'no such product' >&2");
  EXPECT_EQ(query().err, "no such product\n");
  EXPECT_THAT(log(), ::testing::Not(HasSubstr("no such product")));
}

// --- the cases to rehearse

class RehearsedCase : public Integration, public ::testing::WithParamInterface<Row> {
 protected:
  // The cell's JSON, with the product's name of this world.
  Value written() const {
    std::string text = between(GetParam().at(2), '`');
    if (text.front() != '{') text = "{" + text + "}";
    const std::size_t product = text.find("tarsel3fw");
    if (product != std::string::npos) text.replace(product, 9, "fw3");
    return platform::parseJson(text);
  }
  std::string faults() const { return *platform::printJson(written().get("faults")); }
  void carryOut() const {
    const std::string& where = GetParam().at(1);
    if (where == "the service") {
      writeFaults(*platform::printJson(written()));
      download({"fw3"});
      return;
    }
    if (where == "a controller") writeController(faults());
    if (where == "the fleet") writeController("[]", faults());
    update();
  }
};

TEST_P(RehearsedCase, EndsAsThePageSays) {
  ASSERT_FALSE(written().isNothing());
  carryOut();
  EXPECT_EQ("`" + job().get("state_id").string() + "`, " + job().get("result").digits(),
            GetParam().at(3));
}

INSTANTIATE_TEST_SUITE_P(Page, RehearsedCase,
                         ::testing::ValuesIn(integrationTable("## Rehearsing")),
                         [](const auto& test) {
                           std::string name = test.param.at(0);
                           std::erase_if(name, [](char c) { return std::isalnum(c) == 0; });
                           return name;
                         });

}  // namespace
}  // namespace kelvane::docs
