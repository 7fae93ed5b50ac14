#ifndef CORVANA_SYSTEM_PROXY_PROXY_ENV_FILES_H_
#define CORVANA_SYSTEM_PROXY_PROXY_ENV_FILES_H_

// The proxy in the usual environment variables, for programs that know no desktop settings. Both
// make their directory, do nothing when HOME is unset, and say nothing when the file can't be
// written or deleted. When disabling, the ports don't matter. Any thread.

// ~/.config/environment.d/99-corvana.conf, read when the user's systemd session starts; deleted to
// disable.
void write_systemd_environment_dropin(int http_port, int socks_port, bool enable);

// True when that file exists: the client has set the proxy and not taken it back. Any thread.
bool is_environment_dropin_there();

// ~/.config/corvana/proxy.sh, to be sourced into a shell, never executable; unsets the variables
// when disabled.
void write_proxy_env_file(int http_port, int socks_port, bool enable);

#endif
