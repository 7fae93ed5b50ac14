// The real executable, with curl as its client.
#include <gio/gio.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>

#include "support/temporary_home.h"

// Gives the shell command's exit status in decimal, a blank and its output.
static std::string run(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) output += static_cast<char>(c);
  return std::to_string(WEXITSTATUS(pclose(pipe))) + " " + output;
}

// Gives "127.0.0.1:port".
static std::string free_port() {
  g_autoptr(GSocketListener) listener = g_socket_listener_new();
  const int port = g_socket_listener_add_any_inet_port(listener, nullptr, nullptr);
  return "127.0.0.1:" + std::to_string(port);
}

class SampleCore : public testing::Test {
 protected:
  SampleCore() {
    write_file("core.json", R"({"experimental": {"clash_api": {"external_controller": ")" + clash_ +
                                R"("}}, "inbounds": [{"type": "mixed", "listen_port": )" +
                                mixed_.substr(mixed_.find(':') + 1) + "}]}");
    core_ = g_subprocess_new(G_SUBPROCESS_FLAGS_STDOUT_SILENCE, nullptr, SAMPLE_CORE_PATH, "run",
                             "-c", "core.json", "-D", home_.bin().c_str(), nullptr);
    for (int i = 0; i < 200 && run("curl -s " + clash_)[0] != '0'; ++i) g_usleep(50'000);
  }
  ~SampleCore() override {
    g_subprocess_send_signal(core_, SIGTERM);
    g_subprocess_wait(core_, nullptr, nullptr);
    EXPECT_EQ(g_subprocess_get_status(core_), 0);
    g_object_unref(core_);
  }

  TemporaryHome home_;
  const std::string mixed_ = free_port();
  const std::string clash_ = free_port();
  GSubprocess* core_ = nullptr;
};

TEST_F(SampleCore, SaysItsVersion) {
  EXPECT_EQ(run("curl -sS " + clash_ + "/version"),
            R"(0 {"version":"1.0.0","meta":false,"premium":false})");
}

TEST_F(SampleCore, EndsWithOneLineOnABadCommandLine) {
  const std::string mixed = R"({"inbounds": [{"type": "mixed", "listen_port": )";
  const std::string api = R"(1}], "experimental": {"clash_api": {"external_controller": 1}}})";
  const std::string rows[][3] = {
      {"walk", "", "unknown command: walk"},
      {"run -c core.json '--no\nsuch'", "", "Unknown option --no?such"},
      {"run -c core.json", "", "Address already in use"},
      {"run -c absent", "", "No such file"},
      {"run -c file", "no json", "is not JSON"},
      {"run -c file", R"({"inbounds": [{"type": "tun"}]})", "no inbound of the type \"mixed\""},
      {"run -c file", mixed + "65536}]}", "listen_port"},
      {"run -c file", mixed + api, "external_controller"},
  };
  for (const auto& [arguments, file, text] : rows) {
    write_file("file", file);
    const std::string outcome =
        run("timeout 20 '" SAMPLE_CORE_PATH "' " + arguments + " 2>&1 >/dev/null");
    EXPECT_EQ(outcome.substr(0, 9), "1 error: ") << arguments;
    EXPECT_EQ(lines_of(outcome).size(), 1u) << outcome;
    EXPECT_NE(outcome.find(text), std::string::npos) << outcome;
  }
}
