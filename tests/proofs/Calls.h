// The system calls that the proofs look at: which of them change something, and how each can fail.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kelvane::proofs {

struct Call {
  long number = -1;
  std::array<std::uint64_t, 6> arguments = {};
  pid_t process = 0;
  // Of the traced program itself, also in a child of its that has not become another program yet.
  bool isOfProgram = false;
};

struct CallKind {
  long number;
  const char* name;
  bool changes;             // files, processes or signals
  int size;                 // the argument that tells how many bytes or pieces; -1: none
  std::vector<int> errors;  // that it can give; for those that nobody looks at, none
};

const std::vector<CallKind>& callKinds();
// Null where the proofs do not know it.
const CallKind* kindOf(long number);
std::vector<long> allCalls();
// Of a call that the proofs pass over: it changes nothing but the process itself.
bool isPassedOver(long number);

bool isSleep(const Call& call);
bool isSynchronisation(const Call& call);
bool isRename(const Call& call);
// What a kill right before it leaves undone.
bool changesSomething(const Call& call);
bool canGive(const Call& call, int error);

// The text that an argument points to, in the memory of the call's process.
std::string textOf(const Call& call, std::size_t argument);
// The whole path of a call's argument; `folder` is the argument with the folder that it may be
// relative to, or -1.
std::string pathOf(const Call& call, int folder, std::size_t argument);
// What an open file of the process is called.
std::string pathOfFile(pid_t process, std::uint64_t file);
// Of a rename.
std::string sourceOf(const Call& call);
std::string targetOf(const Call& call);
// Whether it changes the bytes of an open file, and which file of the process that is.
bool writes(const Call& call);
std::uint64_t writtenFile(const Call& call);
// The path of what the call changes, but for what stands beside its bytes; empty where it is none.
std::string changedPath(const Call& call);

}  // namespace kelvane::proofs
