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

static std::string free_port() {
  g_autoptr(GSocketListener) listener = g_socket_listener_new();
  return std::to_string(g_socket_listener_add_any_inet_port(listener, nullptr, nullptr));
}

class SampleCore : public testing::Test {
 protected:
  SampleCore() {
    write_file("core.json", R"({"experimental": {"clash_api": {"external_controller": ")" + clash_ +
                                R"("}}, "inbounds": [{"type": "mixed", "listen_port": )" +
                                mixed_port_ + "}]}");
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
  const std::string mixed_port_ = free_port();
  const std::string clash_ = "127.0.0.1:" + free_port();
  GSubprocess* core_ = nullptr;
};

TEST_F(SampleCore, SaysItsVersion) {
  EXPECT_EQ(run("curl -sS " + clash_ + "/version"),
            R"(0 {"version":"1.0.0","meta":false,"premium":false})");
}

TEST_F(SampleCore, PassesOnWhatIsSentAheadOfItsAnswer) {
  const std::string requests =
      "CONNECT " + clash_ + R"( HTTP/1.1\r\n\r\nGET /version HTTP/1.0\r\n\r\n)";
  const std::string replies = run("timeout 20 bash -c 'exec 3<>/dev/tcp/127.0.0.1/" + mixed_port_ +
                                  "; printf \"" + requests + "\" >&3; cat <&3'");
  EXPECT_NE(replies.find("1.0.0"), std::string::npos) << replies;
}

TEST_F(SampleCore, EndsWithOneLineOnABadCommandLine) {
  const std::string mixed = R"({"inbounds": [{"type": "mixed", "listen_port": )";
  const std::string api = R"(1}], "experimental": {"clash_api": {"external_controller": 1}}})";
  const std::string rows[][3] = {
      {"walk", "", "unknown command: walk"},
      {"version x", "", "unexpected argument: x"},
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
