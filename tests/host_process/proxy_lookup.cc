#include <gio/gio.h>

#include <cstdio>

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    g_autoptr(GError) error = nullptr;
    g_auto(GStrv) proxies =
        g_proxy_resolver_lookup(g_proxy_resolver_get_default(), argv[i], nullptr, &error);
    if (proxies == nullptr) {
      std::fprintf(stderr, "%s\n", error->message);
      return 1;
    }
    g_autofree char* line = g_strjoinv(" ", proxies);
    std::printf("%s\n", line);
  }
}
