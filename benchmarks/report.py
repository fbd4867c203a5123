#!/usr/bin/env python3
"""Turns the results of the benchmarks into docs/performance.md.

usage: report.py RESULTS.json >performance.md
"""

import json
import platform
import statistics
import sys

LIBRARY = "this library"
LEAST = 0.01  # what takes less did nothing: not to be compared with
MODES = [f"{LIBRARY}, {mode}" for mode in ("InPlace", "Replace", "Merge")]
DOM = "XercesDOMParser, parsing only"
MIDDLE = "1000x20"

# The library's targets: two figures of one measurement to divide, and the limit.
LOAD = ("Load", LIBRARY, MIDDLE)
SAVE = "Save one changed value"
OPEN = "Memory held by the open system file"
TARGETS = [
    ("load 1,000 × 20, against XercesDOMParser parsing the same two files",
     LOAD, ("Load", DOM, MIDDLE), 0.35),
    ("the same, against KConfig", LOAD, ("Load", "KConfig", MIDDLE), 1.0),
    ("the same, against QSettings", LOAD, ("Load", "QSettings", MIDDLE), 0.6),
    ("the same, against Boost.PropertyTree", LOAD, ("Load", "Boost.PropertyTree", MIDDLE), 0.4),
    ("save one changed value of 1,000 × 20, against KConfig's sync of one changed entry",
     (SAVE, MODES[0], MIDDLE), (SAVE, "KConfig", MIDDLE), 1.5),
    ("memory held by an open reader, against the Xerces DOM of the same file",
     (OPEN, LIBRARY, MIDDLE), (OPEN, "XercesDOMParser", MIDDLE), 0.4),
]
GROWTH_LIMIT = 12
GROWTH_TARGET = "load objects of 20 values"

HEAD = """# Performance

Written by `scripts/benchmark.sh`, which compares this library with others that applications keep their
settings with, in one process and on the same generated settings: a system file and a user file that
overrides a tenth of it, each of so many objects × so many values, the seven types in turn.

Times are medians of the processor time in milliseconds, with the files in memory, except where a table
says otherwise. A figure in parentheses is this library's divided by the one before it, one for each mode
of saving where there are several: below 1, this library takes less. Only figures of the same run are
comparable.

- *Load*: from nothing to typed values of both layers; the library's objects are made, registered
  in one batch and loaded. INI files for KConfig and QSettings, XML for the others. QSettings,
  Boost.PropertyTree and pugixml do not layer: the benchmark asks the user's file, then the system's.
- *Save*: into the user's file, from settings that are loaded. The library compares with the system
  file, which it reads for that; `Merge` also reads the user's file anew. KConfig and QSettings merge
  into what the file holds by then. Boost.PropertyTree and pugixml keep the user's document and write it
  whole, over the file. The first save is not counted, except in a row of its own for `Merge`, which
  then has to find out what the objects were when they were loaded. After each benchmark, the file is
  loaded anew and has to hold what was set.
- *Save to the disk*: the same with the files on one, as processor time and as wall time, until the save
  has returned. `InPlace` writes over the file and does not wait for the disk. All others write a new
  file, flush it and rename it over the old one. `Replace` and `Merge` also flush the directory, so that
  the new name is on the disk, too; KConfig and QSettings, as they are by default, flush their lock's
  file instead. Without a change, `InPlace` and `Replace` write the file again; the others write nothing.
- *Open and check*: whether the user's file could be loaded. KConfig skips what it does not understand,
  and is left out.
- *Memory*: what the whole process takes from the heap.
- *Schema*: seven complex types, then three enumerations, and so on; the figure in parentheses is
  that of reading. Reading and writing rewrite the file's prefixes. Filtering keeps half of the types.
- *Growth*: in parentheses, what an operation cannot do without, for comparison.
"""

NOTES = """
## Where the time goes

Counted in millions of instructions (callgrind, 1,000 × 20), which are the same in every run:

| Load | 174 | | Save one changed value | 318 |
|---|---|---|---|---|
| Xerces scans both files | 74 | | Xerces scans the system file, the tree is filled | 87 |
| the tree is filled and freed | 27 | | the user's file becomes a DOM | 52 |
| the application makes its objects | 19 | | fresh objects with the system's values, twice | 69 |
| values of both layers are read | 21 | | comparing, deleting and making elements | 80 |
| copies with the system's values, and back | 30 | | the DOM becomes text, and a file | 28 |

- **Load against the DOM parse** (548): 0.32 of its instructions. In time it is 0.34 to 0.35 when these
  two are measured by themselves, and more in the mix of all, presumably because of the state of the heap
  after the others.
- **Load against QSettings and Boost.PropertyTree** (246 and 211): scanning, which Xerces does with more
  care than the others, and making the objects take more than the 84 that 0.4 of Boost.PropertyTree
  allows. The 148 that 0.6 of QSettings allows would be within reach without the copy of each object that
  the locks are restored from: the application's class makes it, and decides what belongs to it.
- **Save against KConfig** (26): KConfig knows which entry was changed and merges that into the user's
  file. Here a save reads the system file as it is now, lets each object decide, by a fresh object that
  holds the reference, what goes into the user's file, and keeps what other programs wrote there. To come
  near, the system file would have to be kept between saves, changes noted in the values instead of found
  by comparing, and the file edited as text. Then an object that overrides how it is saved, or a system
  file that changes meanwhile, would be ignored: that is too high a price.
- **The first `Merge` after a load against `InPlace`** (1,959): every object is written in full, as it is
  and as it was loaded, 835 each, nearly all of it in Xerces' DOM. What a class writes is up to its own
  saving, so nothing less tells what has changed. Later saves know what was written and write once.
- **Growth**: getKeys returns a sorted set, whose time grows with n log n. Look-ups by as many names grow
  less than those in a `std::unordered_set`, and edits by as many names grow like Xerces' own parse of
  them. In the two rows of schemas, instructions grow 11.6 and 11.3 times; the rest is memory: 50,000
  types are far beyond the caches.
"""


