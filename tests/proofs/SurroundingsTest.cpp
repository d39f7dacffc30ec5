// The worker where it is not as it should be: streams that are closed, files that are none, folders
// that refuse, limits that are low. It always ends, with 0 where it could start at all, and the job
// file is whole.

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/proofs/JobWatcher.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/Program.h"

namespace kelvane::proofs {
namespace {

namespace fs = std::filesystem;

constexpr int kNotStarted = 127;  // by the system's loader

// Sees whom the worker tells to end.
class EndWatcher : public JobWatcher {
 public:
  using JobWatcher::JobWatcher;
  std::set<pid_t> toldToEnd;

 protected:
  Decision decide(const Call& call) override {
    if (call.isOfProgram && call.number == SYS_kill) {
      toldToEnd.insert(static_cast<pid_t>(call.arguments[0]));
    }
    return {};
  }
};

class Surroundings : public ::testing::TestWithParam<std::string> {
 protected:
  Traced run(const std::function<void()>& prepare = {}) {
    Command command = world.command();
    command.prepare = prepare;
    EndWatcher watcher(world);
    std::vector<long> calls = fewCalls();
    calls.push_back(SYS_kill);
    Traced traced = trace(command, calls, watcher);
    EXPECT_TRUE(traced.isInTime);
    for (const LeftProcess& left : traced.outlived) {
      EXPECT_TRUE(watcher.toldToEnd.contains(left.process)) << left.name << " is left running";
    }
    last = watcher.last(kJobFilePath);
    return traced;
  }
  // The worker runs to its end, and the job file is the version that it put in place last.
  void expectAnEnd(const std::function<void()>& prepare = {}) {
    const Traced traced = run(prepare);
    EXPECT_EQ(traced.signal, 0);
    EXPECT_EQ(traced.exitStatus, 0);
    EXPECT_EQ(jobFile(), last);
  }
  // Nothing is written at all.
  void expectAWaitingJob(const std::function<void()>& prepare = {}) {
    expectAnEnd(prepare);
    EXPECT_EQ(jobFile(), bytesOf(world.before(), kJobFilePath));
  }
  void expectTheUsual(const Baseline& baseline, const std::function<void()>& prepare = {}) {
    expectAnEnd(prepare);
    EXPECT_EQ(difference(outcomeOf(baseline.after), outcomeOf(world.now())), "");
  }
  std::string jobFile() const { return world.folder.read(kJobFilePath); }
  std::string path(const char* name) const { return world.folder / name; }
  // An ordinary user may do there all that nobody is forbidden later.
  void giveToEveryone() const {
    ::chmod(world.bundle.path().c_str(), 0755);
    for (const auto& [name, entry] : world.before()) {
      if (entry.kind != Entry::Kind::link) ::chmod(path(name.c_str()).c_str(), 0777);
    }
    ::chmod(world.path().c_str(), 0777);
  }

