// Child processes: a program run directly, without a shell, with its output read to the end.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/FreeMemory.h"
#include "platform/Value.h"

namespace kelvane::platform {

// A list of arguments for the program at the path; it ends at its first absent value. Raises for a
// value before that which is no string, and for one, or a path, that holds a NUL character: the
// program would get the part before that.
Value argumentList(const Value& path, std::initializer_list<Value> arguments);

// What a child wrote, which may be as much as there is memory.
class ChildOutput {
 public:
  // Adds the bytes. Where there is no room for them, isWhole() is false from then on.
  void append(std::string_view bytes);
  bool isWhole() const { return isWhole_; }
  // Nothing where it is not UTF-8 or not whole. Valid as long as the output is.
  std::optional<std::string_view> text() const;

 private:
  // Grown in place where the system can, and by little, so that it takes hardly more than it holds.
  std::unique_ptr<char, FreeMemory> bytes_;
  std::size_t size_ = 0;
  std::size_t room_ = 0;
  bool isWhole_ = true;
};

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

  // Everything the child, or whoever inherited its output, writes until the last of them closes it.
  ChildOutput readOutput();
  // Waits for the same, and keeps nothing of it.
  void discardOutput();
  // Tells the child to end (SIGTERM), if it still runs, and does not wait for it. One that has
  // ended is reaped.
  void terminate();

 private:
  template <typename Take>
  void readToTheEnd(Take take);

  int process_ = -1;
  int input_ = -1;   // the writing end
  int output_ = -1;  // the reading end
};

}  // namespace kelvane::platform
