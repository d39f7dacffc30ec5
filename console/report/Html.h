// A page under way: markup, and texts that are escaped when it is printed.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvane::console {

// The text with nothing in it that is markup.
std::string escapedHtml(std::string_view text);

class Html {
 public:
  using Attributes = std::vector<std::pair<const char*, std::string>>;

  // An element, until close() ends the one opened last. Attributes are the report's own, never out
  // of a file.
  void open(const char* element, const Attributes& attributes = {});
  void close();
  // An element that has no content.
  void lone(const char* element, const Attributes& attributes = {});

  // The report's own words.
  void words(std::string_view text);
  // What may come out of a file: control characters and broken UTF-8 become replacement characters,
  // line feeds stay.
  void text(std::string_view text);
  // Elements that hold such a text alone.
  void label(const char* element, std::string_view words, const Attributes& attributes = {});
  void element(const char* name, std::string_view text, const Attributes& attributes = {});
  // All of another one, behind what is here.
  void append(const Html& other);

  // What may come out of files, as it will be shown.
  std::vector<std::string_view> texts() const;
  // The whole, with every such text as the filter gives it.
  using Filter = std::function<std::string(std::string_view)>;
  std::string printed(const Filter& filter = {}) const;

 private:
  struct Piece {
    std::string text;
    bool isMarkup;  // with the words, which are escaped already
  };
  void markup(std::string text);

  std::vector<Piece> pieces_;
  std::vector<const char*> open_;
};

}  // namespace kelvane::console
