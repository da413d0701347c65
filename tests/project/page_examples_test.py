import unittest

import page_examples
from planted_tree import PlantedTree

PROGRAM = {"tests/consumer/A.cpp": "int main() {\n    return 0;\n}\n"}


class PageExamples(unittest.TestCase):
    def findings(self, page):
        with PlantedTree({**PROGRAM, "docs/a.md": page}) as root:
            return page_examples.check(root)

    def test_code_of_the_program_is_accepted(self):
        self.assertEqual(self.findings("text\n\n```cpp\n    return 0;\n```\n"), [])

    def test_other_code_is_found_with_its_line(self):
        found = self.findings("text\n\n```cpp\n    return 1;\n```\n")
        self.assertEqual(len(found), 1)
        self.assertTrue(found[0].startswith("docs/a.md:3:"))

    def test_code_of_other_languages_is_left_alone(self):
        self.assertEqual(self.findings("```sh\nreturn 1\n```\n"), [])


if __name__ == "__main__":
    unittest.main()
