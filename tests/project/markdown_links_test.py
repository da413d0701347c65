import unittest

import markdown_links
from planted_tree import PlantedTree

# (name, text of docs/a.md beside docs/b.md, findings)
ROWS = [
    ("neighbour", "[b](b.md)", 0),
    ("anchor of a neighbour", "[b](b.md#part)", 0),
    ("anchor of the page", "[here](#part)", 0),
    ("web address", "[w](https://example.org/x.md)", 0),
    ("parent folder", "[r](../README.md)", 0),
    ("folder", "[d](../docs)", 0),
    ("missing file", "[c](c.md)", 1),
    ("missing file with anchor", "[c](c.md#part)", 1),
    ("missing picture", "![p](p.png)", 1),
    ("missing reference", "[c]\n\n[c]: c.md", 1),
    ("with a title", '[c](c.md "title")', 1),
    ("inside a code block", "```\n[c](c.md)\n```", 0),
    ("after a code block", "```\n```\n[c](c.md)", 1),
]


class MarkdownLinks(unittest.TestCase):
    def test_each_row_is_judged_right(self):
        for name, text, findings in ROWS:
            files = {"docs/a.md": text, "docs/b.md": "", "README.md": ""}
            with self.subTest(name), PlantedTree(files) as root:
                self.assertEqual(len(markdown_links.check(root)), findings)

    def test_finding_names_page_and_line(self):
        with PlantedTree({"docs/a.md": "```\n\n```\n[c](c.md)"}) as root:
            self.assertTrue(markdown_links.check(root)[0].startswith("docs/a.md:4:"))


if __name__ == "__main__":
    unittest.main()
