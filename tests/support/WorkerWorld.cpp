#include "support/WorkerWorld.h"

#include <regex>
#include <sstream>

#include "log/iLog.h"
#include "platform/Json.h"

namespace kelvane::testing {
namespace {

constexpr char kJobFile[] = "shared/utility/command/BGPLog.json";
constexpr char kLogFile[] = "shared/utility/logs/TarselVistrelUtility.txt";

bool isOfTheStore(const std::string& line) {
  static const std::regex kStore(
      "^(readJSONFileDict|updateJSONFile|writeJSONFile|updateFWUpdateStatus):");
  return std::regex_search(line, kStore);
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
  static const std::regex kLine(
      R"(^\[14:03:07\] \[[A-Za-z]+\.cpp\]\[\d+\]\[([^\]]*)\]\[(debug|error)\] (.*)$)");
  std::vector<std::string> lines;
  std::istringstream text(logText());
  for (std::string line; std::getline(text, line);) {
    std::smatch parts;
    if (!std::regex_match(line, parts, kLine)) continue;
    const char* separator = parts[2] == "error" ? " error: " : ": ";
    lines.push_back(parts[1].str() + separator + parts[3].str());
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
  host.onSleep = [this] { look(); };
}

void WorkerWorld::look() {
  const std::string text = jobText();
  if (text == lastSeen_) return;
  lastSeen_ = text;
  versions_.push_back(describe_(platform::parseJson(text)));
}

std::vector<std::string> WorkerWorld::versions() {
  look();
  return versions_;
}

}  // namespace kelvane::testing
