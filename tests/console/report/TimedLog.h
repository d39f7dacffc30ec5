// The log of firmware job 17, made step by step, with the time that passes between them.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "console/job/LogFile.h"
#include "console/report/FlashHistory.h"
#include "platform/Text.h"
#include "platform/Value.h"

namespace kelvane::test {

class TimedLog {
 public:
  // Of each controller the percentages of CPLD, firmware and total.
  using Percentages = std::vector<std::array<int, 3>>;

  explicit TimedLog(std::vector<std::string> wwns, long startsAt = 14L * 3600)
      : wwns_(std::move(wwns)), now_(startsAt) {}

  TimedLog& pass(long seconds) {
    now_ += seconds;
    return *this;
  }

  void step(const std::string& function, const std::string& message) {
    const long clock = now_ % (24L * 3600);
    text_ += platform::format("[%02ld:%02ld:%02ld] [x.cpp][1][%@][debug] %@\n", clock / 3600,
                              clock / 60 % 60, clock % 60, function, message);
  }

  void written(const Percentages& percentages) { writtenOf("17", percentages); }

  void writtenOf(const std::string& logId, const Percentages& percentages) {
    using platform::Value;
    Value output = Value::array();
    for (std::size_t i = 0; i < percentages.size(); ++i) {
      output.append(Value::dictionary({{"wwn", wwns_.at(i)},
                                       {"cpld_percentage", Value::integer(percentages[i][0])},
                                       {"fw_percentage", Value::integer(percentages[i][1])},
                                       {"total_percentage", Value::integer(percentages[i][2])}}));
    }
    const Value record = Value::dictionary({{"log_id", logId}, {"output", output}});
    step("writeJSONFile",
         "writeJSONFile, newArray = " + platform::describe(Value::array({record})));
  }

  void end() { step("updateFW", "updateAllFW end, retDict = {\n    \"log_id\" = 17;\n}"); }

  const std::string& text() const { return text_; }

  platform::Value record() const {
    platform::Value inputs = platform::Value::array();
    for (const std::string& wwn : wwns_) {
      inputs.append(platform::Value::dictionary({{"wwn", wwn}, {"file_path", "a.img"}}));
    }
    return platform::Value::dictionary(
        {{"log_id", "17"}, {"job_id", "updateFW"}, {"input_parameters", inputs}});
  }

  console::FlashHistory history() const {
    return console::flashHistoryOf(console::parseLog(text_), record());
  }

 private:
  std::vector<std::string> wwns_;
  long now_;
  std::string text_;
};

}  // namespace kelvane::test
