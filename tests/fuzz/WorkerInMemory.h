// The worker without disk, time, child processes and controllers, and the laws that hold for every
// run of it: of each version of the job file, of each line of the log, of the calls to the
// framework and the sleeps, of what was opened and started.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Kelvane.h"
#include "tests/fuzz/JobFileLaws.h"
#include "tests/fuzz/MemoryDisk.h"
#include "tests/fuzz/Programs.h"
#include "tests/support/FakeFramework.h"
#include "tests/support/FakeHost.h"

namespace kelvane::fuzz {

inline constexpr char kSharedFolder[] = "/Shared/";
inline constexpr char kJobFilePath[] = "/Shared/utility/command/BGPLog.json";
inline constexpr char kSharedSettingsPath[] = "/Shared/utility/config/setting.json";
inline constexpr char kProductSettingsPath[] = "/A/B.app/Contents/Resources/Config/setting.json";
inline constexpr char kEnginePath[] = "/A/B.app/Contents/Resources/EngineRunner";
inline constexpr char kLogId[] = "17";

// Product settings of which each is there, and their texts.
extern const char kProductSettings[];

class WorkerInMemory {
 public:
  // With whole settings, an empty log, the engine, and two controllers that do as they are told.
  WorkerInMemory();
  ~WorkerInMemory();
  WorkerInMemory(const WorkerInMemory&) = delete;
  WorkerInMemory& operator=(const WorkerInMemory&) = delete;

  // Runs the job with kLogId of the job file as it is by then, from the worker's start on.
  void run();

  // That the run has begun its job, or told an error; that it has finished it, and told none.
  void requireBegun() const;
  void requireFinished() const;

  // What the update engine does, and what it writes; `folder` is where it is to deliver.
  std::function<std::string(const std::string& folder)> engine;

  // While the worker sleeps.
  std::function<void()> onSleep;

  // A line of the log was at error level.
  bool hasToldAnError() const { return hasToldAnError_; }

  MemoryDisk disk;
  Programs programs;
  test::FakeHost host;
  test::FakeFramework framework;
  JobFileLaws jobFile{kLogId};

 private:
  std::optional<std::string> runProgram(const std::vector<std::string>& argv);
  void judgeLine(std::string_view text);
  void noteCalls();
  void noteSleep();
  void judgeTheEnd();
  void judgePackages();

  std::vector<std::string> course_;  // calls to the framework and sleeps
  std::ptrdiff_t noted_ = 0;         // so many calls are in it
  bool hasToldAnError_ = false;
  int writes_ = 0;  // that the log tells of: of what JSON has no form for nothing is written
};

}  // namespace kelvane::fuzz
