#include "tests/support/WorkerWorld.h"

#include "log/iLog.h"
#include "platform/Json.h"
#include "tests/support/JobFiles.h"
#include "tests/support/LogLine.h"

namespace kelvane::test {
namespace {

constexpr char kLogFile[] = "shared/utility/logs/TarselVistrelUtility.txt";

bool isOfTheStore(const std::string& line) {
  const std::string function = line.substr(0, line.find(':'));
  return function == "readJSONFileDict" || function == "updateJSONFile" ||
         function == "writeJSONFile" || function == "updateFWUpdateStatus";
}

// What stands below a message's first line: behind a dump the message is at its end, or goes on as
// that of the job runner does. Some messages end with a line feed.
void expectPartOfMessage(const std::string& line) {
  const bool isIndented = line.empty() || line.starts_with("    ");
  const bool isEnd = line == ")" || line == "}" || line.starts_with("}, stateId = ") ||
                     line == "), inputParmsDict = {";
  EXPECT_TRUE(isIndented || isEnd) << line;
}

}  // namespace

WorkerWorld::WorkerWorld() {
  folder.write(kJobFile, "[]");
  folder.write(kLogFile, "");
  folder.write("Contents/Resources/Config/setting.json", R"({"app_name": "Manager"})");
  host.folder = folder / "Contents/Resources";
  worker.init(shared());
}

WorkerWorld::~WorkerWorld() {
  setLogPath("");
  iLog_host = nullptr;
}

void WorkerWorld::writeJobs(const std::string& json) const { folder.write(kJobFile, json); }
std::string WorkerWorld::jobText() const { return folder.read(kJobFile); }
platform::Value WorkerWorld::jobs() const { return platform::parseJson(jobText()); }
std::string WorkerWorld::logText() const { return folder.read(kLogFile); }

std::vector<std::string> WorkerWorld::log() const {
  std::vector<std::string> lines;
  for (const std::string& text : splitLines(logText())) {
    const auto line = parseLogLine(text);
    if (!line) {
      expectPartOfMessage(text);
      continue;
    }
    EXPECT_EQ(line->time, "14:03:07");
    const char* separator = line->level == "error" ? " error: " : ": ";
    lines.push_back(line->function + separator + line->message);
  }
  return lines;
}

std::vector<std::string> WorkerWorld::logWithoutStore() const {
  std::vector<std::string> lines;
  for (const std::string& line : log()) {
    if (!isOfTheStore(line)) lines.push_back(line);
  }
  return lines;
}

void WorkerWorld::watchJobFile(std::function<std::string(const platform::Value&)> describe) {
  describe_ = std::move(describe);
  lastSeen_ = jobText();
  framework.onCall = [this] { look(); };
  host.onSleep = [this] {
    look();
    versionsAtSleeps.push_back(versions_.empty() ? "none" : versions_.back());
  };
}

void WorkerWorld::look() {
  const std::string text = jobText();
  if (text == lastSeen_) return;
  lastSeen_ = text;
  wholeVersions.push_back(platform::parseJson(text));
  versions_.push_back(describe_(wholeVersions.back()));
}

std::vector<std::string> WorkerWorld::versions() {
  look();
  return versions_;
}

}  // namespace kelvane::test
