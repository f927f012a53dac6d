#!/usr/bin/env python3
"""Whether what the documents name is there. Prints a line for each name that is not."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
ARCHITECTURE = "docs/architecture.md"
LISTED = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                        cwd=ROOT, capture_output=True, text=True)
if LISTED.returncode:
    print("skipped, git does not list the files:", LISTED.stderr)
    sys.exit(77)
FILES = [name for name in LISTED.stdout.split("\0") if (ROOT / name).is_file()]
DOCUMENTS = {name: (ROOT / name).read_text() for name in FILES if name.endswith(".md")}
problems = []


def words_in(files):
    """Every word of these files, and of their names."""
    text = "\n".join(name + "\n" + (ROOT / name).read_text(errors="replace") for name in files)
    return {*re.findall(r"[\w.-]*\w", text), *re.findall(r"\w[\w-]*", text)}


def check_architecture():
    """Its paths and identifiers; in a row of a table that names files, an identifier is in one of them."""
    everywhere = words_in(name for name in FILES if not name.endswith((".md", ".png", ".webp", "documents_test.py")))
    rows = [(line, set(re.findall(r"`([^`]+)`", line))) for line in DOCUMENTS[ARCHITECTURE].splitlines()]
    if sum(len(names) for _, names in rows) < 50:
        problems.append(f"{ARCHITECTURE}: hardly any names were found in it")
    for line, names in rows:
        paths = {name: [file for file in FILES if pathlib.PurePath(file).match(name) or file.startswith(name)]
                 for name in names if re.search(r"/|\.(cpp|h|in|md|mm|qml|sh|txt)$", name)}
        problems.extend(f"{ARCHITECTURE}: there is no {path}" for path, files in paths.items() if not files)
        known = words_in(sum(paths.values(), [])) if paths and line.startswith("|") else everywhere
        # "State::set()" is two words, "0.25" is one.
        words = re.findall(r"[\w-]+(?:\.\d+)?", " ".join(names - set(paths)))
        problems.extend(f"{ARCHITECTURE}: {word} is not in {' '.join(paths) or 'the tree'}"
                        for word in words if word.lstrip("-") not in known and word not in known)


def check_links_and_targets():
    targets = set(re.search(r"^\.PHONY: (.*)", (ROOT / "Makefile").read_text(), re.M)[1].split())
    for name, text in DOCUMENTS.items():
        for link in re.findall(r'\]\(([^)\s]+)[^)]*\)|(?:src|href)="([^"]+)"', text):
            path, _, heading = "".join(link).replace("%20", " ").partition("#")
            file = (ROOT / name).parent / path if path else ROOT / name
            if re.match(r"[a-z]+:", path):
                continue
            if not file.exists():
                problems.append(f"{name}: a link leads nowhere: {path}")
            elif heading and heading not in [re.sub(r"[^\w -]", "", line.lower()).replace(" ", "-")
                                             for line in re.findall(r"^#+ (.*)", file.read_text(), re.M)]:
                problems.append(f"{name}: a link names no heading: {heading}")
        for target in set(re.findall(r"(?:^    |`)make ([a-z][a-z-]*)", text, re.M)) - targets:
            problems.append(f"{name}: there is no 'make {target}'")


def check_version():
    version = re.search(r"^project\(.* VERSION ([0-9.]*)", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]
    newest = re.search(r"^## \[([0-9.]*)\]", DOCUMENTS["CHANGELOG.md"], re.M)[1]
    if version != newest:
        problems.append(f"CHANGELOG.md: its newest version is {newest}, CMakeLists.txt has {version}")


check_architecture()
check_links_and_targets()
check_version()
sys.exit("\n".join(problems) or None)
