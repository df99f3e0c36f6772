"""The list of languages, res/values/languages.txt."""
from collections import namedtuple

Language = namedtuple("Language", "direction installer quotes")


def read(root):
    """Folder to Language, in the order of the file; the first is the source."""
    lines = (root / "res" / "values" / "languages.txt").read_text(encoding="utf-8").splitlines()
    rows = [line.split() for line in lines if line.strip() and not line.startswith("#")]
    return {row[0]: Language(*row[1:]) for row in rows}
