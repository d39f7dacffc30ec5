"""The Debian packages of tools/packages.sh, installed where they are missing."""

import subprocess
from pathlib import Path

from bite.failure import Failure

_PROJECT = Path(__file__).resolve().parent.parent.parent


def install(*kinds):
    names = " ".join(f'"${{{kind}_packages[@]}}"' for kind in kinds)
    ended = subprocess.run(["bash", "-c", f". tools/packages.sh; tools/install-packages {names}"],
                           cwd=_PROJECT, check=False)
    if ended.returncode != 0:
        raise Failure("packages are missing")
