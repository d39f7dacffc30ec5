#include "platform/Host.h"

#include <cctype>
#include <csignal>
#include <cstdlib>

#include <unistd.h>

#include "platform/File.h"
#include "platform/Native.h"
#include "platform/Utf8.h"

namespace kelvane::platform {

void SystemHost::sleep(unsigned seconds) {
  while (seconds > 0) seconds = ::sleep(seconds);  // a signal leaves a remainder
}

std::tm SystemHost::localTime() const {
  const std::time_t now = std::time(nullptr);
  if (now != brokenDown_) {
    ::localtime_r(&now, &local_);
    brokenDown_ = now;
  }
  return local_;
}

SystemVersion SystemHost::systemVersion() const {
  return parseVersion(native::systemVersionText());
}

Value SystemHost::executableFolder() const {
  const Value path = decodedUtf8(native::executablePath().c_str());
  if (path.isNothing() || path.string().empty()) return {};
  return withoutLastComponent(path.string());
}

void ignoreWriteSignals() {
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
}

SystemVersion parseVersion(const std::string& text) {
  SystemVersion version = {0, 0, 0};
  const char* rest = text.c_str();
  for (std::int64_t& number : version) {
    if (std::isdigit(static_cast<unsigned char>(*rest)) == 0) break;
    char* end = nullptr;
    number = std::strtoll(rest, &end, 10);
    rest = end;
    if (*rest != '.') break;
    ++rest;
  }
  return version;
}

}  // namespace kelvane::platform
