#include "platform/BinaryPropertyListLimits.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/PropertyList.h"

namespace kelvane::platform {
namespace {

// What an object takes once it is read, beside its text: about, and no less than.
constexpr std::uint64_t kObjectSize = 64;
// Each of its lines is indented by this much more for each container around it, where it is shown.
constexpr std::uint64_t kIndentation = 4;
// A list whose objects are shared by many takes this much more than one without.
constexpr std::uint64_t kMostShared = std::uint64_t{1} << 20U;

constexpr unsigned kUtf16Text = 0x6;
constexpr char kEmptyAsciiText = '\x50';

// The objects of a binary list, as far as they refer to one another.
class BinaryList {
 public:
  explicit BinaryList(std::string_view bytes) : bytes_(bytes) {}

  bool isWithinLimits() {
    if (!readTrailer()) return false;
    objects_.resize(static_cast<std::size_t>(count_));
    return walk();
  }

  // Of a list that is within the limits. One byte, an empty text, comes before the table, and the
  // table leads to it: objects may share their bytes, so that none is written over.
  std::optional<std::string> withEmptyTextsAsAscii() const {
    const bool hasRoom = offsetSize_ == 8 || table_ >> (8 * offsetSize_) == 0;
    if (emptyTexts_.empty() || !hasRoom) return std::nullopt;
    std::string changed(bytes_);
    for (const std::uint64_t object : emptyTexts_) {
      setNumber(changed, table_ + object * offsetSize_, offsetSize_, table_);
    }
    setNumber(changed, bytes_.size() - 8, 8, table_ + 1);
    changed.insert(static_cast<std::size_t>(table_), 1, kEmptyAsciiText);
    return changed;
  }

 private:
  struct Object {
    bool isDone = false;
    int height = 0;            // of the containers inside one another, this one included
    std::uint64_t weight = 0;  // bytes that it takes once it is read and shown
    std::uint64_t lines = 1;   // that it takes there, about
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
      value =
          value << 8U | static_cast<unsigned char>(bytes_[static_cast<std::size_t>(position + i)]);
    }
    return value;
  }

  static void setNumber(std::string& bytes, std::uint64_t position, std::uint64_t size,
                        std::uint64_t value) {
    for (std::uint64_t i = size; i > 0; --i, value >>= 8U) {
      bytes[static_cast<std::size_t>(position + i - 1)] = static_cast<char>(value & 0xFFU);
    }
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

  // One of the objects that there are.
  Object& at(std::uint64_t object) { return objects_[static_cast<std::size_t>(object)]; }

  // Opens the object; false where it is damaged.
  bool open(std::uint64_t object) {
    const std::uint64_t position = number(table_ + object * offsetSize_, offsetSize_);
    if (position >= table_) return false;
    const auto marker = static_cast<unsigned>(number(position, 1));
    std::uint64_t start = position + 1;
    std::uint64_t count = 0;
    if (isCounted(marker) && !readCount(marker & 0xFU, start, count)) return false;
    if (!isPlainInteger(marker, start)) return false;
    const std::uint64_t size = count * elementSize(marker);
    if (size > table_ - start) return false;
    if (marker >> 4U == kUtf16Text && count == 0) emptyTexts_.push_back(object);
    const bool refers = isContainer(marker);
    path_.push_back({object, start, refers ? start + size : start});
    at(object).height = refers ? 1 : 0;
    at(object).weight = kObjectSize + (refers ? 0 : size);
    // More than there is are references that several objects claim for theirs.
    seen_ += refers ? size : 0;
    return seen_ <= bytes_.size();
  }

  static bool isContainer(unsigned marker) {
    const unsigned kind = marker >> 4U;
    return kind == 0xA || kind == 0xC || kind == 0xD;
  }
  // Containers, data and texts.
  static bool isCounted(unsigned marker) {
    const unsigned kind = marker >> 4U;
    return isContainer(marker) || kind == 0x4 || kind == 0x5 || kind == kUtf16Text;
  }
  std::uint64_t elementSize(unsigned marker) const {
    switch (marker >> 4U) {
      case 0xA:
      case 0xC:
        return referenceSize_;
      case 0xD:
        return 2 * referenceSize_;
      case kUtf16Text:
        return 2;
      default:
        return 1;
    }
  }

  // Of a whole number of 16 bytes only those have a value of their own that fit into the lower 8.
  bool isPlainInteger(unsigned marker, std::uint64_t start) const {
    if (marker >> 4U != 1 || (marker & 0xFU) < 4) return true;
    return marker == 0x14 && table_ - start >= 16 && number(start, 8) == 0;
  }

  // The number of elements; `start` moves behind it. Where it stands in the table already, the
  // number has no room before that.
  bool readCount(unsigned inMarker, std::uint64_t& start, std::uint64_t& elements) const {
    elements = inMarker;
    if (inMarker != 0xF) return true;
    const auto marker = static_cast<unsigned>(number(start, 1));
    const std::uint64_t size = 1ULL << (marker & 0xFU);
    if (marker >> 4U != 1 || size > 8 || size >= table_ - start) return false;
    elements = number(start + 1, size);
    start += 1 + size;
    return elements <= bytes_.size();
  }

  // Of references in a circle none is ever done, so that they come to the limit of the depth.
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
      if (object >= count_) return false;
      if (at(object).isDone) {
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
    at(object).isDone = true;
    path_.pop_back();
    if (!path_.empty()) addTo(path_.back().object, object);
    return at(object).height <= kPropertyListDepthLimit && at(object).weight <= limit();
  }

  void addTo(std::uint64_t container, std::uint64_t object) {
    Object& outer = at(container);
    const Object& inner = at(object);
    outer.height = std::max(outer.height, inner.height + 1);
    const std::uint64_t weight = inner.weight + kIndentation * inner.lines;
    outer.weight = std::min(outer.weight + weight, limit() + 1);
    outer.lines += inner.lines;  // fewer than it weighs
  }

  // A reference takes a byte at the least, so that a list in which each object is used once stays
  // below.
  std::uint64_t limit() const { return kMostShared + bytes_.size() * (kObjectSize + 1); }

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t count_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t table_ = 0;
  std::uint64_t seen_ = 0;
  std::vector<Object> objects_;
  std::vector<std::uint64_t> emptyTexts_;  // of those that are marked as UTF-16
  std::vector<Visit> path_;
};

}  // namespace

bool isWithinLimits(std::string_view bytes) { return BinaryList(bytes).isWithinLimits(); }

std::optional<std::string> withEmptyTextsAsAscii(std::string_view bytes) {
  BinaryList list(bytes);
  return list.isWithinLimits() ? list.withEmptyTextsAsAscii() : std::nullopt;
}

}  // namespace kelvane::platform
