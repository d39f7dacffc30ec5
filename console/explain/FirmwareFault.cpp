#include "console/explain/FirmwareFault.h"

#include <cstddef>
#include <string>

#include "console/checks/ImageChecks.h"
#include "console/checks/RecordChecks.h"
#include "console/explain/CodeExplanation.h"
#include "console/explain/FlashNotes.h"
#include "console/job/RecordValues.h"
#include "contract/Framework.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

Value entryAt(const Value& record, std::size_t index) {
  const Value& inputs = record.get(job::kInputParameters);
  return inputs.isArray() && index < inputs.count() ? inputs.at(index) : Value();
}

std::string whatWasFlashed(const std::optional<FailedController>& failed) {
  if (!failed) return "";
  return failed->index == 0 ? " No controller was flashed."
                            : " The controllers before it were flashed, those after it were not "
                              "started.";
}

// No controller has an empty WWN.
std::string faultOfEntry(const Value& record, std::size_t index) {
  std::string fault = firmwareEntryFault(record, index);
  if (!fault.empty() || memberOf(entryAt(record, index), job::kWwn) != Value("")) return fault;
  return fault.append(job::kInputParameters)
      .append("[")
      .append(std::to_string(index))
      .append("] has an empty \"wwn\"");
}

// The job must fail in the same way again.
std::optional<Explanation> recordFault(const Value& record,
                                       const std::optional<FailedController>& failed) {
  const std::string why = failed ? faultOfEntry(record, failed->index) : whyNotStarted(record);
  if (why.empty()) return std::nullopt;
  return Explanation{"", "It cannot be carried out as it is: " + why + "." + whatWasFlashed(failed),
                     "support",
                     "Compare the record with the examples of its command, and add the job anew "
                     "under another log_id.",
                     "not as it is"};
}

constexpr char kNotTaken[] = "The framework looked at the image and did not take it";

// What stands at the path may have been another file then.
Explanation unusableImage(const std::string& path, const std::string& fault) {
  if (!imagePathFault(path).empty()) {
    const std::string named = path.empty() ? "its path" : path;
    return {"", std::string(kNotTaken) + ": " + named + fault + ".", "user",
            "Add the job anew under another log_id, with the absolute path of the image.",
            "not as it is"};
  }
  return {"", std::string(kNotTaken) + ": as it is now, " + path + fault + ".", "user",
          "Put the image there, readable for the worker, and add the job anew under another "
          "log_id.",
          "yes, once the image is there"};
}

// Whether it is damaged or of another kind, the framework's words tell; which kind the controller
// takes stands among the details.
Explanation refusedImage(const Value& record) {
  std::string meaning = kNotTaken;
  const std::string said = stringOf(record.get(job::kResultStr));
  if (!said.empty()) meaning.append("; it says \"").append(said).append("\"");
  return {"", meaning + ".", "user",
          "Look whether the image is whole, and the one that is made for this controller. Add the "
          "job anew under another log_id with that one.",
          "not with this image"};
}

std::optional<Explanation> imageAtFault(const Value& record, const FailedController& failed,
                                        bool isCopy) {
  if (!failed.isAtImage) return std::nullopt;
  const Value path = memberOf(entryAt(record, failed.index), job::kFilePath);
  const std::string fault = imageFaultOf(path, isCopy);
  Explanation told = fault.empty() ? refusedImage(record) : unusableImage(path.string(), fault);
  told.meaning += whatWasFlashed(failed);
  return told;
}

}  // namespace

std::optional<Explanation> firmwareFault(std::int64_t code, const Value& record,
                                         const JobCircumstances& circumstances) {
  const std::optional<FailedController> failed = failedController(record, circumstances.log);
  const bool isOfFramework = !isKnownCode(code) || code == job::kFileNotFound;
  if (isOfFramework || code == kZorDeviceNotFound) {
    if (auto fault = recordFault(record, failed)) return fault;
  }
  if (!isOfFramework || !failed) return std::nullopt;
  return imageAtFault(record, *failed, circumstances.isCopy);
}

}  // namespace kelvane::console
