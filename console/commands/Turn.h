// One job at a time: a job file is changed and a job started when no other job runs there.
#pragma once

#include <string>

#include "console/commands/Submission.h"
#include "console/job/JobFile.h"
#include "console/job/JobFileLock.h"

namespace kelvane::console {

enum class WhenBusy {
  refuse,
  wait,  // until the others are done
  goOn,
};

struct TurnWish {
  std::string sharedFolder = {};  // ends with "/"
  std::string bundle = {};        // empty: nobody is looked for who replaces it
  WhenBusy whenBusy = WhenBusy::refuse;
  std::string advice = {};    // to whom is refused
  bool noticesApart = false;  // whether what is said meanwhile is kept out of the answers
};

// The job file's lock, taken at a moment when nobody is at work in the shared folder: no worker,
// and nothing that a killed one has left running. Raises Failure: kBusy where somebody is and that
// is to be refused, kInterrupted while it waits, like JobFile::read() and JobFileLock.
JobFileLock takeTurn(const JobFile& file, const TurnWish& wish, const Surroundings& surroundings);

// Raises Failure where the user may not change the folder of the job file, so that a worker of the
// user's could not write down how a job goes.
void requireChangeable(const JobFile& file);

}  // namespace kelvane::console
