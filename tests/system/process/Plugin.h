#pragma once

/// The functions of a plugin, which pass values of lum as addresses. Every plugin links lum.
extern "C" {
struct Plugin {
  void* (*make)(double i_x);               ///< a translation along x
  void* (*make_default)();                 ///< a default-constructed matrix
  double (*get_x)(void const* ip_matrix);  ///< its translation along x
  bool (*is_known_identity)(void const* ip_matrix);
  void* (*multiply)(void const* ip_left, void const* ip_right);
  void (*drop)(void* ip_matrix);
};
}
