#include <fcntl.h>
#include <gtest/gtest.h>
#include <nifti1.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "tests/unit/examples/ProgramTest.h"

// The programs lose no file of the user, whatever paths they are given.
namespace {

namespace fs = std::filesystem;

class KeptFiles : public test::ProgramTest {
 protected:
  using ProgramTest::ProgramTest;

  std::string WriteInput() { return WriteVolume<float>("in.nii", DT_FLOAT32, m_straight); }

  // Writes a header and its voxels as two files and returns the path of the header.
  std::string WritePair(std::string const& i_voxels) {
    std::vector<char> const bytes = ReadBytes(WriteVolume<float>("single.nii", DT_FLOAT32, m_straight));
    std::vector<char> header(bytes.begin(), bytes.begin() + 352);
    std::fill_n(&header[108], 4, '\0');  // the offset of the voxels
    std::copy_n("ni1", 4, &header[344]);
    WriteBytes(i_voxels, {bytes.begin() + 352, bytes.end()});
    return WriteBytes("pair.hdr", header);
  }

  void ExpectRefusal(std::string const& i_arguments, std::string const& i_text) const {
    ProgramTest::ExpectRefusal(i_arguments, i_text, {});
  }

  // Expects a refusal that leaves the file as it is.
  void ExpectKept(std::string const& i_file, std::string const& i_arguments,
                  std::string const& i_text) const {
    std::vector<char> const before = ReadBytes(i_file);
    ASSERT_FALSE(before.empty());
    ExpectRefusal(i_arguments, i_text);
    EXPECT_EQ(ReadBytes(i_file), before) << i_file;
  }
};

class ResliceKeeps : public KeptFiles {
 protected:
  ResliceKeeps() : KeptFiles("reslice", RESLICE_PROGRAM) {}
};

class SurfaceKeeps : public KeptFiles {
 protected:
  SurfaceKeeps() : KeptFiles("surface", SURFACE_PROGRAM) {}
};

TEST_F(ResliceKeeps, ItsInput) {
  std::string const input = WriteInput();
  ExpectKept(input, input + " " + input, "cannot write " + input + ": it is the input");
  fs::create_directory(In("folder"));
  std::string const other_way = In("folder/../in.nii");
  ExpectKept(input, input + " " + other_way, "cannot write " + other_way + ": it is the input " + input);
  fs::create_symlink(input, In("link.png"));
  ExpectKept(input, input + " " + In("link.png"), "it is the input " + input);
  fs::create_hard_link(input, In("hard.png"));
  ExpectKept(input, input + " " + In("hard.png"), "it is the input " + input);
}

TEST_F(ResliceKeeps, BothHalvesOfAPair) {
  std::string const header = WritePair("pair.img");
  ASSERT_EQ(Run(header + " " + In("a.png")), 0) << ReadText(In("err"));
  std::string const voxels = In("pair.img");
  ExpectKept(voxels, header + " " + voxels, "cannot write " + voxels + ": it belongs to the input " + header);
  ExpectKept(header, voxels + " " + header, "cannot write " + header + ": it belongs to the input " + voxels);
  fs::create_hard_link(voxels, In("hard.png"));
  ExpectKept(voxels, header + " " + In("hard.png"), "it belongs to the input " + header);
}

TEST_F(ResliceKeeps, TheCompressedHalfOfAPair) {
  std::string const header = WritePair("pair.img.gz");
  ExpectKept(In("pair.img.gz"), header + " " + In("pair.img.gz"), "it belongs to the input " + header);
  // The next program would read these voxels instead of the compressed ones.
  ExpectRefusal(header + " " + In("pair.img"), "it belongs to the input " + header);
  EXPECT_FALSE(fs::exists(In("pair.img")));
}

TEST_F(ResliceKeeps, WhatIsNotARegularFile) {
  std::string const input = WriteInput();
  ASSERT_EQ(mkfifo(In("fifo").c_str(), 0666), 0);
  ExpectRefusal(input + " " + In("fifo"), "cannot write " + In("fifo") + ": it is not a regular file");
  EXPECT_TRUE(fs::is_fifo(In("fifo")));
  // A null device of the test's own: an error in the program must not harm the system's.
  if (mknod(In("null").c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0) {
    ExpectRefusal(input + " " + In("null"), "it is not a regular file");
    EXPECT_TRUE(fs::is_character_file(In("null")));
  }
  fs::create_symlink(In("fifo"), In("link"));
  ExpectRefusal(input + " " + In("link"), "it is not a regular file");
  EXPECT_TRUE(fs::is_symlink(In("link")));
  fs::create_symlink(In("nothing"), In("broken"));
  ExpectRefusal(input + " " + In("broken"), "it is a link to nothing");
  EXPECT_FALSE(fs::exists(In("nothing")));
}

TEST_F(ResliceKeeps, ALinkAndWritesItsTarget) {
  std::string const input = WriteInput();
  fs::create_directory(In("elsewhere"));
  WriteBytes("elsewhere/a.png", {'o', 'l', 'd'});
  fs::create_symlink("elsewhere/a.png", In("link.png"));
  ASSERT_EQ(Run(input + " " + In("link.png")), 0) << ReadText(In("err"));
  EXPECT_TRUE(fs::is_symlink(In("link.png")));
  EXPECT_EQ(ReadText(In("elsewhere/a.png")).substr(1, 3), "PNG");
  EXPECT_EQ(std::distance(fs::directory_iterator(In("elsewhere")), {}), 1);
}

TEST_F(ResliceKeeps, WhatLiesBesideTheOutput) {
  std::string const input = WriteInput();
  std::string const mine = WriteBytes("a.png.part", {'m', 'i', 'n', 'e'});
  ASSERT_EQ(Run(input + " " + In("a.png")), 0) << ReadText(In("err"));
  EXPECT_EQ(ReadText(mine), "mine");
  std::string const victim = WriteBytes("victim", {'v'});
  fs::create_symlink(victim, In("b.png.part"));
  ASSERT_EQ(Run(input + " " + In("b.png")), 0) << ReadText(In("err"));
  EXPECT_EQ(ReadText(victim), "v");
  EXPECT_TRUE(fs::is_symlink(In("b.png.part")));
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(In("b.png"))));
}

