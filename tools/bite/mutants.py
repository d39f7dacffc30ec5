"""Small mistakes that somebody could make in a source: each is one replacement in its text."""

import difflib
import re
from collections import Counter
from dataclasses import dataclass, replace

from bite.lines import named
from bite.tokens import tokens_of


@dataclass(frozen=True)
class Mutant:
    path: str
    kind: str
    start: int
    end: int
    was: str
    becomes: str
    line: int
    place: str = ""  # among equal ones of its line

    def applied_to(self, source):
        return source[:self.start] + self.becomes + source[self.end:]

    def described(self):
        return f"{self.path}:{self.line}: {self.change()}"

    def change(self):
        becomes = _on_one_line(self.becomes) or "nothing"
        return f"{self.kind}: {_on_one_line(self.was)} -> {becomes}{self.place}"

    def line_of(self, source):
        return named(source.splitlines(), self.line)

    def diff(self, source):
        lines = difflib.unified_diff(source.splitlines(), self.applied_to(source).splitlines(),
                                     self.path, self.path, n=2, lineterm="")
        return "\n".join(lines)


def _on_one_line(text):
    return " ".join(text.split())


_COMPARISONS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
_SWAPPED = {"&&": "||", "||": "&&", "+": "-", "-": "+", "+=": "-=", "-=": "+=", "*": "+",
            "&": "|", "|": "&", "|=": "&=", "<<": ">>", ">>": "<<"}
_TRUTHS = {"true": "false", "false": "true"}
_LIMITS = {"min": "max", "max": "min"}
_OPENING = {"(": ")", "{": "}", "[": "]"}
# What begins no call and no assignment.
_KEYWORDS = set("""alignas auto break case catch class const constexpr continue default delete do
    else enum explicit extern for friend goto if inline mutable namespace new operator private
    protected public return sizeof static static_assert struct switch template throw try typedef
    typename union using virtual volatile while""".split())
_ASSIGNING = {"=", "+=", "-=", "*=", "/=", "|=", "&=", "^=", "%=", "<<=", ">>="}
_LEAVING = {"break", "continue", "return", "throw"}


def mutants_of(path, source):
    """All of a source, in its order."""
    tokens = list(tokens_of(source))
    found = []
    index = 0
    while index < len(tokens):
        if tokens[index].text == "static_assert":  # the compiler itself holds it
            index = _semicolon(tokens, index)
            continue
        replacements = [*_of_token(tokens, index), *_of_condition(source, tokens, index),
                        *_of_statement(tokens, index)]
        for kind, start, end, becomes in replacements:
            found.append(Mutant(path, kind, start, end, source[start:end], becomes,
                                source.count("\n", 0, start) + 1))
        index += 1
    return list(_told_apart(found))


def _told_apart(mutants):
    def likeness(mutant):
        return mutant.line, mutant.change()

    count = Counter(map(likeness, mutants))
    seen = Counter()
    for mutant in mutants:
        seen[likeness(mutant)] += 1
        if count[likeness(mutant)] > 1:
            place = f" ({seen[likeness(mutant)]} of {count[likeness(mutant)]})"
            mutant = replace(mutant, place=place)
        yield mutant


def _of_token(tokens, index):
    token = tokens[index]
    before = tokens[index - 1].text if index else ""

    def becomes(kind, text):
        return [(kind, token.start, token.end, text)]

    between = token.after_space and token.before_space  # neither a template's nor a reference's
    if token.text in _COMPARISONS and between:
        return becomes("comparison", _COMPARISONS[token.text])
    if token.text in _SWAPPED and between:
        return becomes("operator", _SWAPPED[token.text])
    if token.text in _LIMITS and before == "::":
        return becomes("operator", _LIMITS[token.text])
    if token.text in _TRUTHS:
        return becomes("constant", _TRUTHS[token.text])
    if token.text == "!":
        return becomes("condition", "")
    if token.kind == "number" and re.fullmatch(r"[\d']+[uUlL]*|0[xX][\da-fA-F]+[uUlL]*", token.text):
        return becomes("constant", _next_number(token.text))
    if token.kind == "character" and re.fullmatch("'[!-~]'", token.text):
        return becomes("constant", "'~'" if token.text != "'~'" else "'!'")
    if token.kind == "string" and token.text.startswith('"') and before != "extern":
        # Of a name such as "syncFiles:withTarget:" nobody sees the end.
        is_name = token.text.endswith(':"')
        return becomes("text", '"~' + token.text[1:] if is_name else token.text[:-1] + '~"')
    return []


