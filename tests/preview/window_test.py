"""The window as screen readers and keyboards meet it: read over AT-SPI and driven by keys."""
import os
import pathlib
import shutil

import gi

import host

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402
from Xlib import X, Xatom, display  # noqa: E402

PAGES = ["radio button 连接", "radio button 日志", "radio button 诊断"]
FORM = ["text 配置文件(F)", "push button 浏览(B)…", "radio button 设置系统代理(S)", "scroll pane 连接详情"]
CONNECT, DISCONNECT = "push button 连接(C)", "push button 断开(D)"
LOG, TO_END = "text 核心日志", "push button 转到末尾"
VALUES = [f"label {name}" for name in (
    "桌面环境", "会话类型", "libproxy 库", "TUN 设备", "系统路径中有核心", "辅助服务已启动", "gsettings 工具", "kwriteconfig 工具",
    "程序目录", "当前核心", "核心路径", "核心可用", "核心版本", "运行日志")]


def has(node, state):
    return node.get_state_set().contains(getattr(Atspi.StateType, state))


def labels_of(node):
    return [relation.get_target(0) for relation in node.get_relation_set()
            if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY]


def spoken(node):
    """The role and the name, which is that of its label where it has one."""
    return f"{node.get_role_name()} {(labels_of(node) or [node])[0].get_name()}"


def xdotool(actions):
    return host.output_of(f"xdotool {actions}")


def announce_window_manager(name):
    """As it does so itself, which has a window for that."""
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
    return size.width, size.height, icon is not None


