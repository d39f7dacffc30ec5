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

inline constexpr char kUpdateFW[] = "updateFW";

inline constexpr char kWait[] = "WAIT";
inline constexpr char kRun[] = "RUN";
inline constexpr char kFree[] = "FREE";

// Keys of a firmware job's input entries and of its progress entries.
inline constexpr char kWwn[] = "wwn";
inline constexpr char kFilePath[] = "file_path";
inline constexpr char kFwPercentage[] = "fw_percentage";
inline constexpr char kCpldPercentage[] = "cpld_percentage";
inline constexpr char kTotalPercentage[] = "total_percentage";

}  // namespace kelvane::console::job
