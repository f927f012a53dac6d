#!/usr/bin/env python3
"""Measures what the installer costs, each figure beside something that does the least for the same.

Prints one table and writes build/bench.json. A figure is the median of its runs, with the least and the most; what is
compared runs in turn. A program that is not there is reported as absent. --only NAME runs one group.
"""
import argparse
import json
import os
import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import time
import zipfile

from figures import column, figure, folder, in_turn, rows, timed
from screen import Screen

ROOT = pathlib.Path(__file__).resolve().parents[1]
PROGRAMS = ROOT / "build/release/bench"
BUNDLE = ROOT / "build/Orvane Installer.app/Contents"
WINDOW, COMMAND = BUNDLE / "MacOS/Orvane Installer", BUNDLE / "MacOS/orvane-install"
BASE = "com.tessal.inputmethod.Orvane"


# ---- the window

def processor_time(process):
    """Seconds of all its threads."""
    tasks = pathlib.Path(f"/proc/{process.pid}/task").iterdir()
    return sum(int((task / "schedstat").read_text().split()[0]) for task in tasks) / 1e9


def wake_ups(process):
    tasks = pathlib.Path(f"/proc/{process.pid}/task").iterdir()
    return sum(int(line.split()[1]) for task in tasks for line in (task / "status").read_text().splitlines()
               if line.startswith("voluntary"))


def proportional_memory(process):
    """Megabytes: of a page that several processes share, each has its part."""
    for line in pathlib.Path(f"/proc/{process.pid}/smaps_rollup").read_text().splitlines():
        if line.startswith("Pss:"):
            return int(line.split()[1]) / 1024
    return 0.0


def start():
    commands = {"installer": [WINDOW, "--root"], "an empty window": [PROGRAMS / "bare_window"],
                "a window with a word": [PROGRAMS / "bare_window", "安装"],
                "zenity": ["zenity", "--info", "--text=安装"], "yad": ["yad", "--text=安装"]}
    with Screen() as screen, folder() as root:
        commands["installer"].append(root)

        def first_frame(command):
            process, seconds = screen.start(command)
            return seconds * 1e3, screen.stop(process) * 1e3

        def memory(command):
            process, _ = screen.start(command)
            time.sleep(0.3)  # what comes after the first frame counts, too
            megabytes = proportional_memory(process)
            screen.stop(process)
            return [megabytes]

        def of_all(measure, runs):
            present = {name: command for name, command in commands.items() if shutil.which(command[0])}
            return in_turn(runs, **{name: lambda c=command: measure(c) for name, command in present.items()})
        times, sizes = of_all(first_frame, 21), of_all(memory, 5)
    for what, unit, results, index in [("first frame", "ms", times, 0), ("first frame, processor", "ms", times, 1),
                                       ("memory", "MB", sizes, 0)]:
        for name, aim in [("an empty window", 1.15), ("a window with a word", None), ("zenity", None), ("yad", 1.0 if what == "first frame" else None)]:
            figure(what, unit, column(results["installer"], index), name,
                   column(results[name], index) if name in results else None, aim)


def waiting():
    seconds, runs = 5, 3
    with Screen() as screen, folder() as root:
        poller = subprocess.Popen([sys.executable, "-c", "import time\nwhile True: time.sleep(1.5)"])
        os.environ["SUDO_ASKPASS"] = "/bin/true"
        installer, _ = screen.start([WINDOW, "--root", root])
        window = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(installer.pid)], check=True,
                                capture_output=True, text=True).stdout.split()[-1]
        subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "Tab", "space"], check=True)
        ui_log = root / "tmp/tessal_installer_ui.log"
        while not ui_log.exists() or "trigger=" not in ui_log.read_text():
            time.sleep(0.1)
        time.sleep(2)
        results = {installer: [], poller: []}
        for _ in range(runs):
            before = {process: (processor_time(process), wake_ups(process)) for process in results}
            time.sleep(seconds)
            for process, values in results.items():
                values.append(((processor_time(process) - before[process][0]) / seconds * 1e3,
                               (wake_ups(process) - before[process][1]) / seconds))
        # The window of the settings ends with the display.
        for process in results:
            process.kill()
            process.wait()
    figure("waiting, processor", "ms/s", column(results[installer], 0), "a process that polls", column(results[poller], 0))
    figure("waiting, wake-ups", "1/s", column(results[installer], 1), "a process that polls", column(results[poller], 1))


