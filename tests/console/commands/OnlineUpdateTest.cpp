// The sub-commands query and download, with small scripts as workers.

#include "console/commands/OnlineUpdate.h"
#include "console/job/ExitCode.h"
#include "platform/File.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

class Query : public ConsoleWorld {
 protected:
  Query() {
    options.engine.url = "file:///srv/updates";
    options.product = "manager";
    options.version = "1.0";
  }

  int run() {
    options.job = job;
    return runHere(query, options);
  }

  QueryOptions options;
};

TEST_F(Query, TheWorkerFindsOneDictionaryOfParameters) {
  makeWorkerThatLooks();
  run();
  const platform::Value record = seenRecord();
  EXPECT_EQ(record.get("job_id").string(), "getOnlineUpdateData");
  const platform::Value& inputs = record.get("input_parameters");
  EXPECT_EQ(inputs.get("productid").string(), "manager");
  EXPECT_EQ(inputs.get("version").string(), "1.0");
  EXPECT_EQ(inputs.get("url").string(), "file:///srv/updates");
  EXPECT_EQ(inputs.get("folder").string(), folder / "shared/tmp/EngineRunner");
}

TEST_F(Query, WithoutAVersionAnyIsNewer) {
  makeWorkerThatLooks();
  options.version = "";
  run();
  EXPECT_EQ(seenRecord().get("input_parameters").get("version").string(), "0");
}

TEST_F(Query, WorkerThatDiesInRun) {
  makeWorkerThatLeaves("RUN", "0");
  EXPECT_EQ(run(), kWorkerFailed);
  EXPECT_NE(
      messages.str().find(
          "unfinished in state RUN: nobody goes on with it. \"kelvane-console explain --shared " +
          (folder / "shared/") + " 1\" tells what the log says; \"kelvane-console retry --shared " +
          (folder / "shared/") + " 1\" adds it anew\n"),
      std::string::npos)
      << messages.str();
}

TEST_F(Query, OfferedPackagesAreShownAsATable) {
  makeWorkerThatLeaves("FREE", "0", R"(, "job_id": "getOnlineUpdateData", "output": [
    {"ProductID": "manager", "Version": "2.0", "Size": 12345678, "MinimumOSVersion": "10.15.0",
     "Codebase": "https://updates.example/a/Manager.zip"},
    {"ProductID": "t3", "Version": "3.1", "Size": "17"}, 5])");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shownAtTheEnd(),
            "result 0: the text\n"
            "Product  Version     Size  System   Package\n"
            "manager  2.0      12.3 MB  10.15.0  Manager.zip\n"
            "t3       3.1           17  -        -\n");
}

TEST_F(Query, ForMachinesThereIsNoTable) {
  makeWorkerThatLeaves(
      "FREE", "0", R"(, "job_id": "getOnlineUpdateData", "output": [{"ProductID": "manager"}])");
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().find("Product "), std::string::npos);
}

TEST_F(Query, WithoutACatalogueItIsNoSuccess) {
  makeWorkerThatLeaves("FREE", "0");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: the update engine left no catalogue\n");
}

TEST_F(Query, WithoutACatalogueTheEnginesComplaintIsTold) {
  makeWorkerThatLeaves("FREE", "0");
  makeWorker("echo 'engine: no such product' >&2\n" +
             folder.read("Manager.app/Contents/Resources/Kelvane"));
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(messages.str(),
            "kelvane-console: the update engine left no catalogue\n"
            "  engine: no such product\n"
            "  (kept in " +
                (folder / "shared/utility/logs/standard-error-1.txt") + ")\n");
}

TEST_F(Query, FolderThatIsNotEmptyIsRefused) {
  options.engine.folder = folder / "mine";
  folder.write("mine/.hidden", "");
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: folder " + (folder / "mine") +
                                " is not empty: it would be removed with everything in it\n");
  EXPECT_FALSE(platform::exists(folder / test::kJobFile));
}

TEST_F(Query, FileInPlaceOfTheFolderIsRefused) {
  options.engine.folder = folder.write("mine", "");
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: folder " + (folder / "mine") + " is a file\n");
}

TEST_F(Query, EmptyTextsAreRefused) {
  options.product = "";
  EXPECT_EQ(run(), kBadUsage);
  options.product = "manager";
  options.engine.url = "";
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(),
            "kelvane-console: the product is missing\n"
            "kelvane-console: the service's URL is missing\n");
}

class Download : public ConsoleWorld {
 protected:
  Download() {
    options.engine = {"/srv/updates", folder / "new"};
    options.products = {"t3=3.1", "manager"};
  }

  int run() {
    options.job = job;
    return runHere(download, options);
  }

  DownloadOptions options;
};

TEST_F(Download, TheWorkerFindsAListOfParameters) {
  makeWorkerThatLooks();
  run();
  const platform::Value record = seenRecord();
  EXPECT_EQ(record.get("job_id").string(), "downloadOnlineUpdateFile");
  const platform::Value& inputs = record.get("input_parameters");
  ASSERT_EQ(inputs.count(), 2U);
  EXPECT_EQ(inputs.at(0).get("productid").string(), "t3");
  EXPECT_EQ(inputs.at(0).get("version").string(), "3.1");
  EXPECT_EQ(inputs.at(1).get("productid").string(), "manager");
  EXPECT_EQ(inputs.at(1).get("version").string(), "0");
  for (const platform::Value& one : inputs.elements()) {
    EXPECT_EQ(one.get("url").string(), "/srv/updates");
    EXPECT_EQ(one.get("folder").string(), folder / "new");
  }
}

TEST_F(Download, DownloadsAreShownWithTheirPresence) {
  const std::string image = folder.write("FW_T3.img", "x");
  makeWorkerThatLeaves("FREE", "259",
                       R"(, "job_id": "downloadOnlineUpdateFile", "output": [
    {"productid": "t3", "version": "3.1", "size": 999, "file_path": ")" +
                           image + R"("},
    {"productid": "manager", "version": "2.0", "size": 2500000000, "file_path": ""}])");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(shownAtTheEnd(),
            "result 259 (0x0103): the text\n"
            "Product  Version    Size  Present  Path\n"
            "t3       3.1       999 B  yes      " +
                image +
                "\n"
                "manager  2.0      2.5 GB  no\n");
}

TEST_F(Download, NoProductIsRefused) {
  options.products.clear();
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: no product is given\n");
}

}  // namespace
}  // namespace kelvane::console
