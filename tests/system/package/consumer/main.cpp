#include <Utility/Lazy.h>
#include <Utility/optional.h>
#include <geometry/CanonicalCubeElement.h>
#include <geometry/CubeEdgeIterator.h>
#include <geometry/CubeFaceIterator.h>
#include <geometry/CubeVertexIterator.h>
#include <geometry/GlobalObjectPool.h>
#include <geometry/LinearInterpolation.h>
#include <geometry/Matrix.h>
#include <geometry/PseudoInverse.h>
#include <geometry/Quaternion.h>
#include <geometry/Range.h>
#include <geometry/RootFinding.h>
#include <geometry/TrilinearInterpolation.h>

#include <iostream>

namespace {

using Types = lum::MatrixPoolTypes<double>;

lum::Matrix<float> const at_namespace_scope =
    lum::Matrix<float>::Translate(1, 2, 3) * lum::Matrix<float>::Scale(2);

}  // namespace

int main() {
  auto const image = at_namespace_scope * lum::Point<float, 3>(1, 1, 1);
  auto const vector = lum::GetNormalized(lum::Quaternionf().Transform(lum::Vector<float, 3>(0, 0, 2)));
  auto const handle =
      lum::GlobalObjectPool<Types::ObjectPool, Types::ObjectHandle>::m_pool.GetValue()->CreateObject();
  bool const is_identity =
      lum::Matrix<double>().GetMatrix().Get() == lum::Matrix<double>::mgh_identity.GetValue().Get();
  lum::Matrix<double> const converted(at_namespace_scope);
  std::cout << image[0] << ' ' << image[1] << ' ' << image[2] << ' ' << vector[2] << ' '
            << handle.GetReferenceCount() << ' ' << is_identity << ' ' << converted(2, 3) << ' '
            << lum::Plane<float>(0, 0, 2, 4).GetD() << '\n';

  using namespace lum::CubeElementIds;
  std::cout << lum::CubeVertexIterable<Face>(FaceY0)[3] << ", "
            << lum::CubeEdgeIterable<Cube>().IndexOf(Edge13) << ", "
            << lum::CalculatePseudoInverse(Eigen::Matrix3d::Identity(), 1e-9).rank << ", "
            << lum::RootFinding::RegulaFalsi([](double i_x) { return i_x - 1; }, {0, 4}, 1e-9) << '\n';
  return 0;
}
