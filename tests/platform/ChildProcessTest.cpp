#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/ChildProcess.h"
#include "platform/Exception.h"
#include "tests/platform/HeldMemory.h"
#include "tests/support/TempFolder.h"

namespace {
bool refuseRealloc = false;
std::size_t largestRealloc = 0;
}  // namespace

extern "C" void* __real_realloc(void* memory, std::size_t size);
extern "C" void* __wrap_realloc(void* memory, std::size_t size);

void* __wrap_realloc(void* memory, std::size_t size) {
  largestRealloc = std::max(largestRealloc, size);
  return refuseRealloc ? nullptr : __real_realloc(memory, size);
}

namespace kelvane::platform {
namespace {

// Shell that goes on until a signal comes; without one it ends by itself, late.
constexpr char kUntilASignal[] = "until [ $((i+=1)) -gt 20000000 ]; do :; done";

class ChildProcessTest : public ::testing::Test {
 protected:
  // An executable shell script.
  std::string script(const std::string& text) const {
    std::string path = folder.write("script", "#!/bin/sh\n" + text + "\n");
    ::chmod(path.c_str(), 0755);
    return path;
  }
  static Value outputOf(const std::string& path, const Value& arguments = Value::array()) {
    return valueOf(ChildProcess(path, arguments).readOutput());
  }
  static Value valueOf(const ChildOutput& output) {
    const auto text = output.text();
    return text ? Value(*text) : Value();
  }
  static std::string reasonOf(const Value& path) {
    try {
      const ChildProcess child(path, Value::array());
    } catch (const Exception& raised) {
      return raised.what();
    }
    return "nothing was raised";
  }

