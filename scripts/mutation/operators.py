"""The changes: each candidate is a place in a file and what stands there instead, on as few lines as the statement has."""
import re
from dataclasses import dataclass

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
LOGIC = {"&&": "||", "||": "&&"}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "<<": ">>", ">>": "<<", "&": "|", "|": "&",
              "+=": "-=", "-=": "+="}
OPPOSITES = {"true": "false", "false": "true", "TRUE": "FALSE", "FALSE": "TRUE", "S_OK": "S_FALSE"}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}
# A statement that begins with one of these is no call and no assignment.
KEYWORDS = {"return", "if", "for", "while", "do", "switch", "case", "default", "else", "try", "catch", "using",
            "namespace", "struct", "class", "enum", "union", "template", "typedef", "static_assert", "throw", "public",
            "private", "protected", "friend", "goto", "extern", "constexpr", "const", "static", "auto", "delete",
            "co_return", "co_await", "asm", "thread_local", "inline", "virtual", "explicit", "operator", "alignas"}
# Calls that change nothing that could be noticed.
WITHOUT_EFFECT = {"reserve", "shrink_to_fit", "assert", "static_cast", "yield"}
LOG_CALL = re.compile(r"^(LogLine|Log|LogFailure|OutputDebugString\w*)$")


@dataclass
class Mutant:
    path: str
    line: int
    operator: str
    start: int
    end: int
    replacement: str
    log: bool = False  # within a statement that only writes the log

    def apply(self, text):
        return text[:self.start] + self.replacement + text[self.end:]


