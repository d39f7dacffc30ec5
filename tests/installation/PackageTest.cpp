// The packages: what is in them, and that they can be unpacked, installed, used and removed.

#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/File.h"
#include "tests/installation/Elf.h"
#include "tests/installation/InstalledTree.h"
#include "tests/installation/Package.h"
#include "tests/support/LogLine.h"

namespace kelvane::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAreArray;

namespace fs = std::filesystem;

constexpr char kProductSettings[] = R"({"online_update_plist_name": "Offers"})";
constexpr char kDescription[] = R"({"packages": [
    {"product": "fw3", "version": "2.4.0", "files": {"FW_T3.img": "FW_T3.img"}}]})";

// Uses a package that stands below the prefix, as an integrator would.
class User {
 public:
  explicit User(const std::string& prefix) : prefix_(prefix) {}

  void asksForHelp() const {
    EXPECT_THAT(outputOf({prefix_ + "/bin/kelvane-console", "--help"}), HasSubstr("update-fw"));
  }
  void makesAService() const {
    folder_.write("description.json", kDescription);
    outputOf({prefix_ + "/bin/make-image", "standard", "--product", "0x43", "--firmware", "2.4.0",
              "FW_T3.img"});
    outputOf({prefix_ + "/bin/make-service", "description.json", "service"});
  }
  // The engine's place is an application's bundle, beside its settings.
  void downloadsFromTheService() const {
    fs::copy(prefix_ + "/lib/kelvane/Contents", folder_ / "Contents", fs::copy_options::recursive);
    folder_.write("Contents/Resources/Config/setting.json", kProductSettings);
    outputOf({folder_ / "Contents/Resources/EngineRunner", "run", "-productid", "fw3", "-version",
              "1.0", "-url", folder_ / "service", "-folder", folder_ / "download"});
    EXPECT_THAT(folder_.names("download"), ElementsAre("FW_T3.img", "Offers.plist"));
  }

 private:
  std::string outputOf(const std::vector<std::string>& argv) const {
    const Ended ended = runProgram(argv, folder_.path(), {{"LD_LIBRARY_PATH", ""}});
    EXPECT_EQ(ended.exitStatus, 0) << argv.at(0) << ": " << ended.err;
    return ended.out;
  }

  std::string prefix_;
  TempFolder folder_;
};

void use(const std::string& prefix) {
  const User user(prefix);
  user.asksForHelp();
  user.makesAService();
  user.downloadsFromTheService();
}

TEST(TarPackage, IsUsedWhereverItIsUnpacked) {
  const Package package("TGZ");
  const TempFolder folder;
  const Ended unpacked = runProgram({"/bin/tar", "-xzf", package.path(), "-C", folder.path()}, "/");
  ASSERT_EQ(unpacked.exitStatus, 0) << unpacked.err;
  ASSERT_THAT(folder.names(), ElementsAre(StartsWith("kelvane-" KELVANE_VERSION "-")));
  use(folder / folder.names().at(0));
}

#ifdef KELVANE_GIT
TEST(SourceArchive, HoldsWhatGitHasOfTheLastCommit) {
  const Package archive("SOURCE");
  const TempFolder folder;
  const Ended unpacked = runProgram({"/bin/tar", "-xzf", archive.path(), "-C", folder.path()}, "/");
  ASSERT_EQ(unpacked.exitStatus, 0) << unpacked.err;
  ASSERT_THAT(folder.names(), ElementsAre("kelvane-" KELVANE_VERSION));
  const Ended tracked =
      runProgram({KELVANE_GIT, "-C", KELVANE_SOURCES, "ls-tree", "-r", "--name-only", "HEAD"}, "/");
  ASSERT_EQ(tracked.exitStatus, 0) << tracked.err;
  EXPECT_THAT(filesBelow(folder / folder.names().at(0)),
              UnorderedElementsAreArray(splitLines(tracked.out)));
}
#endif

// Of one package, which is made once and only looked at.
class DebianPackage : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { package = std::make_unique<Package>("DEB"); }
  static void TearDownTestSuite() { package.reset(); }

  std::string ask(const std::string& action, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> argv = {KELVANE_DPKG_DEB, action, package->path()};
    argv.insert(argv.end(), more.begin(), more.end());
    const Ended ended = runProgram(argv, "/", {{"LC_ALL", "C"}});
    EXPECT_EQ(ended.exitStatus, 0) << ended.err;
    return ended.out;
  }
  std::string field(const std::string& name) const {
    const std::string line = ask("--field", {name});
    return line.substr(0, line.find('\n'));
  }

  static inline std::unique_ptr<Package> package;
};

