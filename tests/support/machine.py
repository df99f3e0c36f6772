"""A Wine machine of a test's own: its programs, files and registry."""
import os
import signal
import subprocess
import sys
import time

STOP, CONTINUE = signal.SIGSTOP, signal.SIGCONT
NO_SUCH_FILE = b""


def check(condition, what):
    print(("ok      " if condition else "FAILED  ") + what, flush=True)
    if not condition:
        sys.exit(1)


def wait_until(condition, seconds=60):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


def contents(folder):
    """Every file below the folder by its path there, links not followed."""
    found = {}
    for path, _, names in os.walk(folder):
        for name in names:
            full = os.path.join(path, name)
            if os.path.isfile(full) and not os.path.islink(full):
                with open(full, "rb") as file:
                    found[os.path.relpath(full, folder)] = file.read()
    return found


class Wine:
    """A fresh prefix; with it ends everything that was started in it."""

    def __init__(self, build, prefix):
        self.build, self.prefix = build, prefix
        subprocess.run(["bash", "-c", '. scripts/common.sh; new_prefix "$1"', "bash", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        self.wine = os.environ.get("WINE", "wine")
        self.environment = dict(os.environ, WINEPREFIX=prefix)

    def __enter__(self):
        # A process that waits for a key keeps server and desktop alive, so that starts cost milliseconds; the second
        # one starts the desktop, whose process would keep the output of the first program with a window.
        self.waiting = subprocess.Popen([self.wine, "cmd", "/c", "pause"], stdin=subprocess.PIPE,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=self.environment)
        self.run("rundll32", "user32.dll,GetDesktopWindow")
        return self

    def __exit__(self, *_):
        subprocess.run([os.environ.get("WINESERVER", "wineserver"), "-k"], env=self.environment, check=False)

    def sign_in_again(self):
        """What a desktop reads when it is made, as its scale, counts from here on."""
        self.__exit__()
        subprocess.run([os.environ.get("WINESERVER", "wineserver"), "-w"], env=self.environment, check=False)
        self.__enter__()

    def tool(self, name):
        return os.path.join(self.build, "bin", name)

    def run(self, *command, timeout=120, output=False, environment=None):
        """The exit code."""
        silent = None if output else subprocess.DEVNULL
        return subprocess.run([self.wine, *command], stdin=subprocess.DEVNULL, stdout=silent, stderr=subprocess.DEVNULL,
                              timeout=timeout, env={**self.environment, **(environment or {})}, check=False).returncode

    def start(self, *command):
        return subprocess.Popen([self.wine, *command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL, env=self.environment)

    def result(self, *command, timeout=60):
        """The exit code, and what it prints."""
        run = subprocess.run([self.wine, *command], stdin=subprocess.DEVNULL, capture_output=True, env=self.environment,
                             timeout=timeout, check=False)
        return run.returncode, run.stdout.decode("utf-8", "replace")

    def output(self, *command, timeout=60):
        """What it prints."""
        return self.result(*command, timeout=timeout)[1]

    def exists(self, path):
        return os.path.exists(os.path.join(self.prefix, path))

    def content(self, path):
        try:
            with open(os.path.join(self.prefix, path), "rb") as file:
                return file.read()
        except FileNotFoundError:
            return NO_SUCH_FILE

    def write(self, path, content):
        full = os.path.join(self.prefix, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "wb") as file:
            file.write(content)

    def value(self, key, name):
        """The registry value as text; nothing when it is not there."""
        for line in self.output("reg", "query", key, "/v", name).splitlines():
            parts = line.strip().split(None, 2)
            if len(parts) == 3 and parts[0] == name:
                return parts[2]
        return None

    def registry(self):
        """The machine's and the user's software keys but for Wine's own, as lines "key" and "key|name=value"."""
        lines = set()
        for root in ("HKEY_LOCAL_MACHINE\\Software", "HKEY_CURRENT_USER\\Software"):
            path = os.path.join(self.prefix, "drive_c", "registry.reg")
            self.run("regedit", "/E", "C:\\registry.reg", root)
            with open(path, encoding="utf-16", newline="") as file:
                key = ""
                for line in file.read().replace("\\\r\n", "").splitlines():
                    if line.startswith("["):
                        key = line.strip("[]")
                        lines.add(key)
                    elif line.startswith(('"', "@")):
                        lines.add(f"{key}|{line}")
            os.remove(path)
        return {line for line in lines if not line.startswith("HKEY_CURRENT_USER\\Software\\Wine\\")}
