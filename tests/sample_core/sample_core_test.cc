// The real executable. curl fetches the core's own version through it; an echo server in this
// process shows what reaches a server.
#include <gio/gio.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "support/temporary_home.h"

using namespace std::string_literals;

// Gives the shell command's exit status in decimal, a blank and its output.
static std::string run(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) output += static_cast<char>(c);
  return std::to_string(WEXITSTATUS(pclose(pipe))) + " " + output;
}

static gboolean echo(GThreadedSocketService*, GIOStream* client) {
  g_output_stream_splice(g_io_stream_get_output_stream(client),
                         g_io_stream_get_input_stream(client), G_OUTPUT_STREAM_SPLICE_NONE, nullptr,
                         nullptr);
  return TRUE;
}

// Opens a free port and gives its "127.0.0.1:port".
static std::string open_port(GSocketListener* listener) {
  g_socket_listener_set_backlog(listener, 200);
  const int port = g_socket_listener_add_any_inet_port(listener, nullptr, nullptr);
  return "127.0.0.1:" + std::to_string(port);
}

static std::string start_echo_server() {
  GSocketService* service = g_threaded_socket_service_new(-1);
  g_signal_connect(service, "run", G_CALLBACK(echo), nullptr);
  std::thread([] { g_main_loop_run(g_main_loop_new(nullptr, FALSE)); }).detach();
  return open_port(G_SOCKET_LISTENER(service));
}

static std::string free_port() {
  g_autoptr(GSocketListener) listener = g_socket_listener_new();
  return open_port(listener);
}

// Sends `bytes`, closes that direction and meanwhile reads until the other side has closed too.
static std::string talk(const std::string& port, const std::string& bytes) {
  g_autoptr(GSocketClient) client = g_socket_client_new();
  g_socket_client_set_enable_proxy(client, FALSE);
  g_socket_client_set_timeout(client, 20);
  g_autoptr(GSocketConnection) connection =
      g_socket_client_connect_to_host(client, port.c_str(), 0, nullptr, nullptr);
  if (connection == nullptr) return "no connection";
  GIOStream* stream = G_IO_STREAM(connection);
  std::thread sender([&] {
    g_output_stream_write_all(g_io_stream_get_output_stream(stream), bytes.data(), bytes.size(),
                              nullptr, nullptr, nullptr);
    g_socket_shutdown(g_socket_connection_get_socket(connection), FALSE, TRUE, nullptr);
  });
  std::string answer(bytes.size() + 1024, '\0');
  gsize count = 0;
  const gboolean is_whole = g_input_stream_read_all(
      g_io_stream_get_input_stream(stream), answer.data(), answer.size(), &count, nullptr, nullptr);
  sender.join();
  return is_whole ? answer.substr(0, count) : "cut off";
}

class SampleCore : public testing::Test {
 protected:
  void SetUp() override {
    write_file("core.json", R"({"experimental": {"clash_api": {"external_controller": ")" + clash_ +
                                R"("}}, "inbounds": [{"type": "mixed", "listen_port": )" +
                                mixed_.substr(mixed_.find(':') + 1) + "}]}");
    start();
  }
  void TearDown() override { EXPECT_EQ(end(SIGTERM), 0); }

  void start() {
    core_ = g_subprocess_new(G_SUBPROCESS_FLAGS_STDOUT_SILENCE, nullptr, SAMPLE_CORE_PATH, "run",
                             "-c", "core.json", "-D", home_.bin().c_str(), nullptr);
    for (int i = 0; i < 100 && talk(clash_, "") == "no connection"; ++i) g_usleep(50'000);
  }
  int end(int signal_number) {
    g_autoptr(GSubprocess) core = std::exchange(core_, nullptr);
    g_subprocess_send_signal(core, signal_number);
    g_subprocess_wait(core, nullptr, nullptr);
    return g_subprocess_get_if_exited(core) ? g_subprocess_get_exit_status(core) : -1;
  }

  TemporaryHome home_;
  const std::string echo_ = start_echo_server();
  const std::string mixed_ = free_port();
  const std::string clash_ = free_port();
  const std::string fetch_ = "curl -s " + clash_ + "/version ";
  GSubprocess* core_ = nullptr;
};

TEST_F(SampleCore, ServesEveryKindOfProxyClient) {
  for (const char* way : {"--noproxy ", "-x ", "-p -x ", "--socks5 ", "--socks5-hostname "}) {
    EXPECT_EQ(run(fetch_ + way + mixed_), R"(0 {"version":"1.0.0","meta":false,"premium":false})");
    EXPECT_EQ(run(fetch_ + "-d x -w %{http_code} -o /dev/null " + way + mixed_), "0 404");
  }
}