class Window(host.HostTest):
    def setUp(self):
        super().setUp()
        host.start_bus(self)
        os.environ.pop("NO_AT_BRIDGE", None)

    def open(self, *options, program=host.HOST):
        window = self.run_child(program, *options)
        self.frame = host.eventually(self.find_frame)
        self.assertTrue(host.eventually(
            lambda: xdotool("search --onlyvisible --name Corvana windowfocus getwindowfocus") and self.focus()))
        return window

    @staticmethod
    def find_frame():
        desktop = Atspi.get_desktop(0)
        for application in map(desktop.get_child_at_index, range(desktop.get_child_count())):
            if application and application.get_name() == "Corvana" and application.get_child_count():
                # Nothing is kept of what was read, so that an answer is never that of a moment ago.
                application.set_cache_mask(Atspi.Cache.NONE)
                return application.get_child_at_index(0)
        return None

    def seen(self, node=None):
        """What is on the screen, in reading order."""
        node = node or self.frame
        if node and has(node, "SHOWING"):
            yield node
            for index in range(node.get_child_count()):
                yield from self.seen(node.get_child_at_index(index))

    def find(self, name):
        return next((node for node in self.seen() if spoken(node) == name), None)

    def focus(self):
        return next((spoken(node) for node in self.seen() if has(node, "FOCUSED") and node != self.frame), "")

    def tab_round(self, key):
        """What the key reaches, from where the focus is until it comes back to that."""
        names = [self.focus()]
        while len(names) < 50:
            xdotool(f"key {key}")
            self.assertTrue(host.eventually(lambda: self.focus() not in ("", names[-1])), names)
            if self.focus() == names[0]:
                break
            names.append(self.focus())
        return names

    def test_tab_reaches_all_of_each_page_both_ways_and_all_is_named(self):
        rows = {"connection": FORM + [CONNECT],
                "log": [LOG, "push button 复制选中的日志，未选中时复制全部", "push button 清空"],
                "diagnostics": VALUES + ["push button 复制全部诊断结果", "push button 刷新"]}
        for page, controls in rows.items():
            window = self.open("--page", page)
            self.assertTrue(host.eventually(lambda: has(self.find(controls[-1]), "SENSITIVE")))
            seen = list(self.seen())
            self.assertEqual([], [spoken(node) for node in seen if has(node, "FOCUSABLE") and spoken(node)[-1] == " "])
            for node in seen:
                self.assertTrue(all(seen.index(label) < seen.index(node) for label in labels_of(node)), spoken(node))
            names = self.tab_round("Tab")
            self.assertEqual(PAGES + controls, names)
            self.assertEqual(names[:1] + names[:0:-1], self.tab_round("shift+Tab"))
            window.end()

    def test_the_window_has_a_title_bar_only_where_the_desktop_draws_none_and_an_icon(self):
        shutil.copytree(host.BUNDLE, "bundle")
        pathlib.Path("bundle/logo.png").unlink()
        # The name is literally that; only the icon beside the executable makes it unneeded.
        icon = self.home / ".local/share/icons/hicolor/128x128/apps/{CONF_MERCHANT_BRAND_NAME_EN_LOWER}.png"
        icon.parent.mkdir(parents=True)
        shutil.copy(host.BUNDLE / "logo.png", icon)
        for window_manager, bar in ("", []), ("Xfwm4", []), ("GNOME Shell", ["push button Close", "label Corvana"]):
            if window_manager:
                announce_window_manager(window_manager)
            window = self.open(program="bundle/Corvana" if bar else host.HOST)
            named = [name for name in map(spoken, self.seen()) if name.endswith((" Corvana", " Close"))]
            self.assertEqual(["frame Corvana"] + bar, named)
            width, height, has_icon = size_and_icon()
            self.assertTrue(has_icon and (bar or (width, height) == (480, 680)))
            window.end()

    def test_a_connection_by_keys_is_announced_and_moves_the_focus(self):
        self.record("gsettings")
        said = []
        listener = Atspi.EventListener.new(lambda event: said.append(event.any_data))
        listener.register("object:announcement")

        def has_said(words):
            GLib.MainContext.default().iteration(False)
            return said == words

        self.open("--config", self.config)
        while self.focus() != FORM[0]:
            xdotool("key Tab")
        xdotool("key Return")
        self.assertTrue(host.eventually(lambda: has_said(["正在连接…", "已连接"])), said)
        self.assertTrue(host.eventually(lambda: self.focus() == DISCONNECT))
        self.assertEqual("label 代理地址", spoken(next(n for n in self.seen() if n.get_name() == "127.0.0.1:7890")))
        xdotool("key space")
        self.assertTrue(host.eventually(lambda: has_said(["正在连接…", "已连接", "正在断开…", "未连接"])), said)
        self.assertTrue(host.eventually(lambda: self.focus() == CONNECT))

    def open_log(self, lines):
        log = self.home / ".local/share/Corvana/run/runtime.log"
        log.parent.mkdir(parents=True)
        log.write_text("\n".join(lines) + "\n")
        self.open("--page", "log")
        self.assertTrue(host.eventually(lambda: self.find(f"label {len(lines)} 行")))
        return log

    def is_in_view(self, offset):
        """Whether the log's character can be seen."""
        place = Atspi.Text.get_character_extents(self.find(LOG), offset, Atspi.CoordType.SCREEN)
        view = Atspi.Component.get_extents(self.find(LOG).get_parent(), Atspi.CoordType.SCREEN)
        return view.y <= place.y and place.y + place.height <= view.y + view.height

    def is_end_in_view(self):
        return self.is_in_view(Atspi.Text.get_character_count(self.find(LOG)) - 1)

    def selection_start(self):
        return Atspi.Text.get_selection(self.find(LOG), 0).start_offset

    def test_the_log_is_searched_and_marks_levels(self):
        lines = ["plain", "WARN 1", "a level=error", "FATAL", "late " * 20 + "ERROR"] + ["other"] * 200
        self.open_log(lines)
        starts = [sum(len(line) + 1 for line in lines[:number]) for number in range(205)]
        xdotool("key ctrl+f")
        self.assertTrue(host.eventually(lambda: self.focus() == "text 查找日志"))
        for keys, found in ("O t h e r", starts[5]), ("Return", starts[6]), ("ctrl+a p l a i n", 0), ("Return", 0):
            xdotool(f"key {keys}")
            self.assertTrue(host.eventually(lambda: self.selection_start() == found and self.is_in_view(found)), keys)
        self.assertEqual("plain\nWARN", Atspi.Text.get_text(self.find(LOG), 0, 10))
        looks = [Atspi.Text.get_attribute_run(self.find(LOG), start, True)[0] for start in starts[:5]]
        self.assertEqual(["400 normal", "400 italic", "700 normal", "700 normal", "400 normal"],
                         [f"{look['weight']} {look['style']}" for look in looks])

    def test_the_log_follows_its_end_until_a_person_scrolls_up(self):
        log = self.open_log(["line"] * 50)
        host.output_of(f"seq 49 >>{log}")
        self.assertTrue(host.eventually(lambda: self.find("label 99 行") and self.is_end_in_view()))
        writer = self.run_child("sh", "-c", f"while sleep 0.05; do seq 130 >>{log}; done")
        while self.focus() != LOG:
            xdotool("key Tab")
        xdotool("mousemove 240 340")
        for act, follows in (("key Down", True), ("key Left", True), ("key Up", False), ("key ctrl+End", True),
                             ("click 4", False), ("key Next", False)):
            xdotool(act)
            self.assertTrue(host.eventually(lambda: (self.find(TO_END) is None) == follows), act)
            # For longer than the view goes on moving.
            self.assertFalse(host.eventually(lambda: (self.find(TO_END) is None) != follows, 1), act)
        writer.end()
        xdotool("key ctrl+Home")
        self.assertTrue(host.eventually(lambda: self.is_in_view(0)))
        xdotool("key ctrl+End key Up")
        self.assertTrue(host.eventually(lambda: self.find(TO_END)))
        self.assertTrue(host.eventually(lambda: xdotool("click 5") or self.find(TO_END) is None))
        self.assertTrue(host.eventually(self.is_end_in_view))
