"""What bench/run, bench/check and bench/server share: folders, tools, programs, counting."""
import pathlib
import re
import shutil
import subprocess
import sys

BENCH = pathlib.Path(__file__).resolve().parent
ROOT = BENCH.parent
WORK = ROOT / "build" / "bench"  # programs, images and built helpers
SHAPES = ("plain", "dense")


def say(text):
    """Prints progress on standard error, since it is not part of the table."""
    print(text, file=sys.stderr, flush=True)


def do(*command, **options):
    """Runs a step that must succeed. Its output does not go into the table."""
    subprocess.run(command, check=True, stdout=sys.stderr, **options)


def require(tools):
    """Installs the Debian packages of missing programs; `tools` maps each program to its package."""
    do(ROOT / "tools" / "install", *(f"{tool}={package}" for tool, package in tools.items()))


def made_by(preset, pattern):
    """The file that tools/build makes for a preset. It is built if it is missing, but not if it is out of date."""
    if not list(ROOT.glob(pattern)):
        do(ROOT / "tools" / "build", preset)
    path, = ROOT.glob(pattern)
    built = path.stat().st_mtime
    newer = [file for file in (ROOT / "src").rglob("*.*") if file.stat().st_mtime > built]
    if newer:
        say(f"note: {path} is older than {newer[0].name}; to bring it up to date: tools/build {preset}")
    return path


def release_build():
    return made_by("release", "build/release/korv")


def packaged_programs():
    """The folder with the programs as the .deb installs them."""
    folder = WORK / "package"
    shutil.rmtree(folder, ignore_errors=True)
    WORK.mkdir(parents=True, exist_ok=True)
    do("dpkg-deb", "-x", made_by("package", "build/package/korv_*.deb"), folder)
    return folder / "usr" / "bin"


def built(helper):
    """Builds the program `helper`, which may use the headers of korv."""
    WORK.mkdir(parents=True, exist_ok=True)
    do("g++", "-O2", "-std=c++20", "-static", f"-I{ROOT / 'src'}", "-o", WORK / helper,
       BENCH / f"{helper}.cpp")
    return WORK / helper


def source(lines, shape):
    """Generates a program in WORK."""
    WORK.mkdir(parents=True, exist_ok=True)
    path = WORK / f"{shape}{lines}.asm"
    with open(path, "wb") as output:
        command = [BENCH / "generate", str(lines), "--shape", shape]
        subprocess.run(command, check=True, stdout=output)
    return path


def counted(command, folder=WORK):
    """The number of instructions that a program executes outside the kernel, and its standard error output.

    The program runs in `folder`, with an empty environment, since the C library reads each variable.
    """
    valgrind = [shutil.which("valgrind"), "--tool=callgrind", "--callgrind-out-file=/dev/null"]
    command = [shutil.which(command[0]), *command[1:]]
    result = subprocess.run([*valgrind, *command], cwd=folder, env={}, capture_output=True)
    found = re.search(rb"Collected : (\d+)", result.stderr)
    if not found:
        sys.exit(f"valgrind gave no count for {command}\n{result.stderr.decode()}")
    return int(found[1]), result.stderr
