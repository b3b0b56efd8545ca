#include <gtest/gtest.h>
#include <nifti1.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>

#include "tests/unit/examples/ProgramTest.h"

// What every example program does with standard output and with --help.
namespace {

class EveryProgram : public test::ProgramTest {
 protected:
  EveryProgram() : ProgramTest("", "") {}

  // Calls the function with the name of each program, after m_program has been set.
  template <class Visit>
  void ForEach(Visit const& i_visit) {
    std::istringstream names(PROGRAMS);
    for (std::string name; names >> name;) {
      SCOPED_TRACE(name);
      std::filesystem::path const folder = name.starts_with("recipe_") ? "recipes" : name;
      m_program = Quote((EXAMPLES_FOLDER / folder / name).string());
      i_visit(name);
    }
  }

  // Words with which the program prints and takes little time.
  std::string GetArguments(std::string const& i_name) {
    std::map<std::string, std::string> const arguments = {
        {"euler", "--radius 5"},
        {"registration", In("a.svg")},
        {"reslice", WriteVolume<float>("a.nii", DT_FLOAT32, m_straight) + " " + In("a.png")},
        {"scene", In("a.png") + " --nodes 10 --frames 1"},
        {"surface", "--solid sphere --mesh " + In("a.ply")}};
    auto const found = arguments.find(i_name);
    return found == arguments.end() ? "" : found->second;
  }

  int RunWithOutputTo(std::string const& i_redirection, std::string const& i_arguments) const {
    std::string const command = m_program + " " + i_arguments + " " + i_redirection + " 2>" + In("err");
    int const status = std::system(command.c_str());  // NOLINT(concurrency-mt-unsafe): one thread
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
};

TEST_F(EveryProgram, FailsIfStandardOutputIsFullOrClosed) {
  int programs = 0;
  ForEach([&](std::string const& i_name) {
    ++programs;
    std::string const arguments = GetArguments(i_name);
    EXPECT_EQ(Run(arguments), 0) << ReadText(In("err"));
    EXPECT_NE(ReadText(In("out")), "");
    EXPECT_EQ(ReadText(In("err")), "");
    for (std::string const redirection : {">/dev/full", ">&-"}) {
      EXPECT_EQ(RunWithOutputTo(redirection, arguments), 1) << redirection;
      EXPECT_EQ(ReadText(In("err")), i_name + ": cannot write to standard output\n");
    }
  });
  EXPECT_EQ(programs, 20);
}

TEST_F(EveryProgram, PrintsItsUsage) {
  std::map<std::string, std::string> const last_lines = {
      {"cube", ""},          {"euler", "--level"},  {"registration", "--seed"},
      {"reslice", "--size"}, {"scene", "--frames"}, {"surface", "--quiet"}};
  std::size_t programs = 0;
  ForEach([&](std::string const& i_name) {
    auto const last_line = last_lines.find(i_name);
    if (last_line == last_lines.end()) return;  // it takes no words
    ++programs;
    for (std::string const arguments : {"--help", "--nothing x --help"}) {
      EXPECT_EQ(Run(arguments), 0);
      EXPECT_EQ(ReadText(In("err")), "");
      std::string const text = ReadText(In("out"));
      EXPECT_TRUE(text.starts_with("usage: " + i_name)) << text;
      EXPECT_NE(text.find(last_line->second), std::string::npos) << text;
      EXPECT_GT(std::count(text.begin(), text.end(), '\n'), 2) << text;
    }
    EXPECT_EQ(RunWithOutputTo(">/dev/full", "--help"), 1);
    // The usage as an error is one line.
    EXPECT_EQ(Run("a b c d"), 1);
    std::string const line = ReadText(In("err"));
    EXPECT_TRUE(line.starts_with(i_name + ": usage: " + i_name)) << line;
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
  });
  EXPECT_EQ(programs, last_lines.size());
}

}  // namespace
