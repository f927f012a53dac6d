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


def without_code(text):
    return re.sub(r"^```.*?^```", lambda block: "\n" * block[0].count("\n"), text, flags=re.M | re.S)


def words_in(files):
    """Every word of these files, and of their names."""
    words = set()
    for name in files:
        text = name + "\n" + (ROOT / name).read_text(errors="replace")
        words.update(re.findall(r"[\w.-]*\w", text), re.findall(r"\w[\w-]*", text))
    return words


def check_architecture():
    """Its paths and identifiers; in a row of a table that names files, an identifier is in one of them."""
    text = DOCUMENTS[ARCHITECTURE]
    everywhere = words_in(name for name in FILES
                          if not name.endswith((".md", ".png", ".webp")) and name != "tests/documents_test.py")
    drawn = re.findall(r"(\w+)(?= -->)|(?<=--> )(\w+)|(\w+)\(\)",
                       "".join(re.findall(r"^```mermaid.*?^```", text, re.M | re.S)))
    rows = [(line, re.findall(r"`([^`]+)`", line)) for line in without_code(text).splitlines()]
    rows.append(("", [word for words in drawn for word in words if word]))
    if len(drawn) < 10 or sum(len(names) for _, names in rows) < 100:
        problems.append(f"{ARCHITECTURE}: hardly any names were found in it")
    for line, names in rows:
        paths = [name for name in names if re.search(r"/|\.(cpp|h|in|md|mm|qml|sh|txt)$", name)]
        matching = [file for path in paths for file in FILES
                    if pathlib.PurePath(file).match(path) or file.startswith(path)]
        known = words_in(matching) if matching and line.startswith("|") else everywhere
        for path in paths:
            if not any(pathlib.PurePath(file).match(path) or file.startswith(path) for file in FILES):
                problems.append(f"{ARCHITECTURE}: there is no {path}")
        # "State::set()" is two words, "0.25" is one.
        for name in set(names) - set(paths):
            for word in re.findall(r"[\w-]+(?:\.\d+)?", name):
                if word.lstrip("-") not in known and word not in known:
                    problems.append(f"{ARCHITECTURE}: {word} is not in {' '.join(paths) or 'the tree'}")


def anchor(heading):
    """A heading as links name it."""
    return re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")


def check_links_and_targets():
    targets = set(re.findall(r"^[\w -]+?(?=:)", (ROOT / "Makefile").read_text(), re.M))
    targets = {word for line in targets for word in line.split()}
    for name, text in DOCUMENTS.items():
        for link in re.findall(r'\]\(([^)\s]+)[^)]*\)|(?:src|href)="([^"]+)"', text):
            path, _, heading = (link[0] or link[1]).replace("%20", " ").partition("#")
            if re.match(r"[a-z]+:", path):
                continue
            file = (ROOT / name).parent / path if path else ROOT / name
            if not file.exists():
                problems.append(f"{name}: a link leads nowhere: {path}")
            elif heading and heading not in map(anchor, re.findall(r"^#+ (.*)", file.read_text(), re.M)):
                problems.append(f"{name}: a link names no heading: {heading}")
        for target in set(re.findall(r"(?:^    |`)make ([a-z][a-z-]*)", text, re.M)) - targets:
            problems.append(f"{name}: there is no 'make {target}'")


def check_packages_and_version():
    packages = re.search(r"^packages='(.*?)'", (ROOT / "tools/setup.sh").read_text(), re.M | re.S)[1].split()
    for package in packages:
        if not re.search(rf"(?<![\w-]){re.escape(package)}(?![\w-])", DOCUMENTS["docs/third-party.md"]):
            problems.append(f"docs/third-party.md: nothing about {package} of tools/setup.sh")
    version = re.search(r"^project\(.* VERSION ([0-9.]*)", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]
    newest = re.search(r"^## \[([0-9.]*)\]", DOCUMENTS["CHANGELOG.md"], re.M)[1]
    if version != newest:
        problems.append(f"CHANGELOG.md: its newest version is {newest}, CMakeLists.txt has {version}")


check_architecture()
check_links_and_targets()
check_packages_and_version()
sys.exit("\n".join(problems) or None)
