// The command "updateSW": the installed application bundle is removed, and the new one copied into
// its place, by the system's own tools.

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "contract/Settings.h"
#include "log/iLog.h"
#include "platform/ChildProcess.h"
#include "platform/File.h"

namespace kelvane {

using platform::ChildProcess;
using platform::Value;

namespace {

constexpr char kRemover[] = "/bin/rm";
constexpr char kCopier[] = "/bin/cp";

}  // namespace

Value Kelvane::updateSW(const Value& record) {
  Value answer = record;
  try {
    const Value& inputs = record.get(job::kInputParameters);
    const Value& package = inputs.get(job::kFilePath);
    if (package.isNothing()) return answer;
    const Value& installed = _settingDict.get(settings::kAppPath);
    const Value removal = platform::argumentList(kRemover, {"-Rf", installed});
    const Value copy = platform::argumentList(kCopier, {"-Rf", package, installed});
    answer.set(job::kOutput, inputs);
    startJob(answer, {});

    ChildProcess remover(kRemover, removal);
    KELVANE_LOG("updateSW:", "result = %@", remover.readOutput().text());
    remover.terminate();
    ChildProcess copier(kCopier, copy);  // told to end, and its pipe closed, behind "FREE"
    KELVANE_LOG("updateSW:", "result = %@", copier.readOutput().text());
    // Before "FREE": after that nobody would copy it again.
    if (installed.isString()) platform::synchroniseTree(installed.string());

    Value stored = readJSONFileDict(record).asDictionary();
    finishJob(stored, {});
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("updateSW:", caught);
  }
  return answer;
}

}  // namespace kelvane
