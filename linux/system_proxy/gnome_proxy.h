#ifndef CORVANA_SYSTEM_PROXY_GNOME_PROXY_H_
#define CORVANA_SYSTEM_PROXY_GNOME_PROXY_H_

// Points GNOME's settings at 127.0.0.1 with these ports, or wipes them; then the ports don't
// matter. False when `gsettings` is missing and nothing was run; true otherwise, whatever became of
// the commands. Blocks. Any thread.
bool apply_proxy_gnome(int http_port, int socks_port, bool enable);

#endif