def marker():
    with Screen(), folder() as root:
        done = subprocess.run([PROGRAMS / "marker_latency", root, "60"], check=True, capture_output=True)
    times = json.loads(done.stdout)
    for name in ("field", "frame"):
        figure(f"marker to {name}", "ms", times[name], "a reader of the pipe", times["pipe"])
        figure(f"marker to {name}, 99th percentile", "ms", times[name], "a reader of the pipe", times["pipe"],
               pick=lambda values: statistics.quantiles(values, n=100, method="inclusive")[98])


# ---- the log

def log():
    with folder() as root:
        install_log, ui_log, copy = (root / name for name in ("tmp/tessal_installer.log",
                                                              "tmp/tessal_installer_ui.log", "copy"))
        install_log.parent.mkdir()
        with install_log.open("w") as file:
            for line in range(3_000_000):
                file.write(f"copying file {line} of the bundle\n")
        size = install_log.stat().st_size

        def follow():
            ui_log.unlink(missing_ok=True)
            return json.loads(subprocess.run([PROGRAMS / "log_follow", root], check=True, capture_output=True).stdout)

        def pipe():
            copy.unlink(missing_ok=True)
            begin = time.perf_counter()
            with copy.open("wb") as out:
                tail = subprocess.Popen(["tail", "-n", "+1", "-F", install_log], stdout=subprocess.PIPE)
                cat = subprocess.Popen(["cat"], stdin=tail.stdout, stdout=out)
            while copy.stat().st_size < size:
                time.sleep(0.001)
            seconds = time.perf_counter() - begin
            tail.kill()
            cat.kill()
            tail.wait()
            cat.wait()
            return seconds
        results = in_turn(7, follow=follow, pipe=pipe)
    ours = {key: [result[key] for result in results["follow"]] for key in results["follow"][0]}
    figure(f"log of {size // 10**6} MB", "s", ours["seconds"], "tail | cat", results["pipe"], 1.25)
    figure("log, longest turn", "ms", [1e3 * value for value in ours["longestTurnSeconds"]], "8 ms", [8.0], 1)
    figure("log, longest turn, processor", "ms", [1e3 * value for value in ours["longestBusyTurnSeconds"]],
           "8 ms", [8.0], 1)
    figure("log, memory", "B/B", ours["memoryPerByte"], "the log", [1.0], 2.2)


# ---- the script

