#include <gtest/gtest.h>
#include <nifti1.h>

#include <string>

#include "tests/unit/examples/ProgramTest.h"

// Options that would be ignored are refused, and messages name what the user typed.
namespace {

class OptionsOfReslice : public test::ProgramTest {
 protected:
  OptionsOfReslice() : ProgramTest("reslice", RESLICE_PROGRAM) {}
};

class OptionsOfSurface : public test::ProgramTest {
 protected:
  OptionsOfSurface() : ProgramTest("surface", SURFACE_PROGRAM) {}
};

class OptionsOfEuler : public test::ProgramTest {
 protected:
  OptionsOfEuler() : ProgramTest("euler", EULER_PROGRAM) {}
};

TEST_F(OptionsOfReslice, ThatWouldBeIgnoredAreRefused) {
  std::string const paths = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight) + " " + In("refused.png");
  ExpectRefusal(paths + " --axis 1,0,0", "--axis has no effect without --angle", {In("refused.png")});
  ExpectRefusal(paths + " --size 3 --size 4", "--size is given twice", {In("refused.png")});
}

TEST_F(OptionsOfReslice, AreNamedInMessages) {
  std::string const paths = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight) + " " + In("refused.png");
  ExpectRefusal(paths + " --axis 0,0,0 --angle 3", "--axis takes an axis X,Y,Z whose length is not zero",
                {In("refused.png")});
}

TEST_F(OptionsOfReslice, AreOneLineOfAnErrorWhateverTheyContain) {
  std::string const output = " " + In("refused.png");
  ExpectRefusal("'no\nsuch\tfile'" + output, "cannot open no?such?file", {In("refused.png")});
  ExpectRefusal("'--no\x1b[2Jsuch'" + output, "unknown option --no?[2Jsuch", {In("refused.png")});
}

TEST_F(OptionsOfSurface, ThatWouldBeIgnoredAreRefused) {
  std::string const mesh = " --mesh " + In("refused.ply");
  std::string const input = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight);
  auto const expect_refusal = [&](std::string const& i_arguments, std::string const& i_text) {
    ExpectRefusal(i_arguments, i_text, {In("refused.ply")});
  };
  expect_refusal("--solid die --clip 1,0,0,0" + mesh,
                 "--clip has no effect without --picture or --turntable");
  expect_refusal("--solid die --level 3" + mesh, "--level has no effect on --solid");
  expect_refusal("--solid die" + mesh + mesh, "--mesh is given twice");
  expect_refusal("--solid die --solid die" + mesh, "--solid is given twice");
  expect_refusal("--solid die --quiet --quiet" + mesh, "--quiet is given twice");
  expect_refusal(input + mesh, "a volume needs --level V");
  expect_refusal(input + " --solid die" + mesh, "give a volume or --solid, not both");
  expect_refusal(input + " --level 3", "--mesh OUT.ply is missing");
}

TEST_F(OptionsOfEuler, ThatWouldBeIgnoredAreRefused) {
  std::string const input = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight);
  ExpectRefusal(input + " --level 3 --radius 5", "--radius has no effect on a volume", {});
  ExpectRefusal("--level 3", "--level has no effect without a volume", {});
  ExpectRefusal(input, "a volume needs --level V", {});
  ExpectRefusal("--radius 5 --radius 6", "--radius is given twice", {});
}

}  // namespace
