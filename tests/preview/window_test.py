"""The window as a screen reader and a keyboard user find it."""
import os
import pathlib
import shutil

from gi.repository import GLib
from Xlib import X, Xatom, display

import host
import screen_reader
from host import eventually

PAGES = ["radio button 连接", "radio button 日志", "radio button 诊断"]
FORM = ["text 配置文件(F)", "push button 浏览(B)…", "radio button 设置系统代理(S)", "scroll pane 连接详情"]
CONNECT, DISCONNECT = "push button 连接(C)", "push button 断开(D)"
LOG, TO_END = "text 核心日志", "push button 转到末尾"
VALUES = [f"label {name}" for name in (
    "桌面环境", "会话类型", "libproxy 库", "TUN 设备", "系统路径中有核心", "辅助服务已启动", "gsettings 工具",
    "kwriteconfig 工具", "程序目录", "当前核心", "核心路径", "核心可用", "核心版本", "运行日志")]


def xdotool(actions):
    return host.output_of(f"xdotool {actions}")


def announce_window_manager(name):
    """Sets the properties that name a window manager, with the root window as the check window."""
    server = display.Display()
    root = server.screen().root
    root.change_property(server.get_atom("_NET_SUPPORTING_WM_CHECK"), Xatom.WINDOW, 32, [root.id])
    root.change_property(server.get_atom("_NET_WM_NAME"), server.get_atom("UTF8_STRING"), 8, name.encode())
    server.sync()
    server.close()


def size_and_icon():
    """The window's width and height, and whether it has an icon."""
    server = display.Display()
    window = max(server.screen().root.query_tree().children, key=lambda window: window.get_geometry().width)
    size = window.get_geometry()
    icon = window.get_full_property(server.get_atom("_NET_WM_ICON"), X.AnyPropertyType)
    server.close()
    return (size.width, size.height), icon is not None


