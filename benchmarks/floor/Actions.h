// What a floor program's steps do: the system calls that the work cannot do without, and nothing
// beside them. A call that fails ends the program with its reason.
#pragma once

#include <string>
#include <string_view>

namespace kelvane::floor {

// The whole file, into memory that the next reading uses again.
void readWhole(const std::string& path);
// A temporary file beside it, synchronised, and renamed over it.
void replaceFile(const std::string& path, std::string_view bytes);
// One line more in a log that nobody keeps open.
void appendLine(const std::string& path, std::string_view bytes);

// A folder with all below it, or a file. The copy must not be there yet.
void copyTree(const std::string& from, const std::string& to);
void removeTree(const std::string& path);
void renamePath(const std::string& from, const std::string& to);
void makeFolder(const std::string& path);
// All that waits to be written to the path's disk.
void synchroniseDisk(const std::string& path);
void synchroniseFolder(const std::string& path);

// A program without arguments, run to its end.
void runProgram(const std::string& path);

// The file's bytes, which stay mapped.
std::string_view mappedFile(const std::string& path);

}  // namespace kelvane::floor
