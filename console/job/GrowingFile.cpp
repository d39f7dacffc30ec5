#include "console/job/GrowingFile.h"

#include <algorithm>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Restarted.h"

namespace kelvane::console {
namespace {

using Kind = FileNews::Kind;

constexpr std::size_t kRemembered = 64;  // bytes: enough to hold a line's time and its place

// No file where it is none, or none that can be read; never waits for the other end of a pipe.
platform::Descriptor openRegular(const std::string& path) {
  constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  platform::Descriptor file(platform::restarted([&] { return ::open(path.c_str(), kFlags); }));
  struct stat entry = {};
  if (!file.isOpen() || ::fstat(file.number(), &entry) != 0 || !S_ISREG(entry.st_mode)) {
    return platform::Descriptor(-1);
  }
  return file;
}

// As many bytes as there are from the place on, at most `most`.
std::string readAt(int file, off_t place, std::size_t most) {
  std::string bytes(most, '\0');
  const ssize_t count =
      platform::restarted([&] { return ::pread(file, bytes.data(), bytes.size(), place); });
  bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return bytes;
}

}  // namespace

bool GrowingFile::isStillAtThePath() const {
  struct stat own = {};
  struct stat there = {};
  return ::fstat(file_.number(), &own) == 0 && ::stat(path_.c_str(), &there) == 0 &&
         own.st_dev == there.st_dev && own.st_ino == there.st_ino;
}

// Also where it has grown since beyond what was read of it.
bool GrowingFile::wasEmptied() const {
  const auto count = static_cast<off_t>(before_.size());
  return readAt(file_.number(), place_ - count, before_.size()) != before_;
}

void GrowingFile::begin() {
  place_ = 0;
  before_.clear();
}

void GrowingFile::readOn(std::vector<FileNews>& news) {
  constexpr std::size_t kAtOnce = 1 << 16;
  std::string text;
  for (;;) {
    const std::string more = readAt(file_.number(), place_, kAtOnce);
    if (more.empty()) break;
    text += more;
    place_ += static_cast<off_t>(more.size());
  }
  if (text.empty()) return;
  before_ += text.substr(text.size() - std::min(text.size(), kRemembered));
  before_.erase(0, before_.size() - std::min(before_.size(), kRemembered));
  news.push_back({Kind::text, std::move(text)});
}

std::vector<FileNews> GrowingFile::look() {
  std::vector<FileNews> news;
  if (file_.isOpen()) {
    const bool isAtThePath = isStillAtThePath();  // asked first: what comes later is another's
    if (wasEmptied()) {
      begin();
      news.push_back({Kind::anew});
    }
    readOn(news);
    if (isAtThePath) return news;
  }
  file_ = openRegular(path_);
  begin();
  if (!file_.isOpen()) {
    if (!std::exchange(isToldGone_, true)) news.push_back({Kind::gone});
    return news;
  }
  if (wasThere_) news.push_back({Kind::anew});
  wasThere_ = true;
  isToldGone_ = false;
  readOn(news);
  return news;
}

}  // namespace kelvane::console
