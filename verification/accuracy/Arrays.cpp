// Arrays of points and vectors, of all lengths that differ in the groups they are transformed in.

#include <geometry/Matrix.h>
#include <geometry/Quaternion.h>
#include <geometry/TransformArrays.h>

#include "Measure.h"

namespace accuracy {
namespace {

template <class T>
void MeasureMatrices(std::string const& i_precision, Inputs<T> io_inputs, std::size_t i_inputs) {
  char const* const kind = io_inputs.GetName();
  for (std::size_t done = 0, length = 1; done < i_inputs; done += 3 * length, length = length % 9 + 1) {
    std::array<T, 16> const a = io_inputs.Affine();
    lum::Matrix<T> const matrix(a.data());
    std::vector<lum::Point<T, 3>> points(length);
    std::vector<lum::Vector<T, 3>> vectors(length);
    for (std::size_t i = 0; i < length; ++i) {
      for (T& coordinate : points[i]) coordinate = io_inputs.Number();
      vectors[i] = points[i] - lum::Origin;
    }
    std::vector<lum::Point<T, 3>> moved(length);
    std::vector<lum::Vector<T, 3>> turned(length);
    TransformPoints(matrix, points, moved);
    TransformVectors(matrix, vectors, turned);
    for (std::size_t i = 0; i < length; ++i) {
      for (std::size_t row = 0; row < 3; ++row) {
        Sum sum;
        for (std::size_t k = 0; k < 3; ++k) sum.Add(ToExact(a[row + 4 * k]) * ToExact(points[i][k]));
        Compare(i_precision + " TransformVectors, each component", kind, 3, turned[i][row], sum.value,
                sum.terms);
        sum.Add(ToExact(a[row + 12]));
        Compare(i_precision + " TransformPoints, each coordinate", kind, 4, moved[i][row], sum.value,
                sum.terms);
      }
    }
  }
}

void MeasureQuaternions(Inputs<float> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0, length = 1; done < i_inputs; done += 3 * length, length = length % 9 + 1) {
    lum::Quaternionf const rotation{io_inputs.Direction(), io_inputs.Angle()};
    std::vector<lum::Vector<float, 3>> vectors(length);
    for (lum::Vector<float, 3>& vector : vectors) {
      for (float& component : vector) component = io_inputs.Number();
    }
    std::vector<lum::Vector<float, 3>> images(length);
    TransformVectors(rotation, vectors, images);
    for (std::size_t i = 0; i < length; ++i) {
      std::array<Sum, 3> const exact = Rotate(rotation.GetCoefficients(), vectors[i]);
      for (std::size_t axis = 0; axis < 3; ++axis) {
        Compare("Quaternionf TransformVectors, each component", io_inputs.GetName(), 8, images[i][axis],
                exact[axis].value, exact[axis].terms);
      }
    }
  }
}

}  // namespace

void MeasureArrays(Kind i_kind, std::size_t i_inputs) {
  MeasureMatrices<float>("float", Inputs<float>(i_kind), i_inputs);
  MeasureMatrices<double>("double", Inputs<double>(i_kind), i_inputs);
  MeasureQuaternions(Inputs<float>(i_kind), i_inputs);
}

}  // namespace accuracy
