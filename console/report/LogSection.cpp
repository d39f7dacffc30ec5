#include "console/report/LogSection.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kelvane::console {
namespace {

// An entry as it is shown.
struct Shown {
  std::string_view line;           // the first of its message
  std::string_view object;         // the others
  const LogEntry* same = nullptr;  // an entry before it that has this object, too
  bool isObjectLeftOut = false;
};

std::string counted(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

Shown apart(const LogEntry& entry) {
  const std::string_view message = entry.message;
  const std::size_t end = message.find('\n');
  if (end == std::string_view::npos) return {message, {}};
  return {message.substr(0, end), message.substr(end + 1)};
}

// The entries that are shown: all, or the first and the last ones.
class Selection {
 public:
  Selection(std::span<const LogEntry> entries, const LogBounds& bounds) : bounds_(bounds) {
    const std::size_t half = bounds.entries / 2;
    leftOut_ = entries.size() > bounds.entries ? entries.size() - 2 * half : 0;
    head_ = leftOut_ == 0 ? entries.size() : half;
    for (std::size_t i = 0; i < entries.size(); ++i) {
      if (i >= head_ && i < head_ + leftOut_) continue;
      shown_.push_back(apart(entries[i]));
      entries_.push_back(&entries[i]);
    }
    findEqualObjects();
    leaveObjectsOut();
    shortenLines();
  }

  std::size_t leftOut() const { return leftOut_; }
  // Behind so many entries the others are left out.
  std::size_t head() const { return head_; }
  std::size_t count() const { return shown_.size(); }
  const Shown& shown(std::size_t index) const { return shown_[index]; }
  const LogEntry& entry(std::size_t index) const { return *entries_[index]; }
  // How much of a line is shown.
  std::size_t lineBytes() const { return lineBytes_; }
  std::size_t objectsLeftOut() const {
    return static_cast<std::size_t>(std::count_if(
        shown_.begin(), shown_.end(), [](const Shown& one) { return one.isObjectLeftOut; }));
  }

 private:
  // The worker shows the job file several times at each step.
  void findEqualObjects() {
    std::unordered_map<std::string_view, const LogEntry*> first;
    for (std::size_t i = 0; i < shown_.size(); ++i) {
      if (shown_[i].object.empty()) continue;
      const auto [found, isNew] = first.try_emplace(shown_[i].object, entries_[i]);
      if (!isNew) shown_[i].same = found->second;
    }
  }

  // From both ends, as long as there is room.
  void leaveObjectsOut() {
    std::size_t room = bounds_.objectBytes;
    std::size_t low = 0;
    std::size_t high = shown_.size();
    while (low < high) {
      keep(shown_[low++], room);
      if (low < high) keep(shown_[--high], room);
    }
  }

  static void keep(Shown& one, std::size_t& room) {
    if (one.same != nullptr) return;
    const std::size_t size = escapedSize(one.object);
    one.isObjectLeftOut = size > room;
    if (!one.isObjectLeftOut) room -= size;
  }

  // All lines alike, so that each has its beginning.
  void shortenLines() {
    constexpr std::size_t kShortest = 128;
    lineBytes_ = bounds_.lineBytes;
    while (lineBytes_ > kShortest && sizeOfLines() > bounds_.linesBytes) lineBytes_ /= 2;
  }

  std::size_t sizeOfLines() const {
    std::size_t size = 0;
    for (const Shown& one : shown_) size += escapedSize(one.line.substr(0, lineBytes_));
    return size;
  }

  const LogBounds& bounds_;
  std::size_t leftOut_ = 0;
  std::size_t head_ = 0;
  std::size_t lineBytes_ = 0;
  std::vector<Shown> shown_;
  std::vector<const LogEntry*> entries_;
};

constexpr std::size_t kMostNameBytes = 128;  // of a function's

void showLine(Html& page, const LogEntry& entry, std::string_view line, std::size_t lineBytes) {
  page.label("time", entry.time);
  page.words(" ");
  if (entry.level != "debug" && !entry.level.empty()) {
    page.element("strong", entry.level, {}, {.most = kMostNameBytes});
    page.words(" ");
  }
  if (!entry.function.empty()) {
    page.element("b", entry.function, {}, {.most = kMostNameBytes});
    page.words(" ");
  }
  page.text(line, {.most = lineBytes});
}

std::size_t linesIn(std::string_view object) {
  return static_cast<std::size_t>(std::count(object.begin(), object.end(), '\n')) + 1;
}

void showObject(Html& page, const Shown& shown) {
  if (shown.object.empty()) return;
  const std::string lines = counted(linesIn(shown.object), "line", "lines");
  if (shown.same != nullptr) {
    page.words(" (" + lines + ", the same as at " + shown.same->time + " in ");
    page.text(shown.same->function, {.most = kMostNameBytes});
    page.words(")");
  } else if (shown.isObjectLeftOut) {
    page.words(" (" + lines + ", left out)");
  }
}

bool isFolded(const Shown& shown) {
  return !shown.object.empty() && shown.same == nullptr && !shown.isObjectLeftOut;
}

void showEntry(Html& page, const LogEntry& entry, const Shown& shown, std::size_t lineBytes) {
  Html::Attributes attributes;
  if (entry.level == "error") attributes = {{"class", "error"}};
  page.open("li", attributes);
  if (isFolded(shown)) {
    page.open("details");
    page.open("summary");
    showLine(page, entry, shown.line, lineBytes);
    page.close();
    page.element("pre", shown.object, {}, {.most = kAllOfIt});
    page.close();
  } else {
    showLine(page, entry, shown.line, lineBytes);
    showObject(page, shown);
  }
  page.close();
}

}  // namespace

std::string showEntries(Html& page, std::span<const LogEntry> entries, const LogBounds& bounds) {
  const Selection selection(entries, bounds);
  page.open("ol", {{"class", "log"}});
  for (std::size_t i = 0; i < selection.count(); ++i) {
    if (i == selection.head() && selection.leftOut() > 0) {
      page.label("li", counted(selection.leftOut(), "entry is", "entries are") + " left out here",
                 {{"class", "gap"}});
    }
    showEntry(page, selection.entry(i), selection.shown(i), selection.lineBytes());
  }
  page.close();
  std::string leftOut;
  if (selection.leftOut() > 0) leftOut = counted(selection.leftOut(), "entry", "entries");
  if (const std::size_t objects = selection.objectsLeftOut(); objects > 0) {
    if (!leftOut.empty()) leftOut += ", and ";
    leftOut += counted(objects, "object", "objects");
  }
  return leftOut;
}

}  // namespace kelvane::console
