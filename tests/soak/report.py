# The table at the end of a soak, and docs/reliability.md, which has a section for each part.
import os
import platform


def counts_text(result):
    return ", ".join(f"{count:,} {what}" for what, count in result["counts"].items())


def show(results):
    print(f"\n{'part':<10} {'ended':<7} {'took':>8}  counts")
    for result in results:
        ended = "FAILED" if result["failures"] else "stopped" if result["stopped"] else "ok"
        took = f"{result['seconds'] // 60}:{result['seconds'] % 60:02d}"
        print(f"{result['part']:<10} {ended:<7} {took:>8}  {counts_text(result)}")
    for result in results:
        for failure in result["failures"]:
            print(f"FAILED: {result['part']}: {failure}")
    print(flush=True)


def machine():
    """The processor, its cores, the memory and the system of this machine."""
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        models = [line.split(":", 1)[1].strip() for line in file if line.startswith("model name")]
    with open("/proc/meminfo", encoding="utf-8") as file:
        gigabytes = int(file.readline().split()[1]) / 2 ** 20
    with open("/etc/os-release", encoding="utf-8") as file:
        system = dict(line.rstrip().split("=", 1) for line in file if "=" in line)["PRETTY_NAME"].strip('"')
    return (f"{models[0] if models else platform.machine()}, {os.cpu_count()} cores, {gigabytes:.0f} GB, "
            f"{system}, Linux {platform.release()}")


TITLES = {
    "installs": ("Installations and upgrades",
                 "One pair of servers; the program is run by its command line. After each run the versions, the batches, the "
                 "packages and the log are compared with the expected ones, and the figures below are measured."),
    "console": ("The console, with Qt",
                "The real window is opened, used tab by tab with a server, and closed, all in one process."),
    "console-windows": ("The console, with Windows' own controls",
                        "The same under Wine, on a virtual screen."),
    "faults": ("Faults",
               "Every operation with every fault at each of its statements: the connection is cut or reset, the server does "
               "not answer in time, the server, the program or its query tool is killed, the disk is full, a right is "
               "missing. The state of the server, the files and the log are compared with the expected ones."),
    "kills": ("Kills of the development server",
              "Four clients write, one row or one transaction at a time. The server is killed at a random moment and "
              "started again. A row is lost if its insert was answered and it is missing."),
    "fuzz": ("Fuzzing", "The readers of foreign input, under libFuzzer with the address and undefined-behaviour sanitizers."),
    "secrets": ("Passwords",
                "Runs that succeed and runs that fail. The texts are those of the terminal and the log; the files are created "
                "with a file mode mask of 0."),
}


def figures(result):
    if not result["series"]:
        return ""
    lines = ["", "| Figure | First quarter | Last quarter | Highest | Taken |", "| --- | ---: | ---: | ---: | ---: |"]
    for one in result["series"]:
        unit = f" ({one['unit']})" if one["unit"] else ""
        lines.append(f"| {one['name']}{unit} | {one['first']:,.0f} | {one['last']:,.0f} | {one['peak']:,.0f} | "
                     f"{one['taken']:,} |")
    return "\n".join(lines) + "\n"


def took(result):
    minutes = result["seconds"] // 60
    return f"{minutes} minutes" if minutes > 1 else f"{result['seconds']} seconds"


def is_full(result):
    return all(result["counts"].get(what, 0) >= count for what, count in result["wanted"].items())


def section(result):
    name = result["part"]
    title, text = TITLES[name]
    failures = len(result["failures"])
    lines = [f"## {title}", "", text, "",
             f"`./soak {name}`, {result['date']}, {took(result)}: "
             f"{'no failure' if failures == 0 else f'**{failures} failures**'}. Machine: {machine()}.", ""]
    lines += [f"- {count:,} {what}" for what, count in result["counts"].items()]
    if not is_full(result):
        wanted = ", ".join(f"{count:,} {what}" for what, count in result["wanted"].items()
                           if result["counts"].get(what, 0) < count)
        stopped = "It was stopped before its end. " if result["stopped"] else ""
        lines += ["", f"{stopped}This was not a full run, which has {wanted}."]
    lines += [f"- failed: {failure.splitlines()[0][:200]}" for failure in result["failures"]]
    return "\n".join(lines) + "\n" + figures(result)


HEAD = """# Reliability

The last long run of each part of `./soak`. `./soak --report PART` writes the section of that part and leaves the others
as they are. The figures of memory, files and handles are medians of the first and of the last quarter of a run; its
first tenth is left out. A part fails if the last median is larger than the first one by more than the figure's limit.

"""


def sections_of(text):
    """The sections of the page by title, each with its heading."""
    pieces = ("\n" + text).split("\n## ")[1:]
    return {piece.split("\n", 1)[0]: "## " + piece.rstrip("\n") + "\n" for piece in pieces}


def write(result, path):
    """Replaces the section of the part that has run."""
    sections = {}
    if os.path.exists(path):
        with open(path, encoding="utf-8") as file:
            sections = sections_of(file.read())
    sections[TITLES[result["part"]][0]] = section(result)
    with open(path, "w", encoding="utf-8") as file:
        file.write(HEAD + "\n".join(sections[title] for title, _ in TITLES.values() if title in sections))
