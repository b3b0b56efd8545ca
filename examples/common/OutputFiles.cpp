#include "common/OutputFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <iomanip>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace common {
namespace {

namespace fs = std::filesystem;

std::string GetReason(int i_error) { return std::generic_category().message(i_error); }

[[noreturn]] void RefuseToWrite(std::string const& i_path, std::string const& i_reason) {
  throw std::runtime_error("cannot write " + i_path + ": " + i_reason);
}

// Equal for all names of one file, whether it exists or not.
std::string GetIdentity(std::string const& i_path) {
  struct stat status {};
  if (stat(i_path.c_str(), &status) == 0) {
    return std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino);
  }
  std::error_code error;
  fs::path const resolved = fs::weakly_canonical(fs::absolute(i_path, error), error);
  return error ? i_path : resolved.string();
}

std::string Convert(std::string i_text, int (*i_convert)(int)) {
  for (char& letter : i_text) letter = static_cast<char>(i_convert(static_cast<unsigned char>(letter)));
  return i_text;
}

// The names that the header and the voxels of a volume may have, for this program or another.
std::vector<std::string> GetPartsOfVolume(std::string const& i_path) {
  std::string stem = Convert(i_path, &std::tolower);
  if (stem.ends_with(".gz")) stem.resize(stem.size() - 3);
  for (std::string_view const ending : {".hdr", ".img", ".nii"}) {
    if (!stem.ends_with(ending)) continue;
    stem.resize(stem.size() - ending.size());
    break;
  }
  stem = i_path.substr(0, stem.size());
  std::vector<std::string> parts;
  for (std::string const ending : {".hdr", ".img", ".nii"}) {
    for (std::string const& all : {ending, ending + ".gz"}) {
      parts.insert(parts.end(), {stem + all, stem + Convert(all, &std::toupper)});
    }
  }
  return parts;
}

}  // namespace