def times(run):
    """The wall time counts where it has the wait for the disk in it."""
    if run["run_name"].endswith("/real_time"):
        return {"processor ms": run["cpu_time"], "wall ms": run["real_time"]}
    return {"ms": run["cpu_time"]}


def read(file):
    """The results by (subject, contestant, size): a dictionary of medians by what was counted."""
    with open(file, encoding="utf-8") as text:
        results = json.load(text)
    samples = {}
    # In the program's order, which the mixed run does not keep.
    for run in sorted(results["benchmarks"], key=lambda run: run["family_index"]):
        if run.get("error_occurred"):
            sys.exit(f"{run['name']}: {run['error_message']}")
        if run["run_type"] != "iteration":
            continue
        counters = {name: value for name, value in run.items() if " " in name}
        figures = samples.setdefault(tuple(run["run_name"].split("/")[:3]), {})
        for name, value in (counters or times(run)).items():
            figures.setdefault(name, []).append(value)
    medians = {key: {name: statistics.median(values) for name, values in figures.items()}
               for key, figures in samples.items()}
    return results["context"], medians


def number(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.3g}"


def table(header, rows):
    for row in [header, ["---"] * len(header), *rows]:
        print("| " + " | ".join(row) + " |")


def machine(context):
    with open("/proc/cpuinfo", encoding="utf-8") as lines:
        models = [line.split(":")[1].strip() for line in lines if line.startswith("model name")]
    versions = [f"{name.removeprefix('version of ')} {version}"
                for name, version in context.items() if name.startswith("version of ")]
    print("\nMeasured on", f"{models[0] if models else platform.machine()},",
          f"{context['num_cpus']} cores, {platform.freedesktop_os_release()['PRETTY_NAME']},",
          f"built as {context['build type']} with\n" + ", ".join(versions) + ".")


def ratio(mine, theirs):
    return next(iter(mine.values())) / next(iter(theirs.values()))


def verdict(value, limit):
    return "reached" if value <= limit else "**not reached**"


def targets(results, growths):
    rows = [(text, ratio(results[mine], results[theirs]), limit)
            for text, mine, theirs, limit in TARGETS]
    rows.append(("time for 10 times the objects", growths[GROWTH_TARGET], GROWTH_LIMIT))
    worst = max(growths, key=growths.get)
    rows.append((f"time for 10 times the input, of all; most: {worst}", growths[worst],
                 GROWTH_LIMIT))
    print("\n## Targets\n")
    table(["", "at most", "is", ""],
          [[text, str(limit), number(value), verdict(value, limit)] for text, value, limit in rows])


def comparison(subject, counted, results):
    """Contestants below each other, sizes side by side."""
    of_subject = {key[1:]: figures[counted] for key, figures in results.items()
                  if key[0] == subject}
    sizes = list(dict.fromkeys(size for _, size in of_subject))
    contestants = list(dict.fromkeys(name for name, _ in of_subject))
    compared = [name for name in contestants if name in MODES] or contestants[:1]
    rows = []
    for contestant in contestants:
        row = [contestant]
        for size in sizes:
            value = of_subject.get((contestant, size))
            ratios = "" if value is None or value < LEAST or contestant.startswith(LIBRARY) else \
                f" ({', '.join(number(of_subject[mine, size] / value) for mine in compared)})"
            row.append("" if value is None else number(value) + ratios)
        rows.append(row)
    print(f"\n## {subject}, {counted}\n")
    table([""] + [" × ".join(f"{int(count):,}" for count in size.split("x")) for size in sizes],
          rows)


def growth(results):
    """Returns the factors between the times of each operation on an input and on one ten times as
    large, and the rows of their table. What is in parentheses is for comparison, and has a row only.
    """
    times = {}
    for (subject, what, size), figures in results.items():
        if subject == "Growth":
            times.setdefault(what, {})[int(size)] = figures["ms"]
    rows = []
    factors = {}
    for what, by_size in times.items():
        (size, time), (_, tenfold) = sorted(by_size.items())
        row = [what, f"{size:,}", number(time), number(tenfold), number(tenfold / time)]
        if not what.startswith("("):
            factors[what] = tenfold / time
            row.append(verdict(factors[what], GROWTH_LIMIT))
        rows.append(row + [""] * (6 - len(row)))
    return factors, rows


def main():
    context, results = read(sys.argv[1])
    factors, growth_rows = growth(results)
    print(HEAD, end="")
    machine(context)
    targets(results, factors)
    subjects = {(key[0], counted): None for key, figures in results.items()
                for counted in figures if key[0] != "Growth"}
    for subject, counted in subjects:
        comparison(subject, counted, results)
    print("\n## Growth, ms\n")
    table(["", "of", "time", "of 10 times as many", "factor", f"at most {GROWTH_LIMIT}"], growth_rows)
    print(NOTES, end="")


main()
