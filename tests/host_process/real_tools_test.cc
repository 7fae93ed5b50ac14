#include <gio/gio.h>
#include <unistd.h>

#include <thread>

#include "host_process/host_process.h"

using std::string;

namespace {

// The desktops' own tools, with the services that they start on a session bus of the test's.
class RealTools : public HostTest {
 protected:
  RealTools() {
    g_test_dbus_add_service_dir(bus_, "/usr/share/dbus-1/services");
    const string display = getenv("DISPLAY");
    g_test_dbus_up(bus_);  // unsets DISPLAY
    setenv("DISPLAY", display.c_str(), 1);
  }
  ~RealTools() override {
    g_test_dbus_down(bus_);
    g_object_unref(bus_);
  }

  void connect(const char* session) {
    setenv("XDG_CURRENT_DESKTOP", session, 1);
    host_.emplace(connecting());
    ASSERT_TRUE(host_->wait_for("[Corvana] 已设置系统代理")) << host_->console();
  }

  // By a second launch, as the first one's button can't be pressed from here.
  void disconnect() {
    ChildProcess second(host_command({"--quit"}));
    ASSERT_EQ(0, second.wait_for_exit().value_or(-1)) << second.console();
    ASSERT_NE(string::npos, second.console().find("已停止代理服务")) << second.console();
  }

  string address(const string& scheme) const {
    return scheme + "://127.0.0.1:" + std::to_string(mixed_port_);
  }

  GTestDBus* const bus_ = g_test_dbus_new(G_TEST_DBUS_NONE);
  std::optional<ChildProcess> host_;
};

// Answers every request with "a page".
class WebServer {
 public:
  ~WebServer() {
    g_cancellable_cancel(end_);
    thread_.join();
    g_object_unref(listener_);
    g_object_unref(end_);
  }
  string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  void serve() {
    while (GSocketConnection* client =
               g_socket_listener_accept(listener_, nullptr, end_, nullptr)) {
      char request[4096];
      GIOStream* const stream = G_IO_STREAM(client);
      g_input_stream_read(g_io_stream_get_input_stream(stream), request, sizeof request, end_,
                          nullptr);
      const string reply = "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\na page";
      g_output_stream_write_all(g_io_stream_get_output_stream(stream), reply.data(), reply.size(),
                                nullptr, nullptr, nullptr);
      g_object_unref(client);
    }
  }

  GSocketListener* const listener_ = g_socket_listener_new();
  GCancellable* const end_ = g_cancellable_new();
  const guint16 port_ = g_socket_listener_add_any_inet_port(listener_, nullptr, nullptr);
  std::thread thread_{[this] { serve(); }};
};

}  // namespace

static string proxies_by_gio() {
  return output_of("XDG_CURRENT_DESKTOP=GNOME '" PROXY_LOOKUP
                   "' http://example.com/ https://example.com/ 2>&1");
}

static const char k_direct[] = "direct://\ndirect://\n";

TEST_F(RealTools, GnomeProgramsFindTheProxyAndLoseIt) {
  ASSERT_NO_FATAL_FAILURE(connect("GNOME"));
  EXPECT_EQ(address("http") + "\n" + address("http") + "\n", proxies_by_gio());
  ASSERT_NO_FATAL_FAILURE(disconnect());
  EXPECT_EQ(k_direct, proxies_by_gio());
}

