// A whole session: the job, the framework's answers, what the engine does, and what the application
// writes meanwhile, all made of the input.

#include <algorithm>
#include <iterator>
#include <string>

#include "contract/Framework.h"
#include "contract/JobFile.h"
#include "platform/Json.h"
#include "platform/Utf8.h"
#include "platform/Value.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/WorkerInMemory.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

constexpr const char* kProducts[] = {"sw", "t2", "t3", "kor", "zen", "tarselT3USBFW", "other", ""};
constexpr const char* kFolders[] = {"/dl",      "/dl/sub/..", "dl", "/Shared/tmp",
                                    "/Shared/", "/",          "",   "/dl/\xC3\xA4 b"};
constexpr const char* kWwns[] = {"A1", "B2", "C3", "none", ""};
constexpr std::uint16_t kIdentifiers[] = {0x4301, 0x4801, 0x4201, 0x8801, 0x4902, 0x5001, 0};
constexpr std::uint32_t kStatuses[] = {0,      0,      0,      0,      0,      0,
                                       0,      0x0101, 0x0105, 0x0402, 0x4027, 0x8050,
                                       0x8054, 0x8055, 0x8058, 0x8123, 0x8124};
// So many reads of progress, then every flash is done.
constexpr int kMostPolls = 24;

class Session {
 public:
  explicit Session(const Bytes& bytes) : bytes_(bytes) {
    auto& framework = world_.framework;
    framework.devices.clear();
    const unsigned devices = bytes_.pick(4);
    for (unsigned i = 0; i < devices; ++i) {
      framework.devices.push_back({kWwns[i], kIdentifiers[bytes_.pick(7)]});
    }
    framework.adapters = devices == 0 ? 0 : bytes_.pick(devices + 1);
    framework.descriptions[0x8123] = "unsupported management command";
    framework.descriptions[0x8124] = "the version of CPLD is up to date";
    framework.descriptions[0x8055] = nullptr;
    framework.decide = [this](const std::string& function) { return answer(function); };
    world_.onSleep = [this] { interfere(); };
    world_.engine = [this](const std::string& folder) { return deliver(folder); };
    world_.programs.outlivesItsOutput = bytes_.flag();
    interferes_ = bytes_.flag();
    world_.disk.put(kJobFilePath, jobFile());
  }

  void run() { world_.run(); }

 private:
  template <std::size_t size>
  const char* one(const char* const (&choices)[size]) {
    return choices[bytes_.pick(size)];
  }

  // --- the job file

  std::string jobFile() {
    Value jobs = Value::array();
    const unsigned before = bytes_.pick(3);
    for (unsigned i = 0; i < before; ++i) jobs.append(anotherRecord());
    jobs.append(ownRecord());
    const unsigned behind = bytes_.pick(3);
    for (unsigned i = 0; i < behind; ++i) jobs.append(anotherRecord());
    return platform::printJson(jobs).value_or("");
  }

  Value anotherRecord() {
    if (bytes_.pick(8) == 1) return anything();
    Value record = Value::dictionary({{job::kJobId, one(job::kCommands)}});
    if (bytes_.pick(8) != 1) {
      record.set(job::kLogId, bytes_.pick(8) == 1 ? anything() : Value("16"));
    }
    if (bytes_.flag()) record.set(job::kStateId, one(job::kStates));
    if (bytes_.flag()) record.set(job::kInputParameters, anything());
    if (bytes_.flag()) record.set(job::kOutput, anything());
    return record;
  }

  Value ownRecord() {
    const std::string command = one(job::kCommands);
    Value record = Value::dictionary(
        {{job::kLogId, kLogId}, {job::kJobId, command}, {job::kStateId, job::kWait}});
    if (bytes_.pick(16) == 1) {
      record.set(job::kInputParameters, anything());
    } else {
      record.set(job::kInputParameters, parametersOf(command));
    }
    if (bytes_.pick(8) == 1) record.set("note", anything());
    return record;
  }

  Value parametersOf(const std::string& command) {
    if (command == job::kUpdateSW) {
      return Value::dictionary({{job::kFilePath, one(kFolders)}});
    }
    if (command == job::kGetOnlineUpdateData) return productParameters();
    Value list = Value::array();
    const unsigned count = bytes_.pick(4);
    for (unsigned i = 0; i < count; ++i) {
      list.append(command == job::kUpdateFW ? firmwareEntry() : productParameters());
    }
    return list;
  }

  Value productParameters() {
    Value parameters = Value::dictionary({{job::kProductId, one(kProducts)}});
    parameters.set(job::kVersion, text());
    parameters.set(job::kUrl, text());
    if (bytes_.pick(8) != 1) parameters.set(job::kFolder, one(kFolders));
    return parameters;
  }

  Value firmwareEntry() {
    Value entry = Value::dictionary();
    if (bytes_.pick(8) != 1) entry.set(job::kWwn, one(kWwns));
    if (bytes_.pick(8) != 1) entry.set(job::kFilePath, text());
    if (bytes_.pick(16) == 1) entry.set(job::kFilePath, anything());
    return entry;
  }

