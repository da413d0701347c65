import unittest

import include_direction
from planted_tree import PlantedTree

# (name, file, its include line, allowed)
ROWS = [
    ("standard header in platform", "platform/base/A.h", "#include <vector>", True),
    ("platform in platform", "platform/base/A.h", '#include "platform/entity/B.h"', True),
    ("gps in platform", "platform/base/A.h", '#include "gps/model/B.h"', False),
    ("third party in platform", "platform/base/A.h", "#include <proj.h>", False),
    ("c header in gps", "gps/model/A.cpp", "#include <cmath>", True),
    ("old c header in gps", "gps/model/A.cpp", "#include <math.h>", False),
    ("third party in gps", "gps/coords/A.cpp", "#include <fmt/format.h>", False),
    ("export header in options", "gps/options/A.h", '#include "gps/GpsExport.h"', True),
    ("earlier folder of gps", "gps/coords/A.cpp", '#include "gps/model/B.h"', True),
    ("own folder of gps", "gps/coords/A.cpp", '#include "gps/coords/B.h"', True),
    ("later folder of gps", "gps/model/A.cpp", '#include "gps/coords/B.h"', False),
    ("persist in cloud", "gps/cloud/A.cpp", '#include "gps/persist/B.h"', True),
    ("cloud in persist", "gps/persist/A.cpp", '#include "gps/cloud/B.h"', False),
    ("host in gps", "gps/model/A.cpp", '#include "host/base/B.h"', False),
    ("third party in host", "host/coord/A.cpp", "#include <proj.h>", True),
    ("host among the five", "host/coord/A.cpp", '#include "host/base/B.h"', True),
    ("gps in host", "host/coord/A.cpp", '#include "gps/model/B.h"', False),
    ("project in host", "host/base/A.cpp", '#include "host/project/B.h"', False),
    ("gps in project", "host/project/A.cpp", '#include "gps/model/B.h"', True),
    ("cloud in project", "host/project/A.cpp", '#include "host/cloud/B.h"', False),
    ("project in cloud", "host/cloud/A.cpp", '#include "host/project/B.h"', True),
    ("anything in apps", "apps/gpsbook/A.cpp", '#include "host/cloud/B.h"', True),
    ("tests in apps", "apps/gpsbook/A.cpp", '#include "tests/B.h"', False),
    ("neighbour without its folder", "gps/model/A.cpp", '#include "B.h"', False),
    ("indented directive", "gps/model/A.cpp", '  #  include "host/base/B.h"', False),
    ("folder of gps without a row", "gps/extra/A.cpp", "", False),
    ("folder of host without a row", "host/extra/A.cpp", "", False),
]


class IncludeDirection(unittest.TestCase):
    def test_each_row_is_judged_right(self):
        for name, path, line, allowed in ROWS:
            with self.subTest(name), PlantedTree({path: f"// text\n{line}\n"}) as root:
                self.assertEqual(not include_direction.check(root), allowed)

    def test_finding_names_file_and_line(self):
        with PlantedTree({"gps/model/A.cpp": '\n#include "host/base/B.h"\n'}) as root:
            self.assertIn("gps/model/A.cpp:2:", include_direction.check(root)[0])


if __name__ == "__main__":
    unittest.main()