TEST_F(RealTools, KdeFileAndSignal) {
  const string file = home_.path() + "/.config/kioslaverc";
  ChildProcess listener({"dbus-monitor", "--session", "interface=org.kde.KIO.Scheduler"});
  ASSERT_TRUE(listener.wait_for("NameAcquired"));
  ASSERT_NO_FATAL_FAILURE(connect("KDE"));
  EXPECT_EQ("[Proxy Settings]\nNoProxyFor=localhost,127.0.0.1,::1\nProxyType=1\nhttpProxy=" +
                address("http") + "\nhttpsProxy=" + address("http") +
                "\nsocksProxy=" + address("socks") + "\n",
            read_file(file));
  ASSERT_NO_FATAL_FAILURE(disconnect());
  EXPECT_EQ("[Proxy Settings]\nNoProxyFor=localhost,127.0.0.1,::1\nProxyType=0\n", read_file(file));
  EXPECT_EQ(k_direct, proxies_by_gio());
  // At start-up, for the connect and for the disconnect.
  EXPECT_TRUE(eventually([&] {
    const string heard = listener.console();
    size_t signals = 0;
    for (size_t at = 0; (at = heard.find("reparseSlaveConfiguration", at)) != heard.npos; ++at) {
      ++signals;
    }
    return signals == 3;
  })) << listener.console();
}

TEST_F(RealTools, XfcePropertyBesideTheGnomeSettings) {
  const string query = "xfconf-query -c xfce4-session -p /general/ProxyHTTP 2>&1";
  const string value =
      "Value is an array with 2 items:\n\n127.0.0.1\n" + std::to_string(mixed_port_) + "\n";
  ASSERT_NO_FATAL_FAILURE(connect("XFCE"));
  EXPECT_EQ(value, output_of(query));
  EXPECT_EQ(address("http") + "\n" + address("http") + "\n", proxies_by_gio());
  ASSERT_NO_FATAL_FAILURE(disconnect());
  EXPECT_EQ(value, output_of(query));  // only the GNOME settings are taken back
  EXPECT_EQ(k_direct, proxies_by_gio());
}

TEST_F(RealTools, ShellsAndTheSystemdSessionFindTheProxyAndLoseIt) {
  const string environment =
      "http_proxy=http://old bash -c 'source ~/.config/corvana/proxy.sh; env'"
      " | grep -i _proxy | LC_ALL=C sort";
  const string generator =
      "/usr/lib/systemd/user-environment-generators/"
      "30-systemd-environment-d-generator";
  const bool has_generator = access(generator.c_str(), X_OK) == 0;
  const string no_proxy = "localhost,127.0.0.1,::1";
  ASSERT_NO_FATAL_FAILURE(connect("GNOME"));
  EXPECT_EQ("ALL_PROXY=" + address("socks5") + "\nHTTPS_PROXY=" + address("http") +
                "\nHTTP_PROXY=" + address("http") + "\nNO_PROXY=" + no_proxy +
                "\nall_proxy=" + address("socks5") + "\nhttp_proxy=" + address("http") +
                "\nhttps_proxy=" + address("http") + "\nno_proxy=" + no_proxy + "\n",
            output_of(environment));
  const string in_session = output_of(generator + " | grep _proxy | LC_ALL=C sort");
  ASSERT_NO_FATAL_FAILURE(disconnect());
  EXPECT_EQ("", output_of(environment));
  if (!has_generator) GTEST_SKIP() << "systemd's environment.d generator is not installed";
  EXPECT_EQ("all_proxy=" + address("socks5") + "\nhttp_proxy=" + address("http") +
                "\nhttps_proxy=" + address("http") + "\nno_proxy=" + no_proxy + "\n",
            in_session);
  EXPECT_EQ("", output_of(generator + " | grep _proxy"));
}

TEST_F(RealTools, PagesComeThroughTheCoreWhileConnected) {
  WebServer server;
  const string http = "curl -sS -m 20 -x " + address("http") + " " + server.url() + " 2>&1";
  const string socks = "curl -sS -m 20 --socks5 127.0.0.1:" + std::to_string(mixed_port_) + " " +
                       server.url() + " 2>&1";
  ASSERT_NO_FATAL_FAILURE(connect("GNOME"));
  EXPECT_EQ("a page", output_of(http));
  EXPECT_EQ("a page", output_of(socks));
  ASSERT_NO_FATAL_FAILURE(disconnect());
  EXPECT_NE("a page", output_of(http));
}
