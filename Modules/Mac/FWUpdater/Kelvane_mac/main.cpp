// The entry point: Kelvane LOG_ID [SHARED_FOLDER]. The exit status is always 0; the outcome of the
// job stands in the job file.

#include <cstdio>

#include "Kelvane.h"
#include "platform/Host.h"
#include "platform/Utf8.h"
#include "platform/Value.h"

int main(int argc, char** argv) {
  if (argc <= 1) {
    std::fputs("Fail: Kelvane params <= 1\n", stderr);
    return 0;
  }
  using kelvane::platform::decodedUtf8;
  using kelvane::platform::Value;
  kelvane::platform::ignoreWriteSignals();
  kelvane::platform::SystemHost host;
  kelvane::Kelvane worker(host);
  worker.init(argc == 2 ? Value("") : decodedUtf8(argv[2]));
  worker.run(decodedUtf8(argv[1]));
  return 0;
}
