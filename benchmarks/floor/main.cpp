// floor SCRIPT: the input and output of a piece of the worker's work, without the work. What it
// costs is what no worker can do without.

#include <cstdio>

#include "benchmarks/floor/Script.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: floor SCRIPT\n", stderr);
    return 2;
  }
  kelvane::floor::Script(argv[1]).run();
  return 0;
}
