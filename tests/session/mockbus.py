#!/usr/bin/python3
"""A system bus with a polkit and a logind that do nothing but answer as they are told.

Prints the bus's address, and then obeys a command a line, answering with lines and a "." behind them:

answer NAME           what polkit says from now on: one of ANSWERS
fail METHOD ERROR     logind's method fails with a D-Bus error from now on
calls SERVICE         every call since the last time, as METHOD(ARGUMENTS)
"""

import os
import subprocess
import sys
import tempfile

import dbus
import dbusmock

POLKIT = "org.freedesktop.PolicyKit1.Authority"
LOGIND = "org.freedesktop.login1.Manager"
SESSION = "org.freedesktop.login1.Session"
QUESTION = "(sa{sv})sa{ss}us"
VERDICT = "(bba{ss})"

# Whether it is authorised, whether the user would have to be asked, and details
ANSWERS = {
    "yes": (True, False, {}),
    "kept": (True, False, {"polkit.temporary_authorization_id": "tmpauthz7"}),
    "no": (False, False, {}),
    "dismissed": (False, False, {"polkit.dismissed": "true"}),
    "challenge": (False, True, {"polkit.retains_authorization_after_challenge": "1"}),
}
FAILURE = 'raise dbus.exceptions.DBusException("told to", name="{}")'


# As a machine's system bus: every user may connect. What is sent is taken by whom it is meant for.
CONFIGURATION = """<busconfig>
  <type>system</type>
  <listen>unix:tmpdir=/tmp</listen>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
"""


class Bus(dbusmock.DBusTestCase):
    pass


def start_bus():
    with tempfile.NamedTemporaryFile("w", suffix=".conf") as file:
        file.write(CONFIGURATION)
        file.flush()
        process = subprocess.Popen(["dbus-daemon", "--nofork", "--print-address=1",
                                    f"--config-file={file.name}"], stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, text=True)
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = process.stdout.readline().strip()
    return process


def start(service, path, interface):
    process = Bus.spawn_server(service, path, interface, system_bus=True, stdout=subprocess.DEVNULL)
    return process, dbus.Interface(Bus.get_dbus(True).get_object(service, path), dbusmock.MOCK_IFACE)


def set_up(polkit, logind):
    polkit.AddMethod(POLKIT, "CheckAuthorization", QUESTION, VERDICT, "ret = (False, False, {})")
    polkit.AddMethod(POLKIT, "RevokeTemporaryAuthorizationById", "s", "", "")
    for method in ("Reboot", "PowerOff"):
        logind.AddMethod(LOGIND, method, "b", "", "")
    logind.AddMethod(LOGIND, "GetSessionByPID", "u", "o",
                     'ret = dbus.ObjectPath("/org/freedesktop/login1/session/_37")')
    logind.AddMethod(LOGIND, "TerminateSession", "s", "", "")
    logind.AddObject("/org/freedesktop/login1/session/_37", SESSION, {"Id": "7"},
                     dbus.Array([], signature="(ssss)"))


def plain(value):
    """A value of the bus as Python writes it."""
    if isinstance(value, dbus.Dictionary):
        return {plain(key): plain(entry) for key, entry in value.items()}
    if isinstance(value, (dbus.Struct, tuple, dbus.Array, list)):
        return [plain(entry) for entry in value]
    if isinstance(value, dbus.Boolean):
        return bool(value)
    return str(value) if isinstance(value, str) else int(value)


def obey(words, services):
    if words[0] == "answer":
        services["polkit"].AddMethod(POLKIT, "CheckAuthorization", QUESTION, VERDICT,
                                     f"ret = {ANSWERS[words[1]]}")
    elif words[0] == "fail":
        argument = {"GetSessionByPID": "u", "TerminateSession": "s"}.get(words[1], "b")
        services["logind"].AddMethod(LOGIND, words[1], argument, "", FAILURE.format(words[2]))
    elif words[0] == "calls":
        for _, method, arguments in services[words[1]].GetCalls():
            print(f"{method}({', '.join(repr(plain(each)) for each in arguments)})")
        services[words[1]].ClearCalls()
    print(".", flush=True)


def main():
    Bus.setUpClass()
    processes = [start_bus()]
    try:
        polkit_process, polkit = start("org.freedesktop.PolicyKit1",
                                       "/org/freedesktop/PolicyKit1/Authority", POLKIT)
        processes.append(polkit_process)
        logind_process, logind = start("org.freedesktop.login1", "/org/freedesktop/login1", LOGIND)
        processes.append(logind_process)
        set_up(polkit, logind)
        print(os.environ["DBUS_SYSTEM_BUS_ADDRESS"], flush=True)
        for line in sys.stdin:
            obey(line.split(), {"polkit": polkit, "logind": logind})
    finally:
        for process in reversed(processes):
            process.terminate()
            process.wait()
        Bus.tearDownClass()


main()
