// What goes wrong with an update service, as its "service.json" says.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Value.h"

namespace kelvane::simulator {

struct Crash {
  unsigned percent = 0;  // of the whole run
  bool byAbort = false;  // otherwise by SIGKILL
};

struct ServiceFaults {
  enum class Catalogue { whole, none, cut, garbage };
  enum class Output { text, none, notUtf8 };

  Catalogue catalogue = Catalogue::whole;
  std::uint64_t catalogueBytes = 0;  // what is left of one that is cut
  std::vector<std::string> missingProducts;
  std::vector<std::string> missingFiles;
  std::map<std::string, std::uint64_t> sparsePackages;  // sizes by file name
  unsigned seconds = 0;                                 // how long the run takes in all
  Output output = Output::text;
  std::uint64_t chatterLines = 0;
  bool endlessChatter = false;
  std::optional<Crash> crash;
  bool detached = false;  // all is done by a child, after the engine has ended
};

// Raises, with the key, where the object holds anything else than faults. `where` is how complaints
// call the object, empty for a file's top level.
ServiceFaults parseFaults(const platform::Value& object, const std::string& where = "");

// The faults of the service in the folder; none where it has no such file. Raises, with the path
// and the key, where the file cannot be read or holds anything else than faults.
ServiceFaults readFaults(const std::string& service);

}  // namespace kelvane::simulator
