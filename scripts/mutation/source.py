"""A C++ file as tokens, with what the operators need to know about each: what it is, where it stands, which braces it
is in. No parser: clang-format's layout of this tree (blanks around binary operators, braces around every body) tells
apart what only a parser could tell elsewhere.
"""
import bisect
import re
from dataclasses import dataclass, field

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<line>^[ \t]*\#(?:\\\n|[^\n])*)
      | (?P<blank>\s+)
      | (?P<raw>(?:u8|[LuU])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)")
      | (?P<string>(?:u8|[LuU])?"(?:\\.|[^"\\\n])*")
      | (?P<character>(?:u8|[LuU])?'(?:\\.|[^'\\\n])+')
      | (?P<number>(?:0[xX][0-9a-fA-F']+|(?:\d[\d']*\.?[\d']*|\.\d[\d']*)(?:[eE][-+]?\d+)?)[uUlLfFzZ]*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<sign><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\[\[|\]\]|.)""",
    re.X | re.S | re.M)

OPENING = {"(": ")", "[": "]", "{": "}", "[[": "]]"}
CLOSING = {value: key for key, value in OPENING.items()}
# Before '{' these say that a block of statements begins.
BLOCK_WORDS = {"const", "override", "noexcept", "final", "try", "else", "do", "mutable"}


@dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int
    scope: str = "file"  # what the innermost braces around it hold: file, type, enum, code or values
    partner: int = -1  # of a bracket: the other one's number
    blank_before: bool = False
    blank_after: bool = False


@dataclass
class Source:
    path: str
    text: str
    tokens: list = field(default_factory=list)

    def __post_init__(self):
        self.lines = [0] + [match.end() for match in re.finditer("\n", self.text)]
        self._tokenize()
        self._pair()

    def line_of(self, offset):
        return bisect.bisect_right(self.lines, offset)

    def line_text(self, number):
        end = self.lines[number] if number < len(self.lines) else len(self.text)
        return self.text[self.lines[number - 1]:end].rstrip("\n")

    def _tokenize(self):
        for match in TOKEN.finditer(self.text):
            kind = match.lastgroup if match.lastgroup != "mark" else "raw"
            if kind in ("comment", "line", "blank"):
                continue
            before = self.text[match.start() - 1] if match.start() else "\n"
            after = self.text[match.end()] if match.end() < len(self.text) else "\n"
            self.tokens.append(Token(kind, match.group(), match.start(), match.end(),
                                     blank_before=before.isspace(), blank_after=after.isspace()))

    def _pair(self):
        opened, scopes = [], ["file"]
        for number, token in enumerate(self.tokens):
            if token.kind == "sign" and token.text in OPENING:
                token.scope = scopes[-1]
                opened.append(number)
                if token.text == "{":
                    scopes.append(self._scope_of(number, scopes[-1]))
                continue
            if token.kind == "sign" and token.text in CLOSING:
                # ">]" and the like never come; a "]]" of two indexes does.
                if token.text == "]]" and opened and self.tokens[opened[-1]].text == "[":
                    opened.pop()
                    if opened and self.tokens[opened[-1]].text == "[":
                        opened.pop()
                elif opened and OPENING[self.tokens[opened[-1]].text] == token.text:
                    other = opened.pop()
                    token.partner, self.tokens[other].partner = other, number
                    if token.text == "}":
                        scopes.pop()
            token.scope = scopes[-1]

    def _scope_of(self, number, outer):
        """What the brace at `number` opens."""
        words = []
        for token in reversed(self.tokens[max(0, number - 80):number]):
            if token.text in (";", "{", "}"):
                break
            words.append(token.text)
        previous = words[0] if words else ";"
        heads = set(words)
        if "namespace" in heads or previous == '"C"':
            return "file"
        if "enum" in heads and "(" not in heads:
            return "enum"
        if heads & {"class", "struct", "union"} and "(" not in heads and outer != "code":
            return "type"
        if previous in (")", "]") or previous in BLOCK_WORDS or previous in (";", "{", "}", ":"):
            return "code" if previous != "]" or "=" not in heads else "values"
        if heads & {"class", "struct"} and "(" not in heads and "=" not in heads:
            return "type"
        # A trailing return type: -> Type {
        if "->" in heads and ")" in heads and words.index("->") < words.index(")"):
            return "code"
        return "values"
