#include "console/UpdateFw.h"

#include <filesystem>

#include "console/ExitCode.h"
#include "console/Follower.h"
#include "console/JobFile.h"
#include "console/JobRecord.h"
#include "console/Worker.h"
#include "platform/Utf8.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

// The worker takes no more of an image's path: a longer one would lead to another file.
constexpr std::size_t kMostPathBytes = 255;

void requireText(const std::string& text, const std::string& what) {
  if (text.empty()) throw Failure(kBadUsage, what + " is missing");
  if (!platform::isUtf8(text)) throw Failure(kBadUsage, what + " is not UTF-8: " + text);
}

std::string absoluteImage(const std::string& path) {
  requireText(path, "the image");
  std::error_code failed;
  const std::filesystem::path image = std::filesystem::absolute(path, failed);
  if (failed) throw Failure(kBadUsage, "image " + path + ": " + failed.message());
  if (!std::filesystem::exists(image, failed)) {
    throw Failure(kBadUsage, "image " + path + " does not exist");
  }
  if (std::filesystem::is_directory(image, failed)) {
    throw Failure(kBadUsage, "image " + path + " is a folder");
  }
  requireText(image.string(), "the image's folder");
  if (image.string().size() > kMostPathBytes) {
    throw Failure(kBadUsage, "image " + image.string() + ": the path is longer than " +
                                 std::to_string(kMostPathBytes) + " bytes");
  }
  return image.string();
}

Value inputEntry(const std::string& update) {
  const std::size_t sign = update.find('=');
  if (sign == std::string::npos) {
    throw Failure(kBadUsage, "\"" + update + "\" is not of the form WWN=IMAGE");
  }
  const std::string wwn = update.substr(0, sign);
  requireText(wwn, "the WWN of \"" + update + "\"");
  return Value::dictionary(
      {{job::kWwn, wwn}, {job::kFilePath, absoluteImage(update.substr(sign + 1))}});
}

Value inputParameters(const std::vector<std::string>& updates) {
  if (updates.empty()) throw Failure(kBadUsage, "no WWN=IMAGE is given");
  Value inputs = Value::array();
  for (const std::string& update : updates) inputs.append(inputEntry(update));
  return inputs;
}

// The worker takes the shared folder as a plain prefix.
std::string asPrefix(const std::string& folder) {
  requireText(folder, "the shared folder");
  return folder.back() == '/' ? folder : folder + "/";
}

std::string workerPath(const UpdateFwOptions& options) {
  if (!options.worker.empty()) return options.worker;
  if (options.bundle.empty()) throw Failure(kBadUsage, "neither a bundle nor a worker is given");
  return options.bundle + "/Contents/Resources/Kelvane";
}

WorkerProcess startWorker(const WorkerCommand& command, const JobFile& file) {
  try {
    return WorkerProcess(command);
  } catch (const Failure& failure) {
    throw Failure(failure.exitCode(), std::string(failure.what()) + "; job " + command.logId +
                                          " stays waiting in " + file.path());
  }
}

// The exit code of what became of the job, which is finished or else raises.
int exitCodeOf(const Followed& followed, const WorkerCommand& command, const Worker& worker) {
  const std::string job = "job " + command.logId;
  const std::string ending = worker.ending().empty() ? "" : " (" + worker.ending() + ")";
  switch (followed.outcome) {
    case Outcome::finished:
      break;
    case Outcome::workerEnded:
      throw Failure(kWorkerFailed, "the worker ended" + ending + " without finishing " + job +
                                       " and left it in state " + followed.status.state);
    case Outcome::recordLost:
      throw Failure(kJobFileFailed, "the worker ended" + ending + " and " + job +
                                        " is not to be found in the job file");
    case Outcome::interrupted:
      throw Failure(kInterrupted, "interrupted: the worker goes on with " + job);
  }
  return followed.status.hasSucceeded() ? kSuccess : kJobFailed;
}

int submitAndFollow(const UpdateFwOptions& options, const Surroundings& surroundings) {
  WorkerCommand command;
  command.executable = workerPath(options);
  command.sharedFolder = asPrefix(options.sharedFolder);
  command.showOutput = options.verbose;
  const Value inputs = inputParameters(options.updates);
  if (!options.logId.empty()) requireText(options.logId, "the log id");
  const JobFile file(command.sharedFolder);
  command.logId = file.add({options.logId, job::kUpdateFW, inputs});
  WorkerProcess worker = startWorker(command, file);
  const Followed followed =
      follow(file, command.logId, worker, surroundings.clock, surroundings.view);
  return exitCodeOf(followed, command, worker);
}

}  // namespace

int updateFw(const UpdateFwOptions& options, const Surroundings& surroundings) {
  try {
    return submitAndFollow(options, surroundings);
  } catch (const Failure& failure) {
    surroundings.messages << "kelvane-console: "
                          << displayText(failure.what(), surroundings.charset) << std::endl;
    return failure.exitCode();
  }
}

}  // namespace kelvane::console
