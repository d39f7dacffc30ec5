#include "console/command_line/completion/CompletionCommand.h"

#include "console/command_line/completion/Completion.h"
#include "console/commands/Given.h"
#include "console/display/Screen.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {
namespace {

constexpr char kShell[] = "shell";

int printScript(const Given& given, const Screen& screen) {
  screen.out << completionScript(given.text(kShell), commandTable());
  return kSuccess;
}

}  // namespace

Command completionCommand() {
  return {.name = "completion",
          .description = "Print what completes the command line",
          .arguments = {{.names = {kShell},
                         .kind = ValueKind::choice,
                         .valueName = "SHELL",
                         .description = "The shell that is to complete it",
                         .choices = completionShells(),
                         .required = true}},
          .footer =
              "Example, for this bash alone:\n"
              "  source <(kelvane-console completion bash)",
          .run = printScript};
}

}  // namespace kelvane::console
