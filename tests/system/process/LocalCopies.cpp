// Two plugins, each with a static copy of lum that the other cannot see, exchange values. Each copy has its
// own pools and its own identity.

#include <dlfcn.h>

#include "Check.h"
#include "Plugin.h"

namespace {

Plugin const& Load(char const* ip_path, char const* ip_name) {
  void* const library = dlopen(ip_path, RTLD_NOW | RTLD_LOCAL);
  lum::test::Check(library != nullptr, "dlopen");
  auto const* const plugin = static_cast<Plugin const*>(dlsym(library, ip_name));
  lum::test::Check(plugin != nullptr, "dlsym");
  return *plugin;
}

}  // namespace

int main(int, char** ip_words) {
  Plugin const& first = Load(ip_words[1], "first_plugin");
  Plugin const& second = Load(ip_words[2], "second_plugin");
  void* const left = first.make(2);
  void* const right = second.make(3);
  void* const product = first.multiply(left, right);
  lum::test::Check(second.get_x(product) == 5, "a plugin reads the value of another");

  void* const identity = first.make_default();
  lum::test::Check(first.is_known_identity(identity), "a plugin knows its own identity");
  lum::test::Check(!second.is_known_identity(identity),
                   "a plugin does not know the identity of another copy");
  void* const same = second.multiply(identity, right);
  lum::test::Check(first.get_x(same) == 3, "a product with the identity of another copy is computed");
  void* const still_identity = second.multiply(identity, identity);
  lum::test::Check(!first.is_known_identity(still_identity), "what is computed is not a known identity");

  // Each plugin destroys what the other made, and takes new objects after that.
  first.drop(right);
  second.drop(left);
  second.drop(product);
  second.drop(identity);
  first.drop(same);
  first.drop(still_identity);
  for (Plugin const* const plugin : {&first, &second}) {
    void* const fresh = plugin->make(7);
    lum::test::Check(first.get_x(fresh) == 7 && second.get_x(fresh) == 7, "objects are reused");
    second.drop(fresh);
  }
  return 0;
}
