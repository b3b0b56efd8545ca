#pragma once

#include <sys/types.h>

#include <csignal>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace common {

/// One of `OutputFiles`. It is written to a temporary file in the folder where it will appear.
class OutputFile {
 public:
  /// Resolves links. Throws like `OutputFiles::Add`, except for equal files.
  explicit OutputFile(std::string i_path);
  OutputFile(OutputFile const&) = delete;
  OutputFile& operator=(OutputFile const&) = delete;
  /// Removes the temporary file.
  ~OutputFile();

  /// The path as the user gave it.
  std::string const& GetPath() const { return m_path; }
  /// Creates the temporary file, which is closed when i_write has filled it. Throws `std::runtime_error` with
  /// a one-line message if not everything could be written, and passes on an exception of i_write.
  void Write(std::function<void(std::FILE*)> const& i_write);

 private:
  friend class OutputFiles;

  /// A file that exists. The number of a removed file may be used again, so its kind and time count too.
  struct Id {
    dev_t device;
    ino_t number;
    mode_t kind;
    time_t seconds;
    long nanoseconds;
    bool operator==(Id const&) const = default;
  };

  static std::optional<Id> GetId(std::string const& i_path);
  [[noreturn]] void Refuse(std::string const& i_reason) const;
  std::string GetFreshName() const;
  void RequireUnchanged(std::string const& i_path) const;
  void PutInPlace();
  void TakeBack() noexcept;
  void RemoveOtherNames() noexcept;

  std::string m_path;
  std::string m_target;        // absolute and without links
  std::optional<Id> m_old_id;  // of the file that is to be replaced
  mode_t m_mode = 0666;        // the umask applies to it, as to any new file
  std::string m_part;          // the temporary file, empty if there is none
  std::string m_old;           // another name of the old file while the new one has its name
  bool m_is_complete = false;
  std::optional<Id> m_new_id;  // once it is in place
};

/// The files that a program writes: all of them appear together, or none does and older ones are kept.
///
///     OutputFiles files({"input.nii"});
///     OutputFile& picture = files.Add("picture.png");  // before the work, so that it is not done in vain
///     picture.Write(...);
///     files.Publish();
///
/// Temporary files have names that nobody can predict, are created exclusively, and are removed by the
/// destructor. Not safe to use on several threads at the same time.
class OutputFiles {
 public:
  /// i_inputs are the files that the program reads. A NIfTI volume may consist of a header and voxels, so the
  /// other names of its parts count as inputs too.
  explicit OutputFiles(std::vector<std::string> const& i_inputs = {});
  OutputFiles(OutputFiles const&) = delete;
  OutputFiles& operator=(OutputFiles const&) = delete;
  /// Removes what has not been published, and ends DelaySignals.
  ~OutputFiles();

  /// Creates a folder and those above it.
  void AddFolder(std::string const& i_path);
  /// Adds a file. A link to a regular file means that file. The reference is valid as long as this object.
  ///
  /// Throws `std::runtime_error` with a one-line message if the path exists and is not a regular file that
  /// may be written, if its folder does not exist, or if the file is an input or another output, by whatever
  /// name.
  OutputFile& Add(std::string const& i_path);
  /// Delays SIGHUP, SIGINT and SIGTERM on this thread until this object is destroyed, so that Ctrl-C leaves
  /// no temporary file. For programs that do not handle these signals; called right before the first Write.
  void DelaySignals();
  /// Moves all files to their paths. Each must have been written.
  ///
  /// Throws `std::runtime_error` with a one-line message if a file cannot be moved, or if a path is no longer
  /// as `Add` found it. Then all paths are as they were before.
  void Publish();

 private:
  std::deque<std::string> m_folders;  // created here, inner ones first, and removed unless published
  std::deque<OutputFile> m_files;
  std::map<std::string, std::string> m_known;  // from the identity of a file to a description
  std::optional<sigset_t> m_signals;           // the mask before DelaySignals
};

}  // namespace common
