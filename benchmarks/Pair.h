#pragma once

#include <Eigen/Geometry>
#include <Eigen/LU>
#include <memory>

namespace lum::bench {

template <class T>
using EigenTransform = Eigen::Transform<T, 3, Eigen::Projective>;

/// R of docs/performance.md: what a caller would share without lum, a transform and its inverse, each in a
/// std::shared_ptr.
template <class T>
struct Pair {
  std::shared_ptr<EigenTransform<T>> transform;
  std::shared_ptr<EigenTransform<T>> inverse;

  static Pair Make() {
    return {std::make_shared<EigenTransform<T>>(), std::make_shared<EigenTransform<T>>()};
  }

  static Pair Identity() {
    Pair pair = Make();
    pair.transform->setIdentity();
    pair.inverse->setIdentity();
    return pair;
  }

  static Pair Translate(T i_x, T i_y, T i_z) {
    Pair pair = Identity();
    pair.transform->matrix().col(3) << i_x, i_y, i_z, 1;
    pair.inverse->matrix().col(3) << -i_x, -i_y, -i_z, 1;
    return pair;
  }

  static Pair Scale(T i_x, T i_y, T i_z) {
    Pair pair = Identity();
    pair.transform->matrix().diagonal() << i_x, i_y, i_z, 1;
    pair.inverse->matrix().diagonal() << 1 / i_x, 1 / i_y, 1 / i_z, 1;
    return pair;
  }

  static Pair Rotate(Eigen::Matrix<T, 3, 1> const& i_axis, T i_angle) {
    Pair pair = Identity();
    Eigen::Matrix<T, 3, 3> const rotation = Eigen::AngleAxis<T>(i_angle, i_axis).toRotationMatrix();
    pair.transform->matrix().template topLeftCorner<3, 3>() = rotation;
    pair.inverse->matrix().template topLeftCorner<3, 3>() = rotation.transpose();
    return pair;
  }

  static Pair FromValues(T const* ip_values) {
    Pair pair = Make();
    pair.transform->matrix() = Eigen::Map<Eigen::Matrix<T, 4, 4> const>(ip_values);
    pair.inverse->matrix() = pair.transform->matrix().inverse();
    return pair;
  }

  Pair operator*(Pair const& i_right) const {
    Pair pair = Make();
    pair.transform->matrix().noalias() = transform->matrix() * i_right.transform->matrix();
    pair.inverse->matrix().noalias() = i_right.inverse->matrix() * inverse->matrix();
    return pair;
  }
};

}  // namespace lum::bench
