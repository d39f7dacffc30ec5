// A folder of its own for one test, two levels below the root, removed with it.
#pragma once

#include <string>
#include <vector>

namespace kelvane::test {

class TempFolder {
 public:
  // The suffix ends the folder's name: ".app" makes a bundle. `root` is where it stands, with a "/"
  // at its end.
  explicit TempFolder(const std::string& suffix = "", const std::string& root = "/tmp/");
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // Without a trailing "/".
  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

  // Writes a file, with the folders above it; returns its path.
  std::string write(const std::string& name, const std::string& bytes) const;
  std::string read(const std::string& name) const;
  // The names in a folder below, sorted.
  std::vector<std::string> names(const std::string& folder = "") const;

 private:
  std::string path_;
};

}  // namespace kelvane::test
