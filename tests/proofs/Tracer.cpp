#include "tests/proofs/Tracer.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/time.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/Program.h"

namespace kelvane::proofs {
namespace {

using Registers = user_regs_struct;

// Stops the process at calls of these numbers, and lets all others pass at full speed.
std::vector<sock_filter> filterFor(const std::vector<long>& calls) {
  std::vector<sock_filter> filter = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AUDIT_ARCH_X86_64, 1, 0),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
  };
  for (const long number : calls) {
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(number), 0, 1));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
  }
  filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  return filter;
}

void openAs(int stream, const std::string& path, int flags) {
  const int file = ::open(path.c_str(), flags, 0600);
  ::dup2(file, stream);
  ::close(file);
}

[[noreturn]] void runTraced(const Command& command, std::vector<sock_filter> filter) {
  openAs(STDIN_FILENO, "/dev/null", O_RDONLY);
  openAs(STDOUT_FILENO, command.out, O_WRONLY | O_CREAT | O_TRUNC);
  openAs(STDERR_FILENO, command.err, O_WRONLY | O_CREAT | O_TRUNC);
  ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  ::raise(SIGSTOP);
  if (command.prepare) command.prepare();
  const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    ::_exit(126);
  }
  test::becomeProgram(command.argv, command.folder, command.variables);
}

// While there is one, no waiting lasts long, so that the time can be looked at.
class Alarm {
 public:
  explicit Alarm(std::chrono::seconds patience)
      : end_(std::chrono::steady_clock::now() + patience) {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &action, &before_);
    set(1);
  }
  Alarm(const Alarm&) = delete;
  Alarm& operator=(const Alarm&) = delete;
  ~Alarm() {
    set(0);
    ::sigaction(SIGALRM, &before_, nullptr);
  }

  bool isOver() const { return std::chrono::steady_clock::now() > end_; }

 private:
  static void set(time_t seconds) {
    const itimerval timer = {{seconds, 0}, {seconds, 0}};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
  }

  struct sigaction before_ = {};
  std::chrono::steady_clock::time_point end_;
};

class Tracing {
 public:
  Tracing(const std::vector<long>& calls, Watcher& watcher) : calls_(calls), watcher_(watcher) {}

  Traced run(const Command& command) {
    start(command);
    const Alarm alarm(command.patience);
    while (!processes_.empty()) {
      int status = 0;
      const pid_t process = ::waitpid(-1, &status, __WALL);
      if (alarm.isOver()) killAll();
      if (process > 0) take(process, status);
    }
    return traced_;
  }

 private:
  struct Process {
    bool isOfProgram = false;
    bool isKnown = false;    // what started it has told of it
    bool isStopped = false;  // since its start
    Call call = {};
    Decision decision = {};
  };

  void start(const Command& command) {
    const std::vector<sock_filter> filter = filterFor(calls_);
    program_ = ::fork();
    if (program_ < 0) throw std::runtime_error("no process for the program");
    if (program_ == 0) runTraced(command, filter);
    int status = 0;
    ::waitpid(program_, &status, 0);
    constexpr long kOptions = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACESECCOMP | PTRACE_O_TRACEFORK |
                              PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC |
                              PTRACE_O_EXITKILL;
    if (!WIFSTOPPED(status) || ::ptrace(PTRACE_SETOPTIONS, program_, nullptr, kOptions) != 0) {
      throw std::runtime_error("the program cannot be traced");
    }
    processes_[program_] = {.isOfProgram = true, .isKnown = true};
    proceed(program_);
  }

  static void proceed(pid_t process, int signal = 0) {
    ::ptrace(PTRACE_CONT, process, nullptr, static_cast<long>(signal));
  }

  void take(pid_t process, int status) {
    if (WIFSTOPPED(status)) return takeStop(process, WSTOPSIG(status), status >> 16);
    processes_.erase(process);
    if (process != program_) return;
    takeEnd(status);
    if (held_ > 0) proceed(held_);
  }

