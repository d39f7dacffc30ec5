// The clients of docs/integration, run: the real worker, and simulated controllers.

#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Json.h"
#include "tests/docs/Page.h"
#include "tests/end_to_end/Installation.h"
#include "tests/support/JobFiles.h"
#include "tests/support/LogLine.h"

extern char** environ;  // not every system's headers declare it

namespace kelvane::docs {
namespace {

namespace fs = std::filesystem;

using platform::Value;
using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr char kClients[] = KELVANE_SOURCES "docs/integration/";

struct Client {
  std::string language;
  std::vector<std::string> command;
};

void PrintTo(const Client& client, std::ostream* stream) { *stream << client.language; }

// Those that this computer can run.
std::vector<Client> clients() {
  std::vector<Client> found = {{"Shell", {"/bin/sh", std::string(kClients) + "client.sh"}}};
  const auto add = [&found](const char* language, const std::string& program,
                            const std::vector<std::string>& arguments) {
    if (program.empty()) return;
    found.push_back({language, {program}});
    for (const std::string& argument : arguments) found.back().command.push_back(argument);
  };
  add("Python", KELVANE_PYTHON, {std::string(kClients) + "client.py"});
  add("ObjectiveC", KELVANE_OBJECTIVE_C_CLIENT, {});
  add("Swift", KELVANE_SWIFT_CLIENT, {});
  return found;
}

// A process whose command line is that of a worker on the shared folder, and that does nothing.
class IdleWorker {
 public:
  IdleWorker(const std::string& worker, const std::string& sharedFolder) {
    std::string shell = "/bin/sh";
    std::string option = "-c";
    std::string script = "kill -STOP $$";
    std::string logId = "9";
    std::string name = worker;
    std::string folder = sharedFolder;
    char* const arguments[] = {shell.data(), option.data(), script.data(), name.data(),
                               logId.data(), folder.data(), nullptr};
    ::posix_spawn(&process_, shell.c_str(), nullptr, nullptr, arguments, environ);
  }
  IdleWorker(const IdleWorker&) = delete;
  IdleWorker& operator=(const IdleWorker&) = delete;
  ~IdleWorker() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  bool isThere() const { return process_ > 0; }

 private:
  pid_t process_ = -1;
};

class ClientOf : public Installation, public ::testing::WithParamInterface<Client> {
 protected:
  // The worker's sleeps take no time, the clients' own libraries are left alone.
  ClientOf() {
    const std::string itself = bundle / "Contents/Resources/Kelvane-itself";
    fs::rename(worker, itself);
    writeWorker("LD_PRELOAD='" + environment.at("LD_PRELOAD") + "' exec '" + itself + "' \"$@\"");
    environment.erase("LD_PRELOAD");
    writeJobs("[]");
    writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "2.3.0",
                    "cpld": "1.6", "usb_bridge": "3.0", "firmware_seconds": 8}])");
    image = makeImage("standard.img", {"standard", "--product", "0x43", "--firmware", "2.4.0"});
  }

  void writeWorker(const std::string& script) const {
    bundle.write("Contents/Resources/Kelvane", "#!/bin/sh\n" + script + "\n");
    ::chmod(worker.c_str(), 0755);
  }

  // Without the "/" at the end, which the client has to add.
  std::vector<std::string> commandLine(const std::string& job, const std::string& inputs) const {
    std::vector<std::string> line = GetParam().command;
    for (const std::string& argument :
         {folder / "shared", bundle.path(), job, inputs, std::string("0.01")}) {
      line.push_back(argument);
    }
    return line;
  }
  test::Ended run(const std::string& job, const std::string& inputs) const {
    return test::runProgram(commandLine(job, inputs), folder.path(), environment);
  }
  test::Ended update(const std::string& wwn) const {
    return run("updateFW", R"([{"wwn": ")" + wwn + R"(", "file_path": ")" + image + R"("}])");
  }

  std::string jobFile() const { return folder.read(test::kJobFile); }
  // The files in which the worker's tools complain.
  std::vector<std::string> complaints() const {
    std::vector<std::string> found;
    for (const std::string& name : folder.names("shared/utility/logs")) {
      if (name.rfind("worker-", 0) == 0) found.push_back(name);
    }
    return found;
  }

  std::string image;
};

TEST_P(ClientOf, FollowsAJobToItsEnd) {
  const test::Ended ended = update("50000000000000A1");
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  EXPECT_THAT(ended.out, StartsWith("added "));
  EXPECT_THAT(ended.out, EndsWith("\nFREE 0 no error\n"));
  EXPECT_EQ(jobs().count(), 1U);
  EXPECT_EQ(ended.out.substr(6, ended.out.find('\n') - 6), jobs().at(0).get("log_id").string());
  EXPECT_EQ(fleet().get("controllers").at(0).get("firmware"), Value("2.4.0"));
}

