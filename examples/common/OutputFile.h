#pragma once

#include <string>

namespace common {

/// A file that appears whole or not at all: it is written beside its place and moved there at the end.
///
/// Until then, whatever stood at the path stays there; whoever gives up leaves nothing behind.
class OutputFile {
 public:
  /// A folder at the path throws `std::runtime_error`: it could not be replaced.
  explicit OutputFile(std::string i_path);
  OutputFile(OutputFile&& io_other) noexcept;
  OutputFile(OutputFile const&) = delete;
  OutputFile& operator=(OutputFile const&) = delete;
  OutputFile& operator=(OutputFile&&) = delete;
  ~OutputFile();

  std::string const& GetPath() const { return m_path; }
  /// Where to write from now on.
  std::string Begin();
  /// Throws `std::runtime_error` with one line of text.
  void Publish();

 private:
  std::string GetPartPath() const { return m_path + ".part"; }

  std::string m_path;
  bool m_is_begun = false;
};

}  // namespace common
