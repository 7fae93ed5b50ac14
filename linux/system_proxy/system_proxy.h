#ifndef CORVANA_SYSTEM_PROXY_SYSTEM_PROXY_H_
#define CORVANA_SYSTEM_PROXY_SYSTEM_PROXY_H_

// Both run the desktop's own tools, write the environment files and end with one line on the
// console; they report nothing to the caller. They block for the tools and take no lock. Any
// thread.

// Points the desktop at 127.0.0.1 with these ports. When the host begins to leave, stops between
// two settings, writes no environment file and prints nothing; the caller then has to call
// clear_system_proxy().
void apply_system_proxy(int http_port, int socks_port);

// Switches the proxy off everywhere that apply_system_proxy switches it on. Lists of hosts without
// proxy, and XFCE's property, keep their last values.
void clear_system_proxy();

// A core that the host ends to start another one leaves the desktop pointing at a port where nobody
// listens, until one of the two above has run. Leaving must clear the proxy then, although no core
// runs. Any thread.
void note_proxy_without_core();
bool is_proxy_without_core();

#endif
