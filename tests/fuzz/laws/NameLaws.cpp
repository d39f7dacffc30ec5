#include "tests/fuzz/laws/NameLaws.h"

#include <algorithm>
#include <cstddef>

#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {

std::string plainFunction(const std::string& name) {
  const std::string whole = name.substr(0, name.find_first_of("(:"));
  std::string function = whole.substr(std::min(whole.find(' '), whole.size()));
  std::erase(function, ' ');
  return function;
}

std::string plainFile(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string plainGeneration(const std::string& path, unsigned long n) {
  const std::size_t slash = path.find('/');
  std::string made = "/" + (slash == std::string::npos ? path : path.substr(slash + 1));
  const std::size_t start = made.rfind('/') + 1;
  const std::size_t dot = made.rfind('.');
  const bool hasEnding = dot != std::string::npos && dot > start;
  return made.insert(hasEnding ? dot : made.size(), "(" + std::to_string(n) + ")");
}

void requireFunction(const std::string& name, const std::string& cut) {
  requireSame(plainFunction(name), cut, "a function is cut out of its name");
}

void requireFile(const std::string& path, const std::string& name) {
  requireSame(plainFile(path), name, "a file's name is its path's last part");
}

void requireGeneration(const std::string& path, unsigned long n, const std::string& made) {
  requireSame(plainGeneration(path, n), made, "a generation has its number in front of its ending");
}

void requireRotated(const Rotation& rotation, bool isFull) {
  requireSame(isFull ? rotation.before : "", rotation.after.value_or("(gone)"),
              "a log that was rotated begins anew");
  require(isFull ? !rotation.moved : rotation.moved == rotation.before,
          "a log is moved to its lowest free generation", rotation.moved.value_or("(none)"));
}

}  // namespace kelvane::fuzz
