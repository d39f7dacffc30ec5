// The job file as the management application uses it: jobs are added to it and looked up in it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Value.h"

namespace kelvane::console {

// One job to be added to the job file.
struct NewJob {
  std::string logId = {};  // UTF-8; empty: one that the file does not have yet
  std::string jobId;
  platform::Value inputParameters;
  platform::Value others = {};  // further keys of the record, or nothing
};

// Of other programs that write the file, each can come between a reading and the writing; so often
// it is begun again.
inline constexpr int kMostWrites = 20;

// Whoever changes the file holds its JobFileLock, which keeps other consoles away. What another
// program writes meanwhile is not lost: the change is then made anew, to what that one has written.
class JobFile {
 public:
  // The folder ends with "/". Nothing is read or written yet.
  explicit JobFile(const std::string& sharedFolder);
  // One that stands anywhere.
  static JobFile at(const std::string& path);

  const std::string& path() const { return path_; }

  // Adds the job as a waiting record behind the others, which stay as they are, and returns its
  // record as it stands in the file afterwards, alone with its log id; the file and its folders are
  // made where they are missing. Raises Failure, and leaves the file without the record, where the
  // file is damaged, cannot be read or written, or holds what keeps every job from being updated,
  // or where it has a job with this log id already, in whatever state.
  platform::Value add(const NewJob& job) const;

  // What becomes of the records; nothing: they stay, and the file is not written.
  using Change = std::function<platform::Value(const platform::Value& records)>;
  // Whether the records, read again, are as they should be.
  using Verification = std::function<bool(const platform::Value& records)>;

  // Writes the changed records and verifies them. Both may be asked several times. Raises Failure
  // where the file is damaged or cannot be read or written, and what they raise.
  void change(const Change& change, const Verification& verification) const;

  // Whether a record with a certain log id is the job that is meant.
  using IsMeant = std::function<bool(const platform::Value& record)>;

  // The record with this log id that is meant; of several the last one, which is the one added
  // last. Nothing where there is none or where the file is not there, not readable or damaged.
  platform::Value find(const std::string& logId, const IsMeant& isMeant = {}) const;

  // The records; an empty list where the file is not there. Raises Failure where it is damaged or
  // cannot be read.
  platform::Value read() const;

  // Why no job of the file can be updated, as read() and requireUpdatable() tell; empty where
  // nothing is seen. Never raises.
  std::string fault() const;

 private:
  // Whether the file was replaced; not where it is no longer the text that it was before.
  bool write(const platform::Value& records, const std::optional<std::string>& before) const;

  std::string path_;
};

// The smallest positive whole number above all whole numbers that are log ids of these records.
std::string nextLogId(const platform::Value& records);

// Whether the record, which the worker may have changed since, is the job that was added: it has
// the command and the parameters of `added`.
bool isSameJob(const platform::Value& record, const platform::Value& added);

// Raises Failure, which names the record and says what to do, where one of these records keeps the
// worker from updating any of them: one that is no object, or whose log id is no string.
void requireUpdatable(const platform::Value& records, const std::string& path);

}  // namespace kelvane::console
