// The findings' codes, which scripts and support people go by: a code stays what it is.
#pragma once

#include <cstddef>

// Name, code, what it stands for; docs/findings.md is held against it.
#define KELVANE_FINDINGS(FINDING)                                                                  \
  FINDING(sharedFolderMissing, "shared-folder-missing", "the shared folder is not there")          \
  FINDING(sharedFolderNoFolder, "shared-folder-no-folder",                                         \
          "something else than a folder stands in the shared folder's place")                      \
  FINDING(sharedFolderClosed, "shared-folder-closed", "the shared folder may not be entered")      \
  FINDING(jobFileLinkNowhere, "job-file-link-nowhere",                                             \
          "the job file is a link that leads nowhere")                                             \
  FINDING(jobFileFolderMissing, "job-file-folder-missing", "the job file's folder is not there")   \
  FINDING(jobFileLost, "job-file-lost", "the job file is not there, though the log shows jobs")    \
  FINDING(jobFileDamaged, "job-file-damaged", "the job file is no JSON, or cannot be read")        \
  FINDING(jobFileNoList, "job-file-no-list", "the job file is JSON, but no list of records")       \
  FINDING(jobFileReadOnly, "job-file-read-only", "the job file may not be written")                \
  FINDING(jobFileLink, "job-file-link", "the job file is a link")                                  \
  FINDING(jobFileFolderFixed, "job-file-folder-fixed",                                             \
          "nothing can be replaced in the job file's folder")                                      \
  FINDING(jobFileLeftover, "job-file-leftover", "a version of the job file was not put in place")  \
  FINDING(jobFileLarge, "job-file-large", "the job file has 10 MB or more")                        \
  FINDING(recordNoObject, "record-no-object", "an element of the job file is no object")           \
  FINDING(recordNoLogId, "record-no-log-id", "a record has no `log_id`")                           \
  FINDING(recordLogIdNoString, "record-log-id-no-string", "a record's `log_id` is no string")      \
  FINDING(logIdTwice, "log-id-twice", "several records have one `log_id`")                         \
  FINDING(jobFaulty, "job-faulty",                                                                 \
          "the record of a job that is not finished cannot be carried out as it is")               \
  FINDING(jobUnwritten, "job-unwritten",                                                           \
          "a job is in state `WAIT`, and the log tells that a worker took it")                     \
  FINDING(jobNoWorker, "job-no-worker", "a job is in state `RUN`, and no worker for it is seen")   \
  FINDING(jobNoResult, "job-no-result",                                                            \
          "a finished job has no `result`, or one that is no number")                              \
  FINDING(jobNoOutput, "job-no-output", "a finished firmware job has no `output`")                 \
  FINDING(jobNotWhole, "job-not-whole", "the record of a finished job lacks a key")                \
  FINDING(imageUnusable, "image-unusable",                                                         \
          "the image of a job that is not finished is not there or cannot be read")                \
  FINDING(packageUnusable, "package-unusable",                                                     \
          "the package of an installation that is not finished is not there or no application")    \
  FINDING(engineFolderInUse, "engine-folder-in-use",                                               \
          "the update engine's folder of a job that is not finished holds other files")            \
  FINDING(twoWorkers, "two-workers", "two workers run on the shared folder")                       \
  FINDING(logMissing, "log-missing", "the log is not there")                                       \
  FINDING(logNoFile, "log-no-file", "something else than a file stands in the log's place")        \
  FINDING(logReadOnly, "log-read-only", "the log may not be written")                              \
  FINDING(logLarge, "log-large", "the log has 100 MiB or more")                                    \
  FINDING(logPathLong, "log-path-long", "the log's path is too long for the worker")               \
  FINDING(settingsUnreadable, "settings-unreadable",                                               \
          "a settings file is not there, or cannot be read")                                       \
  FINDING(settingMissing, "setting-missing", "a key of the product's settings is missing")         \
  FINDING(settingNoString, "setting-no-string", "a setting is no string")                          \
  FINDING(engineMissing, "engine-missing", "the update engine is not found, or is no program")     \
  FINDING(engineNotExecutable, "engine-not-executable", "the update engine may not be executed")   \
  FINDING(applicationMissing, "application-missing",                                               \
          "no application stands where the product's settings say")                                \
  FINDING(applicationFolderFixed, "application-folder-fixed",                                      \
          "the application's folder may not be changed")                                           \
  FINDING(applicationFixed, "application-fixed", "the application can be removed in part only")    \
  FINDING(downloadAreaFixed, "download-area-fixed", "the download area may not be changed")        \
  FINDING(downloadLeftover, "download-leftover",                                                   \
          "a copy in the download area was left by a killed worker")                               \
  FINDING(othersMayWrite, "others-may-write", "others may decide which program the worker starts") \
  FINDING(engineWithoutWorker, "engine-without-worker",                                            \
          "an update engine runs without its worker")                                              \
  FINDING(toolWithoutWorker, "tool-without-worker", "`rm` or `cp` runs without its worker")        \
  FINDING(catalogueNoFile, "catalogue-no-file", "the update catalogue is no regular file")         \
  FINDING(bundleMissing, "bundle-missing", "the bundle is not there, or no folder")                \
  FINDING(bundleDepth, "bundle-depth", "the bundle does not stand two levels below the root")      \
  FINDING(workerElsewhere, "worker-elsewhere",                                                     \
          "the worker in the bundle is a link to another place")                                   \
  FINDING(workerMissing, "worker-missing", "the worker is not in the bundle")                      \
  FINDING(workerNotExecutable, "worker-not-executable", "the worker may not be executed")          \
  FINDING(workerNoProgram, "worker-no-program", "the worker is no program of this system")         \
  FINDING(libraryDamaged, "library-damaged", "a library in the bundle is none")                    \
  FINDING(frameworkMissing, "framework-missing", "the framework is not in the bundle")             \
  FINDING(frameworkNoFile, "framework-no-file",                                                    \
          "something else than a file stands in the framework's place")                            \
  FINDING(frameworkNotLoadable, "framework-not-loadable", "the framework cannot be loaded")        \
  FINDING(frameworkIncomplete, "framework-incomplete", "the framework lacks functions")

namespace kelvane::console {

enum class Code {
#define KELVANE_FINDING_NAME(name, code, meaning) name,
  KELVANE_FINDINGS(KELVANE_FINDING_NAME)
#undef KELVANE_FINDING_NAME
};

struct CodeText {
  const char* code;
  const char* meaning;
};

// In the order of their enumerators.
inline constexpr CodeText kCodeTexts[] = {
#define KELVANE_FINDING_TEXT(name, code, meaning) {code, meaning},
    KELVANE_FINDINGS(KELVANE_FINDING_TEXT)
#undef KELVANE_FINDING_TEXT
};

inline const char* nameOf(Code code) { return kCodeTexts[static_cast<std::size_t>(code)].code; }

}  // namespace kelvane::console
