// log_lines FILE COUNT: so many lines into the log by the worker's own function.

#include <cstdlib>

#include "log/iLog.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  static kelvane::platform::SystemHost host;
  kelvane::iLog_host = &host;
  kelvane::setLogPath(argv[1]);
  const long count = std::strtol(argv[2], nullptr, 10);
  for (long i = 0; i < count; ++i) {
    KELVANE_LOG("updateFW:", "fshProg.fp_u8Status = %d, fshProg.fp_u8Stage = %d", 0, 3);
  }
  return 0;
}
