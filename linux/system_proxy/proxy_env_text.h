#ifndef CORVANA_SYSTEM_PROXY_PROXY_ENV_TEXT_H_
#define CORVANA_SYSTEM_PROXY_PROXY_ENV_TEXT_H_

#include <string>

// The contents of the two environment files, UTF-8, for ports on 127.0.0.1. Pure.

// Plain key=value lines for systemd's environment.d.
std::string environment_dropin_text(int http_port, int socks_port);

// A script to be sourced: the first sets the variables, the second unsets them.
std::string proxy_script_text(int http_port, int socks_port);
std::string proxy_script_reset_text();

#endif
