"""A client that was written from docs/wire-formats.md and nothing else, so that what is missing
there shows here.

  second_reader.py examples PAGE                 are the frames of the page's examples sound?
  second_reader.py LINK ALGORITHM KEYS READ WRITE OFFSET HEX
      over LINK (ADDRESS:PORT, or a serial port) writes the bytes HEX at OFFSET of what the commands
      READ and WRITE (hexadecimal) carry, which is protected, and reads them back
"""

import fcntl
import os
import re
import socket
import subprocess
import sys
import tty
import zlib


def crc32_mpeg2(data):
    crc = 0xFFFFFFFF
    for byte in data + bytes(-len(data) % 4):  # the padding of serial frames
        crc ^= byte << 24
        for _ in range(8):
            crc = (crc << 1 ^ (0x04C11DB7 if crc >> 31 else 0)) & 0xFFFFFFFF
    return crc


class Network:
    prefix = 0  # what is ahead of probe value and challenge

    def __init__(self, host, port):
        self.socket = socket.create_connection((host, port), timeout=10)

    def ask(self, command, payload=b""):
        self.socket.sendall(b"Gt" + bytes([command, 0]) + len(payload).to_bytes(4, "big") + payload)
        header = self.take(8)
        assert header[:3] == b"Gt" + bytes([command]), header
        return header[3], self.take(int.from_bytes(header[4:], "big"))

    def take(self, size):
        data = self.socket.recv(size, socket.MSG_WAITALL) if size else b""
        assert len(data) == size, data
        return data


class SerialLine:
    prefix = 4

    def __init__(self, port):
        self.line = os.open(port, os.O_RDWR | os.O_NOCTTY)
        fcntl.flock(self.line, fcntl.LOCK_EX)  # as Tevron does: its port is nobody else's
        tty.setraw(self.line)

    def ask(self, command, payload=b""):
        inner = bytes([1 + len(payload), command]) + payload + os.urandom(4)
        os.write(self.line, b"$LDCMD," + inner + crc32_mpeg2(inner).to_bytes(4, "little") + b"\xee\xff")
        head = self.take(9)
        rest = self.take(head[7] + 10)  # return code and payload; random value, checksum, end
        checksum = crc32_mpeg2(head[7:] + rest[:-6]).to_bytes(4, "little")
        assert head[:7] == b"$LDCMD," and head[8] == command, head
        assert rest[-6:] == checksum + b"\xee\xff", rest
        return rest[0], rest[1:-10]

    def take(self, size):
        data = b""
        while len(data) < size:
            data += os.read(self.line, size - len(data))
        return data


def mask_word(challenge, m, c1, c2):
    crc = zlib.crc32(challenge)
    b = crc.to_bytes(4, "big")[2 * (m >> 16 & 1) + (m >> 14 & 1)]
    k = m >> 23 ^ 0xFFFFFFA5
    n = (m >> 3 & c1 & k & 0xFF ^ b & k) + ((m ^ c2) >> 14 & 0xFF) & 0xFFFF
    s = int.from_bytes(crc.to_bytes(4, "big"), "little")
    for _ in range(n):
        s = (s << 1) + ((s >> 3 ^ s >> 13 ^ s >> 24 ^ s >> 29) & 1) & 0xFFFFFFFF
    if m >> 1 & 1:
        s = (s << 16 | s >> 16) & 0xFFFFFFFF
    return (s ^ m).to_bytes(4, "little")


def openssl(challenge, *arguments):
    return subprocess.run(["openssl", *arguments], input=challenge, stdout=subprocess.PIPE, check=True).stdout


def respond(algorithm, keys, challenge):
    if algorithm in (1, 2):
        words = (int(keys[name], 16) for name in (f"maskword_{algorithm}", "mix_c1", "mix_c2"))
        return mask_word(challenge, *words)
    if algorithm == 3:
        key = "hexkey:" + keys["aes256_key"]
        return openssl(challenge, "mac", "-cipher", "AES-256-CBC", "-macopt", key, "-binary", "CMAC")
    vector = os.urandom(16)
    return openssl(challenge, "enc", "-aes-128-cbc", "-nopad", "-K", keys["aes128_key"], "-iv", vector.hex()) + vector


def expect(what, got, expected):
    if got != expected:
        sys.exit(f"{what}: got {got}, expected {expected}")


def write_protected(link, algorithm, keys, read, write, offset, value):
    expect("liveness", link.ask(0x07), (0, b""))
    code, probe = link.ask(0xDF)
    expect("probe", (code, probe[link.prefix :]), (0, b"\x01"))
    before = link.ask(read)[1]
    wanted = before[:offset] + value + before[offset + len(value) :]
    expect("a value that differs", wanted != before, True)
    expect("a write without a handshake", link.ask(write, wanted), (5, b""))

    def handshake(spoil):
        code, challenge = link.ask(0x66)
        expect("challenge", (code, len(challenge)), (0, link.prefix + 16))
        response = respond(algorithm, keys, challenge[link.prefix :])
        return link.ask(0xE0, bytes([response[0] ^ spoil]) + response[1:])

    expect("a wrong response", handshake(spoil=1), (5, b""))
    expect("the value, still", link.ask(read), (0, before))
    expect("response", handshake(spoil=0), (0, b""))
    expect("write", link.ask(write, wanted), (0, b""))
    expect("a second write", link.ask(write, wanted), (5, b""))
    expect("the value, read back", link.ask(read), (0, wanted))


def check_example(frame):
    if frame[:2] == b"Gt":
        expect(frame.hex(" "), int.from_bytes(frame[4:8], "big"), len(frame) - 8)
    elif frame[:2] == b"Wu":
        expect(frame.hex(" "), int.from_bytes(frame[8:12], "big"), len(frame) - 12)
    else:
        order = "little" if frame[:7] == b"$LDCMD," else "big"
        expect(frame.hex(" "), frame[-6:], crc32_mpeg2(frame[7:-6]).to_bytes(4, order) + b"\xee\xff")


if sys.argv[1] == "examples":
    with open(sys.argv[2], encoding="utf-8") as page:
        examples = re.findall(r"^(?:47 74|57 75|24 4c 44)(?: +[0-9a-f]{2})+$", page.read(), re.M)
    expect("examples", len(examples) > 40, True)
    for example in examples:
        check_example(bytes.fromhex(example))
else:
    where, algorithm, key_file, read, write, offset, value = sys.argv[1:]
    with open(key_file, encoding="utf-8") as file:
        keys = dict(line.strip().split("=") for line in file if "=" in line and line[0] != ";")
    host, _, port = where.partition(":")
    link = Network(host, int(port)) if port else SerialLine(where)
    write_protected(link, int(algorithm), keys, int(read, 16), int(write, 16), int(offset), bytes.fromhex(value))
