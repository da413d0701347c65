"""For the checks' own tests: a small tree of files, written and thrown away."""

import pathlib
import tempfile


class PlantedTree:
    """with PlantedTree({"gps/a.h": "text"}) as root: ..."""

    def __init__(self, files):
        self.files = files

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory()
        root = pathlib.Path(self.folder.name)
        for name, text in self.files.items():
            path = root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        return root

    def __exit__(self, *exception):
        self.folder.cleanup()
