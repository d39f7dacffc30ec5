#include "console/explain/StartFault.h"

#include <cstddef>

#include "console/checks/CatalogueChecks.h"
#include "console/checks/ImageChecks.h"
#include "console/display/ShellQuoting.h"
#include "console/explain/PackageFault.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr char kNotAsItIs[] = "not as it is";

// `with` tells what the new job has that this one has not.
std::string adviceToRemove(const Value& record, const std::string& sharedFolder,
                           const std::string& with) {
  std::string advice = "Start no worker for it. Remove the record (\"";
  advice += consoleCommand("remove", sharedFolder, stringOf(record.get(job::kLogId)));
  return advice.append("\"), and add the job anew with ").append(with).append(".");
}

std::optional<StartFault> waitingWithoutPackage(const Value& record,
                                                const std::string& sharedFolder, bool isCopy) {
  const std::string fault = packageFaultOf(record, isCopy);
  if (fault.empty()) return std::nullopt;
  const bool isThere = !isCopy && hasPackage(record);
  return StartFault{
      fault,
      std::string("It would remove the application and put ") +
          (isThere ? "what is none" : "none") + " in its place: " + fault +
          ". The worker ends an installation with 0 whatever became of it.",
      adviceToRemove(record, sharedFolder, "the absolute path of an application bundle"),
      kNotAsItIs};
}

// "the image of input_parameters[0], /a, does not exist"; empty where nothing is wrong with it.
std::string faultOfWaitingImage(const Value& path, std::size_t index, bool isCopy) {
  const std::string cause = imageFaultOf(path, isCopy);
  if (cause.empty()) return {};
  std::string fault = path.string().empty() ? "the path of the image of " : "the image of ";
  fault.append(job::kInputParameters).append("[").append(std::to_string(index)).append("]");
  if (!path.string().empty()) fault.append(", ").append(path.string()).append(",");
  return fault + cause;
}

// The worker takes the entries one after the other.
std::optional<StartFault> waitingWithoutImage(const Value& record, const std::string& sharedFolder,
                                              bool isCopy) {
  const Value& inputs = record.get(job::kInputParameters);
  if (!inputs.isArray()) return std::nullopt;
  for (std::size_t i = 0; i < inputs.count(); ++i) {
    const Value path = memberOf(inputs.at(i), job::kFilePath);
    const std::string fault = faultOfWaitingImage(path, i, isCopy);
    if (fault.empty()) continue;
    const char* others = i == 0 ? ". No controller would be flashed."
                                : ". The controllers before it would be flashed, those after it "
                                  "not started.";
    const bool isPath = !imagePathFault(path.string()).empty();
    return StartFault{
        fault, "It would fail: " + fault + others,
        adviceToRemove(record, sharedFolder, "the absolute path of an image that can be read"),
        isPath ? kNotAsItIs : "once the image is there"};
  }
  return std::nullopt;
}

std::optional<StartFault> waitingWithFolder(const Value& record, const std::string& sharedFolder,
                                            bool isCopy) {
  const std::string fault = isCopy ? "" : engineFolderFault(record, sharedFolder);
  if (fault.empty()) return std::nullopt;
  return StartFault{
      fault, "It would take files that are not its own: " + fault + ". " + kEngineFolderMeaning,
      adviceToRemove(record, sharedFolder, "a folder of its own, which need not be there yet"),
      kNotAsItIs};
}

}  // namespace

std::optional<StartFault> startFaultOf(const Value& record, const std::string& sharedFolder,
                                       bool isCopy) {
  const Value& command = record.get(job::kJobId);
  const std::string own = isCopy ? "" : sharedFolder;  // in which the record can be removed
  if (command == Value(job::kUpdateSW)) return waitingWithoutPackage(record, own, isCopy);
  if (command == Value(job::kUpdateFW)) return waitingWithoutImage(record, own, isCopy);
  return waitingWithFolder(record, own, isCopy);
}

}  // namespace kelvane::console
