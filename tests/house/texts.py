#!/usr/bin/env python3
"""Checks the string tables below res/values; prints each breach and exits 1 if there is one.

main() returns the breaches as a list of lines. en_US is the source: every other table must hold the same keys in the
same order, with the same markup, links, placeholders and numbers. The length limits come from res/values/README.md.
"""
import re
import sys
import unicodedata
import xml.etree.ElementTree as ElementTree
from collections import Counter
from pathlib import Path

import languages
import terms

ROOT = Path(__file__).resolve().parents[2]
LANGUAGES = languages.read(ROOT)
SOURCE = next(iter(LANGUAGES))
DECLARATION = b'<?xml version="1.0" encoding="utf-8"?>\n'

# Kept for compatibility: the gallery shows neither of the two.
KEPT_UNUSED = {"IDS_LUMI_CAMERA_BEACH", "IDS_LUMI_CAMERA_STARRY"}
CODE_FOLDERS = ("app", "windows", "pages", "service", "duilib")
KEY = re.compile(r"\bIDS_LUMI_[A-Z0-9_]+\b")

TAG = re.compile(r"<[^<>]*>")
ALLOWED_TAG = re.compile(r'</?b>|</?i>|<br>|<a href="https://[^"<>\s]+">|</a>|<font color="#[0-9A-F]{6}">|</font>')
PLACEHOLDER = re.compile(r"\{[a-z]+\}")

ALL_QUOTES = set("“”„‟‘’‚‛«»‹›「」『』〝〞〟＂＇")
NO_BREAK_SPACE = "\u00a0"
CHINESE_OR_KANA = r"[\u3040-\u30ff\u3400-\u4dbf\u4e00-\u9fff]"

# The largest width, in columns, of the three tab headers of the introduction page together.
TAB_KEYS = ("IDS_LUMI_TAB_BACKGROUND", "IDS_LUMI_TAB_EYE_CONTACT", "IDS_LUMI_TAB_AUTO_FRAMING")
TAB_COLUMNS = 38


def columns(text):
    """Width in columns: East Asian wide characters count two, combining marks none."""
    return sum(0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)


def read_table(path, breaches):
    """The (key, text) pairs of one table in file order; what is wrong with its form goes to breaches."""
    language = path.parent.name
    data = path.read_bytes()
    if not data.startswith(DECLARATION):
        breaches.append(f"{language}: the first line must be {DECLARATION.decode().strip()} (no byte order mark)")
    if b"\r" in data:
        breaches.append(f"{language}: the file has carriage returns")
    try:
        table = ElementTree.fromstring(data)
    except ElementTree.ParseError as error:
        breaches.append(f"{language}: not well-formed XML: {error}")
        return None
    direction = LANGUAGES[language].direction
    if table.tag != "Strings" or table.attrib != {"language": language, "direction": direction}:
        breaches.append(f'{language}: the root must be <Strings language="{language}" direction="{direction}">')
    pairs = []
    for element in table:
        if element.tag != "String" or set(element.attrib) != {"id"} or len(element):
            breaches.append(f"{language}: <{element.tag} {element.attrib}> is not a <String id=\"…\">text</String>")
            continue
        pairs.append((element.attrib["id"], element.text or ""))
    for key, count in Counter(key for key, _ in pairs).items():
        if count > 1:
            breaches.append(f"{language}: {key} is there {count} times")
    return pairs


def check_keys(language, pairs, source_keys):
    keys = list(dict(pairs))  # without the doubles, which read_table reports
    breaches = [f"{language}: {key} is missing" for key in source_keys if key not in keys]
    breaches += [f"{language}: {key} is not in {SOURCE}" for key in keys if key not in source_keys]
    if not breaches and keys != source_keys:
        at = next(i for i, pair in enumerate(zip(keys, source_keys)) if pair[0] != pair[1])
        breaches.append(f"{language}: {keys[at]} stands where {SOURCE} has {source_keys[at]}")
    return breaches


