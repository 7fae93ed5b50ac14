#ifndef CORVANA_SUPPORT_FILES_H_
#define CORVANA_SUPPORT_FILES_H_

#include <optional>
#include <string>

// Paths are byte strings as the system calls take them, contents are bytes. Any thread.

// The directory of the running executable, without a trailing slash, as the kernel names it: "" for
// the root directory, "." when the kernel's answer can't be read.
std::string get_executable_dir();

// True when `path` names something, links followed. A status that can't be determined (no access to
// a parent, a loop of links, a name too long) counts as nothing there.
bool path_exists(const std::string& path);

// The file's text, cut after 64 MiB; nothing when it can't be opened. A read error ends the text
// early.
std::optional<std::string> read_whole_file(const std::string& path);

// Replaces the file's content, creating it when needed. False when it can't be opened; a write that
// fails later (a full disk) is not reported.
bool write_whole_file(const std::string& path, const std::string& text);

// The last `max_lines` lines of the file, each followed by one line feed, also where the file's
// last line has none. "" when the file can't be opened. Reads as much as the file has when it is
// opened, and at most 64 MiB of what isn't a regular file. Memory is bounded by those lines.
std::string read_file_tail(const std::string& path, size_t max_lines);

#endif
