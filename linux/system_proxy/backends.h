#ifndef CORVANA_SYSTEM_PROXY_BACKENDS_H_
#define CORVANA_SYSTEM_PROXY_BACKENDS_H_

// Each points a desktop's settings at 127.0.0.1 with these ports, or, without `enable`, takes that
// back and ignores the ports. False when the desktop's tool is missing and nothing was run; true
// otherwise, whatever the exit statuses of its commands. Blocks for the tools. Any thread.

bool apply_proxy_gnome(int http_port, int socks_port, bool enable);

// Tells running KDE programs to read the settings again.
bool apply_proxy_kde(int http_port, int socks_port, bool enable);

// Sets XFCE's property, which stays when the proxy is taken back, and runs the GNOME backend.
bool apply_proxy_xfce(int http_port, int socks_port, bool enable);

struct Backend {
  const char* desktop;
  bool (*apply)(int http_port, int socks_port, bool enable);
};

// The GNOME backend is the last resort of every desktop, also of one in no row: programs of many
// desktops read GNOME's settings.
inline constexpr Backend k_backends[] = {
    {"gnome", apply_proxy_gnome}, {"mate", apply_proxy_gnome}, {"cinnamon", apply_proxy_gnome},
    {"other", apply_proxy_gnome}, {"kde", apply_proxy_kde},    {"xfce", apply_proxy_xfce},
};

#endif
