// An open file's number, closed with its owner.
#pragma once

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace kelvane::platform {

// Owns the number; a negative one stands for no file.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      close();
      number_ = other.release();
    }
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }

  bool isOpen() const { return number_ >= 0; }
  int number() const { return number_; }
  // The number, which the caller closes from now on.
  int release() { return std::exchange(number_, -1); }
  // Whether the file was closed without an error. An interruption is none: the number is free.
  bool close() {
    if (number_ < 0) return true;
    return ::close(release()) == 0 || errno == EINTR;
  }

 private:
  int number_;
};

}  // namespace kelvane::platform
