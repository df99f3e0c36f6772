#!/usr/bin/env python3
"""Signed packages: with a certificate authority, a certificate and a time stamp service of this test's own everything is
signed, packed, taken out of the packages again, installed under Wine, and each module verified."""
import http.server
import os
import shutil
import subprocess
import sys
import threading
import time
import zipfile

import support
from support import PROGRAM, ROOT, check, machine

sys.path.insert(0, os.path.join(ROOT, "packaging"))
import pe

PASSWORD = "a pass word, with blanks"
EXTENSIONS = """[authority]
basicConstraints = critical, CA:true
keyUsage = critical, keyCertSign
[code]
keyUsage = critical, digitalSignature
extendedKeyUsage = codeSigning
[stamp]
keyUsage = critical, digitalSignature
extendedKeyUsage = critical, timeStamping
[service]
serial = serial
signer_digest = sha256
default_policy = 1.2.3.4
digests = sha256
accuracy = secs:1
"""


class Authority:
    """Certificates in a folder; `openssl` runs there."""

    def __init__(self, folder):
        self.folder = folder
        os.makedirs(folder)
        support.write(f"{folder}/extensions", EXTENSIONS.encode())
        support.write(f"{folder}/serial", b"01\n")
        self.certificate("authority", "authority", "-signkey", "authority.key")

    def openssl(self, *command):
        return subprocess.run(["openssl", *command], cwd=self.folder, check=True, capture_output=True).stdout

    def path(self, name):
        return os.path.join(self.folder, name)

    def certificate(self, name, use, *by):
        self.openssl("req", "-newkey", "rsa:2048", "-nodes", "-subj", f"/CN=Pixora test {name}", "-keyout", f"{name}.key",
                     "-out", f"{name}.req")
        self.openssl("x509", "-req", "-in", f"{name}.req", "-days", "2", "-extfile", "extensions", "-extensions", use,
                     "-out", f"{name}.pem", *(by or ("-CA", "authority.pem", "-CAkey", "authority.key", "-CAcreateserial")))

    def p12(self, name, password):
        self.certificate(name, "code")
        self.openssl("pkcs12", "-export", "-inkey", f"{name}.key", "-in", f"{name}.pem", "-certfile", "authority.pem",
                     "-out", f"{name}.p12", "-passout", f"pass:{password}")
        return self.path(f"{name}.p12")

    def stamp(self, query):
        support.write(self.path("query"), query)
        return self.openssl("ts", "-reply", "-queryfile", "query", "-config", "extensions", "-section", "service",
                            "-signer", "stamp.pem", "-inkey", "stamp.key", "-chain", "authority.pem")


