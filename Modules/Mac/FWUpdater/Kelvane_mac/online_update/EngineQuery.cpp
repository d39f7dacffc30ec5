// The command "getOnlineUpdateData": the update engine is asked what there is, and the catalogue
// that it leaves becomes the job's output.

#include "Kelvane.h"
#include "contract/Engine.h"
#include "contract/JobFile.h"
#include "log/iLog.h"
#include "online_update/Parameters.h"
#include "platform/ChildProcess.h"

namespace kelvane {

using platform::ChildProcess;
using platform::Value;

Value Kelvane::getOnlineUpdateData(const Value& record) {
  Value result = record;
  try {
    KELVANE_LOG("getOnlineUpdateData:", "getOnlineUpdateData start, _EngineRunnerPath = %@",
                _EngineRunnerPath);
    // A list is not taken here, unlike in a download.
    const Value& parameters = record.get(job::kInputParameters);
    if (areComplete(parameters)) query(record, parameters, result);
    KELVANE_LOG("getOnlineUpdateData:", "getOnlineUpdateData end, retDict = %@", result);
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("getOnlineUpdateData:", caught);
  }
  return result;
}

void Kelvane::query(const Value& record, const Value& parameters, Value& result) {
  createTmpFolder(parameters.get(job::kFolder));
  const Value arguments = engineArguments(_EngineRunnerPath, engine::kQuery, parameters,
                                          record.get(job::kLogId), _BGPPath, _GroupContainerPath);
  KELVANE_LOG("getOnlineUpdateData:", "arguments = %@", arguments);
  startJob(result, {});

  ChildProcess engine(_EngineRunnerPath, arguments);
  KELVANE_LOG("getOnlineUpdateData:", "execute EngineRunner result = %@",
              engine.readOutput().text());
  const Value rules = getUpdateEngineData(record);  // before the folder is moved away
  syncDownloadFiles(record);

  Value stored = readJSONFileDict(record).asDictionary();
  if (!rules.isNothing()) {
    stored.set(job::kOutput, rules);
    result.set(job::kOutput, rules);
  }
  finishJob(stored, {});  // in the file only: the result stays "RUN", meant so
  engine.terminate();
}

}  // namespace kelvane
