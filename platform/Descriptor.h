// An open file's number, closed with its owner.
#pragma once

#include <unistd.h>

namespace kelvane::platform {

// Owns the number; a negative one stands for no file.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }

  bool isOpen() const { return number_ >= 0; }
  int number() const { return number_; }
  // Whether the file was closed without an error.
  bool close() {
    if (number_ < 0) return true;
    const int result = ::close(number_);
    number_ = -1;
    return result == 0;
  }

 private:
  int number_;
};

}  // namespace kelvane::platform
