// A program in a terminal: what it writes, what the screen shows, and what the user types.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kelvane::test {

inline constexpr int kInterrupted = 130;  // the exit status behind Ctrl-C

struct TerminalForm {
  unsigned short columns = 80;
  unsigned short rows = 24;
  bool utf8 = true;
};

class PseudoTerminal {
 public:
  // Starts the program (argv[0] is its path) in the folder, in a terminal of this form, with these
  // variables on top of the test's own environment.
  PseudoTerminal(const std::vector<std::string>& argv, const std::string& folder,
                 const TerminalForm& form,
                 const std::map<std::string, std::string>& variables = {});
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;
  ~PseudoTerminal();

  // Reads until the program has written this text or has ended; whether it has.
  bool waitFor(const std::string& text);
  void type(const std::string& keys) const;
  // Reads until the program ends; its exit status, -1 where a signal ended it.
  int end();

  // All bytes written up to now, as the terminal got them.
  const std::string& output() const { return output_; }
  // What the screen shows: its lines without the blanks at their ends and without the empty ones
  // at the bottom. A character that stands beyond the last column wraps.
  std::vector<std::string> screen() const;

 private:
  bool read();

  TerminalForm form_;
  int terminal_ = -1;
  pid_t program_ = -1;
  std::string output_;
};

}  // namespace kelvane::test
