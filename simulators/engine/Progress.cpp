#include "simulators/engine/Progress.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

#include <unistd.h>

#include "platform/Utf8.h"

namespace kelvane::simulator {
namespace {

constexpr char kNoText[] = "\xFF\xFE";

bool writeOut(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

Progress::Progress(const ServiceFaults& faults, platform::Host& host, std::size_t lines)
    : faults_(faults), host_(host), lines_(std::max<std::size_t>(lines, 1)) {}

void Progress::tell(const std::string& line) {
  write(line);
  takeTime();
}

void Progress::chatter() {
  std::uint64_t line = 0;
  bool read = true;
  while (read && (faults_.endlessChatter || line < faults_.chatterLines)) {
    read = write("chatter " + std::to_string(++line) + " that nobody asked for");
  }
}

bool Progress::write(const std::string& line) const {
  if (faults_.output == ServiceFaults::Output::none) return true;
  const bool isText = faults_.output == ServiceFaults::Output::text;
  return writeOut(platform::repairedUtf8(line) + (isText ? "" : kNoText) + "\n");
}

// Whole seconds are due line by line, so that all have passed with the last one.
void Progress::takeTime() {
  told_ = std::min(told_ + 1, lines_);
  const auto due = static_cast<unsigned>(std::uint64_t{faults_.seconds} * told_ / lines_);
  if (due > passed_) host_.sleep(due - passed_);
  passed_ = due;
}

}  // namespace kelvane::simulator
