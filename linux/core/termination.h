#ifndef CORVANA_CORE_TERMINATION_H_
#define CORVANA_CORE_TERMINATION_H_

// Sends SIGKILL to every process that was started as a core. Does not wait for their end; whether
// it worked, only the probe tells. Any thread.
void terminate_core();

// A core that the host kills to start another leaves the desktop pointing at its port until the new
// one is ready. While that lasts, leaving must take the proxy back although no core runs. Any
// thread.
void note_proxy_without_core(bool left_without_core);
bool is_proxy_without_core();

#endif
