#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace surface {

/// Shows a line of progress on a terminal, and the time of each phase at the end.
class Report {
 public:
  explicit Report(bool i_is_quiet);

  /// Ends the current phase and begins another.
  void Begin(std::string i_phase);
  /// Shows the finished fraction of the phase, from 0 to 1.
  void Show(double i_part);
  /// Ends the last phase and prints the line and the times.
  void End(std::string_view i_line);
  /// Erases the line of progress.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  void EndPhase();

  bool m_is_quiet;
  bool m_is_terminal;
  std::string m_phase;
  int m_shown_percent = -1;
  Clock::time_point m_begin;
  std::string m_times;
};

}  // namespace surface
