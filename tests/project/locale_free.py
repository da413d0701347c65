"""No source of the product reads or writes a number the way the locale wants it.

Numbers in text go through std::to_chars, std::from_chars or fmt. What cannot be seen in a source, a double
given to a stream, number_symbols.py finds in the libraries.
"""

import pathlib
import re

import source_tree

FOLDERS = ["platform", "gps", "host", "apps"]

RULES = [
    (re.compile(r"\b(?:strto(?:d|f|ld)|ato(?:f|i|l|ll)|wcsto(?:d|f|ld))\s*\("), "reads in the locale: use std::from_chars"),
    (re.compile(r"\bstd\s*::\s*sto(?:d|f|ld)\b"), "reads in the locale: use std::from_chars"),
    (re.compile(r"\b(?:setlocale|uselocale|newlocale|localeconv)\b"), "touches the locale"),
    (re.compile(r"\bimbue\s*\(|\bstd\s*::\s*locale\b"), "touches the locale of a stream"),
    (re.compile(r"\b(?:std\s*::\s*)?v?(?:sn?|f|d|as)?printf\s*\("), "writes in the locale: use std::to_chars or fmt::format"),
    (re.compile(r"\b(?:std\s*::\s*)?v?(?:s|f)?scanf\s*\("), "reads in the locale: use std::from_chars"),
    (re.compile(r"\bstd\s*::\s*(?:setprecision|fixed|scientific|defaultfloat|hexfloat)\b(?!\s*\()"
                r"|\bstd\s*::\s*setprecision\s*\(|[.>]\s*precision\s*\("),
     "formats a double of a stream: use std::to_chars or fmt::format"),
    (re.compile(r"\{[^{}\"\n]*:[^{}\"\n]*L[a-zA-Z]?\}"), "fmt's L asks the locale"),
]


def check(root: pathlib.Path):
    findings = []
    for source in source_tree.sources(root, FOLDERS):
        text = source_tree.without_comments(source.read_text(encoding="utf-8"))
        for rule, reason in RULES:
            for found in rule.finditer(text):
                line = text.count("\n", 0, found.start()) + 1
                findings.append(f"{source.relative_to(root)}:{line}: {found.group(0).strip()} {reason}")
    return findings


if __name__ == "__main__":
    source_tree.main(check, __doc__)
