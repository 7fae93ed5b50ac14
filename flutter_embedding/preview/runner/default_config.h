#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_DEFAULT_CONFIG_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_DEFAULT_CONFIG_H_

#include <optional>
#include <string>

namespace preview {

// Where the ready-made configuration lies: absolute, UTF-8. Any thread.
std::string default_config_path();

// The ready-made configuration, as JSON text that ends in a line feed.
std::string default_config_text();

// Puts the ready-made configuration in its place unless a file is there already, which may be the
// person's own version of it. Returns why it couldn't, or an empty string.
std::string ensure_default_config();

// What a person can see is wrong with a configuration's file before it is used: a folder, or no JSON.
// Empty when there is nothing, or when the file can't be read; then the host says why.
std::string find_fault_in_config(const std::string& path);

// The port of the first mixed inbound in a configuration's text; nothing when the text isn't JSON
// or has no such port.
std::optional<int> mixed_port_of(const std::string& text);

// The same for a file. The ready-made configuration needs not be written yet; anything but a
// readable regular file of sensible size gives nothing.
std::optional<int> mixed_port_of_file(const std::string& path);

}  // namespace preview

#endif
