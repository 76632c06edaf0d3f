# Figures of processes from /proc: memory, open files, listening sockets. Linux only.
import os
import re

LISTENS = "0A"  # the state of a TCP socket in /proc/net/tcp


def resident_kilobytes(process):
    with open(f"/proc/{process}/status", encoding="ascii", errors="replace") as file:
        return int(re.search(r"^VmRSS:\s+(\d+)", file.read(), re.MULTILINE).group(1))


def open_files(process):
    return len(os.listdir(f"/proc/{process}/fd"))


def running():
    """The number and the command line of each process."""
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/cmdline", "rb") as file:
                yield int(name), file.read().split(b"\0")[:-1]
        except OSError:
            continue  # it has ended


def with_variable(name, value):
    """The processes in whose environment the variable has the value."""
    wanted = f"{name}={value}".encode()
    for process, _ in running():
        try:
            with open(f"/proc/{process}/environ", "rb") as file:
                if wanted in file.read().split(b"\0"):
                    yield process
        except OSError:
            continue


def sockets(process):
    """The inodes of the sockets that a process has open."""
    inodes = set()
    try:
        for descriptor in os.listdir(f"/proc/{process}/fd"):
            match = re.fullmatch(r"socket:\[(\d+)\]", os.readlink(f"/proc/{process}/fd/{descriptor}"))
            if match:
                inodes.add(match.group(1))
    except OSError:
        pass  # it has ended, or the descriptor is closed
    return inodes


def is_loopback(address):
    """True for a loopback address. /proc/net writes it as words of four bytes, each in the processor's byte order."""
    host = address.split(":")[0]
    octets = b"".join(bytes.fromhex(host[at:at + 8])[::-1] for at in range(0, len(host), 8))
    if len(octets) == 16 and octets[:12] == b"\0" * 10 + b"\xff\xff":
        octets = octets[12:]
    return octets[0] == 127 if len(octets) == 4 else octets == b"\0" * 15 + b"\1"


def listening(processes):
    """(loopback, elsewhere): the number of listening sockets on loopback, and the addresses of those that other machines
    can reach."""
    inodes = set().union(*(sockets(process) for process in processes)) if processes else set()
    loopback, elsewhere = 0, []
    for table in ("tcp", "tcp6", "udp", "udp6"):
        with open(f"/proc/net/{table}", encoding="ascii") as file:
            for fields in (line.split() for line in list(file)[1:]):
                if fields[9] not in inodes or (table.startswith("tcp") and fields[3] != LISTENS):
                    continue
                if is_loopback(fields[1]):
                    loopback += 1
                else:
                    elsewhere.append(f"{table} {fields[1]}")
    return loopback, elsewhere


def with_prefix(process, prefix):
    """True if the process runs in this prefix of Wine."""
    return process in with_variable("WINEPREFIX", prefix)
