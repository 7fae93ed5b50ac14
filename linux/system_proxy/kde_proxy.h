#ifndef CORVANA_SYSTEM_PROXY_KDE_PROXY_H_
#define CORVANA_SYSTEM_PROXY_KDE_PROXY_H_

// Points KDE's settings at 127.0.0.1 with these ports, or deletes them; then the ports don't
// matter. Running programs are told to reread. False when neither kwriteconfig5 nor kwriteconfig6
// is there and nothing was run; true otherwise, whatever became of the commands. Blocks. Any
// thread.
bool apply_proxy_kde(int http_port, int socks_port, bool enable);

#endif
