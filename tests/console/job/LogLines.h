// Lines of the log as the worker writes them.
#pragma once

#include <string>

namespace kelvane::test {

inline std::string logLine(const std::string& function, const std::string& message,
                           const std::string& level = "debug") {
  return "[14:03:07] [x.cpp][1][" + function + "][" + level + "] " + message + "\n";
}

// Of the job runner.
inline std::string runLine(const std::string& message) { return logLine("run", message); }

// A worker's first line, and the one for each job that it looks at.
inline std::string startLine() { return runLine("currentJobArray = (\n)"); }
inline std::string lookLine(const std::string& logId, const std::string& state,
                            const std::string& command = "x") {
  return runLine("logId = " + logId + ", inputParmsDict = {\n}, stateId = " + state +
                 ". jobId = " + command);
}
inline std::string takenLines(const std::string& logId, const std::string& command = "x") {
  return startLine() + lookLine(logId, "WAIT", command);
}

// The last one of a firmware job.
inline std::string endLine(const std::string& logId) {
  return logLine("updateFW", "updateAllFW end, retDict = {\n    \"log_id\" = " + logId + ";\n}");
}

}  // namespace kelvane::test
