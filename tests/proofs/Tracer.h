// Runs a program, with all that it starts, under the eyes of a watcher who decides at each of its
// system calls what becomes of it.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/proofs/Calls.h"

namespace kelvane::proofs {

struct Decision {
  enum class Kind {
    proceed,
    watch,          // the watcher is told of its result
    answer,         // it is not carried out; `value` is its result
    answerInstead,  // it is carried out; `value` takes the place of its result
    shorten,        // its argument `argument` becomes `value`
    kill            // the program is killed before it
  };
  Kind kind = Kind::proceed;
  long value = 0;
  int argument = -1;
};

class Watcher {
 public:
  Watcher() = default;
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;
  virtual ~Watcher() = default;

  virtual Decision before(const Call& call) = 0;
  // Of a call that was to be watched; a result below 0 is an error.
  virtual void after(const Call& /*call*/, long /*result*/) {}
};

constexpr std::chrono::seconds kPatience{60};

struct Command {
  std::vector<std::string> argv;
  std::string folder;
  std::map<std::string, std::string> variables;
  std::string out = "/dev/null";  // files that get what is said
  std::string err = "/dev/null";
  std::function<void()> prepare = {};  // in the new process, last of all
  std::chrono::seconds patience = kPatience;
};

struct LeftProcess {
  pid_t process = 0;
  std::string name;  // of its program
};

struct Traced {
  int exitStatus = -1;  // -1 where a signal ended it
  int signal = 0;
  bool isInTime = true;               // it and all that it started ended by themselves
  std::vector<LeftProcess> outlived;  // those that still ran when it ended
};

// Until the last process has ended, or is killed after the patience. The watcher sees the calls of
// these numbers alone.
Traced trace(const Command& command, const std::vector<long>& calls, Watcher& watcher);

}  // namespace kelvane::proofs
