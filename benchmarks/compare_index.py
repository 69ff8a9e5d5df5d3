#!/usr/bin/env python3
"""Measures `ferncase index` and `ferncase search` beside mu, notmuch, recoll and mairix.

    compare_index.py --ferncase BIN --generate BIN [--naive BIN] [--count N] [--folder DIR]
                     [--runs N] [--first-runs N] [NAME...]

Makes a mailbox of N messages (10,000) in the layout of a Maildir, which all of them read, and lets
each program index it with its defaults: for the first time, with nothing changed, and with one
message of a hundred replaced. Then it asks each for a word, a phrase, two fields and a word within
a range of dates. Prints a table in Markdown: medians of the runs, in seconds or milliseconds by the
clock, everything that a process does included. Programs that are not installed are left out. First
indexes are interleaved, so that what else the machine does meets all programs alike.

"naive" (naive_index.cpp) is a floor: the MIME library's text of each message put into a plain
full-text table. It knows no second run.

Memory is the largest sum over all processes of a program of what each has for itself and its share
of what it shares (PSS), looked at every 50 ms. Pages of the mailbox are in memory before each run.
"""
import argparse
import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import threading
import time

WORD, PHRASE, SENDER, SUBJECT = "invoice", "the message", "harbour.example", "and"
DAYS = ("2024-01-01", "2024-12-31")


class Memory:
    """The memory of a process and all that it started, while it runs."""

    def __init__(self, process):
        self.peak = 0
        self._process = process
        self._thread = threading.Thread(target=self._watch)
        self._thread.start()

    def end(self):
        self._thread.join()
        return self.peak

    def _watch(self):
        while self._process.poll() is None:
            self.peak = max(self.peak, sum(map(self._pss, self._tree())))
            time.sleep(0.05)

    def _tree(self):
        parents = {}
        for entry in pathlib.Path("/proc").iterdir():
            if entry.name.isdigit():
                try:
                    fields = (entry / "stat").read_text().rpartition(")")[2].split()
                    parents.setdefault(int(fields[1]), []).append(int(entry.name))
                except OSError:
                    pass
        tree = [self._process.pid]
        for process in tree:
            tree += parents.get(process, [])
        return tree

    @staticmethod
    def _pss(process):
        try:
            for line in pathlib.Path(f"/proc/{process}/smaps_rollup").read_text().splitlines():
                if line.startswith("Pss:"):
                    return int(line.split()[1]) * 1024
        except OSError:
            pass
        return 0


class Program:
    """How a program is set up, brought up to date and asked. Commands are lists of words."""
    is_updated = True

    def __init__(self, name, folder, box):
        self.name, self.folder, self.box = name, folder / name, box
        self.environment = dict(os.environ, HOME=str(self.folder), LC_ALL="C.UTF-8",
                                NOTMUCH_CONFIG=str(self.folder / "config"),
                                RECOLL_CONFDIR=str(self.folder / "recoll"))
        for variable in ("XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"):
            self.environment.pop(variable, None)

    def run(self, command, watches_memory=False):
        begin = time.perf_counter()
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        memory = Memory(process) if watches_memory else None
        output = process.communicate()[0]
        seconds = time.perf_counter() - begin
        return seconds, output, memory.end() if memory else 0, process.returncode

    def size(self):
        return sum(file.stat().st_size for file in self.store().rglob("*") if file.is_file())

    def store(self):
        return self.folder

    def set_up(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)

    def queries(self):
        return {}


class Ferncase(Program):
    binary = "ferncase"

    def index(self):
        return [self.binary, "index", "-q", "--db", str(self.folder / "mail.db"), str(self.box)]

    def queries(self):
        search = [self.binary, "search", "--db", str(self.folder / "mail.db")]
        return {"word": search + [WORD], "phrase": search + [f'"{PHRASE}"'],
                "fields": search + [f"from:{SENDER}", f"subject:{SUBJECT}"],
                "dates": search + [WORD, f"after:{DAYS[0]}", f"before:{DAYS[1]}"]}


class Naive(Program):
    binary = "naive_index"
    is_updated = False

    def index(self):
        return [self.binary, str(self.folder / "naive.db"), str(self.box)]


