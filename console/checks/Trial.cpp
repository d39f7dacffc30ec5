#include "console/checks/Trial.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Descriptor.h"

namespace kelvane::console {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostComplaints = 4096;

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
// A file without a name, which standard error goes to.
using Complaints = std::unique_ptr<std::FILE, Close>;

std::string tookLonger(std::chrono::seconds limit) {
  return "takes longer than " + std::to_string(limit.count()) + " s";
}

// --- in the child

void tell(int pipe, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(pipe, text.data(), text.size());
    if (written <= 0) ::_exit(1);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

// The alarm is for a console that is killed meanwhile; otherwise the parent sees to the limit.
void restrain(std::chrono::seconds limit, const Complaints& complaints) {
  for (const int signal : {SIGALRM, SIGINT, SIGTERM}) std::signal(signal, SIG_DFL);
  ::alarm(static_cast<unsigned>(limit.count()) + 1);
  const int nowhere = ::open("/dev/null", O_RDWR);
  ::dup2(nowhere, STDIN_FILENO);
  ::dup2(nowhere, STDOUT_FILENO);
  ::dup2(complaints ? ::fileno(complaints.get()) : nowhere, STDERR_FILENO);
}

// Nothing of the parent's is to be gone on with here.
[[noreturn]] void carryOut(const std::function<void(const Tell&)>& work, int pipe) {
  try {
    work([pipe](std::string_view text) { tell(pipe, text); });
    ::_exit(0);
  } catch (const std::exception& caught) {
    std::fprintf(stderr, "%s\n", caught.what());
    ::_exit(1);
  }
}

// --- in the parent

int millisecondsTo(Clock::time_point end) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
  return left.count() < 0 ? 0 : static_cast<int>(left.count());
}

// Appends what the child tells; whether it has told all in time.
bool readToEnd(int pipe, Clock::time_point end, std::string& answer) {
  std::array<char, 4096> block;
  for (;;) {
    pollfd waiting = {pipe, POLLIN, 0};
    const int ready = ::poll(&waiting, 1, millisecondsTo(end));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return false;
    const ssize_t got = ::read(pipe, block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return true;
    answer.append(block.data(), static_cast<std::size_t>(got));
  }
}

// A child that sits in a call of the system is not waited for any longer than this: it ends when it
// comes out of there.
void end(pid_t child) {
  constexpr int kMostLooks = 500;
  ::kill(child, SIGKILL);
  for (int looks = 0; looks < kMostLooks && ::waitpid(child, nullptr, WNOHANG) == 0; ++looks) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

std::string endingOf(pid_t child, std::chrono::seconds limit) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFSIGNALED(status)) return {};
  return WTERMSIG(status) == SIGALRM ? tookLonger(limit)
                                     : "ends with signal " + std::to_string(WTERMSIG(status));
}

std::string beginningOf(const Complaints& complaints) {
  if (!complaints) return {};
  std::string text(kMostComplaints, '\0');
  const ssize_t got = ::pread(::fileno(complaints.get()), text.data(), text.size(), 0);
  text.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
  return text;
}

}  // namespace

Trial tryApart(std::chrono::seconds limit, const std::function<void(const Tell&)>& work) {
  std::array<int, 2> ends = {-1, -1};
  if (::pipe(ends.data()) != 0)
    return {{}, std::string("has no pipe: ") + std::strerror(errno), {}};
  const platform::Descriptor reading(ends[0]);
  platform::Descriptor writing(ends[1]);
  const Complaints complaints(std::tmpfile());
  const Clock::time_point deadline = Clock::now() + limit;
  const pid_t child = ::fork();
  if (child < 0) return {{}, std::string("has no process: ") + std::strerror(errno), {}};
  if (child == 0) {
    ::close(ends[0]);
    restrain(limit, complaints);
    carryOut(work, writing.number());
  }
  writing.close();
  Trial trial;
  if (readToEnd(reading.number(), deadline, trial.answer)) {
    trial.fault = endingOf(child, limit);
  } else {
    end(child);
    trial.fault = tookLonger(limit);
  }
  trial.complaints = beginningOf(complaints);
  return trial;
}

}  // namespace kelvane::console