def _next_number(text):
    digits, suffix = re.fullmatch(r"(0[xX][\da-fA-F]+|[\d']+)([uUlL]*)", text).groups()
    if digits[:2] in ("0x", "0X"):
        return f"0x{int(digits, 16) + 1:X}{suffix}"
    if len(digits) > 1 and digits[0] == "0":
        return f"0{int(digits, 8) + 1:o}{suffix}"
    return f"{int(digits.replace(chr(39), '')) + 1}{suffix}"


def _matching(tokens, opening):
    """The index of what closes the bracket; nothing where the end of the source comes first."""
    depth = 0
    for index in range(opening, len(tokens)):
        depth += (tokens[index].text in _OPENING) - (tokens[index].text in _OPENING.values())
        if depth == 0:
            return index
    return None


def _of_condition(source, tokens, index):
    if tokens[index].text not in ("if", "while") or tokens[index + 1].text != "(":
        return []
    closing = _matching(tokens, index + 1)
    inside = tokens[index + 2:closing]
    if any(token.text in (";", "=") for token in inside):  # what it names is needed below
        return []
    start, end = tokens[index + 1].end, tokens[closing].start
    return [("condition", start, end, f"!({source[start:end]})")]


def _of_statement(tokens, index):
    """What is dropped where it is a statement of its own: a call, an assignment, a way out."""
    if not _begins_statement(tokens, index):
        return []
    token = tokens[index]
    if token.text in _LEAVING:
        end = _semicolon(tokens, index)
        return [("dropped " + token.text, token.start, tokens[end].start, "")] if end else []
    if token.text in ("++", "--"):
        end = _semicolon(tokens, index)
        return [("dropped step", token.start, tokens[end].start, "")] if end else []
    if token.text == "::":
        index += 1
    if tokens[index].kind != "name" or tokens[index].text in _KEYWORDS:
        return []
    kind, end = _statement(tokens, index)
    return [("dropped " + kind, token.start, tokens[end].start, "")] if kind else []


def _begins_statement(tokens, index):
    if index == 0 or tokens[index - 1].text != ":":
        return index > 0 and tokens[index - 1].text in (";", "{", "}", ")", "else")
    for before in reversed(tokens[:index]):  # a label's colon
        if before.text in ("case", "default"):
            return True
        if before.text in (";", "{", "}", "?"):
            return False
    return False


def _statement(tokens, index):
    """What the statement is that begins here, and where its semicolon stands."""
    kind = None
    follows_name = False
    while index < len(tokens):
        token = tokens[index]
        if token.text == ";":
            return kind, index
        if token.text in _ASSIGNING:
            if tokens[index + 1].text in ("delete", "default"):  # says what there is, and does nothing
                return None, index
            end = _semicolon(tokens, index)
            return ("assignment" if follows_name and end else None), end
        if token.kind == "name" and follows_name:  # a type and a name: it declares
            return None, index
        if token.text in ("(", "["):
            kind = "call" if token.text == "(" else kind
            index = _matching(tokens, index) or len(tokens)
            follows_name = True
        elif token.kind == "name":
            follows_name = True
        elif token.text in (".", "->", "::"):
            kind, follows_name = None, False
        else:
            return None, index
        index += 1
    return None, index


def _semicolon(tokens, index):
    """The statement's end; nothing where what it stands in ends before."""
    while index is not None and index < len(tokens) and tokens[index].text != ";":
        if tokens[index].text in _OPENING.values():
            return None
        index = _matching(tokens, index) if tokens[index].text in _OPENING else index
        index = index + 1 if index is not None else None
    return index if index is not None and index < len(tokens) else None
