#include "host_process/host_process.h"

#include <X11/Xlib.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <thread>

using namespace std::chrono_literals;

bool eventually(const std::function<bool()>& is_so, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!is_so()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(5ms);
  }
  return true;
}

static std::string next_console_path() {
  static int count = 0;
  return std::filesystem::current_path() / ("console-" + std::to_string(++count));
}

ChildProcess::ChildProcess(std::vector<std::string> command) : console_path_(next_console_path()) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (std::string& word : command) words.push_back(word.data());
  words.push_back(nullptr);
  pid_ = fork();
  if (pid_ != 0) return;
  setsid();
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(open(console_path_.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600), STDOUT_FILENO);
  dup2(STDOUT_FILENO, STDERR_FILENO);
  execvp(words[0], words.data());
  _exit(127);
}

// Zombies have nothing left to do and don't count.
static const char k_living[] = "pgrep -a -r R,S,D,T ";

ChildProcess::~ChildProcess() {
  const auto kill_all = [this] {
    const std::string session = "-s " + std::to_string(pid_);
    return output_of("pkill -KILL " + session + "; " + k_living + session).empty();
  };
  EXPECT_TRUE(eventually(kill_all, 10s));
  if (!status_) waitpid(pid_, nullptr, 0);
}

bool ChildProcess::wait_for(const std::string& text) const {
  return eventually([&] { return console().find(text) != std::string::npos; });
}

std::optional<int> ChildProcess::wait_for_exit(std::chrono::milliseconds limit) {
  int status = 0;
  const auto has_ended = [&] { return waitpid(pid_, &status, WNOHANG) == pid_; };
  if (!status_ && eventually(has_ended, limit)) status_ = status;
  return status_;
}

std::string ChildProcess::still_running() const {
  std::string processes;
  eventually([&] {
    processes = output_of(k_living + ("-s " + std::to_string(pid_)));
    return processes.empty();
  });
  return processes;
}

bool does_core_run() { return !output_of(k_living + std::string("-f '[z]ant'")).empty(); }

static void for_each_window(const std::function<void(Display*, Window)>& visit) {
  const std::unique_ptr<Display, int (*)(Display*)> display(XOpenDisplay(nullptr), XCloseDisplay);
  ASSERT_NE(display, nullptr);
  // A window may go at any time.
  XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
  Window root = 0, parent = 0, *windows = nullptr;
  unsigned count = 0;
  XQueryTree(display.get(), DefaultRootWindow(display.get()), &root, &parent, &windows, &count);
  for (unsigned i = 0; i < count; ++i) visit(display.get(), windows[i]);
  XFree(windows);
}

void close_window() {
  for_each_window([](Display* display, Window window) {
    const Atom protocols = XInternAtom(display, "WM_PROTOCOLS", False);
    XEvent event = {};
    event.xclient = {ClientMessage, 0, True, display, window, protocols, 32, {}};
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, window, False, NoEventMask, &event);
  });
}

int visible_windows() {
  int count = 0;
  for_each_window([&count](Display* display, Window window) {
    XWindowAttributes attributes = {};
    XGetWindowAttributes(display, window, &attributes);
    count += attributes.map_state == IsViewable;
  });
  return count;
}

HostTest::HostTest() {
  write_file(config_, R"({"inbounds": [{"type": "mixed", "listen_port": 7890}],
      "experimental": {"clash_api": {"external_controller": "127.0.0.1:9090"}}})");
  // Without one, GIO would launch a session bus that stays behind.
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  // An entry that can't be written spares each launch the second that the host gives the desktop.
  std::filesystem::create_directories(home_.path() + "/.local/share/applications/Corvana.desktop");
}

std::vector<std::string> HostTest::connecting(const std::vector<std::string>& more,
                                              std::vector<std::string> launcher) const {
  launcher.insert(launcher.end(), {CORVANA_EXECUTABLE, "--config", config_, "--connect"});
  launcher.insert(launcher.end(), more.begin(), more.end());
  return launcher;
}
