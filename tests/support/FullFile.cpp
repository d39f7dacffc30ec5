#include "tests/support/FullFile.h"

#include <csignal>
#include <filesystem>

namespace kelvane::test {
namespace {

constexpr rlim_t kSize = 1 << 20;

}  // namespace

FullFile::FullFile()
    : path_(folder_.write("full", "")), signalBefore_(std::signal(SIGXFSZ, SIG_IGN)) {
  std::filesystem::resize_file(path_, kSize);
  ::getrlimit(RLIMIT_FSIZE, &before_);
  const rlimit limit = {kSize, before_.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &limit);
}

FullFile::~FullFile() {
  ::setrlimit(RLIMIT_FSIZE, &before_);
  std::signal(SIGXFSZ, signalBefore_);
}

}  // namespace kelvane::test
