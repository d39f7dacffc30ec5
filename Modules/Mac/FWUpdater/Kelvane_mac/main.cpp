// The entry point: Kelvane LOG_ID [SHARED_FOLDER]. The exit status is always 0; the outcome of the
// job stands in the job file.

#include <cstdio>

#include "Kelvane.h"
#include "platform/Host.h"
#include "platform/Utf8.h"

namespace {

// The shared folder is null where none is given.
void runJob(const char* logId, const char* sharedFolder) {
  using kelvane::platform::decodedUtf8;
  kelvane::platform::SystemHost host;
  kelvane::Kelvane worker(host);
  worker.init(decodedUtf8(sharedFolder));
  worker.run(decodedUtf8(logId));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc <= 1) {
    std::fputs("Fail: Kelvane params <= 1\n", stderr);
    return 0;
  }
  kelvane::platform::ignoreWriteSignals();
  try {
    runJob(argv[1], argc == 2 ? nullptr : argv[2]);
  } catch (...) {  // no memory, not even for the log line that would tell it
    return 0;
  }
  return 0;
}
