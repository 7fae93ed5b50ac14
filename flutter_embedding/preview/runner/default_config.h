#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_DEFAULT_CONFIG_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_DEFAULT_CONFIG_H_

#include <optional>
#include <string>

namespace preview {

// The default configuration's path: absolute, UTF-8. Any thread.
std::string default_config_path();

// The default configuration, as JSON text that ends in a line feed.
std::string default_config_text();

// Writes the default configuration unless there is a file already, which the user may have changed.
// Returns an error message, or an empty string.
std::string ensure_default_config();

// A message for the user when the path is a folder or the file isn't JSON. Otherwise empty, also
// when the file can't be read: the host reports that.
std::string find_fault_in_config(const std::string& path);

// The port of the first mixed inbound in a configuration's text; nothing when the text isn't JSON
// or has no such port.
std::optional<int> mixed_port_of(const std::string& text);

// The same for a file. The default configuration need not exist yet; otherwise anything but a
// readable regular file of at most 4 MiB gives nothing.
std::optional<int> mixed_port_of_file(const std::string& path);

}  // namespace preview

#endif