  // The signals that a child finds ignored, as bits from 1 on.
  unsigned long long ignoredByAChild() const {
    const std::string line = outputOf(script("grep SigIgn /proc/$$/status")).string();
    return std::stoull(line.substr(line.find('\t')), nullptr, 16);
  }
  static unsigned long long bit(int signal) { return 1ULL << (signal - 1); }
  static std::ptrdiff_t openFiles() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
  }
  // What the action, which may close or limit what it likes, returns in a process of its own.
  static int exitStatusOf(const std::function<int()>& action) {
    const pid_t process = ::fork();
    if (process == 0) ::_exit(action());
    int status = -1;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  // A script that closes its output after its first line, which is its process, and then lives on
  // as long as this test keeps the fifo open.
  std::string lastingScript() {
    ::mkfifo((folder / "fifo").c_str(), 0600);
    fifo_ = ::open((folder / "fifo").c_str(), O_RDWR);
    return script("echo $$; exec cat <" + (folder / "fifo") + " >/dev/null");
  }
  // Whether the signal to terminate has ended that script; without one it ends by itself here.
  bool wasTerminated(pid_t process) const {
    ::close(fifo_);
    int status = 0;
    if (::waitpid(process, &status, 0) != process) return errno == ECHILD;  // reaped already
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM;
  }

  kelvane::test::TempFolder folder;

 private:
  int fifo_ = -1;
};

TEST_F(ChildProcessTest, GivesTheWholeOutput) {
  EXPECT_EQ(outputOf(script("echo one; echo two")), Value("one\ntwo\n"));
  EXPECT_EQ(outputOf("/bin/true"), Value(""));
}

TEST_F(ChildProcessTest, GivesALargeOutput) {
  EXPECT_EQ(outputOf(script("head -c 3000000 /dev/zero | tr '\\0' x")).string(),
            std::string(3'000'000, 'x'));
}

TEST_F(ChildProcessTest, OutputOfASingleByteIsNotItsEnd) {
  // The reader is seen asleep once it has read the first byte.
  EXPECT_EQ(outputOf(script("printf a; until grep -q '^State:.S' /proc/$PPID/status; do :; done\n"
                            "printf b")),
            Value("ab"));
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
  // Each signal is sent once the reader is seen asleep, and so in the middle of a read.
  const Value output = outputOf(
      script("for i in 1 2 3; do until grep -q '^State:.S' /proc/$PPID/status; do :; done\n"
             "kill -USR1 $PPID; done; echo after"));
  ::sigaction(SIGUSR1, &before, nullptr);
  EXPECT_EQ(output, Value("after\n"));
}

TEST_F(ChildProcessTest, StandardInputEndsWithTheTermination) {
  // The reader outlives its parent, and ends when its input does.
  const std::string fifo = folder / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  ChildProcess child(script("(cat; echo end > " + fifo + ") <&0 >/dev/null & echo started"),
                     Value::array());
  EXPECT_EQ(valueOf(child.readOutput()), Value("started\n"));
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
  for (const int signal : {SIGPIPE, SIGXFSZ}) {
    ::signal(signal, SIG_IGN);
    const unsigned long long ignored = ignoredByAChild();
    ::signal(signal, SIG_DFL);
    EXPECT_EQ(ignored & bit(signal), 0U) << signal;
  }
}

TEST_F(ChildProcessTest, SignalsThatSomeoneElseIgnoresStayIgnored) {
  ::signal(SIGUSR2, SIG_IGN);
  const unsigned long long ignored = ignoredByAChild();
  ::signal(SIGUSR2, SIG_DFL);
  EXPECT_NE(ignored & bit(SIGUSR2), 0U);
}

TEST_F(ChildProcessTest, EverySignalThatSomeoneElseIgnoresStaysIgnored) {
  const int status = exitStatusOf([this] {
    unsigned long long ignored = 0;
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
      // The shell waits by one of them, and two are the worker's own.
      if (signal == SIGCHLD || signal == SIGPIPE || signal == SIGXFSZ) continue;
      if (::signal(signal, SIG_IGN) != SIG_ERR) ignored |= bit(signal);
    }
    return (ignoredByAChild() & ignored) == ignored ? 0 : 1;
  });
  EXPECT_EQ(status, 0);
}

TEST_F(ChildProcessTest, AChildThatLivesOnIsToldToEnd) {
  const std::string mark = folder / "mark";
  // It closes its output, then goes on until the signal comes.
  ChildProcess child(
      script("trap 'echo ended > " + mark + "; exit' TERM; echo x; exec 1>&-; " + kUntilASignal),
      Value::array());
  EXPECT_EQ(valueOf(child.readOutput()), Value("x\n"));
  child.terminate();
  while (::waitpid(-1, nullptr, 0) > 0) continue;  // until it has ended
  EXPECT_EQ(folder.read("mark"), "ended\n");
}

TEST_F(ChildProcessTest, AChildThatLivesOnEndsByTheSignal) {
  ChildProcess child(lastingScript(), Value::array());
  const pid_t process = std::stoi(valueOf(child.readOutput()).string());
  child.terminate();
  EXPECT_TRUE(wasTerminated(process));
}

TEST_F(ChildProcessTest, AChildIsTerminatedWithItsOwner) {
  pid_t process = -1;
  {
    ChildProcess child(lastingScript(), Value::array());
    process = std::stoi(valueOf(child.readOutput()).string());
  }
  EXPECT_TRUE(wasTerminated(process));
}

TEST_F(ChildProcessTest, ASecondTerminationTouchesNothing) {
  ChildProcess child("/bin/true", Value::array());
  child.discardOutput();
  child.terminate();
  std::vector<int> others(4);  // they take the numbers that the child's pipes had
  for (int& other : others) other = ::open("/dev/null", O_RDONLY);
  child.terminate();
  for (const int other : others) EXPECT_EQ(::close(other), 0);
}

TEST_F(ChildProcessTest, ASecondTerminationSendsNoSecondSignal) {
  // The child takes the first signal, tells so, and would be killed by a second one.
  for (const char* name : {"taken", "go"}) ASSERT_EQ(::mkfifo((folder / name).c_str(), 0600), 0);
  const int go = ::open((folder / "go").c_str(), O_RDWR);
  ChildProcess child(script("trap 'trap - TERM; echo taken > " + (folder / "taken") +
                            "; read -r l < " + (folder / "go") +
                            "; exit 5' TERM\n"
                            "echo $$; exec 1>&-; " +
                            kUntilASignal + "; echo none > " + (folder / "taken")),
                     Value::array());
  const pid_t process = std::stoi(valueOf(child.readOutput()).string());
  child.terminate();
  EXPECT_EQ(folder.read("taken"), "taken\n");
  child.terminate();
  EXPECT_EQ(::write(go, "now\n", 4), 4);
  int status = 0;
  EXPECT_EQ(::waitpid(process, &status, 0), process);
  ::close(go);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 5) << status;
}

