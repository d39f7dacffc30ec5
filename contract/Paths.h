// Where things stand below the two folders that application and worker share.
#pragma once

namespace kelvane::paths {

// Below the shared folder, whose name ends with its own "/".
inline constexpr char kJobFile[] = "utility/command/BGPLog.json";
inline constexpr char kLogFolder[] = "utility/logs/";
inline constexpr char kLog[] = "utility/logs/TarselVistrelUtility.txt";
inline constexpr char kSharedSettings[] = "utility/config/setting.json";
inline constexpr char kDownloadArea[] = "tmp/OnlineUpdate";
inline constexpr const char* kBelowSharedFolder[] = {kJobFile, kLog, kSharedSettings,
                                                     kDownloadArea};

// Below the download area, one for each kind of product.
inline constexpr char kSoftware[] = "SW";
inline constexpr char kKorFirmware[] = "KORFW";
inline constexpr char kZentanFirmware[] = "ZENTANAS";
inline constexpr char kOtherFirmware[] = "FW";
inline constexpr const char* kProductFolders[] = {kOtherFirmware, kKorFirmware, kSoftware,
                                                  kZentanFirmware};

// Below the application's bundle.
inline constexpr char kWorker[] = "Contents/Resources/Kelvane";
inline constexpr char kEngine[] = "Contents/Resources/EngineRunner";
inline constexpr char kProductSettings[] = "Contents/Resources/Config/setting.json";
inline constexpr char kFrameworks[] = "Contents/Frameworks";
inline constexpr const char* kBelowBundle[] = {kWorker, kEngine, kProductSettings, kFrameworks};

}  // namespace kelvane::paths
