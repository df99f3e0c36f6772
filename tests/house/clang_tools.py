"""The version of Clang's tools that the tree is kept to.

Another version formats and finds otherwise, so what it says is no breach: where only another one is installed, a check
that needs the tool is not run, and says so.
"""
import re
import shutil
import subprocess

VERSION = 14


class NotRun(Exception):
    """A check cannot be run on this machine; the text says why."""


def tool(name):
    """The command for clang-format or clang-tidy in that version."""
    others = []
    for command in (f"{name}-{VERSION}", name):
        if shutil.which(command):
            told = subprocess.run([command, "--version"], capture_output=True, text=True).stdout
            version = re.search(r"version (\d+)", told)
            if version and int(version.group(1)) == VERSION:
                return command
            others.append(f"{command} is version {version.group(1) if version else 'unknown'}")
    raise NotRun(f"{name} {VERSION} is not installed" + (f" ({', '.join(others)})" if others else ""))
