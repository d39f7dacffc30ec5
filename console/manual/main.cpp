// make-manual: writes the console's manual page to standard output.

#include <exception>
#include <iostream>

#include "console/manual/ManualPage.h"
#include "platform/Exception.h"
#include "platform/File.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make-manual HAND_WRITTEN_PAGE > PAGE\n";
    return 2;
  }
  try {
    std::cout << kelvane::console::manualPage(kelvane::platform::readFile(argv[1]));
    return std::cout.flush() ? 0 : 1;
  } catch (const std::exception& failed) {
    std::cerr << "make-manual: " << failed.what() << '\n';
    return 1;
  }
}
