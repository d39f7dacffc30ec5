// Loaded before the worker's libraries: the worker, and no other program, makes the mistake that
// KELVANE_MISTAKE names. What a proof is for is told of such a worker, or the proof does not bite.
//   writes-in-place            what was to take a file's place is written into that, in pieces
//   overwrites-controllers    the simulated controllers' alone
//   goes-back                  what was in its place comes back for some time
//   removes-first              a file is removed, and some time later another takes its place
//   moves-in-pieces            of a folder that gets its name, the entries are moved one by one
//   drops-others               the first of several records is left out of what is written
//   changes-others             in another record a letter is another
//   adds-blanks                behind the records stand blanks, as many as nobody can know
//   stays-running              a job that is over is still running in what is written
//   loses-the-log              what stood in a file is gone when something is to be added to it
//   skips-files                no file is synchronised;
//   skips-folders              no folder;
//   skips-trees                no tree
//   leaves-a-file              another one at each run, beside a file that is replaced
//   leaves-a-child             a process that outlives the worker
//   leaves-a-descriptor        an open file
//   leaves-temporaries         what could not be put in place stays
//   works-once                 whoever comes after another worker does nothing;
//   fails-the-next             it ends with the exit status 1
//   takes-short-for-whole      what was not written is forgotten
//   gives-up-when-interrupted  a write that a signal interrupts is not made again
//   tells-failures             of a write that fails there is a word in the log
//   keeps-memory               after one that fails, memory is not given back
//   never-waits                a job that has begun is over
//   fails-loudly               a write that fails, or memory that cannot be had, ends it with the
//                              exit status 1;
//   crashes                    by a signal

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include "tests/end_to_end/NextFunction.h"

