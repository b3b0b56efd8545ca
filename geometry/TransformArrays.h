#pragma once

#include <span>

#include "geometry/Point.h"
#include "geometry/Vector.h"
#include "geometry/internal/Export.h"

namespace lum {

// clang exports the members only if the first declaration has the attribute.
template <class T>
class LUM_EXPORT Matrix;

///@{
/// Transforms every point of an array. Each result has the bits of the product with that point, except for
/// the signs and payloads of NaNs; a known identity copies.
///
/// The two arrays may be the same array, but must not overlap otherwise. Arrays of different sizes throw
/// `std::invalid_argument`, and nothing is written then.
///
/// Cost: no count changes. The first call in a process creates the identity, which takes 1 object; what that
/// throws passes out.
///
/// Thread safety: any thread that alone uses o_points.
LUM_EXPORT void TransformPoints(Matrix<float> const& i_matrix, std::span<Point<float, 3> const> i_points,
                                std::span<Point<float, 3>> o_points);
LUM_EXPORT void TransformPoints(Matrix<double> const& i_matrix, std::span<Point<double, 3> const> i_points,
                                std::span<Point<double, 3>> o_points);
///@}
///@{
/// The same for vectors, which ignore a finite translation.
LUM_EXPORT void TransformVectors(Matrix<float> const& i_matrix, std::span<Vector<float, 3> const> i_vectors,
                                 std::span<Vector<float, 3>> o_vectors);
LUM_EXPORT void TransformVectors(Matrix<double> const& i_matrix, std::span<Vector<double, 3> const> i_vectors,
                                 std::span<Vector<double, 3>> o_vectors);
///@}

}  // namespace lum
