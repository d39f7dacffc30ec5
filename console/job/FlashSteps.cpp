#include "console/job/FlashSteps.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include "console/job/JobStatus.h"
#include "console/job/LogTime.h"
#include "console/job/LoggedJobs.h"
#include "console/job/LoggedRecords.h"
#include "console/job/LoggedValue.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr char kFound[] = "devId = ";
constexpr std::string_view kImage = ", filePath = ";
constexpr std::string_view kProduct = "pPage0->ci_ProductID = ";
constexpr std::string_view kInformation = "zr_getControllerInfo(), u32Ret = ";
constexpr std::string_view kQvxfStep = "[WRONG] ";
constexpr std::string_view kRetry = "Found error, try to flash CPLD again, retry ";
constexpr std::string_view kFlashRuns = "There is another flash process running.";
constexpr std::string_view kFlashError = "Flash Error";
constexpr std::string_view kBadImage = "Image format is invalid.";
constexpr std::string_view kCompleted = "Flash Completed.";
constexpr std::string_view kCpldBegun = "Start transferring CPLD image";
constexpr std::string_view kCpldStart = "flashCPLD start";
constexpr std::string_view kCpldEnd = "flashCPLD end";
constexpr std::string_view kTransfer = "Start transferring image";
constexpr std::string_view kQvxfTransfer = "[WRONG] zr_transferQVXFFlashImage = ";

// What the worker says before and while it looks at an image, and what it says of any failure.
constexpr std::string_view kAtImage[] = {kProduct,
                                         "zr_getUSBImageInfo()",
                                         "usb_u32checkUSB",
                                         "rpf.rpf_uTransfer",
                                         "[WRONG] zr_initializeFlashProcess = 0x0",
                                         "[WRONG] zr_checkQVXFFlashImage = "};
constexpr std::string_view kAfterFailure = "u32Ret is not 0";

int numberBehind(const std::string& text, std::string_view start) {
  int number = 0;
  std::from_chars(text.data() + start.size(), text.data() + text.size(), number);
  return number;
}

std::string imageIn(const std::string& message) {
  const std::size_t start = message.find(kImage);
  return start == std::string::npos ? "" : message.substr(start + kImage.size());
}

bool isFault(const std::string& message) {
  if (message == kFlashError || message == kFlashRuns || message == kBadImage) return true;
  if (message.starts_with(kInformation)) return message.substr(kInformation.size()) != "0";
  const std::size_t status = message.rfind(" = 0x");
  return message.starts_with(kQvxfStep) && status != std::string::npos &&
         message.substr(status) != " = 0x0";
}

// The flash of a CPLD that is up to date is not begun.
void takeCpldTime(const std::string& message, std::chrono::seconds now, FlashSteps& steps) {
  if (message == kCpldStart) steps.cpldBegin = now;
  if (message.starts_with(kCpldBegun)) steps.hasCpld = true;
  if (message == kCpldEnd && steps.hasCpld) steps.cpldEnd = now;
}

void takeFirmwareTime(const LogEntry& entry, std::chrono::seconds now, FlashSteps& steps) {
  const bool isOver = entry.message == kCompleted || isFlashFault(entry);
  if (isOver && steps.hasFirmware && !steps.firmwareEnd) steps.firmwareEnd = now;
}

void takeCpldStep(const LogEntry& entry, FlashSteps& steps) {
  const std::string& message = entry.message;
  if (message.starts_with(kCpldBegun)) steps.hasBegun = true;
  if (message.starts_with(kRetry)) steps.cpldRetries = numberBehind(message, kRetry);
  if (message == kFlashError || message == kFlashRuns || entry.level == "error") {
    steps.cpldFault = lineOf(entry);
  }
}

void takeProduct(const std::string& message, FlashSteps& steps) {
  steps.product = message.substr(kProduct.size());
  const std::string family = steps.product.substr(0, 2);
  steps.isQvxf = steps.product.size() == 4 && (family == "48" || family == "49");
}

