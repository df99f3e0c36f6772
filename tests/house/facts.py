"""Facts that stand in one table, and the places that have to say the same: effects (service/EffectTable.h), backgrounds
(service/FeatureTables.h), settings values (service/SettingNames.h), messages (service/link/ServiceMessages.h), languages
(res/values/languages.txt); and the pictures that layouts name.

The program itself goes by the tables; installer, scripts, demo, layouts and documents cannot, so they are compared.
"""
import re
import xml.etree.ElementTree as ElementTree
from collections import namedtuple
from pathlib import Path

import languages

ROOT = Path(__file__).resolve().parents[2]
# What may repeat the numbers of the messages: their own header, what documents or tests them, and the camera service's
# side in other languages.
MESSAGES = "service/link/ServiceMessages.h"
CODE_FOLDERS = ("app", "windows", "pages", "service", "preview", "diagnostics", "tools", "suite", "duilib")
# Values that others write.
OTHERS_VALUES = {"init_algorithm", "filter_driver_install", "support_hard_switch"}

Effect = namedtuple("Effect", "id control value first_run event on_text off_text")
Level = namedtuple("Level", "kind control value report_key")
Background = namedtuple("Background", "index feature control label")

EFFECT = re.compile(r'\{EffectId::(k\w+), L"(\w+)", L"\w+", L"(\w+)", (\d+), \d+,\s*'
                    r'Telling::k\w+, (?:nullptr|"(\d+)"), "([^"]*)", "([^"]*)", (?:L"\w*"|k\w+)\},')
LEVEL = re.compile(r'\{GlobalUtils::BeautyKind::(k\w+), L"(\w+)", L"(\w+)", "(\w+)"\},')
BACKGROUND = re.compile(r'\{(\d+), L"(\w+)", L"(\w+)", L"(\w+)"\},')


class Tree:
    """The files below a root; what is wrong goes to breaches."""

    def __init__(self, root):
        self.root = root
        self.breaches = []

    def read(self, path):
        return (self.root / path).read_text(encoding="utf-8-sig")

    def wrong(self, text):
        self.breaches.append(text)

    def want(self, path, text, what):
        if text not in self.read(path):
            self.wrong(f"{path}: {what} is missing: {text}")

    def rows(self, path, kind, pattern, make):
        """The rows of a table in a header; as many as its array says."""
        text = self.read(path)
        size = int(re.search(rf"std::array<{kind}, (\d+)>", text)[1])
        rows = [make(*match) for match in pattern.findall(text)]
        if len(rows) != size:
            self.wrong(f"{path}: {len(rows)} of {size} rows of {kind} have the form that this check knows")
        return rows

    def same(self, path, what, found, expected):
        """Both are collections of names."""
        for name in sorted(set(expected) - set(found)):
            self.wrong(f"{path}: {what} lacks {name}")
        for name in sorted(set(found) - set(expected)):
            self.wrong(f"{path}: {what} has {name}, which is in no table")

    def controls(self, path, kind):
        """Name to attributes of the named controls of a layout."""
        return {control.get("name"): control.attrib
                for control in ElementTree.fromstring(self.read(path)).iter(kind) if control.get("name")}


def check_effects(tree, effects, levels, own_values):
    values = {effect.value: int(effect.first_run) for effect in effects} | {level.value: 5 for level in levels}

    deleted = re.findall(r'DeleteRegValue HKU "\$\{settings\}" "(\w+)"', tree.read("packaging/Pixora.nsi"))
    tree.same("packaging/Pixora.nsi", "the list of settings", deleted, [*values, *own_values])

    seeds = dict(re.findall(r"^ +dword (\w+) (\d+)$", tree.read("scripts/seed-registry"), re.M))
    first_run = {name: number for name, number in values.items()} | {"lumi_camera_background_replacement": 0}
    tree.same("scripts/seed-registry", "the list of first values", set(seeds) - OTHERS_VALUES, first_run)
    for name, number in first_run.items():
        if name in seeds and int(seeds[name]) != number:
            tree.wrong(f"scripts/seed-registry: {name} is {seeds[name]}, the first run writes {number}")

    demo = tree.read("tools/demo/EffectSettings.cpp")
    for name in [f"EffectId::{effect.id}" for effect in effects] + [f"BeautyKind::{level.kind}" for level in levels]:
        if not re.search(rf"\b{name}\b", demo):
            tree.wrong(f"tools/demo/EffectSettings.cpp: the demo does not draw {name}")

    layout = "res/layout/PixoraHomePage.xml"
    switches = [name for name, control in tree.controls(layout, "Button").items() if control.get("style") == "switch"]
    tree.same(layout, "the switches", switches, [effect.control for effect in effects])
    tree.same(layout, "the sliders", tree.controls(layout, "Slider"), [level.control for level in levels])


def check_effects_documents(tree, effects, levels, own_values):
    path = "docs/integration.md"
    text = tree.read(path)
    rows = {name: first for names, first in re.findall(r"^\| (`\w+`(?:, `\w+`)*) \| ([^|]+) \| [^|]+ \|$", text, re.M)
            for name in re.findall(r"\w+", names)}
    expected = {effect.value: effect.first_run for effect in effects} | {level.value: "5 each" for level in levels}
    for name, first in expected.items():
        if rows.get(name) != first:
            tree.wrong(f"{path}: {name} is not listed with its first value {first}")
    for name in own_values:
        if name not in rows:
            tree.wrong(f"{path}: {name} is not listed")
    for effect in effects:
        if effect.event:
            tree.want(path, f"| {effect.event} | `{effect.on_text}`, `{effect.off_text}` |", "the usage event")
    fields = ",".join(f'"{level.report_key}":5' for level in levels)
    tree.want(path, f'"fields":{{"STATUS":1,{fields}}}', "the beauty event")


