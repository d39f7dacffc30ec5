// A program whose system calls are decided upon.

#include <cerrno>
#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include "tests/proofs/Tracer.h"
#include "tests/support/TempFolder.h"

namespace kelvane::proofs {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

// Decides upon one system call alone.
class OfOneCall : public Watcher {
 public:
  OfOneCall(long number, Decision decision) : number_(number), decision_(decision) {}

  Decision before(const Call& call) override {
    if (call.number != number_) return {};
    ofProgram.push_back(call.isOfProgram);
    const bool isShort =
        decision_.argument >= 0 && call.arguments[static_cast<std::size_t>(decision_.argument)] <=
                                       static_cast<std::uint64_t>(decision_.value);
    return isShort ? Decision{} : decision_;
  }
  void after(const Call& /*call*/, long result) override { results.push_back(result); }

  std::vector<bool> ofProgram;
  std::vector<long> results;

 private:
  long number_;
  Decision decision_;
};

class TracerTest : public ::testing::Test {
 protected:
  Traced run(const std::vector<std::string>& argv, Watcher& watcher) const {
    return trace({.argv = argv, .folder = folder.path(), .variables = {}, .out = folder / "out"},
                 allCalls(), watcher);
  }
  Traced makeFolder(Watcher& watcher) const { return run({"/bin/mkdir", "new"}, watcher); }
  bool isMade() const { return std::filesystem::exists(folder / "new"); }

  test::TempFolder folder;
};

TEST_F(TracerTest, AWatchedCallIsToldWithItsResult) {
  OfOneCall watcher(SYS_mkdir, {.kind = Decision::Kind::watch});
  EXPECT_EQ(makeFolder(watcher).exitStatus, 0);
  EXPECT_TRUE(isMade());
  EXPECT_THAT(watcher.results, ElementsAre(0));
  EXPECT_EQ(makeFolder(watcher).exitStatus, 1);
  EXPECT_THAT(watcher.results, ElementsAre(0, -EEXIST));
}

TEST_F(TracerTest, AnAnsweredCallIsNotCarriedOut) {
  OfOneCall watcher(SYS_mkdir, {.kind = Decision::Kind::answer, .value = 0});
  EXPECT_EQ(makeFolder(watcher).exitStatus, 0);
  EXPECT_FALSE(isMade());
}

TEST_F(TracerTest, ACallCanBeCarriedOutAndFailAllTheSame) {
  OfOneCall watcher(SYS_mkdir, {.kind = Decision::Kind::answerInstead, .value = -EIO});
  EXPECT_EQ(makeFolder(watcher).exitStatus, 1);
  EXPECT_TRUE(isMade());
}

TEST_F(TracerTest, AKilledProgramHasNotMadeTheCall) {
  OfOneCall watcher(SYS_mkdir, {.kind = Decision::Kind::kill});
  const Traced traced = makeFolder(watcher);
  EXPECT_EQ(traced.signal, SIGKILL);
  EXPECT_EQ(traced.exitStatus, -1);
  EXPECT_FALSE(isMade());
}

TEST_F(TracerTest, AShortenedWriteWritesLess) {
  OfOneCall watcher(SYS_write, {.kind = Decision::Kind::shorten, .value = 2, .argument = 2});
  EXPECT_EQ(run({"/bin/echo", "text"}, watcher).exitStatus, 0);
  EXPECT_EQ(folder.read("out"), "text\n");
  EXPECT_EQ(watcher.ofProgram.size(), 3U);
}

TEST_F(TracerTest, ACallOfAChildIsNoneOfTheProgram) {
  OfOneCall watcher(SYS_mkdir, {});
  EXPECT_EQ(run({"/bin/sh", "-c", "/bin/mkdir new; exit 3"}, watcher).exitStatus, 3);
  EXPECT_THAT(watcher.ofProgram, ElementsAre(false));
}

// Killed by its child's call, which is then carried out.
TEST_F(TracerTest, AChildThatOutlivesTheProgramIsNamed) {
  OfOneCall watcher(SYS_mkdir, {.kind = Decision::Kind::kill});
  const Traced traced = run({"/bin/sh", "-c", "/bin/mkdir new; exit 3"}, watcher);
  EXPECT_EQ(traced.signal, SIGKILL);
  EXPECT_THAT(traced.outlived, ElementsAre(Field(&LeftProcess::name, "mkdir")));
  EXPECT_TRUE(traced.isInTime);
  EXPECT_TRUE(isMade());
}

TEST_F(TracerTest, WhoDoesNotEndIsKilled) {
  OfOneCall watcher(SYS_mkdir, {});
  const Traced traced =
      trace({.argv = {"/bin/sh", "-c", "/bin/mkdir new; while :; do /bin/mkdir new; done"},
             .folder = folder.path(),
             .variables = {},
             .err = folder / "err",
             .patience = std::chrono::seconds(0)},
            allCalls(), watcher);
  EXPECT_FALSE(traced.isInTime);
}

TEST_F(TracerTest, PathsAreTold) {
  class Paths : public Watcher {
   public:
    Decision before(const Call& call) override {
      if (call.number == SYS_mkdir) told.push_back(pathOf(call, -1, 0));
      return {};
    }
    std::vector<std::string> told;
  };
  Paths watcher;
  EXPECT_THAT(makeFolder(watcher).outlived, IsEmpty());
  EXPECT_THAT(watcher.told, ElementsAre(folder / "new"));
}

}  // namespace
}  // namespace kelvane::proofs
