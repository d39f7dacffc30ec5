#include "console/explain/FinishedJob.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

#include "console/explain/CodeExplanation.h"
#include "console/explain/FirmwareFault.h"
#include "console/explain/PackageFault.h"
#include "console/explain/PackageNotes.h"
#include "console/explain/Shortfall.h"
#include "console/job/RecordValues.h"
#include "console/job/StandardError.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

// Whether the log tells of each controller which images it takes.
bool tellsProducts(const JobStatus& status, const LogStretch& log) {
  return log.isFound && !log.isMixed && log.flashes.size() == status.controllers.size();
}

// The controllers whose CPLD is below 100 percent, "A1 (0%), A2 (50%)"; those that take QVXF images
// are left out where the log tells which they are.
std::string unfinishedCplds(const JobStatus& status, const LogStretch& log) {
  const bool tells = tellsProducts(status, log);
  std::string text;
  for (std::size_t i = 0; i < status.controllers.size(); ++i) {
    const ControllerStatus& one = status.controllers[i];
    if (one.cpld == kWhole || (tells && log.flashes[i].isQvxf)) continue;
    text += (text.empty() ? "" : ", ") + one.wwn + " (" + std::to_string(one.cpld) + "%)";
  }
  return text;
}

Explanation withoutCplds(const std::string& cplds, bool takeStandardImages) {
  const std::string meaning =
      "Every controller has its firmware, but not every CPLD was flashed: " + cplds + ".";
  if (takeStandardImages) {
    return {"", meaning, "user",
            "Leave the enclosure powered, close other programs that update it, and update the "
            "controller again.",
            "yes, for such a controller"};
  }
  return {
      "", meaning + " That is as it should be for controllers that take QVXF images.", "user",
      "For a controller that takes standard images, look for \"Flash Error\" or \"another flash "
      "process\" of flashCPLD in the log, and update it again.",
      "yes, for such a controller"};
}

Explanation updatedFirmware(const Value& record, const JobStatus& status, const LogStretch& log) {
  if (!record.has(job::kOutput) && record.get(job::kInputParameters).count() > 0) {
    return {
        "",
        "The job was done, but its first write failed, as on a full disk: its progress is lost, "
        "also whether the CPLDs were flashed.",
        "user",
        "Mend what kept the job file from being written. The log tells of the CPLDs, in its "
        "lines of flashCPLD.",
        "if a CPLD was not flashed"};
  }
  if (status.controllers.empty()) {
    return {"", "The job names no controller: nothing was flashed.", "support",
            "Find out what the application put into the job's input_parameters.", "not as it is"};
  }
  const std::string cplds = unfinishedCplds(status, log);
  if (cplds.empty()) return {"", "Every controller has its firmware.", "nobody", "", "no"};
  return withoutCplds(cplds, tellsProducts(status, log));
}

Explanation queried(const Value& record) {
  if (record.get(job::kOutput).isArray()) {
    return {"", "What the update service offers is the job's output.", "nobody", "", "no"};
  }
  return {"", "The update engine left no catalogue that could be read: there is no output.", "user",
          "Check the network, the service's address, and online_update_plist_name in the product's "
          "settings.",
          "yes"};
}

constexpr char kWhatever[] = "The worker ends an installation with 0 whatever became of it, ";

// What became of the application where the package is none.
std::string withoutPackage(const Value& record, const JobCircumstances& circumstances) {
  if (!circumstances.missingApplication.empty()) {
    return " No application stands at " + circumstances.missingApplication +
           ": it was removed, and none put in its place.";
  }
  if (memberOf(record.get(job::kInputParameters), job::kFilePath) == Value("")) {
    return " The application was to be removed, and none put in its place.";
  }
  if (!circumstances.isCopy && hasPackage(record)) {
    return " Unless another one stood there then, the application was removed, and this put in its "
           "place.";
  }
  return " Unless there was a package then, the application was removed, and none put in its "
         "place.";
}

Explanation installedNothing(const std::string& fault, const Value& record,
                             const JobCircumstances& circumstances) {
  std::string meaning = kWhatever;
  meaning.append("and ").append(fault).append(".").append(withoutPackage(record, circumstances));
  return {"", meaning, "user",
          "Look whether the application stands in its place. If not, add the job anew with the "
          "absolute path of an application bundle.",
          "not as it is"};
}

// Of a run that is not in the log it is not known which one said it.
std::vector<std::string> saidInThisRun(const JobCircumstances& circumstances) {
  return circumstances.log.isFound ? circumstances.standardError : std::vector<std::string>();
}

// What was said in this run or in an earlier one, as a sentence; else empty.
std::string doubtfulComplaint(const JobCircumstances& circumstances) {
  const std::string complaint = toolsComplaint(circumstances.standardError);
  if (complaint.empty()) return {};
  return " The system's tools complained in this run or in an earlier one that asked for the same, "
         "which of them the log does not tell: \"" +
         complaint + "\".";
}

