#!/usr/bin/env python3
"""Puts small faults into the core, one at a time, and looks whether its unit tests see them.

Works on copies of the sources under build/faults, never on the checkout. Ends with 1 if
the list no longer fits the sources, a fault does not build, or fewer are seen than --least.
"""
import argparse
import collections
import os
import pathlib
import re
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from queue import Queue

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIST = pathlib.Path(__file__).with_name("core.txt")
FOLDERS = ["installer", "inputsource", "activation", "app/window", "platform", "tests"]
Fault = collections.namedtuple("Fault", "file name start end new")


def read_faults():
    faults, problems, file, text = [], [], None, ""
    for line in LIST.read_text().splitlines():
        if not line or line.startswith("#"):
            continue
        if section := re.fullmatch(r"\[(.+)\]", line):
            file = section[1]
            text = (ROOT / file).read_text()
            continue
        name, change = line.split(" | ", 1)
        old, new = (part.strip() for part in re.split(r" =>(?: |$)", change, maxsplit=1))
        pattern = r"(?:\s|//[^\n]*\n)+".join(re.escape(word) for word in old.split())
        found = list(re.finditer(pattern, text))
        if len(found) == 1 and not any(f.file == file and f.name == name for f in faults):
            faults.append(Fault(file, name, found[0].start(), found[0].end(), new))
        else:
            problems.append(f"{file}: {name}: the old text stands {len(found)} times, or the name twice")
    return faults, problems


class Copy:
    """A copy of the sources with its own build tree."""

    def __init__(self, number):
        self.source = ROOT / "build/faults" / str(number) / "source"
        self.tree = self.source.parent / "tree"
        for folder in FOLDERS:
            self.update(ROOT / folder, self.source / folder)
        shutil.copy2(ROOT / "CMakeLists.txt", self.source)
        subprocess.run(["cmake", "-S", self.source, "-B", self.tree, "-G", "Ninja", "--log-level=ERROR",
                        "-DORVANE_CORE_ONLY=ON", "-DCMAKE_CXX_FLAGS=-O0 -w",
                        # A fault then costs one file and one library.
                        "-DBUILD_SHARED_LIBS=ON", "-DCMAKE_POSITION_INDEPENDENT_CODE=ON",
                        "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"],
                       check=True, stdout=subprocess.DEVNULL)
        if self.build():
            sys.exit(self.build())
        if seen := self.seen_by():
            sys.exit(f"{seen} fails without a fault")

    @staticmethod
    def update(origin, copy):
        """Rewrites only what differs, so that only that is built again."""
        for file in (path for path in origin.rglob("*") if path.is_file()):
            target = copy / file.relative_to(origin)
            if not target.exists() or target.read_bytes() != file.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(file, target)

    def build(self):
        """What the compiler says; empty if all is well."""
        done = subprocess.run(["ninja", "-C", self.tree, "core_test", "simulation_test"],
                              capture_output=True, text=True)
        return done.stdout if done.returncode else ""

    def seen_by(self):
        """The first of the tests that fails; None if none does."""
        for test in (["core_test", "--gtest_brief=1"], ["simulation_test", "--schedules", "1000"]):
            try:
                done = subprocess.run([self.tree / "tests" / test[0], *test[1:]], timeout=120,
                                      stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            except subprocess.TimeoutExpired:
                return test[0]
            if done.returncode:
                return test[0]
        return None

    def try_fault(self, fault):
        file = self.source / fault.file
        text = file.read_text()
        file.write_text(text[:fault.start] + fault.new + text[fault.end:])
        try:
            return "does not build" if self.build() else self.seen_by()
        finally:
            file.write_text(text)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--only", default="", help="faults whose file or name holds this text")
    parser.add_argument("--least", type=float, default=95.0, help="per cent that must be seen")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()
    faults, problems = read_faults()
    if problems:
        sys.exit("\n".join(problems))
    faults = [f for f in faults if options.only in f"{f.file}: {f.name}"]
    copies = Queue()
    for number in range(min(options.jobs, len(faults))):
        copies.put(Copy(number))

    def run(fault):
        copy = copies.get()
        try:
            return copy.try_fault(fault)
        finally:
            copies.put(copy)

    results = collections.Counter()
    with ThreadPoolExecutor(options.jobs) as pool:
        for fault, result in zip(faults, pool.map(run, faults)):
            results[result] += 1
            print(f"{result or 'UNSEEN':16} {fault.file}: {fault.name}", flush=True)
    seen = 100.0 * (results["core_test"] + results["simulation_test"]) / max(1, len(faults))
    print(f"{len(faults)} faults, {seen:.1f} % seen: {results['core_test']} by core_test, "
          f"{results['simulation_test']} more by simulation_test, {results[None]} unseen")
    if results["does not build"] or seen < options.least:
        sys.exit(1)


if __name__ == "__main__":
    main()
