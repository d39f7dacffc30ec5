// Where the traces of jobs stand: the job file and the log, in the shared folder or as somebody has
// sent them; and whether they are this system's.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::console {

struct Places {
  std::string sharedFolder = {};  // ends with "/"; empty: not at hand
  std::string jobFile = {};       // empty: not at hand
  std::string log = {};           // empty: not at hand
  // Whether they are another system's, or another time's: neither processes nor what stands at the
  // paths in the files may be looked at.
  bool isCopy = false;
};

// Those of the shared folder, which ends with "/".
Places placesIn(const std::string& sharedFolder);

// The log's path. Raises Failure (bad usage) where it is not at hand.
const std::string& logPathOf(const Places& places);

// The records of the job file; where that is not at hand, as the log shows them last. Raises
// Failure like JobFile::read() and readLogAt(), and where the log shows none.
platform::Value recordsAt(const Places& places);

// The file that they are out of.
const std::string& sourceOfRecords(const Places& places);

// The record with this log id, of several the last one. The same, and raises Failure (not found)
// where there is none.
platform::Value recordAt(const Places& places, const std::string& logId);

// Where the job file is at hand and the log shows jobs, how these are looked at, behind what the
// job file does not tell: "the log shows jobs: give list ..."; else empty.
std::string wayToLoggedJobs(const Places& places);

// The same of one job, as a sentence behind another one: ". The log shows it: give list ...".
std::string wayToLoggedJob(const Places& places, const std::string& logId);

// Whether no worker for the job is seen. Of a copy that is not known: false.
bool lacksWorker(const std::string& logId, const Places& places);

// What was not looked at and what is not at hand, as a sentence; empty where nothing is missing.
std::string notLookedAt(const Places& places);

// What they are in a word: "shared folder"; of files alone "job file" or "log", where both are at
// hand the first.
const char* kindOf(const Places& places);

}  // namespace kelvane::console
