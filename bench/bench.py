#!/usr/bin/env python3
"""Measures what the installer costs, each figure beside something that does the least for the same, and prints a table.

A figure is the median of its runs, with the least and the most. What is compared runs in turn, so a busy machine slows
both. usage: bench.py [start | waiting | payload | run]…
"""
import mmap
import os
import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
BARE_WINDOW = ROOT / "build/release/bench/bare_window"
BUNDLE = ROOT / "build/Orvane Installer.app/Contents"
WINDOW = BUNDLE / "MacOS/Orvane Installer"


def print_rows(names, ours, than, theirs):
    """A row for each name, with its unit. A run has a value for each of them."""
    def text(values):
        return f"{statistics.median(values):.4g} ({min(values):.4g}–{max(values):.4g})"
    for (name, unit), one, other in zip(names.items(), zip(*ours), zip(*theirs)):
        ratio = statistics.median(one) / (statistics.median(other) or float("nan"))
        print(f"| {name} | {unit} | {text(one)} | {than} | {text(other)} | {ratio:.2f} |", flush=True)


def in_turn(runs, **cases):
    """What each case returns, of so many runs of all of them in turn; the first ones do not count."""
    results = [[case() for case in cases.values()] for _ in range(runs + 1)]
    return dict(zip(cases, zip(*results[1:])))


def folder(within=None):
    return tempfile.TemporaryDirectory(prefix="orvane-bench-", dir=within)


class Screen:
    """A display of its own, which keeps its pixels in a file."""

    def __enter__(self):
        width, height = 1280, 1024
        self.folder = folder()
        number, number_in = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(number_in), "-noreset", "-nolisten", "tcp", "-fbdir", self.folder.name,
             "-screen", "0", f"{width}x{height}x24"], pass_fds=[number_in], stderr=subprocess.DEVNULL)
        os.close(number_in)
        with os.fdopen(number) as pipe:
            os.environ["DISPLAY"] = ":" + pipe.readline().strip()
        with open(f"{self.folder.name}/Xvfb_screen0", "rb") as file:
            self.pixels = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        # Every window crosses this row. The file ends with the last one.
        start = len(self.pixels) - height // 2 * width * 4
        self.row = slice(start, start + width * 4)
        return self

    def __exit__(self, *_):
        self.server.kill()
        self.server.wait()
        self.folder.cleanup()

    def start(self, command):
        """Returns the process, and the milliseconds until its first pixels are there."""
        begin = time.perf_counter()
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        while not any(self.pixels[self.row]):
            if process.poll() is not None or time.perf_counter() > begin + 20:
                process.kill()
                sys.exit(f"{command[0]} shows nothing")
        return process, (time.perf_counter() - begin) * 1e3

    def stop(self, process):
        """Returns the milliseconds of processor time that it has used."""
        process.kill()
        _, process.returncode, used = os.wait4(process.pid, 0)
        while any(self.pixels[self.row]):  # the server takes its windows down a little later
            time.sleep(0.005)
        return (used.ru_utime + used.ru_stime) * 1e3


def proportional_memory(process):
    """Megabytes: of a page that several processes share, each has its part."""
    lines = pathlib.Path(f"/proc/{process.pid}/smaps_rollup").read_text().splitlines()
    return next(int(line.split()[1]) / 1024 for line in lines if line.startswith("Pss:"))


def start():
    with Screen() as screen, folder() as root:
        def measure(command):
            process, passed = screen.start(command)
            time.sleep(0.3)  # what comes after the first frame counts, too
            memory = proportional_memory(process)
            return passed, screen.stop(process), memory
        results = in_turn(21, installer=lambda: measure([WINDOW, "--root", root]),
                          empty=lambda: measure([BARE_WINDOW]), word=lambda: measure([BARE_WINDOW, "安装"]))
    names = {"first frame": "ms", "start, processor": "ms", "memory": "MB"}
    print_rows(names, results["installer"], "an empty window", results["empty"])
    print_rows(names, results["installer"], "a window with a word", results["word"])


def work_of(process):
    """Milliseconds of processor time, and times that it has waited for something, of all its threads."""
    tasks = list(pathlib.Path(f"/proc/{process.pid}/task").iterdir())
    statuses = "".join((task / "status").read_text() for task in tasks).splitlines()
    return (sum(int((task / "schedstat").read_text().split()[0]) for task in tasks) / 1e6,
            sum(int(line.split()[1]) for line in statuses if line.startswith("voluntary")))


