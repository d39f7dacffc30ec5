#include "console/commands/RotateLog.h"

#include <cstdint>

#include <sys/stat.h>
#include <unistd.h>

#include "console/checks/Access.h"
#include "console/commands/Arguments.h"
#include "console/commands/Turn.h"
#include "console/display/JsonText.h"
#include "console/display/Paragraphs.h"
#include "console/job/ExitCode.h"
#include "console/job/LogFile.h"
#include "contract/Log.h"
#include "log/iLog.h"
#include "platform/File.h"

namespace kelvane::console {

using platform::Value;

namespace {

// For machines; one of the last two.
constexpr char kRotated[] = "rotated";
constexpr char kGeneration[] = "generation";
constexpr char kSize[] = "size";

std::string existingLog(const std::string& sharedFolder) {
  std::string path = absolutePath(logPath(sharedFolder), "log");
  const EntryKind kind = kindOf(path);
  if (kind == EntryKind::file) return path;
  throw Failure(kNotFound,
                path + (kind == EntryKind::missing ? " does not exist" : " is no regular file"));
}

// Where the module moves it. What would make that fail is looked at first: the module empties the
// log all the same.
std::string nextGeneration(const std::string& path) {
  const std::string cause = changeRefusal(platform::withoutLastComponent(path));
  if (!cause.empty()) throw Failure(kNotRotated, "the log cannot be moved: " + cause);
  for (unsigned long n = 1; n <= logging::kGenerations; ++n) {
    std::string generation = fileRename(path, n).string();
    if (!platform::exists(generation)) return generation;
  }
  std::string message = "all ";
  message.append(std::to_string(logging::kGenerations)).append(" generations of ").append(path);
  throw Failure(kNotRotated, message.append(" are there; move some away"));
}

// Of the old log, so that the worker may write to the new one, too, whoever has rotated it.
void takeOverAttributes(const std::string& path, const struct stat& old) {
  struct stat fresh = {};
  if (::stat(path.c_str(), &fresh) != 0) return;
  const bool isAnothers = fresh.st_uid != old.st_uid || fresh.st_gid != old.st_gid;
  const bool failed = (isAnothers && ::chown(path.c_str(), old.st_uid, old.st_gid) != 0) ||
                      ::chmod(path.c_str(), old.st_mode & 07777) != 0;
  if (!failed) return;
  throw Failure(kNotRotated,
                "the log was rotated, and the new one has another owner or other "
                "permissions than the old one: look whether the worker may write " +
                    path);
}

void showText(const Value& forMachines, const std::string& forPeople, const Screen& screen) {
  if (screen.json) {
    screen.out << jsonLine(forMachines) << std::endl;
  } else {
    showLines({forPeople}, screen);
  }
}

void rotate(const std::string& path, const Screen& screen) {
  const std::string generation = nextGeneration(path);
  struct stat old = {};
  if (::stat(path.c_str(), &old) != 0) throw Failure(kNotFound, path + " does not exist");
  renameFile(path);
  if (!platform::exists(generation)) {
    throw Failure(kNotRotated, path + " was not moved to " + generation);
  }
  takeOverAttributes(path, old);
  showText(Value::dictionary({{kRotated, Value::boolean(true)},
                              {kGeneration, displayText(generation, Charset::utf8)}}),
           "the log was moved to " + generation, screen);
}

void showNothingToDo(const std::string& path, std::uint64_t size, const Screen& screen) {
  showText(Value::dictionary({{kRotated, Value::boolean(false)},
                              {kSize, Value::integer(static_cast<std::int64_t>(size))}}),
           path + " has " + std::to_string(size) + " bytes; it is rotated from " +
               std::to_string(logging::kRotatedFrom) + " bytes on",
           screen);
}

}  // namespace

int rotateLog(const RotateLogOptions& options, const Surroundings& surroundings) {
  const std::string sharedFolder = existingShared(options.sharedFolder);
  const std::string path = existingLog(sharedFolder);
  const TurnWish wish = {.sharedFolder = sharedFolder, .advice = "the log was not rotated"};
  const JobFileLock lock = takeTurn(JobFile(sharedFolder), wish, surroundings);
  const std::uint64_t size = platform::fileSize(path);
  if (size < logging::kRotatedFrom) {
    showNothingToDo(path, size, surroundings.screen);
  } else {
    rotate(path, surroundings.screen);
  }
  return kSuccess;
}

}  // namespace kelvane::console
