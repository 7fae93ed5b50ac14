#ifndef CORVANA_SYSTEM_PROXY_XFCE_PROXY_H_
#define CORVANA_SYSTEM_PROXY_XFCE_PROXY_H_

// Points XFCE's property, and GNOME's settings with it, at 127.0.0.1 with these ports; to disable
// wipes GNOME's settings only. False when `xfconf-query` is missing and nothing was run; true
// otherwise, whatever became of the commands. Blocks. Any thread.
bool apply_proxy_xfce(int http_port, int socks_port, bool enable);

#endif
