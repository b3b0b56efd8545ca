// Operations on single vectors and points that are not measured with the products: a matrix times a vector,
// the linear interpolation, and the signed distance from a plane.

#include <geometry/LinearInterpolation.h>
#include <geometry/Matrix.h>
#include <geometry/Plane.h>

#include "Measure.h"

namespace accuracy {
namespace {

template <class T>
void Measure(std::string const& i_precision, Inputs<T> io_inputs, std::size_t i_inputs) {
  char const* const kind = io_inputs.GetName();
  for (std::size_t done = 0; done < i_inputs; done += 3) {
    std::array<T, 16> const a = io_inputs.Affine();
    lum::Vector<T, 3> const v{io_inputs.Number(), io_inputs.Number(), io_inputs.Number()};
    lum::Vector<T, 3> const image = lum::Matrix<T>(a.data()) * v;
    for (std::size_t row = 0; row < 3; ++row) {
      Sum sum;
      for (std::size_t k = 0; k < 3; ++k) sum.Add(ToExact(a[row + 4 * k]) * ToExact(v[k]));
      // The last addend is 0, so its addition does not round.
      Compare(i_precision + " times vector, each component", kind, 3, image[row], sum.value, sum.terms);
    }
  }
  for (std::size_t done = 0; done < i_inputs; ++done) {
    T const a = io_inputs.Number();
    T const b = io_inputs.Number();
    T const t = io_inputs.Number();
    Sum sum;
    sum.Add(ToExact(b) * ToExact(t));
    sum.Add((Exact(1) - ToExact(t)) * ToExact(a));
    Compare(i_precision + " LinearInterpolation", kind, 3, lum::LinearInterpolation(a, b, t), sum.value,
            sum.terms);
  }
  for (std::size_t done = 0; done < i_inputs; ++done) {
    lum::Vector<T, 3> const normal = io_inputs.Direction();
    lum::Plane<T> const plane(normal[0], normal[1], normal[2], io_inputs.Number());
    lum::Point<T, 3> const point{io_inputs.Number(), io_inputs.Number(), io_inputs.Number()};
    Sum sum;
    sum.Add(ToExact(plane.GetA()) * ToExact(point[0]));
    sum.Add(ToExact(plane.GetB()) * ToExact(point[1]));
    sum.Add(ToExact(plane.GetC()) * ToExact(point[2]));
    sum.Add(-ToExact(plane.GetD()));
    Compare(i_precision + " GetSignedDistance", kind, 4, GetSignedDistance(plane, point), sum.value,
            sum.terms);
  }
}

}  // namespace

void MeasureVectors(Kind i_kind, std::size_t i_inputs) {
  Measure<float>("float", Inputs<float>(i_kind), i_inputs);
  Measure<double>("double", Inputs<double>(i_kind), i_inputs);
}

}  // namespace accuracy
