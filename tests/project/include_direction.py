"""Every include goes in the direction that the folders allow.

A folder may include itself, what its row of ALLOWED names, and the standard library; third-party headers are
for host/ and apps/ only.
"""

import pathlib
import re

import source_tree

HOST = ["host/base", "host/entity", "host/coord", "host/cad", "host/os"]
GPS = ["gps/options", "gps/model", "gps/coords", "gps/persist", "gps/cloud"]  # each may include those before it

# Folder -> folders (or single headers) that it may include.
ALLOWED = {"platform": ["platform"]}
ALLOWED |= {folder: ["platform", "gps/GpsExport.h"] + GPS[: i + 1] for i, folder in enumerate(GPS)}
ALLOWED |= {"gps": ["platform", "gps"]}  # files of gps/ itself
ALLOWED |= {folder: ["platform"] + HOST for folder in HOST}
ALLOWED |= {"host/project": ["gps", "platform", "host/project"] + HOST}
ALLOWED |= {"host/cloud": ["gps", "platform", "host/project", "host/cloud"] + HOST}
ALLOWED |= {"apps": ["apps", "gps", "platform", "host"]}

THIRD_PARTY = ("host", "apps")

STANDARD = set(
    """
    algorithm any array atomic barrier bit bitset charconv chrono codecvt compare complex concepts
    condition_variable coroutine deque exception execution filesystem format forward_list fstream functional
    future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
    memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator
    semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string
    string_view strstream syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map
    unordered_set utility valarray variant vector version
    cassert cctype cerrno cfenv cfloat cinttypes climits clocale cmath csetjmp csignal cstdarg cstddef cstdint
    cstdio cstdlib cstring ctime cuchar cwchar cwctype
    """.split()
)

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]+)"|<([^>]+)>)', re.M)


def within(path, place):
    return path == place or path.startswith(place + "/")


def row_of(path):
    """The row of ALLOWED for a file: the longest folder that holds it; None when no row does."""
    rows = [folder for folder in ALLOWED if within(path, folder)]
    row = max(rows, key=len, default=None)
    return None if row == "gps" and path.count("/") > 1 else row


def wrong(row, quoted, angled):
    """Why a file of the row may not have this include; None when it may."""
    if angled:
        if angled in STANDARD or row.split("/")[0] in THIRD_PARTY:
            return None
        return f"<{angled}> is not a header of the standard library; {row}/ includes nothing else"
    if any(within(quoted, place) for place in ALLOWED[row]):
        return None
    return f'"{quoted}" may not be included from {row}/, only {", ".join(ALLOWED[row])}'


def check(root: pathlib.Path):
    findings = []
    for source in source_tree.sources(root, ["platform", "gps", "host", "apps"]):
        path = source.relative_to(root).as_posix()
        row = row_of(path)
        if row is None:
            findings.append(f"{path}: folder is in no row of the table; add it to ALLOWED")
            continue
        text = source.read_text(encoding="utf-8")
        for found in INCLUDE.finditer(text):
            line = text.count("\n", 0, found.start()) + 1
            reason = wrong(row, found.group(1), found.group(2))
            if reason:
                findings.append(f"{path}:{line}: {reason}")
    return findings


if __name__ == "__main__":
    source_tree.main(check, __doc__)
