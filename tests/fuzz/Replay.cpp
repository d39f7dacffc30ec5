// The program of a target where there is no fuzzer: every file of the given folders is put in once.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/fuzz/Bytes.h"

namespace {

// In the order of their names.
std::vector<std::filesystem::path> filesIn(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void putIn(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file),
                                std::istreambuf_iterator<char>()};
  std::fprintf(stderr, "%s\n", path.c_str());  // of a program that aborts the last one
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

int replay(const std::vector<std::string>& folders) {
  std::size_t count = 0;
  for (const std::string& folder : folders) {
    for (const auto& path : filesIn(folder)) {
      putIn(path);
      ++count;
    }
  }
  std::printf("%zu seeds\n", count);
  return count == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** values) {
  try {
    return replay({values + 1, values + count});
  } catch (const std::exception& caught) {
    std::fprintf(stderr, "%s\n", caught.what());
    return EXIT_FAILURE;
  }
}