  void takeEnd(int status) {
    if (WIFEXITED(status)) traced_.exitStatus = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) traced_.signal = WTERMSIG(status);
    for (const auto& [left, state] : processes_) {
      const std::string name = nameOf(left);
      if (!name.empty()) traced_.outlived.push_back({left, name});
    }
  }

  void takeStop(pid_t process, int signal, int event) {
    switch (event) {
      case PTRACE_EVENT_SECCOMP:
        return takeCall(process);
      case PTRACE_EVENT_FORK:
      case PTRACE_EVENT_VFORK:
      case PTRACE_EVENT_CLONE:
        takeChild(process);
        return proceed(process);
      case PTRACE_EVENT_EXEC:
        if (process != program_) processes_[process].isOfProgram = false;
        return proceed(process);
      default:
        break;
    }
    if (signal == (SIGTRAP | 0x80)) return takeResult(process);
    Process& state = processes_[process];
    if (signal != SIGSTOP || (state.isStopped || process == program_)) {
      return proceed(process, signal);
    }
    state.isStopped = true;
    if (state.isKnown) proceed(process);
  }

  // The child's first stop comes before or after what its parent tells of it.
  void takeChild(pid_t parent) {
    unsigned long child = 0;
    ::ptrace(PTRACE_GETEVENTMSG, parent, nullptr, &child);
    Process& state = processes_[static_cast<pid_t>(child)];
    state.isKnown = true;
    state.isOfProgram = processes_[parent].isOfProgram;
    if (state.isStopped) proceed(static_cast<pid_t>(child));
  }

  void takeCall(pid_t process) {
    Registers registers = {};
    if (::ptrace(PTRACE_GETREGS, process, nullptr, &registers) != 0) return;  // killed meanwhile
    Process& state = processes_[process];
    state.call = {
        static_cast<long>(registers.orig_rax),
        {registers.rdi, registers.rsi, registers.rdx, registers.r10, registers.r8, registers.r9},
        process,
        state.isOfProgram};
    state.decision = watcher_.before(state.call);
    const Decision& decision = state.decision;
    switch (decision.kind) {
      case Decision::Kind::watch:
      case Decision::Kind::answerInstead:
        ::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr);
        return;
      case Decision::Kind::answer:
        registers.orig_rax = ~0ULL;
        registers.rax = static_cast<unsigned long long>(decision.value);
        ::ptrace(PTRACE_SETREGS, process, nullptr, &registers);
        break;
      case Decision::Kind::shorten:
        argumentOf(registers, decision.argument) = static_cast<unsigned long long>(decision.value);
        ::ptrace(PTRACE_SETREGS, process, nullptr, &registers);
        break;
      case Decision::Kind::kill:
        ::kill(program_, SIGKILL);
        if (process == program_) break;
        held_ = process;  // until the program is gone
        return;
      case Decision::Kind::proceed:
        break;
    }
    proceed(process);
  }

  void takeResult(pid_t process) {
    Registers registers = {};
    if (::ptrace(PTRACE_GETREGS, process, nullptr, &registers) != 0) return;
    const Process& state = processes_[process];
    if (state.decision.kind == Decision::Kind::answerInstead) {
      registers.rax = static_cast<unsigned long long>(state.decision.value);
      ::ptrace(PTRACE_SETREGS, process, nullptr, &registers);
    } else {
      watcher_.after(state.call, static_cast<long>(registers.rax));
    }
    proceed(process);
  }

  static unsigned long long& argumentOf(Registers& registers, int argument) {
    constexpr unsigned long long Registers::*kAll[] = {&Registers::rdi, &Registers::rsi,
                                                       &Registers::rdx, &Registers::r10,
                                                       &Registers::r8,  &Registers::r9};
    return registers.*kAll[argument];
  }

  void killAll() {
    traced_.isInTime = false;
    for (const auto& [process, state] : processes_) ::kill(process, SIGKILL);
  }

  // Empty where it is about to end.
  static std::string nameOf(pid_t process) {
    std::error_code gone;
    return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", gone)
        .filename()
        .string();
  }

  const std::vector<long>& calls_;
  Watcher& watcher_;
  pid_t program_ = 0;
  pid_t held_ = 0;
  std::map<pid_t, Process> processes_;
  Traced traced_;
};

}  // namespace

Traced trace(const Command& command, const std::vector<long>& calls, Watcher& watcher) {
  return Tracing(calls, watcher).run(command);
}

}  // namespace kelvane::proofs
