#include "common/OutputFile.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace common {

OutputFile::OutputFile(std::string i_path) : m_path(std::move(i_path)) {
  std::error_code ignored;
  if (std::filesystem::is_directory(m_path, ignored)) {
    throw std::runtime_error("cannot write " + m_path + ": it is a folder");
  }
}

OutputFile::OutputFile(OutputFile&& io_other) noexcept
    : m_path(std::move(io_other.m_path)), m_is_begun(std::exchange(io_other.m_is_begun, false)) {}

OutputFile::~OutputFile() {
  std::error_code ignored;
  if (m_is_begun) std::filesystem::remove(GetPartPath(), ignored);
}

std::string OutputFile::Begin() {
  m_is_begun = true;
  return GetPartPath();
}

void OutputFile::Publish() {
  std::error_code error;
  std::filesystem::rename(GetPartPath(), m_path, error);
  if (error) throw std::runtime_error("cannot write " + m_path + ": " + error.message());
  m_is_begun = false;
}

}  // namespace common
