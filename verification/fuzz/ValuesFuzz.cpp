// A program of operations on transforms in both precisions, rotations and handles, checked after every step
// against a model of plain values: each value keeps its bits when others change, and the reference count of
// each object equals the number of handles onto it. Arrays are compared with the operation on single values.

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "Bytes.h"
#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"
#include "geometry/TransformArrays.h"

namespace {

using lum::Matrix;
using lum::Quaternionf;
using lum::test::Bytes;
using lum::test::Require;

constexpr std::size_t slots = 6;

bool AreSame(double i_a, double i_b) { return i_a == i_b || (std::isnan(i_a) && std::isnan(i_b)); }

template <class T>
struct Model {
  std::array<T, 16> transform;
  std::optional<std::array<T, 16>> inverse;
  bool is_identity = false;  // the known identity
};

template <class T>
std::array<T, 16> Copy(T const* ip_values) {
  std::array<T, 16> values{};
  std::memcpy(values.data(), ip_values, sizeof(values));
  return values;
}

template <class T>
std::array<T, 16> Multiply(std::array<T, 16> const& i_a, std::array<T, 16> const& i_b) {
  std::array<T, 16> product{};
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      T sum = i_a[row] * i_b[4 * column];
      for (std::size_t k = 1; k < 4; ++k) {
        T const term = i_a[row + 4 * k] * i_b[k + 4 * column];
        sum = sum + term;
      }
      product[row + 4 * column] = sum;
    }
  }
  return product;
}

// Matrices of one precision, and handles onto their objects.
template <class T>
class Matrices {
 public:
  using Handle = typename Matrix<T>::ObjectHandle;

  Matrices() {
    for (std::size_t slot = 0; slot < slots; ++slot) Adopt(slot);
  }

  Matrix<T> const& Get(std::size_t i_slot) const { return m_matrices[i_slot]; }

  void Step(Bytes& io_bytes) {
    std::size_t const to = io_bytes.TakeIndex(slots);
    std::size_t const a = io_bytes.TakeIndex(slots);
    std::size_t const b = io_bytes.TakeIndex(slots);
    auto const number = [&] { return static_cast<T>(io_bytes.Take<std::int8_t>()) / 4; };
    Matrix<T>& target = m_matrices[to];
    switch (io_bytes.TakeIndex(16)) {
      case 0:
        target = Matrix<T>();
        return Adopt(to);
      case 1:
        target = Matrix<T>::Translate(number(), number(), number());
        return Adopt(to);
      case 2:
        target = Matrix<T>::Scale(number(), number(), number());
        return Adopt(to);
      case 3:
        target = Matrix<T>::Rotate({number(), number(), number()}, number());
        return Adopt(to);
      case 4:
        target = m_matrices[a] * m_matrices[b];
        m_models[to] = Product(m_models[a], m_models[b]);
        return;
      case 5:
        target *= m_matrices[a];
        m_models[to] = Product(m_models[to], m_models[a]);
        return;
      case 6:
        return Invert(to, a);
      case 7:
        if (to == a) return Rebuild(to);
        target = m_matrices[a].GetTranspose();
        return Adopt(to);
      case 8:
        if (m_matrices[a].HasInverse()) target = m_matrices[a].GetNormalTransform();
        return Adopt(to);
      case 9: {
        std::size_t const place = io_bytes.TakeIndex(16);
        m_models[to].transform[place] = target.GetMutableInternal()->data()[place] = number();
        m_models[to].is_identity = false;
        return;
      }
      case 10: {
        if (!target.HasInverse()) return;
        std::size_t const place = io_bytes.TakeIndex(16);
        (*m_models[to].inverse)[place] = target.GetMutableInverseInternal()->data()[place] = number();
        return;
      }
      case 11:
        target = m_matrices[a];
        m_models[to] = m_models[a];
        return;
      case 12:
        if (to == a) return;
        target = std::move(m_matrices[a]);
        m_models[to] = m_models[a];
        m_matrices[a] = Matrix<T>();
        return Adopt(a);
      case 13: {
        std::array<T, 16> values{};
        for (T& value : values) value = io_bytes.Take<T>();
        target = Matrix<T>(values.data());
        return Adopt(to);
      }
      case 14:
        m_handles[to] = io_bytes.TakeFlag() ? m_matrices[a].GetMatrix() : m_matrices[a].GetMatrixInverse();
        return;
      default:
        if (io_bytes.TakeFlag())
          m_handles[to] = m_handles[a];
        else
          m_handles[to] = Handle();
        return;
    }
  }

  template <class U>
  void Convert(std::size_t i_to, Matrix<U> const& i_from) {
    m_matrices[i_to] = i_from;
    Adopt(i_to);
    for (std::size_t i = 0; i < 16; ++i) {
      Require(AreSame(m_models[i_to].transform[i], static_cast<T>(i_from.GetAsPtr()[i])), "a conversion");
    }
  }

