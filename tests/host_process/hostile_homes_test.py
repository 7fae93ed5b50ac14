"""Whatever the home is like, the host connects and leaves on a signal, and prints a line for the clearing at start-up,
for the connecting and for the leaving."""
import os
import signal

import host

CONNECTED = "[Corvana] 已设置系统代理 (DE=gnome, "
DANGLE = 'dangle() for link; do mkdir -p "${link%/*}"; ln -s /nowhere/at/all "$link"; done'
HOMES = {
    "unset": "unset HOME",
    "empty": "HOME=",
    "missing": "HOME=/nowhere",
    "a file": "HOME=$PWD/file; touch file",
    "read-only": "chmod 555 .",
    "config is a file": "touch .config",
    "tops dangle": "ln -s /nowhere .config; ln -s /nowhere .local",
    "every file dangles": "dangle .config/environment.d/99-corvana.conf .config/corvana/proxy.sh"
                          " .local/share/applications/Corvana.desktop"
                          " .local/share/icons/hicolor/128x128/apps/corvana.png",
    "every directory dangles": "dangle .config/environment.d .config/corvana .local/share/applications"
                               " .local/share/icons .local/share/Corvana/run",
    "every file is a directory": "mkdir -p .config/environment.d/99-corvana.conf/full .config/corvana/proxy.sh"
                                 " .local/share/applications/Corvana.desktop"
                                 " .local/share/icons/hicolor/128x128/apps/corvana.png",
    # The second session comes when the disk has room again.
    "full": """exec unshare --user --map-root-user --mount sh -c '
        mount -t tmpfs -o size=64k none $HOME && ! head -c 1M /dev/zero >$HOME/filler &&
        "$0" "$@" --quit >../first && grep -q 已设置系统代理 ../first && rm $HOME/filler && exec "$0" "$@"' "$0" "$@" """,
    # The shell can't open the core's log, so no core starts. Which failure is reported depends on whether the probe
    # still sees the shell.
    "log dangles": "dangle .local/share/Corvana/run/runtime.log",
}


class HostileHomes(host.HostTest):
    def test_no_home_ends_or_hangs_the_host(self):
        os.environ["XDG_CURRENT_DESKTOP"] = "GNOME"
        self.record("gsettings")
        for name, preparation in HOMES.items():
            with self.subTest(name):
                (self.home / "commands").unlink(missing_ok=True)
                process = self.connect(launcher=(
                    "sh", "-c", f"mkdir '{name}'; cd '{name}'; HOME=$PWD; {DANGLE}; {preparation}; exec \"$0\" \"$@\""))
                outcome = CONNECTED if name != "log dangles" else "runtime.log: Directory nonexistent\n[Corvana] zant "
                for line in "[Corvana] 已清除系统代理 (DE=gnome)", outcome:
                    self.assertTrue(process.wait_for(line), process.console())
                os.kill(process.pid, signal.SIGTERM)
                self.assertEqual(0, process.wait_for_exit(), process.console())
                self.assertEqual("", process.still_running())
                self.assertFalse(host.does_core_run())
                self.assertIn("收到退出信号", process.console())
                self.assertEqual("gsettings set org.gnome.system.proxy.socks port 0", self.recorded()[-1])
