#!/usr/bin/python3
"""Prints, per folder, the lines of test code (tests/FOLDER) against the lines of code (src/FOLDER).

    scripts/test-ratio.py [REVISION]

Without a revision it counts the working tree; with one (a commit, a branch) it counts that commit.
Lines are all lines of the code files (C++, CMake, Python, shell); the expected files under tests/data
are data, not test code. tests/support and tests/peers serve every folder and get a line of their own.
"""
import subprocess
import sys
from pathlib import Path

FOLDERS = ["core", "store", "calendar", "log", "connect", "engine", "mail", "run", "scheduler", "ui", "app"]
CODE_SUFFIXES = {".cpp", ".h", ".cmake", ".py", ".sh"}
ROOT = Path(__file__).resolve().parent.parent


def is_code(path):
    parts = Path(path).parts
    if len(parts) > 1 and parts[:2] == ("tests", "data"):
        return False
    return Path(path).suffix in CODE_SUFFIXES or Path(path).name == "CMakeLists.txt"


def files_and_lines(revision):
    """(path, line count) of every code file under src/ and tests/."""
    if revision is None:
        for top in ("src", "tests"):
            for path in sorted((ROOT / top).rglob("*")):
                relative = path.relative_to(ROOT).as_posix()
                if path.is_file() and is_code(relative):
                    yield relative, path.read_bytes().count(b"\n")
        return
    listing = subprocess.run(["git", "-C", str(ROOT), "ls-tree", "-r", "--name-only", revision, "src", "tests"],
                             check=True, capture_output=True, text=True).stdout.split("\n")
    for relative in filter(None, listing):
        if is_code(relative):
            blob = subprocess.run(["git", "-C", str(ROOT), "show", f"{revision}:{relative}"],
                                  check=True, capture_output=True).stdout
            yield relative, blob.count(b"\n")


def folder_of(path):
    parts = Path(path).parts
    if parts[0] == "tests" and len(parts) > 2 and parts[1] in ("support", "peers"):
        return "support/peers"
    return parts[1] if len(parts) > 2 else "(top)"


def main():
    revision = sys.argv[1] if len(sys.argv) > 1 else None
    tests, code = {}, {}
    for path, lines in files_and_lines(revision):
        counts = tests if path.startswith("tests/") else code
        folder = folder_of(path)
        counts[folder] = counts.get(folder, 0) + lines

    def row(name, test_lines, code_lines):
        ratio = f"{test_lines / code_lines:5.2f}" if code_lines else "    -"
        print(f"{name:<14}{test_lines:>8}{code_lines:>8}{ratio:>8}")

    print(f"{'folder':<14}{'tests':>8}{'code':>8}{'ratio':>8}")
    for folder in FOLDERS + ["support/peers"]:
        row(folder, tests.get(folder, 0), code.get(folder, 0))
    shown = set(FOLDERS) | {"support/peers"}
    other_tests = sum(n for f, n in tests.items() if f not in shown)
    other_code = sum(n for f, n in code.items() if f not in shown)
    row("(build files)", other_tests, other_code)
    row("total", sum(tests.values()), sum(code.values()))


if __name__ == "__main__":
    main()
