// The job record: the keys and values of the job file that the console writes and reads.
#pragma once

namespace kelvane::console::job {

// Below the shared folder, which ends with "/".
inline constexpr char kFileName[] = "utility/command/BGPLog.json";

inline constexpr char kLogId[] = "log_id";
inline constexpr char kJobId[] = "job_id";
inline constexpr char kStateId[] = "state_id";
inline constexpr char kInputParameters[] = "input_parameters";
inline constexpr char kOutput[] = "output";
inline constexpr char kResult[] = "result";
inline constexpr char kResultStr[] = "resultStr";

// The commands.
inline constexpr char kGetOnlineUpdateData[] = "getOnlineUpdateData";
inline constexpr char kDownloadOnlineUpdateFile[] = "downloadOnlineUpdateFile";
inline constexpr char kUpdateSW[] = "updateSW";
inline constexpr char kUpdateFW[] = "updateFW";

inline constexpr char kWait[] = "WAIT";
inline constexpr char kRun[] = "RUN";
inline constexpr char kFree[] = "FREE";

// Keys of a query's and a download's product parameters and of a download's descriptions.
inline constexpr char kProductId[] = "productid";
inline constexpr char kVersion[] = "version";
inline constexpr char kUrl[] = "url";
inline constexpr char kFolder[] = "folder";
inline constexpr char kSize[] = "size";

// Keys of the packages that a query finds.
inline constexpr char kRuleProductId[] = "ProductID";
inline constexpr char kRuleVersion[] = "Version";
inline constexpr char kRuleSize[] = "Size";
inline constexpr char kRuleMinimumOs[] = "MinimumOSVersion";
inline constexpr char kRuleCodebase[] = "Codebase";

// Keys of a firmware job's input entries and of its progress entries; "file_path" also stands in a
// download's descriptions and in the parameters of an installation.
inline constexpr char kWwn[] = "wwn";
inline constexpr char kFilePath[] = "file_path";
inline constexpr char kFwPercentage[] = "fw_percentage";
inline constexpr char kCpldPercentage[] = "cpld_percentage";
inline constexpr char kTotalPercentage[] = "total_percentage";

}  // namespace kelvane::console::job