class Window(host.HostTest):
    def setUp(self):
        super().setUp()
        host.start_bus(self)
        os.environ.pop("NO_AT_BRIDGE", None)
        self.bus = screen_reader.accessibility_bus()

    def open(self, *options, program=host.HOST):
        process = self.run_child(program, *options)
        self.window = eventually(lambda: screen_reader.find_window(self.bus, process.pid))
        self.assertTrue(self.window, process.console())
        self.assertTrue(eventually(lambda: xdotool(
            "search --onlyvisible --name Corvana windowfocus getwindowfocus") and self.window.focus()))
        return process

    def close(self, process):
        process.process.terminate()
        self.assertEqual(0, process.wait_for_exit(), process.console())

    def tab_round(self, key):
        """What gets the focus as the key is pressed, until the first widget has it again."""
        names = [self.window.focus()]
        while len(names) < 50:
            xdotool(f"key {key}")
            self.assertTrue(eventually(lambda: self.window.focus() not in ("", names[-1])), names)
            if self.window.focus() == names[0]:
                break
            names.append(self.window.focus())
        return names

    def test_tab_reaches_all_of_each_page_both_ways_and_all_is_named(self):
        rows = {"connection": FORM + [CONNECT],
                "log": [LOG, "push button 复制选中的日志，未选中时复制全部", "push button 清空"],
                "diagnostics": VALUES + ["push button 复制全部诊断结果", "push button 刷新"]}
        for page, controls in rows.items():
            process = self.open("--page", page)
            self.assertTrue(eventually(
                lambda: (last := self.window.find(controls[-1])) and last.has("sensitive")))
            seen = list(self.window.seen())
            self.assertEqual([], [node for node in seen if node.has("focusable") and node.spoken()[-1] == " "])
            order = [node.place for node in seen]
            for node in seen:
                self.assertTrue(all(order.index(label.place) < order.index(node.place) for label in node.labels()))
            names = self.tab_round("Tab")
            self.assertEqual(PAGES + controls, names)
            self.assertEqual(names[:1] + names[:0:-1], self.tab_round("shift+Tab"))
            self.close(process)

    def test_the_window_has_a_title_bar_only_where_the_desktop_draws_none_and_an_icon(self):
        shutil.copytree(host.BUNDLE, "bundle")
        pathlib.Path("bundle/logo.png").unlink()
        # The host's fallback icon has literally this name; it is used only without a logo.png beside the executable.
        icon = self.home / ".local/share/icons/hicolor/128x128/apps/{CONF_MERCHANT_BRAND_NAME_EN_LOWER}.png"
        icon.parent.mkdir(parents=True)
        for window_manager, bar in ("", []), ("Xfwm4", []), ("GNOME Shell", ["push button Close", "label Corvana"]):
            if window_manager:
                announce_window_manager(window_manager)
            if bar:
                # The earlier launches have copied the icon under this name.
                (icon.parent / "corvana.png").rename(icon)
            process = self.open(program="bundle/Corvana" if bar else host.HOST)
            self.assertEqual(PAGES[0], self.window.focus())
            seen = [node.spoken() for node in self.window.seen()]
            self.assertEqual(["frame Corvana"] + bar, [name for name in seen if name.endswith((" Corvana", " Close"))])
            size, has_icon = size_and_icon()
            self.assertTrue(has_icon)
            self.assertTrue(bar or size == (480, 680), size)
            self.close(process)

    def test_a_connection_by_keys_is_announced_and_moves_the_focus(self):
        self.record("gsettings")
        said = []
        screen_reader.listen_to_announcements(self.bus, said.append)

        def has_said(words):
            GLib.MainContext.default().iteration(False)
            return said == words

        self.open("--config", self.config)
        xdotool("key Tab Tab Tab")
        self.assertTrue(eventually(lambda: self.window.focus() == FORM[0]))
        xdotool("key Return")
        self.assertTrue(eventually(lambda: has_said(["正在连接…", "已连接"])), said)
        self.assertTrue(eventually(lambda: self.window.focus() == DISCONNECT))
        self.assertEqual("label 代理地址", next(
            node.spoken() for node in self.window.seen() if node.get("Accessible", "Name") == "127.0.0.1:7890"))
        xdotool("key space")
        self.assertTrue(eventually(lambda: has_said(["正在连接…", "已连接", "正在断开…", "未连接"])), said)
        self.assertTrue(eventually(lambda: self.window.focus() == CONNECT))

    def open_log(self, lines):
        log = self.home / ".local/share/Corvana/run/runtime.log"
        log.parent.mkdir(parents=True)
        log.write_text("\n".join(lines) + "\n")
        self.open("--page", "log")
        self.assertTrue(eventually(lambda: self.window.find(f"label {len(lines)} 行")))
        return log

    def log_text(self):
        return self.window.find(LOG).call("Text.GetText", "(ii)", 0, -1)

    def is_in_view(self, offset):
        """Whether the log's character can be seen."""
        log = self.window.find(LOG)
        _, top, _, height = log.call("Text.GetCharacterExtents", "(iu)", offset, screen_reader.SCREEN)
        _, view_top, _, view_height = log.call("Component.GetExtents", "(u)", screen_reader.SCREEN)
        return view_top <= top and top + height <= view_top + view_height

    def is_line_in_view(self, line):
        lines = self.log_text().split("\n")
        return line in lines and self.is_in_view(sum(len(line) + 1 for line in lines[:lines.index(line)]))

    def selection_start(self):
        return self.window.find(LOG).call("Text.GetSelection", "(i)", 0)[0]

    def test_the_log_is_searched_and_marks_levels(self):
        lines = ["plain", "WARN 1", "a level=error", "FATAL", "late " * 20 + "ERROR"] + ["other"] * 200 + ["plain"]
        self.open_log(lines)
        starts = [sum(len(line) + 1 for line in lines[:number]) for number in range(206)]
        for key, focus in ("ctrl+f", "text 查找日志"), ("Escape", LOG), ("ctrl+f", "text 查找日志"):
            xdotool(f"key {key}")
            self.assertTrue(eventually(lambda: self.window.focus() == focus), (key, self.window.focus()))
        for keys, line in ("O t h e r", 5), ("Return", 6), ("ctrl+a p l a i n", 205), ("Return", 0):
            xdotool(f"key {keys}")
            self.assertTrue(eventually(
                lambda: self.selection_start() == starts[line] and self.is_in_view(starts[line])), keys)
        self.assertEqual("\n".join(lines), self.log_text())
        looks = [self.window.find(LOG).call("Text.GetAttributeRun", "(ib)", start, True)[0] for start in starts[:5]]
        self.assertEqual(["400 normal", "400 italic", "700 normal", "700 normal", "400 normal"],
                         [f"{look['weight']} {look['style']}" for look in looks])

    def test_the_log_follows_its_end_until_a_person_scrolls_up(self):
        log = self.open_log(["first"] + ["line"] * 49)
        writer = self.run_child("sh", "-c", f"while sleep 0.05; do seq 130 >>{log}; done")
        xdotool("key Tab Tab Tab")
        self.assertTrue(eventually(lambda: self.window.focus() == LOG))
        xdotool("mousemove 240 340")
        for act, follows in (("key Down", True), ("key Up", False), ("key ctrl+End", True),
                             ("click 4", False), ("key Next", True), ("key ctrl+a", False)):
            # A busy log may undo a scroll that has just begun.
            self.assertTrue(eventually(lambda: xdotool(act) or (self.window.find(TO_END) is None) == follows), act)
            # More than the quarter of a second between two batches of lines.
            self.assertFalse(eventually(lambda: (self.window.find(TO_END) is None) != follows, 1), act)
        writer.end()
        xdotool("key ctrl+End")
        log.write_text("first\n")
        host.output_of(f"yes | head -n 300 >>{log}; seq 1000 1060 >>{log}")
        # Earlier lines appear above what is in view, and at once when the beginning is asked for.
        for act, line in ("click 4 click 4 click 4 click 4", "1025"), ("key ctrl+Home", "first"):
            xdotool("key ctrl+End")
            self.assertTrue(eventually(lambda: "first" not in self.log_text() and self.is_line_in_view("1060")))
            xdotool(act)
            self.assertTrue(eventually(lambda: "first" in self.log_text() and self.is_line_in_view(line)), line)
            self.assertFalse(self.is_line_in_view("1060"))
        self.assertTrue(eventually(lambda: xdotool("key Next") or self.window.find(TO_END) is None))
        self.assertTrue(eventually(lambda: self.is_line_in_view("1060")))
