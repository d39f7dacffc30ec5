#include "console/job/LogFollower.h"

#include <string_view>
#include <utility>

namespace kelvane::console {
namespace {

// Where the last entry begins; 0 where the text is of one.
std::size_t lastEntryIn(std::string_view text) {
  for (std::size_t end = text.size(); end > 0;) {
    const std::size_t feed = text.rfind('\n', end - 1);
    const std::size_t start = feed == std::string_view::npos ? 0 : feed + 1;
    if (beginsEntry(text.substr(start, text.find('\n', start) - start))) return start;
    end = feed == std::string_view::npos ? 0 : feed;
  }
  return 0;
}

void appendEntries(std::vector<LogNews>& news, std::string_view text) {
  for (LogEntry& entry : parseLog(text)) news.push_back({LogNews::Kind::entry, std::move(entry)});
}

}  // namespace

void LogFollower::takeWhole(std::vector<LogNews>& news) {
  const std::size_t last = lastEntryIn(open_);
  appendEntries(news, std::string_view(open_).substr(0, last));
  open_.erase(0, last);
}

std::vector<LogNews> LogFollower::look() {
  std::vector<LogNews> news;
  const std::vector<FileNews> found = file_.look();
  if (found.empty()) return rest();
  for (const FileNews& one : found) {
    if (one.kind == FileNews::Kind::text) {
      open_ += one.text;
      continue;
    }
    appendEntries(news, std::exchange(open_, {}));
    news.push_back(
        {one.kind == FileNews::Kind::gone ? LogNews::Kind::gone : LogNews::Kind::anew, {}});
  }
  takeWhole(news);
  return news;
}

std::vector<LogNews> LogFollower::rest() {
  std::vector<LogNews> news;
  appendEntries(news, std::exchange(open_, {}));
  return news;
}

}  // namespace kelvane::console
