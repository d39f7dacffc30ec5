#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/ChildProcess.h"
#include "platform/Exception.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

class ChildProcessTest : public ::testing::Test {
 protected:
  // An executable shell script.
  std::string script(const std::string& text) const {
    std::string path = folder.write("script", "#!/bin/sh\n" + text + "\n");
    ::chmod(path.c_str(), 0755);
    return path;
  }
  static Value outputOf(const std::string& path, const Value& arguments = Value::array()) {
    return ChildProcess(path, arguments).readOutput();
  }
  static std::string reasonOf(const Value& path) {
    try {
      const ChildProcess child(path, Value::array());
    } catch (const Exception& raised) {
      return raised.what();
    }
    return "nothing was raised";
  }

  kelvane::testing::TempFolder folder;
};

TEST_F(ChildProcessTest, GivesTheWholeOutput) {
  EXPECT_EQ(outputOf(script("echo one; echo two")), Value("one\ntwo\n"));
  EXPECT_EQ(outputOf("/bin/true"), Value(""));
}

TEST_F(ChildProcessTest, GivesALargeOutput) {
  EXPECT_EQ(outputOf(script("head -c 3000000 /dev/zero | tr '\\0' x")).string(),
            std::string(3'000'000, 'x'));
}

TEST_F(ChildProcessTest, OutputThatIsNotUtf8IsNothing) {
  EXPECT_TRUE(outputOf(script("printf 'a\\377b'")).isNothing());
}

TEST_F(ChildProcessTest, WaitsForAGrandchildThatHoldsTheOutput) {
  // The grandchild writes once it has read a line from a pipe of its own; no time passes.
  EXPECT_EQ(outputOf(script("(read -r line; echo \"late $line\") <<END &\nx\nEND\nexit 0")),
            Value("late x\n"));
}

TEST_F(ChildProcessTest, ArgumentsArriveOneByOneAsTheyAre) {
  const Value arguments =
      Value::array({"a b", "\"q\"", "new\nline", "$(x)", "-Rf", "", "\xC3\xA9"});
  EXPECT_EQ(outputOf(script("for a in \"$@\"; do printf '<%s>' \"$a\"; done"), arguments),
            Value("<a b><\"q\"><new\nline><$(x)><-Rf><><\xC3\xA9>"));
}

TEST_F(ChildProcessTest, StandardInputIsAnOpenPipe) {
  EXPECT_EQ(outputOf(script("test -p /dev/stdin && echo pipe")), Value("pipe\n"));
}

TEST_F(ChildProcessTest, StandardInputIsOpenAndSilentWhileTheOutputLasts) {
  // A read that does not block succeeds at the end of a pipe, and fails while it is open and empty.
  EXPECT_EQ(outputOf(script("if dd iflag=nonblock count=1 of=/dev/null 2>/dev/null\n"
                            "then echo ended; else echo open; fi")),
            Value("open\n"));
}

TEST_F(ChildProcessTest, AReadInterruptedBySignalsGoesOn) {
  struct sigaction action = {};
  action.sa_handler = [](int) {};  // without SA_RESTART: a blocked read returns
  struct sigaction before = {};
  ::sigaction(SIGUSR1, &action, &before);
  const Value output = outputOf(
      script("i=0; while [ $i -lt 300 ]; do kill -USR1 $PPID; i=$((i+1)); done; echo after"));
  ::sigaction(SIGUSR1, &before, nullptr);
  EXPECT_EQ(output, Value("after\n"));
}

TEST_F(ChildProcessTest, StandardInputEndsWithTheTermination) {
  // The reader outlives its parent, and ends when its input does.
  const std::string fifo = folder / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  ChildProcess child(script("(cat; echo end > " + fifo + ") <&0 >/dev/null & echo started"),
                     Value::array());
  EXPECT_EQ(child.readOutput(), Value("started\n"));
  child.terminate();
  EXPECT_EQ(folder.read("fifo"), "end\n");  // blocks until the reader has seen the end
}

TEST_F(ChildProcessTest, ItHasNoOtherFilesOfTheWorker) {
  const int inherited = ::open("/dev/null", O_RDONLY);  // without close-on-exec
  const int high = ::fcntl(inherited, F_DUPFD, 50);
  const Value listed = outputOf("/bin/ls", Value::array({"/proc/self/fd"}));
  ::close(high);
  ::close(inherited);
  EXPECT_EQ(listed, Value("0\n1\n2\n3\n"));  // 3 is the folder that it lists
}

