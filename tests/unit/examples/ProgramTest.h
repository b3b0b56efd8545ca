#pragma once

#include <gtest/gtest.h>
#include <nifti1.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// Runs an example program. Each test has a folder of its own, which is removed at its end.
class ProgramTest : public testing::Test {
 protected:
  using Affine = std::array<std::array<float, 4>, 3>;  // rows

  ProgramTest(std::string i_name, std::string const& i_program)
      : m_name(std::move(i_name)), m_program(Quote(i_program)) {}

  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "lum-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    m_folder = name;
  }
  void TearDown() override { std::filesystem::remove_all(m_folder); }

  std::string In(std::string const& i_name) const { return (m_folder / i_name).string(); }

  // Writes a volume of 5 x 4 x 3 voxels, each with another value.
  template <class T>
  std::string WriteVolume(std::string const& i_name, int i_datatype, Affine const& i_affine,
                          float i_slope = 0, float i_intercept = 0) {
    std::vector<T> values(60);
    for (int voxel = 0; voxel < 60; ++voxel) {
      values[static_cast<std::size_t>(voxel)] = static_cast<T>(ValueOf(voxel));
    }
    return WriteVolume(i_name, i_datatype, {5, 4, 3}, values, i_affine, i_slope, i_intercept);
  }

  template <class T>
  std::string WriteVolume(std::string const& i_name, int i_datatype, std::array<short, 3> const& i_size,
                          std::vector<T> const& i_values, Affine const& i_affine, float i_slope = 0,
                          float i_intercept = 0) {
    nifti_1_header header{};
    header.sizeof_hdr = 348;
    std::array<short, 8> const dimensions = {3, i_size[0], i_size[1], i_size[2], 1, 1, 1, 1};
    std::copy(dimensions.begin(), dimensions.end(), std::begin(header.dim));
    header.datatype = static_cast<short>(i_datatype);
    header.bitpix = static_cast<short>(8 * sizeof(T));
    std::fill(std::begin(header.pixdim), std::end(header.pixdim), 1.0F);
    header.vox_offset = 352;
    header.scl_slope = i_slope;
    header.scl_inter = i_intercept;
    header.sform_code = NIFTI_XFORM_SCANNER_ANAT;
    std::copy(i_affine[0].begin(), i_affine[0].end(), std::begin(header.srow_x));
    std::copy(i_affine[1].begin(), i_affine[1].end(), std::begin(header.srow_y));
    std::copy(i_affine[2].begin(), i_affine[2].end(), std::begin(header.srow_z));
    std::copy_n("n+1", 4, std::begin(header.magic));

    std::vector<char> bytes(352 + i_values.size() * sizeof(T));
    std::memcpy(bytes.data(), &header, sizeof(header));
    std::memcpy(&bytes[352], i_values.data(), i_values.size() * sizeof(T));
    return WriteBytes(i_name, bytes);
  }

  // Quotes a word for the shell: the path of the repository may hold any character.
  static std::string Quote(std::string const& i_word) {
    return "'" + std::regex_replace(i_word, std::regex("'"), R"('\'')") + "'";
  }

  static double ValueOf(int i_voxel) { return 7.0 * i_voxel - 100; }

  std::string WriteBytes(std::string const& i_name, std::vector<char> const& i_bytes) const {
    std::ofstream(In(i_name), std::ios::binary)
        .write(i_bytes.data(), static_cast<std::streamsize>(i_bytes.size()));
    return In(i_name);
  }

  static std::vector<char> ReadBytes(std::string const& i_path) {
    std::ifstream file(i_path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static std::string ReadText(std::string const& i_path) {
    std::vector<char> const bytes = ReadBytes(i_path);
    return {bytes.begin(), bytes.end()};
  }

  // Runs the program, with its output streams in the files "out" and "err".
  int Run(std::string const& i_arguments) const {
    std::string const command = m_program + " " + i_arguments + " >" + In("out") + " 2>" + In("err");
    int const status = std::system(command.c_str());  // NOLINT(concurrency-mt-unsafe): one thread
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // Whether the folder of the test or one in it has a temporary file of an output.
  bool HasTemporaryFile() const {
    std::filesystem::recursive_directory_iterator const entries(m_folder);
    return std::any_of(begin(entries), end(entries), [](auto const& i_entry) {
      return i_entry.path().filename().string().starts_with(".lum-");
    });
  }

  // Expects a failure, one line on standard error that contains the text, and none of the outputs.
  void ExpectRefusal(std::string const& i_arguments, std::string const& i_text,
                     std::vector<std::string> const& i_outputs) const {
    SCOPED_TRACE(i_arguments);
    EXPECT_EQ(Run(i_arguments), 1);
    std::string const line = ReadText(In("err"));
    EXPECT_TRUE(line.starts_with(m_name + ": ")) << line;
    EXPECT_NE(line.find(i_text), std::string::npos) << line;
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
    EXPECT_TRUE(ReadBytes(In("out")).empty());
    for (std::string const& output : i_outputs) {
      EXPECT_FALSE(std::filesystem::is_regular_file(output)) << output;
    }
    EXPECT_FALSE(HasTemporaryFile());
  }

  Affine const m_straight = {{{1, 0, 0, -2}, {0, 1, 0, -1}, {0, 0, 1, 5}}};
  std::string m_name;
  std::string m_program;  // quoted
  std::filesystem::path m_folder;
};

}  // namespace test
