#ifndef CORVANA_CORE_PROCESS_PROBE_H_
#define CORVANA_CORE_PROCESS_PROBE_H_

#include <string>

// True when some process's command line, up to its first line feed, holds `name` as a plain byte
// substring: in the program's path or in any one argument. No process is excluded, not even our
// own. What can't be read doesn't match. One pass over /proc, no state. Any thread.
bool is_process_running(const std::string& name);

#endif