TEST_F(ChildProcessTest, ItHasTheEnvironmentAndTheCurrentFolder) {
  ::setenv("KELVANE_TEST_VALUE", "a value", 1);
  EXPECT_EQ(outputOf(script("echo $KELVANE_TEST_VALUE")), Value("a value\n"));
  ::unsetenv("KELVANE_TEST_VALUE");
  std::string here(4096, '\0');
  ASSERT_NE(::getcwd(here.data(), here.size()), nullptr);
  EXPECT_EQ(outputOf("/bin/pwd"), Value(std::string(here.c_str()) + "\n"));
}

TEST_F(ChildProcessTest, SignalsThatTheWorkerIgnoresAreItsOwnAffair) {
  ::signal(SIGPIPE, SIG_IGN);
  const Value output = outputOf(script("grep SigIgn /proc/$$/status"));
  ::signal(SIGPIPE, SIG_DFL);
  const unsigned long long ignored =
      std::stoull(output.string().substr(output.string().find('\t')), nullptr, 16);
  EXPECT_EQ(ignored & (1ULL << (SIGPIPE - 1)), 0U) << output.string();
}

TEST_F(ChildProcessTest, AChildThatLivesOnIsToldToEnd) {
  const std::string mark = folder / "mark";
  const std::string fifo = folder / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  // It closes its output, then blocks in a system call until the signal comes.
  ChildProcess child(
      script("trap 'echo ended > " + mark + "; exit' TERM; echo x; exec 1>&-; read -r l < " + fifo),
      Value::array());
  EXPECT_EQ(child.readOutput(), Value("x\n"));
  child.terminate();
  while (::waitpid(-1, nullptr, 0) > 0) continue;  // until it has ended
  EXPECT_EQ(folder.read("mark"), "ended\n");
}

TEST_F(ChildProcessTest, AChildThatIgnoresTheSignalIsNotWaitedFor) {
  const std::string fifo = folder / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  ChildProcess child(script("trap '' TERM; echo $$; exec 1>&-; read -r l < " + fifo),
                     Value::array());
  const pid_t process = std::stoi(child.readOutput().string());
  child.terminate();  // returns
  EXPECT_EQ(::waitpid(process, nullptr, WNOHANG), 0);
  ::kill(process, SIGKILL);
  EXPECT_EQ(::waitpid(process, nullptr, 0), process);
}

TEST_F(ChildProcessTest, AChildThatHasEndedIsReaped) {
  ChildProcess child(script("echo $$"), Value::array());
  const pid_t process = std::stoi(child.readOutput().string());
  siginfo_t info = {};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOWAIT), 0);
  child.terminate();
  EXPECT_EQ(::waitpid(process, nullptr, WNOHANG), -1);  // no such child any more
}

TEST_F(ChildProcessTest, NoFileStaysOpen) {
  const int before = ::open("/dev/null", O_RDONLY);
  ::close(before);
  for (int i = 0; i < 3; ++i) outputOf("/bin/true");
  const int after = ::open("/dev/null", O_RDONLY);
  ::close(after);
  EXPECT_EQ(after, before);
}

TEST_F(ChildProcessTest, WhatCannotBeStartedRaisesWithPathAndCause) {
  EXPECT_EQ(reasonOf(Value()), "start: there is no path");
  EXPECT_EQ(reasonOf(folder / "missing"),
            "start " + (folder / "missing") + ": No such file or directory");
  EXPECT_EQ(reasonOf(folder.path()), "start " + folder.path() + ": Permission denied");
  const std::string plain = folder.write("plain", "text");
  EXPECT_EQ(reasonOf(plain), "start " + plain + ": Permission denied");
}

TEST_F(ChildProcessTest, AListOfArgumentsEndsAtItsFirstAbsentValue) {
  EXPECT_EQ(argumentList({"a", "b"}), Value::array({"a", "b"}));
  EXPECT_EQ(argumentList({"a", Value(), "b"}), Value::array({"a"}));
  EXPECT_EQ(argumentList({Value()}), Value::array());
  EXPECT_EQ(argumentList({"a", Value(), Value::integer(1)}), Value::array({"a"}));
  EXPECT_THROW(argumentList({"a", Value::integer(1)}), Exception);
}

}  // namespace
}  // namespace kelvane::platform
