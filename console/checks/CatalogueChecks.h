// The update engine's folder, and the catalogue that an engine has left there, of jobs that are not
// finished.
#pragma once

#include <string>

#include "console/checks/Finding.h"
#include "platform/Value.h"

namespace kelvane::console {

// Of the catalogues in the folders that the records name. `name` is the catalogue's in the
// product's settings, without ".plist".
Findings catalogueFindings(const platform::Value& records, const std::string& name);

// The folder that the console itself gives the update engine, below the shared folder. What stands
// in it a killed engine has left.
inline constexpr char kConsolesEngineFolder[] = "tmp/EngineRunner";
bool isConsolesEngineFolder(const std::string& folder, const std::string& sharedFolder);

// What becomes of a folder that the update engine gets.
inline constexpr char kEngineFolderMeaning[] =
    "When the job is done, the worker takes what is in it for the engine's, copies it to the "
    "download area and removes the folder with everything in it.";

// Why the update engine should not get the folder that this waiting job names for it: "the update
// engine's folder /a is not empty: it holds b". Empty of any other record, and where nothing speaks
// against it. The shared folder ends with "/", or is empty where it is not at hand.
std::string engineFolderFault(const platform::Value& record, const std::string& sharedFolder);

// The same of each record.
Findings engineFolderFindings(const platform::Value& records, const std::string& sharedFolder);

}  // namespace kelvane::console
