// The real executable, with curl as its client.
#include <gio/gio.h>
#include <gtest/gtest.h>

#include <csignal>
#include <future>

#include "support/temporary_home.h"

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
    for (int i = 0; i < 200 && output_of("curl -s " + clash_).empty(); ++i) g_usleep(50'000);
  }
  ~SampleCore() override {
    g_subprocess_send_signal(core_, SIGTERM);
    g_subprocess_wait(core_, nullptr, nullptr);
    EXPECT_EQ(g_subprocess_get_status(core_), 0);
    g_object_unref(core_);
  }

  TemporaryHome home_;
  const std::string mixed_port_ = free_port();
  const std::string clash_port_ = free_port();
  const std::string clash_ = "127.0.0.1:" + clash_port_;
  GSubprocess* core_ = nullptr;
};

TEST_F(SampleCore, ServesEachKindOfProxyClient) {
  const auto fetch = [this](const char* kind, const std::string& page) {
    // Newer curls take the first address of localhost, which may be ::1, to a SOCKS5 proxy.
    return output_of("curl -4 -s --fail " + std::string(kind) + " 127.0.0.1:" + mixed_port_ +
                     " http://localhost:" + page + " && echo");
  };
  for (const char* kind : {"--proxy", "--proxytunnel --proxy", "--socks4", "--socks4a", "--socks5",
                           "--socks5-hostname"}) {
    EXPECT_EQ(fetch(kind, clash_port_ + "/version"),
              "{\"version\":\"1.0.0\",\"meta\":false,\"premium\":false}\n")
        << kind;
    EXPECT_EQ(fetch(kind, "1"), "") << kind;
  }
}

TEST_F(SampleCore, PassesOnWhatIsSentAheadOfTheAnswer) {
  const std::string port = free_port();
  const std::string server = "127.0.0.1:" + port;
  g_autoptr(GSocketAddress) address =
      g_inet_socket_address_new_from_string("127.0.0.1", static_cast<guint>(std::stoul(port)));
  g_autoptr(GSocket) listener =
      g_socket_new(G_SOCKET_FAMILY_IPV4, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP, nullptr);
  g_socket_set_timeout(listener, 10);
  ASSERT_TRUE(g_socket_bind(listener, address, TRUE, nullptr));
  ASSERT_TRUE(g_socket_listen(listener, nullptr));
  const std::string socket_headers =
      R"(Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Key: k\r\n\r\nframe)";
  const std::string rows[][2] = {
      {"CONNECT " + server + R"( HTTP/1.1\r\n\r\nframe)", "frame"},
      {"GET ws://" + server + R"(/chat HTTP/1.1\r\n)" + socket_headers,
       "GET /chat HTTP/1.1\r\nHost: " + server +
           "\r\nSec-WebSocket-Key: k\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n\r\nframe"},
  };
  for (const auto& [request, expected] : rows) {
    auto reply = std::async(std::launch::async, output_of,
                            "timeout 20 bash -c 'exec 3<>/dev/tcp/127.0.0.1/" + mixed_port_ +
                                "; printf \"" + request + "\" >&3; cat <&3'");
    g_autoptr(GSocket) peer = g_socket_accept(listener, nullptr, nullptr);
    ASSERT_NE(peer, nullptr) << request;
    std::string received;
    char chunk[4096];
    for (gssize count = 1; count > 0 && received.size() < expected.size();) {
      count = g_socket_receive(peer, chunk, sizeof chunk, nullptr, nullptr);
      if (count > 0) received.append(chunk, static_cast<size_t>(count));
    }
    EXPECT_EQ(received, expected);
    g_socket_send(peer, "answer", 6, nullptr, nullptr);
    g_socket_close(peer, nullptr);
    EXPECT_NE(reply.get().find("answer"), std::string::npos) << request;
  }
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
        output_of("timeout 20 '" SAMPLE_CORE_PATH "' " + arguments + " 2>&1 >/dev/null; echo $?");
    EXPECT_EQ(outcome.find("error: "), 0u) << arguments;
    EXPECT_EQ(lines_of(outcome).size(), 2u) << outcome;
    EXPECT_EQ(lines_of(outcome).back(), "1") << arguments;
    EXPECT_NE(outcome.find(text), std::string::npos) << outcome;
  }
}
