import os
import subprocess
import unittest

import number_symbols
from planted_tree import PlantedTree

HEAD = "#include <charconv>\n#include <cstdio>\n#include <cstdlib>\n#include <locale>\n#include <sstream>\n#include <string>\n"

# (name, function body, whether it must be found)
ROWS = [
    ("double into a stream", "void f(std::ostream& o, double v) { o << v; }", True),
    ("float into a stream", "void f(std::ostream& o, float v) { o << v; }", True),
    ("double out of a stream", "void f(std::istream& i, double& v) { i >> v; }", True),
    ("to_string of a double", "std::string f(double v) { return std::to_string(v); }", True),
    ("stod", "double f(const std::string& s) { return std::stod(s); }", True),
    ("strtod", "double f(const char* s) { return strtod(s, nullptr); }", True),
    ("snprintf", 'void f(char* t, double v) { snprintf(t, 9, "%g", v); }', True),
    ("locale of a stream", 'void f(std::ostream& o) { o.imbue(std::locale("")); }', True),
    ("text into a stream", 'void f(std::ostream& o) { o << "text"; }', False),
    ("to_chars", "void f(char* a, char* b, double v) { std::to_chars(a, b, v); }", False),
    ("from_chars", "void f(char* a, char* b, double& v) { std::from_chars(a, b, v); }", False),
    ("to_string of a long", "std::string f(long v) { return std::to_string(v); }", False),
]


class NumberSymbols(unittest.TestCase):
    def test_each_row_is_judged_right(self):
        compiler = os.environ.get("CXX", "c++")
        for name, body, found in ROWS:
            with self.subTest(name), PlantedTree({"a.cpp": HEAD + body}) as root:
                library = str(root / "a.so")
                subprocess.run([compiler, "-std=c++20", "-O1", "-shared", "-fPIC", str(root / "a.cpp"), "-o", library],
                               check=True)
                symbols = number_symbols.undefined_symbols(library)
                self.assertEqual(bool(number_symbols.forbidden(symbols)), found, symbols)


if __name__ == "__main__":
    unittest.main()
