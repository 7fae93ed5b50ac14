"""The desktops' own tools, with the services that they start on a session bus of the test's."""
import os
import pathlib

import host
from host import eventually, output_of, read

GENERATORS = ("/usr/lib/systemd/user-environment-generators/30-systemd-environment-d-generator",
              f"HOME=$HOME {host.BUNDLE}/linux/packaging/login/40-corvana")
PROXIES, DIRECT = "http://127.0.0.1:7890\nsocks5://127.0.0.1:7890\n", "direct://\n"
LOWER = ("all_proxy=socks5://127.0.0.1:7890 http_proxy=http://127.0.0.1:7890 https_proxy=http://127.0.0.1:7890"
         " no_proxy=localhost,127.0.0.1,::1 ")
UPPER = ("ALL_PROXY=socks5://127.0.0.1:7890 HTTPS_PROXY=http://127.0.0.1:7890 HTTP_PROXY=http://127.0.0.1:7890"
         " NO_PROXY=localhost,127.0.0.1,::1 ")
SORTED = "| grep -i _proxy | LC_ALL=C sort | tr '\\n' ' '"
SHELL = f"http_proxy=http://old bash -c '. ~/.config/corvana/proxy.sh; env' {SORTED}"
KDE_READER = "KDE_FULL_SESSION=true proxy http://example.com https://example.com | uniq"
KDE_ON = ("[Proxy Settings]\nNoProxyFor=localhost,127.0.0.1,::1\nProxyType=1\nhttpProxy=http://127.0.0.1:7890\n"
          "httpsProxy=http://127.0.0.1:7890\nsocksProxy=socks://127.0.0.1:7890\n")
KDE_OFF = "[Proxy Settings]\nNoProxyFor=localhost,127.0.0.1,::1\nProxyType=0\n"
XFCE_QUERY = "xfconf-query -c xfce4-session -p /general/ProxyHTTP 2>&1"
# libproxy 0.4 names all proxies, 0.5 the first.
GNOME_READERS = """export XDG_CURRENT_DESKTOP=GNOME DESKTOP_SESSION=gnome
{ proxy http://example.com/ https://example.com/ | cut -d' ' -f1; python3 -c '
from gi.repository import Gio
for scheme in "http", "https", "telnet":
  print(Gio.ProxyResolver.get_default().lookup(scheme + "://example.com", None)[0])'; } | uniq"""


def in_a_new_session(command):
    return output_of(f"env -i PATH=$PATH $({GENERATORS[0]}; {GENERATORS[1]}) {command} 2>&1")


class RealTools(host.HostTest):
    """The proxy is taken back by a disconnect, or at the login after host and core were killed."""

    def setUp(self):
        super().setUp()
        host.start_bus(self)

    def check_each_way_back(self, session, check):
        """Calls check(True) after a connect and check(False) after the proxy was taken back, for both ways back."""
        os.environ["XDG_CURRENT_DESKTOP"] = session
        for take_back in self.disconnect, self.die_and_log_in:
            with self.subTest(take_back.__name__):
                process = self.connect()
                self.assertTrue(process.wait_for("[Corvana] 已设置系统代理"), process.console())
                check(True)
                take_back(process)
                check(False)
                process.end()

    def disconnect(self, _):
        """By a second launch, as the first one's button can't be pressed from here."""
        second = self.run_child(host.HOST, "--quit")
        self.assertEqual(0, second.wait_for_exit(), second.console())
        self.assertIn("已停止代理服务", second.console())

    def die_and_log_in(self, process):
        process.end()
        self.assertEqual("all_proxy= http_proxy= https_proxy= no_proxy= ", in_a_new_session(f"env {SORTED}"))
        program = self.run_child(host.BUNDLE / "corvana-proxy-reset")
        self.assertEqual(0, program.wait_for_exit(), program.console())

    def test_programs_shells_and_the_systemd_session_find_the_proxy_and_lose_it(self):
        page = "curl -sS -m 20 --noproxy '' http://127.0.0.1:8000/page 2>&1"
        text = "x" * 2_000_000
        pathlib.Path("page").write_text(text)
        self.run_child("python3", "-m", "http.server", "--bind", "127.0.0.1", "8000")
        self.assertTrue(eventually(lambda: output_of(page) == text))

        def check(is_set):
            self.assertEqual(PROXIES if is_set else DIRECT, output_of(GNOME_READERS))
            self.assertEqual(UPPER + LOWER if is_set else "", output_of(SHELL))
            self.assertEqual(LOWER if is_set else "", in_a_new_session(f"env {SORTED}"))
            for kind in "-x http://", "-p -x http://", "--socks5 ", "--socks5-hostname ":
                self.assertEqual(is_set, output_of(f"{page} {kind}127.0.0.1:7890") == text, kind)
        self.check_each_way_back("GNOME", check)

    def test_kde_file_and_signal(self):
        listener = self.run_child("dbus-monitor", "--session", "interface=org.kde.KIO.Scheduler")
        self.assertTrue(listener.wait_for("NameAcquired"))

        def check(is_set):
            self.assertEqual(KDE_ON if is_set else KDE_OFF, read(".config/kioslaverc"))
            self.assertEqual("http://127.0.0.1:7890\n" if is_set else DIRECT, output_of(KDE_READER))
        self.check_each_way_back("KDE", check)
        # Each time at start-up, for the connect and when it is taken back.
        self.assertTrue(eventually(lambda: listener.console().count("reparseSlaveConfiguration") == 6))

    def test_xfce_property_beside_the_gnome_settings(self):
        def check(is_set):
            # Only the GNOME settings are taken back.
            self.assertEqual("Value is an array with 2 items:\n\n127.0.0.1\n7890\n", output_of(XFCE_QUERY))
            self.assertEqual(PROXIES if is_set else DIRECT, output_of(GNOME_READERS))
            if not is_set:
                output_of(f"{XFCE_QUERY} --reset")
        self.check_each_way_back("XFCE", check)