class Finder:
    """Finds every candidate of one file. `source`: see source.py."""

    def __init__(self, source):
        self.source = source
        self.tokens = source.tokens
        self.found = []
        self.skipped = []  # ranges in which nothing is changed
        self.logs = []  # ranges of log statements

    def run(self):
        self._ranges()
        for number, token in enumerate(self.tokens):
            if token.kind == "name":
                self._name(number, token)
            elif token.kind == "number":
                self._number(token)
            elif token.kind in ("string", "character"):
                self._literal(number, token)
            elif token.kind == "sign":
                self._sign(number, token)
        return sorted(self.found, key=lambda m: (m.line, m.start, m.operator))

    # --- helpers

    def _add(self, operator, start, end, replacement):
        if any(a <= start < b for a, b in self.skipped):
            return
        old = self.source.text[start:end]
        # As many lines as before, so that only what was changed is reported and debug information stays comparable.
        replacement += "\n" * (old.count("\n") - replacement.count("\n"))
        if replacement != old:
            log = any(a <= start < b for a, b in self.logs)
            self.found.append(Mutant(self.source.path, self.source.line_of(start), operator, start, end, replacement,
                                     log))

    def _text(self, number):
        return self.tokens[number].text if 0 <= number < len(self.tokens) else ""

    def _ranges(self):
        for number, token in enumerate(self.tokens):
            following = self._text(number + 1)
            if token.text in ("static_assert", "alignas", "__attribute__") and following == "(":
                self.skipped.append((token.start, self.tokens[self.tokens[number + 1].partner].end))
            elif token.text == "[[" and token.partner >= 0:
                self.skipped.append((token.start, self.tokens[token.partner].end))
            elif token.text == "extern" and following.startswith('"'):
                self.skipped.append((token.start, self.tokens[number + 1].end))
            elif token.text == "using" or (token.text == "template" and following == "<"):
                end = self._end_of_statement(number) if token.text == "using" else None
                if end is not None:
                    self.skipped.append((token.start, self.tokens[end].end))
            elif token.kind == "name" and LOG_CALL.match(token.text) and following == "(" and token.scope == "code":
                close = self.tokens[number + 1].partner
                if close >= 0:
                    self.logs.append((token.start, self.tokens[close].end))

    def _end_of_statement(self, number):
        """The ';' of the statement that begins there; None when a block of statements comes first."""
        while number < len(self.tokens):
            token = self.tokens[number]
            if token.text == ";":
                return number
            if token.text == "{" and self.tokens[min(number + 1, len(self.tokens) - 1)].scope == "code":
                return None
            if token.text in ("(", "[", "{"):
                if token.partner < 0:
                    return None
                number = token.partner
            elif token.text in (")", "]", "}"):
                return None
            number += 1
        return None

    def _flat(self, begin, end):
        """The tokens of a range that are in no brackets of it, with their numbers."""
        number = begin
        while number < end:
            token = self.tokens[number]
            yield number, token
            number = token.partner + 1 if token.text in ("(", "[", "{") and token.partner > number else number + 1

    def _declares(self, begin, end):
        """Whether the range begins like a declaration: two names, or a name behind '*', '&' or '>', side by side."""
        if self._text(begin) in ("const", "auto", "static", "constexpr", "thread_local"):
            return True
        flat = [token for _, token in self._flat(begin, end)]
        for former, token in zip(flat, flat[1:]):
            if token.text in ASSIGNMENTS or token.text in ("(", "{"):
                return False
            if token.kind == "name" and former.kind == "name":
                return True
            if token.kind == "name" and former.text in ("*", "&", "&&", ">") and not former.blank_before:
                return True
        return False

    # --- the operators

    def _name(self, number, token):
        following = self._text(number + 1)
        if token.text in ("if", "while") and following == "(":
            self._condition(number + 1)
        elif token.text in OPPOSITES:
            self._add("constant changed", token.start, token.end, OPPOSITES[token.text])
        elif token.text == "return" and token.scope == "code":
            self._return(number, token)
        elif token.text in ("break", "continue") and following == ";" and token.scope == "code":
            self._add("jump removed", token.start, token.end, "")
        if self._begins_statement(number):
            self._statement(number, token)

    def _begins_statement(self, number):
        token = self.tokens[number]
        if token.scope != "code" or number == 0:
            return False
        former = self.tokens[number - 1]
        return former.text in ("{", "}", ";") or (former.text == ":" and self._text(number - 2) != ")" and
                                                  self._is_label(number - 1))

    def _is_label(self, colon):
        for number in range(colon - 1, max(0, colon - 12), -1):
            text = self._text(number)
            if text in ("case", "default"):
                return True
            if text in (";", "{", "}", "?"):
                return False
        return False

    def _condition(self, opening):
        close = self.tokens[opening].partner
        if close < 0:
            return
        begin = opening + 1
        for number, token in self._flat(begin, close):
            if token.text == ";":
                begin = number + 1
        if begin == opening + 1 and self._declares(begin, close):
            return
        flat = [token.text for _, token in self._flat(begin, close)]
        single = not set(flat) & {"&&", "||"}
        if single and (flat[0] == "!" or "==" in flat or "!=" in flat):
            return  # the operator itself is changed
        start, end = self.tokens[begin].start, self.tokens[close].start
        self._add("condition negated", start, end, f"!({self.source.text[start:end]})")

    def _return(self, number, token):
        end = self._end_of_statement(number)
        if end is None or end == number + 1:
            return
        start, stop = self.tokens[number + 1].start, self.tokens[end].start
        value = self.source.text[start:stop].strip()
        if value not in ("{}", "true", "false", "0", "nullptr", "*this", "L\"\"") and not re.fullmatch(r"-?\d+", value):
            self._add("early return", start, stop, "{}")

    def _statement(self, number, token):
        if token.text in KEYWORDS:
            return
        end = self._end_of_statement(number)
        if end is None or end == number + 1 or self._declares(number, end):
            return
        flat = list(self._flat(number, end))
        assigns = any(t.text in ASSIGNMENTS for _, t in flat)
        calls = self._text(end - 1) == ")" and any(t.text == "(" for _, t in flat)
        names = {t.text for _, t in flat if t.kind == "name"}
        if names & WITHOUT_EFFECT or not (assigns or calls):
            return
        self._add("assignment removed" if assigns else "call removed", token.start, self.tokens[end].start, "")

    def _number(self, token):
        text = token.text.replace("'", "")
        match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([uUlLzZ]*)", text)
        if match:
            digits, suffix = match.groups()
            value = int(digits, 0 if digits[:2] in ("0x", "0X") else 10) + 1
            changed = f"0x{value:X}" if digits[:2] in ("0x", "0X") else str(value)
            self._add("constant off by one", token.start, token.end, changed + suffix)
            return
        match = re.fullmatch(r"([\d.eE+-]+)([fFlL]?)", text)
        if match:
            self._add("constant off by one", token.start, token.end, repr(float(match.group(1)) + 1) + match.group(2))

    def _literal(self, number, token):
        if token.kind == "character":
            body = token.text[token.text.index("'") + 1:-1]
            if len(body) == 1 and body.isalnum():
                self._add("literal changed", token.end - 2, token.end - 1, chr(ord(body) + 1))
            elif not body.startswith("\\"):
                self._add("literal changed", token.end - 1 - len(body), token.end - 1, "?")
            else:
                self._add("literal changed", token.end - 1 - len(body), token.end - 1, "\\1")
        elif self._text(number + 1) != "_":
            self._add("literal changed", token.end - 1, token.end - 1, "x")

    def _sign(self, number, token):
        binary = token.blank_before and token.blank_after
        if binary and token.text in COMPARISONS:
            self._add("comparison shifted", token.start, token.end, COMPARISONS[token.text])
        elif binary and token.text in LOGIC:
            self._add("condition changed", token.start, token.end, LOGIC[token.text])
        elif binary and token.text in ARITHMETIC and self._text(number - 1) != "operator":
            self._add("operator changed", token.start, token.end, ARITHMETIC[token.text])
        elif token.text == "!" and not token.blank_after and self._text(number - 1) != "operator":
            self._add("condition negated", token.start, token.end, "")
        elif token.text == "{" and token.partner > number + 1:
            self._body(number, token)

    def _body(self, number, token):
        """An early return at the beginning of a function."""
        if token.scope not in ("file", "type") or self.tokens[number + 1].scope != "code":
            return
        head = []
        for former in reversed(self.tokens[:number]):
            if former.text in (";", "{", "}") or (former.text == ":" and head and head[-1] != ":" and
                                                  self.source.text[former.start - 1].isalpha()):
                break
            head.append(former.text)
        head.reverse()
        if "(" not in head or "namespace" in head or "extern" in head:
            return
        before = head[:head.index("(")]
        if self._text(number + 1) == "return" and self._end_of_statement(number + 1) == token.partner - 1:
            return  # changed by the other operator
        words = [w for w in before if re.fullmatch(r"[A-Za-z_]\w*|~", w) and
                 w not in ("static", "inline", "constexpr", "explicit", "virtual", "template", "typename", "friend")]
        # Constructors, destructors and functions without a value.
        plain = "void" in words and "*" not in before
        made = "~" in words or len(words) == 1 or (len(words) == 2 and words[0] == words[1])
        self._add("early return", token.end, token.end, " return;" if plain or made else " return {};")


def candidates(source, log_text=False):
    """Every change of the file. `log_text`: also within the arguments of log lines, not only the whole line."""
    return [m for m in Finder(source).run() if log_text or not m.log or m.operator == "call removed"]
