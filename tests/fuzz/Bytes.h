// A target's input, taken apart from its front. Where nothing is left, all is 0 and empty.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kelvane::fuzz {

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  bool isEmpty() const { return rest_.empty(); }

  std::uint8_t byte() {
    if (rest_.empty()) return 0;
    const auto first = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return first;
  }
  // One of so many.
  unsigned pick(unsigned count) { return byte() % count; }
  bool flag() { return pick(2) == 1; }
  std::uint32_t word() {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) number = number << 8U | byte();
    return number;
  }
  // As many as the next byte says.
  std::string text() {
    const std::size_t wanted = byte();
    const std::size_t size = std::min(wanted, rest_.size());
    std::string taken(rest_.substr(0, size));
    rest_.remove_prefix(size);
    return taken;
  }
  // Up to the next line that holds this alone, and without it.
  std::string part(std::string_view separator = "====") {
    std::string line = "\n";
    line.append(separator).append("\n");
    const std::size_t end = std::min(rest_.find(line), rest_.size());
    std::string taken(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + line.size(), rest_.size()));
    return taken;
  }
  std::string rest() {
    std::string taken(rest_);
    rest_ = {};
    return taken;
  }

 private:
  std::string_view rest_;
};

}  // namespace kelvane::fuzz

// What the fuzzer and the replay call, for each input anew.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
