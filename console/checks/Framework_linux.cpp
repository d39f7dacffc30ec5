#include "console/checks/Framework.h"

namespace kelvane::console {
namespace {

constexpr const char* kLibraries[] = {"libZORAPI.so"};

}  // namespace

std::span<const char* const> frameworkLibraries() { return kLibraries; }

}  // namespace kelvane::console
