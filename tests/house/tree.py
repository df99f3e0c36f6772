"""Which files the tree has, and what they include."""
import os
import re
import subprocess

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def files(*patterns):
    """Files of the work tree that git tracks or would track."""
    out = subprocess.check_output(["git", "ls-files", "-co", "--exclude-standard", "--", *patterns], text=True)
    return sorted(path for path in out.splitlines() if os.path.exists(path))


def read(path):
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


def resolve(including, name):
    """The path in the tree of an included name; None for a header from elsewhere."""
    places = [name, os.path.join(os.path.dirname(including), name), os.path.join("duilib/include", name),
              os.path.join("duilib/src", name)]
    for path in places:
        path = os.path.normpath(path)
        if os.path.exists(path):
            return path
    return None


def includes(path):
    return [p for p in (resolve(path, name) for name in INCLUDE.findall(read(path))) if p]
