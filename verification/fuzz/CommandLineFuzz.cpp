// Arbitrary words as the command lines of the example programs: each is refused by an error of one line, or
// gives options that hold what the programs rely on.

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "Bytes.h"
#include "UseVolume.h"
#include "common/Arguments.h"
#include "surface/Options.h"

namespace {

using lum::test::Require;

// Each line of the input is a word, without the bytes that would make two lines of an error.
std::vector<std::string> SplitWords(std::string_view i_text) {
  std::vector<std::string> words;
  while (!i_text.empty()) {
    std::size_t const end = i_text.find('\n');
    std::string_view const line = i_text.substr(0, end);
    words.emplace_back(line.substr(0, line.find('\0')));  // where the word of a command line ends
    i_text.remove_prefix(end == std::string_view::npos ? i_text.size() : end + 1);
  }
  return words;
}

void CheckSurface(std::vector<std::string> const& i_words) {
  surface::Options const options = surface::ParseOptions({i_words.begin(), i_words.end()});
  Require(options.input.empty() != options.solid.empty(), "a volume or a solid");
  Require(!options.mesh.empty(), "a mesh");
  Require(std::isfinite(options.level), "a level");
  Require(options.frames <= 9999, "the number of frames");
  if (options.clip) {
    Require(std::isfinite(options.clip->GetA() + options.clip->GetB() + options.clip->GetC()),
            "a clip plane");
  }
}

// The options of reslice, and of the programs with options of the same kinds.
void CheckCommandLine(std::vector<std::string> const& i_words) {
  std::vector<char const*> words = {"program"};
  for (std::string const& word : i_words) words.push_back(word.c_str());
  common::CommandLine const line(static_cast<int>(words.size()), words.data(),
                                 {"--axis", "--angle", "--offset", "--size"});
  Require(line.GetPaths().size() < words.size(), "the number of paths");
  lum::test::RunOrRefuse([&] { Require(std::isfinite(line.GetNumber("--angle", 0)), "an angle"); });
  lum::test::RunOrRefuse([&] { Require(std::isfinite(line.GetNumber("--offset", 0)), "an offset"); });
  lum::test::RunOrRefuse([&] {
    std::size_t const size = line.GetCount("--size", 16384, 1);
    Require(size >= 1 && size <= 16384, "a size");
  });
  if (!line.Has("--axis")) return;
  std::vector<double> const axis = common::ParseList("--axis", line.Get("--axis"), "X,Y,Z");
  Require(axis.size() == 3, "an axis of three numbers");
  for (double const component : axis) Require(std::isfinite(component), "a component of the axis");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* ip_data, std::size_t i_size) {
  std::string const text(ip_data, ip_data + i_size);
  std::vector<std::string> const words = SplitWords(text);
  lum::test::RunOrRefuse([&] { CheckSurface(words); });
  lum::test::RunOrRefuse([&] { CheckCommandLine(words); });
  return 0;
}