OutputFile::OutputFile(std::string i_path) : m_path(std::move(i_path)) {
  struct stat status {};
  bool const is_old = stat(m_path.c_str(), &status) == 0;
  if (is_old) {
    if (S_ISDIR(status.st_mode)) Refuse("it is a folder");
    if (!S_ISREG(status.st_mode)) Refuse("it is not a regular file");
    if (faccessat(AT_FDCWD, m_path.c_str(), W_OK, AT_EACCESS) != 0) Refuse(GetReason(errno));
    m_mode = status.st_mode & 0777;
  } else {
    if (errno != ENOENT) Refuse(GetReason(errno));
    if (GetId(m_path)) Refuse("it is a link to nothing");
  }
  fs::path const path = m_path;
  if (!path.has_filename()) Refuse("it names no file");
  std::error_code error;
  fs::path const folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  m_target = is_old ? fs::canonical(path, error).string()
                    : (fs::canonical(folder, error) / path.filename()).string();
  if (error) Refuse(error.message());
  std::string const target_folder = fs::path(m_target).parent_path().string();
  if (faccessat(AT_FDCWD, target_folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) Refuse(GetReason(errno));
  if (is_old) m_old_id = GetId(m_target);
}

OutputFile::~OutputFile() {
  if (!m_part.empty()) unlink(m_part.c_str());
}

void OutputFile::Write(std::function<void(std::FILE*)> const& i_write) {
  int descriptor = -1;
  do {
    m_part = GetFreshName();
    descriptor = open(m_part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, m_mode);
  } while (descriptor < 0 && errno == EEXIST);
  if (descriptor < 0) {
    m_part.clear();
    Refuse(GetReason(errno));
  }
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(fdopen(descriptor, "wb"), &std::fclose);
  if (!stream) {
    close(descriptor);
    Refuse("there is no stream for it");
  }
  errno = 0;
  i_write(stream.get());
  bool is_written = std::fflush(stream.get()) == 0 && std::ferror(stream.get()) == 0;
  // A new file has the permissions that the umask left. One that replaces another has those of the other.
  if (m_old_id) is_written = fchmod(descriptor, m_mode) == 0 && is_written;
  is_written = std::fclose(stream.release()) == 0 && is_written;
  if (!is_written) Refuse(GetReason(errno == 0 ? EIO : errno));
  m_is_complete = true;
}

// Does not follow a link at the end of the path.
std::optional<OutputFile::Id> OutputFile::GetId(std::string const& i_path) {
  struct stat status {};
  if (lstat(i_path.c_str(), &status) != 0) return {};
  return Id{status.st_dev, status.st_ino, status.st_mode & S_IFMT, status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}

void OutputFile::Refuse(std::string const& i_reason) const { RefuseToWrite(m_path, i_reason); }

std::string OutputFile::GetFreshName() const {
  std::random_device random;
  std::ostringstream name;
  name << ".lum-" << std::hex << std::setfill('0') << std::setw(8) << random() << std::setw(8) << random();
  return (fs::path(m_target).parent_path() / name.str()).string();
}

void OutputFile::RequireUnchanged(std::string const& i_path) const {
  if (GetId(i_path) != m_old_id) Refuse("another program has changed it in the meantime");
}

// A link, unlike a renamed file, never replaces what has appeared in the meantime. Where the file system has
// no hard links, a check and a renamed file do almost the same.
void OutputFile::PutInPlace() {
  RequireUnchanged(m_target);
  std::optional<Id> const new_id = GetId(m_part);
  if (m_old_id) {
    std::string const old = GetFreshName();
    if (link(m_target.c_str(), old.c_str()) != 0 && std::rename(m_target.c_str(), old.c_str()) != 0) {
      Refuse(GetReason(errno));
    }
    m_old = old;
    RequireUnchanged(m_old);
  } else if (link(m_part.c_str(), m_target.c_str()) == 0) {
    m_new_id = new_id;
    return;
  } else if (errno == EEXIST) {
    RequireUnchanged(m_target);
  }
  if (std::rename(m_part.c_str(), m_target.c_str()) != 0) Refuse(GetReason(errno));
  m_part.clear();
  m_new_id = new_id;
}

void OutputFile::TakeBack() noexcept {
  if (!m_old.empty()) {
    // If both are names of the old file, rename leaves them, and one is removed.
    if (std::rename(m_old.c_str(), m_target.c_str()) == 0) unlink(m_old.c_str());
    m_old.clear();
  } else if (m_new_id && GetId(m_target) == m_new_id) {
    unlink(m_target.c_str());
  }
  m_new_id.reset();
}

void OutputFile::RemoveOtherNames() noexcept {
  for (std::string* const p_name : {&m_old, &m_part}) {
    if (!p_name->empty()) unlink(p_name->c_str());
    p_name->clear();
  }
}

OutputFiles::OutputFiles(std::vector<std::string> const& i_inputs) {
  for (std::string const& input : i_inputs) {
    m_known[GetIdentity(input)] = "it is the input " + input;
    for (std::string const& part : GetPartsOfVolume(input)) {
      m_known.try_emplace(GetIdentity(part), "it belongs to the input " + input);
    }
  }
}

OutputFiles::~OutputFiles() {
  m_files.clear();
  for (std::string const& folder : m_folders) rmdir(folder.c_str());
  if (m_signals) pthread_sigmask(SIG_SETMASK, &*m_signals, nullptr);  // a signal may end the program here
}

void OutputFiles::AddFolder(std::string const& i_path) {
  std::error_code error;
  std::vector<fs::path> missing;
  for (fs::path path = i_path; !path.empty() && !fs::exists(path, error) && !error;
       path = path.parent_path()) {
    missing.push_back(path);
  }
  for (auto path = missing.rbegin(); path != missing.rend() && !error; ++path) {
    if (fs::create_directory(*path, error)) m_folders.push_front(path->string());
  }
  if (!error && !fs::is_directory(i_path, error)) error = std::make_error_code(std::errc::not_a_directory);
  if (error) RefuseToWrite(i_path, error.message());
}

OutputFile& OutputFiles::Add(std::string const& i_path) {
  OutputFile& file = m_files.emplace_back(i_path);
  auto const [known, is_new] = m_known.try_emplace(GetIdentity(i_path), "it is the output " + i_path);
  if (is_new) return file;
  m_files.pop_back();
  RefuseToWrite(i_path, known->second);
}

void OutputFiles::DelaySignals() {
  sigset_t delayed;
  sigset_t before;
  sigemptyset(&delayed);
  for (int const signal : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&delayed, signal);
  if (pthread_sigmask(SIG_BLOCK, &delayed, &before) == 0 && !m_signals) m_signals = before;
}

void OutputFiles::Publish() {
  for (OutputFile const& file : m_files) {
    if (!file.m_is_complete) throw std::logic_error(file.m_path + " has not been written");
  }
  try {
    for (OutputFile& file : m_files) file.PutInPlace();
  } catch (...) {
    for (OutputFile& file : m_files) file.TakeBack();
    throw;
  }
  for (OutputFile& file : m_files) file.RemoveOtherNames();
  m_folders.clear();
}

}  // namespace common
