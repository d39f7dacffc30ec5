// How the update engine is called: a verb, then options with one value each.
#pragma once

namespace kelvane::engine {

inline constexpr char kQuery[] = "dryrun";  // the catalogue alone
inline constexpr char kDownload[] = "run";  // the packages, too

inline constexpr char kProductId[] = "-productid";
inline constexpr char kVersion[] = "-version";
inline constexpr char kUrl[] = "-url";
inline constexpr char kFolder[] = "-folder";
inline constexpr const char* kNeeded[] = {kProductId, kVersion, kUrl, kFolder};

inline constexpr char kLogId[] = "-logId";
inline constexpr char kLogPath[] = "-logPath";  // the job file, whatever the name says
inline constexpr char kLog[] = "-log";          // the log's folder
inline constexpr const char* kOptional[] = {kLogId, kLogPath, kLog};

}  // namespace kelvane::engine
