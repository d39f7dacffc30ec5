#include "tests/console/ConsoleWorld.h"

#include <algorithm>
#include <filesystem>

#include <sys/wait.h>

#include "platform/Json.h"

namespace kelvane::console {

ConsoleWorld::ConsoleWorld() {
  std::filesystem::create_directories(folder / "shared");
  job.sharedFolder = folder / "shared";
  job.bundle = folder / "Manager.app";
}

ConsoleWorld::~ConsoleWorld() {
  while (::waitpid(-1, nullptr, 0) > 0) continue;
}

bool ConsoleWorld::wait(std::chrono::milliseconds step) {
  time += step;
  if (interrupt) return false;
  siginfo_t info = {};
  ::waitid(P_ALL, 0, &info, WEXITED | WNOWAIT);
  return true;
}

void ConsoleWorld::makeWorker(const std::string& script) {
  const std::string path =
      folder.write("Manager.app/Contents/Resources/Kelvane", "#!/bin/sh\n" + script);
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

void ConsoleWorld::makeWorkerThatLeaves(const std::string& state, const std::string& result,
                                        const std::string& more) {
  makeWorker(
      "file=$2utility/command/BGPLog.json\n"
      "while IFS= read -r line; do case $line in\n"
      "*state_id*) cat <<'END'\n\"state_id\": \"" +
      state + "\", \"result\": " + result + ", \"resultStr\": \"the text\"" + more +
      ",\nEND\n;;\n"
      "*) echo \"$line\" ;;\n"
      "esac; done < \"$file\" > \"$file.new\"\n"
      "echo ']' >> \"$file.new\"\n"
      "mv \"$file.new\" \"$file\"\n");
}

void ConsoleWorld::makeWorkerThatLooks() {
  makeWorker("cp \"$2utility/command/BGPLog.json\" \"$2seen\"");
}

std::string ConsoleWorld::shownAtTheEnd() const {
  const std::string all = shown.str();
  return all.substr(std::min(all.find("result "), all.size()));
}

platform::Value ConsoleWorld::seenRecord() const {
  const platform::Value records = platform::parseJson(folder.read("shared/seen"));
  return records.isArray() && records.count() == 1 ? records.at(0) : platform::Value();
}

}  // namespace kelvane::console
