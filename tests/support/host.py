"""What the tests of the running program share: a home, stand-ins for the desktop's tools, and processes that end with
the test."""
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

if os.environ.get("CORVANA_SANDBOX") != "1":
    sys.exit("These tests run only inside the sandbox that ./test makes.")

BUILD = pathlib.Path(os.environ["CORVANA_BUILD"])
BUNDLE = BUILD / "bundle"
HOST = BUNDLE / "Corvana"
LONG = "CORVANA_LONG_TESTS" in os.environ


def eventually(is_so, limit=30):
    """Asks until the answer is true, for at most `limit` seconds. Gives the last answer."""
    end = time.monotonic() + limit
    while not (answer := is_so()) and time.monotonic() < end:
        time.sleep(0.005)
    return answer


def output_of(command):
    """What the shell command prints on standard output."""
    return subprocess.run(command, shell=True, stdout=subprocess.PIPE, text=True, check=False).stdout


def read(path):
    """The file's text; "" when there is none."""
    path = pathlib.Path(path)
    return path.read_text(errors="replace") if path.exists() else ""


def living(criteria):
    """The command lines of the processes that match, without zombies."""
    return output_of(f"pgrep -a -r R,S,D,T {criteria}")


def does_core_run():
    return living("-f '[z]ant'") != ""


def start_bus(test):
    """A session bus for the test and all that it starts."""
    bus = test.run_child("dbus-daemon", "--session", "--nofork", "--print-address")
    test.assertTrue(bus.wait_for("\n"), "no address")
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = bus.console().strip()


class Child:
    """A program in a session of its own. What it and its children print goes to a file."""

    def __init__(self, *command):
        output, self.output = tempfile.mkstemp(dir="/tmp")
        self.process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=output, stderr=output, start_new_session=True)
        os.close(output)
        self.pid = self.process.pid

    def console(self):
        return read(self.output)

    def wait_for(self, text):
        return eventually(lambda: text in self.console())

    def has_ended(self):
        return self.process.poll() is not None

    def wait_for_exit(self, limit=30):
        """The exit status, or minus the signal that ended it; None when it still runs."""
        eventually(self.has_ended, limit)
        return self.process.returncode

    def still_running(self):
        """Waits for all that it started to end. Gives the command lines of what still runs after 30 s."""
        eventually(lambda: not living(f"-s {self.pid}"))
        return living(f"-s {self.pid}")

    def end(self):
        """Kills it and all that it started."""
        assert eventually(lambda: output_of(f"pkill -KILL -s {self.pid}") + living(f"-s {self.pid}") == "")
        self.process.wait()


class HostTest(unittest.TestCase):
    """A home that is also the working directory, with stand-ins in "bin" and a core's configuration."""

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="home-", dir="/tmp"))
        os.chdir(self.home)
        for name in [name for name in os.environ if name.startswith("XDG_") and name != "XDG_RUNTIME_DIR"]:
            del os.environ[name]
        # Without a bus, GIO would launch one that stays behind.
        os.environ.update(HOME=str(self.home), PATH=f"{self.home}/bin:/usr/bin:/bin:/usr/sbin:/sbin",
                          DBUS_SESSION_BUS_ADDRESS="disabled:")
        (self.home / "bin").mkdir()
        self.config = self.home / "config.json"
        self.config.write_text('{"inbounds": [{"type": "mixed", "listen_port": 7890}],'
                               ' "experimental": {"clash_api": {"external_controller": "127.0.0.1:9090"}}}')
        # A directory in the entry's place: the host can't write the entry, and so doesn't pause for a second after it.
        (self.home / ".local/share/applications/Corvana.desktop").mkdir(parents=True)

    def run_child(self, *command):
        child = Child(*map(str, command))
        self.addCleanup(child.end)
        return child

    def connect(self, *options, launcher=()):
        """A host that connects at once."""
        return self.run_child(*launcher, HOST, "--config", self.config, "--connect", *options)

    def add_stand_in(self, name, script):
        path = self.home / "bin" / name
        path.write_text(script)
        path.chmod(0o755)

    def record(self, name):
        """A stand-in that appends its name and arguments as one line to the file "commands"."""
        self.add_stand_in(name, f"#!/bin/sh\necho \"${{0##*/}} $*\" >>{self.home}/commands\n")

    def recorded(self):
        return read(self.home / "commands").splitlines()
