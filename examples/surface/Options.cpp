#include "surface/Options.h"

#include <set>
#include <stdexcept>

#include "common/Arguments.h"

namespace surface {

std::string_view const help =
    "usage: surface (INPUT.nii[.gz] --level V | --solid NAME) --mesh OUT.ply [--picture OUT.png] "
    "[--turntable N DIR] [--clip A,B,C,D] [--quiet]\n"
    "\n"
    "Writes the surface of a volume at a level, or of a solid, as a mesh and as pictures.\n"
    "\n"
    "  --level V          the value of the volume at the surface\n"
    "  --solid NAME       die or sphere\n"
    "  --mesh OUT.ply     the mesh\n"
    "  --picture OUT.png  a picture of 900 x 900 pixels\n"
    "  --turntable N DIR  N pictures of a full turn: DIR/frame-0000.png and so on\n"
    "  --clip A,B,C,D     the pictures omit the part above the plane A x + B y + C z = D and show the "
    "inside\n"
    "  --quiet            prints nothing but errors\n";

namespace {

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

// Refuses options that are missing or would be ignored.
void RefuseContradictions(Options const& i_options, std::set<std::string_view> const& i_given) {
  bool const is_volume = !i_options.input.empty();
  bool const is_solid = !i_options.solid.empty();
  bool const has_level = i_given.contains("--level");
  if (!is_volume && !is_solid) throw std::invalid_argument(common::GetUsage(help));
  if (is_volume && is_solid) throw std::invalid_argument("give a volume or --solid, not both");
  if (is_volume && !has_level) throw std::invalid_argument("a volume needs --level V");
  if (is_solid && has_level) throw std::invalid_argument("--level has no effect on --solid");
  if (i_options.mesh.empty()) throw std::invalid_argument("--mesh OUT.ply is missing");
  if (i_options.clip && i_options.picture.empty() && i_options.frames == 0) {
    throw std::invalid_argument("--clip has no effect without --picture or --turntable");
  }
}

}  // namespace

Options ParseOptions(std::vector<std::string_view> const& i_words) {
  Options options;
  std::set<std::string_view> given;
  Words words(i_words);
  while (!words.IsAtEnd()) {
    std::string_view const word = words.Take();
    if (word.starts_with("--") && !given.insert(word).second) {
      throw std::invalid_argument(std::string(word) + " is given twice");
    }
    if (word == "--quiet") {
      options.is_quiet = true;
    } else if (word == "--level") {
      options.level = common::ParseNumber(word, words.TakeValueOf(word));
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
      throw std::invalid_argument(common::GetUsage(help));
    }
  }
  RefuseContradictions(options, given);
  return options;
}

}  // namespace surface
