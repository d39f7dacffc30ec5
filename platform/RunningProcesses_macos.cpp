#include <array>
#include <cstring>
#include <string_view>

#include <libproc.h>
#include <sys/sysctl.h>

#include "platform/RunningProcesses.h"

namespace kelvane::platform {
namespace {

// The number of arguments, the executable's path, zero bytes, then the arguments, each with one.
std::vector<std::string> argumentsOf(pid_t process) {
  std::array<int, 3> name = {CTL_KERN, KERN_PROCARGS2, process};
  std::size_t size = 0;
  if (::sysctl(name.data(), name.size(), nullptr, &size, nullptr, 0) != 0) return {};
  std::string block(size, '\0');
  if (::sysctl(name.data(), name.size(), block.data(), &size, nullptr, 0) != 0) return {};
  int count = 0;
  if (size < sizeof count) return {};
  std::memcpy(&count, block.data(), sizeof count);
  std::string_view rest = std::string_view(block).substr(sizeof count);
  rest.remove_prefix(std::min(rest.find('\0'), rest.size()));
  rest.remove_prefix(std::min(rest.find_first_not_of('\0'), rest.size()));
  std::vector<std::string> arguments;
  for (int i = 0; i < count && !rest.empty(); ++i) {
    arguments.emplace_back(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(std::min(arguments.back().size() + 1, rest.size()));
  }
  return arguments;
}

std::string currentFolderOf(pid_t process) {
  struct proc_vnodepathinfo paths = {};
  const int size = ::proc_pidinfo(process, PROC_PIDVNODEPATHINFO, 0, &paths, sizeof paths);
  return size < static_cast<int>(sizeof paths) ? "" : paths.pvi_cdir.vip_path;
}

}  // namespace

std::vector<RunningProcess> runningProcesses() {
  std::vector<pid_t> processes(static_cast<std::size_t>(::proc_listallpids(nullptr, 0)) + 64);
  const int count =
      ::proc_listallpids(processes.data(), static_cast<int>(processes.size() * sizeof(pid_t)));
  std::vector<RunningProcess> found;
  for (int i = 0; i < count; ++i) {
    RunningProcess process;
    process.id = processes[static_cast<std::size_t>(i)];
    process.arguments = argumentsOf(processes[static_cast<std::size_t>(i)]);
    process.currentFolder = currentFolderOf(processes[static_cast<std::size_t>(i)]);
    if (!process.arguments.empty()) found.push_back(process);
  }
  return found;
}

}  // namespace kelvane::platform