def payload_archive(files, megabytes):
    """An archive of so many files, a third of whose bytes does not compress."""
    archive = ROOT / f"build/bench/payload-{files}-{megabytes}.zip"
    if not archive.exists():
        archive.parent.mkdir(parents=True, exist_ok=True)
        bytes_each = megabytes * 10**6 // files
        source = random.Random(1)
        with zipfile.ZipFile(archive.with_suffix(".new"), "w", zipfile.ZIP_DEFLATED) as new:
            for number in range(files):
                noise = source.randbytes(bytes_each // 3)
                text = f"file {number} of the payload\n".encode() * (bytes_each // 20)
                new.writestr(f"Orvane.app/Contents/Resources/{number % 100}/{number}",
                             noise + text[:bytes_each - len(noise)])
        archive.with_suffix(".new").rename(archive)
    return archive


def memory_if_it_fits(size):
    """A folder in memory with that much room, or else None. On a disk its file system takes most of the time."""
    memory = pathlib.Path("/dev/shm")
    return memory if memory.is_dir() and shutil.disk_usage(memory).free > size else None


def payload():
    for what, files, megabytes, runs in [("30 MB", 400, 30, 5), ("300 MB", 4000, 300, 3), ("20,000 files", 20000, 40, 3)]:
        with folder(memory_if_it_fits(10**6 * megabytes * 4)) as place:
            script, root, out = place / "script", place / "root", place / "out"
            script.mkdir()
            for name in ("install.sh", "install_common.sh"):
                shutil.copy(BUNDLE / "Resources" / name, script)
            shutil.copy(payload_archive(files, megabytes), script / "Orvane.zip")
            with (script / "SHA256SUMS").open("w") as sums:
                subprocess.run(["sha256sum", "Orvane.zip"], cwd=script, stdout=sums, check=True)

            def run(*command, **options):
                for each in (root, out):
                    shutil.rmtree(each, ignore_errors=True)
                (root / "tmp").mkdir(parents=True)
                out.mkdir()
                return timed(command, **options)
            cases = {"script": lambda: run("sh", script / "install.sh", env={**os.environ, "INSTALL_ROOT": str(root)})}
            if shutil.which("unzip"):
                cases["unzip"] = lambda: run("unzip", "-qo", script / "Orvane.zip", "-d", out)
            if shutil.which("bsdtar"):
                cases["bsdtar"] = lambda: run("bsdtar", "-xf", script / "Orvane.zip", "-C", out)
            results = in_turn(runs, warm_up=0, **cases)
        for index, kind in enumerate(["", ", processor"]):
            for other in ("unzip", "bsdtar"):
                aim = {"300 MB": 0.65, "20,000 files": 1.0}.get(what) if other == "unzip" else None
                figure(f"payload of {what}{kind}", "s", column(results["script"], index), other,
                       column(results[other], index) if other in results else None, aim)


# Beside the real script in a copy of the bundle, it notes when that begins and ends.
NOTING_SCRIPT = """date +%s%N >"$INSTALL_ROOT/times"
sh "$(dirname "$0")/script.sh" || exit
date +%s%N >>"$INSTALL_ROOT/times"
"""


def whole_run():
    environment = {**os.environ, "SUDO_ASKPASS": "/bin/true"}
    environment.pop("DISPLAY", None)
    with folder() as place:
        root, copy = place / "root", place / "Copy.app/Contents"
        shutil.copytree(BUNDLE, copy)
        (copy / "Resources/install.sh").rename(copy / "Resources/script.sh")
        (copy / "Resources/install.sh").write_text(NOTING_SCRIPT)
        command = [copy / "MacOS/orvane-install", "--root", root]

        def run(*arguments, status=0):
            begin = time.perf_counter()
            done = subprocess.run([*command, *arguments], env=environment, capture_output=True, check=False)
            seconds = time.perf_counter() - begin
            if done.returncode != status:
                raise SystemExit(done.stderr.decode())
            begin, end = map(int, (root / "times").read_text().split())
            return seconds * 1e3, (end - begin) / 1e6
        still_waiting = 3
        run("--no-wait", status=still_waiting)
        subprocess.run([BUNDLE / "Helpers/input-sources", "--root", root, "allow", BASE], check=True)
        run("activate")
        results = in_turn(9, run=run)["run"]
    figure("overwriting installation", "ms", column(results, 0), "its script", column(results, 1))
    figure("of this, beyond the script", "ms", [whole - script for whole, script in results], "its script",
           column(results, 1))


# ---- size and build

def size():
    payload_files = {"Orvane.zip", "Sondrel.zip", "Cogwen.zip"}
    files = [path for path in BUNDLE.rglob("*") if path.is_file() and path.name not in payload_files]
    loaded = subprocess.run(["ldd", WINDOW], check=True, capture_output=True, text=True).stdout.split()
    figure("bundle without payload", "MB", [sum(path.stat().st_size for path in files) / 1e6], "the toolkit that it loads",
           [sum(pathlib.Path(path).stat().st_size for path in loaded if path.startswith("/") and "libQt6" in path) / 1e6])


def build():
    environment = {**os.environ, "CCACHE_DISABLE": "1"}
    with folder() as tree:
        subprocess.run(["cmake", "-S", ROOT, "-B", tree, "-G", "Ninja", "-D", "CMAKE_BUILD_TYPE=Release", "-D",
                        "BUILD_TESTING=OFF"], check=True, stdout=subprocess.DEVNULL, env=environment)

        def seconds(*target):
            """What passed, and what the processors worked: on a busy machine only that says something."""
            return [[value] for value in timed(["cmake", "--build", tree, *target], env=environment)]
        bare = seconds("--target", "bare_window")
        clean = seconds()
        for index, kind in enumerate(["", ", processor"]):
            figure(f"build from clean{kind}", "s", clean[index], "an empty window", bare[index])
        for part in ("installer", "inputsource", "activation", "app", "ui", "cli", "platform/posix", "platform/linux",
                     "workbench"):
            file = min((ROOT / part).glob("*.cpp"))
            times = file.stat()
            os.utime(file)
            again = seconds()
            os.utime(file, ns=(times.st_atime_ns, times.st_mtime_ns))
            figure(f"after a change in {part}, processor", "s", again[1], "from clean", clean[1])


GROUPS = [start, waiting, marker, log, payload, whole_run, size, build]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--only", choices=[group.__name__ for group in GROUPS], help="one group of figures")
    options = parser.parse_args()
    begin = time.perf_counter()
    for group in GROUPS:
        if options.only in (None, group.__name__):
            group()
    (ROOT / "build/bench.json").write_text(json.dumps(
        {"processors": os.cpu_count(), "load": os.getloadavg(), "seconds": time.perf_counter() - begin,
         "figures": rows}, ensure_ascii=False, indent=1) + "\n")


if __name__ == "__main__":
    main()
