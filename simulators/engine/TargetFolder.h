// The folder that the update engine delivers into.
#pragma once

#include <functional>
#include <string>

namespace kelvane::simulator {

class TargetFolder {
 public:
  // Makes the folder where it is not there. Raises where that fails.
  explicit TargetFolder(std::string path);

  // Where an entry of this name stands.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

  // Puts a file or a folder there, whole or not at all, in the place of what has the name: `write`
  // makes it at the path that it is given. Raises, with the path and the cause, where that fails,
  // and lets pass what `write` raises; nothing is left then.
  void put(const std::string& name, const std::function<void(const std::string&)>& write) const;

  // Makes of an entry what is there after this percentage of its bytes, file by file in the order
  // of their paths: whole files, one that is cut, and no further ones.
  static void cut(const std::string& path, unsigned percent);

 private:
  void moveIntoPlace(const std::string& fresh, const std::string& name) const;

  std::string path_;
};

}  // namespace kelvane::simulator
