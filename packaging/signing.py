"""Signatures of Windows (Authenticode, SHA-256), by osslsigncode.

As a program, `signing.py FILE` signs one file with what Signer.environment() tells: so the compiler of the installer signs
the uninstaller, which exists only while it works."""
import getpass
import os
import shlex
import subprocess
import sys
import tempfile

import pe
import staging

CERTIFICATE, PASSWORD, TIMESTAMP = "PIXORA_SIGN_CERTIFICATE", "PIXORA_SIGN_PASSWORD", "PIXORA_SIGN_TIMESTAMP"
# The name that Windows shows when it asks whether the program may change the machine.
DESCRIPTION = "Pixora"


class Failed(Exception):
    """With what is shown to whoever packs."""


class Unsigned:
    """In the place of a Signer: leaves every file as it is."""

    command = None

    def environment(self):
        return {}

    def sign(self, path):
        pass

    def sign_modules(self, folder):
        pass


class Signer:
    command = shlex.join([sys.executable, "-B", os.path.abspath(__file__)])

    def __init__(self, certificate, password, timestamp):
        self.certificate, self.password, self.timestamp = certificate, password, timestamp

    @classmethod
    def of(cls, certificate, timestamp):
        """Asks for the password when nobody has told it and somebody is there to be asked."""
        password = os.environ.get(PASSWORD)
        if password is None:
            password = getpass.getpass(f"Password of {certificate}: ") if sys.stdin.isatty() else ""
        return cls(os.path.abspath(certificate), password, timestamp)

    def environment(self):
        return {CERTIFICATE: self.certificate, PASSWORD: self.password, TIMESTAMP: self.timestamp or ""}

    def sign(self, path):
        # On a command line everybody on this machine could read the password.
        with tempfile.NamedTemporaryFile("w", encoding="utf-8") as password:
            password.write(self.password)
            password.flush()
            signed = path + ".signed"
            result = subprocess.run(
                ["osslsigncode", "sign", "-pkcs12", self.certificate, "-readpass", password.name, "-h", "sha256",
                 "-n", DESCRIPTION, *(["-ts", self.timestamp] if self.timestamp else []), "-in", path, "-out", signed],
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if result.returncode != 0:
            if os.path.exists(signed):
                os.remove(signed)
            raise Failed(f"{os.path.basename(path)} cannot be signed: {result.stdout.strip()}")
        os.chmod(signed, os.stat(path).st_mode)
        os.replace(signed, path)

    def sign_modules(self, folder):
        """Every module that nobody has signed yet, the compiler's runtime among them: Windows may want that of all that a
        program loads."""
        for name in staging.files_below(folder):
            path = os.path.join(folder, name)
            if pe.is_module(path) and not pe.read(path).is_signed():
                self.sign(path)


if __name__ == "__main__":
    try:
        Signer(*(os.environ[name] for name in (CERTIFICATE, PASSWORD, TIMESTAMP))).sign(sys.argv[1])
    except Failed as reason:
        sys.exit(f"error: {reason}")
