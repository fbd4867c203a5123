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
IN_PLACE, REPLACE, MERGE = MODES
FIRST_MERGE = f"{LIBRARY}, first Merge after a load"
DOM = "XercesDOMParser, parsing only"
SET_BACK = "KConfig, a value set and set back"
MIDDLE = "1000x20"
WALL = "wall ms"

# The library's targets: two figures of one measurement to divide, and the limit, or None where the
# ratio is only for information.
LOAD = ("Load", LIBRARY, MIDDLE)
ONE_BY_ONE = f"{LIBRARY}, one by one"
OBJECTS = "Load, a tenth of the objects overridden"
SAVE = "Save one changed value"
FLUSHED = f"{SAVE} to the disk"
UNCHANGED = "Save without a change"
OPEN = "Memory held by the open system file"
READ = "Read a declared setting, a million times"
DECLARATION = "Memory of a declaration"
SCHEMA = "Schema of so many types"
PRUNED = f"{LIBRARY}, write without what was filtered"
TARGETS = [
    ("load 1,000 × 20, against XercesDOMParser parsing the same two files",
     LOAD, ("Load", DOM, MIDDLE), 0.35),
    ("the same, against KConfig", LOAD, ("Load", "KConfig", MIDDLE), 1.0),
    ("the same, against QSettings", LOAD, ("Load", "QSettings", MIDDLE), 0.6),
    ("the same, against Boost.PropertyTree", LOAD, ("Load", "Boost.PropertyTree", MIDDLE), 0.4),
    ("load 1,000 × 20, a tenth of the objects overridden, against XercesDOMParser",
     (OBJECTS, LIBRARY, MIDDLE), (OBJECTS, DOM, MIDDLE), 0.28),
    ("the same, against QSettings",
     (OBJECTS, LIBRARY, MIDDLE), (OBJECTS, "QSettings", MIDDLE), 0.55),
    ("register 60 × 15 one by one, against the batch",
     ("Load", ONE_BY_ONE, "60x15"), ("Load", LIBRARY, "60x15"), 2.5),
    ("register 1,000 × 20 one by one, against the batch", ("Load", ONE_BY_ONE, MIDDLE), LOAD, 25),
    ("save one changed value of 1,000 × 20 by `InPlace`, against KConfig's sync of one changed entry",
     (SAVE, IN_PLACE, MIDDLE), (SAVE, "KConfig", MIDDLE), 5),
    ("the same by `Merge`, after the first save",
     (SAVE, MERGE, MIDDLE), (SAVE, "KConfig", MIDDLE), 3),
    ("the same by `Merge`, first save after a load",
     (SAVE, FIRST_MERGE, MIDDLE), (SAVE, "KConfig", MIDDLE), None),
    *((f"the same by `{mode}`, wall time, {flushing}", (FLUSHED, f"{LIBRARY}, {mode}", MIDDLE, WALL),
       (FLUSHED, "KConfig", MIDDLE, WALL), limit)
      for mode, flushing, limit in (("Replace", "both flushing to the disk", 1.5),
                                    ("Merge", "both flushing to the disk", 1.5),
                                    ("InPlace", "only KConfig flushing to the disk", None))),
    ("save 1,000 × 20 without a change by `Merge`, after the first save, against KConfig's sync"
     " without a change",
     (UNCHANGED, MERGE, MIDDLE), (UNCHANGED, "KConfig", MIDDLE), 3),
    ("the same, first save after a load",
     (UNCHANGED, FIRST_MERGE, MIDDLE), (UNCHANGED, "KConfig", MIDDLE), None),
    ("the same, after the first save, against KConfig's sync of an entry set and set back",
     (UNCHANGED, MERGE, MIDDLE), (UNCHANGED, SET_BACK, MIDDLE), None),
    ("memory held by an open reader, against the Xerces DOM of the same file",
     (OPEN, LIBRARY, MIDDLE), (OPEN, "XercesDOMParser", MIDDLE), 0.4),
    ("read a declared number, against reading a member",
     (READ, LIBRARY, "1000000"), (READ, "a member", "1000000"), 2),
    ("allocations of a declaration, against one by hand",
     (DECLARATION, LIBRARY, "1x5"), (DECLARATION, "by hand", "1x5"), 1),
    ("read a schema of 2,000 types, against XercesDOMParser parsing the file",
     (SCHEMA, f"{LIBRARY}, read", "2000"), (SCHEMA, DOM, "2000"), None),
    ("write it without what was filtered, against the same",
     (SCHEMA, PRUNED, "2000"), (SCHEMA, DOM, "2000"), 3),
]
GROWTH_LIMIT = 12
GROWTH_TARGET = "load objects of 20 values"

