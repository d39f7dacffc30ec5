// The journal: what was asked of the framework, and where that broke the contract.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::simulator {

class Journal {
 public:
  virtual ~Journal() = default;
  // Takes one record; never raises.
  virtual void write(const platform::Value& record) = 0;
};

// A file of one JSON object a line, each appended by a single write, so that whoever is killed
// leaves whole lines behind.
class FileJournal : public Journal {
 public:
  // An empty path: no journal. The file is created where it is not there; where it cannot be
  // opened, stderr is told and there is no journal.
  explicit FileJournal(const std::string& path);
  FileJournal(const FileJournal&) = delete;
  FileJournal& operator=(const FileJournal&) = delete;
  ~FileJournal() override;
  void write(const platform::Value& record) override;

 private:
  int file_ = -1;
};

// The value as JSON on a single line, without the line's end.
std::string jsonLine(const platform::Value& value);

}  // namespace kelvane::simulator
