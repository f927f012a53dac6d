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

LONGEST_WAIT = 30  # seconds
INSTALLER, AGENT = "Orvane Installer", "input-source-agent"
bundle, work = sys.argv[1:]
spoken = []  # (name, description) of what got the focus, as it was announced


def await_that(what, is_reached):
    until = time.monotonic() + LONGEST_WAIT
    while time.monotonic() < until:
        with contextlib.suppress(GLib.Error):  # what was asked has just gone
            if found := is_reached():
                return found
        if not GLib.MainContext.default().iteration(False):
            time.sleep(0.05)
    raise SystemExit(f"  FAILED: not reached: {what} {nodes(INSTALLER).keys()} {spoken}")


def below(node):
    for i in range(node.get_child_count()):
        if (child := node.get_child_at_index(i)) is not None:
            yield child
            yield from below(child)


def nodes(program):
    """What a program shows now, by role and name."""
    found = {}
    for each in below(Atspi.get_desktop(0)):
        if each.get_role_name() == "application" and each.get_name() == program:
            each.clear_cache()  # of items that are newly ignored there is no event
            found |= {(node.get_role_name(), node.get_name()): node for node in below(each)}
    return found


def await_node(role, name, program=INSTALLER):
    return await_that(f"{role} {name}", lambda: nodes(program).get((role, name)))


def await_spoken(name, description=""):
    await_that(f"{name} is spoken", lambda: (name, description) in spoken)


def press(node):
    names = [Atspi.Action.get_action_name(node, i) for i in range(Atspi.Action.get_n_actions(node))]
    Atspi.Action.do_action(node, names.index("Press"))


@contextlib.contextmanager
def installer(app=bundle, askpass="/bin/true"):
    spoken.clear()
    command = [f"{app}/Contents/MacOS/{INSTALLER}", "--root", work + "/root"]
    environment = {**os.environ, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "SUDO_ASKPASS": askpass}
    process = subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)
    try:
        yield process
    finally:
        process.terminate()
        process.wait(LONGEST_WAIT)


def unhappy_ends():
    broken = f"{work}/Broken.app"
    script = f"{broken}/Contents/Resources/install.sh"
    shutil.copytree(os.path.realpath(bundle), broken)
    with open(script, "w") as file:
        file.write("exit 1")
    for app, askpass in (bundle, "/bin/false"), (broken, "/bin/true"):
        with installer(app, askpass):
            press(await_node("push button", "安装"))
            await_spoken("正在安装")
            await_spoken("安装未完成，请关闭窗口后重新打开")
    os.remove(script)
    with installer(broken):
        press(await_node("push button", "安装"))
        await_spoken("找不到安装脚本 install.sh")
        await_node("push button", "重试")


def whole_installation():
    with installer() as process:
        for label in "澄枫输入法", "2.4.0", "适用于 macOS 11.5 及以上版本":
            await_node("label", label)
        press(await_node("push button", "安装"))
        instruction = "为了正常使用，请将「澄枫输入法」添加到输入法列表"
        await_spoken("启用输入法", instruction)
        question = "“澄枫输入法”想启用第三方\n输入法“澄枫输入法”"
        guide = [node for (_, name), node in nodes(INSTALLER).items() if name == question]
        assert [each.get_description() for each in guide] == ["请在弹出的询问中选择“好”"], guide

        # The consent window takes the focus when it opens: only then is the key safe.
        consent = await_node("push button", "好", AGENT)
        spoken.clear()

        def is_asked_to_close():
            window = ["search", "--onlyvisible", "--class", INSTALLER, "windowactivate", "--sync"]
            key = ["key", "alt+F4", "sleep", "0.5"]
            subprocess.run(["xdotool", *window, *key], timeout=LONGEST_WAIT, check=True)
            return ("dialog", "澄枫输入法") in nodes(INSTALLER)

        # Another window may take the focus just before the key; the key again is harmless.
        await_that("the question before closing", is_asked_to_close)
        warning = "未启用「澄枫输入法」\n退出安装将无法使用"
        await_spoken("澄枫输入法", warning)
        told = [name for role, name in nodes(INSTALLER) if role in ("label", "image", "push button")]
        assert told == [warning, "退出安装", "去启用"], told  # nothing below the dialog
        spoken.clear()
        press(await_node("push button", "去启用"))
        await_spoken("启用输入法", instruction)

        press(consent)
        await_spoken("安装成功")
        press(await_node("push button", "安装成功"))
        process.wait(LONGEST_WAIT)


def on_event(event):
    if event.detail1 and event.source is not None:
        spoken.append((event.source.get_name(), event.source.get_description()))


listener = Atspi.EventListener.new(on_event)
listener.register("object:state-changed:focused")
unhappy_ends()
whole_installation()
