"""Which folder may include which: a layer sees only what it is built on.

A layer is a folder at the top of the tree or a room below one that has rules of its own; the longest name that fits a
path is its layer.
"""
import tree

LIBRARY = "duilib/include"
LINK = "service/link"
PICTURES = "service/pictures"
PIXELS = "preview/pixels"
ALLOWED = {
    "app": {"app", "windows", "suite", LIBRARY},
    "windows": {"windows", "pages", "service", LINK, PICTURES, "suite", LIBRARY},
    "pages": {"pages", "service", PICTURES, "preview", "suite", LIBRARY},
    # The settings model hands work to the UI thread through the library's main queue, and checks the user's files
    # with the preview's readers.
    "service": {"service", LINK, PICTURES, "preview", "suite", LIBRARY},
    # The link to the camera service and the pictures know no setting.
    LINK: {LINK, "suite"},
    PICTURES: {PICTURES, "preview", PIXELS, "suite"},
    "preview": {"preview", PIXELS, "suite"},
    # Arithmetic alone.
    PIXELS: {PIXELS},
    "duilib": {"duilib", LIBRARY, "suite"},
    "diagnostics": {"diagnostics", "service", LINK, "preview", "suite"},
    "setup": {"setup", "suite"},
    "suite": {"suite"},
}
ROOMS = (LIBRARY, LINK, PICTURES, PIXELS)

# The rooms of the UI library, what each may see. A public header belongs to the room that its class is written in, but
# for PaintManagerUI.h: controls call their window through it, so it is declared with them and written in the window.
UI_ROOMS = {
    "markup": set(),
    "theme": {"markup"},
    "text": {"markup", "theme"},
    "paint": {"markup", "theme", "text"},
    "layout": {"markup", "theme", "text", "paint"},
    "controls": {"markup", "theme", "text", "paint", "layout"},
    "accessibility": {"layout"},
    "window": {"markup", "theme", "text", "paint", "layout", "controls", "accessibility"},
}
UI_PUBLIC = {
    None: ("Color", "Export", "Geometry"),
    "theme": ("SystemLook", "Theme"),
    "text": ("FontSpec", "UICulture"),
    "layout": ("ContainerUI", "ControlUI", "Event", "Layouts", "Notify", "PaintManagerUI"),
    "controls": ("ButtonUI", "LabelUI", "OptionUI", "ProgressUI", "SliderUI", "TextUI"),
    "window": ("DialogBuilder", "NotifyPump", "RenderEngine", "UIMainQueue", "WindowImplBase", "WindowWnd"),
}


def room_of(path):
    """The room of a file of the UI library; None for what all rooms see, and for files from elsewhere."""
    if path.startswith("duilib/src/"):
        return path.split("/")[2]
    if path.startswith(LIBRARY + "/"):
        name = path.split("/")[-1][:-2]
        return next(room for room, names in UI_PUBLIC.items() if name in names)
    return None


def room_breaches(path):
    own = room_of(path)
    if own is None:
        return []
    others = {(included, room_of(included)) for included in tree.includes(path)}
    return [f"{path} includes {included}: the room {own} may not see {room}"
            for included, room in sorted(others, key=str) if room not in UI_ROOMS[own] | {own, None}]


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
        breaches += room_breaches(path)
        for included in tree.includes(path):
            target = layer_of(included)
            if target not in allowed:
                breaches.append(f"{path} includes {included}: {own} may not see {target}")
            if own == "service" and target == LIBRARY and not included.endswith("UIMainQueue.h"):
                breaches.append(f"{path} includes {included}: of the UI library the model may see the main queue only")
    return breaches