namespace {

constexpr std::size_t kLongestPath = 4096;
constexpr std::size_t kLongestText = 10000;

bool isWorker() {
  char program[kLongestPath];
  const ssize_t size = ::readlink("/proc/self/exe", program, sizeof program);
  return size > 0 &&
         std::string_view(program, static_cast<std::size_t>(size)).ends_with("/Kelvane");
}

bool makes(std::string_view mistake) {
  static const char* const made = isWorker() ? std::getenv("KELVANE_MISTAKE") : nullptr;
  return made != nullptr && made == mistake;
}

template <typename Function>
Function* next(const char* name) {
  return kelvane::test::nextFunction<Function>(name);
}

int renameReally(const char* from, const char* to) {
  static const auto really = next<int(const char*, const char*)>("rename");
  return really(from, to);
}

int unlinkReally(const char* path) {
  static const auto really = next<int(const char*)>("unlink");
  return really(path);
}

int openReally(const char* path, int flags, mode_t mode) {
  static const auto really = next<int(const char*, int, ...)>("open");
  return really(path, flags, mode);
}

// Made again where it is interrupted.
int openOwn(const char* path, int flags) {
  constexpr mode_t kMode = 0600;
  int file = -1;
  do {
    file = openReally(path, flags, kMode);
  } while (file < 0 && errno == EINTR);
  return file;
}

bool endsWith(std::string_view text, std::string_view end) { return text.ends_with(end); }

bool isFile(const char* path) {
  struct stat entry = {};
  return ::stat(path, &entry) == 0 && S_ISREG(entry.st_mode);
}

bool isOf(int file, mode_t kind) {
  struct stat entry = {};
  return ::fstat(file, &entry) == 0 && (entry.st_mode & S_IFMT) == kind;
}

int writeInPlace(const char* from, const char* to) {
  const int source = openOwn(from, O_RDONLY | O_CLOEXEC);
  const int target = openOwn(to, O_WRONLY | O_TRUNC | O_CLOEXEC);
  char piece[16];
  for (ssize_t size = 0; (size = ::read(source, piece, sizeof piece)) > 0;) {
    if (::write(target, piece, static_cast<std::size_t>(size)) != size) return -1;
  }
  ::close(source);
  ::close(target);
  return unlinkReally(from);
}

std::size_t contentOf(const char* path, char* text, std::size_t most) {
  const int file = openOwn(path, O_RDONLY | O_CLOEXEC);
  const ssize_t size = ::read(file, text, most);
  ::close(file);
  return size > 0 ? static_cast<std::size_t>(size) : 0;
}

void replaceText(const char* path, const char* text, std::size_t size) {
  const int file = openOwn(path, O_WRONLY | O_CLOEXEC);
  const bool isWritten = ::pwrite(file, text, size, 0) == static_cast<ssize_t>(size) &&
                         ::ftruncate(file, static_cast<off_t>(size)) == 0;
  ::close(file);
  if (!isWritten) std::abort();
}

// Of the clock that only goes forward.
long long nanosecondsNow() {
  timespec now = {};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

// Whoever reads has a turn: on an idle machine many, on a busy one before all others have had many.
void waitAWhile() {
  constexpr long long kWhile = 1'000'000;
  const long long begin = nanosecondsNow();
  do {
    ::sched_yield();
  } while (nanosecondsNow() - begin < kWhile);
}

void removeFirst(const char* path) {
  unlinkReally(path);
  waitAWhile();
}

void exchange(const char* one, const char* other) {
  if (::renameat2(AT_FDCWD, one, AT_FDCWD, other, RENAME_EXCHANGE) != 0) std::abort();
}

// With its whole folder, so that nobody reads a mixture of the two.
int goBack(const char* from, const char* to) {
  static char text[kLongestText];
  const std::size_t size = contentOf(to, text, sizeof text);
  const char* const name = std::strrchr(to, '/');
  char folder[kLongestPath];
  char aside[kLongestPath + sizeof ".before"];
  char older[sizeof folder + sizeof aside];
  std::snprintf(folder, sizeof folder, "%.*s", static_cast<int>(name - to), to);
  std::snprintf(aside, sizeof aside, "%s.before", folder);
  std::snprintf(older, sizeof older, "%s%s", aside, name);
  if (::mkdir(aside, 0755) != 0) std::abort();
  ::close(openOwn(older, O_WRONLY | O_CREAT | O_CLOEXEC));
  replaceText(older, text, size);
  const int result = renameReally(from, to);
  for (int i = 0; i < 2; ++i) {
    waitAWhile();
    exchange(folder, aside);
  }
  unlinkReally(older);
  ::rmdir(aside);
  return result;
}

// The first of these words becomes the other. Not again where the renaming was interrupted.
void replaceWord(const char* path, std::string_view word, std::string_view other) {
  static char last[kLongestPath];
  if (std::strcmp(path, last) == 0) return;
  std::snprintf(last, sizeof last, "%s", path);
  static char text[kLongestText];
  const std::string_view whole(text, contentOf(path, text, sizeof text));
  const std::size_t at = whole.find(word);
  if (at == std::string_view::npos) return;
  const std::string_view rest = whole.substr(at + word.size());
  static char changed[kLongestText + 100];
  const int size = std::snprintf(changed, sizeof changed, "%.*s%.*s%.*s", static_cast<int>(at),
                                 text, static_cast<int>(other.size()), other.data(),
                                 static_cast<int>(rest.size()), rest.data());
  replaceText(path, changed, static_cast<std::size_t>(size));
}

void addBlanks(const char* path) {
  constexpr int kMost = 97;
  const int file = openOwn(path, O_WRONLY | O_APPEND | O_CLOEXEC);
  for (int i = ::getpid() % kMost; i >= 0; --i) {
    if (::write(file, " ", 1) != 1) std::abort();
  }
  ::close(file);
}

// With so many calls in between that every fiftieth is among them.
int moveInPieces(const char* from, const char* to) {
  constexpr int kWhile = 60;
  if (::mkdir(to, 0755) != 0) return -1;
  for (int i = 0; i < kWhile; ++i) isFile(to);
  DIR* folder = ::opendir(from);
  while (const dirent* entry = ::readdir(folder)) {
    if (entry->d_name[0] == '.') continue;
    char source[kLongestPath];
    char target[kLongestPath];
    std::snprintf(source, sizeof source, "%s/%s", from, entry->d_name);
    std::snprintf(target, sizeof target, "%s/%s", to, entry->d_name);
    renameReally(source, target);
  }
  ::closedir(folder);
  return ::rmdir(from);
}

// Where the first of several records begins and the second; twice the same where there is none.
std::pair<std::size_t, std::size_t> firstRecord(std::string_view text) {
  const std::size_t begin = text.find('{');
  int depth = 0;
  for (std::size_t at = begin; at < text.size(); ++at) {
    if (text[at] == '{') ++depth;
    if (text[at] != '}' || --depth > 0) continue;
    const std::size_t second = text.find('{', at);
    return {begin, second == std::string_view::npos ? begin : second};
  }
  return {0, 0};
}

void dropFirstRecord(const char* path) {
  static char text[kLongestText];
  const int file = openOwn(path, O_RDWR | O_CLOEXEC);
  const ssize_t size = ::read(file, text, sizeof text);
  if (size > 0) {
    const std::string_view whole(text, static_cast<std::size_t>(size));
    const auto [first, second] = firstRecord(whole);
    const std::string_view rest(text + second, whole.size() - second);
    const auto left = static_cast<off_t>(first + rest.size());
    const auto written = ::pwrite(file, rest.data(), rest.size(), static_cast<off_t>(first));
    if (written >= 0 && ::ftruncate(file, left) != 0) std::abort();
  }
  ::close(file);
}

void leaveFile(const char* beside) {
  char path[kLongestPath];
  std::snprintf(path, sizeof path, "%s.%d", beside, ::getpid());
  ::close(openOwn(path, O_WRONLY | O_CREAT | O_CLOEXEC));
}

// It ends some time after the worker.
void leaveChild() {
  static bool isDone = false;
  if (isDone) return;
  isDone = true;
  char script[200];
  std::snprintf(script, sizeof script,
                "while kill -0 %d; do :; done; i=0; while [ $i -lt 50000 ]; do i=$((i + 1)); done",
                ::getpid());
  if (::fork() != 0) return;
  ::execl("/bin/sh", "sh", "-c", script, nullptr);
  ::_exit(127);
}

// The third argument of open.
mode_t modeOf(int flags, va_list arguments) {
  return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

// Once, as this request may fail in its turn.
void keepMemory() {
  static void* volatile kept = nullptr;  // so that the compiler leaves it
  static bool isDone = false;
  if (isDone) return;
  isDone = true;
  const int why = errno;
  kept = std::malloc(1);
  errno = kept == nullptr ? ENOMEM : why;
}

// Once; in the folder that the worker is started in.
void tellInLog() {
  static bool isDone = false;
  if (isDone) return;
  isDone = true;
  const int why = errno;
  const std::string_view line = "[00:00:00] [a.cpp][1][b][error] a write has failed\n";
  const int log =
      openOwn("shared/utility/logs/TarselVistrelUtility.txt", O_WRONLY | O_APPEND | O_CLOEXEC);
  static const auto really = next<ssize_t(int, const void*, std::size_t)>("write");
  const ssize_t written = really(log, line.data(), line.size());
  ::close(log);
  if (written != 0) errno = why;
}

ssize_t failed() {
  if (makes("tells-failures")) tellInLog();
  if (makes("keeps-memory")) keepMemory();
  if (makes("gives-up-when-interrupted") && errno == EINTR) errno = EIO;
  if (makes("fails-loudly")) ::_exit(1);
  if (makes("crashes")) std::abort();
  return -1;
}

// Before all else, so that it is known from here on which mistake is made; what is left stands in
// the folder that the worker is started in.
__attribute__((constructor)) void workOnce() {
  if (!makes("works-once") && !makes("fails-the-next")) return;
  if (isFile("worked")) ::_exit(makes("works-once") ? 0 : 1);
  ::close(openOwn("worked", O_WRONLY | O_CREAT | O_CLOEXEC));
}

}  // namespace

extern "C" int rename(const char* from, const char* to) noexcept;
int rename(const char* from, const char* to) noexcept {
  if (makes("leaves-a-file")) leaveFile(to);
  if (makes("leaves-a-child")) leaveChild();
  if (makes("leaves-a-descriptor")) openOwn("/dev/null", O_RDONLY | O_CLOEXEC);
  if (!isFile(from))
    return makes("moves-in-pieces") ? moveInPieces(from, to) : renameReally(from, to);
  if (makes("drops-others")) dropFirstRecord(from);
  if (makes("removes-first")) removeFirst(to);
  if (makes("changes-others")) replaceWord(from, "xx", "yx");
  if (makes("adds-blanks")) addBlanks(from);
  if (makes("never-waits")) replaceWord(from, "\"RUN\"", "\"FREE\"");
  if (makes("stays-running")) replaceWord(from, "\"FREE\"", "\"RUN\"");
  if (makes("goes-back")) return goBack(from, to);
  const bool isInPlace =
      makes("writes-in-place") || (makes("overwrites-controllers") && endsWith(to, "/fleet.json"));
  return isInPlace ? writeInPlace(from, to) : renameReally(from, to);
}

extern "C" int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  const bool isLog = (flags & O_APPEND) != 0 && makes("loses-the-log");
  return openReally(path, isLog ? flags | O_TRUNC : flags, mode);
}

extern "C" int unlink(const char* path) noexcept;
int unlink(const char* path) noexcept {
  return makes("leaves-temporaries") ? 0 : unlinkReally(path);
}

extern "C" void* malloc(std::size_t size) {
  static const auto really = next<void*(std::size_t)>("malloc");
  void* memory = really(size);
  if (memory == nullptr) failed();
  return memory;
}

extern "C" int fsync(int file) {
  static const auto really = next<int(int)>("fsync");
  const bool isSkipped = (makes("skips-files") && isOf(file, S_IFREG)) ||
                         (makes("skips-folders") && isOf(file, S_IFDIR));
  return isSkipped ? 0 : really(file);
}

extern "C" int syncfs(int file) noexcept;
int syncfs(int file) noexcept {
  static const auto really = next<int(int)>("syncfs");
  return makes("skips-trees") ? 0 : really(file);
}

extern "C" ssize_t write(int file, const void* bytes, std::size_t size) {
  static const auto really = next<ssize_t(int, const void*, std::size_t)>("write");
  const ssize_t written = really(file, bytes, size);
  if (written < 0) return failed();
  return makes("takes-short-for-whole") ? static_cast<ssize_t>(size) : written;
}

extern "C" ssize_t writev(int file, const iovec* pieces, int count) {
  static const auto really = next<ssize_t(int, const iovec*, int)>("writev");
  const ssize_t written = really(file, pieces, count);
  if (written < 0) return failed();
  if (!makes("takes-short-for-whole")) return written;
  ssize_t whole = 0;
  for (int i = 0; i < count; ++i) whole += static_cast<ssize_t>(pieces[i].iov_len);
  return whole;
}
