#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "common/OutputFiles.h"
#include "tests/support/Throws.h"

namespace {

// Set by one test at a time, and read by the two functions below. There is one thread.
bool has_hard_links = true;
int renames_that_succeed = -1;  // then one fails; negative if none does

}  // namespace

// These take the place of the C library's, to show what happens where a file system refuses.
extern "C" int link(char const* ip_from, char const* ip_to) noexcept {
  if (has_hard_links) return linkat(AT_FDCWD, ip_from, AT_FDCWD, ip_to, 0);
  errno = EPERM;
  return -1;
}
extern "C" int rename(char const* ip_from, char const* ip_to) noexcept {
  if (renames_that_succeed-- != 0) return renameat(AT_FDCWD, ip_from, AT_FDCWD, ip_to);
  errno = EIO;
  return -1;
}

namespace common {
namespace {

namespace fs = std::filesystem;
using lum::test::Throws;

// Every test has a folder of its own, and runs with and without hard links.
class OutputFilesTest : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "lum-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    m_folder = name;
    has_hard_links = GetParam();
  }
  void TearDown() override {
    has_hard_links = true;
    renames_that_succeed = -1;
    fs::remove_all(m_folder);
  }

  std::string In(std::string const& i_name) const { return (m_folder / i_name).string(); }
  std::string Put(std::string const& i_name, std::string const& i_text) const {
    std::ofstream(In(i_name)) << i_text;
    return In(i_name);
  }
  static void Write(OutputFile& io_file, std::string const& i_text) {
    io_file.Write([&](std::FILE* op_stream) { std::fputs(i_text.c_str(), op_stream); });
  }

