"""Which folder may include which: a layer sees only what it is built on.

A layer is a folder at the top of the tree or a room below one that has rules of its own; the longest name that fits a
path is its layer.
"""
import tree

LIBRARY = "duilib/include"
PICTURES = "service/pictures"
ALLOWED = {
    "app": {"app", "windows", "suite", LIBRARY},
    "windows": {"windows", "pages", "service", PICTURES, "suite", LIBRARY},
    "pages": {"pages", "service", PICTURES, "preview", "suite", LIBRARY},
    # The settings model hands work to the UI thread through the library's main queue, and checks the user's files
    # with the preview's readers.
    "service": {"service", PICTURES, "preview", "suite", LIBRARY},
    # Pictures know no setting.
    PICTURES: {PICTURES, "preview", "suite"},
    "preview": {"preview", "suite"},
    "duilib": {"duilib", LIBRARY, "suite"},
    "diagnostics": {"diagnostics", "service", "preview", "suite"},
    "setup": {"setup", "suite"},
    "suite": {"suite"},
}
ROOMS = (LIBRARY, PICTURES)


def layer_of(path):
    for room in ROOMS:
        if path.startswith(room + "/"):
            return room
    return path.split("/")[0]


def main():
    breaches = []
    for path in tree.files("*.h", "*.cpp"):
        own = layer_of(path)
        # The library's public headers may see its sources.
        allowed = ALLOWED.get("duilib" if own == LIBRARY else own)
        if allowed is None:
            continue
        for included in tree.includes(path):
            target = layer_of(included)
            if target not in allowed:
                breaches.append(f"{path} includes {included}: {own} may not see {target}")
            if own == "service" and target == LIBRARY and not included.endswith("UIMainQueue.h"):
                breaches.append(f"{path} includes {included}: of the UI library the model may see the main queue only")
    return breaches
