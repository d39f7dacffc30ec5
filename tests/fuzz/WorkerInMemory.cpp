#include "tests/fuzz/WorkerInMemory.h"

#include <algorithm>
#include <iterator>

#include <fcntl.h>
#include <unistd.h>

#include "contract/Engine.h"
#include "contract/JobFile.h"
#include "contract/Log.h"
#include "log/iLog.h"
#include "tests/fuzz/FirmwareLaws.h"
#include "tests/fuzz/Law.h"
#include "tests/support/FrameworkLaws.h"
#include "tests/support/LogLine.h"
#include "tests/support/PlainJson.h"
#include "tests/support/PlainUtf8.h"

namespace kelvane::fuzz {

const char kProductSettings[] =
    R"({"AppPath": "/Applications/Manager.app", "online_update_plist_name": "catalogue",
        "product_id_sw": "sw", "product_id_korfw": "kor", "product_id_zentanfw": "zen",
        "product_id_tarsel2fw": "t2", "product_id_tarsel3fw": "t3", "app_name": "Manager"})";

namespace {

constexpr char kLog[] = "/Shared/utility/logs/TarselVistrelUtility.txt";

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append("\n");
  return text;
}

// The value behind the option.
std::string valueOf(const std::vector<std::string>& argv, const char* option) {
  const auto found = std::find(argv.begin(), argv.end(), option);
  return found == argv.end() || std::next(found) == argv.end() ? "" : *std::next(found);
}

// The lowest number that an open file would get: higher where one was left open.
int freeDescriptor() {
  const int free = ::fcntl(STDIN_FILENO, F_DUPFD, 0);
  ::close(free);
  return free;
}

bool hasField(const test::PlainJson& record, const char* key, std::string_view text) {
  const test::PlainJson* const value = record.find(key);
  return value != nullptr && value->isText(text);
}

bool isLevel(const std::string& level) {
  return std::find(std::begin(logging::kLevels), std::end(logging::kLevels), level) !=
         std::end(logging::kLevels);
}

// Of the only record with the log id; nothing where there is none, or more.
std::optional<test::PlainJson> onlyRecord(std::string_view jobFile) {
  const auto jobs = test::readPlainJson(jobFile);
  std::optional<test::PlainJson> found;
  for (const test::PlainJson& record : jobs ? jobs->elements : std::vector<test::PlainJson>()) {
    if (!hasField(record, job::kLogId, kLogId)) continue;
    if (found) return {};
    found = record;
  }
  return found;
}

}  // namespace

WorkerInMemory::WorkerInMemory() {
  disk.put(kLog, "");
  disk.put(kSharedSettingsPath, R"({"AppPath": "/A/B.app"})");
  disk.put(kProductSettingsPath, kProductSettings);
  disk.put(kEnginePath, "");
  disk.put("/Applications/Manager.app/Contents/Info.plist", "");
  host.folder = "/A/B.app/Contents/Resources";
  host.onSleep = [this] { noteSleep(); };
  framework.devices = {{"A1", 0x4301}, {"B2", 0x4801}};
  framework.adapters = 1;
  disk.onReplace = [this](const std::string& path, std::string_view bytes) {
    require(path == kJobFilePath, "the worker writes no other file", path);
    jobFile.judge(disk.bytesOf(path).value_or(""), bytes);
  };
  disk.onAppend = [this](const std::string&, std::string_view text) { judgeLine(text); };
  programs.run = [this](const std::vector<std::string>& argv) { return runProgram(argv); };
}

WorkerInMemory::~WorkerInMemory() {
  setLogPath("");
  iLog_host = nullptr;
}

void WorkerInMemory::run() {
  const int free = freeDescriptor();
  const FirmwareLaws firmware(disk.bytesOf(kJobFilePath).value_or(""), kLogId);
  {
    Kelvane worker(host);
    worker.init(kSharedFolder);
    worker.run(kLogId);
  }
  judgeTheEnd();
  if (!hasToldAnError_ && disk.bytesOf(kLog)) {
    firmware.judge(course_, framework, disk.bytesOf(kJobFilePath).value_or(""),
                   jobFile.isDisturbed());
    judgePackages();
  }
  require(freeDescriptor() == free, "no file is left open");
}

