#ifndef CORVANA_EXECUTABLE_DIR_H_
#define CORVANA_EXECUTABLE_DIR_H_

#include <string>

// The directory of the running executable, without a trailing slash, as the kernel names it: "" for
// the root directory, "." when the kernel's answer can't be read. Any thread.
std::string get_executable_dir();

#endif
