// A job file through a whole run of the worker, before a framework and an engine that do as they
// are told.

#include "contract/JobFile.h"

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/WorkerInMemory.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::WorkerInMemory world;
  world.engine = [&world](const std::string& folder) {
    world.disk.put(folder + "/catalogue.plist",
                   "<plist><dict><key>Rules</key><array/></dict></plist>");
    world.disk.put(folder + "/FW_T3.img", "image");
    return std::string("done\n");
  };
  const std::string text = fuzz::Bytes(data, size).rest();
  world.disk.put(fuzz::kJobFilePath, text);
  world.run();
  const auto after = world.disk.bytesOf(fuzz::kJobFilePath);
  // An engine's folder may be the one that the job file is in.
  if (world.jobFile.versions() == 0 && after) {
    fuzz::requireSame(text, *after, "who writes nothing changes nothing");
  }
  return 0;
}
