#pragma once

#include <functional>
#include <string>
#include <vector>

#include "common/OutputFiles.h"
#include "surface/Contour.h"
#include "surface/Draw.h"
#include "surface/Mesh.h"
#include "surface/Options.h"
#include "surface/Report.h"

namespace surface {

/// The program apart from its command line and signals.
class Program {
 public:
  /// i_check is called between two steps of the work. An exception from it ends the work, and no output
  /// remains.
  Program(Options i_options, std::function<void()> i_check);
  Program(Program const&) = delete;  // m_progress refers to the object
  Program& operator=(Program const&) = delete;

  /// Writes all outputs or none. Throws an exception of the standard library with a one-line message.
  void Run();
  /// Erases the line of progress.
  void Clear() { m_report.Clear(); }

 private:
  void Begin(std::string i_phase);
  std::vector<std::string> GetInputs() const;
  void DrawTurntable(Mesh const& i_mesh, View i_view, std::vector<common::OutputFile*> const& i_frames);

  Options m_options;
  std::function<void()> m_check;
  Report m_report;
  Progress m_progress;
};

}  // namespace surface
