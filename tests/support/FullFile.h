// A regular file that takes no more bytes, as on a disk that is full.
#pragma once

#include <string>

#include <sys/resource.h>

#include "tests/support/TempFolder.h"

namespace kelvane::test {

// While there is one, no file of this process grows beyond 1 MiB; this one has that size (as a
// hole) from the start, so that appending to it fails with "File too large".
class FullFile {
 public:
  FullFile();
  ~FullFile();
  FullFile(const FullFile&) = delete;
  FullFile& operator=(const FullFile&) = delete;

  const std::string& path() const { return path_; }

 private:
  TempFolder folder_;
  std::string path_;
  rlimit before_ = {};
  void (*signalBefore_)(int);
};

}  // namespace kelvane::test
