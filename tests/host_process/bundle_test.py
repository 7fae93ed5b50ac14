"""The bundle's libraries, and the menu entry that a launch from it installs."""
import platform
import re
import shlex
import shutil

import host
from host import BUNDLE, HOST, output_of, read

# An application directory, some with characters that a shell or a desktop entry reserves; a shell script that runs
# there, with the installed icon as $icon; what the icon holds when the copy fails, None when it succeeds.
INSTALLATIONS = [
    ("plain", "chmod 444 $icon", None),
    ('a blank/and "quotes"', "ln -sf $icon logo.png", None),
    ("$HOME/it's", "chmod 000 logo.png", "an older icon"),
    ("100%/a%b", "rm logo.png; mkdir logo.png", "an older icon"),
    ("back\\slash\t`tick`", "rm $icon; mkdir $icon", ""),
    ("家/目录 (1)", "", None),
]


class Bundle(host.HostTest):
    def test_it_needs_its_libraries_and_looks_for_them_only_beside_the_executable(self):
        dynamic = output_of(f"readelf -Wd '{HOST}'")
        own = {path.name for path in (BUNDLE / "lib").iterdir()}
        self.assertEqual(7, len(own))
        needed = set(re.findall(r"NEEDED.*\[(.*)\]", dynamic))
        self.assertLessEqual(own | {"libdbus-1.so.3", "libproxy.so.1"}, needed)
        self.assertNotIn("/", "".join(needed))
        self.assertEqual(["$ORIGIN/lib"], re.findall(r"(?:RPATH|RUNPATH).*\[(.*)\]", dynamic))

    def test_it_runs_with_the_c_library_of_older_releases(self):
        if platform.libc_ver()[1] > "2.36":
            self.skipTest("a newer C library's headers bring newer names of old functions")
        versions = re.findall(r"GLIBC_2\.(\d+)", output_of(f"objdump -T '{HOST}'"))
        self.assertIn("2", versions)
        self.assertLessEqual(max(map(int, versions)), 35)

    def test_the_installed_entry_is_valid_and_starts_the_program_where_gio_can(self):
        data = self.home / ".local/share"
        entry, icons = data / "applications/Corvana.desktop", data / "icons/hicolor/128x128/apps"
        for folder, preparation, kept_icon in INSTALLATIONS:
            with self.subTest(folder):
                shutil.rmtree(data, ignore_errors=True)
                icons.mkdir(parents=True)
                icon, copied = icons / "corvana.png", kept_icon is None
                icon.write_text("an older icon")
                place = self.home / folder
                shutil.copytree(BUNDLE, place)
                self.assertEqual("", output_of(f"cd {shlex.quote(str(place))}; icon={icon}; {preparation}"))
                expected = (place / "logo.png").read_bytes() if copied else kept_icon.encode()
                first = self.run_child(place / "Corvana", "--quit")
                self.assertEqual(0, first.wait_for_exit(), first.console())
                told = f"已复制图标到标准位置: {icon}\n" * copied + f"已创建桌面入口文件: {entry}\n"
                self.assertIn(told, first.console())
                self.assertEqual(copied, "复制图标到标准位置失败: " not in first.console())
                self.assertEqual("", first.still_running())
                self.assertEqual(expected, icon.read_bytes() if icon.is_file() else b"")
                self.assertEqual(["corvana.png"], [path.name for path in icons.iterdir()], "something unfinished stays")
                self.assertEqual("", output_of(f"desktop-file-validate --no-hints {entry} 2>&1"))
                # GIO looks for the program before it undoes the doubling of percent signs, and so never starts one
                # whose path has any.
                if "%" not in folder:
                    launcher = self.run_child("gio", "launch", entry)
                    self.assertTrue(launcher.wait_for("[Corvana] "), read(entry) + launcher.console())
                    launcher.end()
