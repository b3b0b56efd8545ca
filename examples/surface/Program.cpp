#include "surface/Program.h"

#include <cstddef>
#include <memory>
#include <numbers>
#include <optional>
#include <sstream>
#include <utility>

#include "common/Picture.h"
#include "common/Volume.h"
#include "surface/Colour.h"
#include "surface/Field.h"
#include "surface/Inside.h"
#include "surface/Ply.h"
#include "surface/Solid.h"
#include "surface/VolumeField.h"

namespace surface {
namespace {

constexpr std::size_t cells = 128;

// The three-quarter view of a head, whose y axis points forwards. A die looks similar from every side.
constexpr double three_quarter_view = 0.8 * std::numbers::pi;

// The field to be contoured, with the volume that it refers to, and the view except for its rotation.
struct Scene {
  std::optional<common::Volume> volume;
  std::unique_ptr<Field> field;
  View view;
};

Scene MakeScene(Options const& i_options) {
  Scene scene;
  scene.view.clip = i_options.clip;
  scene.view.palette = by_rank;
  scene.view.size = i_options.picture_size;
  if (i_options.input.empty()) {
    scene.field = MakeSolid(i_options.solid, cells);
    scene.view.inside = [](auto const&) { return by_rank[0]; };
  } else {
    scene.volume = common::ReadVolume(i_options.input);
    scene.field = std::make_unique<VolumeField>(*scene.volume, i_options.level);
    if (i_options.clip) scene.view.inside = Inside(*scene.volume);
    scene.view.palette = skin;
  }
  return scene;
}

std::string GetFramePath(std::string const& i_folder, std::size_t i_frame) {
  std::string const number = std::to_string(i_frame);
  return i_folder + "/frame-" + std::string(4 - number.size(), '0') + number + ".png";
}

}  // namespace

Program::Program(Options i_options, std::function<void()> i_check)
    : m_options(std::move(i_options)),
      m_check(std::move(i_check)),
      m_report(m_options.is_quiet),
      m_progress([this](double i_part) {
        m_check();
        m_report.Show(i_part);
      }) {}

void Program::Run() {
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
  Mesh const mesh = Contour(*scene.field, m_progress);
  Begin("writing");
  WritePly(mesh, scene.view.palette, mesh_file, m_progress);
  if (p_picture != nullptr) {
    Begin("drawing");
    scene.view.rotation = LookAt(three_quarter_view);
    common::WritePng(Draw(mesh, scene.view, m_progress), *p_picture);
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

void Program::Begin(std::string i_phase) {
  m_report.Begin(std::move(i_phase));
  m_progress(0);
}

std::vector<std::string> Program::GetInputs() const {
  if (m_options.input.empty()) return {};
  return {m_options.input};
}

void Program::DrawTurntable(Mesh const& i_mesh, View i_view,
                            std::vector<common::OutputFile*> const& i_frames) {
  i_view.size = m_options.frame_size;
  i_view.is_turning = true;
  Progress const check_interrupt = [this](double) { m_check(); };
  for (std::size_t frame = 0; frame < i_frames.size(); ++frame) {
    m_progress(static_cast<double>(frame) / static_cast<double>(i_frames.size()));
    i_view.rotation = Turn(three_quarter_view, frame, i_frames.size());
    common::WritePng(Draw(i_mesh, i_view, check_interrupt), *i_frames[frame]);
  }
}

}  // namespace surface
