// The job runner: the worker's start, and the choice of the one job it runs.

#include <string>

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "contract/Settings.h"
#include "log/iLog.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane {

using platform::Value;

namespace {

struct Command {
  const char* name;
  Value (Kelvane::*operation)(const Value& record);
};

// The one place where commands are bound to operations.
constexpr Command kCommands[] = {
    {job::kGetOnlineUpdateData, &Kelvane::getOnlineUpdateData},
    {job::kDownloadOnlineUpdateFile, &Kelvane::downloadOnlineUpdateFile},
    {job::kUpdateSW, &Kelvane::updateSW},
    {job::kUpdateFW, &Kelvane::updateFW},
};

// The application bundle's settings, for an executable's folder in a bundle that stands two levels
// below the root.
std::string productSettingsPath(const Value& executableFolder) {
  const std::string above = platform::withoutLastComponent(executableFolder.string());
  const Value components = platform::split(above, '/');
  return platform::format("/%@/%@/%@", components.at(1), components.at(2),
                          Value(paths::kProductSettings));
}

// What the completeness test takes as the record's input parameters: the dictionary itself or a
// list's first element. Anything else leaves the value that an earlier record supplied, meant so.
void takeInputParameters(const Value& record, Value& carried) {
  const Value& given = record.get(job::kInputParameters);
  if (given.isDictionary()) {
    carried = given;
  } else if (given.isArray() && given.count() > 0) {
    carried = given.at(0);
  }
}

}  // namespace

Kelvane::Kelvane(platform::Host& host) : _host(host) { iLog_host = &host; }

Kelvane& Kelvane::init(const Value& groupContainerPath) {
  try {
    setUp(groupContainerPath);
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("init:", caught);
  }
  return *this;
}

void Kelvane::setUp(const Value& groupContainerPath) {
  _GroupContainerPath = groupContainerPath.isNothing() ? Value("") : groupContainerPath;
  _BGPPath = platform::format("%@%s", _GroupContainerPath, paths::kJobFile);
  const std::string logPath = platform::format("%@%s", _GroupContainerPath, paths::kLog);
  // Before the log path is set, so that its two log lines are dropped: meant so.
  _EngineRunnerPath = getEngineRunnerPath(_GroupContainerPath);
  setLogPath(logPath.c_str());
  _settingDict =
      platform::parseJson(platform::readFile(productSettingsPath(_host.executableFolder())));
}

Value Kelvane::getEngineRunnerPath(const Value& groupContainerPath) {
  Value toolPath;
  try {
    const std::string path = platform::format("%@%s", groupContainerPath, paths::kSharedSettings);
    KELVANE_LOG("getEngineRunnerPath:", "getFormatToolPath start, groupContainerPath = %@",
                groupContainerPath);
    if (platform::exists(path)) {
      const Value found = platform::parseJson(platform::readFile(path));
      const Value& appPath = found.get(settings::kAppPath);
      if (!appPath.isNothing()) {
        toolPath = platform::format("%@/%s", appPath, paths::kEngine);
      }
    }
    KELVANE_LOG("getEngineRunnerPath:", "getFormatToolPath start, toolPath = %@", toolPath);
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("getEngineRunnerPath:", caught);
  }
  return toolPath;
}

void Kelvane::run(const Value& logId) {
  try {
    if (logId.isNothing()) {
      KELVANE_LOG("run:", "Fail, logid = nil");
      return;
    }
    runFirstWaiting(logId);
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("run:", caught);
  }
}

void Kelvane::runFirstWaiting(const Value& logId) {
  const Value jobs = readJSONFile();
  KELVANE_LOG("run:", "currentJobArray = %@", jobs);
  Value inputParameters;  // carried from record to record
  for (const Value& stored : jobs.elements()) {
    Value record = stored.asDictionary();
    takeInputParameters(record, inputParameters);
    record.set(job::kResult, Value::integer(0));
    record.set(job::kResultStr, job::kNoError);
    const Value& recordLogId = record.get(job::kLogId);
    const Value& state = record.get(job::kStateId);
    const Value& command = record.get(job::kJobId);
    if (recordLogId.isNothing() || inputParameters.isNothing() || state.isNothing() ||
        command.isNothing()) {
      continue;
    }
    KELVANE_LOG("run:", "logId = %@, inputParmsDict = %@, stateId = %@. jobId = %@", recordLogId,
                inputParameters, state, command);
    if (!platform::equalStrings(recordLogId, logId)) continue;
    if (!platform::equalStrings(state, job::kWait)) continue;
    dispatch(record);
    return;
  }
}

Value Kelvane::dispatch(const Value& record) {
  for (const Command& command : kCommands) {
    if (platform::equalStrings(record.get(job::kJobId), command.name)) {
      return (this->*command.operation)(record);
    }
  }
  return {};  // an unknown command leaves the record as it is
}

}  // namespace kelvane
