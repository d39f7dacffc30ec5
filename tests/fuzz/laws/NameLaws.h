// Names in the log: the function that is cut out of a method's, the file without its folders, and
// the generations of a log that is rotated.
#pragma once

#include <optional>
#include <string>

namespace kelvane::fuzz {

// All from the first blank on, up to the first "(" or ":", without blanks.
std::string plainFunction(const std::string& name);
// What stands behind the last "/".
std::string plainFile(const std::string& path);
// With its number in front of the ending; without the path's first part, which is empty.
std::string plainGeneration(const std::string& path, unsigned long n);

void requireFunction(const std::string& name, const std::string& cut);
void requireFile(const std::string& path, const std::string& name);
void requireGeneration(const std::string& path, unsigned long n, const std::string& made);

// What a log was, what it is after a rotation, and what its next generation is then.
struct Rotation {
  std::string before;
  std::optional<std::string> after;
  std::optional<std::string> moved;
};
void requireRotated(const Rotation& rotation, bool isFull);

}  // namespace kelvane::fuzz
