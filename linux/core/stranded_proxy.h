#ifndef CORVANA_CORE_STRANDED_PROXY_H_
#define CORVANA_CORE_STRANDED_PROXY_H_

// A core that the host kills to start another leaves the desktop pointing at its port until the new
// one is ready. While that lasts, leaving must take the proxy back although no core runs.

// Notes that it begins, or that the proxy points at a core again. Any thread.
void note_stranded_proxy(bool stranded);
bool is_proxy_stranded();

// Clears the system proxy, wherever it points. Comes before the kill of a core: with that dead and
// the proxy still set, the desktop has no internet. Blocks for the desktop's tools. Any thread.
void take_back_proxy();

#endif
