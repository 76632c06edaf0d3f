# Runs every benchmark several times and writes docs/benchmarks.md: the median of our figures next to that of the peer, the
# other program that the benchmark measures in the same run.
#
#   report.py ROUNDS LINUX_BIN WINDOWS_BIN WINDOWS_X86_BIN
import os
import re
import statistics
import subprocess
import sys
import time

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(TOP, "tests", "e2e"), os.path.join(TOP, "tests", "soak")]
from report import machine  # noqa: E402
from test_machine import DevServer, fresh_folder  # noqa: E402

LONGEST = 3600  # seconds of one run of a benchmark
STARTS = 7  # of each program, in each round

NUMBER = r"(\d[\d.,]*)"


class Figures:
    """The figures of all rounds, ours and the peer's, for each comparison. The comparisons stay in the order in which they
    came first."""

    def __init__(self):
        self.taken = {}

    def take(self, what, unit, ours, peer, theirs, wanted=""):
        row = self.taken.setdefault((what, unit, peer, wanted), ([], []))
        row[0].append(ours)
        row[1].append(theirs)

    def lines(self):
        for (what, unit, peer, wanted), (ours, theirs) in self.taken.items():
            own, other = statistics.median(ours), statistics.median(theirs)
            yield f"| {what} | {digits(own)} {unit} | {peer} | {digits(other)} {unit} | {own / other:.2f} | {wanted} |"


def digits(figure):
    """The number with four significant digits; from 1000 on, all digits before the point."""
    return f"{figure:,.0f}" if figure >= 1000 else f"{figure:.4g}"


def run(*command, **how):
    done = subprocess.run(command, cwd=TOP, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=LONGEST, **how)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def number(text):
    return float(text.replace(",", ""))


def substitution(figures, binaries):
    said = run(os.path.join(binaries, "substitution_bench"))
    ours, theirs = re.search(rf"program {NUMBER} s, sed {NUMBER} s", said).groups()
    figures.take("Substitution of a large template", "s", number(ours), "sed", number(theirs), "at most 0.20")
    megabytes, memory = re.search(rf"substitution of {NUMBER} MB.*\npeak memory of the program: {NUMBER} times", said).groups()
    figures.take("Substitution of a large template: memory at its peak", "MB", number(memory) * number(megabytes),
                 "the template", number(megabytes), "at most 3.00")


def dev_server(figures, binaries):
    said = run("/usr/bin/python3", "tests/bench/devserver_bench.py", os.path.join(binaries, "devsqlserver"))
    for what, peer, ours, theirs, most in re.findall(
            rf"^(.+), against (.+): {NUMBER} s, peer {NUMBER} s, ratio [\d.]+(?: \(wanted: {NUMBER} or less\))?", said,
            re.MULTILINE):
        figures.take("Development server: " + what, "s", number(ours), peer, number(theirs),
                     f"at most {number(most):.2f}" if most else "")


def get_data(figures, binaries):
    said = run("/usr/bin/python3", "tests/bench/get_data_bench.py", os.path.join(binaries, "devsqlserver"),
               os.path.join(binaries, "get_data_bench"), "1")
    rows = {name: (number(seconds), number(megabytes)) for name, seconds, megabytes in re.findall(
        rf"^  (\S.*?) +{NUMBER} s .* rows/s +{NUMBER} MB at its peak; GetData takes", said, re.MULTILINE)}
    own_seconds, own_megabytes = rows.pop("GetData")
    for peer, (seconds, _) in rows.items():
        figures.take("A million rows by GetData", "s", own_seconds, peer, seconds,
                     "at most 1.20" if peer == "bare ODBC loop" else "below 1.00")
    for peer in ("pyodbc fetchall", "pymssql fetchall"):  # the other clients do not keep the rows
        figures.take("A million rows by GetData: memory at its peak", "MB", own_megabytes, peer, rows[peer][1], "below 1.00")
    array, text = re.search(rf"the array takes {NUMBER} MB for {NUMBER} MB of text", said).groups()
    figures.take("A million rows by GetData: the array", "MB", number(array), "its text", number(text), "at most 2.00")
    few, many = re.search(rf"^growth: .*?\({NUMBER} us a row\).*\({NUMBER} us a row\)$", said, re.MULTILINE).groups()
    figures.take("One row of a million by GetData", "us", number(many), "one row of 10,000", number(few))


def databases(figures, binaries):
    said = run("/usr/bin/python3", "tests/bench/database_bench.py", os.path.join(binaries, "devsqlserver"), binaries)
    ours, theirs = re.search(rf"databases: {NUMBER} ms; pymssql, the same rows: {NUMBER} ms", said).groups()
    figures.take("The list of 200 databases", "ms", number(ours), "pymssql", number(theirs))
    whole = re.search(rf"/upgradedb, .*: {NUMBER} ms", said).group(1)
    for tool, by_hand, added in re.findall(
            rf"by hand with (\w+), .*?: {NUMBER} ms.*the program adds (-?[\d.]+) % of its whole", said):
        figures.take("The unattended upgrade", "ms", number(whole), f"its scripts by hand with {tool}", number(by_hand))
        figures.take(f"The unattended upgrade without its scripts, run by {tool}", "%", number(added), "the whole upgrade", 100,
                     "below 0.10")


