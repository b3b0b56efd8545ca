#pragma once

/// What a shared library of the tests offers: values of lum as addresses. Each of them links lum by itself.
extern "C" {
struct Plugin {
  void* (*make)(double i_x);               ///< a translation along x
  void* (*make_default)();                 ///< a default-constructed matrix
  double (*get_x)(void const* ip_matrix);  ///< where it takes the origin, along x
  bool (*is_known_identity)(void const* ip_matrix);
  void* (*multiply)(void const* ip_left, void const* ip_right);
  void (*drop)(void* ip_matrix);
};
}