  void Check() const {
    std::map<void const*, unsigned long> holders;
    holders[Matrix<T>::mgh_identity.GetValue().Get()] = 1;
    auto const count = [&](Handle const& i_handle) {
      if (i_handle) ++holders[i_handle.Get()];
    };
    for (std::size_t slot = 0; slot < slots; ++slot) {
      Matrix<T> const& matrix = m_matrices[slot];
      Model<T> const& model = m_models[slot];
      count(matrix.GetMatrix());
      count(matrix.GetMatrixInverse());
      count(m_handles[slot]);
      Require(matrix.HasInverse() == model.inverse.has_value(), "whether there is an inverse");
      Require(matrix.IsKnownIdentity() == model.is_identity, "whether it is the known identity");
      for (std::size_t i = 0; i < 16; ++i) {
        Require(AreSame(matrix.GetAsPtr()[i], model.transform[i]), "a value of a transform");
        if (!model.inverse) continue;
        Require(AreSame(matrix.GetMatrixInverse()->data()[i], (*model.inverse)[i]), "a value of an inverse");
      }
    }
    for (std::size_t slot = 0; slot < slots; ++slot) {
      Matrix<T> const& matrix = m_matrices[slot];
      for (Handle const* handle : {&matrix.GetMatrix(), &matrix.GetMatrixInverse(), &m_handles[slot]}) {
        Require(handle->GetReferenceCount() == (*handle ? holders[handle->Get()] : 0), "a reference count");
      }
    }
  }

 private:
  // Copies the current value of the library into the model.
  void Adopt(std::size_t i_slot) {
    Matrix<T> const& matrix = m_matrices[i_slot];
    m_models[i_slot] = {Copy(matrix.GetAsPtr()), {}, matrix.IsKnownIdentity()};
    if (matrix.HasInverse()) m_models[i_slot].inverse = Copy(matrix.GetMatrixInverse()->data());
  }

  static Model<T> Product(Model<T> const& i_a, Model<T> const& i_b) {
    if (i_a.is_identity) return i_b;
    if (i_b.is_identity) return i_a;
    Model<T> product = {Multiply(i_a.transform, i_b.transform), {}, false};
    if (i_a.inverse && i_b.inverse) product.inverse = Multiply(*i_b.inverse, *i_a.inverse);
    return product;
  }

  void Invert(std::size_t i_to, std::size_t i_from) {
    Model<T> const model = m_models[i_from];
    try {
      m_matrices[i_to] = i_to == i_from ? m_matrices[i_to].Invert() : m_matrices[i_from].GetInverse();
      Require(model.inverse.has_value(), "an inverse that is not there");
      // The former inverse may itself be the identity object.
      m_models[i_to] = {*model.inverse, model.transform, m_matrices[i_to].IsKnownIdentity()};
    } catch (std::domain_error const& error) {
      Require(!model.inverse &&
                  std::string_view(error.what()) == "attempt to get inverse of non-invertible matrix",
              "a message");
    }
  }

  void Rebuild(std::size_t i_slot) {
    Model<T>& model = m_models[i_slot];
    m_matrices[i_slot].RebuildInverse();
    model.inverse = model.is_identity ? model.transform
                                      : Copy(Matrix<T>(model.transform.data()).GetMatrixInverse()->data());
  }

  std::array<Matrix<T>, slots> m_matrices;
  std::array<Model<T>, slots> m_models;
  std::array<Handle, slots> m_handles;
};

bool AreSameBits(float i_a, float i_b) {
  return std::bit_cast<std::uint32_t>(i_a) == std::bit_cast<std::uint32_t>(i_b) ||
         (std::isnan(i_a) && std::isnan(i_b));
}
bool AreSameBits(double i_a, double i_b) {
  return std::bit_cast<std::uint64_t>(i_a) == std::bit_cast<std::uint64_t>(i_b) ||
         (std::isnan(i_a) && std::isnan(i_b));
}

