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


def print_rows(names, than, ours, theirs):
    """A row for each name, with its unit. A run has a value for each of them."""
    def text(values):
        return f"{statistics.median(values):.4g} ({min(values):.4g}–{max(values):.4g})"
    for (name, unit), one, other in zip(names.items(), zip(*ours), zip(*theirs)):
        ratio = statistics.median(one) / (statistics.median(other) or float("nan"))
        print(f"| {name} | {unit} | {text(one)} | {than} | {text(other)} | {ratio:.2f} |", flush=True)


def compare(runs, names, than, ours, theirs):
    """So many runs of both in turn; the first ones do not count."""
    results = [(ours(), theirs()) for _ in range(runs + 1)]
    print_rows(names, than, *zip(*results[1:]))


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
        def measure(*command):
            process, passed = screen.start(command)
            time.sleep(0.3)  # what comes after the first frame counts, too
            memory = proportional_memory(process)
            return passed, screen.stop(process), memory
        compare(21, {"first frame": "ms", "start, processor": "ms", "memory": "MB"}, "a window with a word",
                lambda: measure(WINDOW, "--root", root), lambda: measure(BARE_WINDOW))


def work_of(process):
    """Milliseconds of processor time, and times that it has waited for something, of all its threads."""
    tasks = list(pathlib.Path(f"/proc/{process.pid}/task").iterdir())
    statuses = "".join((task / "status").read_text() for task in tasks).splitlines()
    return (sum(int((task / "schedstat").read_text().split()[0]) for task in tasks) / 1e6,
            sum(int(line.split()[1]) for line in statuses if line.startswith("voluntary")))


def waiting():
    with Screen() as screen, folder() as root:
        poller = subprocess.Popen([sys.executable, "-c", "import time\nwhile True: time.sleep(1.5)"])
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
    print_rows({"waiting, processor": "ms/s", "waiting, wake-ups": "1/s"}, "a process that polls",
               results[installer], results[poller])


def seconds(root, *command):
    begin = time.perf_counter()
    subprocess.run(command, check=True, capture_output=True, env={**os.environ, "INSTALL_ROOT": str(root)})
    return time.perf_counter() - begin


def payload():
    files, size = 4000, 75_000
    source = random.Random(1)
    # On a disk its file system takes most of the time; in memory there is room for this.
    with folder("/dev/shm" if shutil.disk_usage("/dev/shm").free > 1.5e9 else None) as memory, folder() as disk:
        script = pathlib.Path(memory, "script")
        script.mkdir()
        for name in ("install.sh", "install_common.sh"):
            shutil.copy(BUNDLE / "Resources" / name, script)
        (script / "unflushed.sh").write_text("sync() { :; }\n" + (script / "install.sh").read_text())
        with zipfile.ZipFile(script / "Orvane.zip", "w", zipfile.ZIP_DEFLATED) as archive:
            for number in range(files):  # a third of the bytes does not compress
                archive.writestr(f"Orvane.app/Contents/Resources/{number % 100}/{number}",
                                 source.randbytes(size // 3) + (b"%20d" % number) * (size // 30))
        with (script / "SHA256SUMS").open("w") as sums:
            subprocess.run(["sha256sum", "Orvane.zip"], cwd=script, stdout=sums, check=True)

        def run(place, command):
            root = pathlib.Path(place, "root")
            shutil.rmtree(root, ignore_errors=True)
            (root / "tmp").mkdir(parents=True)
            os.sync()  # what is not the command's
            return [seconds(root, "sh", "-c", command, script, root)]
        name, unpack = f"payload of {files * size // 10**6} MB in {files} files", 'bsdtar -xf "$0/Orvane.zip" -C "$1"'
        compare(4, {name: "s"}, "bsdtar",
                lambda: run(memory, 'sh "$0/unflushed.sh"'), lambda: run(memory, unpack))
        compare(4, {"the same, flushed": "s"}, "bsdtar, sync",
                lambda: run(disk, 'sh "$0/install.sh"'), lambda: run(disk, unpack + " && sync"))


def run():
    os.environ.pop("DISPLAY", None)
    with folder() as root:
        installer = [BUNDLE / "MacOS/orvane-install", "--root", root]
        subprocess.run([*installer, "--no-wait"], capture_output=True)  # fails: nobody has allowed it yet
        seconds(root, BUNDLE / "Helpers/input-sources", "--root", root, "allow", "com.tessal.inputmethod.Orvane")
        seconds(root, *installer, "activate")
        compare(9, {"overwriting installation": "s"}, "its script", lambda: [seconds(root, *installer)],
                lambda: [seconds(root, "sh", BUNDLE / "Resources/install.sh")])


def main():
    groups = {group.__name__: group for group in (start, waiting, payload, run)}
    if not set(sys.argv[1:]) <= set(groups):
        sys.exit(__doc__)
    os.environ["SUDO_ASKPASS"] = "/bin/true"
    print("| figure | unit | installer | against | its figure | ratio |\n|---|---|---|---|---|---|")
    for name in sys.argv[1:] or groups:
        groups[name]()


main()