TEST_F(SurfaceKeeps, ItsInputAndBothHalvesOfAPair) {
  std::string const header = WritePair("pair.img");
  std::string const rest = " --level 100 --mesh ";
  ASSERT_EQ(Run(header + rest + In("a.ply")), 0) << ReadText(In("err"));
  ExpectKept(In("pair.img"), header + rest + In("pair.img"), "it belongs to the input " + header);
  ExpectKept(In("pair.img"), header + rest + In("b.ply") + " --picture " + In("pair.img"),
             "it belongs to the input " + header);
  ExpectKept(header, header + rest + header, "it is the input " + header);
  EXPECT_FALSE(fs::exists(In("b.ply")));
}

TEST_F(SurfaceKeeps, EachOutputFromTheOthers) {
  std::string const mesh = In("a.ply");
  std::string const solid = "--solid sphere --mesh " + mesh;
  ExpectRefusal(solid + " --picture " + mesh, "cannot write " + mesh + ": it is the output " + mesh);
  fs::create_directory(In("folder"));
  ExpectRefusal(solid + " --picture " + In("folder/../a.ply"), "it is the output " + mesh);
  WriteBytes("a.ply", {'o', 'l', 'd'});
  fs::create_hard_link(mesh, In("hard.png"));
  ExpectKept(mesh, solid + " --picture " + In("hard.png"), "it is the output " + mesh);
  fs::create_symlink(mesh, In("link.png"));
  ExpectKept(mesh, solid + " --picture " + In("link.png"), "it is the output " + mesh);
}

TEST_F(SurfaceKeeps, ItsOutputsFromTheTurntable) {
  std::string const frame = In("frames/frame-0001.png");
  std::string const turntable = " --turntable 2 " + In("frames");
  ExpectRefusal("--solid sphere --mesh " + frame + turntable,
                "cannot write " + frame + ": it is the output " + frame);
  EXPECT_FALSE(fs::exists(In("frames"))) << "the folder is removed too";
  ExpectRefusal("--solid sphere --mesh " + In("a.ply") + " --picture " + frame + turntable,
                "it is the output " + frame);
  ExpectRefusal("--solid sphere --mesh " + In("frames") + turntable,
                "cannot write " + In("frames") + ": it is a folder");
  std::string const input = WriteInput();
  fs::create_directory(In("frames"));
  fs::rename(input, frame);
  ExpectKept(frame, frame + " --level 100 --mesh " + In("a.ply") + turntable, "it is the input " + frame);
}

TEST_F(SurfaceKeeps, TheOldMeshIfAFrameCannotBeWritten) {
  fs::create_directories(In("frames/frame-0001.png"));
  std::string const mesh = WriteBytes("a.ply", {'o', 'l', 'd'});
  ExpectKept(mesh, "--solid sphere --mesh " + mesh + " --turntable 2 " + In("frames"), "it is a folder");
  EXPECT_FALSE(fs::exists(In("frames/frame-0000.png")));
}

// Run by a user who may write no file there, also if the test is run by root.
TEST_F(SurfaceKeeps, AReadOnlyFolder) {
  fs::create_directory(In("folder"));
  std::string const old = WriteBytes("folder/a.ply", {'o', 'l', 'd'});
  fs::permissions(In("folder"), fs::perms{0555});
  fs::permissions(m_folder, fs::perms{0777});
  if (geteuid() == 0) m_program = "setpriv --reuid 65534 --regid 65534 --clear-groups " + m_program;
  ExpectKept(old, "--solid sphere --mesh " + old, "cannot write " + old + ": Permission denied");
  ExpectRefusal("--solid sphere --mesh " + In("folder/b.ply"),
                "cannot write " + In("folder/b.ply") + ": Permission denied");
  ExpectRefusal("--solid sphere --mesh " + In("folder/b.ply") + " --turntable 2 " + In("folder/new"),
                "cannot write " + In("folder/new") + ": Permission denied");
  EXPECT_EQ(std::distance(fs::directory_iterator(In("folder")), {}), 1);
  fs::permissions(In("folder"), fs::perms{0755});
}

}  // namespace
