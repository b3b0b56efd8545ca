// Prints, for every operation, a hash over the bits of its results on seeded inputs.

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <stdexcept>
#include <string>

#include "geometry/Matrix.h"
#include "geometry/PseudoInverse.h"
#include "geometry/Quaternion.h"
#include "geometry/RootFinding.h"
#include "geometry/TrilinearInterpolation.h"

namespace {

using lum::Matrix;
using lum::Plane;
using lum::Point;
using lum::Quaternionf;
using lum::Vector;

constexpr unsigned seed = 20261121;
constexpr int rounds = 5000;

std::map<std::string, std::uint64_t> hashes;

// FNV-1a. All NaNs hash alike: the processor chooses the operand that gives their signs and payloads.
template <class T>
void Add(std::string const& i_operation, T const* ip_values, std::size_t i_count) {
  std::uint64_t& hash = hashes[i_operation];
  for (std::size_t i = 0; i < i_count; ++i) {
    T const value = std::isnan(ip_values[i]) ? std::numeric_limits<T>::quiet_NaN() : ip_values[i];
    std::array<unsigned char, sizeof(T)> bytes{};
    std::memcpy(bytes.data(), &value, sizeof(T));
    for (unsigned char const byte : bytes) hash = (hash ^ byte) * 1099511628211U;
  }
}

template <class T>
class Numbers {
 public:
  // Mostly ordinary numbers, sometimes huge, tiny, zero or infinite ones.
  T operator()() {
    constexpr std::array<T, 6> special = {0,
                                          -T(0),
                                          std::numeric_limits<T>::infinity(),
                                          std::numeric_limits<T>::max(),
                                          std::numeric_limits<T>::denorm_min(),
                                          1};
    auto const choice = m_random() % 200;
    return choice < special.size() ? special[choice] : m_normal(m_random);
  }

