"""What assistive tools are told of every screen, asked as they ask: over AT-SPI.
usage: accessibility_test.py APP_BUNDLE FOLDER   On a display, in a D-Bus session, under
a window manager. The caller removes the folder and ends the agents that run below it."""

import contextlib
import os
import shutil
import subprocess
import sys
import time
import warnings

import gi

warnings.simplefilter("ignore", DeprecationWarning)  # the names of the binding

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

BASE = "com.tessal.inputmethod.Orvane"
LONGEST_WAIT = 30  # seconds
bundle, work = sys.argv[1:]
root = work + "/root"
failures = 0
focused = []  # (role, name, description) of what got the focus, as it was announced


def check(what, is_good, seen=""):
    global failures
    if not is_good:
        failures += 1
        print(f"  FAILED: {what}", seen)


def pump(seconds=0.1):
    """Lets events of the bus arrive for a while."""
    until = time.monotonic() + seconds
    while time.monotonic() < until:
        if not GLib.MainContext.default().iteration(False):
            time.sleep(0.01)


def await_that(what, is_reached):
    until = time.monotonic() + LONGEST_WAIT
    while time.monotonic() < until:
        with contextlib.suppress(GLib.Error):  # what was asked has just gone
            if found := is_reached():
                return found
        pump()
    seen = [Screen(program).seen for program in (INSTALLER, AGENT, "askpass")]
    raise SystemExit(f"  FAILED: not reached: {what} {seen}")


def below(node):
    for i in range(node.get_child_count()):
        child = node.get_child_at_index(i)
        if child is not None:
            yield child
            yield from below(child)


def programs(name):
    desktop = Atspi.get_desktop(0)
    every = [desktop.get_child_at_index(i) for i in range(desktop.get_child_count())]
    return [each for each in every if each is not None and each.get_name() == name]


class Screen:
    """What a program shows at one moment."""

    def __init__(self, program):
        found = programs(program)
        for each in found:
            each.clear_cache()  # of items that are newly ignored there is no event
        self.nodes = [node for each in found for node in below(each)]
        self.seen = [(node.get_role_name(), node.get_name()) for node in self.nodes]

    def node(self, role, name):
        places = [i for i, each in enumerate(self.seen) if each == (role, name)]
        return self.nodes[places[0]] if places else None

    def names(self, role):
        return [name for each, name in self.seen if each == role]


def await_node(program, role, name):
    return await_that(f"{role} {name}", lambda: Screen(program).node(role, name))


def expect(program, role, *names):
    seen = Screen(program).seen
    for name in names:
        check(f"{role} {name}", (role, name) in seen, seen)


def has(node, state):
    return node.get_state_set().contains(state)


def press(node):
    names = [Atspi.Action.get_action_name(node, i) for i in range(Atspi.Action.get_n_actions(node))]
    Atspi.Action.do_action(node, names.index("Press"))


