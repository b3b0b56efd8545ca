// Two shared libraries use lum and exchange values: both linked with lum's shared library, or each with a
// static copy, whose names the dynamic linker then resolves to the first. Either way there is one identity.

#include "Check.h"
#include "Plugin.h"

extern "C" {
extern Plugin const first_plugin;
extern Plugin const second_plugin;
}

int main() {
  void* const left = first_plugin.make(2);
  void* const right = second_plugin.make(3);
  void* const product = first_plugin.multiply(left, right);
  lum::test::Check(second_plugin.get_x(product) == 5, "values pass from one to the other");
  void* const identity = first_plugin.make_default();
  lum::test::Check(first_plugin.is_known_identity(identity), "each knows its own identity");
  lum::test::Check(second_plugin.is_known_identity(identity), "and the other's");
  void* const same = second_plugin.multiply(identity, right);
  lum::test::Check(first_plugin.get_x(same) == 3, "an identity multiplies like one");
  // Each drops what the other made.
  first_plugin.drop(right);
  second_plugin.drop(left);
  second_plugin.drop(product);
  second_plugin.drop(identity);
  first_plugin.drop(same);
  return 0;
}
