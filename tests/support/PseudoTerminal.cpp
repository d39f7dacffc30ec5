#include "tests/support/PseudoTerminal.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "tests/support/Program.h"

namespace kelvane::test {
namespace {

// A terminal's screen, as far as the console uses it.
class Screen {
 public:
  explicit Screen(std::size_t columns) : columns_(columns) {}

  void take(const std::string& output) {
    for (std::size_t i = 0; i < output.size();) i = takeOne(output, i);
  }
  std::vector<std::string> lines() const {
    std::vector<std::string> found;
    for (const Line& line : lines_) found.push_back(textOf(line));
    while (!found.empty() && found.back().empty()) found.pop_back();
    return found;
  }

 private:
  using Line = std::vector<std::string>;  // a character each

  static std::string textOf(const Line& line) {
    std::string text;
    for (const std::string& character : line) text += character;
    return text.substr(0, text.find_last_not_of(' ') + 1);
  }

  // Takes what begins at the position; the position behind it.
  std::size_t takeOne(const std::string& output, std::size_t position) {
    if (output[position] == '\x1b') return takeSequence(output, position);
    std::size_t end = position + 1;
    while (end < output.size() && (static_cast<unsigned char>(output[end]) & 0xC0U) == 0x80U) ++end;
    takeCharacter(output.substr(position, end - position));
    return end;
  }

  void takeCharacter(const std::string& character) {
    if (character == "\r") {
      column_ = 0;
    } else if (character == "\n") {
      ++row_;
    } else {
      if (column_ == columns_) {
        column_ = 0;
        ++row_;
      }
      if (line().size() <= column_) line().resize(column_ + 1, " ");
      line()[column_++] = character;
    }
  }

  // "ESC [ number letter".
  std::size_t takeSequence(const std::string& output, std::size_t position) {
    const std::size_t end = output.find_first_not_of("0123456789;", position + 2);
    const std::string number = output.substr(position + 2, end - position - 2);
    switch (output.at(end)) {
      case 'A':
        row_ -= static_cast<std::size_t>(std::stoi(number));
        break;
      case 'K':
        if (line().size() > column_) line().resize(column_);
        break;
      case 'J':
        line();
        lines_.resize(row_ + 1);
        if (line().size() > column_) line().resize(column_);
        break;
      case 'm':
        break;
      default:
        throw std::runtime_error("the screen does not know this sequence");
    }
    return end + 1;
  }

  Line& line() {
    if (lines_.size() <= row_) lines_.resize(row_ + 1);
    return lines_[row_];
  }

  std::size_t columns_;
  std::size_t row_ = 0;
  std::size_t column_ = 0;
  std::vector<Line> lines_;
};

// Else the terminal would throw away what is written at the moment of an interrupt, also what the
// program says of it.
void keepOutputThroughInterrupts() {
  termios modes = {};
  ::tcgetattr(STDIN_FILENO, &modes);
  modes.c_lflag |= NOFLSH;
  ::tcsetattr(STDIN_FILENO, TCSANOW, &modes);
}

}  // namespace

PseudoTerminal::PseudoTerminal(const std::vector<std::string>& argv, const std::string& folder,
                               const TerminalForm& form,
                               const std::map<std::string, std::string>& variables)
    : form_(form) {
  winsize size = {};
  size.ws_col = form.columns;
  size.ws_row = form.rows;
  program_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
  if (program_ < 0) throw std::runtime_error("no terminal for the program");
  if (program_ != 0) return;
  keepOutputThroughInterrupts();
  std::signal(SIGINT, SIG_DFL);  // what runs the tests may ignore it
  ::setenv("TERM", "xterm", 1);
  ::setenv("LC_ALL", form.utf8 ? "C.UTF-8" : "C", 1);
  becomeProgram(argv, folder, variables);
}

PseudoTerminal::~PseudoTerminal() {
  ::close(terminal_);
  if (program_ > 0) ::waitpid(program_, nullptr, 0);
}

bool PseudoTerminal::waitFor(const std::string& text) {
  while (output_.find(text) == std::string::npos) {
    if (!read()) return false;
  }
  return true;
}

void PseudoTerminal::type(const std::string& keys) const {
  if (::write(terminal_, keys.data(), keys.size()) < 0) throw std::runtime_error("cannot type");
}

int PseudoTerminal::end() {
  while (read()) continue;
  int status = 0;
  ::waitpid(program_, &status, 0);
  program_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool PseudoTerminal::read() {
  std::array<char, 4096> block = {};
  const ssize_t got = ::read(terminal_, block.data(), block.size());
  if (got <= 0) return false;  // an error is how a terminal tells that its programs are gone
  output_.append(block.data(), static_cast<std::size_t>(got));
  return true;
}

std::vector<std::string> PseudoTerminal::screen() const {
  Screen screen(form_.columns);
  screen.take(output_);
  return screen.lines();
}

}  // namespace kelvane::test