HEAD = """# Performance

Written by `scripts/benchmark.sh`, which compares this library with others that applications keep their
settings with, in one process and on the same generated settings: a system file and a user file that
overrides a tenth of it, each of so many objects × so many values, the seven types in turn. The tenth is
some values of each object, except where a table says otherwise.

Times are medians of the processor time in milliseconds, with the files in memory, except where a table
says otherwise. A figure in parentheses is this library's divided by the one before it, one for each mode
of saving where there are several: below 1, this library takes less. Only figures of the same run are
comparable.

- *Load*: from nothing to typed values of both layers; the library's objects are made, registered
  in one batch and loaded. *One by one*, a call of its own registers and loads each. INI files for
  KConfig and QSettings, XML for the others. QSettings, Boost.PropertyTree and pugixml do not layer: the
  benchmark asks the user's file, then the system's.
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
  file instead.
- *Save without a change*: `InPlace` and `Replace` write the file again. `Merge` finds out that no object
  has changed. QSettings looks whether the file has. KConfig does nothing at all, unless something was set:
  in a row of its own, a value is set and set back.
- *Read a declared setting*: a `Setting<double>`, beside a plain member and what the application would
  write without it. *Declare*: objects of five values, with `Setting` and by hand.
- *Open and check*: whether the user's file could be loaded. KConfig skips what it does not understand,
  and is left out.
- *Memory*: what the whole process takes from the heap.
- *Schema*: seven complex types, then three enumerations, and so on; the figure in parentheses is
  that of reading. Reading and writing rewrite the file's prefixes. Filtering keeps half of the types;
  pruning takes what is optional out of one type after the other, by a call for each. All of these but
  writing end with a query. What was filtered is cut out of the file by `writePrunedXSD()`, which parses it
  for that; *as any schema*: by `readAnyXSD()`.
- *Growth*: in parentheses, what an operation cannot do without, for comparison.
"""

NOTES = """
## Where the time goes

Counted in millions of instructions (callgrind, 1,000 × 20), which are the same in every run:

| Load | 181 | | Save one changed value by `InPlace` | 211 | | by `Merge` | 239 |
|---|---|---|---|---|---|---|---|
| Xerces scans both files, the trees are filled | 108 | | the user's file becomes a DOM | 59 | | the same | 44 |
| the application makes its objects | 19 | | fresh objects with the system's values | 27 | | the same | 27 |
| values of both layers are read | 18 | | comparing, deleting and making elements | 92 | | each object is written, in full and what differs | 110 |
| copies with the system's values, and back | 24 | | the DOM becomes text, and a file | 23 | | the same | 17 |

- **Load against the DOM parse** (548): 0.32 of its instructions. In time it is 0.34 to 0.35 when these
  two are measured by themselves, and more in the mix of all, presumably because of the state of the heap
  after the others.
- **Load against QSettings and Boost.PropertyTree** (246 and 211): scanning, which Xerces does with more
  care than the others, and making the objects take more than the 84 that 0.4 of Boost.PropertyTree
  allows. The 148 that 0.6 of QSettings allows would be within reach without the copy of each object that
  the locks are restored from: the application's class makes it, and decides what belongs to it.
- **Save against KConfig** (26): KConfig knows which entry was changed and merges that into the user's
  file. Here a save reads the system file as it is now (it is parsed only if its bytes have changed), lets
  each object decide, by a fresh object that holds the reference, what goes into the user's file, and keeps
  what other programs wrote there. To come nearer, changes would have to be noted in the values instead of
  found by comparing, and the file edited as text. Then an object that overrides how it is saved would be
  ignored: that is too high a price.
- **A save without a change against KConfig**: its `sync` returns at once as long as nothing was set: no
  object is looked at, and no file. Here a value does not tell that it was set; `Merge` compares what each
  object would write with what it wrote before. KConfig's `sync` of a value that was set and set back,
  which also reads and writes, is the nearest thing to compare with.
- **`Merge` against `InPlace`**: every object is written in full, to find out whether it changed: what a
  class writes is up to its own saving, so nothing less tells. The first save after a load (391) also
  writes each object as it was loaded; later saves know what was written.
- **Growth**: getKeys returns a sorted set, whose time grows with n log n. Look-ups by as many names grow
  less than those in a `std::unordered_set`, and edits by as many names grow like Xerces' own parse of
  them. Where schemas are filtered and asked, instructions grow 11.6 and 11.3 times; the rest is memory:
  50,000 types are far beyond the caches. Pruning type by type looks through the types for each name, which
  takes longer the more there are: 9 µs a call with 2,000 types.
"""


def times(run):
    """The wall time counts where it has the wait for the disk in it."""
    if run["run_name"].endswith("/real_time"):
        return {"processor ms": run["cpu_time"], WALL: run["real_time"]}
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


def figure(results, key):
    """The figure of a subject, contestant and size; a fourth item tells which of several."""
    figures = results[key[:3]]
    return figures[key[3]] if len(key) > 3 else next(iter(figures.values()))


def verdict(value, limit):
    if limit is None:
        return ""
    return "reached" if value <= limit else "**not reached**"


def targets(results, growths):
    rows = [(text, figure(results, mine) / figure(results, theirs), limit)
            for text, mine, theirs, limit in TARGETS]
    rows.append(("time for 10 times the objects", growths[GROWTH_TARGET], GROWTH_LIMIT))
    worst = max(growths, key=growths.get)
    rows.append((f"time for 10 times the input, of all; most: {worst}", growths[worst],
                 GROWTH_LIMIT))
    print("\n## Targets\n")
    table(["", "at most", "is", ""],
          [[text, "" if limit is None else str(limit), number(value), verdict(value, limit)]
           for text, value, limit in rows])


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
