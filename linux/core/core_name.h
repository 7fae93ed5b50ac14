#ifndef CORVANA_CORE_CORE_NAME_H_
#define CORVANA_CORE_CORE_NAME_H_

// The core's executable, as it is looked for in the command lines of running processes.
inline constexpr char k_core_name[] = "zant";

#endif
