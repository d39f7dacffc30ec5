// The command "downloadOnlineUpdateFile": the update engine fetches packages, the download area
// takes them, and every one is described and looked for.

#include "Kelvane.h"
#include "contract/Engine.h"
#include "contract/JobFile.h"
#include "log/iLog.h"
#include "online_update/Parameters.h"
#include "platform/ChildProcess.h"
#include "platform/File.h"

namespace kelvane {

using platform::ChildProcess;
using platform::Value;

Value Kelvane::downloadOnlineUpdateFile(const Value& record) {
  Value result = record;
  try {
    const Value& inputs = record.get(job::kInputParameters);
    if (inputs.count() == 0) return result;
    const Value& primary = inputs.at(0);  // drives the engine; all are described
    if (areComplete(primary)) download(record, primary, result);
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("downloadOnlineUpdateFile:", caught);
  }
  return result;
}

void Kelvane::download(const Value& record, const Value& primary, Value& result) {
  const Value& inputs = record.get(job::kInputParameters);
  createTmpFolder(primary.get(job::kFolder));
  const Value arguments = engineArguments(_EngineRunnerPath, engine::kDownload, primary,
                                          record.get(job::kLogId), _BGPPath, _GroupContainerPath);
  startJob(result, Value::dictionary({{job::kOutput, inputs}}));

  ChildProcess engine(_EngineRunnerPath, arguments);
  engine.discardOutput();
  const Value folder = syncDownloadFiles(record);
  const Value descriptions = getDownloadFileData(inputs, folder);
  result.set(job::kOutput, descriptions);
  const Value check = checkDownloadFilePath(descriptions);

  Value stored = readJSONFileDict(record).asDictionary();
  stored.set(job::kOutput, descriptions);
  finishJob(stored, check);
  engine.terminate();
}

Value Kelvane::checkDownloadFilePath(const Value& descriptions) {
  try {
    for (const Value& description : descriptions.elements()) {
      const Value& path = description.get(job::kFilePath);
      if (!path.isNothing() && platform::exists(path.string())) continue;
      return Value::dictionary({{job::kResult, Value::integer(job::kFileNotFound)},
                                {job::kResultStr, job::kFileNotFoundText}});
    }
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("checkDownloadFilePath:", caught);
  }
  return Value::dictionary();
}

}  // namespace kelvane
