#include "platform/PropertyListLimits.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvane::platform {
namespace {

constexpr std::string_view kBinaryStart = "bplist";
// A reference takes a byte at the least, so that a list whose containers are used once stays below.
constexpr std::uint64_t kMostReferencesPerByte = 16;

// Where the piece that starts at `position` ends: behind the next `end`.
std::size_t behind(std::string_view text, std::string_view end, std::size_t position) {
  const std::size_t found = text.find(end, position);
  return found == std::string_view::npos ? text.size() : found + end.size();
}

bool isContainer(std::string_view name) {
  return name.substr(0, 4) == "dict" || name.substr(0, 5) == "array";
}

// By its tags alone; everything else is the library's to judge.
bool isShallowXml(std::string_view text) {
  int depth = 0;
  for (std::size_t position = 0; (position = text.find('<', position)) != std::string_view::npos;) {
    const std::string_view rest = text.substr(position + 1);
    if (rest.substr(0, 3) == "!--") {
      position = behind(text, "-->", position);
      continue;
    }
    if (rest.substr(0, 8) == "![CDATA[") {
      position = behind(text, "]]>", position);
      continue;
    }
    const std::size_t end = behind(text, ">", position);
    if (rest.substr(0, 1) == "/") {
      if (isContainer(rest.substr(1))) --depth;
    } else if (isContainer(rest) && text.substr(0, end - 1).back() != '/') {
      if (++depth > kPropertyListDepthLimit) return false;
    }
    position = end;
  }
  return true;
}

// The objects of a binary list, as far as they refer to one another.
class BinaryList {
 public:
  explicit BinaryList(std::string_view bytes) : bytes_(bytes) {}

  bool isWithinLimits() {
    if (!readTrailer()) return false;
    objects_.resize(count_);
    return walk();
  }

 private:
  struct Object {
    bool isOpen = false;
    bool isDone = false;
    int height = 1;            // of the containers inside one another, this one included
    std::uint64_t weight = 1;  // objects there are once it is read
  };
  // A container on the way down, with what is still to be looked at.
  struct Visit {
    std::uint64_t object;
    std::uint64_t next;  // position of the next reference
    std::uint64_t end;
  };

  std::uint64_t number(std::uint64_t position, std::uint64_t size) const {
    std::uint64_t value = 0;
    for (std::uint64_t i = 0; i < size; ++i) {
      value = value << 8U | static_cast<unsigned char>(bytes_[position + i]);
    }
    return value;
  }

  bool readTrailer() {
    constexpr std::size_t kTrailer = 32;
    if (bytes_.size() < kTrailer) return false;
    const std::size_t start = bytes_.size() - kTrailer;
    offsetSize_ = number(start + 6, 1);
    referenceSize_ = number(start + 7, 1);
    count_ = number(start + 8, 8);
    root_ = number(start + 16, 8);
    table_ = number(start + 24, 8);
    if (offsetSize_ == 0 || offsetSize_ > 8 || referenceSize_ == 0 || referenceSize_ > 8) {
      return false;
    }
    return table_ <= start && count_ <= (start - table_) / offsetSize_ && root_ < count_;
  }

  // Opens the object; false where it is damaged.
  bool open(std::uint64_t object) {
    const std::uint64_t position = number(table_ + object * offsetSize_, offsetSize_);
    if (position >= table_) return false;
    const auto marker = static_cast<unsigned>(number(position, 1));
    const unsigned kind = marker >> 4U;
    objects_[object].isOpen = true;
    std::uint64_t references = 0;
    std::uint64_t start = position + 1;
    if (kind == 0xA || kind == 0xC || kind == 0xD) {
      if (!readCount(marker & 0xFU, start, references)) return false;
      if (kind == 0xD) references *= 2;
    }
    if (references > (table_ - start) / referenceSize_) return false;
    seen_ += references;
    path_.push_back({object, start, start + references * referenceSize_});
    return seen_ <= limit();
  }

  // The number of elements; `start` moves behind it.
  bool readCount(unsigned inMarker, std::uint64_t& start, std::uint64_t& elements) const {
    elements = inMarker;
    if (inMarker != 0xF) return true;
    if (start >= table_) return false;
    const auto marker = static_cast<unsigned>(number(start, 1));
    const std::uint64_t size = 1ULL << (marker & 0xFU);
    if (marker >> 4U != 1 || size > 8 || size >= table_ - start) return false;
    elements = number(start + 1, size);
    start += 1 + size;
    return elements <= bytes_.size();
  }

  bool walk() {
    if (!open(root_)) return false;
    while (!path_.empty()) {
      Visit& visit = path_.back();
      if (visit.next == visit.end) {
        if (!close()) return false;
        continue;
      }
      const std::uint64_t object = number(visit.next, referenceSize_);
      visit.next += referenceSize_;
      if (object >= count_ || (objects_[object].isOpen && !objects_[object].isDone)) return false;
      if (objects_[object].isDone) {
        addTo(visit.object, object);
      } else if (path_.size() > kPropertyListDepthLimit || !open(object)) {
        return false;
      }
    }
    return true;
  }

  // Ends the deepest container of the path.
  bool close() {
    const std::uint64_t object = path_.back().object;
    objects_[object].isDone = true;
    path_.pop_back();
    if (!path_.empty()) addTo(path_.back().object, object);
    return objects_[object].height <= kPropertyListDepthLimit && objects_[object].weight <= limit();
  }

  void addTo(std::uint64_t container, std::uint64_t object) {
    Object& outer = objects_[container];
    const Object& inner = objects_[object];
    outer.height = std::max(outer.height, inner.height + 1);
    outer.weight = std::min(outer.weight + inner.weight, limit() + 1);
  }

  std::uint64_t limit() const { return bytes_.size() * kMostReferencesPerByte; }

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t count_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t table_ = 0;
  std::uint64_t seen_ = 0;
  std::vector<Object> objects_;
  std::vector<Visit> path_;
};

}  // namespace

bool isWithinLimits(std::string_view bytes) {
  if (bytes.substr(0, kBinaryStart.size()) == kBinaryStart) {
    return BinaryList(bytes).isWithinLimits();
  }
  return isShallowXml(bytes);
}

}  // namespace kelvane::platform
