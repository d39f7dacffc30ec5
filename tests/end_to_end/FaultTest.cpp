// The worker while the system's calls fail: interrupted by signals, refused by the disk.

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/Json.h"
#include "tests/end_to_end/OnlineInstallation.h"
#include "tests/support/JobFiles.h"
#include "tests/support/LogLine.h"

namespace kelvane {
namespace {

namespace fs = std::filesystem;

using platform::Value;

class Fault : public OnlineInstallation {
 protected:
  Fault() {
    environment["LD_PRELOAD"] = KELVANE_FAULT_INTERPOSER " " + environment["LD_PRELOAD"];
    environment["KELVANE_FAULT_DONE"] = folder / "done";
    folder.write("Manager.app/Contents/deep/file", "bytes");
    fs::create_symlink("version", folder / "Manager.app/Contents/link");
    makeService(R"({"packages": [{"product": "sw", "version": "2.0", "minimum_os": "1.0.0",
        "codebase": "https://updates.example/Manager.zip",
        "files": {"Manager.app": "Manager.app"}}]})");
  }

  // What a run leaves, in one text: every version of the job file, the tree below the shared folder
  // and the installed application.
  std::string outcome() const {
    std::string text;
    for (const Value& version : versions()) text += *platform::printJson(version) + "\n";
    std::vector<std::string> files;
    for (const std::string& root : {shared() + "tmp", folder / "Installed.app", engineFolder()}) {
      if (!fs::exists(root)) continue;
      for (const auto& entry : fs::recursive_directory_iterator(root)) {
        files.push_back(entry.path().string() + " " +
                        std::to_string(static_cast<int>(entry.symlink_status().permissions())) +
                        (entry.is_regular_file() ? " " + std::to_string(entry.file_size()) : ""));
      }
    }
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) text += file + "\n";
    return text;
  }

  void clear() const {
    for (const char* name : {"shared/tmp", "Installed.app", "engine's folder", "done"}) {
      fs::remove_all(folder / name);
    }
    folder.write("Installed.app/Contents/old", "old");
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
  }

  // The log without its times.
  std::string logText() const {
    std::string text;
    for (const std::string& line : test::splitLines(log())) {
      const bool hasTime = line.rfind('[', 0) == 0;
      text += line.substr(hasTime ? line.find(']') : 0) + "\n";
    }
    return text;
  }

  // Runs the job once for each of its calls, interrupted there; nothing may change.
  void expectThatInterruptionsChangeNothing(const std::function<void()>& job) {
    environment.erase("KELVANE_FAULT_INTERRUPT");
    clear();
    job();
    const std::string undisturbed = outcome();
    const std::string lines = logText();
    ASSERT_FALSE(lines.empty());
    int n = 1;
    for (;; ++n) {
      environment["KELVANE_FAULT_INTERRUPT"] = std::to_string(n);
      clear();
      job();
      const std::string interrupted = folder.read("done");
      if (interrupted.empty()) break;
      ASSERT_EQ(outcome(), undisturbed) << "call " << n << ": " << interrupted;
      ASSERT_EQ(logText(), lines) << "call " << n << ": " << interrupted;
    }
    EXPECT_GT(n, 100);
  }
};

TEST_F(Fault, AnInterruptedCallChangesNothingInADownload) {
  expectThatInterruptionsChangeNothing([this] { download({"sw"}); });
}

TEST_F(Fault, AnInterruptedCallChangesNothingInAnInstallation) {
  expectThatInterruptionsChangeNothing([this] {
    runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  });
}

TEST_F(Fault, AnInterruptedCallChangesNothingInAFirmwareJob) {
  writeFleet("[]");
  expectThatInterruptionsChangeNothing([this] { updateFirmware({{"unknown", "/i"}}); });
}

TEST_F(Fault, ADiskThatRefusesPermissionsOrTimesKeepsTheCopy) {
  for (const char* call : {"fchmod", "futimens", "utimensat"}) {
    environment["KELVANE_FAULT_REFUSE"] = call;
    clear();
    folder.write(test::kJobFile, "[]");
    download({"sw"});
    EXPECT_FALSE(folder.read("done").empty()) << call;
    EXPECT_EQ(folder.read("shared/tmp/OnlineUpdate/SW/Manager.app/Contents/deep/file"), "bytes")
        << call;
    EXPECT_EQ(fs::read_symlink(area("SW") + "/Manager.app/Contents/link"), "version") << call;
  }
}

// --- power

// The position of the first of these lines that contains both texts.
std::size_t positionOf(const std::vector<std::string>& lines, const std::string& first,
                       const std::string& second) {
  const auto found = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
    return line.find(first) != std::string::npos && line.find(second) != std::string::npos;
  });
  EXPECT_NE(found, lines.end()) << first << " " << second;
  return static_cast<std::size_t>(found - lines.begin());
}

TEST_F(Fault, ADownloadLastsBeforeItIsSeenAndIsSeenBeforeTheEnginesFolderGoes) {
  clear();
  download({"sw"});
  const std::vector<std::string> all = writes();
  const std::size_t staged = positionOf(all, "syncfs ", area("SW"));
  const std::size_t named = positionOf(all, "rename ", area("SW") + "/Manager.app");
  const std::size_t listed = positionOf(all, "rename ", area("SW") + "/Offers.plist");
  const std::size_t seen = positionOf(all, "fsync ", area("SW"));
  const std::size_t removed = positionOf(all, "rmdir ", engineFolder());
  EXPECT_LT(staged, std::min(named, listed));
  EXPECT_LT(std::max(named, listed), seen);
  EXPECT_LT(seen, removed);
  EXPECT_LT(removed, all.size() - 2);  // the last are the job file's renaming and its folder
}

TEST_F(Fault, AnInstallationLastsBeforeTheJobIsFree) {
  clear();
  runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  const std::vector<std::string> all = writes();
  std::size_t renames = 0;
  const std::size_t lasts = positionOf(all, "syncfs ", folder / "Installed.app");
  for (std::size_t i = 0; i < lasts; ++i) renames += all[i].rfind("rename ", 0) == 0 ? 1U : 0U;
  EXPECT_EQ(renames, 1U);  // "RUN", and not yet "FREE"
  EXPECT_EQ(states().back(), "FREE");
}

}  // namespace
}  // namespace kelvane
