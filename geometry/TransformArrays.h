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
/// Transforms every point of an array. Each result has the same bits as the product with that point alone,
/// except for the signs and payloads of NaNs. A known identity copies the points.
///
/// The two arrays may be the same array, but must not overlap otherwise. Arrays of different sizes throw
/// `std::invalid_argument` before anything is written.
///
/// Cost: no count changes. If the process has no identity object yet, the call creates it, which takes 1
/// object and passes on what the pool throws.
///
/// Thread safety: no other thread may use o_points, or write to i_matrix or i_points, during the call.
LUM_EXPORT void TransformPoints(Matrix<float> const& i_matrix, std::span<Point<float, 3> const> i_points,
                                std::span<Point<float, 3>> o_points);
LUM_EXPORT void TransformPoints(Matrix<double> const& i_matrix, std::span<Point<double, 3> const> i_points,
                                std::span<Point<double, 3>> o_points);
///@}
///@{
/// Transforms every vector of an array in the same way. A finite translation is ignored.
LUM_EXPORT void TransformVectors(Matrix<float> const& i_matrix, std::span<Vector<float, 3> const> i_vectors,
                                 std::span<Vector<float, 3>> o_vectors);
LUM_EXPORT void TransformVectors(Matrix<double> const& i_matrix, std::span<Vector<double, 3> const> i_vectors,
                                 std::span<Vector<double, 3>> o_vectors);
///@}

}  // namespace lum
