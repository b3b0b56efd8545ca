#include "surface/Options.h"

#include <stdexcept>

#include "common/Arguments.h"

namespace surface {
namespace {

constexpr char const* usage =
    "usage: surface (INPUT.nii[.gz] --level V | --solid NAME) --mesh OUT.ply [--picture OUT.png] "
    "[--turntable N DIR] [--clip A,B,C,D] [--quiet]";

constexpr std::size_t most_frames = 9999;  // frame-0000.png has four digits

// Reads the words in order. The values of an option follow it.
class Words {
 public:
  explicit Words(std::vector<std::string_view> const& i_words) : m_words(i_words) {}

  bool IsAtEnd() const { return m_next == m_words.size(); }
  std::string_view Take() { return m_words[m_next++]; }
  std::string_view TakeValueOf(std::string_view i_option) {
    if (IsAtEnd()) throw std::invalid_argument(std::string(i_option) + " takes a value");
    return Take();
  }

 private:
  std::vector<std::string_view> const& m_words;
  std::size_t m_next = 0;
};

lum::Plane<double> ParsePlane(std::string_view i_option, std::string_view i_text) {
  std::vector<double> const values = common::ParseList(i_option, i_text, "A,B,C,D");
  try {
    return {values[0], values[1], values[2], values[3]};
  } catch (std::invalid_argument const&) {
    throw std::invalid_argument(std::string(i_option) + " takes a plane A,B,C,D whose normal is not zero");
  }
}

}  // namespace

Options ParseOptions(std::vector<std::string_view> const& i_words) {
  Options options;
  bool has_level = false;
  Words words(i_words);
  while (!words.IsAtEnd()) {
    std::string_view const word = words.Take();
    if (word == "--quiet") {
      options.is_quiet = true;
    } else if (word == "--level") {
      options.level = common::ParseNumber(word, words.TakeValueOf(word));
      has_level = true;
    } else if (word == "--solid") {
      options.solid = words.TakeValueOf(word);
    } else if (word == "--mesh") {
      options.mesh = words.TakeValueOf(word);
    } else if (word == "--picture") {
      options.picture = words.TakeValueOf(word);
    } else if (word == "--turntable") {
      options.frames = common::ParseCount(word, words.TakeValueOf(word), most_frames);
      options.turntable_folder = words.TakeValueOf(word);
    } else if (word == "--clip") {
      options.clip = ParsePlane(word, words.TakeValueOf(word));
    } else if (word.starts_with("--")) {
      throw std::invalid_argument("unknown option " + std::string(word));
    } else if (options.input.empty()) {
      options.input = word;
    } else {
      throw std::invalid_argument(usage);
    }
  }
  bool const is_volume = !options.input.empty();
  if (is_volume != options.solid.empty() || is_volume != has_level || options.mesh.empty()) {
    throw std::invalid_argument(usage);
  }
  return options;
}

}  // namespace surface
