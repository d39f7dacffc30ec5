// Calls of the system that a test has refused: the linker leads the functions named in
// CMakeLists.txt through here.
#pragma once

#include <string>

namespace kelvane::test {

// While it lives, the n-th call of the function from now on fails with this cause (errno), and has
// no effect; a closing has it. With the cause 0 the call returns `result` instead.
class RefusedCall {
 public:
  RefusedCall(std::string function, int n, int cause, long result = 0);
  RefusedCall(const RefusedCall&) = delete;
  RefusedCall& operator=(const RefusedCall&) = delete;
  ~RefusedCall();

  // Whether it came to that call.
  bool wasMade() const { return n_ <= 0; }

  // For the functions: whether this call is refused, and then what it returns.
  static bool refuses(const char* function, long& result);

 private:
  std::string function_;
  int n_;
  int cause_;
  long result_;
};

// While it lives, every folder tells this kind (DT_DIR or the like) of each of its entries, as if
// another had taken the entry's place since. DT_UNKNOWN: no folder tells what its entries are.
class ToldKinds {
 public:
  explicit ToldKinds(unsigned char kind);
  ToldKinds(const ToldKinds&) = delete;
  ToldKinds& operator=(const ToldKinds&) = delete;
  ~ToldKinds();
};

}  // namespace kelvane::test