TEST_P(ClientOf, LeavesNothingBehindButTheJobAndTheLock) {
  update("50000000000000A1");
  EXPECT_THAT(folder.names("shared/utility/command"),
              ::testing::ElementsAre("BGPLog.json", "BGPLog.json.lock"));
  EXPECT_THAT(complaints(), IsEmpty());
}

TEST_P(ClientOf, TellsAFailureByItsExitStatus) {
  const test::Ended ended = update("50000000000000A2");
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_THAT(ended.out, EndsWith("\nFREE 1026 the device was not found\n"));
}

TEST_P(ClientOf, TellsOfAJobThatTheWorkerDidNotTake) {
  const test::Ended ended = run("updateHW", "{}");
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_THAT(ended.out, EndsWith("\nWAIT\n"));
}

TEST_P(ClientOf, KeepsWhatTheSystemsToolsComplainOf) {
  run("updateSW", R"({"file_path": "/nowhere/Manager.app"})");
  ASSERT_EQ(complaints().size(), 1U);
  EXPECT_THAT(folder.read("shared/utility/logs/" + complaints()[0]), HasSubstr("cp: "));
}

TEST_P(ClientOf, KeepsTheOtherRecordsToTheByte) {
  const std::string others = "[ {\"log_id\" :\"1\",\"n\":12345678901234567890123, \"x\":0.10}";
  writeJobs(others + " \n]\n ");
  ::chmod((folder / test::kJobFile).c_str(), 0640);
  EXPECT_EQ(run("updateHW", "{}").exitStatus, 1);
  EXPECT_THAT(jobFile(), StartsWith(others));
  EXPECT_EQ(jobs().count(), 2U);
  struct stat kept = {};
  ::stat((folder / test::kJobFile).c_str(), &kept);
  EXPECT_EQ(kept.st_mode & 0777U, 0640U);
}

TEST_P(ClientOf, RefusesAJobFileThatTheWorkerCannotWorkWith) {
  for (const std::string text : {"", "[", "{}", "[] []", "[7]", R"([{"log_id": 17}])"}) {
    writeJobs(text);
    const test::Ended ended = update("50000000000000A1");
    EXPECT_EQ(ended.exitStatus, 2) << text;
    EXPECT_THAT(ended.err, StartsWith("client: the job file ")) << text;
    EXPECT_EQ(jobFile(), text);
  }
}

TEST_P(ClientOf, RefusesWhileAWorkerRunsOnTheFolder) {
  const IdleWorker other(worker, shared());
  ASSERT_TRUE(other.isThere());
  const test::Ended ended = update("50000000000000A1");
  EXPECT_EQ(ended.exitStatus, 2);
  EXPECT_THAT(ended.err, HasSubstr("a worker runs on this shared folder"));
  EXPECT_EQ(jobFile(), "[]");
}

TEST_P(ClientOf, AddsNothingWhereThereIsNoWorker) {
  fs::remove(worker);
  const test::Ended ended = update("50000000000000A1");
  EXPECT_EQ(ended.exitStatus, 2);
  EXPECT_EQ(jobFile(), "[]");
}

TEST_P(ClientOf, WithoutItsArgumentsSaysSoAndAddsNothing) {
  const test::Ended ended = test::runProgram(GetParam().command, folder.path(), environment);
  EXPECT_EQ(ended.exitStatus, 2);
  EXPECT_NE(ended.err, "");
  EXPECT_EQ(jobFile(), "[]");
}

TEST_P(ClientOf, LosesNoRecordOfOthersThatAddAtOnce) {
  std::string quoted;
  for (const std::string& word : commandLine("updateHW", "{}")) quoted += "'" + word + "' ";
  const std::string script = "for i in 1 2 3 4 5 6; do " + quoted + "& done; wait";
  const test::Ended ended = test::runProgram({"/bin/sh", "-c", script}, folder.path(), environment);
  std::size_t added = 0;
  for (const std::string& line : test::splitLines(ended.out)) {
    if (line.rfind("added ", 0) == 0) ++added;
  }
  EXPECT_GT(added, 0U) << ended.err;
  EXPECT_EQ(jobs().count(), added);
}

INSTANTIATE_TEST_SUITE_P(Docs, ClientOf, ::testing::ValuesIn(clients()),
                         [](const auto& test) { return test.param.language; });

TEST(Clients, ThatNeedNoCompilerAreRun) {
  std::vector<std::string> run;
  for (const Client& client : clients()) run.push_back(client.language);
  EXPECT_THAT(run, Contains("Shell"));
  EXPECT_THAT(run, Contains("Python"));
}

}  // namespace
}  // namespace kelvane::docs
