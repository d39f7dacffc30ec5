// What became of the packages of a download.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/explain/PackageNotes.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

using platform::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kInputs[] = R"([{"productid": "fw3", "folder": "/engine"},
                               {"productid": "fw2", "folder": "/engine"},
                               {"productid": "fw1", "folder": "/engine"}])";

Value download(const std::string& output, int result = 259) {
  return platform::parseJson(R"({"log_id": "17", "job_id": "downloadOnlineUpdateFile",
      "state_id": "FREE", "input_parameters": )" +
                             std::string(kInputs) + R"(, "output": )" + output + R"(, "result": )" +
                             std::to_string(result) + "}");
}

TEST(PackageNotes, TellOfEachProductWhetherTheCatalogueOffersIt) {
  EXPECT_THAT(packageNotes(download(R"([
      {"productid": "fw3", "folder": "/area", "version": "3.4", "size": 12, "file_path": "/"},
      {"productid": "fw2", "folder": "/area", "version": "2.4", "size": 12, "file_path": ""},
      {"productid": "fw1", "folder": "/area", "version": "1.0", "file_path": ""}])")),
              ElementsAre("fw2: the catalogue offers version 2.4, and its package was not brought; "
                          "the engine was asked for fw3 alone",
                          "fw1: the catalogue does not offer it"));
}

TEST(PackageNotes, TellThatThereWasNoCatalogue) {
  const std::string folder = R"(", "folder": "/engine"})";
  const std::vector<std::string> notes =
      packageNotes(download(R"([{"productid": "fw3)" + folder + R"(, {"productid": "fw2)" + folder +
                            R"(, {"productid": "fw1)" + folder + "]"));
  ASSERT_EQ(notes.size(), 3U);
  EXPECT_EQ(notes[0], "fw3: the update engine left no catalogue that could be read");
}

TEST(PackageNotes, OfACopyItIsNotLookedWhatIsThere) {
  const Value several = download(R"([
      {"productid": "fw3", "folder": "/area", "version": "3.4", "size": 12, "file_path": "/"},
      {"productid": "fw2", "folder": "/area", "version": "2.4", "size": 12, "file_path": ""},
      {"productid": "fw1", "folder": "/area", "version": "1.0", "file_path": ""}])");
  EXPECT_EQ(packageNotes(several, true).at(0),
            "fw3: the catalogue offers version 3.4; whether its package was brought cannot be told "
            "from a copy");
  const Value one = platform::parseJson(R"({"log_id": "17", "state_id": "FREE", "result": 259,
      "job_id": "downloadOnlineUpdateFile",
      "input_parameters": [{"productid": "fw3", "folder": "/engine"}], "output": [
      {"productid": "fw3", "folder": "/area", "version": "3.4", "size": 12, "file_path": "/"}]})");
  EXPECT_EQ(packageNotes(one, true).at(0),
            "fw3: the catalogue offers version 3.4, and its package was not brought");
}

TEST(PackageAdvice, IsToAskForWhatTheCatalogueOffersAndForOneProductAtATime) {
  const std::string offered =
      R"([{"productid": "fw3", "folder": "/area", "version": "3.4", "size": 12, "file_path": "/"},
          {"productid": "fw2", "folder": "/area", "version": "2.4", "size": 12, "file_path": ""},
          {"productid": "fw1", "folder": "/area", "version": "1.0", )";
  EXPECT_THAT(packageAdvice(download(offered + R"("file_path": ""}])"), false),
              ::testing::StartsWith("Ask for products that the catalogue offers: "));
  EXPECT_THAT(packageAdvice(download(offered + R"("size": 1, "file_path": "/"}])"), false),
              ::testing::StartsWith("Download each product in a job of its own: "));
  EXPECT_EQ(packageAdvice(download("[]", 0), false), "");
}

TEST(PackageAdvice, IsLeftToTheResultWhereTheSameJobMayComeToAGoodEnd) {
  EXPECT_EQ(packageAdvice(download(R"([{"productid": "fw3", "folder": "/area", "size": 12},
                {"productid": "fw2", "folder": "/area", "size": 12, "file_path": "/"},
                {"productid": "fw1", "folder": "/area", "size": 12, "file_path": "/"}])"),
                          false),
            "");
}

TEST(PackageNotes, OfADownloadThatIsDoneThereAreNone) {
  EXPECT_THAT(packageNotes(download("[{}, {}, {}]", 0)), IsEmpty());
  EXPECT_THAT(packageNotes(download("[5]")), IsEmpty());
}

TEST(EngineNote, IsTheLastLineOfAQueryWithoutACatalogue) {
  LogStretch log;
  log.engineSaid = "no such service";
  const std::string query =
      R"({"log_id": "17", "job_id": "getOnlineUpdateData", "state_id": "FREE", "result": 0)";
  EXPECT_EQ(engineNote(platform::parseJson(query + "}"), log),
            "the update engine said last: no such service");
  EXPECT_EQ(engineNote(platform::parseJson(query + R"(, "output": []})"), log), "");
}

}  // namespace
}  // namespace kelvane::console
