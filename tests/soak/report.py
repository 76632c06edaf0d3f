# The table at the end of a soak, and docs/reliability.md out of what the last runs of the parts have left.
import glob
import json
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
                 "One pair of servers, the program's own command line. After each run the versions, the batches, the packages "
                 "and the log are compared with what is laid down, and the figures below are taken."),
    "console": ("The console, with Qt",
                "The window of the real toolkit, opened, worked through tab by tab against a server, and closed, all in one "
                "process."),
    "console-windows": ("The console, with Windows' own controls",
                        "The same under Wine, on a virtual screen."),
    "faults": ("Faults",
               "Each operation with each fault at each of its statements; the state of the server, the files and the log are "
               "compared with what is laid down."),
    "kills": ("Kills of the development server",
              "Four clients write, one row or one transaction at a time; the server is killed at some moment and started "
              "again. A row is lost when its insert was answered and it is not there."),
    "fuzz": ("Fuzzing", "The readers of foreign input, under libFuzzer with the address and undefined-behaviour sanitizers."),
    "secrets": ("Passwords",
                "Runs that work and runs that fail; the texts are those of the terminal, the log and the console, the files "
                "are made under a mask that closes nothing."),
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


def is_full(result):
    return all(result["counts"].get(what, 0) >= count for what, count in result["wanted"].items())


def section(name, result):
    title, text = TITLES[name]
    lines = [f"## {title}", "", text, ""]
    if result is None:
        return "\n".join(lines + [f"Not run yet: `./soak {name}`.", ""])
    failures = len(result["failures"])
    lines += [f"`./soak {name}`, {result['date']}, {result['seconds'] // 60} minutes: "
              f"{'no failure' if failures == 0 else f'**{failures} failures**'}.", ""]
    lines += [f"- {count:,} {what}" for what, count in result["counts"].items()]
    if not is_full(result):
        wanted = ", ".join(f"{count:,} {what}" for what, count in result["wanted"].items()
                           if result["counts"].get(what, 0) < count)
        stopped = "It was stopped before its end. " if result["stopped"] else ""
        lines += ["", f"{stopped}This was not a full run, which has {wanted}."]
    lines += [f"- failed: {failure.splitlines()[0][:200]}" for failure in result["failures"]]
    return "\n".join(lines) + "\n" + figures(result)


def write(results_folder, path):
    results = {}
    for file in glob.glob(os.path.join(results_folder, "*.json")):
        with open(file, encoding="utf-8") as content:
            result = json.load(content)
        results[result["part"]] = result
    text = ("# Reliability\n\n"
            "The last long run of each part of `./soak`, written by `./soak --report`. The figures of memory, files and "
            "handles are medians of the first and of the last quarter of a run, its first tenth left out; a part fails when "
            "the last lies above the first by more than its measure allows.\n\n"
            f"Machine: {machine()}.\n\n")
    text += "\n".join(section(name, results.get(name)) for name in TITLES)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