// What became of the application is told neither by the result nor by the log.
Explanation installed(const Value& record, const JobCircumstances& circumstances) {
  const std::string complaint = toolsComplaint(saidInThisRun(circumstances));
  if (!complaint.empty()) {
    std::string meaning = kWhatever;
    meaning.append("but the system's tools complained: \"").append(complaint);
    return {"", meaning.append("\". It failed, wholly or in part."), "user",
            "Mend what they complained of, such as a missing permission or package, and look "
            "whether the application still stands in its place. Then add the job anew.",
            "yes, under another log_id"};
  }
  const std::string fault = packageFaultOf(record, circumstances.isCopy);
  if (!fault.empty()) return installedNothing(fault, record, circumstances);
  std::string advice = "Look whether the new application stands in its place.";
  if (circumstances.lacksStandardError) {
    advice +=
        " What the system's tools complained of is kept where a console submitted the job: "
        "ask for ";
    advice.append(standardErrorPath("", stringOf(record.get(job::kLogId)))).append(".");
  }
  return {"",
          "The application was to be replaced. The result is 0 whatever became of that." +
              doubtfulComplaint(circumstances),
          "user", advice, "if the application is not there"};
}

Explanation succeeded(const Value& record, const JobStatus& status,
                      const JobCircumstances& circumstances) {
  if (status.command == job::kUpdateFW) return updatedFirmware(record, status, circumstances.log);
  if (status.command == job::kGetOnlineUpdateData) return queried(record);
  if (status.command == job::kUpdateSW) return installed(record, circumstances);
  if (status.command == job::kDownloadOnlineUpdateFile) {
    return {"", "Every package is there; the output has the paths.", "nobody", "", "no"};
  }
  return explainResult(0, status.command, status.resultText);
}

Explanation finishedWithoutResult(const JobStatus& status) {
  if (status.command == job::kGetOnlineUpdateData || status.command == job::kUpdateSW ||
      status.command == job::kDownloadOnlineUpdateFile) {
    return {"finished without a result",
            "The worker's first write of the job failed, as on a full disk, and its last one did "
            "not. The job was done, and would have the result 0.",
            "user", "Mend what kept the job file from being written.", "yes, under another log_id"};
  }
  return {"finished without a result", "Not the worker marked it as finished.", "support",
          "Find out who writes the job file besides the worker.", "yes, under another log_id"};
}

// "finished with the result 0.5, which is no whole number of 64 bits"
Explanation finishedWithAnother(const std::string& result, const std::string& what) {
  return {"finished with the result " + result + ", which is no " + what,
          "The worker ends no job so: another program wrote the record, or changed it. What became "
          "of the job, the log tells.",
          "support", "Find out who writes the job file besides the worker.",
          "when it is known what became of it"};
}

// What a result is not, "result of updateSW", where neither the worker nor the framework makes it;
// empty where one of them may.
std::string whatItIsNot(std::int64_t code, const std::string& command) {
  constexpr std::int64_t kHighestStatus = 0xFFFFFFFF;
  if (code < 0 || code > kHighestStatus) return "status of 32 bits";
  constexpr const char* kWithoutFramework[] = {job::kGetOnlineUpdateData, job::kUpdateSW,
                                               job::kDownloadOnlineUpdateFile};
  const auto* const end = std::end(kWithoutFramework);
  const bool isOfFramework = std::find(std::begin(kWithoutFramework), end, command) == end;
  return isOfFramework || isKnownCode(code) ? "" : "result of " + command;
}

// Of a download that asked for what it cannot get.
void takePackageAdvice(const Value& record, bool isCopy, Explanation& told) {
  const std::string advice = packageAdvice(record, isCopy);
  if (advice.empty()) return;
  told.advice = advice;
  told.tryAgain = "not as it is";
}

Explanation failed(std::int64_t code, const Value& record, const JobStatus& status,
                   const JobCircumstances& circumstances) {
  Explanation told = explainResult(code, status.command, status.resultText);
  std::optional<Explanation> fault;
  if (status.command == job::kUpdateFW) fault = firmwareFault(code, record, circumstances);
  if (!fault) {
    takePackageAdvice(record, circumstances.isCopy, told);
    return told;
  }
  fault->subject = told.subject;
  return *fault;
}

}  // namespace

Explanation explainFinished(const Value& record, const JobStatus& status,
                            const JobCircumstances& circumstances) {
  const Value& result = record.get(job::kResult);
  if (result.isNothing()) return finishedWithoutResult(status);
  if (!result.isNumber()) return finishedWithAnother(status.otherResult, "number");
  const std::int64_t code = result.integerValue();
  if (std::to_string(code) != result.digits()) {
    return finishedWithAnother(result.digits(), "whole number of 64 bits");
  }
  if (const std::string what = whatItIsNot(code, status.command); !what.empty()) {
    return finishedWithAnother(result.digits(), what);
  }
  Explanation explanation = code == 0 ? succeeded(record, status, circumstances)
                                      : failed(code, record, status, circumstances);
  if (code == 0) explanation.subject = explainResult(0, status.command, status.resultText).subject;
  explanation.subject.insert(0, "finished with ");
  const InstallationTraces traces{saidInThisRun(circumstances), circumstances.isCopy,
                                  circumstances.missingApplication};
  explanation.fellShort = !shortfallOf(record, circumstances.log, traces).empty();
  return explanation;
}

}  // namespace kelvane::console
