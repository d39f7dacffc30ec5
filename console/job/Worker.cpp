#include "console/job/Worker.h"

#include <cstring>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "console/job/ExitCode.h"
#include "console/job/JobStatus.h"
#include "console/job/Processes.h"
#include "contract/JobFile.h"

extern char** environ;  // not every system's headers declare it

namespace kelvane::console {
namespace {

// What the child's standard streams are.
class FileActions {
 public:
  explicit FileActions(const WorkerCommand& command) {
    ::posix_spawn_file_actions_init(&actions_);
    open(STDIN_FILENO, kSink, O_RDONLY);
    if (command.showOutput) return;
    open(STDOUT_FILENO, kSink, O_WRONLY);
    const bool isKept = !command.standardError.empty();
    open(STDERR_FILENO, isKept ? command.standardError.c_str() : kSink, O_WRONLY | O_APPEND);
  }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  static constexpr char kSink[] = "/dev/null";

  void open(int stream, const char* path, int flags) {
    ::posix_spawn_file_actions_addopen(&actions_, stream, path, flags, 0);
  }

  posix_spawn_file_actions_t actions_ = {};
};

class NewSession {
 public:
  NewSession() {
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID);
  }
  NewSession(const NewSession&) = delete;
  NewSession& operator=(const NewSession&) = delete;
  ~NewSession() { ::posix_spawnattr_destroy(&attributes_); }

  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_ = {};
};

}  // namespace

ForeignWorker::ForeignWorker(std::string logId, const std::string& sharedFolder)
    : logId_(std::move(logId)), sharedFolder_(sharedFolder), file_(sharedFolder) {}

bool ForeignWorker::hasEnded() {
  if (isSeen()) return false;
  // Read after the look for the process, so that what the worker wrote last is seen.
  const platform::Value record = file_.find(logId_);
  return record.isNothing() || statusOf(record).state != job::kWait;
}

bool ForeignWorker::isSeen() { return workerRuns(logId_, sharedFolder_); }

WorkerProcess::WorkerProcess(const WorkerCommand& command) {
  std::string executable = command.executable;
  std::string logId = command.logId;
  std::string sharedFolder = command.sharedFolder;
  char* const arguments[] = {executable.data(), logId.data(), sharedFolder.data(), nullptr};
  const FileActions actions(command);
  const NewSession attributes;
  const int cause = ::posix_spawn(&process_, executable.c_str(), actions.get(), attributes.get(),
                                  arguments, environ);
  if (cause != 0) {
    throw Failure(kWorkerFailed, "start " + executable + ": " + std::strerror(cause));
  }
}

bool WorkerProcess::hasEnded() {
  if (ended_) return true;
  const pid_t found = ::waitpid(process_, &status_, WNOHANG);
  statusKnown_ = found == process_;
  ended_ = found != 0;  // an error: there is no such child any more
  return ended_;
}

std::string WorkerProcess::ending() const {
  if (!statusKnown_) return {};
  if (WIFSIGNALED(status_)) return "signal " + std::to_string(WTERMSIG(status_));
  return "exit status " + std::to_string(WEXITSTATUS(status_));
}

}  // namespace kelvane::console
