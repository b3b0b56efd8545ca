#pragma once

#include <mpfr.h>

#include <utility>

namespace accuracy {

/// A number of 320 bits, whose own rounding errors are negligible beside those of a double.
class Exact {
 public:
  static constexpr mpfr_prec_t precision = 320;

  Exact(double i_value = 0) {
    mpfr_init2(m_value, precision);
    mpfr_set_d(m_value, i_value, MPFR_RNDN);
  }
  Exact(Exact const& i_other) {
    mpfr_init2(m_value, precision);
    mpfr_set(m_value, i_other.m_value, MPFR_RNDN);
  }
  Exact(Exact&& io_other) noexcept : Exact() { mpfr_swap(m_value, io_other.m_value); }
  Exact& operator=(Exact i_other) noexcept {
    mpfr_swap(m_value, i_other.m_value);
    return *this;
  }
  ~Exact() { mpfr_clear(m_value); }

  double ToDouble() const { return mpfr_get_d(m_value, MPFR_RNDN); }
  bool IsZero() const { return mpfr_zero_p(m_value) != 0; }

  Exact& operator+=(Exact const& i_other) { return Apply(&mpfr_add, i_other); }
  Exact& operator-=(Exact const& i_other) { return Apply(&mpfr_sub, i_other); }
  Exact& operator*=(Exact const& i_other) { return Apply(&mpfr_mul, i_other); }
  Exact& operator/=(Exact const& i_other) { return Apply(&mpfr_div, i_other); }

  friend Exact operator+(Exact i_a, Exact const& i_b) { return std::move(i_a += i_b); }
  friend Exact operator-(Exact i_a, Exact const& i_b) { return std::move(i_a -= i_b); }
  friend Exact operator*(Exact i_a, Exact const& i_b) { return std::move(i_a *= i_b); }
  friend Exact operator/(Exact i_a, Exact const& i_b) { return std::move(i_a /= i_b); }
  friend Exact operator-(Exact i_a) { return Exact() - i_a; }
  friend bool operator<(Exact const& i_a, Exact const& i_b) {
    return mpfr_less_p(i_a.m_value, i_b.m_value) != 0;
  }

  friend Exact Abs(Exact i_value) { return Of(&mpfr_abs, std::move(i_value)); }
  friend Exact Sqrt(Exact i_value) { return Of(&mpfr_sqrt, std::move(i_value)); }
  friend Exact Sin(Exact i_value) { return Of(&mpfr_sin, std::move(i_value)); }
  friend Exact Cos(Exact i_value) { return Of(&mpfr_cos, std::move(i_value)); }
  friend Exact Acos(Exact i_value) { return Of(&mpfr_acos, std::move(i_value)); }

 private:
  template <class Operation>
  Exact& Apply(Operation i_operation, Exact const& i_other) {
    i_operation(m_value, m_value, i_other.m_value, MPFR_RNDN);
    return *this;
  }
  template <class Function>
  static Exact Of(Function i_function, Exact i_value) {
    i_function(i_value.m_value, i_value.m_value, MPFR_RNDN);
    return i_value;
  }

  mpfr_t m_value;
};

}  // namespace accuracy
