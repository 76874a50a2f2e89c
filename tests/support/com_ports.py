#!/usr/bin/env python3
"""Serial ports for programs under Wine, which can make no pseudo-terminal themselves.

com_ports.py DOSDEVICES tells on its first line a port of 127.0.0.1. Each connection to it is the
device at the end of a serial line of its own: it is told the port's name ("COM11"), then come the
bytes. When it ends, the line hangs up. The program ends with its standard input.
"""
import itertools
import os
import pty
import select
import socket
import sys
import threading
import tty

# What the device has not taken yet stays in the line, which fills up as a real one would.
HELD_BYTES = 4096


def relay(device, line):
    """Until the device ends the connection."""
    while True:
        for source in select.select([device, line], [], [])[0]:
            if source is line:
                device.sendall(os.read(line, HELD_BYTES))
                continue
            data = device.recv(HELD_BYTES)
            if not data:
                return
            while data:
                data = data[os.write(line, data):]


def serve(device, link):
    """One serial line, with its name in the folder that Wine looks for ports in."""
    line, port = pty.openpty()
    tty.setraw(port)  # else it would echo what is written before the port is opened
    os.symlink(os.ttyname(port), link)
    device.sendall(os.path.basename(link).upper().encode() + b"\n")
    try:
        relay(device, line)
    except OSError:
        pass  # the program under test has gone
    os.unlink(link)
    os.close(line)
    os.close(port)
    device.close()


def main():
    folder = sys.argv[1]
    listener = socket.socket()
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_SNDBUF, HELD_BYTES)
    listener.bind(("127.0.0.1", 0))
    listener.listen()
    print(listener.getsockname()[1], flush=True)
    threading.Thread(target=lambda: (sys.stdin.read(), os._exit(0)), daemon=True).start()
    for number in itertools.count(11):  # behind the ports that Wine finds itself
        device, _ = listener.accept()
        device.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        link = f"{folder}/com{number}"
        threading.Thread(target=serve, args=(device, link), daemon=True).start()


main()
