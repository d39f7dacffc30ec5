// Files: existence, whole-file reading, atomic replacement, appending a line, whole trees.
//
// A path that holds a NUL character exists nowhere, and whatever is to be done with it fails: the
// system would take it for the part before that. No signal makes anything fail.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Descriptor.h"

namespace kelvane::platform {

// Whether the text can be a path at all.
bool canBePath(std::string_view text);

// Whether a file system entry exists at the path; follows symbolic links, so that a dangling link
// does not exist. An empty path never exists.
bool exists(const std::string& path);

// Whether a folder is at the path; follows symbolic links.
bool isFolder(const std::string& path);

// The size in bytes of the file at the path; 0 where it cannot be told.
std::uint64_t fileSize(const std::string& path);

// Gives the entry another path on the same disk, in one step; what stands there is replaced.
// Returns whether that was done.
bool renamePath(const std::string& from, const std::string& to);

// Gives the entry another path, also on another disk. Returns whether that was done; a failure
// leaves it where it was.
bool movePath(const std::string& from, const std::string& to);

// Makes an empty file; a file that is there is emptied. Returns whether that was done.
bool createEmptyFile(const std::string& path);

// The names in a folder, hidden ones too, in the system's order; none where it cannot be listed.
std::vector<std::string> listFolder(const std::string& path);

// Makes a folder, and those above it that are missing. Returns whether it is there.
bool makeFolders(const std::string& path);

// Removes the entry with all below it; of a symbolic link the link, never what it leads to. A path
// that ends in "." or ".." names the folder itself. Returns whether nothing is there any more.
bool removeTree(const std::string& path);

// The same, but the entry has lost its name before anything below it goes, so that nobody who comes
// after a kill takes a part of it for the whole.
bool discardTree(const std::string& path);

// How the hidden names begin that a kill can leave behind: of a file's replacement, of a copy that
// was on its way, and of what was being discarded. Each stands beside the entry that it is for.
inline constexpr char kReplacementPrefix[] = ".replace-";
inline constexpr char kArrivingPrefix[] = ".incoming-";
inline constexpr char kLeavingPrefix[] = ".outgoing-";

// Copies the entry with all below it: links as links, with permission bits and modification times
// as far as the disk takes them; what is neither file, folder nor link is passed over. Appears
// whole or not at all, also where it is killed. Fails where anything is in the target's place; a
// failed copy leaves nothing.
bool copyTree(const std::string& from, const std::string& to);

// The same in two steps, so that many copies can be made to last at once before any of them is
// seen. stageCopy() makes the copy under a hidden name beside `to`, taking the place of what an
// earlier attempt left there, and returns that name's path, or nothing where it failed;
// publishCopy() gives it its own name, or removes it where that is not possible.
std::optional<std::string> stageCopy(const std::string& from, const std::string& to);
bool publishCopy(const std::string& staged, const std::string& to);

// Returns once everything at the path and below it, as it now stands, outlasts a power cut; returns
// whether the disk said so. Of the second, for a folder, only which names it holds.
bool synchroniseTree(const std::string& path);
bool synchroniseFolder(const std::string& path);

// The whole file. Raises, with the path and the cause, where it is not there, cannot be read or is
// no regular file; never waits for whoever is at the other end of a pipe.
std::string readFile(const std::string& path);

// The same; nothing where the file holds just the known bytes. No room is made for a large file
// that is known.
std::optional<std::string> readFileUnlessKnown(const std::string& path, std::string_view known);

// Replaces the file by one with these bytes, in one step: a reader, and whoever comes after a
// crash at any point, finds either the old bytes or the new ones. The old file's permission bits
// are kept, its owner where that is allowed; a symbolic link stays, and what it leads to is
// replaced. Returns false where that failed, or something else than a file stands there; that is
// then as it was, and no temporary file is left.
bool replaceFile(const std::string& path, std::string_view bytes);

// The same, unless `mayReplace`, which is asked when the new file is whole and only its name is
// missing, says no: that is a failure, too.
bool replaceFile(const std::string& path, std::string_view bytes,
                 const std::function<bool()>& mayReplace);

// The end of a file that is there: one that is not, is no regular file or may not be written is not
// opened, and never created.
class FileEnd {
 public:
  explicit FileEnd(std::string path);
  bool isOpen() const { return file_.isOpen(); }
  // Appends the pieces, one behind the other, at the file's current end: all in one step, as far as
  // the disk has room. Raises where that failed.
  void append(const std::vector<std::string_view>& pieces);
  void append(std::string_view text);

 private:
  std::string path_;
  Descriptor file_;
};

// The path without its last component, "/" at the least; a trailing "/" does not count.
std::string withoutLastComponent(const std::string& path);

}  // namespace kelvane::platform
