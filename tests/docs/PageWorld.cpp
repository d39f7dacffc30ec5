#include "tests/docs/PageWorld.h"

#include <filesystem>
#include <stdexcept>

#include <sys/stat.h>

#include "platform/Json.h"
#include "tests/docs/Page.h"
#include "tests/support/LogLine.h"
#include "tests/support/PropertyLists.h"

namespace kelvane::docs {

namespace fs = std::filesystem;

namespace {

constexpr char kCatalogue[] =
    "<dict><key>Rules</key><array><dict>"
    "<key>ProductID</key><string>tarsel2-firmware</string>"
    "<key>Version</key><string>2.4.0</string>"
    "<key>Size</key><integer>7340032</integer>"
    "<key>Hash256</key>"
    "<string>5e884898da28047151d0e56f8dc6292773603d0d6aabbdd62a11ef721d1542d8</string>"
    "<key>Codebase</key><string>https://updates.example.com/FW_QRX550.img</string>"
    "</dict></array></dict>";

// The ninth argument is the folder.
constexpr char kEngine[] = R"(#!/bin/sh
cp "${0%/*}/catalogue" "$9/Offers.plist"
[ "$1" = dryrun ] || echo image > "$9/FW_QRX550.img"
)";

constexpr char kFleet[] =
    R"([{"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "2.3.0", "cpld": "1.6",
        "usb_bridge": "3.0", "cpld_transfer_seconds": 4, "cpld_programming_seconds": 4,
        "firmware_seconds": 8}])";

std::string withReplaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

}  // namespace

WorkedExample workedExample(const std::string& command) {
  const std::string page = readSource("docs/job-file.md");
  const auto blocks = codeBlocks(section(page, "### " + command), "json");
  if (blocks.size() != 3) throw std::runtime_error("no three job files for " + command);
  return {blocks[0], blocks[1], blocks[2]};
}

std::string comparableLog(const std::string& log) {
  std::string comparable;
  for (const std::string& text : test::splitLines(log)) {
    const auto line = test::parseLogLine(text);
    comparable += line ? "[14:03:07] [" + line->file + "][1][" + line->function + "][" +
                             line->level + "] " + line->message
                       : text;
    comparable += "\n";
  }
  return comparable;
}

PageWorld::PageWorld() {
  writeSettings();
  writeEngine();
  writeFleet(kFleet);
  folder.write("shared/tmp/OnlineUpdate/SW/Manager.app/Contents/new", "new");
  fs::create_directories(folder / "Users/ann/Downloads");
  fs::create_directory_symlink(folder / "shared", folder / "Users/ann/Shared");
  makeImage("Users/ann/Downloads/standard.img", {"standard", "--product", "0x4301", "--firmware",
                                                 "2.4.0", "--cpld", "1.7", "--usb", "3.1"});
}

void PageWorld::writeSettings() const {
  const auto settings = codeBlocks(readSource("docs/settings.md"), "json");
  folder.write("shared/utility/config/setting.json", here(settings.at(0)));
  bundle.write("Contents/Resources/Config/setting.json", here(settings.at(1)));
}

void PageWorld::writeEngine() const {
  const std::string resources = "Applications/Manager.app/Contents/Resources/";
  const std::string engine = folder.write(resources + "EngineRunner", kEngine);
  ::chmod(engine.c_str(), 0755);
  folder.write(resources + "catalogue", test::xmlPropertyList(kCatalogue));
}

std::string PageWorld::here(const std::string& pageText) const {
  return withReplaced(withReplaced(pageText, "/Users/ann/", folder / "Users/ann/"),
                      "/Applications/", folder / "Applications/");
}

std::string PageWorld::asOnPage(const std::string& text) const {
  return withReplaced(withReplaced(text, bundle.path(), "/Applications/Manager.app"), folder.path(),
                      "");
}

void PageWorld::run(const std::string& jobFile) const {
  writeJobs(here(jobFile));
  const platform::Value jobs = platform::parseJson(jobFile);
  const std::string logId = jobs.count() == 0 ? "1" : jobs.at(0).get("log_id").string();
  EXPECT_EQ(runWorker({logId, folder / "Users/ann/Shared/"}).exitStatus, 0);
}

std::vector<std::string> PageWorld::writtenVersions() const {
  std::vector<std::string> found;
  for (const std::string& name : folder.names("versions")) {
    found.push_back(asOnPage(folder.read("versions/" + name)) + "\n");
  }
  return found;
}

}  // namespace kelvane::docs
