#!/usr/bin/env python3
"""A camera service in Python against the real Pixora: greets it, takes its pings and its switch state, closes it.

service_test.py BUILD            under Wine, with the build folder of windows-release
service_test.py BUILD --record   the same, and keeps what came in tests/data/integration/session.hex
service_test.py                  only decodes the recorded bytes and encodes them again; needs no Wine
"""
import os
import re
import subprocess
import sys
import threading

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import machine
import pixora_pipe as pipe
from machine import check

RECORDED = os.path.join(ROOT, "tests", "data", "integration", "session.hex")
KEY = r"HKEY_CURRENT_USER\Software\Velmora\Quillon\LumiCamera"
PIPE_NAME = r"\\.\Pipe\iNotoraAssistant"
PING = pipe.message(pipe.CAMERA_SERVICE, pipe.SETTINGS_CHANGED, slot3=0, payload=b"1\0")


class Service:
    """The server's end: bytes that Pixora sent so far, and a way to send some."""

    def __init__(self, wine):
        self.relay = subprocess.Popen([wine.wine, wine.tool("PipeRelay.exe"), PIPE_NAME], stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=wine.environment)
        self.received = b""
        threading.Thread(target=self.read, daemon=True).start()

    def read(self):
        while chunk := os.read(self.relay.stdout.fileno(), 4096):
            self.received += chunk

    def frames(self):
        return pipe.take_frames(self.received)[0]

    def wait_for(self, count):
        machine.wait_until(lambda: len(self.frames()) >= count)
        return self.frames()

    def send(self, frame):
        self.relay.stdin.write(frame)
        self.relay.stdin.flush()


def set_number(wine, name, value):
    wine.run("reg", "add", KEY, "/v", name, "/t", "REG_DWORD", "/d", str(value), "/f")


def start(wine):
    program = wine.start(wine.tool("Pixora.exe"), "run")
    check(wine.run(wine.tool("PixoraProbe.exe"), "wait", "30000") == 0, "Pixora opens its window")
    return program


def press(wine, control):
    check(wine.run(wine.tool("PixoraProbe.exe"), "press", control) == 0, f"{control} is pressed")


def check_settings_window(wine):
    service = Service(wine)
    program = start(wine)
    check(service.wait_for(1)[:1] == [{"kind": pipe.HELLO, "client": pipe.PIXORA}], "Pixora says hello")
    press(wine, "correct_sight_btn")
    check(service.wait_for(2)[1]["code"] == pipe.SETTINGS_CHANGED, "a change brings a ping")
    press(wine, "open_camera_btn")
    frames = service.wait_for(4)
    check([frame["code"] for frame in frames[2:4]] == [pipe.SWITCH_STATE, pipe.SETTINGS_CHANGED],
          "the camera switch brings its state and a ping")
    check(frames[2]["payload"] == pipe.switch_record(0), "which says off")
    service.send(pipe.message(pipe.PIXORA, pipe.SETTINGS_CHANGED))
    service.send(pipe.message(pipe.PIXORA, pipe.NOTIFICATION, 0x40001))
    service.send(pipe.message(pipe.PIXORA, 12345, payload=b"not known"))
    press(wine, "correct_sight_btn")
    check(len(service.wait_for(5)) == 5, "messages that Pixora takes or drops do not end the connection")
    check(program.poll() is None, "nor the program")
    service.send(pipe.message(pipe.PIXORA, pipe.NOTIFICATION, pipe.RESET))
    check(program.wait(timeout=60) == 0, "the notification closes the window")
    check(service.relay.wait(timeout=60) == 0, "and the connection")
    return service.received


def check_message_window(wine):
    set_number(wine, "filter_driver_install", 0)
    service = Service(wine)
    program = start(wine)
    check(service.wait_for(1)[:1] == [{"kind": pipe.HELLO, "client": pipe.PIXORA}], "the message window says hello")
    reset = pipe.message(pipe.PIXORA, pipe.NOTIFICATION, pipe.RESET)
    # In two parts, as a pipe may deliver them.
    service.send(reset[:20])
    service.send(reset[20:])
    check(program.wait(timeout=60) == 0, "the notification closes it")
    service.relay.wait(timeout=60)