bool isAtImage(const std::string& message) {
  return std::any_of(std::begin(kAtImage), std::end(kAtImage),
                     [&](std::string_view start) { return message.starts_with(start); });
}

void takeStep(const LogEntry& entry, FlashSteps& steps) {
  const std::string& message = entry.message;
  if (!message.starts_with(kAfterFailure)) steps.isAtImage = isAtImage(message);
  if (message.starts_with(kProduct)) takeProduct(message, steps);
  if (message.starts_with(kTransfer) || message.starts_with(kQvxfTransfer)) {
    steps.hasBegun = true;
    steps.hasFirmware = true;
  }
  if (message == kCompleted) steps.isFlashed = true;
  // Behind the flash's end an error is the job's.
  if (steps.isFlashed || !steps.fault.empty()) return;
  if (isFlashFault(entry)) steps.fault = lineOf(entry);
}

bool isEndOfJob(const std::string& message) { return message.find(kEndOfJob) != std::string::npos; }

// Whether the worker has come to an entry that it does not start: the product is then still that of
// the controller before.
bool isOfTheNext(const LogEntry& entry, const FlashSteps& steps) {
  return entry.function == "updateFW" && !steps.product.empty() &&
         entry.message.starts_with(kProduct);
}

const Value* entryNamed(const Value& entries, const char* key, const std::string& text) {
  if (!entries.isArray()) return nullptr;
  for (const Value& entry : entries.elements()) {
    if (entry.isDictionary() && entry.get(key) == Value(text)) return &entry;
  }
  return nullptr;
}

// The percentage in the worker's version of the job file that this entry shows.
std::optional<int> firmwareIn(const LogEntry& entry, const std::string& logId,
                              const std::string& wwn) {
  const Value records = parseLogged(std::string_view(entry.message).substr(kRecordsWritten.size()));
  const Value* record = entryNamed(records, job::kLogId, logId);
  if (record == nullptr) return std::nullopt;
  const Value* progress = entryNamed(record->get(job::kOutput), job::kWwn, wwn);
  if (progress == nullptr || !progress->get(job::kFwPercentage).isString()) return std::nullopt;
  return numberBehind(progress->get(job::kFwPercentage).string(), "");
}

}  // namespace

bool isFlashFault(const LogEntry& entry) {
  return isFault(entry.message) || entry.level == "error";
}

std::string lineOf(const LogEntry& entry) {
  std::string first = entry.message.substr(0, entry.message.find('\n'));
  first.erase(0, std::min(first.find_first_not_of(' '), first.size()));
  return entry.time + " " + entry.function + ": " + first;
}

std::vector<FlashSteps> flashStepsIn(std::span<const LogEntry> entries) {
  std::vector<FlashSteps> all;
  bool isOver = false;
  LogClock clock;
  for (const LogEntry& entry : entries) {
    clock.take(entry.time);
    const bool isOfCpld = entry.function == "flashCPLD";
    if ((entry.function != "updateFW" && !isOfCpld) || isEndOfJob(entry.message)) continue;
    if (!isOfCpld && entry.message.starts_with(kFound)) {
      all.emplace_back().image = imageIn(entry.message);
      all.back().begin = clock.passed();
      isOver = false;
    }
    if (all.empty()) continue;
    isOver = isOver || isOfTheNext(entry, all.back());
    if (isOver) continue;
    if (isOfCpld) {
      all.back().isAtImage = false;
      takeCpldTime(entry.message, clock.passed(), all.back());
      takeCpldStep(entry, all.back());
    } else {
      takeStep(entry, all.back());
      takeFirmwareTime(entry, clock.passed(), all.back());
    }
    all.back().lastStep = lineOf(entry);
  }
  return all;
}

std::optional<int> firmwareBeforeTheEnd(std::span<const LogEntry> entries, const std::string& logId,
                                        const std::string& wwn) {
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    if (!entry->message.starts_with(kRecordsWritten)) continue;
    const std::optional<int> firmware = firmwareIn(*entry, logId, wwn);
    if (!firmware || *firmware < kWhole) return firmware;
  }
  return std::nullopt;
}

}  // namespace kelvane::console
