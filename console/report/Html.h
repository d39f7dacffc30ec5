// A page under way: markup, and texts that are escaped when it is printed.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvane::console {

// The text with nothing in it that is markup.
std::string escapedHtml(std::string_view text);
std::size_t escapedSize(std::string_view text);

inline constexpr std::size_t kAllOfIt = std::numeric_limits<std::size_t>::max();

// How a text that may come out of a file is shown.
struct Showing {
  std::string name = {};    // what it is the value of, for whoever looks for secrets in it
  std::size_t most = 4096;  // bytes; of what is longer the rest is left out, and that is said
};

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
  void text(std::string_view text, const Showing& showing = {});
  // Elements that hold such a text alone.
  void label(const char* element, std::string_view words, const Attributes& attributes = {});
  void element(const char* name, std::string_view text, const Attributes& attributes = {},
               const Showing& showing = {});
  // All of another one, behind what is here.
  void append(const Html& other);

  // What may come out of files takes from here on, up to the next call, so many bytes at the most.
  void giveRoom(std::size_t bytes);
  // How many bytes of markup and of the report's own words there are.
  std::size_t markupSize() const { return markupSize_; }

  // What may come out of files, as it will be shown, with something of what is left out behind it:
  // what begins before the border is seen whole.
  struct Text {
    std::string_view text;
    std::string_view name;
    std::size_t shown;
  };
  std::vector<Text> texts() const;
  // The whole, with every such text as the filter gives it, without what is behind the border.
  using Filter = std::function<std::string(const Text&)>;
  std::string printed(const Filter& filter = {}) const;

 private:
  enum class Kind { markup, text, room };  // the words are markup that is escaped already
  struct Piece {
    Kind kind = Kind::markup;
    std::string text = {};
    std::string name = {};
    std::size_t shown = 0;    // of a text; of room all that it gives
    std::size_t leftOut = 0;  // of a text, behind what is shown
  };
  void markup(std::string text);
  static Text textOf(const Piece& piece) { return {piece.text, piece.name, piece.shown}; }
  static void print(const Piece& piece, const Filter& filter, std::size_t& room, std::string& page);

  std::vector<Piece> pieces_;
  std::vector<const char*> open_;
  std::size_t markupSize_ = 0;
};

}  // namespace kelvane::console
