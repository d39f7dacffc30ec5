#include "console/checks/Access.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "console/job/JsonMistake.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

int modeOf(Access access) {
  if (access == Access::read) return R_OK;
  return access == Access::write ? W_OK : X_OK;
}

std::string nearestFolder(std::string folder) {
  while (kindOf(folder) == EntryKind::missing && folder.find('/') != std::string::npos &&
         folder != "/") {
    folder = platform::withoutLastComponent(folder);
  }
  return kindOf(folder) == EntryKind::missing ? "." : folder;
}

std::string startOf(const std::string& path) {
  std::string start(256, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<std::size_t>(file.gcount()));
  return start;
}

// What the systems' own programs and libraries begin with.
bool isBinary(const std::string& start) {
  for (const char* magic : {"\x7F"
                            "ELF",
                            "\xCF\xFA\xED\xFE", "\xCA\xFE\xBA\xBE"}) {
    if (start.rfind(magic, 0) == 0) return true;
  }
  return false;
}

// Of "#!/bin/sh -e" the interpreter.
std::string interpreterOf(const std::string& start) {
  const std::string line = start.substr(0, start.find('\n'));
  const std::size_t first = line.find_first_not_of(' ', 2);
  if (first == std::string::npos) return {};
  return line.substr(first, line.find(' ', first) - first);
}

}  // namespace

EntryKind kindOf(const std::string& path) {
  struct stat entry = {};
  if (::stat(path.c_str(), &entry) != 0) {
    return errno == ENOENT || errno == ENOTDIR ? EntryKind::missing : EntryKind::unreachable;
  }
  if (S_ISDIR(entry.st_mode)) return EntryKind::folder;
  return S_ISREG(entry.st_mode) ? EntryKind::file : EntryKind::other;
}

bool isLink(const std::string& path) {
  struct stat entry = {};
  return ::lstat(path.c_str(), &entry) == 0 && S_ISLNK(entry.st_mode);
}

std::string refusal(const std::string& path, Access access) {
  if (::faccessat(AT_FDCWD, path.c_str(), modeOf(access), AT_EACCESS) == 0) return {};
  return std::strerror(errno);
}

std::string changeRefusal(const std::string& folder) {
  const std::string nearest = nearestFolder(folder);
  const EntryKind kind = kindOf(nearest);
  std::string cause = refusal(nearest, Access::write);
  if (cause.empty()) cause = refusal(nearest, Access::execute);
  if (kind != EntryKind::folder && kind != EntryKind::unreachable) cause = std::strerror(ENOTDIR);
  return cause.empty() ? "" : nearest + ": " + cause;
}

std::string programFault(const std::string& path) {
  const std::string start = startOf(path);
  if (start.empty()) return "it is empty";
  if (isBinary(start)) return {};
  if (start.rfind("#!", 0) != 0) return "it is no program";
  const std::string interpreter = interpreterOf(start);
  return platform::exists(interpreter) ? "" : "its interpreter " + interpreter + " does not exist";
}

std::string libraryFault(const std::string& path) {
  const std::string start = startOf(path);
  if (start.empty()) return "it is empty";
  return isBinary(start) ? "" : "it is no library";
}

JsonFile readJsonFile(const std::string& path) {
  const EntryKind kind = kindOf(path);
  if (kind == EntryKind::folder) return {{}, path + " is a folder"};
  if (kind == EntryKind::other) return {{}, path + " is no regular file"};
  try {
    const std::string text = platform::readFile(path);
    platform::Value value = platform::parseJson(text);
    if (value.isNothing()) return {{}, path + whyNoJson(text)};
    return {value, ""};
  } catch (const platform::Exception& unreadable) {
    return {{}, unreadable.what()};
  }
}

}  // namespace kelvane::console
