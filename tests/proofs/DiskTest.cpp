// What may be left of files after a power failure, by how they were written.

#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/proofs/Disk.h"

namespace kelvane::proofs {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

constexpr char kGone[] = "(gone)";

const Tree kOld = {{"folder", {Entry::Kind::folder, 0, ""}},
                   {"folder/file", {Entry::Kind::file, 0, "old"}}};

// What the name of the file may show.
std::set<std::string> shownBy(const Disk& disk, const std::string& path = "folder/file") {
  std::set<std::string> shown;
  disk.afterPowerLoss([&](const Disk::State& state) {
    const auto found = state.tree.find(path);
    shown.insert(found == state.tree.end() ? kGone : found->second.bytes);
  });
  return shown;
}

std::string sectors(std::size_t count, char character) {
  return std::string(count * 512, character);
}

TEST(Disk, WhatWasThereBeforeLasts) { EXPECT_THAT(shownBy(Disk(kOld)), ElementsAre("old")); }

TEST(Disk, AReplacementThatIsSynchronisedIsOldOrNew) {
  Disk disk(kOld);
  disk.makeFile("folder/new");
  disk.write("folder/new", 0, sectors(4, 'n'));
  disk.synchronise("folder/new");
  EXPECT_THAT(shownBy(disk), ElementsAre("old"));
  disk.rename("folder/new", "folder/file");
  EXPECT_THAT(shownBy(disk), UnorderedElementsAre("old", sectors(4, 'n')));
  disk.synchronise("folder");
  EXPECT_THAT(shownBy(disk), ElementsAre(sectors(4, 'n')));
}

TEST(Disk, AReplacementThatIsNotSynchronisedMayBeEmptyOrTorn) {
  Disk disk(kOld);
  disk.makeFile("folder/new");
  disk.write("folder/new", 0, sectors(4, 'n'));
  disk.rename("folder/new", "folder/file");
  const std::string half = sectors(2, '\0');
  EXPECT_THAT(shownBy(disk),
              UnorderedElementsAre("old", "", sectors(4, '\0'), sectors(2, 'n') + half,
                                   half + sectors(2, 'n'), sectors(4, 'n')));
}

TEST(Disk, AFileThatIsRemovedFirstMayBeGone) {
  Disk disk(kOld);
  disk.makeFile("folder/new");
  disk.write("folder/new", 0, "new");
  disk.synchronise("folder/new");
  disk.remove("folder/file");
  disk.rename("folder/new", "folder/file");
  EXPECT_THAT(shownBy(disk), Contains(kGone));
}

TEST(Disk, AFileThatIsWrittenInItsPlaceMayBeTorn) {
  Disk disk(kOld);
  disk.resize("folder/file", 0);
  disk.write("folder/file", 0, "new");
  EXPECT_THAT(shownBy(disk), UnorderedElementsAre("old", "", std::string(3, '\0'), "new"));
}

TEST(Disk, ALaterNameMayBeThereWithoutAnEarlierOne) {
  Disk disk(kOld);
  disk.makeFile("folder/first");
  disk.makeFile("folder/second");
  std::set<std::pair<bool, bool>> seen;
  disk.afterPowerLoss([&](const Disk::State& state) {
    seen.emplace(state.tree.contains("folder/first"), state.tree.contains("folder/second"));
  });
  EXPECT_EQ(seen.size(), 4U);
}

TEST(Disk, InOrderALaterNameIsNeverThereWithoutAnEarlierOne) {
  Disk disk(kOld);
  disk.makeFile("folder/first");
  disk.makeFile("folder/second");
  std::set<std::pair<bool, bool>> seen;
  disk.afterPowerLoss([&](const Disk::State& state) {
    const Tree& tree = state.tree;
    if (state.isInOrder)
      seen.emplace(tree.contains("folder/first"), tree.contains("folder/second"));
  });
  EXPECT_EQ(seen, (std::set<std::pair<bool, bool>>{{false, false}, {true, false}, {true, true}}));
}

TEST(Disk, OfManyNamesEachMayBeTheOnlyOneOrTheMissingOne) {
  Disk disk(kOld);
  for (int i = 0; i < 10; ++i) disk.makeFile("folder/" + std::to_string(i));
  std::set<std::size_t> counts;
  disk.afterPowerLoss(
      [&](const Disk::State& state) { counts.insert(state.tree.size() - kOld.size()); });
  for (const std::size_t count : {0U, 1U, 5U, 9U, 10U}) EXPECT_THAT(counts, Contains(count));
}

TEST(Disk, AFolderThatIsMovedTakesAlongWhatIsInIt) {
  Disk disk(kOld);
  disk.makeFile("folder/more");
  disk.rename("folder", "moved");
  EXPECT_TRUE(disk.exists("moved/more"));
  EXPECT_FALSE(disk.exists("folder/file"));
  disk.synchroniseAll();
  EXPECT_THAT(shownBy(disk, "moved/file"), ElementsAre("old"));
  EXPECT_THAT(shownBy(disk, "moved/more"), ElementsAre(""));
}

TEST(Disk, AfterTheWholeIsSynchronisedAllLasts) {
  Disk disk(kOld);
  disk.makeFolder("folder/deep");
  disk.makeFile("folder/deep/file");
  disk.write("folder/deep/file", 0, "new");
  disk.makeLink("folder/link", "file");
  disk.synchroniseAll();
  EXPECT_THAT(shownBy(disk, "folder/deep/file"), ElementsAre("new"));
  EXPECT_THAT(shownBy(disk, "folder/link"), ElementsAre("file"));
}

TEST(Disk, WhatIsAppendedNeverTouchesWhatLasts) {
  Disk disk(kOld);
  disk.write("folder/file", 3, sectors(4, 'n'));
  EXPECT_THAT(shownBy(disk), Each(::testing::StartsWith("old")));
  EXPECT_THAT(shownBy(disk), Not(ElementsAre("old")));
}

}  // namespace
}  // namespace kelvane::proofs
