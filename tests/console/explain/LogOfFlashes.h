// The log of a firmware job, made line by line.
#pragma once

#include <string>

#include "console/job/LogStretch.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/console/job/LogLines.h"

namespace kelvane::test {

// What the worker writes of a controller before its flashes.
inline std::string controllerLines(const std::string& image, const std::string& product = "4301") {
  return logLine("updateFW", "devId = 0, filePath = " + image) +
         logLine("updateFW", "zr_getControllerInfo(), u32Ret = 0") +
         logLine("updateFW", "pPage0->ci_ProductID = " + product);
}

inline std::string flashedLines() {
  return logLine("updateFW", "Start transferring image, please wait ...") +
         logLine("updateFW", "Start flashing image, please wait ...") +
         logLine("updateFW", "Flash Completed.");
}

// A version of the job file with these percentages of the controller's firmware, as it is written.
inline std::string writtenLine(const std::string& logId, const std::string& wwn, int firmware) {
  return logLine("writeJSONFile",
                 "writeJSONFile, newArray = " +
                     platform::describe(platform::parseJson(
                         R"([{"log_id": ")" + logId + R"(", "output": [{"wwn": ")" + wwn +
                         R"(", "fw_percentage": )" + std::to_string(firmware) + "}]}]")));
}

// The stretch of a worker that reads this record and then writes these lines.
inline console::LogStretch stretchWith(const platform::Value& record, const std::string& lines) {
  const std::string logId = record.get("log_id").string();
  return console::stretchOf(console::parseLog(takenLines(logId, "updateFW") + lines), record);
}

}  // namespace kelvane::test