def check_places(wine):
    """What the probe tells is in pixels of the screen, whatever its scale."""
    desktop = r"HKCU\Control Panel\Desktop"
    wine.run("reg", "add", desktop, "/v", "LogPixels", "/t", "REG_DWORD", "/d", "144", "/f")
    wine.sign_in_again()
    program = start(wine)
    rect = wine.output(wine.tool("PixoraProbe.exe"), "rect").split()
    left, top, right, bottom = map(int, rect)
    check((right - left, bottom - top) == (1560, 906), f"the window is half as large again at 150 %: {rect}")
    press(wine, "closebtn")
    check(program.wait(timeout=60) == 0, "its close button ends the program")
    wine.run("reg", "delete", desktop, "/v", "LogPixels", "/f")
    wine.sign_in_again()


def check_bytes(data):
    frames, rest = pipe.take_frames(data)
    check(rest == b"" and len(frames) == 5, "five whole frames")
    ours = [pipe.hello(pipe.PIXORA), PING,
            pipe.message(pipe.SWITCH_RECEIVER, pipe.SWITCH_STATE, payload=pipe.switch_record(0)), PING, PING]
    check(b"".join(ours) == data, "encoding them again gives the same bytes")
    for cut in range(len(data)):
        assert sum(map(len, ours[:len(pipe.take_frames(data[:cut])[0])])) <= cut
    for frame in ours:
        try:
            pipe.take_frame(b"\xff" + frame[1:])
            check(False, "a wrong byte is noticed")
        except pipe.BadFrame:
            pass


def check_document():
    """The frames that the document writes out are the frames that this code makes."""
    with open(os.path.join(ROOT, "docs", "integration.md"), encoding="utf-8") as file:
        lines = file.read().splitlines()
    # Hexadecimal digits in blocks of code; three blanks begin the explanation.
    blocks = "".join(line[4:].split("   ")[0].replace(" ", "") for line in lines if line.startswith("    "))
    for frame in (PING, pipe.message(pipe.PIXORA, pipe.SETTINGS_CHANGED)):
        check(frame.hex() in blocks, f"the document writes out the frame of {len(frame)} bytes")
    check(pipe.hello(pipe.PIXORA).hex() in "".join(lines).replace(" ", ""), "and the hello")
    text = "\n".join(lines)
    for header, pattern in (("SettingNames.h", r'k(?!ChangedEvent|KeyPath|System)\w+ = L"(.+)"'),
                            ("link/ServiceMessages.h", r"= (0x[0-9A-F]+);"), ("UsageEvents.h", r'= "?(\w+)"?;')):
        with open(os.path.join(ROOT, "service", header), encoding="utf-8") as file:
            names = re.findall(pattern, file.read())
        missing = [name for name in names if name not in text]
        check(names and not missing, f"it names what {header} names {missing}")


def main():
    if len(sys.argv) > 1:
        os.chdir(ROOT)
        build = os.path.abspath(sys.argv[1])
        with machine.Wine(build, os.path.join(os.path.dirname(build), "integration-test", "prefix")) as wine:
            set_number(wine, "filter_driver_install", 1)
            for name, value in (("lumi_camera_switch", 1), ("lumi_camera_background_replacement", 0),
                                ("lumi_camera_eye_correction", 0), ("lumi_camera_person_track", 0),
                                ("lumi_camera_beauty_person", 0)):
                set_number(wine, name, value)
            check_places(wine)
            data = check_settings_window(wine)
            check_message_window(wine)
        check_bytes(data)
        if "--record" in sys.argv:
            os.makedirs(os.path.dirname(RECORDED), exist_ok=True)
            with open(RECORDED, "w", encoding="utf-8") as file:
                file.write("\n".join(data.hex()[i:i + 96] for i in range(0, 2 * len(data), 96)) + "\n")
        with open(RECORDED, encoding="utf-8") as file:
            check(bytes.fromhex(file.read()) == data, "the bytes are those that were recorded")
    else:
        with open(RECORDED, encoding="utf-8") as file:
            check_bytes(bytes.fromhex(file.read()))
        check_document()
    print("integration: all passed")


if __name__ == "__main__":
    main()
