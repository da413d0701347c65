"""Every link of a page to a file of the project leads somewhere."""

import os
import pathlib
import re

import source_tree

LINK = re.compile(r"\[[^\]]*\]\(\s*<?([^)\s>]+)>?[^)]*\)|^\s*\[[^\]]+\]:\s*(\S+)", re.M)
FENCE = re.compile(r"^[ \t]*(```|~~~).*?^[ \t]*\1[ \t]*$", re.M | re.S)
NOT_SEARCHED = {".git", "build", "dist"}


def pages(root):
    for folder, names, files in os.walk(root):
        names[:] = sorted(n for n in names if n not in NOT_SEARCHED and not n.startswith("build-"))
        yield from (pathlib.Path(folder) / name for name in sorted(files) if name.endswith(".md"))


def blank(match):
    return "\n" * match.group(0).count("\n")


def check(root: pathlib.Path):
    findings = []
    for page in pages(root):
        text = FENCE.sub(blank, page.read_text(encoding="utf-8"))
        for found in LINK.finditer(text):
            target = found.group(1) or found.group(2)
            if re.match(r"[a-z][a-z0-9+.-]*:", target, re.I) or target.startswith("#"):
                continue
            name = target.split("#")[0]
            place = root / name[1:] if name.startswith("/") else page.parent / name
            if not place.exists():
                line = text.count("\n", 0, found.start()) + 1
                findings.append(f"{page.relative_to(root)}:{line}: {target} does not exist")
    return findings


if __name__ == "__main__":
    source_tree.main(check, __doc__)
