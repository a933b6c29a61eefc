"""Finds the places of a C++ file that can be broken, with one change each."""
import collections
import dataclasses
import pathlib
import random
import re

# Comments and preprocessor lines are matched first and remain unchanged.
TOKEN = re.compile(
    r"(?P<skip>//[^\n]*|/\*.*?\*/|^\s*#(?:[^\n]*\\\n)*[^\n]*|static_assert\([^;]*;|extern \"C\"|R\"\(.*?\)\")"
    r"|(?P<text>\b(?:L|u8)?\"(?:[^\"\\\n]|\\.)*\"|\"(?:[^\"\\\n]|\\.)*\")"
    r"|(?P<letter>(?<![\w'])L?'(?:[^'\\\n]|\\[^\n])'|(?<![\w'])L?'\\x?\w+')"
    r"|(?P<operator>==|!=|<=|>=|&&|\|\||\+\+|--|\+=|-=|<<|>>|->|::|<|>|\+|-|!|\|)"
    r"|(?P<number>\b(?:0[xX][0-9a-fA-F']+|\d[\d']*)(?:[uUlL]*)\b)"
    r"|(?P<word>\b[A-Za-z_]\w*\b)",
    re.MULTILINE | re.DOTALL)
SWAPS = {"==": "!=", "!=": "==", "<=": "<", ">=": ">", "&&": "||", "||": "&&", "++": "--", "--": "++", "+=": "-=",
         "-=": "+=", "true": "false", "false": "true"}
CALL = re.compile(r"^ +(?:::|\w+(?:\.|->))?[A-Za-z_][\w:.>-]*\([^;{}]*\);$", re.MULTILINE)
EXIT = re.compile(r"\b(?:return|continue|break);")
COMPARISON = re.compile(r" (<|>) (?=[\w(:])(?!\w+>)")
SUM = re.compile(r"(?<=[\w)\]]) ([+-]) (?=[\w(*])")
NEGATION = re.compile(r"(?<=[(\s])!(?=[\w:(])(?!=)")
CONDITION = re.compile(r"\bif \(((?:[\w:.]|->)+(?:\([^(){};]*\))?)\) \{")
RETURN = re.compile(r"\breturn (?!\{|!|true\b|false\b|nullptr\b)([^;{}]+);")


@dataclasses.dataclass(frozen=True)
class Mutation:
    file: pathlib.Path  # in the tree
    line: int
    before: str
    after: str
    start: int
    end: int
    name: str  # in equivalent.txt; valid as long as the text of the line is unchanged, at any line number

    def apply(self, text: str) -> str:
        return text[:self.start] + self.after + text[self.end:]

    def __str__(self) -> str:
        return f"{self.file.as_posix()}:{self.line}: {change(self.before, self.after)}"


def change(before: str, after: str) -> str:
    return f"{' '.join(before.split())} -> {' '.join(after.split()) or '(nothing)'}"


def mutations(tree: pathlib.Path, file: pathlib.Path) -> list[Mutation]:
    text = (tree / file).read_text(encoding="utf-8")
    blank = list(text)  # the same length, without comments and texts
    found = {}
    lines = text.splitlines()

    def add(start: int, end: int, after: str):
        found[start, after] = (text.count("\n", 0, start), end)

    for token in TOKEN.finditer(text):
        if token["skip"] or token["text"] or token["letter"]:
            blank[token.start():token.end()] = ["\0" if letter != "\n" else letter for letter in token[0]]
        if token["text"]:
            add(token.start(), token.end(), token[0][:-1] + '~"')
        elif token["letter"]:
            add(token.start(), token.end(), token[0][:token[0].index("'")] + "'~'")
        elif (token["operator"] or token["word"] or "") in SWAPS:
            add(token.start(), token.end(), SWAPS[token[0]])
        elif token["number"]:
            digits = re.sub(r"[uUlL']", "", token[0])
            add(token.start(), token.end(), str(int(digits, 0) + 1) + re.sub(r"[^uUlL]", "", token[0].lstrip("0xX")))
    code = "".join(blank)
    for match in COMPARISON.finditer(code):
        add(match.start(1), match.end(1), match[1] + "=")
    for match in SUM.finditer(code):
        add(match.start(1), match.end(1), "-" if match[1] == "+" else "+")
    for match in NEGATION.finditer(code):
        add(match.start(), match.end(), "")
    for match in CONDITION.finditer(code):
        add(match.start(1), match.end(1), f"!{text[match.start(1):match.end(1)]}")
    for match in EXIT.finditer(code):
        add(match.start(), match.end(), ";")
    for match in CALL.finditer(code):
        if not match[0].lstrip().startswith(("return", "static_cast", "static_assert")):
            add(match.start() + len(match[0]) - len(match[0].lstrip()), match.end(), ";")
    for match in RETURN.finditer(code):
        if re.search(r"[<>=!&|]{1,2}|^\w+\(", match[1]) and "->" not in match[1]:
            add(match.start(1), match.end(1), f"!({text[match.start(1):match.end(1)]})")
    every, names = [], collections.Counter()
    for (start, after), (line, end) in sorted(found.items()):
        name = f"{file.as_posix()} | {lines[line].strip()} | {change(text[start:end], after)}"
        names[name] += 1  # the same line can occur more than once, and the same change in one line
        if names[name] > 1:
            name += f" ({names[name]})"
        every.append(Mutation(file, line + 1, text[start:end], after, start, end, name))
    return every


def choose(tree: pathlib.Path, folder: str, seed: int) -> list[Mutation]:
    """All mutations of a room, in the seed's order."""
    files = sorted(file for kind in ("*.cpp", "*.h") for file in (tree / folder).rglob(kind))
    every = [each for file in files for each in mutations(tree, file.relative_to(tree))]
    random.Random(f"{seed} {folder}").shuffle(every)
    return every
