"""The sample core, with curl and sockets as its clients."""
import pathlib
import socket

import host
from host import eventually, output_of

CORE = host.BUNDLE / "bin/zant"
MIXED = '{"inbounds": [{"type": "mixed", "listen_port": '
# Arguments, the file that they name, and what the one line on standard error says.
BAD_COMMAND_LINES = [
    ("walk", "", "unknown command: walk"),
    ("version x", "", "unexpected argument: x"),
    ("run -c config.json '--no\nsuch'", "", "Unknown option --no?such"),
    ("run -c config.json", "", "Address already in use"),
    ("run -c absent", "", "No such file"),
    ("run -c file", "no json", "is not JSON"),
    ("run -c file", '{"inbounds": [{"type": "tun"}]}', 'no inbound of the type "mixed"'),
    ("run -c file", MIXED + "65536}]}", "listen_port"),
    ("run -c file", MIXED + '1}], "experimental": {"clash_api": {"external_controller": 1}}}', "controller"),
]
CONNECT = b"CONNECT 127.0.0.1:8000 HTTP/1.1\r\n\r\nframe"
# As a client sends it to the proxy, and as the server gets it.
WEB_SOCKET = [b"GET ws://127.0.0.1:8000/chat HTTP/1.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
              b"Sec-WebSocket-Key: k\r\n\r\nframe",
              b"GET /chat HTTP/1.1\r\nHost: 127.0.0.1:8000\r\nSec-WebSocket-Key: k\r\nUpgrade: websocket\r\n"
              b"Connection: Upgrade\r\n\r\nframe"]


class SampleCore(host.HostTest):
    def setUp(self):
        super().setUp()
        self.core = self.run_child(CORE, "run", "-c", self.config, "-D", self.home)
        self.assertTrue(eventually(lambda: output_of("curl -s 127.0.0.1:9090")))

    def tearDown(self):
        self.core.process.terminate()
        self.assertEqual(0, self.core.wait_for_exit(), self.core.console())

    def test_it_serves_each_kind_of_proxy_client(self):
        for kind in "--proxy", "--proxytunnel --proxy", "--socks4", "--socks4a", "--socks5", "--socks5-hostname":
            for page, answer in ("9090/version", '{"version":"1.0.0","meta":false,"premium":false}\n'), ("1", ""):
                # Newer curls take the first address of localhost, which may be ::1, to a SOCKS5 proxy.
                fetched = output_of(f"curl -4 -s --fail {kind} 127.0.0.1:7890 http://localhost:{page} && echo")
                self.assertEqual(answer, fetched, kind)

    def test_it_passes_on_what_is_sent_ahead_of_the_answer(self):
        server = socket.create_server(("127.0.0.1", 8000))
        self.addCleanup(server.close)
        server.settimeout(20)
        for request, expected in (CONNECT, b"frame"), WEB_SOCKET:
            with socket.create_connection(("127.0.0.1", 7890), 20) as client:
                client.sendall(request)
                with server.accept()[0] as peer:
                    peer.settimeout(20)
                    self.assertEqual(expected, peer.makefile("rb").read(len(expected)))
                    peer.sendall(b"answer")
                self.assertIn(b"answer", client.makefile("rb").read())

    def test_it_ends_with_one_line_on_a_bad_command_line(self):
        for arguments, text, said in BAD_COMMAND_LINES:
            pathlib.Path("file").write_text(text)
            lines = output_of(f"timeout 20 '{CORE}' {arguments} 2>&1 >/dev/null; echo $?").splitlines()
            self.assertEqual(("error: ", "1", 2), (lines[0][:7], lines[-1], len(lines)), lines)
            self.assertIn(said, lines[0])
