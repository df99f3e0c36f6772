"""Which folder may include which: a layer sees only what it is built on."""
import tree

LIBRARY = "duilib/include"
ALLOWED = {
    "app": {"app", "windows", "suite", LIBRARY},
    "windows": {"windows", "pages", "service", "suite", LIBRARY},
    "pages": {"pages", "service", "preview", "suite", LIBRARY},
    # The settings model hands work to the UI thread through the library's main queue, and checks the user's files
    # with the preview's readers.
    "service": {"service", "preview", "suite", LIBRARY},
    "preview": {"preview", "suite"},
    "duilib": {"duilib", LIBRARY, "suite"},
    "diagnostics": {"diagnostics", "service", "preview", "suite"},
    "setup": {"setup", "suite"},
    "suite": {"suite"},
}


def layer_of(path):
    return LIBRARY if path.startswith(LIBRARY + "/") else path.split("/")[0]


def main():
    breaches = []
    for path in tree.files("*.h", "*.cpp"):
        own = path.split("/")[0]
        if own not in ALLOWED:
            continue
        for included in tree.includes(path):
            target = layer_of(included)
            if target not in ALLOWED[own] and target != layer_of(path):
                breaches.append(f"{path} includes {included}: {own} may not see {target}")
            if own == "service" and target == LIBRARY and not included.endswith("UIMainQueue.h"):
                breaches.append(f"{path} includes {included}: of the UI library the model may see the main queue only")
    return breaches