def take_windows(figures, said, where, wanted):
    for what, ours, peer, theirs in re.findall(rf"^(.+): fastest [\d.]+ ms, median {NUMBER}; (.+): [\d.]+ and {NUMBER}; ratio",
                                               said, re.MULTILINE):
        figures.take(f"{where}: {what}", "ms", number(ours), peer, number(theirs), wanted.get(peer, ""))


def windows(figures, binaries):
    said = run("tests/with-screen", "--no-wine", os.path.join(binaries, "window_bench"))
    take_windows(figures, said, "On Linux", {"an empty window of Qt": "at most 1.20", "a table of Qt": "ours at most 300 ms",
                                             "a build without windows": "at most 1.05"})


def windows_under_wine(figures, binaries):
    said = run("tests/with-screen", "tests/run-under-wine", os.path.join(binaries, "window_bench.exe"))
    take_windows(figures, said, "Under Wine", {"an empty window with the toolkit's libraries": "at most 1.40"})


def query_tool_under_wine(figures, binaries):
    for _ in range(STARTS):
        nothing = milliseconds("tests/run-under-wine", "cmd", "/c", "exit", cwd=TOP)
        taken = milliseconds("tests/run-under-wine", os.path.join(binaries, "OSQL.EXE"), "-?", cwd=TOP)
        figures.take("Under Wine: start to end of OSQL.EXE -?", "ms", taken, "cmd /c exit", nothing)


def milliseconds(*command, **how):
    begun = time.perf_counter()
    subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=60, **how)
    return 1000 * (time.perf_counter() - begun)


def starts(figures, binaries):
    environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
    folder = fresh_folder()
    try:
        server = DevServer(os.path.join(binaries, "devsqlserver"), folder).start()
        server.stop()
        for _ in range(STARTS):
            nothing = milliseconds("/bin/true")
            for what, command in (("KVLSQLDbMgr /help", ("KVLSQLDbMgr", "/help")), ("OSQL.EXE -?", ("OSQL.EXE", "-?"))):
                taken = milliseconds(os.path.join(binaries, command[0]), *command[1:], env=environment)
                figures.take(f"Start to end of {what}", "ms", taken, "/bin/true", nothing)
            begun = time.perf_counter()
            server.start()
            figures.take("Start of devsqlserver until it is ready", "ms", 1000 * (time.perf_counter() - begun), "/bin/true",
                         nothing)
            server.stop()
    finally:
        subprocess.run(["rm", "-rf", folder], check=True)


def sizes(linux, windows_folder, windows_x86):
    for folder, system, strip in ((windows_folder, "Windows x64", "x86_64-w64-mingw32-strip"),
                                  (windows_x86, "Windows x86", "i686-w64-mingw32-strip"), (linux, "Linux", "strip")):
        for name in ("KVLSQLDbMgr.exe", "KVLSQLDbMgr", "libkvconsole.so", "OSQL.EXE", "devsqlserver"):
            path = os.path.join(folder, name)
            if os.path.exists(path):
                stripped = os.path.join(fresh_folder(), name)
                subprocess.run([strip, "-o", stripped, path], check=True)
                yield f"| {name} | {system} | {os.path.getsize(stripped) / 1e6:.2f} MB |"
                subprocess.run(["rm", "-rf", os.path.dirname(stripped)], check=True)


def write(figures, rounds, loads, folders):
    text = [f"# Benchmarks\n\nWritten by `./bench --report`, {time.strftime('%Y-%m-%d')}: medians of {rounds} rounds, each with "
            f"its peer in the same round.\n\nMachine: {machine()}. Programs that were ready to run beside the benchmarks (load "
            f"average): {min(loads):.0f} to {max(loads):.0f}; with more than the cores the times are long, and the ratios are "
            "what counts.\n\n## Times and memory\n\n| What | Ours | Peer | Peer's | Ratio | Wanted |\n| --- | ---: | --- | ---: | ---: | --- |",
            *figures.lines(), "\n## Sizes\n\nWithout symbols, as delivered.\n\n| Program | System | Size |\n| --- | --- | ---: |",
            *sizes(*folders)]
    with open(os.path.join(TOP, "docs", "benchmarks.md"), "w", encoding="utf-8") as file:
        file.write("\n".join(text) + "\n")


def main(rounds, linux, windows_folder, windows_x86):
    figures = Figures()
    loads = []
    for turn in range(rounds):
        for bench, folder in ((substitution, linux), (dev_server, linux), (get_data, linux), (databases, linux),
                              (windows, linux), (windows_under_wine, windows_folder),
                              (query_tool_under_wine, windows_folder), (starts, linux)):
            print(f"round {turn + 1} of {rounds}: {bench.__name__}", flush=True)
            loads.append(os.getloadavg()[0])
            bench(figures, folder)
        # Written after each round, so that a run that is stopped leaves the figures of its rounds.
        write(figures, turn + 1, loads, (linux, windows_folder, windows_x86))
    print("docs/benchmarks.md is written")


if __name__ == "__main__":
    main(int(sys.argv[1]), *map(os.path.abspath, sys.argv[2:5]))
