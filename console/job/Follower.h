// The follower: looks at the job file again and again until the job is finished.
#pragma once

#include <chrono>
#include <string>

#include "console/job/Clock.h"
#include "console/job/JobFile.h"
#include "console/job/Past.h"
#include "console/job/View.h"
#include "console/job/Worker.h"

namespace kelvane::console {

inline constexpr std::chrono::milliseconds kPollInterval(200);
// After the worker's end nobody repairs the file; so many looks rule out a moment's absence.
inline constexpr int kLooksAfterTheEnd = 5;

// Why the following ended.
enum class Outcome {
  finished,     // the job is finished
  workerEnded,  // the worker has ended and left the job unfinished
  recordLost,   // the worker has ended and the record cannot be found
  interrupted,  // the user wants to go; the worker goes on
};

struct Followed {
  Outcome outcome = Outcome::finished;
  Look last;  // with a nothing for a record where that was never seen
};

// Follows the job `logId`, showing each look in the view. A look that finds no file, a damaged one
// or no such record is passed over, and so is a record that is not meant. The times are the job's,
// as far as its past is known.
Followed follow(const JobFile& file, const std::string& logId, Worker& worker, Clock& clock,
                View& view, const JobFile::IsMeant& isMeant = {}, const Past& past = {});

}  // namespace kelvane::console