TEST_F(DebianPackage, IsInstalledUsedAndRemovedWithoutALeftover) {
  const DebianRoot root;
  const Ended installed = root.install(package->path());
  ASSERT_EQ(installed.exitStatus, 0) << installed.err;
  EXPECT_THAT(root.packages(), ElementsAre("kelvane"));
  use(root / "usr");
  const Ended purged = root.purge("kelvane");
  EXPECT_EQ(purged.exitStatus, 0) << purged.err;
  EXPECT_THAT(root.names(), IsEmpty());
  EXPECT_THAT(root.packages(), IsEmpty());
}

TEST_F(DebianPackage, HoldsConsoleSimulatorsAndDocumentationButNoWorker) {
  const TempFolder folder;
  ask("--extract", {folder.path()});
  const std::vector<std::string> files = filesBelow(folder.path());
  EXPECT_THAT(files, IsSupersetOf({"usr/bin/kelvane-console",
                                   "usr/bin/make-image",
                                   "usr/bin/make-service",
                                   "usr/lib/kelvane/bin/make-image",
                                   "usr/lib/kelvane/bin/make-service",
                                   "usr/lib/kelvane/Contents/Frameworks/libZORAPI.so",
                                   "usr/lib/kelvane/Contents/Resources/EngineRunner",
                                   "usr/share/doc/kelvane/README.md",
                                   "usr/share/doc/kelvane/copyright",
                                   "usr/share/doc/kelvane/changelog.gz",
                                   "usr/share/doc/kelvane/third-party/console.cdx.json",
                                   "usr/share/doc/kelvane/third-party/console-notices.txt",
                                   "usr/share/doc/kelvane/third-party/simulators.cdx.json",
                                   "usr/share/doc/kelvane/third-party/simulators-notices.txt",
                                   "usr/share/man/man1/kelvane-console.1.gz",
                                   "usr/share/man/man1/make-image.1.gz",
                                   "usr/share/man/man1/make-service.1.gz",
                                   "usr/share/man/man5/kelvane-job-file.5.gz",
                                   "usr/share/bash-completion/completions/kelvane-console",
                                   "usr/share/zsh/site-functions/_kelvane-console",
                                   "usr/share/fish/vendor_completions.d/kelvane-console.fish"}));
  EXPECT_THAT(files, Not(Contains(EndsWith("/Kelvane"))));
  EXPECT_THAT(files, Not(Contains(HasSubstr("Kelvane.1"))));
}

TEST_F(DebianPackage, IsForAllWhateverTheUmaskOfWhoeverMadeIt) {
  for (const std::string& line : splitLines(ask("--contents"))) {
    EXPECT_THAT(line.substr(0, line.find(' ')), MatchesRegex("drwxr-xr-x|lrwxrwxrwx|-rw.r-.r-."));
    EXPECT_THAT(line, HasSubstr(" root/root "));
  }
}

TEST_F(DebianPackage, SaysWhatItIs) {
  EXPECT_EQ(field("Package"), "kelvane");
  EXPECT_EQ(field("Version"), KELVANE_VERSION);
  EXPECT_EQ(field("Maintainer"), "Kelvane developers <developers@kelvane.example>");
  EXPECT_EQ(field("Description"), "Console and simulators for the Kelvane enclosure worker");
}

// The Debian package that a library of the system's runtime is from.
std::string packageOf(const std::string& library) {
  if (library == "libstdc++.so.6") return "libstdc++6";
  if (library == "libgcc_s.so.1") return "libgcc-s1";
  return "libc6";
}

TEST_F(DebianPackage, DependsOnThePackagesOfTheLibrariesThatItsProgramsNeed) {
  const TempFolder folder;
  ask("--extract", {folder.path()});
  const std::string depends = field("Depends");
  for (const std::string& file : binariesBelow(folder.path())) {
    for (const std::string& library : neededLibraries(folder / file)) {
      if (platform::exists(folder / ("usr/lib/kelvane/Contents/Frameworks/" + library))) continue;
      EXPECT_TRUE(isSystemRuntime(library)) << file << ": " << library;
      EXPECT_THAT(depends, HasSubstr(packageOf(library) + " (>= ")) << file << ": " << library;
    }
  }
}

}  // namespace
}  // namespace kelvane::test