def time_stamp_service(authority):
    authority.certificate("stamp", "stamp")

    class Handler(http.server.BaseHTTPRequestHandler):
        def do_POST(self):
            reply = authority.stamp(self.rfile.read(int(self.headers["Content-Length"])))
            self.send_response(200)
            self.send_header("Content-Type", "application/timestamp-reply")
            self.send_header("Content-Length", str(len(reply)))
            self.end_headers()
            self.wfile.write(reply)

        def log_message(self, *_):
            pass

    server = http.server.HTTPServer(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return f"http://127.0.0.1:{server.server_port}"


def verdict(authority, path):
    """None when the signature does not hold."""
    result = subprocess.run(["osslsigncode", "verify", "-CAfile", authority.path("authority.pem"), "-TSA-CAfile",
                             authority.path("authority.pem"), "-in", path], capture_output=True, text=True, check=False)
    return result.stdout + result.stderr if result.returncode == 0 else None


def expect_signed(authority, path, what):
    told = verdict(authority, path)
    check(told is not None, f"{what}: the signature holds")
    check("SHA256" in told and "Pixora test code" in told, "by this certificate, with SHA-256")
    # In the words of all its versions; not all name who has stamped.
    stamped = "Timestamp Server Signature verification: ok" in told and "Timestamp is not available" not in told
    check(stamped, "and is stamped" if stamped else f"and is stamped; osslsigncode: {told}")


def expect_modules_signed(authority, folder, what, foreign=()):
    """The names of all modules in the folder."""
    names = sorted(name for name in machine.contents(folder) if pe.is_module(os.path.join(folder, name)))
    for name in names:
        if name not in foreign:
            expect_signed(authority, os.path.join(folder, name), f"{what}, {name}")
    return names


def expect_verifying_works(authority, path):
    with open(path, "rb") as file:
        content = bytearray(file.read())
    content[0x400] ^= 1
    support.write(path + ".changed", bytes(content))
    check(verdict(authority, path + ".changed") is None, "a module with one bit changed does not pass")


def try_contents(authority, out, version, foreign):
    expect_modules_signed(authority, f"{version.packed}/setup", "helpers of both packages")
    with zipfile.ZipFile(version.portable) as archive:
        archive.extractall(f"{out}/portable")
    expect_modules_signed(authority, f"{out}/portable", "portable", [f"Pixora-{version.number}/{name}" for name in foreign])
    expect_signed(authority, version.setup, "the installer")
    expect_signed(authority, version.msi, "the MSI")
    subprocess.run([support.seven_zip(), "x", f"-o{out}/setup", version.setup], check=True, stdout=subprocess.DEVNULL)
    plugins = expect_modules_signed(authority, f"{out}/setup/$PLUGINSDIR", "what the installer loads")
    check({"System.dll", "nsDialogs.dll", "nsExec.dll"} == set(plugins), f"plug-ins: {plugins}")
    actions = subprocess.check_output(["msiinfo", "extract", version.msi, "Binary.Actions"], cwd=out)
    support.write(f"{out}/actions.dll", actions)
    expect_signed(authority, f"{out}/actions.dll", "what the MSI loads")


def try_installed(wine, authority, version, foreign):
    folder = f"{wine.prefix}/{PROGRAM}"
    check(support.setup(wine, version) == 0, "the signed installer installs")
    support.expect_whole(wine, version, "signed")
    names = expect_modules_signed(authority, folder, "installed", foreign)
    check("UninstallPixora.exe" in names and "PixoraDiagnostics.exe" in names, "the uninstaller is one of them")
    check(support.uninstall(wine) == 0, "it removes the program")
    check(not wine.exists(f"{PROGRAM}/Pixora.exe"), "which is gone")
    os.remove(f"{folder}/UninstallPixora.exe")
    package = "Z:" + version.msi.replace("/", "\\")
    check(wine.run("msiexec", "/i", package, "/qn", timeout=180) == 0, "the signed MSI installs")
    support.expect_whole(wine, version, "MSI")
    expect_modules_signed(authority, folder, "installed by the MSI", foreign)


def refused(build, out, certificate, *options, password=PASSWORD):
    result = subprocess.run([sys.executable, "-B", "packaging/make", build, out, "--program", f"{out}/../tree-1.2.0",
                             "--only", "portable", "--sign", certificate, *options], capture_output=True, text=True,
                            stdin=subprocess.DEVNULL, check=False, env={**os.environ, "PIXORA_SIGN_PASSWORD": password})
    check(result.returncode == 1 and not result.stdout, "nothing is packed")
    check("Traceback" not in result.stderr, "and no riddle told")
    return result.stderr


def try_failures(build, out, certificate):
    out = os.path.join(out, "refused")
    named = "PixoraDiagnostics.exe cannot be signed: "
    check(named in refused(build, out, certificate, password="wrong"), "a wrong password is told")
    check(named in refused(build, out, certificate + "-none"), "and a certificate that is not there")
    check(named in refused(build, out, certificate, "--timestamp", "http://127.0.0.1:9"), "and a service that does not answer")
    left = [name for name in machine.contents(out) if name.endswith((".signed", ".zip"))]
    check(not left, f"nothing half done is left {left}")


def main(build):
    os.chdir(ROOT)
    out = os.path.join(os.path.dirname(build), "package-test", "signing")
    shutil.rmtree(out, ignore_errors=True)
    authority = Authority(os.path.join(out, "authority"))
    service = time_stamp_service(authority)
    certificate = authority.p12("code", PASSWORD)
    with open(os.path.join(build, "bin", "SetupTool.exe"), "rb") as file:
        module = file.read()
    plain = support.Version(build, out, "1.2.0", "portable", more={"Qx.dll": module})
    check(verdict(authority, f"{plain.packed}/program/Qx.dll") is None, "without a certificate nothing is signed")
    check(plain.tree["Qx.dll"] == module, "and the files are as they were")

    # What somebody else has signed keeps that signature.
    other = authority.p12("other", "")
    support.write(f"{out}/module", module)
    subprocess.run(["osslsigncode", "sign", "-pkcs12", other, "-pass", "", "-h", "sha256", "-in", f"{out}/module", "-out",
                    f"{out}/signed"], check=True, stdout=subprocess.DEVNULL)
    with open(f"{out}/signed", "rb") as file:
        by_other = file.read()
    os.environ["PIXORA_SIGN_PASSWORD"] = PASSWORD
    version = support.Version(build, out, "1.3.0", "installer", "msi", "portable",
                              options=("--sign", certificate, "--timestamp", service),
                              more={"Qx.dll": module, "Other.dll": by_other})
    check(version.tree["Other.dll"] == by_other, "what has a signature keeps it")
    expect_verifying_works(authority, f"{version.packed}/program/Qx.dll")
    try_contents(authority, out, version, ["Other.dll"])
    try_failures(build, out, certificate)
    with machine.Wine(build, os.path.join(out, "prefix")) as wine:
        try_installed(wine, authority, version, ["Other.dll"])
    print("package_signing: all passed")


if __name__ == "__main__":
    started = time.monotonic()
    main(os.path.abspath(sys.argv[1]))
    print(f"{time.monotonic() - started:.0f} s")
