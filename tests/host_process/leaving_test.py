"""However and whenever it is ended, the host leaves neither a proxy nor a core behind."""
import os
import pathlib
import random
import signal
import time

import host
from host import BUNDLE, HOST, eventually, read
from Xlib import X, display, error, protocol

# Waits before it writes; hangs at one value, or at every value.
TOOL = """#!/bin/sh
read -r delay hangs_at <pace
sleep "$delay"
case ${hangs_at:-never} in "$4" | all) : >hanging; sleep 1000 ;; esac
echo "a warning" >&2
echo "$4" >"settings/${2#org.gnome.system.}.$3"
: >answered
"""
VISIBLE = "xdotool search --onlyvisible --name Corvana"
STATE = """cd settings; rm -f *.ignore-hosts; cat * | paste -sd ,
cd ../.config; ls environment.d; grep -E 'export|unset' corvana/proxy.sh"""
NOTHING_LEFT = ("false,,0,,0,none,,0\n"
                "unset http_proxy https_proxy HTTP_PROXY HTTPS_PROXY all_proxy ALL_PROXY no_proxy NO_PROXY\n")

# Seconds that each phase lasts, with fast and with slow tools. The moments are spread over them.
PHASES = {"start": (0.7, 3.6), "restart": (1.8, 4.8), "stop": (2.3, 4.8)}


def close_window():
    """What a window manager does when somebody presses the close button of the only window."""
    server = display.Display()
    for window in server.screen().root.query_tree().children:
        message = protocol.event.ClientMessage(
            window=window, client_type=server.get_atom("WM_PROTOCOLS"),
            data=(32, [server.get_atom("WM_DELETE_WINDOW"), X.CurrentTime, 0, 0, 0]))
        window.send_event(message, onerror=error.CatchError())
    server.sync()
    server.close()


def ask(process, signal_number):
    os.kill(process.pid, signal_number)


def ask_group(process, signal_number):
    """As a Ctrl-C and a closed terminal do."""
    os.killpg(process.pid, signal_number)


