"""The login program, in a home where the client's proxy is still set."""
import os
import pathlib

import host

PROGRAM = host.BUNDLE / "corvana-proxy-reset"
DROPIN = ".config/environment.d/99-corvana.conf"
CLEARED = "[Corvana] 已清除系统代理 (DE=gnome)\n"

# A shell script that runs before the login program, and how the console ends.
LOGINS = {
    "after a power cut": (":", CLEARED),
    "with a proxy of the user's own": (f"rm {DROPIN}", ""),
    "with a core": ("(exec -a 'zant run -c' sleep 60) & until pgrep -x sleep; do :; done >/dev/null", ""),
    "without a home": ("unset HOME", ""),
    "in a read-only home": ("chmod -R a-w .config", CLEARED),
    "with a directory": (f"rm {DROPIN}; mkdir {DROPIN}", CLEARED),
    "with a dangling link": (f"ln -sf /nowhere {DROPIN}", ""),
    "without a session bus": ("rm bin/gsettings", CLEARED),
    "with a hung tool": ("printf '#!/bin/sh\\nsleep 1000' >bin/gsettings", CLEARED),
    # Each runs its first command until the other has started its own.
    "twice at once": ("printf '#!/bin/sh\n: >at-$PPID; until [ $(ls at-* | wc -l) -gt 1 ]; do sleep 0.01; done'"
                      " >bin/gsettings; \"$0\" & \"$0\"; wait", 2 * CLEARED),
}
ANSWERS = {
    "--version": "corvana-proxy-reset 1.0.0\n0\n",
    "--help | head -1; false": "Usage:\n1\n",
    "--no-such": "Unknown option --no-such\n2\n",
    "again": "Unexpected argument again\n2\n",
}


class ProxyReset(host.HostTest):
    def test_it_clears_only_the_proxy_of_a_client_whose_core_is_gone(self):
        os.environ["XDG_CURRENT_DESKTOP"] = "GNOME"
        for name, (preparation, expected) in LOGINS.items():
            with self.subTest(name):
                host.output_of("chmod -fR u+w .config; rm -rf .config commands")
                self.record("gsettings")
                pathlib.Path(DROPIN).parent.mkdir(parents=True)
                pathlib.Path(DROPIN).touch()
                login = self.run_child("bash", "-c", preparation + '; exec "$0"', PROGRAM)
                status = login.wait_for_exit()
                login.end()
                self.assertEqual(0, status, login.console())
                # Tools may complain before it.
                self.assertEqual(expected, login.console()[max(login.console().find("[Corvana]"), 0):])
                if not expected:
                    self.assertEqual([], self.recorded())

    def test_it_answers_its_arguments(self):
        for arguments, answer in ANSWERS.items():
            self.assertEqual(answer, host.output_of(f"'{PROGRAM}' {arguments} 2>&1; echo $?"))