class Mu(Program):
    def set_up(self):
        super().set_up()
        self.run(["mu", "init", f"--muhome={self.store()}", f"--maildir={self.box}"])

    def store(self):
        return self.folder / "mu"

    def index(self):
        return ["mu", "index", f"--muhome={self.store()}", "--quiet"]

    def queries(self):
        find = ["mu", "find", f"--muhome={self.store()}", "--fields=l"]
        return {"word": find + [WORD], "phrase": find + [f'"{PHRASE}"'],
                "fields": find + [f"from:/{SENDER}/", f"subject:{SUBJECT}"],
                "dates": find + [WORD, f"date:{DAYS[0]}..{DAYS[1]}"]}


class Notmuch(Program):
    def set_up(self):
        super().set_up()
        self.store().mkdir()
        (self.folder / "config").write_text(
            f"[database]\npath={self.store()}\nmail_root={self.box}\n"
            "[user]\nname=A\nprimary_email=a@example.org\n[new]\ntags=new\n")

    def store(self):
        return self.folder / "store"

    def index(self):
        return ["notmuch", "new", "--quiet"]

    def queries(self):
        search = ["notmuch", "search", "--output=files"]
        return {"word": search + [WORD], "phrase": search + [f'"{PHRASE}"'],
                "fields": search + [f"from:{SENDER} and subject:{SUBJECT}"],
                "dates": search + [f"{WORD} and date:{DAYS[0]}..{DAYS[1]}"]}


class Recoll(Program):
    def set_up(self):
        super().set_up()
        self.store().mkdir()
        (self.store() / "recoll.conf").write_text(f"topdirs = {self.box}\n")

    def store(self):
        return self.folder / "recoll"

    def index(self):
        return ["recollindex"]

    def queries(self):
        search = ["recollq", "-b", "-n", "0"]
        return {"word": search + [WORD], "phrase": search + [f'"{PHRASE}"'],
                "fields": search + [f"author:{SENDER} title:{SUBJECT}"],
                "dates": search + [f"{WORD} date:{DAYS[0]}/{DAYS[1]}"]}


class Mairix(Program):
    def set_up(self):
        super().set_up()
        self.store().mkdir()
        (self.folder / "rc").write_text(
            f"base={self.box.parent}\nmaildir={self.box.name}\nmfolder={self.folder}/found\n"
            f"database={self.store()}/database\n")

    def store(self):
        return self.folder / "store"

    def index(self):
        return ["mairix", "-f", str(self.folder / "rc")]

    def queries(self):
        search = ["mairix", "-f", str(self.folder / "rc"), "-r"]
        days = "-".join(day.replace("-", "") for day in DAYS)
        return {"word": search + [WORD],  # it knows no phrases
                "fields": search + [f"f:{SENDER.split('.')[0]}", f"s:{SUBJECT}"],
                "dates": search + [WORD, f"d:{days}"]}


PROGRAMS = {"ferncase": Ferncase, "naive": Naive, "mairix": Mairix, "mu": Mu, "notmuch": Notmuch,
            "recoll": Recoll}
EXECUTABLES = {"recoll": "recollindex"}


def make_box(generate, folder, count, seed, prefix):
    """Messages of one seed, as files of a Maildir."""
    made = folder / f"made-{seed}"
    subprocess.run([generate, "mix", made, "--count", str(count), "--seed", str(seed)], check=True,
                   stdout=subprocess.DEVNULL)
    box = folder / "box"
    for name in ("cur", "new", "tmp"):
        (box / name).mkdir(parents=True, exist_ok=True)
    files = sorted(file for file in made.rglob("*") if file.is_file())
    for number, file in enumerate(files):
        file.rename(box / "cur" / f"{prefix}{number:06}.host:2,S")
    shutil.rmtree(made)
    return box


