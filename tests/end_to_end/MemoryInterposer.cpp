// Loaded before the worker's libraries: memory that the worker asks for, not its children, cannot
// be had.
//   KELVANE_FAULT_MEMORY       the number, from 1, of the request that fails
//   KELVANE_FAULT_MEMORY_FROM  the number of the first request that fails, like all after it
//   KELVANE_FAULT_DONE         file that is there once one has failed
// Asks for no memory itself.

#include <array>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}

namespace {

bool isInTheWorker() {
  std::array<char, 512> path = {};
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  return length > 0 &&
         std::string_view(path.data(), static_cast<std::size_t>(length)).ends_with("/Kelvane");
}

int numberIn(const char* variable) {
  const char* text = ::getenv(variable);
  return text == nullptr ? 0 : std::atoi(text);
}

bool isRefused() {
  static const bool isMeant = isInTheWorker();
  if (!isMeant) return false;
  static const int one = numberIn("KELVANE_FAULT_MEMORY");
  static const int from = numberIn("KELVANE_FAULT_MEMORY_FROM");
  static int requests = 0;
  ++requests;
  if (requests != one && (from == 0 || requests < from)) return false;
  static bool isNoted = false;
  if (!isNoted) ::close(::open(::getenv("KELVANE_FAULT_DONE"), O_WRONLY | O_CREAT, 0600));
  isNoted = true;
  return true;
}

}  // namespace

extern "C" void* malloc(std::size_t size) { return isRefused() ? nullptr : __libc_malloc(size); }
extern "C" void* calloc(std::size_t count, std::size_t size) {
  return isRefused() ? nullptr : __libc_calloc(count, size);
}
extern "C" void* realloc(void* memory, std::size_t size) {
  return isRefused() ? nullptr : __libc_realloc(memory, size);
}