TEST_F(ChildProcessTest, AChildThatIgnoresTheSignalIsNotWaitedFor) {
  const std::string fifo = folder / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  ChildProcess child(script("trap '' TERM; echo $$; exec 1>&-; read -r l < " + fifo),
                     Value::array());
  const pid_t process = std::stoi(valueOf(child.readOutput()).string());
  child.terminate();  // returns
  EXPECT_EQ(::waitpid(process, nullptr, WNOHANG), 0);
  ::kill(process, SIGKILL);
  EXPECT_EQ(::waitpid(process, nullptr, 0), process);
}

TEST_F(ChildProcessTest, AChildThatHasEndedIsReaped) {
  ChildProcess child(script("echo $$"), Value::array());
  const pid_t process = std::stoi(valueOf(child.readOutput()).string());
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

TEST_F(ChildProcessTest, TheWorkerHoldsOneEndOfEachPipeUntilTheTermination) {
  const auto before = openFiles();
  ChildProcess child("/bin/true", Value::array());
  EXPECT_EQ(openFiles(), before + 2);
  child.discardOutput();
  EXPECT_EQ(openFiles(), before + 2);
  child.terminate();
  EXPECT_EQ(openFiles(), before);
}

TEST_F(ChildProcessTest, AFailedStartLeavesNoFileOpen) {
  const auto before = openFiles();
  reasonOf(folder / "missing");
  EXPECT_EQ(openFiles(), before);
}

TEST_F(ChildProcessTest, StandardStreamsThatTheWorkerHasClosedAreTheChildsAllTheSame) {
  const std::string path = script("test -p /dev/stdin && test -p /dev/stdout && echo pipes");
  for (int closed = 0; closed < 8; ++closed) {
    const int status = exitStatusOf([&] {
      for (int stream = 0; stream < 3; ++stream) {
        if ((closed & (1 << stream)) != 0) ::close(stream);
      }
      return outputOf(path) == Value("pipes\n") ? 0 : 1;
    });
    EXPECT_EQ(status, 0) << "closed: " << closed;
  }
}

TEST_F(ChildProcessTest, ItsPipesNeverTakeThePlaceOfTheWorkersStandardStreams) {
  const int taken = exitStatusOf([] {
    for (int stream = 0; stream < 3; ++stream) ::close(stream);
    const ChildProcess child("/bin/true", Value::array());
    int open = 0;
    for (int stream = 0; stream < 3; ++stream) open += ::fcntl(stream, F_GETFD) == -1 ? 0 : 1;
    return open;
  });
  EXPECT_EQ(taken, 0);
}

TEST_F(ChildProcessTest, AStandardErrorThatTheWorkerHasClosedIsTheChildsNeither) {
  const int status = exitStatusOf([] {
    ::close(STDERR_FILENO);
    // 2 is the folder that it lists.
    return outputOf("/bin/ls", Value::array({"/proc/self/fd"})) == Value("0\n1\n2\n") ? 0 : 1;
  });
  EXPECT_EQ(status, 0);
}

TEST_F(ChildProcessTest, WhereNoPipeCanBeMadeTheCauseIsTold) {
  const int status = exitStatusOf([] {
    for (int file = STDERR_FILENO + 1; file < 1000; ++file) ::close(file);
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    // One file after the other is allowed, until both pipes find room.
    for (limit.rlim_cur = STDERR_FILENO + 2; limit.rlim_cur < 20; ++limit.rlim_cur) {
      ::setrlimit(RLIMIT_NOFILE, &limit);
      try {
        return outputOf("/bin/echo", Value::array({"x"})) == Value("x\n") ? 0 : 1;
      } catch (const Exception& raised) {
        const rlimit roomy = {100, limit.rlim_max};  // a sanitizer opens files to look at it
        ::setrlimit(RLIMIT_NOFILE, &roomy);
        if (raised.what() != std::string("start /bin/echo: Too many open files")) return 2;
      }
    }
    return 3;
  });
  EXPECT_EQ(status, 0);
}

TEST_F(ChildProcessTest, WhatCannotBeStartedRaisesWithPathAndCause) {
  EXPECT_EQ(reasonOf(Value()), "start: there is no path");
  EXPECT_EQ(reasonOf(folder / "missing"),
            "start " + (folder / "missing") + ": No such file or directory");
  EXPECT_EQ(reasonOf(folder.path()), "start " + folder.path() + ": Permission denied");
  const std::string plain = folder.write("plain", "text");
  EXPECT_EQ(reasonOf(plain), "start " + plain + ": Permission denied");
}

// The child would get the part before it.
TEST_F(ChildProcessTest, APathOrArgumentThatHoldsANulCharacterRaises) {
  const std::string text("a\0b", 3);
  EXPECT_THROW(argumentList("/p", {"a", text}), Exception);
  EXPECT_THROW(argumentList(text, {"a"}), Exception);
  EXPECT_EQ(argumentList("/p", {"a", Value(), text}),
            Value::array({"a"}));  // behind the list's end
  try {
    argumentList("/p", {text});
  } catch (const Exception& raised) {
    EXPECT_EQ(std::string(raised.what()),
              std::string("start: an argument holds a NUL character: a"));
  }
}

TEST_F(ChildProcessTest, DiscardedOutputIsWaitedForToItsEnd) {
  ChildProcess child(script("head -c 3000000 /dev/zero; : > " + (folder / "mark")), Value::array());
  child.discardOutput();
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"mark", "script"}));
}

