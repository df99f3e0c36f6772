"""The documents name only what exists: files that they link to, tests that they call by name."""
import os
import re

import tree

LINK = re.compile(r"\]\(([^)#:]+)(?:#[^)]*)?\)")
TEST_NAME = re.compile(r"`([A-Z]\w+)\.([A-Z]\w+)`")
TEST = re.compile(r"TEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\)")
FILE_ENDINGS = {"cpp", "h", "md", "py", "txt", "exe", "dll", "log"}


def main():
    breaches = []
    tests = {match for path in tree.files("tests/*.cpp") for match in TEST.findall(tree.read(path))}
    for path in tree.files("*.md"):
        text = tree.read(path)
        for target in LINK.findall(text):
            if not os.path.exists(os.path.join(os.path.dirname(path), target)):
                breaches.append(f"{path} links to {target}, which does not exist")
        for name in TEST_NAME.findall(text):
            if name[1] not in FILE_ENDINGS and name not in tests:
                breaches.append(f"{path} names the test {name[0]}.{name[1]}, which does not exist")
    return breaches
