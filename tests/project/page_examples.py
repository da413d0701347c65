"""Every piece of C++ that a page shows stands like that in the consumer program, which the tests build and run."""

import pathlib
import re

import markdown_links
import source_tree

BLOCK = re.compile(r"^```cpp\n(.*?)^```", re.M | re.S)


def check(root: pathlib.Path):
    programs = [path.read_text(encoding="utf-8") for path in source_tree.sources(root, ["tests/consumer"])]
    findings = []
    for page in markdown_links.pages(root):
        text = page.read_text(encoding="utf-8")
        for block in BLOCK.finditer(text):
            if not any(block.group(1) in program for program in programs):
                line = text.count("\n", 0, block.start()) + 1
                findings.append(f"{page.relative_to(root)}:{line}: this code is in no program of tests/consumer")
    return findings


if __name__ == "__main__":
    source_tree.main(check, __doc__)
