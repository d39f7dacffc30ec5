// The log, as it is written.
#pragma once

#include <string>
#include <vector>

#include "console/job/GrowingFile.h"
#include "console/job/LogFile.h"

namespace kelvane::console {

// What a look has found, in this order: entries, and what became of the file.
struct LogNews {
  enum class Kind { entry, gone, anew };
  Kind kind = Kind::entry;
  LogEntry entry = {};
};

class LogFollower {
 public:
  explicit LogFollower(const std::string& path) : file_(path) {}

  // The entries that have come since the last look. Whether more lines of the last one are to come
  // cannot be told: it comes with the next one, or at a look that finds nothing more.
  std::vector<LogNews> look();

  // What is held back: for whoever looks no more, and behind the first look, where the last entry
  // is whole as a rule.
  std::vector<LogNews> rest();

  // Whether there was a log at the last look.
  bool isThere() const { return file_.isThere(); }

 private:
  void takeWhole(std::vector<LogNews>& news);

  GrowingFile file_;
  std::string open_;  // the text of the last entry
};

}  // namespace kelvane::console
