#ifndef CORVANA_CORE_CORE_BINARY_H_
#define CORVANA_CORE_CORE_BINARY_H_

#include <string>

// The core's path: what the shell finds on PATH, else the first of the places where an installation
// puts it that the user may execute; "" when there is none. The path is given as it was found, not
// made canonical. Nothing is cached and nothing printed. Blocks for one shell. Any thread.
std::string find_zant_binary();

#endif
