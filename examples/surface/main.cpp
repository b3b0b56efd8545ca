// surface (INPUT.nii[.gz] --level V | --solid NAME) --mesh OUT.ply [--picture OUT.png] [--turntable N DIR]
//         [--clip A,B,C,D] [--quiet]
//
// Writes the surface of a volume at a level, or of a solid, as a mesh and as pictures. With --clip, the
// pictures omit the part above the plane A x + B y + C z = D of the world and show the inside there.
//
// The steps, in the order in which main and Program::Run call them:
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
#include <cstddef>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <numbers>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/OutputFiles.h"
#include "common/Picture.h"
#include "common/Volume.h"
#include "surface/Colour.h"
#include "surface/Contour.h"
#include "surface/Draw.h"
#include "surface/Field.h"
#include "surface/Inside.h"
#include "surface/Mesh.h"
#include "surface/Options.h"
#include "surface/Ply.h"
#include "surface/Report.h"
#include "surface/Solid.h"
#include "surface/VolumeField.h"

namespace {

constexpr std::size_t cells = 128;
constexpr std::size_t picture_size = 900;
constexpr std::size_t frame_size = 480;

// The three-quarter view of a head, whose y axis points forwards. A die looks similar from every side.
constexpr double three_quarter_view = 0.8 * std::numbers::pi;

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

// The field to be contoured, with the volume that it refers to, and the view except for its rotation.
struct Scene {
  std::optional<common::Volume> volume;
  std::unique_ptr<surface::Field> field;
  surface::View view;
};

Scene MakeScene(surface::Options const& i_options) {
  Scene scene;
  scene.view.clip = i_options.clip;
  scene.view.palette = surface::by_rank;
  scene.view.size = picture_size;
  if (i_options.input.empty()) {
    scene.field = surface::MakeSolid(i_options.solid, cells);
    scene.view.inside = [](auto const&) { return surface::by_rank[0]; };
  } else {
    scene.volume = common::ReadVolume(i_options.input);
    scene.field = std::make_unique<surface::VolumeField>(*scene.volume, i_options.level);
    if (i_options.clip) scene.view.inside = surface::Inside(*scene.volume);
    scene.view.palette = surface::skin;
  }
  return scene;
}

std::string GetFramePath(std::string const& i_folder, std::size_t i_frame) {
  std::string const number = std::to_string(i_frame);
  return i_folder + "/frame-" + std::string(4 - number.size(), '0') + number + ".png";
}

class Program {
 public:
  explicit Program(surface::Options i_options)
      : m_options(std::move(i_options)), m_report(m_options.is_quiet) {}

  void Run() {
    common::OutputFiles files(GetInputs());
    if (m_options.frames > 0) files.AddFolder(m_options.turntable_folder);
    common::OutputFile& mesh_file = files.Add(m_options.mesh);
    common::OutputFile* const p_picture = m_options.picture.empty() ? nullptr : &files.Add(m_options.picture);
    std::vector<common::OutputFile*> frames;
    for (std::size_t frame = 0; frame < m_options.frames; ++frame) {
      frames.push_back(&files.Add(GetFramePath(m_options.turntable_folder, frame)));
    }

    Begin("reading");
    Scene scene = MakeScene(m_options);
    Begin("contouring");
    surface::Mesh const mesh = surface::Contour(*scene.field, m_progress);
    Begin("writing");
    surface::WritePly(mesh, scene.view.palette, mesh_file, m_progress);
    if (p_picture != nullptr) {
      Begin("drawing");
      scene.view.rotation = surface::LookAt(three_quarter_view);
      common::WritePng(surface::Draw(mesh, scene.view, m_progress), *p_picture);
    }
    if (!frames.empty()) {
      Begin("turning");
      DrawTurntable(mesh, scene.view, frames);
    }

    m_progress(1);
    files.Publish();
    std::ostringstream line;
    line << m_options.mesh << ": " << mesh.vertices.size() << " vertices, " << mesh.triangles.size()
         << " triangles";
    m_report.End(line.str());
  }

  void Clear() { m_report.Clear(); }

 private:
  void Begin(std::string i_phase) {
    m_report.Begin(std::move(i_phase));
    m_progress(0);
  }

  std::vector<std::string> GetInputs() const {
    if (m_options.input.empty()) return {};
    return {m_options.input};
  }

  void DrawTurntable(surface::Mesh const& i_mesh, surface::View i_view,
                     std::vector<common::OutputFile*> const& i_frames) {
    i_view.size = frame_size;
    i_view.is_turning = true;
    surface::Progress const check_interrupt = [](double) { ThrowIfInterrupted(); };
    for (std::size_t frame = 0; frame < i_frames.size(); ++frame) {
      m_progress(static_cast<double>(frame) / static_cast<double>(i_frames.size()));
      i_view.rotation = surface::Turn(three_quarter_view, frame, i_frames.size());
      common::WritePng(surface::Draw(i_mesh, i_view, check_interrupt), *i_frames[frame]);
    }
  }

  surface::Options m_options;
  surface::Report m_report;
  surface::Progress m_progress = [this](double i_part) {
    ThrowIfInterrupted();
    m_report.Show(i_part);
  };
};

}  // namespace

int main(int i_count, char** ip_words) {
  std::signal(SIGINT, &Interrupt);
  std::signal(SIGTERM, &Interrupt);
  std::optional<Program> program;
  int status = 0;
  try {
    surface::Options const options = surface::ParseOptions({ip_words + 1, ip_words + i_count});
    program.emplace(options);
    program->Run();
    return 0;
  } catch (Interrupted const&) {
    status = exit_by_interrupt;
    program->Clear();
    std::cerr << "surface: interrupted\n";
  } catch (std::exception const& exception) {
    status = 1;
    if (program) program->Clear();
    std::cerr << "surface: " << exception.what() << '\n';
  }
  return status;
}
