import unittest

import locale_free
from planted_tree import PlantedTree

# (name, line, findings)
ROWS = [
    ("strtod", "double v = strtod(text, &end);", 1),
    ("atof of std", "double v = std::atof(text);", 1),
    ("std::stod", "double v = std::stod(text);", 1),
    ("setlocale", 'setlocale(LC_ALL, "");', 1),
    ("snprintf", 'std::snprintf(text, 20, "%.3f", v);', 1),
    ("fprintf", 'fprintf(stderr, "%g", v);', 1),
    ("sscanf", 'sscanf(text, "%lf", &v);', 1),
    ("setprecision", "out << std::setprecision(3) << v;", 1),
    ("std::fixed", "out << std::fixed << v;", 1),
    ("precision of a stream", "out.precision(3);", 1),
    ("imbue", "out.imbue(loc);", 1),
    ("fmt with L", 'fmt::format("{:.3Lf}", v);', 1),
    ("to_chars", "std::to_chars(a, b, v, std::chars_format::fixed, 4);", 0),
    ("from_chars", "std::from_chars(a, b, v);", 0),
    ("fmt", 'fmt::format("{:.4f}", v); fmt::print("{}", v);', 0),
    ("in a comment", "// not strtod( here", 0),
    ("in a block comment", "/* strtod( \n setlocale */", 0),
    ("after a text with slashes", 'f("http://x"); strtod(a, b);', 1),
    ("enumerator named fixed", "Quality::fixed", 0),
    ("names that only end alike", "my_strtod2 = reprintf2;", 0),
]


class LocaleFree(unittest.TestCase):
    def test_each_row_is_judged_right(self):
        for name, line, findings in ROWS:
            with self.subTest(name), PlantedTree({"gps/model/A.cpp": line + "\n"}) as root:
                self.assertEqual(len(locale_free.check(root)), findings)

    def test_every_folder_of_the_product_is_searched(self):
        for folder in ("platform", "gps/model", "host/coord", "apps/gpsbook"):
            with self.subTest(folder), PlantedTree({f"{folder}/A.h": "\nstrtod(a, b)\n"}) as root:
                self.assertTrue(locale_free.check(root)[0].startswith(f"{folder}/A.h:2:"))


if __name__ == "__main__":
    unittest.main()
