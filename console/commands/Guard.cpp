#include "console/commands/Guard.h"

#include <exception>

#include "console/display/Wrapping.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {
namespace {

constexpr char kProgram[] = "kelvane-console: ";

}  // namespace

int guarded(std::ostream& messages, Charset charset, const std::function<int()>& run,
            std::size_t columns) {
  try {
    return run();
  } catch (const Failure& failure) {
    std::string text = kProgram;
    text.append(displayText(failure.what(), charset)).append("\n");
    for (const std::string& detail : failure.details()) {
      text.append("  ").append(displayText(detail, charset)).append("\n");
    }
    messages << fittedLines(text, columns) << std::flush;
    return failure.exitCode();
  } catch (const std::exception& unexpected) {
    messages << kProgram << unexpected.what() << std::endl;  // there may be no memory for more
    return kInternalError;
  }
}

}  // namespace kelvane::console
