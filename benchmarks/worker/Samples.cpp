#include "benchmarks/worker/Samples.h"

#include <filesystem>

#include "contract/Paths.h"
#include "log/iLog.h"
#include "platform/Json.h"

namespace kelvane::benchmarks {

using platform::Value;

namespace {

Value ended(std::size_t number) {
  const Value input = Value::dictionary({{"wwn", "50000000" + std::to_string(10'000'000 + number)},
                                         {"file_path", "/Users/someone/Downloads/FW_T3.img"}});
  Value entry = input;
  entry.set("fw_percentage", Value::integer(100));
  entry.set("note", Value::number("0.10"));
  return Value::dictionary({{"log_id", "earlier-" + std::to_string(number)},
                            {"job_id", "updateFW"},
                            {"state_id", "FREE"},
                            {"input_parameters", Value::array({input})},
                            {"output", Value::array({entry})},
                            {"result", Value::integer(0)},
                            {"resultStr", "no error"}});
}

std::string element(const char* name, const std::string& content) {
  return std::string("<") + name + ">" + content + "</" + name + ">";
}

std::string keyed(const char* key, const std::string& text) {
  return element("key", key) + element("string", text) + "\n";
}

std::string rule(std::size_t number) {
  const std::string digits = std::to_string(number);
  return element("dict", keyed("ProductID", "product-" + digits) +
                             keyed("Version", "2." + digits + ".0") + element("key", "Size") +
                             element("integer", "7340032") + "\n" +
                             keyed("Hash256", digits + std::string(64 - digits.size(), 'a')) +
                             keyed("MinimumOSVersion", "10.15.0") +
                             keyed("Codebase", "https://updates.example/" + digits + "/FW_T3.img"));
}

}  // namespace

Value progress() {
  return Value::dictionary(
      {{"wwn", "A"}, {"file_path", "/i"}, {"fw_percentage", Value::integer(37)}});
}

std::string jobFile(std::size_t records) {
  Value jobs = Value::array();
  for (std::size_t number = 1; number < records; ++number) jobs.append(ended(number));
  jobs.append(Value::dictionary({{"log_id", "17"},
                                 {"job_id", "updateFW"},
                                 {"state_id", "RUN"},
                                 {"output", Value::array({progress()})}}));
  return *platform::printJson(jobs);
}

std::string catalogue(std::size_t rules) {
  std::string all;
  for (std::size_t number = 0; number < rules; ++number) all += rule(number);
  return element("dict", element("key", "Rules") + element("array", all));
}

WorkerInFolder::WorkerInFolder(const std::string& jobs, const std::string& settings) {
  folder_.write(paths::kJobFile, jobs);
  folder_.write(paths::kLog, "");
  worker_.emplace(host_).init(folder_.path() + "/");
  worker_->setSettingDict(platform::parseJson(settings));
}

WorkerInFolder::~WorkerInFolder() { setLogPath(""); }

void WorkerInFolder::emptyLog() const { std::filesystem::resize_file(path(paths::kLog), 0); }

}  // namespace kelvane::benchmarks
