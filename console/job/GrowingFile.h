// A text file that others write to, looked at again and again.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "platform/Descriptor.h"

namespace kelvane::console {

// What a look has found, in this order.
struct FileNews {
  enum class Kind {
    text,  // more of the file
    gone,  // there is no file at the path any more, or none yet
    anew,  // it was emptied, or another file stands at the path: what comes is its beginning
  };
  Kind kind = Kind::text;
  std::string text = {};
};

// What is appended is found once, also where the file is moved away, emptied, or removed and made
// again. Nothing but a regular file is read.
class GrowingFile {
 public:
  explicit GrowingFile(std::string path) : path_(std::move(path)) {}

  // What has come since the last look; at the first one all that is there.
  std::vector<FileNews> look();

  // Whether a file was there at the last look.
  bool isThere() const { return file_.isOpen(); }

 private:
  bool isStillAtThePath() const;
  bool wasEmptied() const;
  void begin();
  void readOn(std::vector<FileNews>& news);

  std::string path_;
  platform::Descriptor file_{-1};  // kept open, so that no other file gets its number
  off_t place_ = 0;                // up to which it was read
  std::string before_;             // the last bytes in front of that
  bool wasThere_ = false;          // at any look
  bool isToldGone_ = false;
};

}  // namespace kelvane::console
