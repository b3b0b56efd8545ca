#include <gtest/gtest.h>
#include <nifti1.h>

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/unit/examples/ProgramTest.h"

namespace {

// A line of the table.
struct Row {
  long voxels = 0;
  long faces = 0;
  long edges = 0;
  long vertices = 0;
  long surface = 0;
  long solid = 0;
  long pinched_edges = 0;
  long pinched_vertices = 0;

  friend bool operator==(Row const&, Row const&) = default;
  friend std::ostream& operator<<(std::ostream& io_stream, Row const& i_row) {
    return io_stream << i_row.voxels << ' ' << i_row.faces << ' ' << i_row.edges << ' ' << i_row.vertices
                     << ' ' << i_row.surface << ' ' << i_row.solid << ' ' << i_row.pinched_edges << ' '
                     << i_row.pinched_vertices;
  }
};

using Size = std::array<short, 3>;

// Counts the elements of a solid by another method than the program: by the cells around each element of the
// grid.
class Grid {
 public:
  Grid(Size const& i_size, std::vector<std::int16_t> i_values)
      : m_size(i_size), m_values(std::move(i_values)) {}

  Row Count() const {
    Row row;
    for (int z = 0; z <= 2 * m_size[2]; ++z) {
      for (int y = 0; y <= 2 * m_size[1]; ++y) {
        for (int x = 0; x <= 2 * m_size[0]; ++x) CountElement({x, y, z}, row);
      }
    }
    row.surface = row.vertices - row.edges + row.faces;
    return row;
  }

 private:
  bool IsInside(int i_x, int i_y, int i_z) const {
    bool const is_in_grid =
        i_x >= 0 && i_y >= 0 && i_z >= 0 && i_x < m_size[0] && i_y < m_size[1] && i_z < m_size[2];
    if (!is_in_grid) return false;
    int const index = i_x + m_size[0] * (i_y + m_size[1] * i_z);
    return m_values[static_cast<std::size_t>(index)] != 0;
  }

  // Along an axis, an element at an even place lies between two cells. One at an odd place extends through
  // one cell, which counts twice.
  std::bitset<8> GetCellsAround(std::array<int, 3> const& i_place) const {
    std::bitset<8> cells;
    for (unsigned side = 0; side < 8; ++side) {
      std::array<int, 3> cell{};
      for (unsigned axis = 0; axis < 3; ++axis) {
        int const at = i_place[axis];
        cell[axis] = at % 2 != 0 ? at / 2 : at / 2 - 1 + static_cast<int>(side >> axis & 1U);
      }
      cells[side] = IsInside(cell[0], cell[1], cell[2]);
    }
    return cells;
  }

  void CountElement(std::array<int, 3> const& i_place, Row& io_row) const {
    int const dimension = i_place[0] % 2 + i_place[1] % 2 + i_place[2] % 2;
    std::bitset<8> const cells = GetCellsAround(i_place);
    if (cells.none()) return;
    io_row.solid += dimension % 2 == 0 ? 1 : -1;
    if (dimension == 3) ++io_row.voxels;
    if (cells.all()) return;
    if (dimension == 2) ++io_row.faces;
    if (dimension == 1) ++io_row.edges;
    if (dimension == 0) ++io_row.vertices;
    bool const is_pinched = CountPieces(cells) > 1 || CountPieces(~cells) > 1;
    if (dimension == 1 && is_pinched) ++io_row.pinched_edges;
    if (dimension == 0 && is_pinched) ++io_row.pinched_vertices;
  }

  // The number of connected sets of cells. Cells are neighbours if their numbers differ in one bit.
  static int CountPieces(std::bitset<8> i_cells) {
    int pieces = 0;
    for (unsigned cell = 0; cell < 8; ++cell) {
      if (!i_cells[cell]) continue;
      ++pieces;
      Erase(cell, i_cells);
    }
    return pieces;
  }
  static void Erase(unsigned i_cell, std::bitset<8>& io_cells) {
    if (!io_cells[i_cell]) return;
    io_cells.reset(i_cell);
    for (unsigned const bit : {1U, 2U, 4U}) Erase(i_cell ^ bit, io_cells);
  }

  Size m_size;
  std::vector<std::int16_t> m_values;
};

class Euler : public test::ProgramTest {
 protected:
  Euler() : ProgramTest("euler", EULER_PROGRAM) {}

