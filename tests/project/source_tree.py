"""What the checks share: the sources of a tree, and how a check reports."""

import argparse
import pathlib
import re
import sys

SOURCE_SUFFIXES = {".h", ".hpp", ".cpp"}


def sources(root, folders):
    """Paths of the C++ files below the given folders of `root`, in order."""
    for folder in folders:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in SOURCE_SUFFIXES and path.is_file():
                yield path


_COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/|("(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\')', re.S)


def without_comments(text):
    """The text with comments blanked out, literals and line numbers as they were."""
    return _COMMENT.sub(lambda m: m.group(1) or "\n" * m.group(0).count("\n") or " ", text)


def main(check, description):
    """Runs check(root) -> list of findings over the tree named on the command line."""
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("root", type=pathlib.Path, help="folder of the project")
    findings = check(parser.parse_args().root.resolve())
    for finding in findings:
        print(finding)
    print(f"{len(findings)} finding(s)")
    sys.exit(1 if findings else 0)
