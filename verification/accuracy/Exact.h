#pragma once

#include <mpfr.h>

#include <array>
#include <cstddef>
#include <utility>

namespace accuracy {

/// A number of 320 bits, whose own rounding errors are negligible beside those of a double.
class Exact {
 public:
  static constexpr mpfr_prec_t precision = 320;

  Exact(double i_value = 0) {
    Initialise();
    mpfr_set_d(m_value, i_value, MPFR_RNDN);
  }
  Exact(Exact const& i_other) {
    Initialise();
    mpfr_set(m_value, i_other.m_value, MPFR_RNDN);
  }
  Exact& operator=(Exact const& i_other) {
    mpfr_set(m_value, i_other.m_value, MPFR_RNDN);
    return *this;
  }

  double ToDouble() const { return mpfr_get_d(m_value, MPFR_RNDN); }
  bool IsZero() const { return mpfr_zero_p(m_value) != 0; }

  Exact& operator+=(Exact const& i_other) { return Apply(&mpfr_add, i_other); }
  Exact& operator-=(Exact const& i_other) { return Apply(&mpfr_sub, i_other); }
  Exact& operator*=(Exact const& i_other) { return Apply(&mpfr_mul, i_other); }
  Exact& operator/=(Exact const& i_other) { return Apply(&mpfr_div, i_other); }

  friend Exact operator+(Exact i_a, Exact const& i_b) { return i_a += i_b; }
  friend Exact operator-(Exact i_a, Exact const& i_b) { return i_a -= i_b; }
  friend Exact operator*(Exact i_a, Exact const& i_b) { return i_a *= i_b; }
  friend Exact operator/(Exact i_a, Exact const& i_b) { return i_a /= i_b; }
  friend Exact operator-(Exact i_a) { return Exact() - i_a; }
  friend bool operator<(Exact const& i_a, Exact const& i_b) {
    return mpfr_less_p(i_a.m_value, i_b.m_value) != 0;
  }

  friend Exact Abs(Exact i_value) { return Of(&mpfr_abs, i_value); }
  friend Exact Sqrt(Exact i_value) { return Of(&mpfr_sqrt, i_value); }
  friend Exact Sin(Exact i_value) { return Of(&mpfr_sin, i_value); }
  friend Exact Cos(Exact i_value) { return Of(&mpfr_cos, i_value); }
  friend Exact Acos(Exact i_value) { return Of(&mpfr_acos, i_value); }

 private:
  template <class Operation>
  Exact& Apply(Operation i_operation, Exact const& i_other) {
    i_operation(m_value, m_value, i_other.m_value, MPFR_RNDN);
    return *this;
  }
  template <class Function>
  static Exact Of(Function i_function, Exact& io_value) {
    i_function(io_value.m_value, io_value.m_value, MPFR_RNDN);
    return io_value;
  }

  // The digits are in the object: allocating them would take most of the time.
  void Initialise() {
    mpfr_custom_init(m_limbs.data(), precision);
    mpfr_custom_init_set(m_value, MPFR_ZERO_KIND, 0, precision, m_limbs.data());
  }

  std::array<mp_limb_t, static_cast<std::size_t>(precision) / (8 * sizeof(mp_limb_t))> m_limbs;
  mpfr_t m_value;
};

}  // namespace accuracy
