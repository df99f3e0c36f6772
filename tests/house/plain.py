"""Rules about the plain text of files: words, sizes, formatting."""
import re
import subprocess

import clang_tools
import tree

# Words and paths that have no place in the tree; written so that this file does not hold them itself.
FORBIDDEN = [
    re.compile(r"\bspec" + r"ification\b", re.I),
    re.compile(r"\bspec" + r"\.md\b", re.I),
    re.compile(r"\bPart" + r"s? \d+\.\d"),
    re.compile(r"(?<![A-Za-z0-9_.])/(?:wo" + r"rk|ro" + r"ot|fa" + r"rm)/"),
    re.compile(r"deb\.deb" + r"ian\.org|registry\.npm" + r"js"),
    re.compile(r"^(?:<{7}|\|{7}|>{7})(?: |$)"),  # what a merge left
]


USING = re.compile(r"^\s*using\s+(?:\w*::)+(\w+)\s*;|^\s*namespace\s+(\w+)\s*=", re.M)


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


def usings():
    """Using-declarations and namespace aliases of a source file that it does not use itself."""
    breaches = []
    for path in tree.files("*.cpp"):
        text = tree.read(path)
        for match in USING.finditer(text):
            name = match.group(1) or match.group(2)
            if len(re.findall(rf"\b{name}\b", text)) < 2:
                line = text.count("\n", 0, match.start(match.lastindex)) + 1
                breaches.append(f"{path}:{line}: {name} is not used")
    return breaches


def formatting():
    paths = tree.files("*.h", "*.cpp")
    result = subprocess.run([clang_tools.tool("clang-format"), "--dry-run", "-Werror", *paths], capture_output=True, text=True)
    return sorted({line.split(":")[0] for line in result.stderr.splitlines() if ": error: " in line})
