"""The libraries call nothing that turns a number into text, or text into a number, the way the locale wants it.

Looks at what a built shared library takes from the C and C++ libraries. It sees what a search of the sources
cannot: the type of what goes into a stream, and std::to_string of a double.
"""

import argparse
import re
import subprocess
import sys

FORBIDDEN = re.compile(
    r"^(?:"
    r"(?:strto(?:d|f|ld)|ato[filq]|setlocale|uselocale|newlocale|localeconv)(?:_l)?|"
    r"(?:__)?(?:isoc99_)?v?[sf]?n?(?:printf|scanf)(?:_chk)?|"
    r"std::(?:basic_)?ostream(?:<.*>)?& std::(?:basic_)?ostream(?:<.*>)?::_M_insert<(?:long )?double>\(.*|"
    r"std::(?:basic_)?istream(?:<.*>)?& std::(?:basic_)?istream(?:<.*>)?::_M_extract<(?:(?:long )?double|float)>\(.*|"
    r"std::(?:basic_)?[io]stream(?:<.*>)?::operator(?:<<|>>)\((?:(?:long )?double|float)&?\)|"
    r"std::(?:__cxx11::)?sto(?:d|f|ld)\(.*|"
    r"std::locale::.*"
    r")$"
)


def forbidden(symbols):
    """Those of the demangled undefined symbols that depend on the locale."""
    names = (symbol.split("@")[0].strip() for symbol in symbols)
    return sorted({name for name in names if FORBIDDEN.match(name)})


def undefined_symbols(library):
    listing = subprocess.run(["nm", "-DC", "--undefined-only", library], check=True, capture_output=True, text=True)
    return [line.split(maxsplit=1)[1] for line in listing.stdout.splitlines() if line.strip()]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("library", nargs="+")
    bad = 0
    for library in parser.parse_args().library:
        symbols = undefined_symbols(library)
        if not symbols:
            sys.exit(f"{library}: nm shows no undefined symbol; is it a shared library?")
        for name in forbidden(symbols):
            print(f"{library}: calls {name}; use std::to_chars or std::from_chars")
            bad += 1
    print(f"{bad} finding(s)")
    sys.exit(1 if bad else 0)


if __name__ == "__main__":
    main()
