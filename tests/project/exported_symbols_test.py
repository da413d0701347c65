import os
import subprocess
import unittest

import exported_symbols
from planted_tree import PlantedTree

LIBRARY = """
#include <string>
#include <vector>
#define API __attribute__((visibility("default")))
class API Known { public: virtual ~Known(); void Member(const std::string&); int Inline() { return 1; } };
Known::~Known() = default;
void Known::Member(const std::string&) {}
API int Free(int v) { std::vector<int> list(3, v); list.push_back(Known().Inline()); return list.back(); }
int Hidden(int v) { return v + 1; }
"""


def listing(text, *flags):
    compiler = os.environ.get("CXX", "c++")
    with PlantedTree({"a.cpp": text}) as root:
        command = [compiler, "-std=c++20", "-shared", "-fPIC", "-fvisibility=hidden", *flags, str(root / "a.cpp")]
        subprocess.run([*command, "-o", str(root / "a.so")], check=True)
        shown = subprocess.run(["nm", "-DC", "--defined-only", str(root / "a.so")], check=True, capture_output=True,
                               text=True)
        return exported_symbols.exported(shown.stdout)


class ExportedSymbols(unittest.TestCase):
    def test_exported_ones_are_listed_and_hidden_and_inline_ones_are_not(self):
        self.assertEqual(listing(LIBRARY, "-O0"), [
            "Free(int)", "Known::Member(std::string const&)", "Known::~Known()",
            "typeinfo for Known", "typeinfo name for Known", "vtable for Known"])

    def test_list_is_the_same_at_every_level_and_with_sanitizers(self):
        plain = listing(LIBRARY, "-O0")
        for flags in (["-O2"], ["-O3", "-DNDEBUG"], ["-O1", "-g1", "-fsanitize=address,undefined"]):
            with self.subTest(flags):
                self.assertEqual(listing(LIBRARY, *flags), plain)

    def test_both_directions_of_a_difference_are_told(self):
        self.assertEqual(exported_symbols.differences(["A()", "B()"], ["B()", "C()"]), ["gone: A()", "new: C()"])

    def test_a_function_made_visible_is_a_difference(self):
        plain = listing(LIBRARY, "-O1")
        planted = listing(LIBRARY.replace("int Hidden", "API int Hidden"), "-O1")
        self.assertEqual(exported_symbols.differences(plain, planted), ["new: Hidden(int)"])


if __name__ == "__main__":
    unittest.main()
