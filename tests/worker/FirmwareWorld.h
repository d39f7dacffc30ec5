// A worker's world with controllers and a firmware job, and what tests of it look at.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "platform/Json.h"
#include "tests/support/JobFiles.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {

using test::Lines;

class FirmwareWorld : public test::WorkerWorld {
 protected:
  // One adapter per controller; their WWNs are "W0", "W1" and so on.
  void controllers(std::initializer_list<std::uint16_t> productIds) {
    for (const std::uint16_t productId : productIds) {
      framework.devices.push_back({fmt::format("W{}", framework.devices.size()), productId});
    }
    framework.adapters = static_cast<std::uint32_t>(framework.devices.size());
  }
  void controllers(int count, std::uint16_t productId) {
    for (int i = 0; i < count; ++i) controllers({productId});
  }

  // Writes a waiting job with these input parameters, and runs it.
  void runJob(const std::string& inputs) {
    writeJobs(test::waitingJob("updateFW", platform::parseJson(inputs)));
    watchJobFile([](const platform::Value& jobs) { return describe(jobs.at(0)); });
    worker.run("17");
  }
  void updateAll(std::initializer_list<const char*> wwns) {
    std::string inputs;
    for (const char* wwn : wwns) {
      inputs += fmt::format(R"({}{{"wwn":"{}","file_path":"/{}.img"}})", inputs.empty() ? "" : ",",
                            wwn, wwn);
    }
    runJob("[" + inputs + "]");
  }

  std::int64_t result() const { return jobs().at(0).get("result").integerValue(); }
  std::string resultText() const { return jobs().at(0).get("resultStr").string(); }
  std::string state() const { return jobs().at(0).get("state_id").string(); }

  // The calls from the n-th on to the end, the last description aside.
  Lines callsAfter(const std::string& start) const {
    auto from = framework.calls.begin();
    while (from != framework.calls.end() && from->rfind(start, 0) != 0) ++from;
    return {from, framework.calls.end()};
  }
  // The lines of the update sequence and its CPLD flash, without their function field.
  Lines updateLines() const {
    Lines lines;
    for (const std::string& line : logWithoutStore()) {
      if (line.rfind("run", 0) != 0) lines.push_back(line.substr(line.find(": ") + 2));
    }
    return lines;
  }

 private:
  // "RUN 50/25/0 0/0/0": the state, and per controller total, CPLD and firmware percentage.
  static std::string describe(const platform::Value& job) {
    std::string text = job.get("state_id").string();
    for (const platform::Value& entry : job.get("output").elements()) {
      text +=
          fmt::format(" {}/{}/{}", entry.get("total_percentage").digits(),
                      entry.get("cpld_percentage").digits(), entry.get("fw_percentage").digits());
    }
    return text;
  }
};

}  // namespace kelvane