void WorkerInMemory::requireBegun() const {
  require(!jobFile.state().empty() || hasToldAnError(), "a job begins, or an error is told");
}

void WorkerInMemory::requireFinished() const {
  require(jobFile.state() == "FREE" && !hasToldAnError(), "a job is finished without an error");
}

// "rm -Rf", "cp -Rf", and the engine, which need not be there.
std::optional<std::string> WorkerInMemory::runProgram(const std::vector<std::string>& argv) {
  if (argv[0] == "/bin/rm" && argv.size() > 2) {
    disk.remove(argv[2]);
    return "";
  }
  if (argv[0] == "/bin/cp" && argv.size() > 3) {
    disk.copy(argv[2], argv[3]);
    return "";
  }
  if (!disk.bytesOf(argv[0])) return std::nullopt;
  return engine ? engine(valueOf(argv, kelvane::engine::kFolder)) : "done\n";
}

void WorkerInMemory::judgeLine(std::string_view text) {
  require(
      text.ends_with('\n') && text.find('\0') == std::string_view::npos && test::isPlainUtf8(text),
      "an entry of the log is UTF-8 text, and ends its line", text);
  const auto line = test::parseLogLine(std::string(text));
  require(line && line->time == "14:03:07" && line->file.ends_with(".cpp") &&
              !line->function.empty() && isLevel(line->level),
          "an entry of the log begins with its fields", text);
  hasToldAnError_ = hasToldAnError_ || line->level == "error";
  if (line->message.starts_with("writeJSONFile, newArray = ")) ++writes_;
}

// Those that are not in the course yet.
void WorkerInMemory::noteCalls() {
  const auto& calls = framework.calls;
  course_.insert(course_.end(), std::next(calls.begin(), noted_), calls.end());
  noted_ = static_cast<std::ptrdiff_t>(calls.size());
}

void WorkerInMemory::noteSleep() {
  noteCalls();
  course_.push_back("sleep " + std::to_string(host.sleeps.back()));
  if (onSleep) onSleep();
}

void WorkerInMemory::judgeTheEnd() {
  noteCalls();
  const std::string law = test::brokenFrameworkLaw(course_);
  require(law.empty(), law.c_str(), joined(course_));
  require(programs.started == programs.reaped, "a program that was started is ended and reaped");
  // A folder that is given up may be the one that the log is in; a catalogue may hold what JSON has
  // no form for, of which nothing is written, and nobody told.
  require(!jobFile.isLeftRunning() || hasToldAnError_ || !disk.bytesOf(kLog) ||
              writes_ > jobFile.versions(),
          "a job that is begun is finished, or an error is told",
          disk.bytesOf(kJobFilePath).value_or(""));
}

// A download is without an error where all that it describes is there, and only there.
void WorkerInMemory::judgePackages() {
  const std::string text = disk.bytesOf(kJobFilePath).value_or("");
  const auto record = onlyRecord(text);
  if (jobFile.isDisturbed() || jobFile.state() != job::kFree || !record ||
      !hasField(*record, job::kJobId, job::kDownloadOnlineUpdateFile)) {
    return;
  }
  const test::PlainJson* const output = record->find(job::kOutput);
  require(output != nullptr && output->is(test::PlainJson::Kind::list),
          "a download describes its packages", text);
  const bool areThere = std::all_of(
      output->elements.begin(), output->elements.end(), [this](const test::PlainJson& package) {
        const test::PlainJson* const path = package.find(job::kFilePath);
        return path != nullptr && !path->text.empty() &&
               path->text.find('\0') == std::string::npos && disk.find(path->text) != nullptr;
      });
  require(hasField(*record, job::kResultStr, areThere ? job::kNoError : job::kFileNotFoundText),
          "a download tells whether its packages are there", text);
}

}  // namespace kelvane::fuzz
