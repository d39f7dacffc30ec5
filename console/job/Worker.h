// The worker, seen from outside: a child process that runs one job and ends.
#pragma once

#include <string>

#include <sys/types.h>

#include "console/job/JobFile.h"

namespace kelvane::console {

// What the follower asks of a worker.
class Worker {
 public:
  virtual ~Worker() = default;
  // Whether it has ended; does not wait.
  virtual bool hasEnded() = 0;
  // Whether one that has not ended is seen at work: one that may still be started is not.
  virtual bool isSeen() { return true; }
  // How it ended: "exit status 0", "signal 9"; empty while it runs or where the system keeps it.
  virtual std::string ending() const = 0;
};

// The worker of a job that someone else started, seen only from outside. It has ended when no such
// process runs, unless the job is in "WAIT": then it may still be started.
class ForeignWorker : public Worker {
 public:
  // The shared folder ends with "/".
  ForeignWorker(std::string logId, const std::string& sharedFolder);

  bool hasEnded() override;
  bool isSeen() override;
  std::string ending() const override { return {}; }

 private:
  std::string logId_;
  std::string sharedFolder_;
  JobFile file_;
};

struct WorkerCommand {
  std::string executable = {};
  std::string logId = {};
  std::string sharedFolder = {};
  bool showOutput = false;         // whether its output comes out here; otherwise it is discarded
  std::string standardError = {};  // the file that gets it where it does not come out here
};

// A worker process in a session of its own, so that neither an interrupt of the console nor the end
// of its terminal stops a flash. It outlives this object.
class WorkerProcess : public Worker {
 public:
  // Starts it. Raises Failure where that is not possible.
  explicit WorkerProcess(const WorkerCommand& command);

  bool hasEnded() override;
  std::string ending() const override;

 private:
  pid_t process_ = 0;
  bool ended_ = false;
  bool statusKnown_ = false;
  int status_ = 0;
};

}  // namespace kelvane::console
