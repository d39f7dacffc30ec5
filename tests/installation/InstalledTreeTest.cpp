// A bundle with every component in it: each program finds what it needs, wherever the bundle is.

#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/File.h"
#include "tests/installation/Elf.h"
#include "tests/installation/InstalledTree.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAreArray;

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

void installEverything(const std::string& prefix) {
  for (const char* component : {"worker", "console", "simulators", "documentation"}) {
    installComponent(component, prefix);
  }
}

// Of one bundle, which is made once and only looked at.
class InstalledTree : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    bundle = std::make_unique<TempFolder>(".app");
    installEverything(bundle->path());
  }
  static void TearDownTestSuite() { bundle.reset(); }
  static std::string path(const std::string& name) { return *bundle / name; }

  // The paths of the programs and libraries.
  static Names binaries() {
    Names found;
    for (const std::string& name : binariesBelow(bundle->path())) found.push_back(path(name));
    return found;
  }
  static Names programsBelow(const std::string& folder) {
    Names found = binariesBelow(folder);
    std::erase_if(found, [](const std::string& name) { return name.find(".so") != name.npos; });
    return found;
  }
  // What it needs beyond the system's runtime.
  static Names neededBeyondRuntime(const std::string& path) {
    Names needed = neededLibraries(path);
    std::erase_if(needed, isSystemRuntime);
    return needed;
  }
  static Names broughtAlong() { return bundle->names("Contents/Frameworks"); }

  static inline std::unique_ptr<TempFolder> bundle;
};

TEST_F(InstalledTree, TheWorkerNeedsZorapiAndWhatItBringsAlong) {
  EXPECT_THAT(neededBeyondRuntime(path("Contents/Resources/Kelvane")),
              UnorderedElementsAreArray(broughtAlong()));
  EXPECT_THAT(broughtAlong(), Contains("libZORAPI.so"));
}

#ifdef KELVANE_RUNTIME_LINKED_IN
TEST_F(InstalledTree, TheWorkerAndTheFrameworkHaveTheCxxRuntimeInThem) {
  for (const char* name : {"Contents/Resources/Kelvane", "Contents/Frameworks/libZORAPI.so"}) {
    EXPECT_THAT(neededLibraries(path(name)), Not(Contains(StartsWith("libstdc++")))) << name;
    EXPECT_THAT(neededLibraries(path(name)), Not(Contains(StartsWith("libgcc_s")))) << name;
  }
}

TEST_F(InstalledTree, TheWorkerLoadsNoSecondCxxRuntime) {
  EXPECT_THAT(loadedLibraries(path("Contents/Resources/Kelvane")),
              Not(Contains(Key(StartsWith("libstdc++")))));
}
#endif

TEST_F(InstalledTree, NothingNeedsMoreThanTheRuntimeAndWhatIsBroughtAlong) {
  for (const std::string& binary : binaries()) {
    for (const std::string& library : neededBeyondRuntime(binary)) {
      EXPECT_THAT(broughtAlong(), Contains(library)) << binary;
    }
  }
}

TEST_F(InstalledTree, TheConsoleNeedsTheRuntimeAlone) {
  EXPECT_THAT(neededBeyondRuntime(path("bin/kelvane-console")), IsEmpty());
}

TEST_F(InstalledTree, WhatIsBroughtAlongIsAFileUnderTheNameThatIsAskedFor) {
  for (const std::string& name : broughtAlong()) {
    const std::string library = path("Contents/Frameworks/" + name);
    EXPECT_FALSE(fs::is_symlink(library)) << name;
    EXPECT_EQ(libraryName(library), name);
  }
}

TEST_F(InstalledTree, LibrariesAreFoundInTheBundleAlsoWhenItHasMoved) {
  const TempFolder elsewhere;
  const fs::path moved = elsewhere / "Moved Manager.app";
  installEverything(elsewhere / "Manager.app");
  fs::rename(elsewhere / "Manager.app", moved);
  const Names programs = programsBelow(moved);
  EXPECT_THAT(programs, SizeIs(5));
  for (const std::string& program : programs) {
    for (const auto& [library, found] : loadedLibraries(moved / program)) {
      const bool isInBundle = found == moved / "Contents/Frameworks" / library;
      EXPECT_EQ(isInBundle, !isSystemRuntime(library)) << program << ": " << library << found;
      EXPECT_NE(found, "") << program << ": " << library;
    }
  }
}

TEST_F(InstalledTree, LibrariesAreLookedForRelativeToTheProgram) {
  for (const std::string& binary : binaries()) {
    EXPECT_THAT(runPaths(binary), Each(StartsWith("$ORIGIN/"))) << binary;
  }
}

const Names kPlacesOfTheBuild = {KELVANE_BUILD, KELVANE_SOURCES};

TEST_F(InstalledTree, NothingNamesThePlaceWhereItWasBuilt) {
  for (const std::string& binary : binaries()) {
    const std::string bytes = platform::readFile(binary);
    for (const std::string& place : kPlacesOfTheBuild) {
      EXPECT_EQ(bytes.find(place), bytes.npos) << binary << ": " << place;
    }
  }
}

TEST_F(InstalledTree, EveryPageIsInTheDocumentation) {
  const Names installed = filesBelow(path("share/doc/kelvane"));
  for (const std::string folder : {"docs/", "docs/integration/"}) {
    for (const auto& page : fs::directory_iterator(KELVANE_SOURCES + folder)) {
      if (page.is_directory()) continue;
      EXPECT_THAT(installed, Contains(folder + page.path().filename().string()));
    }
  }
  EXPECT_THAT(installed, Contains("README.md"));
}

}  // namespace
}  // namespace kelvane::test
