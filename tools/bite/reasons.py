"""Lists of what a check finds and need not be mended, each entry with its reason.

An entry names what it stands for by the same keys as what is found; `~~` stands for any text. One
that fits nothing any more is a mistake of the list."""

import re
import tomllib
from pathlib import Path

from bite.failure import Failure

_FOLDER = Path(__file__).parent


class Reasons:
    def __init__(self, name, keys):
        with open(_FOLDER / f"{name}.toml", "rb") as opened:
            entries = tomllib.load(opened).get(name, [])
        self._name = name
        self._entries = [_Entry(entry, keys) for entry in entries]

    def of(self, **found):
        """The reason why this need not be mended; nothing where there is none."""
        fitting = [entry for entry in self._entries if entry.fits(found)]
        for entry in fitting:
            entry.is_used = True
        return fitting[0].reason if fitting else None

    def require_all_used(self):
        """Once everything that is found has been asked for."""
        unused = [str(entry) for entry in self._entries if not entry.is_used]
        if unused:
            raise Failure(f"nothing fits what {self._name}.toml says of\n  " + "\n  ".join(unused))


class _Entry:
    def __init__(self, table, keys):
        if set(table) != {*keys, "reason"} or not all(table[key].strip() for key in table):
            raise Failure(f"an entry has {', '.join(keys)} and reason, other than {table}")
        self._text = ": ".join(table[key] for key in keys)
        self._patterns = {key: _pattern(table[key]) for key in keys}
        self.reason = " ".join(table["reason"].split())
        self.is_used = False

    def __str__(self):
        return self._text

    def fits(self, found):
        return all(pattern.fullmatch(found[key]) for key, pattern in self._patterns.items())


def _pattern(text):
    return re.compile(".*".join(re.escape(part) for part in text.split("~~")))
