#include "platform/ChildProcess.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Exception.h"
#include "platform/Host.h"
#include "platform/Utf8.h"

extern char** environ;  // not every system's headers declare it

namespace kelvane::platform {
namespace {

void closeFile(int& file) {
  if (file >= 0) ::close(file);
  file = -1;
}

// A pipe whose ends are closed with it, unless they are taken.
struct Pipe {
  Pipe() {
    std::array<int, 2> ends = {-1, -1};
    if (::pipe(ends.data()) != 0) return;
    reading = aboveStandardStreams(ends[0]);
    writing = aboveStandardStreams(ends[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    closeFile(reading);
    closeFile(writing);
  }

  bool isOpen() const { return reading >= 0 && writing >= 0; }

  int reading = -1;
  int writing = -1;

 private:
  // The same end under a number that no standard stream of the child will take.
  static int aboveStandardStreams(int end) {
    const int moved = ::fcntl(end, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ::close(end);
    return moved;
  }
};

// The child's files and signals.
class SpawnSettings {
 public:
  SpawnSettings(const Pipe& input, const Pipe& output) {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawn_file_actions_adddup2(&actions_, input.reading, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions_, output.writing, STDOUT_FILENO);
    // What the worker ignores is its own affair.
    sigset_t byDefault;
    ::sigemptyset(&byDefault);
    ::sigaddset(&byDefault, SIGPIPE);
    ::sigaddset(&byDefault, SIGXFSZ);
    ::posix_spawnattr_setsigdefault(&attributes_, &byDefault);
    native::closeOtherFiles(&actions_, &attributes_, POSIX_SPAWN_SETSIGDEF);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }

  const posix_spawn_file_actions_t* actions() const { return &actions_; }
  const posix_spawnattr_t* attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
};

[[noreturn]] void refuse(const std::string& path, int cause) {
  throw Exception("start " + path + ": " + std::strerror(cause));
}

pid_t spawn(const std::string& path, const Value& arguments, const SpawnSettings& settings) {
  std::vector<std::string> texts = {path};
  for (const Value& argument : arguments.elements()) texts.push_back(argument.string());
  std::vector<char*> argv;
  argv.reserve(texts.size() + 1);
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);
  pid_t process = -1;
  const int cause = ::posix_spawn(&process, path.c_str(), settings.actions(), settings.attributes(),
                                  argv.data(), environ);
  if (cause != 0) refuse(path, cause);
  return process;
}

}  // namespace

Value argumentList(std::initializer_list<Value> arguments) {
  Value list = Value::array();
  for (const Value& argument : arguments) {
    if (argument.isNothing()) break;
    list.append(argument.string());
  }
  return list;
}

ChildProcess::ChildProcess(const Value& path, const Value& arguments) {
  if (path.isNothing()) throw Exception("start: there is no path");
  Pipe input;
  Pipe output;
  if (!input.isOpen() || !output.isOpen()) refuse(path.string(), errno);
  process_ = spawn(path.string(), arguments, SpawnSettings(input, output));
  input_ = std::exchange(input.writing, -1);
  output_ = std::exchange(output.reading, -1);
}

ChildProcess::~ChildProcess() { terminate(); }

Value ChildProcess::readOutput() {
  std::string bytes;
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t got = ::read(output_, block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    bytes.append(block.data(), static_cast<std::size_t>(got));
  }
  if (!isUtf8(bytes)) return {};
  return bytes;
}

void ChildProcess::terminate() {
  if (process_ > 0 && ::waitpid(process_, nullptr, WNOHANG) == 0) {
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, WNOHANG);
  }
  process_ = -1;
  closeFile(input_);
  closeFile(output_);
}

}  // namespace kelvane::platform