  // The contents of the regular files in the folder, and "/" for all others.
  std::map<std::string, std::string> GetFiles() const {
    std::map<std::string, std::string> files;
    for (auto const& entry : fs::recursive_directory_iterator(m_folder)) {
      std::string& text = files[entry.path().lexically_relative(m_folder).string()];
      text = "/";
      std::error_code loop;
      if (!entry.is_regular_file(loop)) continue;
      std::ifstream file(entry.path());
      text.assign(std::istreambuf_iterator<char>(file), {});
    }
    return files;
  }
  std::set<std::string> GetTemporaryFiles() const {
    std::set<std::string> names;
    for (auto const& [name, text] : GetFiles()) {
      if (fs::path(name).filename().string().starts_with(".lum-")) names.insert(name);
    }
    return names;
  }
  static mode_t GetPermissions(std::string const& i_path) {
    struct stat status {};
    EXPECT_EQ(stat(i_path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }
  static ino_t GetNode(std::string const& i_path) {
    struct stat status {};
    EXPECT_EQ(lstat(i_path.c_str(), &status), 0);
    return status.st_ino;
  }

  // Expects that Publish refuses because of the second of the old files, and that every path is as it was.
  template <class Change>
  void ExpectTakenBack(Change const& i_change, std::string const& i_reason) {
    ino_t const old = GetNode(Put("old", "old"));
    Put("second", "second");
    std::map<std::string, std::string> before;
    {
      OutputFiles files;
      Write(files.Add(In("new")), "1");
      Write(files.Add(In("old")), "2");
      Write(files.Add(In("second")), "3");
      Write(files.Add(In("last")), "4");
      i_change();
      before = GetFiles();
      for (std::string const& name : GetTemporaryFiles()) before.erase(name);
      std::string const text = "cannot write " + In("second") + ": " + i_reason;
      EXPECT_TRUE(Throws<std::runtime_error>([&] { files.Publish(); }, text));
    }
    EXPECT_EQ(GetFiles(), before);
    EXPECT_EQ(GetNode(In("old")), old) << "the same file, not a copy";
  }

  fs::path m_folder;
};

INSTANTIATE_TEST_SUITE_P(HardLinks, OutputFilesTest, testing::Bool(),
                         [](auto const& i_info) { return i_info.param ? "Yes" : "No"; });

TEST_P(OutputFilesTest, AllAppearTogether) {
  Put("b", "old");
  {
    OutputFiles files;
    Write(files.Add(In("a")), "A");
    Write(files.Add(In("b")), "B");
    EXPECT_FALSE(fs::exists(In("a")));
    EXPECT_EQ(GetFiles()["b"], "old");
    EXPECT_EQ(GetTemporaryFiles().size(), 2U);
    files.Publish();
  }
  EXPECT_EQ(GetFiles(), (std::map<std::string, std::string>{{"a", "A"}, {"b", "B"}}));
}

TEST_P(OutputFilesTest, NothingIsPublishedBeforeAllAreWritten) {
  OutputFiles files;
  Write(files.Add(In("a")), "A");
  files.Add(In("b"));
  EXPECT_TRUE(Throws<std::logic_error>([&] { files.Publish(); }, In("b") + " has not been written"));
  EXPECT_FALSE(fs::exists(In("a")));
}

TEST_P(OutputFilesTest, AnExceptionLeavesNoTemporaryFile) {
  std::string const old = Put("a", "old");
  auto const write = [&] {
    OutputFiles files;
    OutputFile& file = files.Add(old);
    Write(files.Add(In("b")), "B");
    file.Write([](std::FILE* op_stream) {
      std::fputs("half", op_stream);
      throw std::runtime_error("enough");
    });
  };
  EXPECT_TRUE(Throws<std::runtime_error>(write, "enough"));
  EXPECT_EQ(GetFiles(), (std::map<std::string, std::string>{{"a", "old"}}));
}

TEST_P(OutputFilesTest, ADelayedSignalLeavesNoTemporaryFile) {
  auto const write = [&](int i_signal, bool i_is_published) {
    OutputFiles files;
    OutputFile& file = files.Add(In("a"));
    files.DelaySignals();
    file.Write([&](std::FILE* op_stream) {
      std::fputs("A", op_stream);
      std::raise(i_signal);
    });
    if (i_is_published) files.Publish();
  };
  for (int const signal : {SIGHUP, SIGINT, SIGTERM}) {
    EXPECT_EXIT(write(signal, false), testing::KilledBySignal(signal), "");
    EXPECT_TRUE(GetFiles().empty());
    EXPECT_EXIT(write(signal, true), testing::KilledBySignal(signal), "");
    EXPECT_EQ(GetFiles(), (std::map<std::string, std::string>{{"a", "A"}}));
    fs::remove(In("a"));
  }
}

// The limit of a file's size takes the part of a full disk.
TEST_P(OutputFilesTest, AFullDiskLeavesTheOldFile) {
  std::string const old = Put("a", "old");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit const limit = {1 << 16, before.rlim_max};
  auto const signal_before = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  for (std::size_t const size : {(std::size_t{1} << 16) + 1, std::size_t{1} << 20}) {
    auto const write = [&] {
      OutputFiles files;
      Write(files.Add(old), std::string(size, 'x'));
    };
    EXPECT_TRUE(Throws<std::runtime_error>(write, "cannot write " + old + ": File too large"));
  }
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, signal_before);
  EXPECT_EQ(GetFiles(), (std::map<std::string, std::string>{{"a", "old"}}));
}

TEST_P(OutputFilesTest, PermissionsAreThoseOfAnOrdinaryFile) {
  mode_t const before = umask(027);
  std::string const old = Put("old", "old");
  ASSERT_EQ(chmod(old.c_str(), 0604), 0);
  OutputFiles files;
  Write(files.Add(In("new")), "1");
  Write(files.Add(old), "2");
  for (std::string const& name : GetTemporaryFiles()) EXPECT_EQ(GetPermissions(In(name)) & ~0644U, 0U);
  files.Publish();
  umask(before);
  EXPECT_EQ(GetPermissions(In("new")), 0640U);
  EXPECT_EQ(GetPermissions(old), 0604U) << "as if it had been overwritten";
}

TEST_P(OutputFilesTest, TemporaryFilesHaveOtherNamesEachTime) {
  std::set<std::string> names;
  for (int run = 0; run < 20; ++run) {
    OutputFiles files;
    Write(files.Add(In("a")), "A");
    names.merge(GetTemporaryFiles());
  }
  EXPECT_EQ(names.size(), 20U);
}

TEST_P(OutputFilesTest, ALinkStaysAndItsTargetIsWritten) {
  fs::create_directory(In("elsewhere"));
  std::string const target = Put("elsewhere/target", "old");
  fs::create_symlink("elsewhere/target", In("first"));
  fs::create_symlink("first", In("second"));
  OutputFiles files;
  Write(files.Add(In("second")), "new");
  EXPECT_TRUE(GetTemporaryFiles().begin()->starts_with("elsewhere/"));
  files.Publish();
  EXPECT_EQ(GetFiles()["elsewhere/target"], "new");
  EXPECT_TRUE(fs::is_symlink(In("first")));
  EXPECT_TRUE(fs::is_symlink(In("second")));
}

TEST_P(OutputFilesTest, PathsThatNameNoRegularFileAreRefused) {
  ASSERT_EQ(mkfifo(In("fifo").c_str(), 0666), 0);
  fs::create_symlink(In("loop"), In("loop"));
  fs::create_symlink(In("nothing"), In("broken"));
  Put("file", "x");
  OutputFiles files;
  auto const expect_refusal = [&](std::string const& i_path, std::string const& i_reason) {
    EXPECT_TRUE(
        Throws<std::runtime_error>([&] { files.Add(i_path); }, "cannot write " + i_path + ": " + i_reason));
  };
  expect_refusal(In("fifo"), "it is not a regular file");
  expect_refusal("/dev/null", "it is not a regular file");
  expect_refusal(m_folder.string(), "it is a folder");
  expect_refusal(In("."), "it is a folder");
  expect_refusal(In("new/"), "it names no file");
  expect_refusal("", "it names no file");
  expect_refusal(In("no/folder"), "No such file or directory");
  expect_refusal(In("file/x"), "Not a directory");
  expect_refusal(In("broken"), "it is a link to nothing");
  expect_refusal(In("loop"), "Too many levels of symbolic links");
  expect_refusal(In(std::string(300, 'x')), "File name too long");
  // What was refused is not published.
  Write(files.Add(In("good")), "good");
  files.Publish();
  EXPECT_EQ(GetFiles()["good"], "good");
}

TEST_P(OutputFilesTest, TheSameFileIsRefusedByWhateverName) {
  std::string const old = Put("old", "old");
  fs::create_directory(In("folder"));
  fs::create_directory_symlink("folder", In("alias"));
  ASSERT_EQ(linkat(AT_FDCWD, old.c_str(), AT_FDCWD, In("hard").c_str(), 0), 0);
  fs::create_symlink("old", In("link"));
  OutputFiles files;
  files.Add(old);
  files.Add(In("folder/new"));
  for (char const* const name : {"old", "./old", "folder/../old", "hard", "link"}) {
    std::string const text = "cannot write " + In(name) + ": it is the output " + old;
    EXPECT_TRUE(Throws<std::runtime_error>([&] { files.Add(In(name)); }, text));
  }
  for (char const* const name : {"folder/new", "folder/./new", "alias/new", "alias/../folder/new"}) {
    std::string const text = "cannot write " + In(name) + ": it is the output " + In("folder/new");
    EXPECT_TRUE(Throws<std::runtime_error>([&] { files.Add(In(name)); }, text));
  }
}

TEST_P(OutputFilesTest, RelativePathsAreComparedToo) {
  fs::path const before = fs::current_path();
  fs::current_path(m_folder);
  Put("old", "old");
  OutputFiles files({"in.nii"});
  Write(files.Add("new"), "new");
  Write(files.Add("old"), "new");
  EXPECT_TRUE(Throws<std::runtime_error>([&] { files.Add(In("new")); },
                                         "cannot write " + In("new") + ": it is the output new"));
  EXPECT_TRUE(Throws<std::runtime_error>([&] { files.Add(In("in.nii")); },
                                         "cannot write " + In("in.nii") + ": it is the input in.nii"));
  fs::current_path(before);  // which has no effect on paths that have been added
  files.Publish();
  EXPECT_EQ(GetFiles(), (std::map<std::string, std::string>{{"new", "new"}, {"old", "new"}}));
}

TEST_P(OutputFilesTest, AllPartsOfAVolumeAreInputs) {
  for (char const* const input : {"a.hdr", "a.img", "a.nii", "a.hdr.gz", "a.IMG.GZ", "a.Nii.gz", "a"}) {
    for (char const* const part : {"a.hdr", "a.img", "a.nii", "a.hdr.gz", "a.img.gz", "a.IMG"}) {
      OutputFiles files({In(input)});
      std::string const what = std::string(part) == input ? "it is the input " : "it belongs to the input ";
      EXPECT_TRUE(Throws<std::runtime_error>([&] { files.Add(In(part)); },
                                             "cannot write " + In(part) + ": " + what + In(input)));
    }
    OutputFiles files({In(input)});
    files.Add(In("a.png"));
    files.Add(In("b.img"));
    files.Add(In("aa.hdr"));
  }
}

TEST_P(OutputFilesTest, FoldersAreRemovedUnlessTheFilesArePublished) {
  {
    OutputFiles files;
    files.AddFolder(In("new/folder/"));
    Write(files.Add(In("new/folder/a")), "A");
  }
  EXPECT_TRUE(GetFiles().empty());
  fs::create_directory(In("old"));
  { OutputFiles().AddFolder(In("old")); }
  EXPECT_TRUE(fs::exists(In("old")));
  OutputFiles files;
  files.AddFolder(In("new"));
  Write(files.Add(In("new/a")), "A");
  files.Publish();
  EXPECT_EQ(GetFiles()["new/a"], "A");
  EXPECT_TRUE(Throws<std::runtime_error>([&] { files.AddFolder(In("new/a")); },
                                         "cannot write " + In("new/a") + ": Not a directory"));
}

// The other program is the change that these tests make between the last Write and Publish.
TEST_P(OutputFilesTest, AFileThatIsReplacedInTheMeantimeIsKept) {
  ExpectTakenBack(
      [&] {
        Put("other", "other");
        renameat(AT_FDCWD, In("other").c_str(), AT_FDCWD, In("second").c_str());
      },
      "another program has changed it in the meantime");
}

TEST_P(OutputFilesTest, ALinkThatIsPlantedInTheMeantimeIsNotFollowed) {
  ExpectTakenBack(
      [&] {
        Put("victim", "victim");
        unlink(In("second").c_str());
        fs::create_symlink("victim", In("second"));
      },
      "another program has changed it in the meantime");
}

TEST_P(OutputFilesTest, AFolderThatAppearsInTheMeantimeIsKept) {
  ExpectTakenBack(
      [&] {
        unlink(In("second").c_str());
        fs::create_directory(In("second"));
      },
      "another program has changed it in the meantime");
}

TEST_P(OutputFilesTest, AFileThatAppearsInTheMeantimeIsKept) {
  std::string const old = Put("old", "old");
  OutputFiles files;
  Write(files.Add(old), "1");
  Write(files.Add(In("new")), "2");
  Put("new", "other");
  EXPECT_TRUE(Throws<std::runtime_error>(
      [&] { files.Publish(); },
      "cannot write " + In("new") + ": another program has changed it in the meantime"));
  EXPECT_EQ(GetFiles()["old"], "old");
  EXPECT_EQ(GetFiles()["new"], "other");
}

// With hard links, a file is renamed when it replaces another. Without them, the old file is renamed too, and
// so is every new one.
TEST_P(OutputFilesTest, IfAFileCannotBeRenamedTheEarlierOnesAreTakenBack) {
  ExpectTakenBack([] { renames_that_succeed = GetParam() ? 1 : 4; }, "Input/output error");
}

TEST_P(OutputFilesTest, IfAnOldFileCannotBeRenamedTheEarlierOnesAreTakenBack) {
  if (GetParam()) has_hard_links = false;  // the same for both parameters
  ExpectTakenBack([] { renames_that_succeed = 3; }, "Input/output error");
}

}  // namespace
}  // namespace common
