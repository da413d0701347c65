"""Uses the library as somebody outside its tree does. Every step ends with an error when something does not work.

install       the build into a folder of its own, moved afterwards: nothing may depend on where it stood
find_package  builds and runs the consumer against it through CMake
pkg_config    the same with the compiler alone and pkg-config
other_host    builds and runs a host with a platform of its own; then installs the library for that host and
              builds and runs the consumer against the two
"""

import argparse
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

# The fix of the consumer's point, brought to EPSG:32633 by cs2cs; the height is 62 - 2 m.
EXPECTED = "403380.4989 5055908.9822 60.0000"


def run(*command, **options):
    print("+", *command, flush=True)
    return subprocess.run([str(part) for part in command], check=True, text=True, **options)


def fresh(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


def expect_point(program, **options):
    printed = run(program, stdout=subprocess.PIPE, **options).stdout.strip()
    if printed != EXPECTED:
        sys.exit(f"{program} printed '{printed}', not '{EXPECTED}'")


def configure_and_build(args, source, folder, *options):
    flags = [f"-DCMAKE_CXX_COMPILER={args.compiler}", f"-DCMAKE_CXX_FLAGS={args.flags}", "-DCMAKE_BUILD_TYPE=Debug"]
    run("cmake", "-S", source, "-B", folder, "-G", "Ninja", *flags, *options)
    run("cmake", "--build", folder)


def installed(args):
    return args.work / "installed"


def install(args):
    staged = args.work / "staged"
    shutil.rmtree(staged, ignore_errors=True)
    shutil.rmtree(installed(args), ignore_errors=True)
    run("cmake", "--install", args.build, "--prefix", staged, stdout=subprocess.DEVNULL)
    staged.rename(installed(args))
    headers = installed(args) / "include/gps-survey"
    for header in ("gps/model/CPunGps.h", "platform/base/GpsValues.h"):
        if not (headers / header).is_file():
            sys.exit(f"{headers / header} was not installed")
    expect_usable_headers(args, headers)
    if args.program:
        expect_stations(args)


def expect_usable_headers(args, headers):
    """What a header includes is installed, too, and what it declares is exported."""
    included = {path.relative_to(headers).as_posix(): re.findall(r'^#include "(gps/.+)"', path.read_text(), re.M)
                for path in headers.glob("gps/**/*.h")}
    needed = {name for names in included.values() for name in names}
    if missing := sorted(needed - included.keys()):
        sys.exit(f"{missing} are included, and were not installed")
    for header in sorted(included.keys() - needed):
        source = args.source / header
        if source.with_suffix(".cpp").is_file() and "GPS_API" not in source.read_text():
            sys.exit(f"{header} was installed, though what its source defines is not exported")


def expect_stations(args):
    """The installed program finds the installed catalogue, though both have been moved."""
    program = installed(args) / "bin/gpsbook"
    environment = {name: value for name, value in os.environ.items() if name != "GPS_SURVEY_STATIONS"}
    environment["GPS_SURVEY_SETTINGS"] = str(args.work / "settings/settings.ini")
    environment["LD_LIBRARY_PATH"] = str(next(installed(args).rglob("libgps-survey.so")).parent)
    told = run(program, "stations", "check", "--json", env=environment, stdout=subprocess.PIPE).stdout
    files = [pathlib.Path(file["file"]).resolve() for file in json.loads(told)["files"]]
    expected = (installed(args) / "share/gps-survey/stations.csv").resolve()
    if files != [expected]:
        sys.exit(f"the catalogue is {files}, not {expected}")


def find_package(args):
    folder = fresh(args.work / "find_package")
    configure_and_build(args, args.source / "tests/consumer", folder, f"-DCMAKE_PREFIX_PATH={installed(args)}")
    expect_point(folder / "first_book")


def pkg_config(args):
    folder = fresh(args.work / "pkg_config")
    pages = [str(path.parent) for path in installed(args).rglob("gps-survey.pc")]
    environment = {**os.environ, "PKG_CONFIG_PATH": ":".join(pages)}
    flags = run("pkg-config", "--cflags", "--libs", "gps-survey", env=environment, stdout=subprocess.PIPE).stdout.split()
    program = folder / "first_book"
    run(args.compiler, "-std=c++20", *args.flags.split(), args.source / "tests/consumer/FirstBook.cpp", *flags,
        "-o", program)
    libraries = next(flag[2:] for flag in flags if flag.startswith("-L"))
    expect_point(program, env={**os.environ, "LD_LIBRARY_PATH": libraries})


def other_host(args):
    host = fresh(args.work / "other_host")
    configure_and_build(args, args.source / "tests/project/otherhost", host, f"-DGPS_SURVEY_SOURCE={args.source}")
    run(host / "other_host")

    library, prefix = fresh(args.work / "other_library"), fresh(args.work / "other_installed")
    configure_and_build(args, args.source, library, "-DGPS_PLATFORM_TARGET=OtherHost::platform",
                        "-DGPS_PLATFORM_PACKAGE=OtherHost", f"-DCMAKE_PREFIX_PATH={host}")
    run("cmake", "--install", library, "--prefix", prefix, stdout=subprocess.DEVNULL)
    if (prefix / "include/gps-survey/platform").exists() or list(prefix.rglob("*gps_host*")):
        sys.exit("the open host or the headers of platform/ were installed for a host with its own")
    consumer = fresh(args.work / "other_consumer")
    configure_and_build(args, args.source / "tests/consumer", consumer, f"-DCMAKE_PREFIX_PATH={prefix};{host}")
    expect_point(consumer / "first_book")


def main():
    steps = {"install": install, "find_package": find_package, "pkg_config": pkg_config, "other_host": other_host}
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("step", choices=steps)
    parser.add_argument("--source", type=pathlib.Path, required=True, help="folder of the project")
    parser.add_argument("--build", type=pathlib.Path, required=True, help="its build folder")
    parser.add_argument("--work", type=pathlib.Path, required=True, help="folder for what is made here")
    parser.add_argument("--program", action="store_true", help="gpsbook is built and installed, too")
    parser.add_argument("--compiler", default="c++")
    parser.add_argument("--flags", default="", help="flags for what is compiled here")
    args = parser.parse_args()
    args.work.mkdir(parents=True, exist_ok=True)
    try:
        steps[args.step](args)
    except subprocess.CalledProcessError as error:
        sys.exit(f"failed ({error.returncode}): {' '.join(map(str, error.cmd))}")


if __name__ == "__main__":
    main()
