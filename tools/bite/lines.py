"""How lists name a line of a source."""

import re

_NOTHING_OF_ITS_OWN = re.compile(r"}|(break|continue|return( \w+| {})?); *(//.*)?")


def named(lines, number):
    """Its text, behind that of the line before where it is but a bracket or a way out."""
    line = lines[number - 1].strip()
    if not _NOTHING_OF_ITS_OWN.fullmatch(line):
        return line
    return f"{lines[number - 2].strip()} {line}"
