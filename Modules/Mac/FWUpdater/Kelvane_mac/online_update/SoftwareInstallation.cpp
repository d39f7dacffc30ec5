// The command "updateSW": the installed application bundle is removed, and the new one copied into
// its place, by the system's own tools.

#include "Kelvane.h"
#include "log/iLog.h"
#include "platform/ChildProcess.h"

namespace kelvane {

using platform::ChildProcess;
using platform::Value;

Value Kelvane::updateSW(const Value& record) {
  Value answer = record;
  try {
    const Value& inputs = record.get(job::kInputParameters);
    const Value& package = inputs.get(job::kFilePath);
    if (package.isNothing()) return answer;
    const Value& installed = _settingDict.get(settings::kAppPath);
    const Value removal = platform::argumentList({"-Rf", installed});
    const Value copy = platform::argumentList({"-Rf", package, installed});
    answer.set(job::kOutput, inputs);
    answer.set(job::kStateId, job::kRun);
    updateJSONFile(answer);

    ChildProcess remover("/bin/rm", removal);
    KELVANE_LOG("updateSW:", "result = %@", remover.readOutput());
    remover.terminate();
    ChildProcess copier("/bin/cp", copy);
    KELVANE_LOG("updateSW:", "result = %@", copier.readOutput());

    Value stored = readJSONFileDict(record).asDictionary();
    stored.set(job::kStateId, job::kFree);
    updateJSONFile(stored);
    copier.terminate();
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("updateSW:", caught);
  }
  return answer;
}

}  // namespace kelvane
