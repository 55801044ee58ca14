"""Compiles every header alone: what it uses, it includes."""

import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys


def flags_by_folder(build):
    """For every folder that has sources their different compile commands, without input and output."""
    result = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["file"])
        folder = source.parent
        if source.suffix != ".cpp" or build.resolve() in source.resolve().parents:
            continue
        words = shlex.split(entry["command"])
        if os.path.basename(words[0]) == "ccache":
            words = words[1:]
        output = words.index("-o")
        dependencies = [words[i + 1] for i, word in enumerate(words) if word in ("-MT", "-MF")]
        command = [word for word in words[:output] + words[output + 2:]
                   if word not in ("-c", "-MD", "-MT", "-MF", entry["file"], *dependencies)]
        if command not in result.setdefault(folder, []):
            result[folder].append(command)
    return result


def nearest_flags(flags, header):
    for folder in header.parents:
        if folder in flags:
            return flags[folder]
        for known in sorted(flags):
            if folder in known.parents and folder.name not in ("src", "tests"):
                return flags[known]
    return None


def proven_by_the_build(header):
    """True when the source file beside it includes it before anything else."""
    source = header.with_suffix(".cpp")
    if not source.exists():
        return False
    includes = re.findall(r'^#include ["<](.*)[">]', source.read_text(), re.MULTILINE)
    return bool(includes) and (header.parent / pathlib.Path(includes[0]).name) == header and \
        str(header).endswith(includes[0])


def check(flags, header):
    commands = nearest_flags(flags, header)
    if commands is None:
        return f"{header}: no source file beside it tells how to compile it"
    # A folder of two targets: the header belongs to one of them.
    for command in commands:
        done = subprocess.run(command + ["-fsyntax-only", "-x", "c++", "-"], input=f'#include "{header}"\n',
                              capture_output=True, text=True)
        if done.returncode == 0:
            return None
    errors = [line for line in done.stderr.splitlines() if "error" in line]
    return "\n".join(errors[:4] or [done.stderr])


def main():
    build = pathlib.Path(sys.argv[1])
    root = pathlib.Path.cwd()
    flags = flags_by_folder(build)
    headers = sorted(path for place in ("src", "tests", "bench") for path in (root / place).rglob("*.h"))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        alone = [header for header in headers if not proven_by_the_build(header)]
        failures = [failure for failure in pool.map(lambda header: check(flags, header), alone) if failure]
    for failure in failures:
        print(failure, file=sys.stderr)
    print(f"check-headers: {len(headers) - len(failures)} of {len(headers)} headers compile alone")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
