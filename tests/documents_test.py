#!/usr/bin/env python3
"""Whether what the documents name is there. Prints a line for each name that is not."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
FILES = [file for file in ROOT.rglob("*") if file.is_file() and
         not re.match(r"(cmake-)?build|\.git$", file.relative_to(ROOT).parts[0])]
DOCUMENTS = {file: file.read_text() for file in FILES if file.suffix == ".md"}
problems = []


def text_of(files):
    return "\n".join(file.read_text(errors="replace") for file in files)


def check_architecture():
    """Its paths and identifiers; in a row of a table that names files, an identifier is in one of them."""
    everywhere = text_of(file for file in FILES if file not in DOCUMENTS)
    for line in DOCUMENTS[ROOT / "docs/architecture.md"].splitlines():
        names = re.findall(r"`([^`]+)`", line)
        paths = {name: list(ROOT.glob(name.lstrip("/"))) for name in names}
        files = [file for found in paths.values() for file in found if file.is_file()]
        text = text_of(files) if files and line.startswith("|") else everywhere
        problems.extend(f"docs/architecture.md: {name} is not in: {line}" for name in names
                        if not paths[name] and not re.search(rf"\b{re.escape(name)}\b", text))


def check_links_and_targets():
    targets = set(re.search(r"^\.PHONY: (.*)", (ROOT / "Makefile").read_text(), re.M)[1].split())
    for document, text in DOCUMENTS.items():
        for link in re.findall(r'(?:\]\(|src="|href=")([^)\s"]+)', text):
            path, _, heading = link.partition("#")
            file = document.parent / path if path else document
            if re.match(r"[a-z]+:", path):
                continue
            if not file.exists():
                problems.append(f"{document}: a link leads nowhere: {path}")
            elif heading and heading not in [re.sub(r"[^\w -]", "", line.lower()).replace(" ", "-")
                                             for line in re.findall(r"^#+ (.*)", file.read_text(), re.M)]:
                problems.append(f"{document}: a link names no heading: {heading}")
        for target in set(re.findall(r"(?:^    |`)make ([a-z][a-z-]*)", text, re.M)) - targets:
            problems.append(f"{document}: there is no 'make {target}'")


check_architecture()
check_links_and_targets()
sys.exit("\n".join(problems) or None)