  std::map<std::string, Row> ReadTable() const {
    std::map<std::string, Row> table;
    std::istringstream lines(ReadText(In("out")));
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
      std::string const name = line.substr(0, 18);
      Row& row = table[name.substr(0, name.find_last_not_of(' ') + 1)];
      std::istringstream numbers(line.substr(18));
      numbers >> row.voxels >> row.faces >> row.edges >> row.vertices >> row.surface >> row.solid >>
          row.pinched_edges >> row.pinched_vertices;
      EXPECT_TRUE(numbers) << line;
    }
    return table;
  }

  Row CountVolume(Size const& i_size, std::vector<std::int16_t> const& i_values) {
    std::string const path = WriteVolume("a.nii", DT_INT16, i_size, i_values, m_straight);
    EXPECT_EQ(Run(path + " --level 1"), 0) << ReadText(In("err"));
    return ReadTable()["volume"];
  }
};

TEST_F(Euler, SolidsHaveTheirCharacteristics) {
  ASSERT_EQ(Run(""), 0);
  auto const table = ReadTable();
  ASSERT_EQ(table.size(), 6U);
  std::map<std::string, std::array<long, 2>> const smooth = {
      {"ball", {2, 1}}, {"hollow ball", {4, 2}}, {"torus", {0, 0}}, {"double torus", {-2, -1}}};
  for (auto const& [name, characteristics] : smooth) {
    Row const& row = table.at(name);
    EXPECT_EQ(row.surface, characteristics[0]) << name;
    EXPECT_EQ(row.solid, characteristics[1]) << name;
    EXPECT_EQ(row.vertices - row.edges + row.faces, row.surface) << name;
    EXPECT_EQ(row.edges, 2 * row.faces) << name << ": four edges to a face, two faces to an edge";
    EXPECT_EQ(row.pinched_vertices, 0) << name;
  }
}

// Two boxes of 20 x 20 x 20: each has 6 * 400 faces, twice as many edges, and two more vertices than faces.
TEST_F(Euler, TouchingBoxesShareTheirCommonElements) {
  ASSERT_EQ(Run("--radius 20"), 0);
  auto const table = ReadTable();
  EXPECT_EQ(table.at("boxes at an edge"), (Row{16000, 4800, 9600 - 20, 4804 - 21, 3, 1, 20, 21}));
  EXPECT_EQ(table.at("boxes at a corner"), (Row{16000, 4800, 9600, 4804 - 1, 3, 1, 0, 1}));
}

TEST_F(Euler, OneVoxelIsACube) {
  EXPECT_EQ(CountVolume({1, 1, 1}, {1}), (Row{1, 6, 12, 8, 2, 1, 0, 0}));
  EXPECT_EQ(CountVolume({2, 1, 1}, {1, 0}), (Row{1, 6, 12, 8, 2, 1, 0, 0}));
  EXPECT_EQ(CountVolume({2, 1, 1}, {0, 0}), Row());
}

TEST_F(Euler, AgreesWithTheCountByCells) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  Size const size = {6, 5, 4};
  for (unsigned const share : {1U, 3U, 5U, 7U}) {
    std::vector<std::int16_t> values(120);
    for (std::int16_t& value : values) value = random() % 8 < share ? 1 : 0;
    Row const expected = Grid(size, values).Count();
    EXPECT_GT(expected.pinched_vertices, 0) << "the volume has no pinched vertex";
    EXPECT_EQ(CountVolume(size, values), expected) << share << " eighths";
  }
}

TEST_F(Euler, ATooCoarseSolidIsWrong) {
  EXPECT_EQ(Run("--radius 4"), 1);
  EXPECT_EQ(ReadText(In("err")), "euler: double torus has a wrong V-E+F\n");
  EXPECT_EQ(ReadTable().size(), 4U);
}

TEST_F(Euler, RefusesBadArguments) {
  std::string const input = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight);
  ExpectRefusal(input, "a volume needs --level V", {});
  ExpectRefusal("--level 3", "--level has no effect without a volume", {});
  ExpectRefusal(input + " " + input + " --level 3", "usage: euler", {});
  ExpectRefusal(input + " --level high", "--level takes a number, not \"high\"", {});
  ExpectRefusal("--radius 0", "--radius takes a whole number from 1 to 200", {});
  ExpectRefusal("--radius 201", "--radius takes a whole number from 1 to 200", {});
  ExpectRefusal("--solid torus", "unknown option --solid", {});
  ExpectRefusal(In("missing.nii") + " --level 3", "cannot open", {});
}

}  // namespace
