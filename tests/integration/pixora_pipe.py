"""Pixora's pipe frames in Python, written from docs/integration.md alone."""
import struct

MAGIC = b"QXPF"
VERSION = 1
HELLO, MESSAGE = 1, 2
MAX_TEXT, MAX_PAYLOAD = 4096, 1024 * 1024
HEADER = struct.Struct("<4sHHI")
HELLO_BODY = struct.Struct("<I")
MESSAGE_BODY = struct.Struct("<I7iiB3s")

PIXORA, CAMERA_SERVICE, SWITCH_RECEIVER = 0xCE0000, 0xCD0000, 0xB20001
SETTINGS_CHANGED, SWITCH_STATE, NOTIFICATION, RESET = 0x4B273B, 0x4B273C, 0x22711, 0x40000


class BadFrame(Exception):
    pass


def hello(client):
    return HEADER.pack(MAGIC, VERSION, HELLO, 16) + HELLO_BODY.pack(client)


def message(receiver, code, sub_code=-1, slot3=-1, payload=b""):
    body = MESSAGE_BODY.pack(0, receiver, sub_code, code, slot3, -1, 0, len(payload), 0, 0, b"\0\0\0")
    return HEADER.pack(MAGIC, VERSION, MESSAGE, HEADER.size + len(body) + len(payload)) + body + payload


def switch_record(on):
    name = "LumiCameraUI"
    return struct.pack("<iii", 1, CAMERA_SERVICE, len(name)) + name.encode("utf-16-le") + struct.pack("<i", on)


def take_frame(data):
    """The first frame as a dictionary and the bytes behind it; None while it is not whole."""
    if len(data) < HEADER.size:
        return None, data
    magic, version, kind, length = HEADER.unpack_from(data)
    if magic != MAGIC or version != VERSION or kind not in (HELLO, MESSAGE):
        raise BadFrame(data[:HEADER.size].hex())
    if len(data) < length:
        return None, data
    body, rest = data[HEADER.size:length], data[length:]
    if kind == HELLO:
        if length != 16:
            raise BadFrame("length of hello")
        return {"kind": HELLO, "client": HELLO_BODY.unpack(body)[0]}, rest
    text_length, *slots, reserved, flag, zero = MESSAGE_BODY.unpack_from(body)
    if text_length > MAX_TEXT or not 0 <= slots[6] <= MAX_PAYLOAD or zero != b"\0\0\0":
        raise BadFrame("field of message")
    if length != HEADER.size + MESSAGE_BODY.size + text_length + slots[6]:
        raise BadFrame("length of message")
    text = body[MESSAGE_BODY.size:MESSAGE_BODY.size + text_length]
    return {"kind": MESSAGE, "slots": slots, "code": slots[2], "reserved": reserved, "flag": flag, "text": text,
            "payload": body[MESSAGE_BODY.size + text_length:]}, rest


def take_frames(data):
    frames = []
    while True:
        frame, data = take_frame(data)
        if frame is None:
            return frames, data
        frames.append(frame)
