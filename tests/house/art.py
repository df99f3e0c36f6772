"""Checks the drawings below res/art, the colours of res/themes.xml and what res/art/README.md says of both.

main() returns the breaches as a list of lines. Illustrations have colours of their own; every other drawing holds the
colours of the README's table, each light one with its own dark one.
"""
import re
import xml.etree.ElementTree as ElementTree
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
DARK, CONTRAST = "prefers-color-scheme: dark", "forced-colors: active"
# System colours of a contrast theme, each with the one that it lies on or that lies on it.
PAIRS = {"windowtext": "window", "hotlight": "window", "graytext": "window", "btntext": "btnface",
         "highlighttext": "highlight", "highlight": "highlighttext", "window": "windowtext", "btnface": "btntext"}
LEAST = {"body": 7.0, "text": 4.5, "graphic": 3.0}
# They show what they show in every theme; defaultImg is also stored as a user's picture.
SAME_IN_DARK = {"defaultImg", "ic_cancel_hover", "ic_cancel_pushed", "title_close_hover", "title_close_pushed", "video_icon"}
ILLUSTRATIONS = {"defaultImg", "img_deskora_camera", "img_notora_camera", "intro_background", "intro_eye", "intro_framing"}
CODE_FOLDERS = ("pages", "windows", "service")
PAINT = {"fill", "stroke", "stop-color"}
SVG = "{http://www.w3.org/2000/svg}"


def channels_of(color):
    return [int(color[at:at + 2], 16) / 255 for at in range(len(color) - 6, len(color), 2)]


def luminance(color):
    channels = channels_of(color)
    linear = [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in channels]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(one, other):
    high, low = sorted((luminance(one), luminance(other)), reverse=True)
    return (high + 0.05) / (low + 0.05)


def ground_color(colors, name, theme):
    """A ground as it is seen: a translucent one lies over another."""
    color = colors[name][theme]
    if "over" not in colors[name]:
        return color
    alpha = int(color[1:3], 16) / 255
    below = channels_of(ground_color(colors, colors[name]["over"], theme))
    mixed = [alpha * above + (1 - alpha) * under for above, under in zip(channels_of(color), below)]
    return "#FF" + "".join(f"{round(channel * 255):02X}" for channel in mixed)


def read_themes(path, breaches):
    """Name to the attributes of each colour, name to the system colour of each mask, and the names never mirrored."""
    colors, masks, upright = {}, {}, {}
    kinds = {"Color": (colors, {"light", "dark", "contrast", "kind", "on", "over"}, {"light", "dark", "contrast"}),
             "Mask": (masks, {"contrast"}, {"contrast"}), "Upright": (upright, set(), set())}
    for element in ElementTree.parse(path).getroot():
        attributes = dict(element.attrib)
        name = attributes.pop("name", "")
        target, known, needed = kinds[element.tag]
        if name in target or set(attributes) - known or needed - set(attributes):
            breaches.append(f"themes.xml: {element.tag} {name}: doubled, or not the attributes of its kind")
        target[name] = attributes
        if "contrast" in needed and attributes.get("contrast") not in {*PAIRS, "none"}:
            breaches.append(f"themes.xml: {name}: no colour of the system is called {attributes.get('contrast')}")
        for theme in ("light", "dark") if element.tag == "Color" else ():
            if not re.fullmatch("#[0-9A-F]{8}", attributes.get(theme, "")):
                breaches.append(f"themes.xml: {name}: {theme} is not #AARRGGBB")
    return colors, masks, upright


def check_contrast(colors):
    breaches = []
    for name, color in colors.items():
        if ("kind" in color) != ("on" in color) or color.get("kind", "text") not in LEAST:
            breaches.append(f"themes.xml: {name}: kind is one of {', '.join(LEAST)}, with the grounds in on")
            continue
        for ground in color.get("on", "").split():
            if ground not in colors:
                breaches.append(f"themes.xml: {name}: there is no ground {ground}")
                continue
            for theme in ("light", "dark"):
                ratio = contrast(color[theme], ground_color(colors, ground, theme))
                if ratio < LEAST[color["kind"]]:
                    breaches.append(f"themes.xml: {name} on {ground}, {theme}: {ratio:.2f} to 1 is too little")
            if color["kind"] != "graphic" and PAIRS.get(color["contrast"]) != colors[ground]["contrast"]:
                breaches.append(f"themes.xml: {name} on {ground}: the system's colours are no pair")
    return breaches


def layout_colors(path):
    """(where, attribute, value) of every colour that a layout holds, those of its styles and defaults included."""
    for element in ElementTree.parse(path).iter():
        where = element.get("name", element.tag)
        for attribute, value in element.attrib.items():
            if attribute.endswith("color"):
                yield where, attribute, value
        if element.tag in ("Style", "Default"):
            for attribute, value in re.findall(r"(\w+color)='([^']*)'", element.get("value", "")):
                yield where, attribute, value


