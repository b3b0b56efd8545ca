// Two plugins exchange values. Both link lum's shared library, or each links a static copy, whose symbols the
// dynamic linker resolves to the first copy. There is one identity in both cases.

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
  lum::test::Check(second_plugin.get_x(product) == 5, "a plugin reads the value of another");
  void* const identity = first_plugin.make_default();
  lum::test::Check(first_plugin.is_known_identity(identity), "a plugin knows its own identity");
  lum::test::Check(second_plugin.is_known_identity(identity), "a plugin knows the identity of another");
  void* const same = second_plugin.multiply(identity, right);
  lum::test::Check(first_plugin.get_x(same) == 3, "a product with the identity of another plugin");
  // Each plugin destroys what the other made.
  first_plugin.drop(right);
  second_plugin.drop(left);
  second_plugin.drop(product);
  second_plugin.drop(identity);
  first_plugin.drop(same);
  return 0;
}
