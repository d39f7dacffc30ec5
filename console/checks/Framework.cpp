#include "console/checks/Framework.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "console/checks/Access.h"
#include "console/display/Words.h"
#include "contract/Framework.h"
#include "contract/Paths.h"
#include "platform/Descriptor.h"

namespace kelvane::console {
namespace {

constexpr unsigned kLongestLoading = 10;  // seconds
constexpr char kLoaded[] = "+";           // the first line of a trial that has loaded the library

constexpr char kNoWorker[] =
    "The worker cannot be started at all: every job stays in state WAIT, and nothing is logged.";
constexpr char kPutBack[] =
    "Install the application anew, or put the framework of this system and processor there.";

// --- in the child

void tell(int pipe, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(pipe, text.data(), text.size());
    if (written <= 0) ::_exit(1);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

// The library's own start-up code runs here: it is to be quiet and quick.
void restrain() {
  std::signal(SIGALRM, SIG_DFL);
  ::alarm(kLongestLoading);
  const int nowhere = ::open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere, stream);
}

[[noreturn]] void loadInChild(const std::string& path, int pipe) {
  restrain();
  void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    const char* fault = ::dlerror();
    tell(pipe, fault == nullptr ? "unknown cause" : fault);
    ::_exit(0);
  }
  tell(pipe, kLoaded);
  for (const framework::Function& function : framework::kFunctions) {
    if (::dlsym(library, function.name) == nullptr) {
      tell(pipe, std::string("\n") + function.name);
    }
  }
  ::_exit(0);
}

// --- in the parent

std::string readToEnd(int pipe) {
  std::string text;
  std::array<char, 4096> block;
  for (;;) {
    const ssize_t got = ::read(pipe, block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return text;
    text.append(block.data(), static_cast<std::size_t>(got));
  }
}

std::string endingOf(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFSIGNALED(status)) return {};
  if (WTERMSIG(status) == SIGALRM) {
    return "loading it takes longer than " + std::to_string(kLongestLoading) + " s";
  }
  return "loading it ends with signal " + std::to_string(WTERMSIG(status));
}

LibraryTrial trialOf(const std::string& answer, const std::string& ending) {
  if (!ending.empty()) return {ending, {}};
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
  std::array<int, 2> ends = {-1, -1};
  if (::pipe(ends.data()) != 0) return {std::string("no pipe: ") + std::strerror(errno), {}};
  const platform::Descriptor reading(ends[0]);
  platform::Descriptor writing(ends[1]);
  const pid_t child = ::fork();
  if (child < 0) return {std::string("no process: ") + std::strerror(errno), {}};
  if (child == 0) loadInChild(path, writing.number());
  writing.close();
  const std::string answer = readToEnd(reading.number());
  return trialOf(answer, endingOf(child));
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
    return {{Code::frameworkMissing, Severity::error, "open " + path + ": " + cause, kNoWorker,
             kPutBack, path}};
  }
  if (kind != EntryKind::file) {
    return {{Code::frameworkNoFile, Severity::error, path + " is no regular file", kNoWorker,
             kPutBack, path}};
  }
  const LibraryTrial trial = tryLibrary(path);
  if (!trial.fault.empty()) {
    return {{Code::frameworkNotLoadable, Severity::error,
             path + " cannot be loaded: " + trial.fault, kNoWorker, kPutBack, path}};
  }
  if (trial.missing.empty()) return {};
  return {{Code::frameworkIncomplete, Severity::error,
           path + " lacks " + joined(trial.missing, ", "), kNoWorker, kPutBack, path}};
}

}  // namespace kelvane::console
