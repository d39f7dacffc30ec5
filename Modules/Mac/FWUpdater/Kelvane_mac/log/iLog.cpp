#include "log/iLog.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "contract/Log.h"
#include "platform/File.h"
#include "platform/Utf8.h"

namespace kelvane {

char _logPath[512] = {};
std::uint8_t iLog_enable_debug = 1;
std::uint8_t iLog_enable_info = 1;
std::uint8_t iLog_enable_warning = 1;
std::uint8_t iLog_enable_error = 1;
std::uint8_t iLog_enable_critical = 1;
const platform::Host* iLog_host = nullptr;

namespace {

std::string timeText() {
  const std::tm now =
      iLog_host == nullptr ? platform::SystemHost().localTime() : iLog_host->localTime();
  char text[16] = {};
  std::strftime(text, sizeof text, "%H:%M:%S", &now);
  return text;
}

// "[time] [file][line][function][level] ".
std::string fieldsOf(const std::string& time, int level, const char* file, std::int32_t line,
                     const char* function) {
  std::string cut;
  _base_function_name(function, cut);
  std::string fields;
  fields.reserve(128);  // most have less
  fields.append("[").append(time).append("] [").append(_base_file_name(file)).append("][");
  fields.append(std::to_string(line)).append("][").append(cut).append("][");
  fields.append(_base_level_name(level)).append("] ");
  return fields;
}

// The line takes its message as a C string: of one that holds a NUL character, the part before it.
std::vector<std::string_view> wholeLine(const std::string& fields,
                                        const std::vector<std::string_view>& message) {
  std::vector<std::string_view> text;
  text.reserve(message.size() + 2);
  text.push_back(fields);
  for (const std::string_view piece : message) {
    const std::size_t end = piece.find('\0');
    text.push_back(piece.substr(0, end));
    if (end != std::string_view::npos) break;
  }
  text.emplace_back("\n");
  return text;
}

// Of a long line nothing is copied; a short one is checked and written faster as one text. What is
// not UTF-8 is mended.
void appendText(platform::FileEnd& log, const std::vector<std::string_view>& text) {
  constexpr std::size_t kLong = 4096;  // bytes
  std::size_t size = 0;
  for (const std::string_view piece : text) size += piece.size();
  if (size >= kLong && std::all_of(text.begin(), text.end(), platform::isUtf8)) {
    log.append(text);
    return;
  }
  std::string line = platform::joined(text);
  if (!platform::isUtf8(line)) line = platform::repairedUtf8(line);
  log.append(line);
}

}  // namespace

void setLogPath(const char* path) {
  const std::size_t length = std::strlen(path);
  if (length >= sizeof _logPath) std::abort();
  std::fill(std::begin(_logPath), std::end(_logPath), '\0');
  std::memcpy(_logPath, path, length + 1);
}

void iLog_tellList(int level, const char* file, std::int32_t line, const char* function,
                   const char* format, std::span<const platform::FormatArgument> arguments) {
  if (_logPath[0] == '\0') return;
  // Before the log takes a descriptor: the system may need one to learn the time zone.
  const std::string time = timeText();
  platform::FileEnd log(_logPath);
  if (!log.isOpen()) return;
  if (_check_level(level) == 0) return;
  const platform::FilledFormat message(format, arguments);
  const std::string fields = fieldsOf(time, level, file, line, function);
  appendText(log, wholeLine(fields, message.pieces()));
}

void iLog_tellCaught(const char* file, std::int32_t line, const char* function,
                     const std::exception& caught) noexcept {
  try {
    iLog_tell(kLogError, file, line, function, "%@", std::string(caught.what()));
  } catch (const std::exception&) {
    return;  // the log itself is what failed
  }
}

int _check_level(int level) {
  switch (level) {
    case kLogInfo:
      return iLog_enable_info == 1 ? 1 : 0;
    case kLogWarning:
      return iLog_enable_warning == 1 ? 1 : 0;
    case kLogError:
      return iLog_enable_error == 1 ? 1 : 0;
    case kLogCritical:
      return iLog_enable_critical == 1 ? 1 : 0;
    default:
      return iLog_enable_debug == 1 ? 1 : 0;
  }
}

const char* _base_level_name(int level) {
  return logging::kLevels[level >= kLogInfo && level <= kLogCritical ? level : kLogDebug];
}

const char* _base_file_name(const char* path) {
  const char* slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}

int _base_function_name(const char* function, std::string& cut) {
  cut.clear();
  bool copying = false;
  for (const char* next = function; *next != '\0' && *next != '(' && *next != ':'; ++next) {
    if (*next == ' ') {
      copying = true;
    } else if (copying) {
      cut += *next;
    }
  }
  return 1;
}

}  // namespace kelvane
