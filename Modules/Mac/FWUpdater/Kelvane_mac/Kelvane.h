// Kelvane: the worker. One object per process, used for one job. Its methods are the operations,
// declared here in groups and defined room by room: jobs/, online_update/, firmware/.
//
// Methods take and give Values; a parameter may be nothing. Unless its declaration says otherwise,
// no method lets an exception out: it logs the reason once, at error level, and returns with what
// it has.
#pragma once

#include <cstdint>

#include "platform/Host.h"
#include "platform/Json.h"
#include "platform/ParsedBytes.h"
#include "platform/PropertyList.h"
#include "platform/Value.h"

// Records of the framework, which zorapi.h lays down.
struct FlashParm;
struct UsbParm;
struct CpldParm;
struct FwImgInfo;

namespace kelvane {

class Kelvane {
 public:
  // The host is not owned and must outlive the worker and the last log line.
  explicit Kelvane(platform::Host& host);

  // --- jobs: start and job runner

  // Fixes every path for the life of the process, sets the log up and reads the product settings.
  // The shared folder is a plain prefix, with its own trailing "/"; nothing counts as empty.
  // Returns this worker, as far as it could be set up.
  Kelvane& init(const platform::Value& groupContainerPath);
  // The update engine's path from the shared folder's settings, or nothing.
  platform::Value getEngineRunnerPath(const platform::Value& groupContainerPath);
  // Runs the first waiting job with this log id, if its command is known.
  void run(const platform::Value& logId);

  // --- jobs: job file store

  // The job file's top level; nothing where it is not JSON. Raises where it cannot be read.
  platform::Value readJSONFile();
  // The record with the query's "log_id"; where none has it, the last record of the file (meant
  // so); an empty dictionary where the query has no "log_id" or the file no records.
  platform::Value readJSONFileDict(const platform::Value& query);
  // Replaces the whole file by these records, atomically; a failure to write is silent. Raises
  // where the log does.
  void writeJSONFile(const platform::Value& records);
  // Sets every key of `changes` in each record with the same "log_id" and rewrites the file.
  // Without a "log_id" the file is left alone. Raises what reading the file raises.
  void updateJSONFile(const platform::Value& changes);
  // Marks the record "RUN", sets the changes in it, and writes it back. Raises as
  // updateJSONFile().
  void startJob(platform::Value& record, const platform::Value& changes);
  // The same with "FREE", for the record as it was read last.
  void finishJob(platform::Value& stored, const platform::Value& changes);

  // --- online update: update engine and download

  // The command "getOnlineUpdateData": the catalogue's rules become the job's output. Returns the
  // record as it was marked "RUN", with the output.
  platform::Value getOnlineUpdateData(const platform::Value& record);
  // The command "downloadOnlineUpdateFile": fetches the packages of a list of product parameters.
  // Returns the record as it was marked "RUN", with the descriptions.
  platform::Value downloadOnlineUpdateFile(const platform::Value& record);
  // An empty dictionary where something exists at every description's "file_path"; else "result"
  // 259 and its "resultStr".
  platform::Value checkDownloadFilePath(const platform::Value& descriptions);

  // --- online update: catalogue

  // The catalogue's path in a folder. Shared with the application's code, unused here.
  platform::Value getPlistPath(const platform::Value& folder);
  // The catalogue's rules in the folder of a job's parameters, unfiltered; nothing without one.
  platform::Value getUpdateEngineData(const platform::Value& record);
  // The one rule that applies to the product; an empty dictionary where none does.
  platform::Value getUpdateEngineDataInDownloadFolder(const platform::Value& parameters);
  // A download description for each of the product parameters, all in the download folder where
  // one is given.
  platform::Value getDownloadFileData(const platform::Value& parameterList,
                                      const platform::Value& downloadFolder);

  // --- online update: download area, software installation

