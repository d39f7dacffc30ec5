#include "console/display/Question.h"

#include "console/display/Wrapping.h"

namespace kelvane::console {

void showQuestion(const std::string& question, const Screen& screen) {
  std::string text = displayText(question, screen.charset) + " [y/N]";
  if (screen.columns != 0) text = fittedLines(text, screen.columns);
  // The answer is typed behind it.
  text.erase(text.find_last_not_of('\n') + 1);
  screen.out << text << ' ' << std::flush;
}

bool isAgreement(std::istream& answers) {
  std::string answer;
  std::getline(answers, answer);
  return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes";
}

}  // namespace kelvane::console
