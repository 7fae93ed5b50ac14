#include "host_process/host_process.h"

using std::string;

static string in_a_new_session(const string& command) {
  static const string generators[] = {
      "/usr/lib/systemd/user-environment-generators/30-systemd-environment-d-generator",
      LOGIN_FILES "/40-corvana"};
  return output_of("env -i PATH=$PATH $(" + generators[0] + "; HOME=$HOME " + generators[1] + ") " +
                   command + " 2>&1");
}

namespace {

// The desktops' own tools, with the services that they start on a session bus of the test's. The proxy
// is taken back by a disconnect, or at the login after host and core were killed.
class RealTools : public HostTest, public testing::WithParamInterface<const char*> {
 protected:
  RealTools() {
    EXPECT_TRUE(bus_.wait_for("\n")) << "no address";
    setenv("DBUS_SESSION_BUS_ADDRESS", lines_of(bus_.console())[0].c_str(), 1);
  }

  void connect(const char* session) {
    setenv("XDG_CURRENT_DESKTOP", session, 1);
    host_.emplace(connecting());
    ASSERT_TRUE(host_->wait_for("[Corvana] 已设置系统代理")) << host_->console();
  }

  void take_back() { return GetParam() == string("Disconnect") ? disconnect() : die_and_log_in(); }

  // By a second launch, as the first one's button can't be pressed from here.
  static void disconnect() {
    ChildProcess second({CORVANA_EXECUTABLE, "--quit"});
    ASSERT_EQ(0, second.wait_for_exit().value_or(-1)) << second.console();
    ASSERT_NE(string::npos, second.console().find("已停止代理服务")) << second.console();
  }

  void die_and_log_in() {
    host_.reset();
    EXPECT_EQ("all_proxy=\nhttp_proxy=\nhttps_proxy=\nno_proxy=\n",
              in_a_new_session("env | grep _proxy | LC_ALL=C sort"));
    ChildProcess program({CORVANA_BUNDLE "/corvana-proxy-reset"});
    EXPECT_EQ(0, program.wait_for_exit().value_or(-1)) << program.console();
  }

  const ChildProcess bus_{{"dbus-daemon", "--session", "--nofork", "--print-address"}};
  std::optional<ChildProcess> host_;
};

INSTANTIATE_TEST_SUITE_P(By, RealTools, testing::Values("Disconnect", "Login"));

}  // namespace

// What libproxy and GLib tell programs on GNOME. libproxy 0.4 names all proxies, 0.5 the first.
static string proxies_of_gnome_programs() {
  return output_of(
      "export XDG_CURRENT_DESKTOP=GNOME DESKTOP_SESSION=gnome;"
      " { proxy http://example.com/ https://example.com/ | cut -d' ' -f1; python3 -c '"
      "from gi.repository import Gio; look_up = Gio.ProxyResolver.get_default().lookup\n"
      "for scheme in \"http\", \"https\", \"telnet\":"
      "  print(look_up(scheme + \"://example.com\", None)[0])'; } | uniq");
}

static const char k_proxies[] = "http://127.0.0.1:7890\nsocks5://127.0.0.1:7890\n",
                  k_direct[] = "direct://\n";

TEST_P(RealTools, ProgramsShellsAndTheSystemdSessionFindTheProxyAndLoseIt) {
  const string sorted = " | grep -i _proxy | LC_ALL=C sort | tr '\\n' ' '";
  const string shell = "http_proxy=http://old bash -c '. ~/.config/corvana/proxy.sh; env'" + sorted;
  const string lower =
      "all_proxy=socks5://127.0.0.1:7890 http_proxy=http://127.0.0.1:7890"
      " https_proxy=http://127.0.0.1:7890 no_proxy=localhost,127.0.0.1,::1 ";
  const string page = "curl -sS -m 20 --noproxy '' http://127.0.0.1:8000/page 2>&1";
  const string text(2'000'000, 'x');
  write_file("page", text);
  ChildProcess server({"python3", "-m", "http.server", "--bind", "127.0.0.1", "8000"});
  ASSERT_TRUE(eventually([&] { return output_of(page) == text; }));

  ASSERT_NO_FATAL_FAILURE(connect("GNOME"));
  EXPECT_EQ(k_proxies, proxies_of_gnome_programs());
  EXPECT_EQ(
      "ALL_PROXY=socks5://127.0.0.1:7890 HTTPS_PROXY=http://127.0.0.1:7890"
      " HTTP_PROXY=http://127.0.0.1:7890 NO_PROXY=localhost,127.0.0.1,::1 " +
          lower,
      output_of(shell));
  EXPECT_EQ(lower, in_a_new_session("env" + sorted));
  for (const char* way : {"-x http://", "-p -x http://", "--socks5 ", "--socks5-hostname "}) {
    EXPECT_TRUE(text == output_of(page + " " + way + "127.0.0.1:7890")) << way;
  }

  ASSERT_NO_FATAL_FAILURE(take_back());
  EXPECT_EQ(k_direct, proxies_of_gnome_programs());
  EXPECT_EQ("", output_of(shell));
  EXPECT_EQ("", in_a_new_session("env" + sorted));
  EXPECT_FALSE(text == output_of(page + " -x http://127.0.0.1:7890"));
}

TEST_P(RealTools, KdeFileAndSignal) {
  const string file = home_.path() + "/.config/kioslaverc";
  const string reader = "KDE_FULL_SESSION=true proxy http://example.com https://example.com | uniq";
  ChildProcess listener({"dbus-monitor", "--session", "interface=org.kde.KIO.Scheduler"});
  ASSERT_TRUE(listener.wait_for("NameAcquired"));
  ASSERT_NO_FATAL_FAILURE(connect("KDE"));
  EXPECT_EQ(
      "[Proxy Settings]\nNoProxyFor=localhost,127.0.0.1,::1\nProxyType=1\n"
      "httpProxy=http://127.0.0.1:7890\nhttpsProxy=http://127.0.0.1:7890\n"
      "socksProxy=socks://127.0.0.1:7890\n",
      read_file(file));
  EXPECT_EQ("http://127.0.0.1:7890\n", output_of(reader));
  ASSERT_NO_FATAL_FAILURE(take_back());
  EXPECT_EQ("[Proxy Settings]\nNoProxyFor=localhost,127.0.0.1,::1\nProxyType=0\n", read_file(file));
  EXPECT_EQ(k_direct, output_of(reader));
  // At start-up, for the connect and for the disconnect.
  EXPECT_TRUE(eventually([] {
    return output_of("grep -c reparseSlaveConfiguration console-2") == "3\n";
  })) << listener.console();
}

TEST_P(RealTools, XfcePropertyBesideTheGnomeSettings) {
  const string query = "xfconf-query -c xfce4-session -p /general/ProxyHTTP 2>&1";
  const string value = "Value is an array with 2 items:\n\n127.0.0.1\n7890\n";
  ASSERT_NO_FATAL_FAILURE(connect("XFCE"));
  EXPECT_EQ(value, output_of(query));
  EXPECT_EQ(k_proxies, proxies_of_gnome_programs());
  ASSERT_NO_FATAL_FAILURE(take_back());
  EXPECT_EQ(value, output_of(query));  // only the GNOME settings are taken back
  EXPECT_EQ(k_direct, proxies_of_gnome_programs());
}
