// surface (INPUT.nii[.gz] --level V | --solid NAME) --mesh OUT.ply [--picture OUT.png] [--turntable N DIR]
//         [--clip A,B,C,D] [--quiet]
//
// Writes the surface of a volume at a level, or of a solid, as a mesh and as pictures. With --clip, the
// pictures omit the part above the plane A x + B y + C z = D of the world and show the inside there.
//
// The steps, in the order in which Program.cpp calls them:
//   Options.cpp                    parses the command line
//   VolumeField.cpp or Solid.cpp   provides the field, whose zeros are the surface
//   Contour.cpp and Quadric.cpp    compute the mesh: its triangles and where its vertices lie
//   Ply.cpp                        writes the mesh
//   Draw.cpp                       draws a picture of the mesh; its first lines name its passes
//   Colour.h and Inside.cpp        are the colours of the surface and of the cut
//   common/Picture.cpp             writes a picture
// Report.cpp shows progress and times.

#include <atomic>
#include <csignal>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>

#include "common/Arguments.h"
#include "surface/Options.h"
#include "surface/Program.h"

namespace {

// Set by the signal handler, on any thread. Read between two steps of the work, which then throws, so that
// unfinished files are removed as after any error. The handler may set it because it is lock-free, and no
// other data depends on it.
std::atomic<bool> is_interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);
void Interrupt(int) { is_interrupted = true; }

class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("interrupted") {}
};
constexpr int exit_by_interrupt = 128 + SIGINT;
void ThrowIfInterrupted() {
  if (is_interrupted) throw Interrupted();
}

}  // namespace

int main(int i_count, char** ip_words) {
  std::signal(SIGINT, &Interrupt);
  std::signal(SIGTERM, &Interrupt);
  std::optional<surface::Program> program;
  int status = 0;
  try {
    if (common::PrintHelp(i_count, ip_words, surface::help)) return 0;
    surface::Options const options = surface::ParseOptions({ip_words + 1, ip_words + i_count});
    program.emplace(options, &ThrowIfInterrupted);
    program->Run();
    return 0;
  } catch (Interrupted const&) {
    status = exit_by_interrupt;
    program->Clear();
    std::cerr << "surface: interrupted\n";
  } catch (std::exception const& exception) {
    status = 1;
    if (program) program->Clear();
    common::PrintError("surface", exception);
  }
  return status;
}
