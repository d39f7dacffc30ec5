// The job file held against its published schema, docs/job-file.schema.json.
#pragma once

#include <string>
#include <vector>

namespace kelvane::test {

// What is wrong with a job file's text, one violation a line with the place where it was found;
// empty where the text is valid. A text that is not JSON is one violation.
std::vector<std::string> validateJobFile(const std::string& text);

// The same for a record as an application adds it, against the schema's "waitingJob".
std::vector<std::string> validateWaitingJob(const std::string& text);

}  // namespace kelvane::test