@contextlib.contextmanager
def running(*command, **environment):
    process = subprocess.Popen(
        command,
        env={**os.environ, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", **environment},
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    )
    try:
        yield process
    finally:
        process.terminate()
        process.wait(LONGEST_WAIT)


def on_event(event):
    if event.detail1 and event.source is not None:
        node = event.source
        focused.append((node.get_role_name(), node.get_name(), node.get_description()))


INSTALLER = "Orvane Installer"
AGENT = "input-source-agent"


def first_screens():
    with running(f"{bundle}/Contents/MacOS/{INSTALLER}", "--root", root):
        await_node(INSTALLER, "push button", "安装")
        expect(INSTALLER, "label", "澄枫输入法", "2.4.0", "适用于 macOS 11.5 及以上版本")
        screen = Screen(INSTALLER)
        window = programs(INSTALLER)[0].get_child_at_index(0)
        check("name of the window", window.get_name() == "澄枫输入法", window.get_name())
        check("icon", any(role in ("image", "icon") and name for role, name in screen.seen), screen.seen)
    incomplete = f"{work}/Incomplete.app"
    shutil.copytree(os.path.realpath(bundle), incomplete)
    os.remove(f"{incomplete}/Contents/Resources/install.sh")
    with running(f"{incomplete}/Contents/MacOS/{INSTALLER}", "--root", root, SUDO_ASKPASS="/bin/true"):
        press(await_node(INSTALLER, "push button", "安装"))
        await_node(INSTALLER, "label", "找不到安装脚本 install.sh")
        expect(INSTALLER, "push button", "打开键盘设置", "重试")


def whole_installation():
    with running(f"{bundle}/Contents/MacOS/{INSTALLER}", "--root", root, SUDO_ASKPASS="/bin/true") as installer:
        press(await_node(INSTALLER, "push button", "安装"))
        await_node(INSTALLER, "label", "启用输入法")
        question = "“澄枫输入法”想启用第三方\n输入法“澄枫输入法”"
        expect(INSTALLER, "label", "为了正常使用，请将「澄枫输入法」添加到输入法列表")
        expect(INSTALLER, "push button", "去启用")
        check("guide", any(name == question for _, name in Screen(INSTALLER).seen))

        # The consent window takes the focus when it opens: only then is the key safe.
        await_node(AGENT, "push button", "好")
        window = subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--pid", str(installer.pid)],
            capture_output=True, text=True, timeout=LONGEST_WAIT).stdout.split()[-1]

        def is_asked_to_close():
            subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "alt+F4"],
                           timeout=LONGEST_WAIT, check=True)
            until = time.monotonic() + 2
            while time.monotonic() < until and not Screen(INSTALLER).node("dialog", "澄枫输入法"):
                pump()
            return Screen(INSTALLER).node("dialog", "澄枫输入法")

        # Another window may take the focus just before the key; the key again is harmless.
        await_that("the question before closing", is_asked_to_close)
        warning = "未启用「澄枫输入法」\n退出安装将无法使用"
        dialog = await_node(INSTALLER, "dialog", "澄枫输入法")
        check("text of the dialog", dialog.get_description() == warning, dialog.get_description())
        expect(INSTALLER, "label", warning)
        await_that("the dialog is announced", lambda: ("dialog", "澄枫输入法", warning) in focused)
        buttons = Screen(INSTALLER).names("push button")
        check("nothing below the dialog is offered", buttons == ["退出安装", "去启用"], buttons)

        press(await_node(INSTALLER, "push button", "去启用"))
        switch = await_node(AGENT, "check box", "ABC")
        check("it is on", has(switch, Atspi.StateType.CHECKED))
        check("a fixed switch says so", switch.get_description() == "不能更改", switch.get_description())
        expect(AGENT, "label", "输入法", "ABC", "当前", "等待许可 · " + BASE)

        expect(AGENT, "label", "“澄枫输入法”想启用第三方\n输入法“澄枫输入法”")
        expect(AGENT, "push button", "不允许")
        press(await_node(AGENT, "push button", "好"))
        press(await_node(INSTALLER, "push button", "安装成功"))
        installer.wait(LONGEST_WAIT)


def password_window():
    with running(f"{bundle}/Contents/Helpers/askpass", "Orvane Installer 想要进行更改"):
        field = await_node("askpass", "password text", "")
        subprocess.run(["xdotool", "type", "--delay", "30", "abc"], timeout=LONGEST_WAIT, check=True)
        await_that("dots for the password", lambda: Atspi.Text.get_text(field, 0, 9) == "●●●")
        expect("askpass", "label", "Orvane Installer 想要进行更改", "输入密码以允许此操作。")
        expect("askpass", "push button", "取消", "好")


listener = Atspi.EventListener.new(on_event)
listener.register("object:state-changed:focused")
first_screens()
whole_installation()
password_window()
if failures:
    sys.exit(f"{failures} failed")