  World world{scenarioNamed(GetParam())};
  std::string last;
};

INSTANTIATE_TEST_SUITE_P(Of, Surroundings,
                         ::testing::Values("query", "download", "installation", "standard",
                                           "qvxf"));

void limit(decltype(RLIMIT_AS) what, rlim_t size) {
  const rlimit both = {size, size};
  ::setrlimit(what, &both);
}

void makeSocket(const std::string& path) {
  // A socket's path is short; this one is not.
  const fs::path before = fs::current_path();
  fs::current_path(fs::path(path).parent_path());
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  fs::path(path).filename().string().copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ::close(socket);
  fs::current_path(before);
}

// What stands in a file's place, and is none.
struct Other {
  const char* name;
  std::function<void(const std::string& path)> make;
};

const std::vector<Other>& others() {
  static const std::vector<Other> all = {
      {"folder", [](const std::string& path) { fs::create_directory(path); }},
      {"pipe", [](const std::string& path) { ::mkfifo(path.c_str(), 0600); }},
      {"socket", makeSocket},
      {"device without bytes",
       [](const std::string& path) { fs::create_symlink("/dev/null", path); }},
      {"device without end",
       [](const std::string& path) { fs::create_symlink("/dev/zero", path); }},
      {"full device", [](const std::string& path) { fs::create_symlink("/dev/full", path); }},
      {"link to nothing", [](const std::string& path) { fs::create_symlink("nothing", path); }},
      {"link in a circle", [](const std::string& path) { fs::create_symlink(path, path); }}};
  return all;
}

// Its kind, where it leads, and what it holds, without opening it.
std::string shapeOf(const std::string& path) {
  std::string shape = std::to_string(static_cast<int>(fs::symlink_status(path).type()));
  if (fs::is_symlink(path)) shape += fs::read_symlink(path).string();
  std::error_code noFolder;
  for (const auto& entry : fs::directory_iterator(path, noFolder)) shape += entry.path().string();
  return shape;
}

// --- standard streams

TEST_P(Surroundings, ClosedStandardStreamsChangeNothing) {
  const Baseline baseline = baselineOf(world);
  for (int closed = 1; closed < 8; ++closed) {
    world.reset();
    SCOPED_TRACE(closed);
    expectTheUsual(baseline, [closed] {
      for (int stream = 0; stream < 3; ++stream) {
        if ((closed >> stream & 1) != 0) ::close(stream);
      }
    });
  }
}

// --- the job file

TEST_P(Surroundings, AJobFileThatIsNoFileIsLeftAlone) {
  for (const Other& other : others()) {
    SCOPED_TRACE(other.name);
    world.reset();
    fs::remove(path(kJobFilePath));
    other.make(path(kJobFilePath));
    const auto before = fs::symlink_status(path(kJobFilePath)).type();
    EXPECT_EQ(run().exitStatus, 0);
    EXPECT_EQ(fs::symlink_status(path(kJobFilePath)).type(), before);
    EXPECT_EQ(world.folder.names(kJobFolder).size(), 1U);
    fs::remove(path(kJobFilePath));
  }
}

TEST_P(Surroundings, AJobFileThatIsALinkIsReplacedWhereItLeads) {
  const Baseline baseline = baselineOf(world);
  world.reset();
  fs::rename(path(kJobFilePath), path("elsewhere.json"));
  fs::create_symlink(path("elsewhere.json"), path(kJobFilePath));
  EXPECT_EQ(run().exitStatus, 0);
  EXPECT_TRUE(fs::is_symlink(path(kJobFilePath)));
  EXPECT_EQ(world.folder.read("elsewhere.json"), baseline.jobFiles.back());
}

TEST_P(Surroundings, AJobFileThatMayNotBeReadIsLeftAlone) {
  giveToEveryone();
  const test::PermissionBits unreadable(path(kJobFilePath), 0200);
  expectAWaitingJob(test::becomeOrdinaryUser);
}

TEST_P(Surroundings, InAFolderThatMayNotBeChangedTheJobKeepsWaiting) {
  giveToEveryone();
  const test::PermissionBits readOnly(path(kJobFolder), 0555);
  expectAWaitingJob(test::becomeOrdinaryUser);
}

TEST_P(Surroundings, WhereNoFileHasRoomTheJobKeepsWaiting) {
  expectAWaitingJob([] { limit(RLIMIT_FSIZE, 16); });
}

TEST_P(Surroundings, WhereOnlySmallFilesHaveRoomTheJobFileIsWhole) {
  for (rlim_t size = 64; size <= 65536; size *= 4) {
    world.reset();
    SCOPED_TRACE(size);
    expectAnEnd([size] { limit(RLIMIT_FSIZE, size); });
  }
}

// --- the log

TEST_P(Surroundings, ALogThatIsNoFileIsLeftAlone) {
  const Baseline baseline = baselineOf(world);
  for (const Other& other : others()) {
    SCOPED_TRACE(other.name);
    world.reset();
    fs::remove(path(kLogPath));
    other.make(path(kLogPath));
    const std::string before = shapeOf(path(kLogPath));
    EXPECT_EQ(run().exitStatus, 0);
    EXPECT_EQ(jobFile(), baseline.jobFiles.back());
    EXPECT_EQ(shapeOf(path(kLogPath)), before);
    fs::remove(path(kLogPath));
  }
}

TEST_P(Surroundings, ALogThatMayNotBeWrittenIsLeftAlone) {
  const Baseline baseline = baselineOf(world);
  world.reset();
  giveToEveryone();
  const test::PermissionBits readOnly(path(kLogPath), 0444);
  EXPECT_EQ(run(test::becomeOrdinaryUser).exitStatus, 0);
  EXPECT_EQ(jobFile(), baseline.jobFiles.back());
  EXPECT_EQ(world.folder.read(kLogPath), bytesOf(world.before(), kLogPath));
}

// --- limits

// What cannot even be loaded is not the worker's doing.
TEST_P(Surroundings, WithFewFilesOpenAtOnceItEnds) {
  for (rlim_t count = 3; count <= 16; ++count) {
    world.reset();
    SCOPED_TRACE(count);
    const Traced traced = run([count] { limit(RLIMIT_NOFILE, count); });
    EXPECT_TRUE(traced.exitStatus == 0 || (traced.exitStatus == kNotStarted && count < 5));
    EXPECT_EQ(jobFile(), last);
  }
}

TEST_P(Surroundings, WithLittleMemoryItEnds) {
  constexpr rlim_t kStep = 4 << 20;
  bool hasStarted = false;
  for (rlim_t size = kStep; size <= 12 * kStep; size += kStep) {
    world.reset();
    SCOPED_TRACE(size);
    const Traced traced = run([size] { limit(RLIMIT_AS, size); });
    hasStarted = hasStarted || traced.exitStatus == 0;
    EXPECT_TRUE(traced.exitStatus == 0 || (traced.exitStatus == kNotStarted && !hasStarted))
        << traced.exitStatus << " " << traced.signal;
    EXPECT_EQ(jobFile(), last);
  }
  EXPECT_TRUE(hasStarted);
}

}  // namespace
}  // namespace kelvane::proofs
