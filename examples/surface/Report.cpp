#include "surface/Report.h"

#include <unistd.h>

#include <iomanip>
#include <iostream>
#include <sstream>
#include <utility>

#include "common/Conversion.h"

namespace surface {

Report::Report(bool i_is_quiet) : m_is_quiet(i_is_quiet), m_is_terminal(isatty(STDERR_FILENO) != 0) {}

void Report::Begin(std::string i_phase) {
  EndPhase();
  m_phase = std::move(i_phase);
  m_begin = Clock::now();
  Show(0);
}

void Report::Show(double i_part) {
  int const percent = common::ToInteger<int>(100 * i_part);
  if (m_is_quiet || !m_is_terminal || percent == m_shown_percent) return;
  m_shown_percent = percent;
  std::cerr << '\r' << m_phase << ' ' << std::setw(3) << percent << " %  " << std::flush;
}

void Report::End(std::string_view i_line) {
  EndPhase();
  if (!m_is_quiet) std::cout << i_line << '\n' << m_times << '\n';
}

void Report::Clear() {
  if (m_shown_percent >= 0) std::cerr << '\r' << std::string(m_phase.size() + 8, ' ') << '\r' << std::flush;
  m_shown_percent = -1;
}

void Report::EndPhase() {
  if (m_phase.empty()) return;
  Clear();
  std::ostringstream time;
  time << (m_times.empty() ? "" : ", ") << m_phase << ' ' << std::fixed << std::setprecision(2)
       << std::chrono::duration<double>(Clock::now() - m_begin).count() << " s";
  m_times += time.str();
  m_phase.clear();
}

}  // namespace surface
