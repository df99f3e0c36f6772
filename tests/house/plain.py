"""Rules about the plain text of files: words, sizes, formatting."""
import re
import subprocess

import tree

# Words and paths that have no place in the tree; written so that this file does not hold them itself.
FORBIDDEN = [
    re.compile(r"\bspec" + r"ification\b", re.I),
    re.compile(r"\bspec" + r"\.md\b", re.I),
    re.compile(r"\bPart" + r"s? \d+\.\d"),
    re.compile(r"(?<![A-Za-z0-9_.])/(?:wo" + r"rk|ro" + r"ot|fa" + r"rm)/"),
    re.compile(r"deb\.deb" + r"ian\.org|registry\.npm" + r"js"),
]


def words():
    breaches = []
    for path in tree.files():
        if path.endswith((".png", ".ico")):
            continue
        for number, line in enumerate(tree.read(path).splitlines(), 1):
            for pattern in FORBIDDEN:
                if pattern.search(line):
                    breaches.append(f"{path}:{number}: {line.strip()[:100]}")
    return breaches


def sizes():
    limits = [(path, 400) for path in tree.files("*.h")] + [(path, 1000) for path in tree.files("*.cpp")]
    return [f"{path}: more than {limit} lines" for path, limit in limits if tree.read(path).count("\n") > limit]


def formatting():
    paths = tree.files("*.h", "*.cpp")
    result = subprocess.run(["clang-format", "--dry-run", "-Werror", *paths], capture_output=True, text=True)
    return sorted({line.split(":")[0] for line in result.stderr.splitlines() if ": error: " in line})