// Transforms an array of arbitrary values by i_all, in place or into another array, and each value by i_one.
// The value behind the array must keep its bits.
template <class Value, class All, class One>
void TransformArray(Bytes& io_bytes, All const& i_all, One const& i_one) {
  using T = typename Value::value_type;
  std::size_t const count = io_bytes.TakeIndex(24);
  bool const is_in_place = io_bytes.TakeFlag();
  bool const has_other_size = io_bytes.TakeIndex(8) == 7;
  std::vector<Value> values(count + 1);
  for (Value& value : values) {
    for (T& component : value) component = io_bytes.Take<T>();
  }
  std::vector<Value> const before = values;
  std::vector<Value> images = values;
  std::span<Value> const to = is_in_place ? std::span(values) : std::span(images);
  try {
    i_all(std::span<Value const>(values.data(), count), to.first(has_other_size ? count + 1 : count));
    Require(!has_other_size, "arrays of different sizes");
  } catch (std::invalid_argument const& error) {
    Require(has_other_size &&
                std::string_view(error.what()) == "arrays to transform from and to must be of the same size",
            "a message of arrays");
  }
  for (std::size_t i = 0; i <= count; ++i) {
    Value const image = i < count && !has_other_size ? i_one(before[i]) : before[i];
    for (std::size_t axis = 0; axis < 3; ++axis) Require(AreSameBits(to[i][axis], image[axis]), "an array");
  }
}

template <class T>
void TransformPointsAndVectors(Bytes& io_bytes, Matrix<T> const& i_matrix) {
  auto const apply = [&](auto const& i_value) { return i_matrix * i_value; };
  if (io_bytes.TakeFlag()) {
    TransformArray<lum::Point<T, 3>>(
        io_bytes, [&](auto i_from, auto i_to) { TransformPoints(i_matrix, i_from, i_to); }, apply);
  } else {
    TransformArray<lum::Vector<T, 3>>(
        io_bytes, [&](auto i_from, auto i_to) { TransformVectors(i_matrix, i_from, i_to); }, apply);
  }
}

class Rotations {
 public:
  Rotations() {
    for (std::size_t slot = 0; slot < slots; ++slot) Adopt(slot);
  }

  void Step(Bytes& io_bytes, Matrices<float> const& i_matrices) {
    std::size_t const to = io_bytes.TakeIndex(slots);
    std::size_t const a = io_bytes.TakeIndex(slots);
    std::size_t const b = io_bytes.TakeIndex(slots);
    auto const number = [&] { return static_cast<float>(io_bytes.Take<std::int8_t>()) / 16; };
    Quaternionf& target = m_quaternions[to];
    switch (io_bytes.TakeIndex(6)) {
      case 0:
        target = Quaternionf();
        break;
      case 1:
        target = Quaternionf({number(), number(), number()}, number());
        break;
      case 2:
        target = m_quaternions[a] * m_quaternions[b];
        break;
      case 3:
        target = m_quaternions[a].Slerp(number(), m_quaternions[b]);
        break;
      case 4:
        target = Quaternionf(i_matrices.Get(a));
        break;
      default:
        target = m_quaternions[a];
        m_models[to] = m_models[a];
        return;
    }
    Adopt(to);
  }

  void TransformArray(Bytes& io_bytes) const {
    Quaternionf const& rotation = m_quaternions[io_bytes.TakeIndex(slots)];
    ::TransformArray<lum::Vector<float, 3>>(
        io_bytes, [&](auto i_from, auto i_to) { TransformVectors(rotation, i_from, i_to); },
        [&](auto const& i_vector) { return rotation.Transform(i_vector); });
  }

  void Check() const {
    for (std::size_t slot = 0; slot < slots; ++slot) {
      std::array<float, 4> const values = m_quaternions[slot].GetCoefficients();
      for (std::size_t i = 0; i < 4; ++i) Require(AreSame(values[i], m_models[slot][i]), "a coefficient");
    }
  }

 private:
  void Adopt(std::size_t i_slot) { m_models[i_slot] = m_quaternions[i_slot].GetCoefficients(); }

  std::array<Quaternionf, slots> m_quaternions;
  std::array<std::array<float, 4>, slots> m_models{};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* ip_data, std::size_t i_size) {
  Bytes bytes(ip_data, i_size);
  Matrices<float> floats;
  Matrices<double> doubles;
  Rotations rotations;
  while (!bytes.IsAtEnd()) {
    switch (bytes.TakeIndex(6)) {
      case 0:
        floats.Step(bytes);
        break;
      case 1:
        doubles.Step(bytes);
        break;
      case 2:
        rotations.Step(bytes, floats);
        break;
      case 3:
        floats.Convert(bytes.TakeIndex(slots), doubles.Get(bytes.TakeIndex(slots)));
        break;
      case 4:
        doubles.Convert(bytes.TakeIndex(slots), floats.Get(bytes.TakeIndex(slots)));
        break;
      default:
        switch (bytes.TakeIndex(3)) {
          case 0:
            TransformPointsAndVectors(bytes, floats.Get(bytes.TakeIndex(slots)));
            break;
          case 1:
            TransformPointsAndVectors(bytes, doubles.Get(bytes.TakeIndex(slots)));
            break;
          default:
            rotations.TransformArray(bytes);
            break;
        }
        break;
    }
    floats.Check();
    doubles.Check();
    rotations.Check();
  }
  return 0;
}
