"""C++ source text cut into pieces, as far as mutants have to know them."""

import re
from dataclasses import dataclass

_KINDS = [
    ("comment", r"//[^\n]*|/\*.*?\*/"),
    ("directive", r"(?m:^[ \t]*#(?:[^\n\\]|\\.)*(?:\\\n[^\n]*)*)"),
    ("string", r'(?:u8|[uUL])?R"(?P<mark>[^(]*)\(.*?\)(?P=mark)"|(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*"'),
    ("character", r"'(?:[^'\\\n]|\\.)+'"),
    ("number", r"\.?\d(?:[\w.]|'(?=\w)|[eEpP][+-])*"),
    ("name", r"[A-Za-z_]\w*"),
    ("space", r"\s+"),
    ("operator", r"<=>|->\*?|\+\+|--|::|&&|\|\||<<=?|[-+*/%&|^=!<>]=|[^\w\s]"),
]
_PIECE = re.compile("|".join(f"(?P<{kind}>{pattern})" for kind, pattern in _KINDS), re.S)


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int
    after_space: bool
    before_space: bool


def tokens_of(source):
    """What the compiler sees of a source, without spaces, comments and directives."""
    found = list(_PIECE.finditer(source))
    kinds = [match.lastgroup if match.lastgroup != "mark" else "string" for match in found]
    for index, match in enumerate(found):
        if kinds[index] not in ("space", "comment", "directive"):
            yield Token(kinds[index], match.group(), match.start(), match.end(),
                        index > 0 and kinds[index - 1] == "space",
                        index + 1 < len(found) and kinds[index + 1] == "space")
