#!/usr/bin/env python3
# shellcheck disable=SC1071  # Python
"""clang-tidy over FILE..., of which the build folder BUILD (Ninja) has the commands.

    script/lib/tidy.py BUILD FILE...

Nearly all the time goes into the headers, which every file brings again. So files that are compiled
alike are read as one, a dozen at a time. Files that give the same name to something of their own are
kept apart. Where anything is found, or the text cannot be compiled after all, its halves are read, and
so on: what counts is what is found in a file alone.

What was found to be clean is remembered in ~/.cache/tevron/tidy, by everything that it depends on:
the file, all it includes, its flags, the checks, the version of clang-tidy, this script. What was
changed since it was built, or while it was read, is not remembered: nobody knows what it includes, or
what was read.
"""

import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
import time
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from functools import lru_cache
from pathlib import Path

MOST_FILES = 12
KEPT_DAYS = 30
BEGUN_S = time.time()
CHECKS = Path(".clang-tidy").resolve()
CACHE = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "tevron/tidy"


class Source:
    """A file, how it is compiled, and what clang-tidy's word about it depends on."""

    def __init__(self, path, command, build):
        self.path = path
        self.text = path.read_text()
        words = shlex.split(command)
        output = words.index("-o")
        self.object = os.path.relpath(build / words[output + 1], build)
        # From behind the compiler, and its launcher, to what is this file's alone.
        first = next(i for i, word in enumerate(words) if word.startswith("-"))
        self.flags = words[first:output]

    def names(self):
        """What it declares beside all functions and classes, as clang-format lays it out."""
        declared = re.findall(r"^(?!TEST|(?:using )?namespace|[#}/ ])[^(={;\[\n]*?(?<!:)\b(\w+)(?: ?[(={;\[]| : )",
                              self.text, re.M)
        return set(declared + re.findall(r"^#define (\w+)", self.text, re.M))


@lru_cache(maxsize=None)
def digest(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


def dependencies(build):
    """By object file, what it was made from, as the compiler said."""
    by_object, current = {}, None
    for line in output_of("ninja", "-C", build, "--quiet", "-t", "deps").splitlines():
        if line.startswith("    "):
            current.append(os.path.normpath(build / line.strip()))
        elif ": #deps" in line:
            current = by_object[line.split(":")[0]] = []
    return by_object


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class Marker:
    """The file whose being there says that the source is clean."""

    def __init__(self, source, needed, version):
        self.needed = [CHECKS, *sorted(needed)]
        parts = [version, digest(__file__), str(source.path), *source.flags]
        parts += [f"{path} {digest(path)}" for path in self.needed]
        self.path = CACHE / hashlib.sha256("\n".join(parts).encode()).hexdigest()

    def is_there(self):
        return self.path.exists()

    def set(self):
        if all(os.stat(path).st_mtime < BEGUN_S for path in self.needed):
            self.path.touch()


def marker(source, needed, version, build):
    """None when what the source includes is not known."""
    built = build / source.object
    if not needed or not built.exists():
        return None
    made_s = built.stat().st_mtime
    if any(not Path(path).exists() or os.stat(path).st_mtime > made_s for path in needed):
        return None
    return Marker(source, needed, version)


def remember(clean, markers):
    for source in clean:
        if markers[source] is not None:
            markers[source].set()


def grouped(sources):
    """Those compiled alike, in groups without a name in common, the large ones first."""
    groups = []
    alike = defaultdict(list)
    for source in sources:
        alike[tuple(source.flags)].append(source)
    for same in alike.values():
        open_groups = []
        for source in same:
            if "#include <X11/" in source.text:  # its macros are everybody's words
                groups.append([source])
                continue
            names = source.names()
            for members, taken in open_groups:
                if len(members) < MOST_FILES and not names & taken:
                    members.append(source)
                    taken |= names
                    break
            else:
                open_groups.append(([source], names))
        groups += [members for members, _ in open_groups]
    return sorted(groups, key=len, reverse=True)


def run(arguments, folder):
    done = subprocess.run(["clang-tidy", "--quiet", f"--config-file={CHECKS}", *arguments], cwd=folder,
                          capture_output=True, text=True)
    return done.returncode == 0, done.stdout + re.sub(r"^\d+ warnings? .*\n", "", done.stderr, flags=re.M)


def check(group, build):
    """The sources of the group that are clean, and what is said of the others."""
    if len(group) == 1:
        clean, said = run([str(group[0].path), "--", *group[0].flags], build)
        return (group if clean else []), said
    quoted = [word for source in group for word in ("-iquote", str(source.path.parent))]
    with tempfile.NamedTemporaryFile("w", suffix=".cpp") as together:  # no other run's
        together.write("\n".join(source.text for source in group))
        together.flush()
        # What one file calls a thing of its own hides nothing in another.
        if run([together.name, "--", *group[0].flags, *quoted, "-Wno-shadow"], build)[0]:
            return group, ""
    middle = len(group) // 2
    first, second = check(group[:middle], build), check(group[middle:], build)
    return first[0] + second[0], first[1] + second[1]


def main():
    build = Path(sys.argv[1]).resolve()
    commands = {entry["file"]: entry["command"]
                for entry in json.loads((build / "compile_commands.json").read_text())}
    needed = dependencies(build)
    version = output_of("clang-tidy", "--version")
    markers, ok = {}, True
    for name in sys.argv[2:]:
        path = Path(name).resolve()
        if str(path) not in commands:  # no part of this build: by the flags of what lies beside it
            passed, said = run(["-p", str(build), str(path)], build)
            print(said, end="")
            ok &= passed
            continue
        source = Source(path, commands[str(path)], build)
        markers[source] = marker(source, needed.get(source.object), version, build)
    CACHE.mkdir(parents=True, exist_ok=True)
    for old in CACHE.iterdir():
        if old.stat().st_mtime < time.time() - KEPT_DAYS * 86400:
            old.unlink()
    unknown = [source for source, mark in markers.items() if mark is None or not mark.is_there()]
    clean = set(markers) - set(unknown)
    remember(clean, markers)  # they are still in use
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for found, said in pool.map(lambda group: check(group, build), grouped(unknown)):
            print(said, end="", flush=True)
            remember(found, markers)
            clean.update(found)
    sys.exit(0 if ok and len(clean) == len(markers) else 1)


main()
