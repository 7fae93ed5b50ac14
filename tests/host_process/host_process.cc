#include "host_process/host_process.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <arpa/inet.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

bool eventually(const std::function<bool()>& is_so, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!is_so()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(5ms);
  }
  return true;
}

static std::vector<pid_t> all_processes() {
  std::vector<pid_t> processes;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const pid_t pid = std::atoi(entry.path().filename().c_str());
    if (pid > 0) processes.push_back(pid);
  }
  return processes;
}

static std::string proc_file(pid_t pid, const char* name) {
  return read_file("/proc/" + std::to_string(pid) + "/" + name);
}

// Zombies have nothing left to do and don't count.
static std::vector<pid_t> living_members(pid_t session) {
  std::vector<pid_t> members;
  for (const pid_t pid : all_processes()) {
    const std::string status = proc_file(pid, "stat");
    const size_t name_end = status.rfind(") ");
    if (name_end == status.npos) continue;
    std::istringstream fields(status.substr(name_end + 2));
    char state = 0;
    pid_t parent = 0, group = 0, its_session = 0;
    fields >> state >> parent >> group >> its_session;
    if (its_session == session && state != 'Z' && state != 'X') members.push_back(pid);
  }
  return members;
}

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
  static int count = 0;
  console_path_ = fs::current_path() / ("console-" + std::to_string(++count));
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, 1, console_path_.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                   0600);
  posix_spawn_file_actions_adddup2(&files, 1, 2);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const int error =
      posix_spawnp(&pid_, arguments[0], &files, &attributes, arguments.data(), environ);
  EXPECT_EQ(0, error) << command[0];
  posix_spawn_file_actions_destroy(&files);
  posix_spawnattr_destroy(&attributes);
}

ChildProcess::~ChildProcess() {
  const auto kill_members = [this] {
    const std::vector<pid_t> members = living_members(pid_);
    for (const pid_t pid : members) kill(pid, SIGKILL);
    return members.empty();
  };
  EXPECT_TRUE(eventually(kill_members, 10s));
  if (!status_) waitpid(pid_, nullptr, 0);
}

void ChildProcess::send(int signal_number) const { kill(pid_, signal_number); }

std::string ChildProcess::console() const { return read_file(console_path_); }

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
  if (eventually([this] { return living_members(pid_).empty(); })) return "";
  std::string command_lines;
  for (const pid_t pid : living_members(pid_)) command_lines += proc_file(pid, "cmdline") + "\n";
  return command_lines;
}

std::vector<std::string> host_command(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), CORVANA_EXECUTABLE);
  return arguments;
}

bool wait_until_signals_are_hooked(const ChildProcess& host) {
  return eventually([&] {
    const std::string status = proc_file(host.pid(), "status");
    const size_t caught = status.find("SigCgt:");
    if (caught == status.npos) return false;
    // SIGHUP comes last.
    return (std::stoull(status.substr(caught + 7), nullptr, 16) >> (SIGHUP - 1) & 1) != 0;
  });
}

static long process_of(Display* display, Window window) {
  Atom type = 0;
  int format = 0;
  unsigned long count = 0, rest = 0;
  unsigned char* value = nullptr;
  XGetWindowProperty(display, window, XInternAtom(display, "_NET_WM_PID", False), 0, 1, False,
                     XA_CARDINAL, &type, &format, &count, &rest, &value);
  const long pid = count == 1 ? *reinterpret_cast<long*>(value) : 0;
  if (value != nullptr) XFree(value);
  return pid;
}

static void ask_to_close(Display* display, Window window) {
  XEvent event = {};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  XSendEvent(display, window, False, NoEventMask, &event);
}

void close_window(const ChildProcess& host) {
  const std::unique_ptr<Display, int (*)(Display*)> display(XOpenDisplay(nullptr), XCloseDisplay);
  ASSERT_NE(nullptr, display);
  // Another client's window may go at any time.
  XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
  Window root = 0, parent = 0;
  Window* windows = nullptr;
  unsigned count = 0;
  int closed = 0;
  XQueryTree(display.get(), DefaultRootWindow(display.get()), &root, &parent, &windows, &count);
  for (unsigned i = 0; i < count; ++i) {
    XWindowAttributes attributes = {};
    XGetWindowAttributes(display.get(), windows[i], &attributes);
    if (attributes.map_state != IsViewable) continue;
    if (process_of(display.get(), windows[i]) != host.pid()) continue;
    ask_to_close(display.get(), windows[i]);
    ++closed;
  }
  if (windows != nullptr) XFree(windows);
  EXPECT_EQ(1, closed);
}

const WayOut k_ways_out[4] = {
    {"Terminate", [](const ChildProcess& host) { kill(host.pid(), SIGTERM); }},
    {"CtrlC", [](const ChildProcess& host) { kill(-host.pid(), SIGINT); }},
    {"HangUp", [](const ChildProcess& host) { kill(-host.pid(), SIGHUP); }},
    {"CloseWindow", close_window},
};

void PrintTo(const WayOut& way, std::ostream* out) { *out << way.name; }

bool does_core_run() {
  for (const pid_t pid : all_processes()) {
    if (proc_file(pid, "cmdline").find("zant") != std::string::npos) return true;
  }
  return false;
}

std::string output_of(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "re"), pclose);
  std::string text;
  for (int byte = std::fgetc(pipe.get()); byte != EOF; byte = std::fgetc(pipe.get())) {
    text.push_back(static_cast<char>(byte));
  }
  return text;
}

static int free_port() {
  const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  bind(probe, reinterpret_cast<sockaddr*>(&address), size);
  getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
  close(probe);
  return ntohs(address.sin_port);
}

HostTest::HostTest()
    : mixed_port_(free_port()), clash_port_(free_port()), config_(home_.path() + "/config.json") {
  write_file(config_,
             R"({"inbounds": [{"type": "mixed", "listen": "127.0.0.1", "listen_port": )" +
                 std::to_string(mixed_port_) +
                 R"(}], "experimental": {"clash_api": {"external_controller": "127.0.0.1:)" +
                 std::to_string(clash_port_) + R"("}}})");
  // Without one, GIO would launch a session bus that stays behind.
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  // An entry that can't be written spares each launch the second that the host gives the desktop.
  fs::create_directories(home_.path() + "/.local/share/applications/Corvana.desktop");
}

std::vector<std::string> HostTest::connecting(std::vector<std::string> more) const {
  more.insert(more.begin(), {"--config", config_, "--connect"});
  return host_command(std::move(more));
}
