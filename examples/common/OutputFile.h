#pragma once

#include <string>

namespace common {

/// An output file that is written completely or not at all.
///
/// The program writes to a temporary file beside the path, and `Publish` renames it. Until then, an existing
/// file at the path is kept. The destructor removes the temporary file unless it has been published.
class OutputFile {
 public:
  /// Throws `std::runtime_error` if the path is a folder, which no file can replace.
  explicit OutputFile(std::string i_path);
  OutputFile(OutputFile&& io_other) noexcept;
  OutputFile(OutputFile const&) = delete;
  OutputFile& operator=(OutputFile const&) = delete;
  OutputFile& operator=(OutputFile&&) = delete;
  ~OutputFile();

  std::string const& GetPath() const { return m_path; }
  /// Returns the path of the temporary file, which the object owns from now on.
  std::string Begin();
  /// Moves the temporary file to its path. Throws `std::runtime_error` with a one-line message.
  void Publish();

 private:
  std::string GetPartPath() const { return m_path + ".part"; }

  std::string m_path;
  bool m_is_begun = false;
};

}  // namespace common
