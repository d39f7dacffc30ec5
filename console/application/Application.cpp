#include "console/application/Application.h"

#include <filesystem>
#include <system_error>

#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Value.h"
#include "platform/XmlPropertyList.h"

namespace kelvane::console {

namespace fs = std::filesystem;

namespace {

constexpr char kContents[] = "/Contents";
constexpr char kPropertyList[] = "/Contents/Info.plist";
constexpr const char* kVersionKeys[] = {"CFBundleShortVersionString", "CFBundleVersion"};

bool isProgram(const fs::directory_entry& entry) {
  constexpr fs::perms kExecutable =
      fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
  std::error_code untold;
  const fs::file_status status = entry.symlink_status(untold);
  return fs::is_regular_file(status) && (status.permissions() & kExecutable) != fs::perms::none;
}

bool holdsAProgram(const std::string& folder) {
  std::error_code failed;
  fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied,
                                         failed);
  for (; !failed && entry != fs::recursive_directory_iterator(); entry.increment(failed)) {
    if (isProgram(*entry)) return true;
  }
  return false;
}

platform::Value propertyListAt(const std::string& path) {
  try {
    return platform::parseXmlPropertyList(platform::readFile(path));
  } catch (const platform::Exception&) {
    return {};  // there is none
  }
}

}  // namespace

std::string applicationFault(const std::string& bundle) {
  const std::string contents = bundle + kContents;
  if (!platform::isFolder(bundle)) return "it is a file";
  if (!platform::isFolder(contents)) return "it has no folder Contents";
  return holdsAProgram(contents) ? "" : "there is no program in its Contents";
}

std::string packageFault(const std::string& path) {
  if (path.empty()) return " is empty";
  if (!platform::exists(path)) return " does not exist";
  const std::string fault = applicationFault(path);
  return fault.empty() ? "" : " is no application bundle: " + fault;
}

std::string versionOf(const std::string& bundle) {
  return versionOfPropertyList(bundle + kPropertyList);
}

std::string versionOfPropertyList(const std::string& path) {
  const platform::Value list = propertyListAt(path);
  if (!list.isDictionary()) return {};
  for (const char* key : kVersionKeys) {
    const platform::Value& version = list.get(key);
    if (version.isString()) return version.string();
  }
  return {};
}

}  // namespace kelvane::console