TEST(ChildOutput, HoldsWhatWasAddedByteForByte) {
  ChildOutput output;
  EXPECT_EQ(output.text(), "");
  std::string all;
  for (int i = 0; i < 3000; ++i) {
    const std::string piece(static_cast<std::size_t>(i % 97), static_cast<char>('a' + i % 26));
    output.append(piece);
    all += piece;
  }
  EXPECT_EQ(output.text(), all);
}

TEST(ChildOutput, TakesHardlyMoreThanItHolds) {
  largestRealloc = 0;
  ChildOutput output;
  const std::string block(65536, 'x');
  for (int i = 0; i < 1000; ++i) output.append(block);
  EXPECT_GT(largestRealloc, 65'536'000U - 65536U);
  EXPECT_LT(largestRealloc, 65'536'000U * 9 / 8 + 65536U);
}

TEST(ChildOutput, WithoutMemoryThereIsNone) {
  ChildOutput output;
  output.append("before");
  refuseRealloc = true;
  output.append(std::string(100, 'x'));
  refuseRealloc = false;
  output.append("after");
  EXPECT_FALSE(output.isWhole());
  EXPECT_EQ(output.text(), std::nullopt);
}

TEST(ChildOutput, WhatThereIsNoRoomForLeavesItsRoomToOthers) {
  constexpr std::size_t kSize = std::size_t{8} << 20U;
  const std::size_t before = kelvane::test::heldMemory();
  ChildOutput output;
  output.append(std::string(kSize, 'x'));
  refuseRealloc = true;
  output.append("more");
  refuseRealloc = false;
  EXPECT_FALSE(output.isWhole());
  EXPECT_LT(kelvane::test::heldMemory(), before + kSize / 2);
}

TEST_F(ChildProcessTest, AListOfArgumentsEndsAtItsFirstAbsentValue) {
  EXPECT_EQ(argumentList("/p", {"a", "b"}), Value::array({"a", "b"}));
  EXPECT_EQ(argumentList("/p", {"a", Value(), "b"}), Value::array({"a"}));
  EXPECT_EQ(argumentList("/p", {Value()}), Value::array());
  EXPECT_EQ(argumentList(Value(), {"a"}), Value::array({"a"}));
  EXPECT_EQ(argumentList("/p", {"a", Value(), Value::integer(1)}), Value::array({"a"}));
  EXPECT_THROW(argumentList("/p", {"a", Value::integer(1)}), Exception);
}

}  // namespace
}  // namespace kelvane::platform