def replace_some(box, count, generate, folder, seed):
    """One message of a hundred goes, and a new one comes in its place."""
    for file in sorted((box / "cur").iterdir())[:max(count // 100, 1)]:
        file.unlink()
    make_box(generate, folder, max(count // 100, 1), seed, f"{seed}-")


def warm(box):
    for file in (box / "cur").iterdir():
        file.read_bytes()


def processor_seconds():
    """Of all processes that have ended so far."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def median(values):
    return statistics.median(values)


def first_index(program):
    """Seconds by the clock and of the processor, and bytes of memory."""
    program.set_up()
    warm(program.box)
    before = processor_seconds()
    seconds, _, peak, code = program.run(program.index(), watches_memory=True)
    if code != 0:
        print(f"{program.name}: ended with {code}", file=sys.stderr)
    return seconds, processor_seconds() - before, peak


def measure_first(programs, options, results):
    figures = {name: [] for name in programs}
    for number in range(options.first_runs):
        for name, program in programs.items():
            print(f"first index {number + 1}: {name}", file=sys.stderr)
            figures[name].append(first_index(program))
    for name, program in programs.items():
        seconds, effort, peak = map(median, zip(*figures[name]))
        results[name]["first index, s"] = seconds
        results[name]["first index, processor s"] = effort
        results[name]["peak memory, MB"] = peak / 1e6
        results[name]["store, MB"] = program.size() / 1e6
    if "naive" in results:
        for name in programs:
            results[name]["first index, of naive's"] = (
                results[name]["first index, s"] / results["naive"]["first index, s"])


def measure_later(program, options, results):
    results["nothing changed, s"] = median(
        [program.run(program.index())[0] for _ in range(options.runs)])
    for name, words in program.queries().items():
        times = []
        for _ in range(options.runs * 2 + 1):
            seconds, output, _, _ = program.run(words)
            times.append(seconds)
        results[f"{name}, ms"] = median(times) * 1e3
        results[f"{name} found"] = len(output.splitlines())


ROWS = ["first index, s", "first index, of naive's", "first index, processor s",
        "nothing changed, s", "1 % changed, s", "store, MB", "peak memory, MB", "word, ms", "phrase, ms",
        "fields, ms", "dates, ms"]


def table(results):
    names = list(results)
    lines = ["| | " + " | ".join(names) + " |", "|---" * (len(names) + 1) + "|"]
    for row in ROWS:
        cells = [f"{results[name][row]:.3g}" if row in results[name] else "none" for name in names]
        lines.append(f"| {row} | " + " | ".join(cells) + " |")
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--ferncase", required=True)
    parser.add_argument("--generate", required=True)
    parser.add_argument("--naive", help="the floor, built from naive_index.cpp")
    parser.add_argument("--count", type=int, default=10_000)
    parser.add_argument("--folder", type=pathlib.Path)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--first-runs", type=int, default=1)
    parser.add_argument("names", nargs="*", default=list(PROGRAMS))
    options = parser.parse_args()
    Ferncase.binary = os.path.abspath(options.ferncase)
    EXECUTABLES["ferncase"] = Ferncase.binary
    EXECUTABLES["naive"] = Naive.binary = os.path.abspath(options.naive or "naive_index")
    names = [name for name in options.names if shutil.which(EXECUTABLES.get(name, name))]
    with tempfile.TemporaryDirectory(dir=options.folder) as place:
        folder = pathlib.Path(place)
        box = make_box(os.path.abspath(options.generate), folder, options.count, 1, "")
        programs = {name: PROGRAMS[name](name, folder, box) for name in names}
        results = {name: {} for name in names}
        measure_first(programs, options, results)
        updated = {name: program for name, program in programs.items() if program.is_updated}
        for name, program in updated.items():
            print(f"measuring {name}", file=sys.stderr)
            measure_later(program, options, results[name])
            print(", ".join(f"{row} {value:.3g}" for row, value in results[name].items()),
                  file=sys.stderr)
        changes = []
        for seed in range(2, 2 + min(options.runs, 3)):
            replace_some(box, options.count, os.path.abspath(options.generate), folder, seed)
            warm(box)
            changes.append({name: program.run(program.index())[0]
                            for name, program in updated.items()})
        for name in updated:
            results[name]["1 % changed, s"] = median([change[name] for change in changes])
        print(table(results))
        for name in names:
            found = {row: number for row, number in results[name].items() if row.endswith("found")}
            print(f"{name}: {found}", file=sys.stderr)


if __name__ == "__main__":
    main()