def check_markup(text, is_html):
    """Markup of one text: only the known tags, each closed in the right order; none in plain texts."""
    breaches = []
    if not is_html:
        return ["a plain text holds markup"] if re.search(r"[<>]|&\w+;", text) else []
    open_tags = []
    for tag in TAG.findall(text):
        if not ALLOWED_TAG.fullmatch(tag):
            breaches.append(f"{tag} is not in the markup subset")
            continue
        name = re.match(r"</?(\w+)", tag)[1]
        if tag.startswith("</"):
            if not open_tags or open_tags.pop() != name:
                breaches.append(f"{tag} closes nothing")
        elif name != "br":
            open_tags.append(name)
    breaches += [f"<{name}> is not closed" for name in open_tags]
    if re.search(r"[<>]", TAG.sub("", text)):
        breaches.append("a bracket belongs to no tag")
    return breaches


def check_same_facts(text, source):
    """What no translation may change."""
    def facts(t):
        plain = TAG.sub("", t)
        return {"markup or links": Counter(TAG.findall(t)), "placeholders": Counter(PLACEHOLDER.findall(t)),
                "numbers": Counter(re.findall(r"[0-9]+", plain)), "product name": Counter(re.findall("Pixora", plain))}

    mine, theirs = facts(text), facts(source)
    return [f"other {name} than {SOURCE}: {sorted(mine[name].elements())}"
            for name in mine if mine[name] != theirs[name]]


def check_characters(language, text):
    """Blanks, quotes, punctuation; text comes without markup."""
    breaches = []
    if not text.strip():
        return ["empty"]
    if text != text.strip():
        breaches.append("leading or trailing blank")
    if re.search(r"[\t\r\n]|  ", text):
        breaches.append("a tab, a line break or a double blank")
    if text != unicodedata.normalize("NFC", text):
        breaches.append("not composed (NFC)")
    for char in sorted(set(text)):
        if char in "\"'`´":
            breaches.append(f"straight quote {char}")
        elif char in ALL_QUOTES and char not in LANGUAGES[language].quotes:
            breaches.append(f"the quote {char} does not belong to this language")
        elif unicodedata.category(char) in ("Cc", "Cf", "Co", "Cn") or char == "\ufffd":
            breaches.append(f"invisible or unknown character U+{ord(char):04X}")
    if re.search(r"[{}]", PLACEHOLDER.sub("", text)):
        breaches.append("a brace belongs to no placeholder")
    if re.search(r"\.\.\.| - |--", text):
        breaches.append("ASCII ellipsis or dash")
    if re.search(r"\d\s*[x*]\s*\d|\d ×|× \d|\d×|×\d", text):
        breaches.append("sizes are written with no-break blanks: 4096\u00a0×\u00a04096")
    if re.search(r"[A-Za-z][\u0400-\u04ff]|[\u0400-\u04ff][A-Za-z]", text):
        breaches.append("a word mixes Latin and Cyrillic letters")
    breaches += check_language_rules(language, text)
    return breaches


def check_language_rules(language, text):
    breaches = []
    if language == "fr_FR":
        if re.search(rf"(?<!{NO_BREAK_SPACE})[;:!?»]|«(?!{NO_BREAK_SPACE})", text):
            breaches.append("no no-break blank before ; : ! ? » or after «")
    elif re.search(r"\s[;:!?,.]", text):
        breaches.append("a blank before a punctuation mark")
    if language == "es_ES" and (text.count("?") != text.count("¿") or text.count("!") != text.count("¡")):
        breaches.append("¿ or ¡ is missing")
    if language in ("zh_CN", "zh_TW") and re.search(rf"{CHINESE_OR_KANA}[,.;:!?()]|[,;:!?()]{CHINESE_OR_KANA}", text):
        breaches.append("ASCII punctuation beside a Chinese character")
    if language == "ja_JP" and re.search(rf"{CHINESE_OR_KANA}[,.;:]|[，．；]", text):
        breaches.append("punctuation that Japanese does not use")
    if language == "ru_RU" and re.search("[ёЁ]", text):
        breaches.append("ё is written е")
    if language == "ar_SA" and re.search(r"[,;?]", text):
        breaches.append("ASCII punctuation where Arabic has its own")
    return breaches


def read_limits(root, breaches):
    """Key to its limit in columns, from the table in the README."""
    readme = root / "res" / "values" / "README.md"
    limits = {}
    for line in readme.read_text(encoding="utf-8").splitlines():
        row = re.match(r"\| `(IDS_LUMI_[A-Z0-9_]+)` \|.*\| (\d+) \|$", line)
        if not row:
            continue
        if row[1] in limits:
            breaches.append(f"README.md: {row[1]} is listed twice")
        limits[row[1]] = int(row[2])
    return limits