  // Makes every level of the path a folder, from the root on, where nothing is there.
  void createTmpFolder(const platform::Value& path);
  // Replaces the target's entries by the source's of the same name, hidden ones aside; the
  // target's other entries stay.
  void syncFiles(const platform::Value& source, const platform::Value& target);
  // Moves what the update engine left in a job's "folder" into the download area. Returns the
  // area's folder for the product; nothing where there was no catalogue to go by.
  platform::Value syncDownloadFiles(const platform::Value& record);
  // The command "updateSW": replaces the installed application by the bundle at "file_path".
  // Returns the record as it was marked "RUN", or as it was given where it lacks its parameters.
  platform::Value updateSW(const platform::Value& record);

  // --- firmware: status reporting

  // Gives a firmware job its progress entries ("output") and marks it "RUN".
  void initUpgradeFWStatus(const platform::Value& record);
  // Sets every key of the status update in the progress entries with its "wwn".
  void updateFWUpdateStatus(const platform::Value& update, const platform::Value& logId);

  // --- firmware: update

  // The command "updateFW": updates every controller of the record's input parameters, one after
  // the other, and marks the job "FREE" with its result. Returns the finished record, or nothing
  // where an exception ended the job.
  platform::Value updateFW(const platform::Value& record);
  // The "device_id" of the first device of the list with this WWN; -1 where none has it.
  std::int64_t getDevIdByWWN(const platform::Value& devices, const platform::Value& wwn);
  // One CPLD flash process on the controller `devId`, from opening to closing. The records are
  // handed through to the framework. Returns the status of the closing call, whatever became of
  // the flash (meant so).
  std::uint32_t flashCPLD(const platform::Value& deviceEntry, FlashParm* parmFlash,
                          UsbParm* parmUSB, CpldParm* parmCPLD, FwImgInfo* parmFWImg,
                          std::int64_t devId, const platform::Value& logId);

  // --- properties

  const platform::Value& GroupContainerPath() const { return _GroupContainerPath; }
  void setGroupContainerPath(const platform::Value& path) { _GroupContainerPath = path; }
  const platform::Value& BGPPath() const { return _BGPPath; }
  void setBGPPath(const platform::Value& path) { _BGPPath = path; }
  const platform::Value& EngineRunnerPath() const { return _EngineRunnerPath; }
  void setEngineRunnerPath(const platform::Value& path) { _EngineRunnerPath = path; }
  const platform::Value& onlineUpdateDict() const { return _onlineUpdateDict; }
  void setOnlineUpdateDict(const platform::Value& dictionary) { _onlineUpdateDict = dictionary; }
  const platform::Value& settingDict() const { return _settingDict; }
  void setSettingDict(const platform::Value& settings) { _settingDict = settings; }

  // What the operations sleep by.
  platform::Host& host() const { return _host; }

 private:
  void setUp(const platform::Value& groupContainerPath);
  void runFirstWaiting(const platform::Value& logId);
  platform::Value dispatch(const platform::Value& record);
  void query(const platform::Value& record, const platform::Value& parameters,
             platform::Value& result);
  void download(const platform::Value& record, const platform::Value& primary,
                platform::Value& result);
  platform::Value rulesIn(const std::string& catalogue);
  platform::Value selectRule(const platform::Value& rules, const platform::Value& productId) const;
  platform::Value expectedPackagePath(const platform::Value& parameters) const;

  platform::Host& _host;
  // The first three are shared with the application's code; no operation reads or writes them.
  [[maybe_unused]] std::int64_t _currentIndex = 0;
  [[maybe_unused]] bool _ExitFlag = false;
  [[maybe_unused]] bool _pkgUpdateFlag = false;
  platform::Value _GroupContainerPath;  // string: the shared folder, or empty
  platform::Value _BGPPath;             // string: the job file
  platform::Value _EngineRunnerPath;    // string: the update engine, or nothing
  platform::Value _onlineUpdateDict;    // dictionary; shared with the application's code, unused
  platform::Value _settingDict;         // dictionary: the product settings, or nothing
  platform::ParsedBytes _jobFile{platform::parseJson};
  platform::ParsedBytes _catalogue{platform::parsePropertyList};
};

}  // namespace kelvane
