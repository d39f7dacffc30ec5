// A sub-command's world: a shared folder and a bundle of its own, small scripts as workers, and a
// clock by which no time passes.
#pragma once

#include <chrono>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "console/commands/Guard.h"
#include "console/commands/Submission.h"
#include "console/display/PlainView.h"
#include "platform/Value.h"
#include "tests/support/JobFiles.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {

// Its clock's wait lasts until the worker has ended.
class ConsoleWorld : public ::testing::Test, public Clock {
 protected:
  ConsoleWorld();
  // Waits for workers that the console has left behind: a later test would see their ends.
  ~ConsoleWorld() override;

  std::chrono::milliseconds now() override { return time; }
  bool wait(std::chrono::milliseconds step) override;

  // Runs a sub-command as the program does; its exit code.
  template <typename Options>
  int runHere(int (*subCommand)(const Options&, const Screen&), const Options& options) {
    return guarded(messages, screen.charset, [&] { return subCommand(options, screen); });
  }
  template <typename Options>
  int runHere(int (*subCommand)(const Options&, const Surroundings&), const Options& options) {
    return guarded(messages, screen.charset, [&] {
      return subCommand(options, {*this, view, screen});
    });
  }

  // A worker in the bundle; the shell script sees the log id as $1, the shared folder as $2.
  void makeWorker(const std::string& script);
  // A worker that gives the waiting record, alone in the file, this state, result and further keys.
  void makeWorkerThatLeaves(const std::string& state, const std::string& result,
                            const std::string& more = "");
  // A worker that keeps the record it finds, as `shared/seen`, and leaves it waiting.
  void makeWorkerThatLooks();
  platform::Value seenRecord() const;

  // What was shown from the result on; whether the waiting job was seen before is a race.
  std::string shownAtTheEnd() const;

  test::TempFolder folder;
  JobOptions job;
  bool interrupt = false;
  std::chrono::milliseconds time{0};
  std::ostringstream shown;
  std::ostringstream messages;
  Screen screen{shown, Charset::utf8};
  PlainView view{shown, Charset::utf8};
};

}  // namespace kelvane::console
