// Child processes: a program run directly, without a shell, with its output read to the end.
#pragma once

#include <initializer_list>
#include <string>

#include "platform/Value.h"

namespace kelvane::platform {

// A list of arguments that ends at its first absent value. A value before that which is no string
// raises.
Value argumentList(std::initializer_list<Value> arguments);

// One child, from its launch on. It has the worker's environment, current folder and standard
// error; its standard output is a pipe to readOutput(), its standard input a pipe that stays open
// and silent until terminate(). It has no other open files of the worker.
class ChildProcess {
 public:
  // Launches the program at the path with these arguments (an array of strings). Raises, with the
  // path and the cause, where nothing is there or it cannot be executed; also where the path is
  // nothing.
  ChildProcess(const Value& path, const Value& arguments);
  // Terminates it, where that has not been done.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // Everything the child, or whoever inherited its output, writes until the last of them closes
  // it; nothing where that is not UTF-8.
  Value readOutput();
  // Tells the child to end (SIGTERM), if it still runs, and does not wait for it. One that has
  // ended is reaped.
  void terminate();

 private:
  int process_ = -1;
  int input_ = -1;   // the writing end
  int output_ = -1;  // the reading end
};

}  // namespace kelvane::platform