def waiting():
    with Screen() as screen, folder() as root:
        poller = subprocess.Popen([sys.executable, "-c", "import time\nwhile True: time.sleep(1.5)"])
        os.environ["SUDO_ASKPASS"] = "/bin/true"
        installer, _ = screen.start([WINDOW, "--root", root])
        window = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(installer.pid)], check=True,
                                capture_output=True, text=True).stdout.split()[-1]
        subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "Tab", "space"], check=True)
        ui_log = pathlib.Path(root, "tmp/tessal_installer_ui.log")
        while not ui_log.exists() or "trigger=" not in ui_log.read_text():
            time.sleep(0.1)
        time.sleep(2)
        results = {installer: [], poller: []}
        for _ in range(3):
            before = {process: work_of(process) for process in results}
            time.sleep(6)
            for process, values in results.items():
                values.append([(new - old) / 6 for new, old in zip(work_of(process), before[process])])
        for process in results:  # the window of the settings ends with the display
            process.kill()
            process.wait()
    print_rows({"waiting, processor": "ms/s", "waiting, wake-ups": "1/s"}, results[installer],
               "a process that polls", results[poller])


def payload():
    files, size = 4000, 75_000
    source = random.Random(1)
    # On a disk its file system takes most of the time; in memory there is room for this.
    with folder("/dev/shm" if shutil.disk_usage("/dev/shm").free > 1.5e9 else None) as place:
        script, root, out = (pathlib.Path(place, name) for name in ("script", "root", "out"))
        script.mkdir()
        for name in ("install.sh", "install_common.sh"):
            shutil.copy(BUNDLE / "Resources" / name, script)
        with zipfile.ZipFile(script / "Orvane.zip", "w", zipfile.ZIP_DEFLATED) as archive:
            for number in range(files):  # a third of the bytes does not compress
                archive.writestr(f"Orvane.app/Contents/Resources/{number % 100}/{number}",
                                 source.randbytes(size // 3) + (b"%20d" % number) * (size // 30))
        with (script / "SHA256SUMS").open("w") as sums:
            subprocess.run(["sha256sum", "Orvane.zip"], cwd=script, stdout=sums, check=True)

        def run(*command):
            for each in (root, out):
                shutil.rmtree(each, ignore_errors=True)
            (root / "tmp").mkdir(parents=True)
            out.mkdir()
            begin, before = time.perf_counter(), os.times()
            subprocess.run(command, check=True, capture_output=True, env={**os.environ, "INSTALL_ROOT": str(root)})
            after = os.times()
            return (time.perf_counter() - begin,
                    after.children_user + after.children_system - before.children_user - before.children_system)
        results = in_turn(4, script=lambda: run("sh", script / "install.sh"),
                          bsdtar=lambda: run("bsdtar", "-xf", script / "Orvane.zip", "-C", out))
    what = f"payload of {files * size // 10**6} MB in {files} files"
    print_rows({what: "s", f"{what}, processor": "s"}, results["script"], "bsdtar", results["bsdtar"])


# Beside the real script in a copy of the bundle, it notes when that begins and ends.
NOTING_SCRIPT = """date +%s%N >"$INSTALL_ROOT/times"
sh "$(dirname "$0")/script.sh" || exit
date +%s%N >>"$INSTALL_ROOT/times"
"""


def run():
    environment = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
    environment["SUDO_ASKPASS"] = "/bin/true"
    with folder() as place:
        root, copy = pathlib.Path(place, "root"), pathlib.Path(place, "Copy.app/Contents")
        root.mkdir()
        shutil.copytree(BUNDLE, copy)
        (copy / "Resources/install.sh").rename(copy / "Resources/script.sh")
        (copy / "Resources/install.sh").write_text(NOTING_SCRIPT)

        def command(program, *arguments):
            return subprocess.run([copy / program, "--root", root, *arguments], env=environment, capture_output=True,
                                  check="--no-wait" not in arguments)

        def one():
            begin = time.perf_counter()
            command("MacOS/orvane-install")
            whole = (time.perf_counter() - begin) * 1e3
            begin, end = map(int, (root / "times").read_text().split())
            return whole, (end - begin) / 1e6
        command("MacOS/orvane-install", "--no-wait")
        command("Helpers/input-sources", "allow", "com.tessal.inputmethod.Orvane")
        command("MacOS/orvane-install", "activate")
        results = in_turn(9, run=one)["run"]
    print_rows({"overwriting installation": "ms", "of this, beyond the script": "ms"},
               [(whole, whole - script) for whole, script in results], "its script",
               [(script, script) for _, script in results])


def main():
    groups = {group.__name__: group for group in (start, waiting, payload, run)}
    if not set(sys.argv[1:]) <= set(groups):
        sys.exit(__doc__)
    print("| figure | unit | installer | against | its figure | ratio |\n|---|---|---|---|---|---|")
    for name in sys.argv[1:] or groups:
        groups[name]()


main()