  // What a reader of JSON can have met: UTF-8.
  Value text() { return platform::repairedUtf8(bytes_.text()); }

  Value anything() {
    const Value read = platform::parseJson("[" + bytes_.text() + "]");
    return read.count() == 0 ? Value::null() : read.at(0);
  }

  // --- the framework

  std::uint32_t answer(const std::string& function) {
    auto& framework = world_.framework;
    interfere();
    framework.failuresTellCounts = false;
    const bool isProgress = function == "zr_getCPLDProgress" || function.starts_with("zr_getFlash");
    if (isProgress && (++polls_ > kMostPolls || bytes_.isEmpty())) {
      framework.cpldProgress.clear();
      framework.flashProgress.clear();
      return 0;
    }
    framework.interfaceByte = static_cast<std::uint8_t>(bytes_.pick(3));
    framework.usbUpdateFlag = bytes_.pick(3);
    if (isProgress) framework.cpldProgress = framework.flashProgress = {progress()};
    return kStatuses[bytes_.pick(std::size(kStatuses))];
  }

  test::FakeFramework::Progress progress() {
    return {.status = static_cast<std::uint8_t>(bytes_.flag() ? 0 : bytes_.pick(5)),
            .stage = static_cast<std::uint8_t>(bytes_.pick(7)),
            .percent = bytes_.byte(),
            .retries = static_cast<std::uint8_t>(bytes_.pick(3)),
            .callStatus = bytes_.pick(8) == 1 ? 0x8123U : 0U,
            .leavesRecord = bytes_.pick(8) == 1};
  }

  // --- the engine

  std::string deliver(const std::string& folder) {
    interfere();
    const unsigned kind = bytes_.pick(4);
    if (kind == 1) world_.disk.put(folder + "/catalogue.plist", bytes_.text());
    if (kind > 1) world_.disk.put(folder + "/catalogue.plist", catalogue());
    const char* const names[] = {"FW_T3.img", "FW_QRX550.img", "Manager.app/x", "p.bin", ".hidden"};
    const unsigned files = bytes_.pick(4);
    for (unsigned i = 0; i < files; ++i) world_.disk.put(folder + "/" + one(names), "image");
    return bytes_.text();
  }

  std::string catalogue() {
    std::string rules;
    const unsigned count = bytes_.pick(4);
    for (unsigned i = 0; i < count; ++i) rules += "<dict>" + rule() + "</dict>";
    return "<plist><dict><key>Rules</key><array>" + rules + "</array></dict></plist>";
  }

  std::string rule() {
    std::string entries = entry("ProductID", one(kProducts));
    for (const char* key : {"Version", "Size", "Hash256", "MinimumOSVersion"}) {
      if (bytes_.pick(8) != 1) entries += entry(key, std::to_string(bytes_.byte()) + ".1.0");
    }
    if (bytes_.flag()) entries += entry("Codebase", "http://x/p.bin");
    if (bytes_.pick(16) == 1) entries += "<key>Date</key><date>2026-01-31T23:59:59Z</date>";
    return entries;
  }

  static std::string entry(const std::string& key, const std::string& text) {
    return "<key>" + key + "</key><string>" + text + "</string>";
  }

  // --- the application

  // Writes the job file, or leaves it alone.
  void interfere() {
    if (!interferes_ || bytes_.isEmpty() || bytes_.pick(16) != 1) return;
    const std::string before = world_.disk.bytesOf(kJobFilePath).value_or("");
    const Value jobs = platform::parseJson(before);
    if (!jobs.isArray()) return;
    world_.jobFile.disturb();
    switch (bytes_.pick(5)) {
      case 0:
        return write(withAnother(jobs));
      case 1:
        return write(withoutTheLast(jobs));
      case 2:
        return write(withNotes(jobs));
      case 3:
        return world_.disk.put(kJobFilePath, before.substr(0, before.size() / 2));
      default:
        return world_.disk.remove(kJobFilePath);
    }
  }

  void write(const Value& jobs) {
    world_.disk.put(kJobFilePath, platform::printJson(jobs).value_or(""));
  }

  Value withAnother(Value jobs) {
    jobs.append(anotherRecord());
    return jobs;
  }

  static Value withoutTheLast(const Value& jobs) {
    Value fewer = Value::array();
    for (std::size_t i = 0; i + 1 < jobs.count(); ++i) fewer.append(jobs.at(i));
    return fewer;
  }

  Value withNotes(const Value& jobs) {
    Value noted = Value::array();
    for (const Value& record : jobs.elements()) {
      Value copy = record;
      if (copy.isDictionary()) copy.set("note", text());
      noted.append(copy);
    }
    return noted;
  }

  Bytes bytes_;
  WorkerInMemory world_;
  bool interferes_ = false;
  int polls_ = 0;
};

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvane::fuzz::Session(kelvane::fuzz::Bytes(data, size)).run();
  return 0;
}
