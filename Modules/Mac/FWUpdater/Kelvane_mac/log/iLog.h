// iLog: the worker's only diagnostic channel. One text file, one line per call, in call order.
//
// Procedural, with module-level state, as its users on both sides know it. Not thread-safe: the
// worker has one thread.
#pragma once

#include <cstdint>
#include <exception>
#include <span>
#include <string>

#include "platform/Host.h"
#include "platform/Text.h"

namespace kelvane {

enum LogLevel : int {
  kLogDebug = 0,
  kLogInfo = 1,
  kLogWarning = 2,
  kLogError = 3,
  kLogCritical = 4,
};

// UTF-8 path of the log file, NUL-terminated; an empty first byte means that no log is kept.
extern char _logPath[512];

// A level is written when its flag is exactly 1. Levels outside 1 to 4 go by the debug flag.
extern std::uint8_t iLog_enable_debug;
extern std::uint8_t iLog_enable_info;
extern std::uint8_t iLog_enable_warning;
extern std::uint8_t iLog_enable_error;
extern std::uint8_t iLog_enable_critical;

// Where the times of the lines come from. Not owned; must outlive the last line. Null stands for
// the system's own clock.
extern const platform::Host* iLog_host;

// Names the log file for all later lines. A path of 512 bytes or more ends the process (abort).
void setLogPath(const char* path);

// Writes "[HH:mm:ss] [file][line][function][level] message" and a line feed to the end of the log
// file. The file is the base name of `file`, the function is cut out of a name of the form
// "-[Kelvane run:]". Nothing is written, and nothing raised, where no path is set or no file
// is there: it is never created, and nothing but a regular file is written to. Raises
// platform::Exception where the file was opened and the writing failed.
void iLog_tellList(int level, const char* file, std::int32_t line, const char* function,
                   const char* format, std::span<const platform::FormatArgument> arguments);

template <typename... Arguments>
void iLog_tell(int level, const char* file, std::int32_t line, const char* function,
               const char* format, const Arguments&... arguments) {
  iLog_tellList(level, file, line, function, format, platform::argumentList(arguments...));
}

// One error line with the reason of a caught exception. Never raises: with a log that cannot be
// written there is nowhere left to tell it.
void iLog_tellCaught(const char* file, std::int32_t line, const char* function,
                     const std::exception& caught) noexcept;

// Rotates the log file at the path: one of 100 MiB or more is moved to its lowest free generation,
// 1 to 100, and an empty file takes its place. Nothing in the worker calls it. Where the move
// fails the file is emptied all the same; with all generations taken it is left alone.
void renameFile(const platform::Value& path);
// The path of generation n of a file: "/a/log.txt" gives "/a/log(3).txt". For absolute paths; a
// relative one loses its first component and becomes absolute (meant so). Touches no file.
platform::Value fileRename(const platform::Value& path, unsigned long n);

// 1 when the switch of the level is on, else 0.
int _check_level(int level);
// "debug" for anything outside 1 to 4.
const char* _base_level_name(int level);
// The rest of the path after its last "/": a view into the same bytes.
const char* _base_file_name(const char* path);
// Cuts the name: every blank switches copying on and is dropped, and "(" or ":" ends it, so that
// "-[Kelvane run:]" gives "run" and a plain name gives nothing. Always 1.
int _base_function_name(const char* function, std::string& cut);

}  // namespace kelvane

// The log lines of the worker's methods: `message` is the method's message name as a literal, such
// as "readJSONFileDict:".
#define KELVANE_LOG(message, ...)                                                          \
  ::kelvane::iLog_tell(::kelvane::kLogDebug, __FILE__, __LINE__, "-[Kelvane " message "]", \
                       __VA_ARGS__)
#define KELVANE_LOG_CAUGHT(message, caught) \
  ::kelvane::iLog_tellCaught(__FILE__, __LINE__, "-[Kelvane " message "]", caught)
