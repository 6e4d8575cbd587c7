"""What bench/run and bench/check share: the places, the tools, the programs, the counting."""
import os
import pathlib
import re
import subprocess
import sys

BENCH = pathlib.Path(__file__).resolve().parent
ROOT = BENCH.parent
WORK = ROOT / "build" / "bench"  # programs, images and built helpers
KORV = ROOT / "build" / "release" / "korv"
SHAPES = ("plain", "dense")


def say(text):
    """Progress: not part of the table, so not on standard output."""
    print(text, file=sys.stderr, flush=True)


def do(*command, **options):
    """Runs a step that must succeed, its output kept apart from the table."""
    subprocess.run(command, check=True, stdout=sys.stderr, **options)


def require(tools):
    """Installs the Debian packages whose program is missing; `tools` maps program to package."""
    do(ROOT / "tools" / "install", *(f"{tool}={package}" for tool, package in tools.items()))


def release_build():
    """The release build of korv, made if there is none. One that is there is taken as it is."""
    if not KORV.exists():
        do(ROOT / "tools" / "build", "release")
    built = KORV.stat().st_mtime
    newer = [path for path in (ROOT / "src").rglob("*.*") if path.stat().st_mtime > built]
    if newer:
        say(f"note: {KORV} is older than {newer[0].name}; to bring it up to date: "
            "tools/build release")
    return KORV


def built(helper):
    """The helper program of that name, made anew; it may use the headers of korv."""
    WORK.mkdir(parents=True, exist_ok=True)
    do("g++", "-O2", "-std=c++20", "-static", f"-I{ROOT / 'src'}", "-o", WORK / helper,
       BENCH / f"{helper}.cpp")
    return WORK / helper


def source(lines, shape):
    """The generated program, in WORK."""
    WORK.mkdir(parents=True, exist_ok=True)
    path = WORK / f"{shape}{lines}.asm"
    with open(path, "wb") as output:
        command = [BENCH / "generate", str(lines), "--shape", shape]
        subprocess.run(command, check=True, stdout=output)
    return path


def instructions(command):
    """Instructions that a program executes, those of the kernel not among them.

    The environment is empty but for the path: the C library looks at each variable.
    """
    clean = {"PATH": os.environ["PATH"]}
    valgrind = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"]
    result = subprocess.run([*valgrind, *command], cwd=WORK, env=clean, capture_output=True)
    found = re.search(rb"Collected : (\d+)", result.stderr)
    if not found:
        sys.exit(f"valgrind gave no count for {command}\n{result.stderr.decode()}")
    return int(found[1])