class Leaving(host.HostTest):
    """On a desktop whose settings are the files in "settings"; "answered" was touched when its tool last ended."""

    def setUp(self):
        super().setUp()
        os.environ["XDG_CURRENT_DESKTOP"] = "GNOME"
        (self.home / "settings").mkdir()
        self.set_pace("0")
        self.add_stand_in("gsettings", TOOL)

    def set_pace(self, pace):
        """How many seconds the tool takes for each call, and the value at which it hangs, or "all"."""
        (self.home / "new-pace").write_text(pace + "\n")
        (self.home / "new-pace").rename("pace")

    def start_earlier_core(self):
        """A core at work with the proxy set, as an earlier host that was killed leaves it."""
        (self.home / "settings/proxy.mode").write_text("manual\n")
        return self.run_child(BUNDLE / "bin/zant", "run", "-c", self.config)

    def wait_until_signals_are_hooked(self, process):
        """From then on a signal makes the host leave; before, it ends the process. SIGHUP, bit 0, is hooked last."""
        def is_hooked():
            caught = read(f"/proc/{process.pid}/status").partition("SigCgt:")[2]
            return caught and int(caught.split()[0], 16) & 1
        self.assertTrue(eventually(is_hooked), process.console())

    def check_end(self, process, statuses=(0,), limit=30):
        """Waits for the end, which must be clean and leave nothing. Gives the seconds from the tool's last answer, or
        from this call if that is later, to the end."""
        called = time.time()
        status = process.wait_for_exit(limit)
        gone = time.time()
        self.assertIn(status, statuses, process.console())
        self.assertEqual("", process.still_running())
        self.assertFalse(host.does_core_run())
        self.assertEqual(NOTHING_LEFT, host.output_of(STATE), process.console())
        return gone - max(called, os.stat("answered").st_mtime)

    def leave_at(self, phase, slow, moment, ask_to_leave, signal_number):
        self.set_pace("0")
        earlier = self.start_earlier_core() if phase == "restart" else None
        process = self.connect(*["--quit"] * (phase == "stop"))
        self.wait_until_signals_are_hooked(process)
        if phase == "stop":
            self.assertTrue(process.wait_for("已设置系统代理"), process.console())
        self.set_pace("0.3" if slow else "0")
        # With --quit the stop begins 0.9 s after the connect.
        time.sleep(moment + 0.6 * (phase == "stop"))
        if not process.has_ended():
            ask_to_leave(process)
        # Once everything is taken back, a signal may end the process.
        seconds = self.check_end(process, (0, -signal_number), 40)
        self.assertLess(seconds, 3)
        process.end()
        if earlier:
            earlier.end()
        return seconds

    def leave_at_any_moment(self, number, ask_to_leave, signal_number=0):
        chance = random.Random(2025 + number)
        parts = 20 if host.LONG else 1
        seconds = []
        for part in range(parts):
            for slow in False, True:
                for index, (phase, lengths) in enumerate(PHASES.items()):
                    moment = (part + chance.random()) / parts * lengths[slow]
                    # The short form runs each phase once: one with fast tools, which one depends on `number`.
                    if not host.LONG and slow == (index == 1 + number % 2):
                        continue
                    with self.subTest(phase=phase, slow=slow, moment=moment):
                        seconds.append(self.leave_at(phase, slow, moment, ask_to_leave, signal_number))
        print(f"{len(seconds)} clean exits, the slowest {max(seconds, default=0) * 1000:.0f} ms after the last answer")

    def test_terminate(self):
        self.leave_at_any_moment(0, lambda process: ask(process, signal.SIGTERM), signal.SIGTERM)

    def test_ctrl_c(self):
        self.leave_at_any_moment(1, lambda process: ask_group(process, signal.SIGINT), signal.SIGINT)

    def test_hang_up(self):
        self.leave_at_any_moment(2, lambda process: ask_group(process, signal.SIGHUP), signal.SIGHUP)

    def test_close_window(self):
        self.leave_at_any_moment(3, lambda process: close_window())

    def test_a_tool_that_hangs_once_does_not_keep_the_process(self):
        self.check_hung_tool("manual", lambda process: ask(process, signal.SIGTERM))

    def test_a_tool_that_always_hangs_does_not_keep_the_process(self):
        self.check_hung_tool("all", lambda process: close_window())

    def check_hung_tool(self, hangs_at, ask_to_leave):
        process = self.connect()
        self.wait_until_signals_are_hooked(process)
        self.set_pace(f"0 {hangs_at}")
        self.assertTrue(eventually(lambda: os.path.exists("hanging")), process.console())
        self.assertTrue(host.output_of(VISIBLE), "no window")
        ask_to_leave(process)
        if hangs_at == "all":
            is_gone = eventually(lambda: not host.output_of(VISIBLE), 3)
            self.assertTrue(is_gone, "a frozen window")
        self.assertEqual(0, process.wait_for_exit(20), process.console())
        self.assertEqual("", process.still_running())
        self.assertFalse(host.does_core_run())
        self.assertEqual("none\n", read("settings/proxy.mode"))

    def test_repeated_ctrl_c_leaves_as_cleanly_as_one(self):
        """Ctrl-C again and again ends neither the host's commands nor the host before it has cleaned up."""
        chance = random.Random(7)
        for delay in "0.3", "0", "0", "0":
            self.set_pace("0")
            process = self.connect()
            self.wait_until_signals_are_hooked(process)
            self.set_pace(delay)
            self.assertTrue(process.wait_for("启动成功"))
            time.sleep(0.45 if delay == "0.3" else 0)
            for _ in range(20_000):
                if process.has_ended():
                    break
                ask_group(process, signal.SIGINT)
                # Random, so that signals reach the host at different points.
                time.sleep(chance.uniform(0.0005, 0.0015))
            self.check_end(process, (0, -signal.SIGINT))
            self.assertIn("收到退出信号", process.console())

    def test_a_teardown_that_hangs_is_ended_by_the_next_signal(self):
        os.environ["GTK_MODULES"] = str(host.BUILD / "tests/libhanging_module.so")
        process = self.run_child(HOST, "--quit")
        self.assertTrue(process.wait_for("teardown hangs"))
        ask(process, signal.SIGTERM)
        self.assertEqual(-signal.SIGTERM, process.wait_for_exit(10))

    def test_a_lost_display_is_a_way_out(self):
        server = self.run_child("Xvfb", ":9")
        self.assertTrue(eventually(lambda: os.path.exists("/tmp/.X11-unix/X9")))
        os.environ["DISPLAY"] = ":9"
        process = self.connect()
        self.assertTrue(process.wait_for("已设置系统代理"), process.console())
        ask(server, signal.SIGKILL)
        self.check_end(process, (1,))

    def test_a_command_that_holds_up_the_main_loop_is_cut_short(self):
        self.add_stand_in("systemctl", "#!/bin/sh\n: >asked\nsleep 1000\n")
        process = self.connect("--page", "diagnostics")
        self.assertTrue(eventually(lambda: os.path.exists("asked")), process.console())
        ask(process, signal.SIGTERM)
        self.check_end(process)

    def test_it_leaves_cleanly_without_a_console(self):
        """A write to a closed pipe would end a program, and the tools write warnings. Without standard streams a later
        descriptor could become 1 or 2 and receive our output."""
        for console in "> >(head -c 1 >/dev/null) 2>&1", "<&- >&- 2>&-":
            pathlib.Path("settings/proxy.socks.port").write_text("")
            process = self.connect(launcher=("bash", "-c", f'exec "$0" "$@" {console}'))
            self.assertTrue(eventually(lambda: read("settings/proxy.socks.port") == "7890\n"))
            ask(process, signal.SIGTERM)
            self.check_end(process)

    def test_after_a_failed_restart_the_proxy_of_an_ended_core_is_taken_back(self):
        """When the core was ended for a new one that fails, the desktop still points at its port. A program with only
        the core's name in its command line is not ended, and the proxy stays as it is."""
        pathlib.Path("broken.json").write_text('{no core accepts "external_controller": "127.0.0.1:9090"')
        for is_core in False, True:
            earlier = self.start_earlier_core() if is_core else self.run_child("tail", "-f", self.config, "zant.log")
            pathlib.Path("settings/proxy.mode").write_text("manual\n")
            self.assertTrue(eventually(host.does_core_run))
            process = self.connect("--config", "broken.json")
            self.assertTrue(process.wait_for("未"), process.console())
            earlier.end()
            self.assertEqual("manual\n", read("settings/proxy.mode"))
            ask(process, signal.SIGTERM)
            self.assertEqual(0, process.wait_for_exit(), process.console())
            self.assertEqual("none\n" if is_core else "manual\n", read("settings/proxy.mode"))
            self.assertEqual("", process.still_running())

    def test_after_a_kill_the_next_launch_takes_the_proxy_back_only_from_a_dead_core(self):
        for core_lives in False, True:
            killed = self.connect()
            self.assertTrue(killed.wait_for("已设置系统代理"), killed.console())
            if core_lives:
                ask(killed, signal.SIGKILL)
                killed.wait_for_exit()
            else:
                killed.end()
            self.assertEqual(core_lives, host.does_core_run())
            self.assertEqual("manual\n", read("settings/proxy.mode"))
            last_answer = os.stat("answered").st_mtime_ns
            # With --quit the window disconnects first, but only when it finds a running core.
            following = self.run_child(HOST, "--quit")
            self.wait_until_signals_are_hooked(following)
            self.assertEqual(core_lives, os.stat("answered").st_mtime_ns == last_answer)
            self.assertEqual("manual\n" if core_lives else "none\n", read("settings/proxy.mode"))
            self.check_end(following)
            self.assertEqual(core_lives, "已停止代理服务" in following.console())
