// Starting real, small child processes.

#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "console/job/ExitCode.h"
#include "console/job/Worker.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

// Returns when a child has ended, without taking its status.
void awaitAChild() {
  siginfo_t info = {};
  ASSERT_EQ(::waitid(P_ALL, 0, &info, WEXITED | WNOWAIT), 0);
}

// The file is the standard input while this lives.
class StandardInput {
 public:
  explicit StandardInput(const std::string& path) : kept_(::dup(STDIN_FILENO)) {
    const int file = ::open(path.c_str(), O_RDONLY);
    ::dup2(file, STDIN_FILENO);
    ::close(file);
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;
  ~StandardInput() {
    ::dup2(kept_, STDIN_FILENO);
    ::close(kept_);
  }

 private:
  int kept_;
};

class WorkerTest : public ::testing::Test {
 protected:
  std::string script(const std::string& text) const {
    std::string path = folder.write("worker", "#!/bin/sh\n" + text);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }
  // Runs the script to its end and returns how that was.
  std::string endingOf(const std::string& text) const {
    WorkerProcess worker({script(text), "18", folder / "", false});
    awaitAChild();
    EXPECT_TRUE(worker.hasEnded());
    EXPECT_TRUE(worker.hasEnded());  // asked again, the same
    return worker.ending();
  }
  std::string reasonOfNotStarting(const std::string& path) const {
    try {
      WorkerProcess worker({path, "18", folder / "", false});
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.exitCode(), kWorkerFailed);
      return failure.what();
    }
    return "started";
  }

  test::TempFolder folder;
};

TEST_F(WorkerTest, StartsAProgramAndSeesItsEnd) {
  WorkerProcess worker({"/bin/true", "18", folder / "", false});
  EXPECT_EQ(worker.ending(), "");
  awaitAChild();
  EXPECT_TRUE(worker.hasEnded());
  EXPECT_EQ(worker.ending(), "exit status 0");
}

TEST_F(WorkerTest, RunningWorkerHasNotEnded) {
  const std::string gate = folder / "gate";
  ASSERT_EQ(::mkfifo(gate.c_str(), 0600), 0);
  WorkerProcess worker({script("read line < " + gate), "18", folder / "", false});
  EXPECT_FALSE(worker.hasEnded());
  folder.write("gate", "go\n");
  awaitAChild();
  EXPECT_TRUE(worker.hasEnded());
}

TEST_F(WorkerTest, TellsHowItEnded) {
  EXPECT_EQ(endingOf("exit 127"), "exit status 127");
  EXPECT_EQ(endingOf("kill -9 $$"), "signal 9");
}

TEST_F(WorkerTest, GetsLogIdAndSharedFolder) {
  endingOf("printf '%s|' $# \"$@\" > \"$2seen\"");
  EXPECT_EQ(folder.read("seen"), "2|18|" + (folder / "") + "|");
}

TEST_F(WorkerTest, LeadsASessionOfItsOwn) {
  endingOf("read stat < /proc/$$/stat; set -- $stat \"$2\"; echo $1 $6 > \"${0%worker}seen\"");
  const std::string seen = folder.read("seen");
  const std::string process = seen.substr(0, seen.find(' '));
  EXPECT_EQ(seen, process + " " + process + "\n");
  EXPECT_NE(process, std::to_string(::getsid(0)));
}

TEST_F(WorkerTest, DoesNotReadWhatIsTypedToTheConsole) {
  const StandardInput typed(folder.write("typed", "typed to the console"));
  endingOf("cat > \"$2seen\"");
  EXPECT_TRUE(std::filesystem::exists(folder / "seen"));
  EXPECT_EQ(folder.read("seen"), "");
}

TEST_F(WorkerTest, ItsOutputIsDiscarded) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  endingOf("echo out; echo error >&2");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(WorkerTest, StandardErrorGoesToTheFileThatIsNamed) {
  const std::string kept = folder.write("kept", "");
  WorkerProcess worker({script("echo out; echo one >&2; /bin/sh -c 'echo two >&2'"), "18",
                        folder / "", false, kept});
  awaitAChild();
  EXPECT_TRUE(worker.hasEnded());
  EXPECT_EQ(folder.read("kept"), "one\ntwo\n");
}

TEST_F(WorkerTest, OutputComesOutWhereAskedFor) {
  ::testing::internal::CaptureStdout();
  WorkerProcess worker({script("echo out"), "18", folder / "", true});
  awaitAChild();
  EXPECT_TRUE(worker.hasEnded());
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "out\n");
}

TEST_F(WorkerTest, MissingProgramCannotBeStarted) {
  EXPECT_EQ(reasonOfNotStarting(folder / "none"),
            "start " + (folder / "none") + ": No such file or directory");
}

TEST_F(WorkerTest, FileThatIsNotExecutableCannotBeStarted) {
  const std::string path = folder.write("data", "#!/bin/sh\n");
  EXPECT_EQ(reasonOfNotStarting(path), "start " + path + ": Permission denied");
}

}  // namespace
}  // namespace kelvane::console
