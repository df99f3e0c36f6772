"""The attribute lists in the comments of the UI library's classes are those of its attribute tables."""
import re

import tree

# Where a table's attributes are listed: a control's in the comment of its class, or of the file that holds it alone;
# those of <Window> and <Font> in the description of layout files.
LAYOUT_FILES = "duilib/include/DuiLib/DialogBuilder.h"
ELEMENTS = {"WindowSpec": re.compile(r"<Window> root with the attributes of WindowSpec \((.*?)\)", re.S),
            "FontElement": re.compile(r"<Font (.*?)/>", re.S)}

TABLE = re.compile(r"AttributeEntry<(\w+)>\s+k\w*Table\[\]\s*=\s*\{(.*?)\};", re.S)
ENTRY = re.compile(r'\{L"(\w+)"')
CLASS = re.compile(r"^class DUILIB_API (\w+)", re.M)
LISTED = re.compile(r"^//   (\w+(?:, \w+)*): ", re.M)
COMMENT = re.compile(r"(?:^//.*\n)+", re.M)


def tables():
    """{class: set of names} of every attribute table."""
    found = {}
    for path in tree.files("duilib/src/*.cpp"):
        for name, body in TABLE.findall(tree.read(path)):
            found.setdefault(name, set()).update(ENTRY.findall(body))
    return found


def names_in(comment):
    return {name for group in LISTED.findall(comment) for name in group.split(", ")}


def lists():
    """{class: set of names} as the comments have them."""
    found = {}
    for path in tree.files("duilib/include/DuiLib/*.h"):
        text = tree.read(path)
        classes = list(CLASS.finditer(text))
        for match in classes:
            own = [c for c in COMMENT.finditer(text) if c.end() == match.start()]
            comment = own[0].group() if own else ""
            if len(classes) == 1:
                comment += COMMENT.search(text).group()
            found[match.group(1)] = names_in(comment)
    text = re.sub(r"^// ?", "", tree.read(LAYOUT_FILES), flags=re.M)
    for name, pattern in ELEMENTS.items():
        # "size="w,h", minsize" and "id="13" face=""".
        described = re.sub(r'"[^"]*"', "", pattern.search(text).group(1))
        found[name] = set(re.findall(r"\w+", described))
    return found


def main():
    known, told = tables(), lists()
    breaches = []
    for name in sorted(known.keys() | told.keys()):
        for attribute in sorted(known.get(name, set()) - told.get(name, set())):
            breaches.append(f"{name}: the attribute {attribute} is not in its comment")
        for attribute in sorted(told.get(name, set()) - known.get(name, set())):
            breaches.append(f"{name}: its comment has an attribute {attribute}, its table does not")
    if len(known) < 10:
        breaches.append(f"only {len(known)} attribute tables found")
    return breaches
