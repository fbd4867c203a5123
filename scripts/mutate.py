#!/usr/bin/env python3
"""Changes the library one token at a time and reports which changes no test notices.

Looks at the C++ lines of AppTools that were added since a revision, uncommitted ones included. Each
mutant is built and tested, then the file is put back as it was. One that does not build does not
count; one that survives the tests shows what they do not check, or code that makes no difference.

The build folder must be configured: cmake --preset dev. If it is configured with
-DORVANT_WARNINGS_AS_ERRORS=OFF, mutants with warnings count, too.
"""

import argparse
import contextlib
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
from typing import NamedTuple

ROOT = pathlib.Path(__file__).resolve().parent.parent

TOKEN = re.compile(
    r"""(?P<skipped> //.* | /\*[\s\S]*?\*/ | ^[ \t]*\#.*       # comments, directives
                   | R"([^(]*)\([\s\S]*?\)\2"                  # raw strings
                   | "(?:\\.|[^"\\])*" | '(?:\\.|[^'\\])*')    # strings, characters
      | (?P<statement> ^[ \t]*(?!return\b|throw\b)[\w:>.\[\]-]+\((?: .* | [^;{}]* )\);$)
      | (?P<number> \d[\w.']*)
      | (?P<word> \w+)
      | (?P<operator> <=> | ->\*? | <<=? | >>=? | \+\+ | -- | && | \|\| | [=!<>+\-*/%&|^]= | \S)""",
    re.VERBOSE | re.MULTILINE)

OPERATORS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">",
             "&&": "||", "||": "&&", "+": "-", "-": "+", "+=": "-=", "-=": "+=",
             "++": "--", "--": "++", "!": ""}
WORDS = {"true": "false", "false": "true", "break": "continue", "continue": "break"}
# Where no blanks are around these, they are brackets of a template or part of a type.
BINARY = {"<", ">", "&&"}


class Mutant(NamedTuple):
    """A file with another text in one place."""
    path: pathlib.Path
    start: int
    end: int
    replacement: str
    description: str

    def text(self, original):
        return original[:self.start] + self.replacement + original[self.end:]


def git(*arguments):
    return subprocess.run(["git", *arguments], cwd=ROOT, check=True, text=True,
                          stdout=subprocess.PIPE).stdout


def added_lines(base, files):
    """Returns the numbers of the lines that were added since a revision, by path."""
    paths = files or ["AppTools/*.cpp", "AppTools/*.h"]
    added = {}
    for line in git("diff", "-U0", "--no-color", "--no-ext-diff", "--no-renames",
                    "--diff-filter=AM", base, "--", *paths).splitlines():
        if line.startswith("+++ b/"):
            numbers = added.setdefault(line[len("+++ b/"):], set())
        elif hunk := re.match(r"@@ -\S+ \+(\d+)(?:,(\d+))? @@", line):
            first, count = int(hunk[1]), int(hunk[2] or 1)
            numbers.update(range(first, first + count))
    for name in git("ls-files", "--others", "--exclude-standard", "--", *paths).splitlines():
        added[name] = set(range(1, len((ROOT / name).read_text("utf-8").splitlines()) + 1))
    return {ROOT / name: numbers for name, numbers in added.items()
            if name.startswith("AppTools/") and name.endswith((".cpp", ".h"))}


def replacement(token, text):
    """Returns what a token becomes, or None when it stays."""
    kind, old = token.lastgroup, token.group()
    if kind == "word":
        return WORDS.get(old)
    if kind == "number":
        number = re.fullmatch(r"(\d+)([uUlLzZ]*)", old)
        return number and str(int(number[1]) + 1) + number[2]
    if kind == "operator":
        around = text[token.start() - 1] + text[token.end():token.end() + 1]
        return None if old in BINARY and around.strip() else OPERATORS.get(old)
    return None


def mutants_of(path, lines):
    text = path.read_text(encoding="utf-8")
    position = 0
    while token := TOKEN.search(text, position):
        position = token.end()
        old = token.group().lstrip()
        start = position - len(old)
        line = text.count("\n", 0, start) + 1
        code = text.splitlines()[line - 1].strip()
        if token.lastgroup == "statement":
            # What comes on a line after another end is the rest of a statement.
            new = "{}" if text[:start].rstrip().endswith((";", "{", "}", ")", "else", ":")) else None
            change = f"without {code}"
            position = start + re.match(r"[\w:]+", old).end()  # Its own tokens are next.
        else:
            new = replacement(token, text)
            change = f"{old} to {new or 'nothing'} in {code}"
        if line in lines and new is not None:
            where = f"{path.relative_to(ROOT)}:{line}"
            yield Mutant(path, start, start + len(old), new, f"{where}: {change}")


@contextlib.contextmanager
def applied(mutant):
    """The mutant is in the file until this is left, in whatever way."""
    original = mutant.path.read_bytes()
    try:
        mutant.path.write_bytes(mutant.text(original.decode()).encode())
        yield
    finally:
        mutant.path.write_bytes(original)


def succeeds(command, limit):
    """Returns whether a command succeeds in so many seconds; ends all that it started."""
    with subprocess.Popen(command, cwd=ROOT, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          start_new_session=True) as process:
        try:
            return process.wait(limit) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", nargs="*", metavar="FILE",
                        help="look at these files alone, as git names them")
    parser.add_argument("--base", default="HEAD", metavar="REV",
                        help="take lines added since this revision (default: HEAD)")
    parser.add_argument("--most", type=int, metavar="N",
                        help="stop after so many mutants that build, in random order")
    parser.add_argument("--seed", type=int, default=1, help="for another choice (default: 1)")
    parser.add_argument("--build", default="build/dev", metavar="FOLDER",
                        help="where to build (default: build/dev)")
    parser.add_argument("--tests", default=".", metavar="REGEX",
                        help="names of the tests to run (default: all)")
    parser.add_argument("--limit", type=int, default=600, metavar="SECONDS",
                        help="time for the tests; a mutant that takes longer is noticed "
                             "(default: 600)")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    # As Ctrl-C does, so that the file is put back.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("Terminated"))

    build = ["cmake", "--build", arguments.build]
    test = ["ctest", "--test-dir", arguments.build, "-R", arguments.tests, "--no-tests=error",
            "--stop-on-failure", "-j", str(os.cpu_count())]
    mutants = [mutant for path, lines in added_lines(arguments.base, arguments.files).items()
               for mutant in mutants_of(path, lines)]
    if arguments.most is not None:
        random.Random(arguments.seed).shuffle(mutants)
    if not mutants:
        sys.exit("No line to change was added")
    if not succeeds(build, None) or not succeeds(test, arguments.limit):
        sys.exit("Without a change, the build or the tests fail")

    built = 0
    survivors = []
    for mutant in mutants:
        if built == arguments.most:
            break
        with applied(mutant):
            if not succeeds(build, None):
                verdict = "does not build"
            else:
                built += 1
                survived = succeeds(test, arguments.limit)
                verdict = "SURVIVED" if survived else "noticed"
                if survived:
                    survivors.append(mutant.description)
        print(f"{verdict:16}{mutant.description}", flush=True)
    succeeds(build, None)  # The last mutant is not left in the libraries.

    print(f"\nOf {built} mutants, {len(survivors)} survived", *survivors, sep="\n  ")
    return 1 if survivors else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit("Interrupted")
