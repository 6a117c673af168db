#!/usr/bin/python3
"""A system bus with a UDisks2 that does nothing but answer as it is told.

Prints the bus's address, and then obeys a command a line, answering with lines and a "." behind them:

object NAME            there is a block device of that name, with a file system
fail NAME METHOD ERROR its method fails with a D-Bus error from now on
stall NAME METHOD      its method never answers from now on
calls NAME             every call since the last time, as METHOD(OPTIONS)
"""

import os
import subprocess
import sys

import dbus
import dbusmock

SERVICE = "org.freedesktop.UDisks2"
FILE_SYSTEM = SERVICE + ".Filesystem"
DEVICES = "/org/freedesktop/UDisks2/block_devices/"
RESULTS = {"Mount": "s", "Unmount": ""}
FAILURE = 'raise dbus.exceptions.DBusException("told to", name="{}")'


class Bus(dbusmock.DBusTestCase):
    pass


def mock(path):
    return dbus.Interface(Bus.get_dbus(True).get_object(SERVICE, path), dbusmock.MOCK_IFACE)


def obey(words):
    device = DEVICES + words[1]
    if words[0] == "object":
        mock("/org/freedesktop/UDisks2").AddObject(
            device, FILE_SYSTEM, {},
            [("Mount", "a{sv}", "s", "ret = '/media/place'"), ("Unmount", "a{sv}", "", "")])
    elif words[0] == "fail":
        mock(device).AddMethod(FILE_SYSTEM, words[2], "a{sv}", RESULTS[words[2]],
                               FAILURE.format(words[3]))
    elif words[0] == "stall":
        mock(device).AddMethod(FILE_SYSTEM, words[2], "a{sv}", RESULTS[words[2]],
                               "import time; time.sleep(1000)")
    elif words[0] == "calls":
        for _, method, arguments in mock(device).GetCalls():
            options = ", ".join(f"{name}={bool(value)}" for name, value in arguments[0].items())
            print(f"{method}({options})")
        mock(device).ClearCalls()
    print(".", flush=True)


def main():
    Bus.setUpClass()
    Bus.start_system_bus()
    server = None
    try:
        server = Bus.spawn_server(SERVICE, "/org/freedesktop/UDisks2", SERVICE + ".Manager",
                                  system_bus=True, stdout=subprocess.DEVNULL)
        print(os.environ["DBUS_SYSTEM_BUS_ADDRESS"], flush=True)
        for line in sys.stdin:
            obey(line.split())
    finally:
        if server:
            server.kill()
            server.wait()
        Bus.tearDownClass()


main()
