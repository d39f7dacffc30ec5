#include "simulators/controllers/Journal.h"

#include <cerrno>
#include <cstring>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

#include "platform/Json.h"
#include "platform/Restarted.h"

namespace kelvane::simulator {

FileJournal::FileJournal(const std::string& path) {
  if (path.empty()) return;
  file_ = platform::restarted(
      [&] { return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666); });
  if (file_ < 0) {
    std::cerr << "ZORAPI simulator: journal " << path << ": " << std::strerror(errno) << '\n';
  }
}

FileJournal::~FileJournal() {
  if (file_ >= 0) ::close(file_);
}

void FileJournal::write(const platform::Value& record) {
  if (file_ < 0) return;
  const std::string line = jsonLine(record) + "\n";
  const ssize_t written =
      platform::restarted([&] { return ::write(file_, line.data(), line.size()); });
  if (written != static_cast<ssize_t>(line.size())) {
    std::cerr << "ZORAPI simulator: a journal line could not be written\n";
  }
}

// Strings hold no raw line breaks, so every one in the text is layout, with its indentation.
std::string jsonLine(const platform::Value& value) {
  const std::string text = platform::printJson(value).value_or("{}");
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\n') {
      line.push_back(text[i]);
      continue;
    }
    while (i + 1 < text.size() && text[i + 1] == ' ') ++i;
    if (line.ends_with(',')) line.push_back(' ');
  }
  return line;
}

}  // namespace kelvane::simulator
