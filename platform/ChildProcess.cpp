#include "platform/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Native.h"
#include "platform/Restarted.h"
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
    const int moved = restarted([&] { return ::fcntl(end, F_DUPFD_CLOEXEC, STDERR_FILENO + 1); });
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

void requireNoNul(const std::string& text) {
  if (!canBePath(text)) throw Exception("start: an argument holds a NUL character: " + text);
}

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

Value argumentList(const Value& path, std::initializer_list<Value> arguments) {
  if (path.isString()) requireNoNul(path.string());
  Value list = Value::array();
  for (const Value& argument : arguments) {
    if (argument.isNothing()) break;
    requireNoNul(argument.string());
    list.append(argument);
  }
  return list;
}

void ChildOutput::append(std::string_view bytes) {
  if (!isWhole_ || bytes.empty()) return;
  if (bytes.size() > room_ - size_) {
    const std::size_t wanted = size_ + std::max(bytes.size(), size_ / 8);
    auto* grown = static_cast<char*>(std::realloc(bytes_.get(), wanted));
    isWhole_ = grown != nullptr;
    if (!isWhole_) {
      bytes_.reset();
      return;
    }
    static_cast<void>(bytes_.release());  // what it was is in `grown`, or gone
    bytes_.reset(grown);
    room_ = wanted;
  }
  std::memcpy(bytes_.get() + size_, bytes.data(), bytes.size());
  size_ += bytes.size();
}

std::optional<std::string_view> ChildOutput::text() const {
  const std::string_view bytes(bytes_.get(), isWhole_ ? size_ : 0);
  if (!isWhole_ || !isUtf8(bytes)) return std::nullopt;
  return bytes;
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

template <typename Take>
void ChildProcess::readToTheEnd(Take take) {
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t got = restarted([&] { return ::read(output_, block.data(), block.size()); });
    if (got <= 0) return;
    take(std::string_view(block.data(), static_cast<std::size_t>(got)));
  }
}

ChildOutput ChildProcess::readOutput() {
  ChildOutput output;
  readToTheEnd([&output](std::string_view bytes) { output.append(bytes); });
  return output;
}

void ChildProcess::discardOutput() {
  readToTheEnd([](std::string_view /*bytes*/) {});
}

void ChildProcess::terminate() {
  const auto reap = [this] {
    return restarted([this] { return ::waitpid(process_, nullptr, WNOHANG); });
  };
  if (process_ > 0 && reap() == 0) {
    ::kill(process_, SIGTERM);
    reap();
  }
  process_ = -1;
  closeFile(input_);
  closeFile(output_);
}

}  // namespace kelvane::platform
