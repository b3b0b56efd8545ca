// A plugin that links lum is unloaded while values that it made live, and loaded again. lum's shared library
// is never unloaded, so its pools and identities stay.

#include <dlfcn.h>

#include <vector>

#include "Check.h"
#include "Plugin.h"

namespace {

struct Loaded {
  void* library;
  Plugin const* plugin;
};

Loaded Load(char const* ip_path) {
  void* const library = dlopen(ip_path, RTLD_NOW | RTLD_LOCAL);
  lum::test::Check(library != nullptr, "dlopen");
  auto const* const plugin = static_cast<Plugin const*>(dlsym(library, "first_plugin"));
  lum::test::Check(plugin != nullptr, "dlsym");
  return {library, plugin};
}

}  // namespace

int main(int, char** ip_words) {
  std::vector<void*> made;
  void* identity = nullptr;
  for (int round = 0; round < 5; ++round) {
    auto const [library, plugin] = Load(ip_words[1]);
    if (identity == nullptr) identity = plugin->make_default();
    lum::test::Check(plugin->is_known_identity(identity),
                     "the identity of the first load is known after each");
    for (int i = 0; i < 40; ++i) made.push_back(plugin->make(static_cast<double>(made.size())));
    for (std::size_t i = 0; i < made.size(); ++i) {
      lum::test::Check(plugin->get_x(made[i]) == static_cast<double>(i), "values outlive the plugin");
    }
    lum::test::Check(dlclose(library) == 0, "dlclose");
  }
  auto const [library, plugin] = Load(ip_words[1]);
  for (void* const matrix : made) plugin->drop(matrix);
  plugin->drop(identity);
  lum::test::Check(dlclose(library) == 0, "dlclose");
  return 0;
}
