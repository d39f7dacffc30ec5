// The jobs of a log: which worker took which, and which part of the log is a job's.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "console/job/LogFile.h"
#include "platform/Value.h"

namespace kelvane::console {

// What a job's last line shows its record behind, of the commands that have such a line.
inline constexpr std::string_view kEndOfJob = " end, retDict = ";

// Where a worker begins.
inline constexpr char kStartFunction[] = "init";

// The record that a job's last line shows; nothing of another entry.
platform::Value recordAtTheEnd(const LogEntry& entry);

// A part of the log: what the worker that ran a job wrote.
struct LoggedJob {
  std::span<const LogEntry> entries = {};  // from the worker's first one to the job's last line
  bool hasEnded = false;                   // whether the job's last line is there
  // Whether another worker wrote at the same time: which line is whose cannot be told.
  bool isMixed = false;
};

// Looks at every entry once, however many jobs are asked for afterwards.
class LoggedJobs {
 public:
  // The entries are not owned, and must outlive what is found in them.
  explicit LoggedJobs(std::span<const LogEntry> entries);

  // The last part in which a worker took the job of this record: with its log id, its command and
  // its parameters, as a log id may have been another job's before. Nothing where there is none,
  // and for a waiting record where the job of the last such part is over: another one waits then.
  std::optional<LoggedJob> find(const platform::Value& record) const;

  // The last part in which a worker took whatever job had this log id.
  std::optional<LoggedJob> findLast(const std::string& logId) const;

  // The times at which workers began that took jobs with this log id, as the log has them: those
  // before this entry of it, or where there is none, all.
  std::vector<std::string> startsOf(const std::string& logId, const LogEntry* before) const;

  // What the log's last worker wrote, if it took no job; else nothing.
  std::span<const LogEntry> lastWithoutJob() const { return lastWithoutJob_; }

 private:
  // A worker that took a job; places are those of entries.
  struct Worker {
    std::size_t begin = 0;
    std::size_t end = 0;               // where the next worker begins
    std::optional<std::size_t> ended;  // the job's last line
    bool isWithinAnother = false;      // whether one that began before ends behind its beginning
  };

  void takeWorkers();
  void takeEnds();
  void markThoseWithinAnother();
  LoggedJob jobOf(const Worker& worker) const;

  std::span<const LogEntry> entries_;
  std::span<const LogEntry> lastWithoutJob_;
  std::vector<Worker> workers_;                             // in the order of the log
  std::map<std::string, std::vector<std::size_t>> takers_;  // of each log id, places in workers_
};

}  // namespace kelvane::console
