"""The terms of res/values/README.md, and what the texts say instead of them.

A section "### <language>" of that page holds one table: the term, the text of its row, the words for it in other texts,
words that never stand for it, and the keys in which the language may do without. The table of en_US says in which texts
a term is meant. Called by texts.py.
"""
import re

SOURCE = "en_US"
KEY = "IDS_LUMI_"
# Terms that are a label of the window, and the label's key. The tab header may be a part of its effect's name.
ROWS = {
    "camera effects": "MAIN_SWITCH", "background": "BACKGROUND", "auto framing": "AUTO_FRAMING",
    "eye contact": "EYE_CONTACT", "beauty": "BEAUTY", "preview": "PREVIEW", "none": "CAMERA_NONE",
    "wallpaper": "CAMERA_WALLPAPER",
}
TABS = {"background": "TAB_BACKGROUND", "auto framing": "TAB_AUTO_FRAMING", "eye contact": "TAB_EYE_CONTACT"}
WITHOUT_BLANKS = {"zh_CN", "zh_TW", "ja_JP"}
LETTER = r"[^\W\d_]"
QUOTES = "“”„‟‘’‚‛«»‹›「」『』 \u00a0"


class Term:
    """One line of a language's table."""

    def __init__(self, language, cells):
        self.name, self.row = cells[0], cells[1]
        self.forms, self.never, self.free = (re.findall(r"`([^`]+)`", cell) for cell in cells[2:5])
        self.form_patterns = [pattern(language, form) for form in self.forms]
        self.never_patterns = [pattern(language, word) for word in self.never]
        self.own_keys = {KEY + keys[self.name] for keys in (ROWS, TABS) if self.name in keys}

    def spans(self, text):
        return [match.span() for form in self.form_patterns for match in form.finditer(text)]


def pattern(language, form):
    """A form as an expression: whole words, * for any letters, the first letter also as a capital."""
    expression = "".join(f"{LETTER}*" if char == "*" else re.escape(char) for char in form)
    if form[0].isalpha():
        expression = f"[{form[0]}{form[0].upper()}]" + expression[len(re.escape(form[0])):]
    if language in WITHOUT_BLANKS:
        return re.compile(expression)
    before = rf"(?<!{LETTER})" if form[0].isalpha() or form[0] == "*" else ""
    after = rf"(?!{LETTER})" if form[-1].isalpha() or form[-1] == "*" else ""
    return re.compile(before + expression + after)


def read_terms(readme, languages, breaches):
    """Language to its terms, in the order of the page; what is wrong with the tables goes to breaches."""
    tables = {}
    language = None
    for line in readme.read_text(encoding="utf-8").splitlines():
        if line.startswith("#"):
            heading = line.lstrip("# ")
            language = heading if heading in languages else None
        elif language and line.startswith("|"):
            cells = [cell.strip() for cell in line.strip("|").split("|")]
            if cells[0] == "Term" or set(cells[0]) == {"-"}:
                continue
            if len(cells) != 5 or "`" not in cells[2]:
                breaches.append(f"README.md: {language}: not a line of terms: {line}")
                continue
            tables.setdefault(language, []).append(Term(language, cells))
    names = [term.name for term in tables.get(SOURCE, [])]
    for language in sorted(languages):
        mine = [term.name for term in tables.get(language, [])]
        if mine != names or len(set(names)) != len(names):
            breaches.append(f"README.md: {language}: the terms are not those of {SOURCE}, each once: {mine}")
    breaches += [f"README.md: there is no term {name}" for name in ROWS if name not in names]
    return tables


def check_rows(language, terms, texts):
    """The table names each row as the window does; a tab header is its effect's name or a part of it."""
    breaches = []
    for term in terms:
        if (term.name in ROWS) != bool(term.row):
            breaches.append(f"README.md: {language}: {term.name}: a row is named where the term is one, and only there")
        if term.name not in ROWS or KEY + ROWS[term.name] not in texts:
            continue
        key = KEY + ROWS[term.name]
        if texts[key] != term.row:
            breaches.append(f"{language}: {key} is “{texts[key]}”, the table of terms has “{term.row}”")
        if not any(pattern(language, form.strip(QUOTES)).fullmatch(term.row) for form in term.forms):
            breaches.append(f"README.md: {language}: {term.name}: no word for it is the name of its row")
        tab = KEY + TABS.get(term.name, "")
        if tab in texts and texts[tab].casefold() not in term.row.casefold():
            breaches.append(f"{language}: {tab} is no part of “{term.row}”")
    return breaches


def meant(source_terms, key, text):
    """Names of the terms that a text of the source speaks of: the first in the table's order that fits a place."""
    names = []
    for term in source_terms:
        spans = term.spans(text)
        if spans and key not in term.own_keys:
            names.append(term.name)
        for begin, end in spans:
            text = text[:begin] + "\n" * (end - begin) + text[end:]
    return names


def check_text(language, terms, names, key, text):
    """One text: holds the words for each term that is meant, no other ones, no bare name where the words are quoted."""
    breaches = []
    allowed = [span for term in terms for span in term.spans(text)]

    def strays(expression):
        return [match[0] for match in expression.finditer(text)
                if not any(begin <= match.start() and match.end() <= end for begin, end in allowed)]

    for term in terms:
        if term.name in names and not term.spans(text) and key.removeprefix(KEY) not in term.free:
            breaches.append(f"{language}: {key} has no word for “{term.name}”: {', '.join(term.forms)}")
        if key in term.own_keys:
            continue
        wrong = [word for expression in term.never_patterns for word in strays(expression)]
        if term.row and term.name in names:
            wrong += strays(re.compile(re.escape(term.row), re.IGNORECASE))
        breaches += [f"{language}: {key}: “{word}” is not how “{term.name}” is said" for word in wrong]
    return breaches


def check(readme, tables, plain):
    """tables: language to (key, text) pairs; plain(text) takes markup out."""
    breaches = []
    terms = read_terms(readme, set(tables), breaches)
    if SOURCE not in terms or SOURCE not in tables:
        return breaches
    names = {key: meant(terms[SOURCE], key, plain(text)) for key, text in tables[SOURCE]}
    for language, pairs in tables.items():
        texts = {key: plain(text) for key, text in pairs}
        breaches += check_rows(language, terms.get(language, []), texts)
        for key, text in texts.items():
            breaches += check_text(language, terms.get(language, []), names.get(key, []), key, text)
        for term in terms.get(language, []):
            for key in term.free:
                if term.name not in names.get(KEY + key, []) or term.spans(texts.get(KEY + key, "")):
                    breaches.append(f"README.md: {language}: {term.name} need not be free in {key}")
    return breaches
