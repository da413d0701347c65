"""What the field book library exports is what the checked-in list says.

Listed are functions and variables with a definition of their own, and the tables and type information of
classes. Left out are weak functions: inline ones and instances of templates, which come and go with the
optimiser. `scripts/update-symbols` writes the list.
"""

import argparse
import pathlib
import re
import subprocess
import sys

# Of the weak ones those that belong to a class; clang's sanitizer adds types of functions, which have parentheses.
CLASS_OBJECT = re.compile(r"^(?:vtable|VTT|typeinfo|typeinfo name) for (?!std::|__gnu_cxx::|__cxxabiv1::)[^()]*$")
SANITIZER = re.compile(r"^__(?:odr_)?[alut]?san|^__odr_asan")


def exported(listing):
    """Sorted demangled names out of what `nm -DC --defined-only` prints."""
    names = set()
    for line in listing.splitlines():
        match = re.match(r"^[0-9a-f]+ (\S) (.*)$", line)
        if not match:
            continue
        kind, name = match.groups()
        name = name.replace("std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >", "std::string")
        if SANITIZER.match(name) or "@" in name:
            continue
        if kind in "TDBRAGSi" or kind in "Vu" and CLASS_OBJECT.match(name):
            names.add(name)
    return sorted(names)


def differences(listed, found):
    """Lines for people: what has gone and what is new."""
    gone = [f"gone: {name}" for name in sorted(set(listed) - set(found))]
    new = [f"new: {name}" for name in sorted(set(found) - set(listed))]
    return gone + new


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("library")
    parser.add_argument("list", type=pathlib.Path)
    parser.add_argument("--write", action="store_true", help="write the list instead of comparing")
    args = parser.parse_args()
    listing = subprocess.run(["nm", "-DC", "--defined-only", args.library], check=True, capture_output=True, text=True)
    found = exported(listing.stdout)
    if not found:
        sys.exit(f"{args.library}: exports nothing; is it a shared library?")
    if args.write:
        args.list.write_text("\n".join(found) + "\n", encoding="utf-8")
        return
    wrong = differences(args.list.read_text(encoding="utf-8").splitlines(), found)
    for line in wrong:
        print(line)
    if wrong:
        sys.exit(f"{len(wrong)} difference(s); when they are meant, run scripts/update-symbols")


if __name__ == "__main__":
    main()