def check_backgrounds(tree, backgrounds):
    layout = "res/layout/PixoraHomePage.xml"
    options = {name: control for name, control in tree.controls(layout, "Option").items()
               if name.endswith("_background_btn")}
    tree.same(layout, "the gallery", options, [background.control for background in backgrounds])
    for background in backgrounds:
        spoken = options.get(background.control, {}).get("accname")
        if spoken and spoken != background.label:
            tree.wrong(f"{layout}: {background.control} is named {spoken}, its label is {background.label}")
    numbers = [int(background.index) for background in backgrounds]
    if numbers != list(range(len(backgrounds))):
        tree.wrong("service/FeatureTables.h: the numbers of the backgrounds have a gap")
    if f" {numbers[-1]} " not in re.search(r"^`lumi_camera_background_replacement`:.*?\n\n", tree.read(
            "docs/integration.md"), re.M | re.S)[0]:
        tree.wrong(f"docs/integration.md: the background {numbers[-1]} is not explained")


def check_names_of_the_start(tree, header):
    """app/ may not see service/, so it writes the key and two values again."""
    start = tree.read("app/StartUp.cpp")
    for name in ("kKeyPath", "kFilterDriverInstall", "kInitAlgorithm"):
        literal = re.search(rf'\b{name} = (L"[^"]+");', header)[1]
        if literal not in start:
            tree.wrong(f"app/StartUp.cpp: {name} of service/SettingNames.h is missing: {literal}")


def check_messages(tree):
    text = tree.read(MESSAGES)
    numbers = dict(re.findall(r"std::int32_t (k\w+) = (0x[0-9A-F]+);", text))
    if len(numbers) < 8:
        tree.wrong(f"{MESSAGES}: only {len(numbers)} numbers have the form that this check knows")
    document = tree.read("docs/integration.md")
    for name, number in numbers.items():
        if f"`{number}`" not in document:
            tree.wrong(f"docs/integration.md: {name} is missing: `{number}`")
    names = {**{number: name for name, number in numbers.items()},
             r'Pipe\\iNotoraAssistant"': "kPipeName", "WM_APP + 1;": "Preview::kEventMessage"}
    for folder in CODE_FOLDERS:
        for path in sorted(p for p in (tree.root / folder).rglob("*") if p.suffix in (".cpp", ".h")):
            place = path.relative_to(tree.root).as_posix()
            for literal, name in names.items():
                owner = "preview/Preview.h" if name.startswith("Preview") else MESSAGES
                code = "\n".join(line.split("//")[0] for line in path.read_text(encoding="utf-8").splitlines())
                if place != owner and re.search(rf"{re.escape(literal)}(?![0-9A-Fa-f])", code):
                    tree.wrong(f"{place}: writes {literal} again, which is {name} of {owner}")


def check_pictures(tree):
    """What is named in layouts and code is drawn."""
    art = tree.root / "res" / "art"
    drawn = {path.stem for path in (art / "LumiCamera").glob("*.svg")} | {"app_icon"}
    drawn |= {f"thumb_{path.stem}" for path in (art / "scenes").glob("*.svg")}
    paths = sorted((tree.root / "res" / "layout").glob("*.xml"))
    for folder in ("windows", "pages", "service"):
        paths += sorted(p for p in (tree.root / folder).rglob("*") if p.suffix in (".cpp", ".h"))
    for path in paths:
        named = re.findall(r"drawable/LumiCamera/([^'\"]+)\.png", path.read_text(encoding="utf-8"))
        for name in sorted(set(named) - drawn):
            tree.wrong(f"{path.relative_to(tree.root)}: {name}.png is drawn nowhere")


def check_languages(tree):
    table = languages.read(tree.root)
    installer = "packaging/Pixora.nsi"
    chosen = re.findall(r'^!insertmacro MUI_LANGUAGE "(\w+)"$', tree.read(installer), re.M)
    tree.same(installer, "the list of languages", chosen, [language.installer for language in table.values()])
    source = next(iter(table.values())).installer
    if chosen and chosen[0] != source:
        tree.wrong(f"{installer}: the first language is {chosen[0]}, the source is {source}")
    texts = "packaging/Texts.nsh"
    said = {}
    for key, language in re.findall(r"^LangString (\w+) \$\{LANG_(\w+)\} ", tree.read(texts), re.M):
        said.setdefault(language, set()).add(key)
    for language in table.values():
        tree.same(texts, f"the texts in {language.installer}", said.get(language.installer.upper(), set()),
                  said.get(source.upper(), set()))
    tree.want("README.md", f"{len(table)} languages", "the number of languages")


def main(root=ROOT):
    tree = Tree(root)
    effects = tree.rows("service/EffectTable.h", "Effect", EFFECT, Effect)
    levels = tree.rows("service/EffectTable.h", "BeautyLevel", LEVEL, Level)
    backgrounds = tree.rows("service/FeatureTables.h", "Background", BACKGROUND, Background)
    names = tree.read("service/SettingNames.h")
    values = re.findall(r'inline constexpr const wchar_t\* k(?!KeyPath|System|ChangedEvent)\w+ = L"(\w+)";', names)
    own_values = [value for value in values if value not in OTHERS_VALUES]
    check_effects(tree, effects, levels, own_values)
    check_effects_documents(tree, effects, levels, own_values)
    check_backgrounds(tree, backgrounds)
    check_names_of_the_start(tree, names)
    check_messages(tree)
    check_pictures(tree)
    check_languages(tree)
    return tree.breaches
