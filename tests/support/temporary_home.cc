#include "support/temporary_home.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

TemporaryHome::TemporaryHome() {
  char pattern[] = "/tmp/home-XXXXXX";
  path_ = mkdtemp(pattern);
  fs::create_directory(bin());
  for (const char* name : {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "XDG_SESSION_TYPE",
                           "XDG_DATA_HOME", "XDG_CONFIG_HOME", "DBUS_SESSION_BUS_ADDRESS"}) {
    unsetenv(name);
  }
  setenv("HOME", path_.c_str(), 1);
  setenv("PATH", (bin() + ":/usr/bin:/bin:/usr/sbin:/sbin").c_str(), 1);
  fs::current_path(path_);
}

void TemporaryHome::allow_only(const std::vector<std::string>& programs) const {
  for (const auto& name : programs) fs::create_symlink("/usr/bin/" + name, bin() + "/" + name);
  setenv("PATH", bin().c_str(), 1);
}

void TemporaryHome::add_stand_in(const std::string& name, const std::string& script) const {
  const std::string path = bin() + "/" + name;
  write_file(path, script);
  chmod(path.c_str(), 0755);
}

void TemporaryHome::add_recorders(const std::vector<std::string>& names) const {
  // One write for a line, since some commands run side by side.
  const std::string script =
      "#!/bin/sh\nline=${0##*/}\nfor word; do line=\"$line $word\"; done\n"
      "printf '%s\\n' \"$line\" >>" +
      path_ + "/commands\n";
  for (const std::string& name : names) add_stand_in(name, script);
}

std::vector<std::string> TemporaryHome::recorded_commands() const {
  return lines_of(read_file(path_ + "/commands"));
}

std::string read_file(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

void write_file(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::trunc) << text;
}

std::vector<std::string> lines_of(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}