 private:
  std::mt19937 m_random{seed};
  std::normal_distribution<T> m_normal;
};

template <class T>
void AddMatrix(std::string const& i_operation, Matrix<T> const& i_matrix) {
  Add(i_operation, i_matrix.GetAsPtr(), 16);
  if (i_matrix.HasInverse()) Add(i_operation + ", inverse", i_matrix.GetMatrixInverse()->data(), 16);
}

template <class T>
void AddPlane(std::string const& i_operation, Plane<T> const& i_plane) {
  std::array<T, 4> const values = {i_plane.GetA(), i_plane.GetB(), i_plane.GetC(), i_plane.GetD()};
  Add(i_operation, values.data(), values.size());
}

template <class T>
void AddTransforms(std::string const& i_precision) {
  Numbers<T> next;
  auto const take = [&next](auto& io_values) {
    for (auto& value : io_values) value = next();
  };
  for (int round = 0; round < rounds; ++round) {
    std::array<T, 16> values{};
    take(values);
    Matrix<T> const a(values.data());
    take(values);
    Matrix<T> const b(values.data());
    Vector<T, 2> u;
    Vector<T, 3> v;
    Vector<T, 3> w;
    Vector<T, 3> x;
    Point<T, 3> p;
    take(u);
    take(v);
    take(w);
    take(x);
    take(p);
    AddMatrix(i_precision + " from values", a);
    AddMatrix(i_precision + " from a frame", Matrix<T>(p, v, w, x));
    AddMatrix(i_precision + " product", a * b);
    AddMatrix(i_precision + " product, inverse rebuilt", (a * b).RebuildInverse());
    AddMatrix(i_precision + " normal transform", a.GetNormalTransform());
    AddMatrix(i_precision + " Scale", Matrix<T>::Scale(v[0], v[1], v[2]));
    AddMatrix(i_precision + " Translate", Matrix<T>::Translate(v));
    AddMatrix(i_precision + " Rotate", Matrix<T>::Rotate(v, w[0]));
    AddMatrix(i_precision + " Normalize",
              Matrix<T>::Normalize(1 + v[0] * v[0], 1 + v[1] * v[1], 1 + v[2] * v[2]));
    T const determinant = a.GetDeterminant();
    Add(i_precision + " GetDeterminant", &determinant, 1);
    Add(i_precision + " times vector", (a * v).data(), 3);
    Add(i_precision + " times point", (a * p).data(), 3);
    std::array<Vector<T, 3>, 5> vectors = {v, w, x, w, v};
    TransformVectors(a, vectors, vectors);
    for (auto const& vector : vectors) Add(i_precision + " times vectors", vector.data(), 3);
    std::array<Point<T, 3>, 5> points = {p, p + v, p + w, p + x, p};
    TransformPoints(a, points, points);
    for (auto const& point : points) Add(i_precision + " times points", point.data(), 3);
    Add(i_precision + " GetNormalized, 2", GetNormalized(u).data(), 2);
    Add(i_precision + " GetNormalized, 3", GetNormalized(v).data(), 3);
    try {
      Plane<T> const plane(v[0], v[1], v[2], w[0]);
      AddPlane(i_precision + " Plane", plane);
      AddPlane(i_precision + " times plane", a * plane);
    } catch (std::invalid_argument const&) {
      Add(i_precision + " refused planes", v.data(), 1);
    }
  }
}

void AddRotations() {
  Numbers<float> next;
  for (int round = 0; round < rounds; ++round) {
    Vector<float, 3> v;
    Vector<float, 3> w;
    for (float& component : v) component = next();
    for (float& component : w) component = next();
    Quaternionf const p(v, next());
    Quaternionf const q(GetNormalized(w), next());
    auto const add = [](std::string const& i_operation, Quaternionf const& i_quaternion) {
      Add(i_operation, i_quaternion.GetCoefficients().data(), 4);
    };
    add("Quaternionf from axis and angle", p);
    add("Quaternionf product", p * q);
    add("Quaternionf Slerp", p.Slerp(next(), q));
    add("Quaternionf Slerp of unit length", q.Slerp(0.3F, Quaternionf(GetNormalized(v), 0.5F)));
    add("Quaternionf from a matrix", Quaternionf(q.GetAsMatrix()));
    AddMatrix("Quaternionf GetAsMatrix", p.GetAsMatrix());
    Add("Quaternionf Transform", p.Transform(w).data(), 3);
    std::array<Vector<float, 3>, 5> vectors = {v, w, v, w, v};
    TransformVectors(p, vectors, vectors);
    for (auto const& vector : vectors) Add("Quaternionf Transform of an array", vector.data(), 3);
    Add("Quaternionf InverseTransform", q.InverseTransform(v).data(), 3);
    float const is_close = p.IsApproximately(q, next()) ? 1 : 0;
    Add("Quaternionf IsApproximately", &is_close, 1);
  }
}

void AddInterpolations() {
  Numbers<double> next;
  for (int round = 0; round < rounds; ++round) {
    std::array<double, 8> values{};
    for (double& value : values) value = next();
    Point<double, 3> point;
    for (double& coordinate : point) coordinate = next();
    double const blend = lum::TrilinearInterpolation(values, point);
    Add("TrilinearInterpolation", &blend, 1);
  }
}

void AddRoots() {
  Numbers<double> next;
  for (int round = 0; round < rounds; ++round) {
    double const square = 1 + std::abs(next());
    double const lower = -1 / square;
    double const tolerance = 1e-6 * square;
    // The square is stored first so that no operation is fused with it: this file is compiled with flags of
    // callers.
    auto const parabola = [square](double i_x) {
      double volatile const x_squared = i_x * i_x;
      return x_squared - square;
    };
    double root = 0;
    std::array<double, 3> limited{};
    if (std::isfinite(square) && square < 1e100) {
      root = lum::RootFinding::RegulaFalsi(parabola, {lower, 2 * square}, tolerance);
      auto const result =
          lum::RootFinding::RegulaFalsiWithLimit(parabola, {lower, 2 * square}, tolerance, 2 + round % 9);
      limited = {result.root, result.bracket.GetLower(), result.bracket.GetUpper()};
    }
    Add("RegulaFalsi", &root, 1);
    Add("RegulaFalsiWithLimit", limited.data(), 3);
  }
}

void AddPseudoInverses() {
  Numbers<double> next;
  for (int round = 0; round < rounds; ++round) {
    Eigen::Matrix3d matrix;
    for (double* value = matrix.data(); value != matrix.data() + 9; ++value) *value = next();
    lum::PseudoInverseResult const result = lum::CalculatePseudoInverse(matrix, 0.5);
    auto const rank = static_cast<double>(result.rank);
    Add("CalculatePseudoInverse", result.pseudoInverse.data(), 9);
    Add("CalculatePseudoInverse, rank", &rank, 1);
  }
}

}  // namespace

int main() {
  AddTransforms<float>("float");
  AddTransforms<double>("double");
  AddRotations();
  AddInterpolations();
  AddRoots();
  AddPseudoInverses();
  std::printf("seed %u\n", seed);
  for (auto const& [operation, hash] : hashes) {
    std::printf("%016llx %s\n", static_cast<unsigned long long>(hash), operation.c_str());
  }
  return 0;
}