def check_layouts(root, colors):
    """Each colour of a layout is a name of themes.xml; layouts and code use each name."""
    breaches = []
    used = set()
    for path in sorted((root / "res" / "layout").glob("*.xml")):
        for where, attribute, value in layout_colors(path):
            used.add(value)
            if value not in colors:
                breaches.append(f"{path.name}: {where}: {attribute} {value} has no name of themes.xml")
    code = "".join(path.read_text(encoding="utf-8") for folder in CODE_FOLDERS for path in (root / folder).rglob("*.cpp"))
    used |= set(re.findall(r'SetAttribute\(L"\w*color", L"(\w+)"\)', code))
    return breaches + [f"themes.xml: nobody uses the colour {name}" for name in sorted(set(colors) - used)]


def check_library(root, colors):
    """The library's own table has the names of themes.xml, with the same light values and colours of the system."""
    text = (root / "duilib" / "src" / "theme" / "ColorTable.cpp").read_text(encoding="utf-8")
    own = {name: (f"#{light}", contrast.lower())
           for name, light, contrast in re.findall(r'\{L"(\w+)", 0x([0-9A-F]{8}), SystemColor::k(\w+)\}', text)}
    there = {name: (color["light"], color["contrast"]) for name, color in colors.items()}
    return [f"ColorTable.cpp: {name} is {own.get(name)}, in themes.xml {there.get(name)}"
            for name in sorted(set(own) | set(there)) if own.get(name) != there.get(name)]


def read_palette(readme):
    """Pairs of a light and a dark colour."""
    return set(re.findall(r"^\| [\w ,-]+ \| `(#[0-9A-F]{6})` \| `(#[0-9A-F]{6})` \|", readme, re.MULTILINE))


def rules(style, query):
    """Class to property to value, of one look of a drawing; None when it has none."""
    block = re.search(r"^ *@media \(" + re.escape(query) + r"\) \{\n(.*?)^    \}$", style, re.MULTILINE | re.DOTALL)
    if not block:
        return None
    found = {}
    for line in block[1].splitlines():
        rule = re.fullmatch(r" *\.([\w-]+) \{ (.*) \}", line)
        found[rule[1] if rule else line] = dict(part.split(": ") for part in rule[2].split("; ")) if rule else {}
    return found


def is_shown(element, rule):
    return rule.get("display", element.get("display")) != "none"


def check_drawing(path, palette):
    name = path.stem
    root = ElementTree.parse(path).getroot()
    style = "".join(element.text or "" for element in root.iter(SVG + "style"))
    dark, masked = rules(style, DARK), rules(style, CONTRAST)
    breaches = []
    if style.count("@media") != (dark is not None) + (masked is not None):
        breaches.append("an @media that render-art does not know")
    if (dark is None) != (name in SAME_IN_DARK):
        breaches.append("a dark look, or a place among those that need none")
    if (masked is None) != (name in ILLUSTRATIONS):
        breaches.append("a mask, or a place among the illustrations")
    for look in (dark or {}, masked or {}):
        classes = {element.get("class") for element in root.iter()}
        breaches += [f"no element is of class {each}" for each in look if each not in classes]
    plain = {light for light, _ in palette}
    for element in root.iter():
        for paint in PAINT & set(element.attrib):
            light = element.get(paint)
            if not light.startswith("#"):
                continue
            rule = (masked or {}).get(element.get("class"), {})
            if masked is not None and is_shown(element, rule) and rule.get(paint, light) not in ("#FFFFFF", "#000000"):
                breaches.append(f"{paint} {light} is neither white nor black in its mask")
            if name in ILLUSTRATIONS:
                continue
            rule = (dark or {}).get(element.get("class"), {})
            if dark is None and light not in plain:
                breaches.append(f"{paint} {light} is no colour of the README")
            elif dark is not None and is_shown(element, rule) and (light, rule.get(paint, light)) not in palette:
                breaches.append(f"{paint} {light} and {rule.get(paint, light)} are no light and dark colour of the README")
    return [f"{path.name}: {what}" for what in breaches]


def main(root=ROOT):
    breaches = []
    colors, masks, upright = read_themes(root / "res" / "themes.xml", breaches)
    if breaches:
        return breaches
    breaches += check_contrast(colors)
    breaches += check_layouts(root, colors)
    breaches += check_library(root, colors)
    palette = read_palette((root / "res" / "art" / "README.md").read_text(encoding="utf-8"))
    drawings = sorted((root / "res" / "art" / "LumiCamera").glob("*.svg"))
    for path in drawings:
        breaches += check_drawing(path, palette)
    names = {path.stem for path in drawings}
    breaches += [f"themes.xml: {name} has no drawing" for name in sorted((set(masks) | set(upright)) - names)]
    breaches += [f"themes.xml: the mask of {name} has no colour" for name in sorted(names - ILLUSTRATIONS - set(masks))]
    texts = "".join(path.read_text(encoding="utf-8") for path in sorted((root / "res" / "layout").glob("*.xml")))
    for folder in CODE_FOLDERS:
        texts += "".join(path.read_text(encoding="utf-8") for path in sorted((root / folder).rglob("*.cpp")))
    used = Counter(re.findall(r"LumiCamera[/\\]+([\w@]+)\.png", texts))
    breaches += [f"{name}.svg: no layout and no code shows it" for name in sorted(names - set(used))]
    return breaches
