// Loaded before the worker's libraries: memory that the worker asks for, not its children, cannot
// be had.
//   KELVANE_FAULT_MEMORY       the number, from 1, of the request that fails
//   KELVANE_FAULT_MEMORY_FROM  the number of the first request that fails, like all after it
//   KELVANE_FAULT_DONE         file that is there once one has failed
//   KELVANE_LIVE_MEMORY        file that tells, as a number of 64 bits, how many pieces of memory
//   the
//                              worker has not given back
// Asks for no memory itself.

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
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

bool isMeant() {
  static const bool is = isInTheWorker();
  return is;
}

using Count = std::atomic<std::int64_t>;
static_assert(Count::is_always_lock_free);

// In the file, so that it is told when the process is no more; null where nobody asks.
Count* mappedCount() {
  const char* path = isMeant() ? ::getenv("KELVANE_LIVE_MEMORY") : nullptr;
  if (path == nullptr) return nullptr;
  const int file = ::open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (::ftruncate(file, sizeof(Count)) != 0) return nullptr;
  void* mapped = ::mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  ::close(file);
  return mapped == MAP_FAILED ? nullptr : static_cast<Count*>(mapped);
}

void addLive(int pieces) {
  static Count* const count = mappedCount();
  if (count != nullptr) *count += pieces;
}

void* counted(void* memory) {
  if (memory != nullptr) addLive(1);
  return memory;
}

bool isRefused() {
  if (!isMeant()) return false;
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

extern "C" {

void* malloc(std::size_t size) { return isRefused() ? nullptr : counted(__libc_malloc(size)); }

void* calloc(std::size_t count, std::size_t size) {
  return isRefused() ? nullptr : counted(__libc_calloc(count, size));
}

void* realloc(void* memory, std::size_t size) {
  if (memory == nullptr) return malloc(size);
  if (isRefused()) return nullptr;
  void* moved = __libc_realloc(memory, size);
  if (moved == nullptr && size == 0) addLive(-1);
  return moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
  return isRefused() ? nullptr : counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  *memory = memalign(alignment, size);
  return *memory == nullptr ? ENOMEM : 0;
}

void free(void* memory) {
  if (memory == nullptr) return;
  addLive(-1);
  __libc_free(memory);
}

}  // extern "C"
