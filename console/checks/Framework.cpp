#include "console/checks/Framework.h"

#include <chrono>

#include <dlfcn.h>

#include "console/checks/Access.h"
#include "console/checks/Trial.h"
#include "console/display/Words.h"
#include "contract/Framework.h"
#include "contract/Paths.h"

namespace kelvane::console {
namespace {

constexpr std::chrono::seconds kLongestLoading{10};
constexpr char kLoaded[] = "+";  // the first line of a trial that has loaded the library

constexpr char kNotStarted[] =
    "The worker cannot be started at all: every job stays in state WAIT, and nothing is logged.";
constexpr char kPutBack[] =
    "Install the application anew, or put the framework of this system and processor there.";

void load(const std::string& path, const Tell& tell) {
  void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    const char* fault = ::dlerror();
    tell(fault == nullptr ? "unknown cause" : fault);
    return;
  }
  tell(kLoaded);
  for (const framework::Function& function : framework::kFunctions) {
    if (::dlsym(library, function.name) == nullptr) tell(std::string("\n") + function.name);
  }
}

LibraryTrial trialOf(const std::string& answer, const std::string& fault) {
  if (!fault.empty()) return {"loading it " + fault, {}};
  if (answer.rfind(kLoaded, 0) != 0) return {answer.empty() ? "loading it ends" : answer, {}};
  LibraryTrial trial;
  for (std::size_t line = answer.find('\n'); line != std::string::npos;) {
    const std::size_t next = answer.find('\n', line + 1);
    trial.missing.push_back(answer.substr(line + 1, next - line - 1));
    line = next;
  }
  return trial;
}

}  // namespace

LibraryTrial tryLibrary(const std::string& path) {
  const Trial trial = tryApart(kLongestLoading, [&path](const Tell& tell) { load(path, tell); });
  return trialOf(trial.answer, trial.fault);
}

std::string frameworkPath(const std::string& bundle) {
  const std::string folder = bundle + "/" + paths::kFrameworks + "/";
  for (const char* name : frameworkLibraries()) {
    if (kindOf(folder + name) != EntryKind::missing) return folder + name;
  }
  return folder + frameworkLibraries().front();
}

Findings frameworkFindings(const std::string& path) {
  const EntryKind kind = kindOf(path);
  if (kind == EntryKind::missing || kind == EntryKind::unreachable) {
    const std::string cause = refusal(path, Access::read);
    return {{Code::frameworkMissing, Severity::error, "open " + path + ": " + cause, kNotStarted,
             kPutBack, path}};
  }
  if (kind != EntryKind::file) {
    return {{Code::frameworkNoFile, Severity::error, path + " is no regular file", kNotStarted,
             kPutBack, path}};
  }
  const LibraryTrial trial = tryLibrary(path);
  if (!trial.fault.empty()) {
    return {{Code::frameworkNotLoadable, Severity::error,
             path + " cannot be loaded: " + trial.fault, kNotStarted, kPutBack, path}};
  }
  if (trial.missing.empty()) return {};
  return {{Code::frameworkIncomplete, Severity::error,
           path + " lacks " + joined(trial.missing, ", "), kNotStarted, kPutBack, path}};
}

}  // namespace kelvane::console