def check_places(root):
    """A control that a layout gives a text to stands in the text's line of the README."""
    readme = (root / "res" / "values" / "README.md").read_text(encoding="utf-8")
    rows = dict(re.findall(r"^\| `(IDS_LUMI_[A-Z0-9_]+)` \|.*\| ([^|]*) \| \d+ \|$", readme, re.MULTILINE))
    breaches = []
    for layout in sorted((root / "res" / "layout").glob("*.xml")):
        for control in ElementTree.parse(layout).iter():
            name = control.get("name")
            for key in {value for value in control.attrib.values() if KEY.fullmatch(value)}:
                if name and f"`{name}`" not in rows.get(key, ""):
                    breaches.append(f"README.md: {key} stands at {name} of {layout.name}, its line does not say so")
    return breaches


def check_lengths(language, texts, limits):
    breaches = []
    for key, text in texts.items():
        width = columns(TAG.sub("", text))
        if width > limits.get(key, width):
            breaches.append(f"{language}: {key} has {width} columns, its limit is {limits[key]}")
    tabs = sum(columns(texts.get(key, "")) for key in TAB_KEYS)
    if tabs > TAB_COLUMNS:
        breaches.append(f"{language}: the three tab headers have {tabs} columns, their limit is {TAB_COLUMNS}")
    return breaches


def check_table(language, pairs, source):
    breaches = []
    for key, text in pairs:
        if key not in source:
            continue
        plain = TAG.sub("", text)
        found = check_markup(text, bool(TAG.search(source[key])))
        found += check_characters(language, plain)
        if language != SOURCE:
            found += check_same_facts(text, source[key])
            if len(plain) > 20 and text == source[key]:
                found.append("not translated")
        breaches += [f"{language}: {key}: {what}" for what in found]
    return breaches


def check_unused(root, keys):
    """Every key is referenced by a layout or by code, and every key referenced exists."""
    files = sorted((root / "res" / "layout").glob("*.xml"))
    for folder in CODE_FOLDERS:
        files += sorted(p for p in (root / folder).rglob("*") if p.suffix in (".cpp", ".h"))
    used = set()
    breaches = []
    for path in files:
        found = set(KEY.findall(path.read_text(encoding="utf-8")))
        used |= found
        breaches += [f"{path.relative_to(root)}: {key} is not in {SOURCE}" for key in sorted(found - set(keys))]
    breaches += [f"{SOURCE}: {key} is used nowhere" for key in keys if key not in used and key not in KEPT_UNUSED]
    breaches += [f"{SOURCE}: {key} is kept unused, but something uses it" for key in sorted(KEPT_UNUSED & used)]
    breaches += [f"{SOURCE}: {key} is missing" for key in sorted(KEPT_UNUSED - set(keys))]
    return breaches


def main(root=ROOT):
    breaches = []
    values = root / "res" / "values"
    folders = {p.name for p in values.iterdir() if p.is_dir()}
    breaches += [f"res/values/{name}: not in the list of languages" for name in sorted(folders - set(LANGUAGES))]
    tables = {}
    for language in sorted(LANGUAGES, key=lambda name: (name != SOURCE, name)):
        path = values / language / "strings.xml"
        if not path.is_file():
            breaches.append(f"{language}: strings.xml is missing")
            continue
        pairs = read_table(path, breaches)
        if pairs is not None:
            tables[language] = pairs
    if SOURCE not in tables:
        return breaches
    source = dict(tables[SOURCE])
    limits = read_limits(root, breaches)
    breaches += [f"README.md: {key} is not listed" for key in source if key not in limits]
    breaches += [f"README.md: {key} is not in {SOURCE}" for key in limits if key not in source]
    for language, pairs in tables.items():
        breaches += check_keys(language, pairs, list(source))
        breaches += check_table(language, pairs, source)
        breaches += check_lengths(language, dict(pairs), limits)
    breaches += terms.check(values / "README.md", tables, lambda text: TAG.sub("", text))
    breaches += check_places(root)
    breaches += check_unused(root, list(source))
    return breaches


if __name__ == "__main__":
    lines = main()
    print(*lines, sep="\n", end="\n" if lines else "")
    sys.exit(1 if lines else 0)
