// The job file as the management application uses it: jobs are added to it and looked up in it.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::console {

// One job to be added to the job file.
struct NewJob {
  std::string logId;  // UTF-8; empty: one that the file does not have yet
  std::string jobId;
  platform::Value inputParameters;
};

class JobFile {
 public:
  // The folder ends with "/". Nothing is read or written yet.
  explicit JobFile(const std::string& sharedFolder);

  const std::string& path() const { return path_; }

  // Adds the job as a waiting record behind the others, which stay as they are, and returns its log
  // id; the file and its folders are made where they are missing. Raises Failure, and leaves the
  // file as it was, where the file is damaged or cannot be read or written, or where it has a job
  // with this log id already, in whatever state.
  std::string add(const NewJob& job) const;

  // The record with this log id; of several the last one, which is the one added last. Nothing
  // where there is none or where the file is not there, not readable or damaged. Never raises.
  platform::Value find(const std::string& logId) const;

  // The records; an empty list where the file is not there. Raises Failure where it is damaged or
  // cannot be read.
  platform::Value read() const;

 private:
  void write(const platform::Value& records) const;

  std::string path_;
};

// The smallest positive whole number above all whole numbers that are log ids of these records.
std::string nextLogId(const platform::Value& records);

}  // namespace kelvane::console
