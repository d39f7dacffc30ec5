// The trial: code that is not ours, which may hang or crash, run in a process of its own where it
// can do no harm.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace kelvane::console {

struct Trial {
  std::string answer;      // what the work has told, also where it did not come to its end
  std::string fault;       // "takes longer than 10 s", "ends with signal 11"; empty where it ended
  std::string complaints;  // the beginning of what came out on standard error
};

// Tells the parent; ends the process where nobody listens any more.
using Tell = std::function<void(std::string_view)>;

// Runs the work in a child process, with the standard streams turned away from the user's, for so
// long at the most. Never raises.
Trial tryApart(std::chrono::seconds limit, const std::function<void(const Tell&)>& work);

}  // namespace kelvane::console
