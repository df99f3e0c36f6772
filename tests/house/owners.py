"""Handles are given back by their owners in suite/common, and nowhere by hand."""
import re

import tree

FOLDERS = ("app", "benchmarks", "diagnostics", "duilib", "pages", "preview", "service", "setup", "suite",
           "tests", "tools", "windows")
OWNERS = "suite/common/"
BY_HAND = re.compile(r"(?:\b(CloseHandle|RegCloseKey|FindClose|CoUninitialize|DeleteObject|DeleteDC|ReleaseDC)|"
                     r"->(Release))\s*\(")
COMMENT = re.compile(r"//.*")

# Not looked at yet.
NOT_YET = ("preview", "setup", "tests")

# Calls that are the operation itself, each with its reason.
ALLOWED = {
    ("app/PixoraMutex.cpp", "CloseHandle"): "releasing and closing the mutex is the class's work, step by step",
    ("app/CrashHandler.cpp", "CloseHandle"): "the loader's spare handle is closed after the library, in that order",
    ("service/SettingsRound.cpp", "CloseHandle"): "what is compared with INVALID_HANDLE_VALUE is closed as it is",
}


def calls(path):
    """(line number, name) of each call by hand."""
    for number, line in enumerate(tree.read(path).splitlines(), 1):
        for match in BY_HAND.finditer(COMMENT.sub("", line)):
            yield number, match.group(1) or match.group(2)


def main():
    breaches = []
    used = set()
    for path in tree.files("*.h", "*.cpp"):
        folder = path.split("/")[0]
        if folder not in FOLDERS or path.startswith(OWNERS):
            continue
        for number, name in calls(path):
            if (path, name) in ALLOWED:
                used.add((path, name))
            elif folder not in NOT_YET:
                breaches.append(f"{path}:{number} calls {name}: that is left to an owner of {OWNERS}")
    breaches += [f"owners.py allows {name} in {path}, which has no such call" for path, name in sorted(set(ALLOWED) - used)]
    for folder in NOT_YET:
        paths = [path for path in tree.files(f"{folder}/*.h", f"{folder}/*.cpp")]
        if not any((path, name) not in ALLOWED for path in paths for _, name in calls(path)):
            breaches.append(f"owners.py leaves out {folder}, which needs it no more")
    return breaches
