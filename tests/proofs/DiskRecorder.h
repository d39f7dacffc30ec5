// Tells a disk all that a program, and what it starts, does to the files below a folder.
#pragma once

#include <functional>
#include <string>

#include "tests/proofs/Disk.h"
#include "tests/proofs/Tracer.h"

namespace kelvane::proofs {

class DiskRecorder : public Watcher {
 public:
  // Told of each change right after it, with the path; `isOfProgram` as of the call.
  using Changed = std::function<void(const std::string& path, const Call& call)>;

  DiskRecorder(std::string folder, Disk& disk, Changed changed)
      : folder_(std::move(folder)), disk_(disk), changed_(std::move(changed)) {}

  Decision before(const Call& call) override;
  void after(const Call& call, long result) override;

 private:
  // Without the folder; empty where it is elsewhere.
  std::string below(const std::string& path) const;
  bool takeName(const Call& call, const std::string& path);
  bool takeBytes(const Call& call, const std::string& path, long result);

  std::string folder_;
  Disk& disk_;
  Changed changed_;
};

}  // namespace kelvane::proofs
