"""Runs one test program of a preset against what is built now; Windows programs on a desktop of the copy's own."""
import os
import re
import signal
import subprocess
import sys
import time

FAILED_CASE = re.compile(r"^\d*:? ?\[  FAILED  \] ([\w/]+\.[\w/]+)", re.M)
# A run that takes this much longer than a sound one hangs. Generous: the machine may have other work.
HANG_FACTOR, HANG_SECONDS = 5, 30
FIRST_LIMIT = 900  # of a run whose length nobody knows yet


class Outcome:
    def __init__(self, kind, text="", seconds=0.0, case=None):
        self.kind, self.text, self.seconds, self.case = kind, text, seconds, case  # kind: passed, failed or hung


class Command:
    """A child process with all that it starts; ended as a whole."""

    def __init__(self, words, folder, environment=None):
        self.process = subprocess.Popen(["nice"] + words, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
                                        start_new_session=True)

    def finish(self, limit):
        """Its output and exit code; None for one that had to be ended."""
        try:
            output, _ = self.process.communicate(timeout=limit)
            return output, self.process.returncode
        except subprocess.TimeoutExpired:
            self.end()
            return "", None
        except BaseException:
            self.end()
            raise

    def end(self):
        # The whole session: build tools put what they start into groups of its own.
        for entry in os.listdir("/proc"):
            try:
                if entry.isdigit() and os.getsid(int(entry)) == self.process.pid:
                    os.kill(int(entry), signal.SIGKILL)
            except ProcessLookupError:
                pass
        try:
            self.process.communicate(timeout=20)
        except subprocess.TimeoutExpired:
            pass  # something that left the group holds the pipe


class Desktop:
    """A Wine prefix and a display, made by scripts/common.sh of the copy; a fresh one after each failure."""

    SHELL = ". scripts/common.sh; trap stop_desktops EXIT; make_desktops 1 2560x1600 >/dev/null 2>&1; echo ready; read -r _"

    def __init__(self, tree):
        self.tree = tree
        self.shell = None
        listed = subprocess.check_output(["bash", "-c", ". scripts/common.sh; find_wine; env -0"], cwd=tree)
        self.environment = dict(entry.split("=", 1) for entry in os.fsdecode(listed).split("\0") if "=" in entry)
        self.environment["PIXORA_DESKTOPS"] = os.path.join(tree, "build", "desktops")
        self.environment["PATH"] = os.path.join(tree, "tests", "e2e", "path") + ":" + self.environment["PATH"]

    def start(self):
        if self.shell is None:
            self.shell = subprocess.Popen(["bash", "-c", self.SHELL], cwd=self.tree, stdin=subprocess.PIPE,
                                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, start_new_session=True)
            if b"ready" not in self.shell.stdout.readline():
                sys.exit("error: no desktop could be made in the copy")

    def stop(self):
        if self.shell is None:
            return
        self.shell.stdin.close()
        try:
            self.shell.wait(timeout=30)
        except subprocess.TimeoutExpired:
            os.killpg(self.shell.pid, signal.SIGKILL)
            self.shell.wait()
        self.shell = None


class Runner:
    def __init__(self, preset):
        self.preset = preset
        self.desktop = Desktop(preset.workshop.tree) if preset.name.startswith("windows") else None

    def build(self, target):
        """Whether it could be built, and what the compiler said."""
        command = Command(["cmake", "--build", self.preset.folder, "--target", target], self.preset.workshop.tree)
        output, status = command.finish(3600)
        return status == 0, output

    def run(self, test, cases=None):
        """`cases`: a GTEST_FILTER; None: all."""
        environment = dict(self.desktop.environment if self.desktop else os.environ)
        environment["GTEST_FAIL_FAST"] = "1"
        if cases:
            environment["GTEST_FILTER"] = cases
        if self.desktop:
            self.desktop.start()
        limit = HANG_SECONDS + HANG_FACTOR * test.seconds if test.seconds is not None else FIRST_LIMIT
        begin = time.monotonic()
        command = Command(["ctest", "-R", f"^{re.escape(test.name)}$", "--output-on-failure", "--timeout", "3600"],
                          self.preset.folder, environment)
        output, status = command.finish(limit)
        seconds = time.monotonic() - begin
        if status == 0:
            return Outcome("passed", output, seconds)
        if self.desktop:
            self.desktop.stop()
        if status is None:
            return Outcome("hung", f"no end after {limit:.0f} s", seconds)
        case = FAILED_CASE.search(output)
        return Outcome("failed", output, seconds, case.group(1) if case else None)

    def close(self):
        if self.desktop:
            self.desktop.stop()
