"""Finds the places of a C++ file that can be broken, with one change each."""
import dataclasses
import pathlib
import random
import re

# Comments, texts and preprocessor lines are matched first and remain unchanged.
TOKEN = re.compile(
    r"(?P<skip>//[^\n]*|/\*.*?\*/|^\s*#[^\n]*|static_assert\([^;]*;|R\"\((?:.*?)\)\"|L?\"(?:[^\"\\\n]|\\.)*\"|'(?:[^'\\\n]|\\.)+')"
    r"|(?P<operator>==|!=|<=|>=|&&|\|\||\+\+|--|\+=|-=|<<|>>|->|::|<|>|\+|-|!|\|)"
    r"|(?P<number>\b(?:0[xX][0-9a-fA-F']+|\d[\d']*)(?:[uUlL]*)\b)"
    r"|(?P<word>\b[A-Za-z_]\w*\b)",
    re.MULTILINE | re.DOTALL)
SWAPS = {"==": "!=", "!=": "==", "<=": "<", ">=": ">", "&&": "||", "||": "&&", "++": "--", "--": "++", "+=": "-=",
         "-=": "+=", "true": "false", "false": "true"}
CALL = re.compile(r"^ +(?:::|\w+(?:\.|->))?[A-Za-z_][\w:.>-]*\([^;{}]*\);$", re.MULTILINE)
COMPARISON = re.compile(r" (<|>) (?=[\w(:])(?!\w+>)")
NEGATION = re.compile(r"(?<=[(\s])!(?=[\w:(])(?!=)")
RETURN = re.compile(r"\breturn (?!\{|true\b|false\b|nullptr\b)([^;{}]+);")


@dataclasses.dataclass(frozen=True)
class Mutation:
    file: pathlib.Path  # in the tree
    line: int
    before: str
    after: str
    start: int
    end: int

    def apply(self, text: str) -> str:
        return text[:self.start] + self.after + text[self.end:]

    def __str__(self) -> str:
        return f"{self.file.as_posix()}:{self.line}: {' '.join(self.before.split())} -> {' '.join(self.after.split()) or '(nothing)'}"

    def name(self, text: str) -> str:
        """Its name in equivalent.txt. It is valid as long as the text of the line is unchanged, at any line number."""
        line = text.splitlines()[self.line - 1].strip()
        return f"{self.file.as_posix()} | {line} | {' '.join(self.before.split())} -> {' '.join(self.after.split()) or '(nothing)'}"


def mutations(tree: pathlib.Path, file: pathlib.Path) -> list[Mutation]:
    text = (tree / file).read_text(encoding="utf-8")
    blank = list(text)  # the same length, without the parts that remain unchanged
    found = []

    def add(start: int, end: int, after: str):
        found.append(Mutation(file, text.count("\n", 0, start) + 1, text[start:end], after, start, end))

    for token in TOKEN.finditer(text):
        if token["skip"]:
            blank[token.start():token.end()] = ["\0" if letter != "\n" else letter for letter in token[0]]
        elif (token["operator"] or token["word"] or "") in SWAPS:
            add(token.start(), token.end(), SWAPS[token[0]])
        elif token["number"]:
            digits = re.sub(r"[uUlL']", "", token[0])
            add(token.start(), token.end(), str(int(digits, 0) + 1) + re.sub(r"[^uUlL]", "", token[0].lstrip("0xX")))
    code = "".join(blank)
    for match in COMPARISON.finditer(code):
        add(match.start(1), match.end(1), match[1] + "=")
    for match in NEGATION.finditer(code):
        add(match.start(), match.end(), "")
    for match in CALL.finditer(code):
        if not match[0].lstrip().startswith(("return", "static_cast", "static_assert")):
            add(match.start() + len(match[0]) - len(match[0].lstrip()), match.end(), ";")
    for match in RETURN.finditer(code):
        if re.search(r"[<>=!&|]{1,2}|^\w+\(", match[1]) and "->" not in match[1]:
            add(match.start(1), match.end(1), f"!({text[match.start(1):match.end(1)]})")
    return found


def choose(tree: pathlib.Path, folder: str, seed: int) -> list[Mutation]:
    """All mutations of a room, in the seed's order."""
    every = [each for file in sorted((tree / folder).rglob("*.cpp")) for each in mutations(tree, file.relative_to(tree))]
    random.Random(f"{seed} {folder}").shuffle(every)
    return every
