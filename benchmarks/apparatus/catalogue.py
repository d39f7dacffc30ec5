"""Update catalogues of any size."""

import plistlib


def product(number):
    return f"product-{number:06d}"


def _rule(number):
    """About 600 bytes as XML."""
    return {"ProductID": product(number),
            "Version": f"2.{number % 100}.{number % 7}",
            "Size": 7_340_032 + number,
            "Hash256": f"{number * 2654435761 % 2**64:064x}",
            "MinimumOSVersion": "10.15.0",
            "Codebase": f"https://updates.example/{number:06d}/{image(number)}",
            "ReleaseNotes": f"Mends what package {number - 1} broke. " * 3}


def image(number):
    return f"FW_{number:06d}.img"


def write(path, rules, form):
    with open(path, "wb") as file:
        plistlib.dump({"Rules": [_rule(number) for number in range(rules)]}, file,
                      fmt=plistlib.FMT_XML if form == "xml" else plistlib.FMT_BINARY,
                      sort_keys=False)


def chosen(rules, products):
    """So many of the rules' numbers, evenly spread."""
    return [index * rules // products for index in range(products)]
