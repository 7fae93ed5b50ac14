#ifndef CORVANA_SYSTEM_PROXY_SYSTEM_PROXY_H_
#define CORVANA_SYSTEM_PROXY_SYSTEM_PROXY_H_

// Both work through the desktop's own tools and the environment files, end with one line on the
// console, and report nothing to the caller. Nothing is remembered between calls. Both block for as
// long as the tools do, and take no lock. Any thread.

// Points the desktop at 127.0.0.1 with these ports.
void apply_system_proxy(int http_port, int socks_port);

// Switches the proxy off everywhere that apply_system_proxy switches it on. Lists of hosts without
// proxy, and XFCE's property, keep their last values.
void clear_system_proxy();

#endif