TEST_F(SampleCore, GivesTheServerWhatItExpectsAndLeavesTheBodyAlone) {
  const std::string body = "Transfer-Encoding: chunked\r\n", chunks = "3\r\nabc\r\n0\r\n\r\n";
  EXPECT_EQ(
      talk(mixed_, "POST http://me:pw@" + echo_ + "?q#f HTTP/1.1\r\nHost: other\r\n" + body +
                       "Proxy-Connection: keep-alive\r\n\r\n" + chunks),
      "POST /?q HTTP/1.1\r\nHost: " + echo_ + "\r\n" + body + "Connection: close\r\n\r\n" + chunks);
}

TEST_F(SampleCore, AnswersWhatItCannotDo) {
  const std::string socks = "\5\1\0"s, chosen = "\5\0"s, port_one = "\177\0\0\1\0\1"s;
  const std::pair<std::string, std::string> rows[] = {
      {"GET / HTTP/1.1\r\n\r\n", "HTTP/1.1 400 "},
      {"GET http://127.0.0.1:1/ HTTP/1.1\r\nA: b\r\n folded\r\n\r\n", "HTTP/1.1 400 "},
      {"GET http://127.0.0.1:1/ HTTP/1.1\r\n\r\n", "HTTP/1.1 502 "},
      {"GET http://127.0.0.1:1/ HTTP/1.1\r\nA: " + std::string(500'000, 'a'), "HTTP/1.1 431 "},
      {"CONNECT 127.0.0.1:65536 HTTP/1.1\r\n\r\n", "HTTP/1.1 400 "},
      {"CONNECT 127.0.0.1:1 HTTP/1.1\r\n\r\n", "HTTP/1.1 502 "},
      {"\5\1\2"s, "\5\377"},
      {socks + "\5\1\0\1"s + port_one, chosen + "\5\5"},
      {socks + "\5\1\0\1\306\63\144\1\0\120"s, chosen + "\5\3"},
      {socks + "\5\1\0\3\3a\nb\0\120"s, chosen + "\5\1"},
      {socks + "\5\2\0\1"s + port_one, chosen + "\5\7"},
      {socks + "\5\1\0\11"s, chosen + "\5\10"},
  };
  for (const auto& [request, answer] : rows) {
    EXPECT_EQ(talk(mixed_, request).substr(0, answer.size()), answer) << request.substr(0, 80);
  }
}

TEST_F(SampleCore, CarriesManyLargeTransfersWhileOtherClientsVanish) {
  auto vanishing = std::async(std::launch::async, run,
                              "for i in $(seq 20); do curl -s -m 0.2 -T /dev/zero -x " + mixed_ +
                                  " " + echo_ + "/ >/dev/null & done; wait");
  const std::string request = "CONNECT " + echo_ + " HTTP/1.1\r\n\r\n", data(2'000'000, 'x');
  std::vector<std::future<std::string>> answers(40);
  for (auto& answer : answers) {
    answer = std::async(std::launch::async, talk, mixed_, request + data);
  }
  for (auto& answer : answers) {
    EXPECT_TRUE(answer.get() == "HTTP/1.1 200 Connection established\r\n\r\n" + data);
  }
}

TEST_F(SampleCore, BindsItsPortsAgainRightAfterBeingKilled) {
  run(fetch_);  // the core closes first, so its port stays occupied for a while
  end(SIGKILL);
  start();
  EXPECT_EQ(run(fetch_ + "-o /dev/null -x " + mixed_), "0 ");
}

TEST_F(SampleCore, EndsWithOneLineOnABadCommandLine) {
  const std::string mixed = R"({"inbounds": [{"type": "mixed", "listen_port": )";
  const std::string api = R"(1}], "experimental": {"clash_api": {"external_controller": 1}}})";
  const std::string rows[][3] = {
      {"walk", "", "unknown command: walk"},
      {"run", "", "-c FILE is missing"},
      {"run -c", "", "Missing argument"},
      {"run -c core.json '--no\nsuch'", "", "Unknown option --no?such"},
      {"run -c core.json more", "", "unexpected argument: more"},
      {"run -c core.json -D absent", "", "cannot enter the directory absent"},
      {"run -c core.json", "", "Address already in use"},
      {"run -c absent", "", "No such file"},
      {"run -c file", "no json", "is not JSON"},
      {"run -c file", R"({"inbounds": [{"type": "tun"}]})", "no inbound of the type \"mixed\""},
      {"run -c file", mixed + "0}]}", "listen_port"},
      {"run -c file", mixed + "65536}]}", "listen_port"},
      {"run -c file", mixed + R"("7890"}]})", "listen_port"},
      {"run -c file", mixed + R"(1, "listen": "example.com"}]})", "not an IP address"},
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
