// The log of a firmware job over time: job 17, with one controller.
#pragma once

#include <string>

#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::test {

inline std::string timedLine(const std::string& time, const std::string& message,
                             const std::string& function = "updateFW") {
  return "[" + time + "] [x.cpp][1][" + function + "][debug] " + message + "\n";
}

// The version of the job file that the worker writes, as its log shows it.
inline std::string writtenAt(const std::string& time, const std::string& record) {
  return timedLine(time,
                   "writeJSONFile, newArray = " + platform::describe(platform::parseJson(
                                                      R"([{"log_id": "1"}, )" + record + "]")),
                   "writeJSONFile");
}

inline std::string jobAt(const std::string& state, int cpld, int firmware, int total) {
  return R"({"log_id": "17", "job_id": "updateFW", "state_id": ")" + state +
         R"(", "result": 0, "output": [{"wwn": "A1", "file_path": "/a b", "cpld_percentage": )" +
         std::to_string(cpld) + R"(, "fw_percentage": )" + std::to_string(firmware) +
         R"(, "total_percentage": )" + std::to_string(total) + "}]}";
}

inline std::string takenAt(const std::string& time) {
  return timedLine(time, "currentJobArray = (\n)", "run") +
         timedLine(time, "logId = 17, inputParmsDict = {\n}, stateId = WAIT. jobId = updateFW",
                   "run");
}

inline std::string endedAt(const std::string& time) {
  return timedLine(time, "updateAllFW end, retDict = {\n    \"log_id\" = 17;\n}");
}

// A job that takes 12 seconds for its CPLD, 48 for its firmware and 3 behind it.
inline std::string wholeJob() {
  return takenAt("14:59:58") + writtenAt("15:00:00", jobAt("RUN", 0, 0, 0)) +
         writtenAt("15:00:04", jobAt("RUN", 50, 0, 25)) +
         writtenAt("15:00:04", jobAt("RUN", 50, 0, 25)) +
         writtenAt("15:00:10", jobAt("RUN", 100, 0, 50)) +
         writtenAt("15:00:30", jobAt("RUN", 100, 50, 75)) +
         writtenAt("15:00:58", jobAt("RUN", 100, 100, 100)) +
         writtenAt("15:01:01", jobAt("FREE", 100, 100, 100)) + endedAt("15:01:01");
}

}  // namespace kelvane::test
