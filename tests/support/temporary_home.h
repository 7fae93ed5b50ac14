#ifndef CORVANA_TESTS_SUPPORT_TEMPORARY_HOME_H_
#define CORVANA_TESTS_SUPPORT_TEMPORARY_HOME_H_

#include <string>
#include <vector>

// A new directory that is the process's HOME and working directory, with an empty session
// environment and a "bin" in front of PATH for stand-in programs. It goes with the sandbox.
class TemporaryHome {
 public:
  TemporaryHome();

  const std::string& path() const { return path_; }
  std::string bin() const { return path_ + "/bin"; }

  // PATH becomes "bin" alone, filled with links to these programs of the system.
  void allow_only(const std::vector<std::string>& programs) const;

  // An executable script in "bin".
  void add_stand_in(const std::string& name, const std::string& script) const;

  // Stand-ins that append their name and arguments as one line to the file "commands".
  void add_recorders(const std::vector<std::string>& names) const;
  std::vector<std::string> recorded_commands() const;

 private:
  std::string path_;
};

std::string read_file(const std::string& path);  // "" when there is none
void write_file(const std::string& path, const std::string& text);
std::vector<std::string> lines_of(const std::string& text);

#endif
