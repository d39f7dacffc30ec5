// The job file: what application, worker and console write into its records.
#pragma once

namespace kelvane::job {

// Of every record.
inline constexpr char kLogId[] = "log_id";
inline constexpr char kJobId[] = "job_id";
inline constexpr char kStateId[] = "state_id";
inline constexpr char kInputParameters[] = "input_parameters";
inline constexpr char kOutput[] = "output";
inline constexpr char kResult[] = "result";
inline constexpr char kResultStr[] = "resultStr";

// Of a query's and a download's product parameters and of a download's descriptions.
inline constexpr char kProductId[] = "productid";
inline constexpr char kVersion[] = "version";
inline constexpr char kUrl[] = "url";
inline constexpr char kFolder[] = "folder";
inline constexpr char kSize[] = "size";
inline constexpr char kHash[] = "Hash256";

// Of a firmware job's input entries and of its progress entries; "file_path" also of a download's
// descriptions and of an installation's parameters.
inline constexpr char kWwn[] = "wwn";
inline constexpr char kFilePath[] = "file_path";
inline constexpr char kFwPercentage[] = "fw_percentage";
inline constexpr char kCpldPercentage[] = "cpld_percentage";
inline constexpr char kTotalPercentage[] = "total_percentage";

// All of them.
inline constexpr const char* kKeys[] = {kLogId,          kJobId,
                                        kStateId,        kInputParameters,
                                        kOutput,         kResult,
                                        kResultStr,      kProductId,
                                        kVersion,        kUrl,
                                        kFolder,         kSize,
                                        kHash,           kWwn,
                                        kFilePath,       kFwPercentage,
                                        kCpldPercentage, kTotalPercentage};

// "state_id".
inline constexpr char kWait[] = "WAIT";
inline constexpr char kRun[] = "RUN";
inline constexpr char kFree[] = "FREE";
inline constexpr const char* kStates[] = {kWait, kRun, kFree};

// "job_id": the commands.
inline constexpr char kGetOnlineUpdateData[] = "getOnlineUpdateData";
inline constexpr char kDownloadOnlineUpdateFile[] = "downloadOnlineUpdateFile";
inline constexpr char kUpdateSW[] = "updateSW";
inline constexpr char kUpdateFW[] = "updateFW";
inline constexpr const char* kCommands[] = {kGetOnlineUpdateData, kDownloadOnlineUpdateFile,
                                            kUpdateSW, kUpdateFW};

// What the worker itself says in "result" and "resultStr"; a firmware job ends with a status of
// the framework's and its text.
inline constexpr char kNoError[] = "no error";
inline constexpr int kFileNotFound = 259;
inline constexpr char kFileNotFoundText[] = "file is not found";

}  // namespace kelvane::job
