"""What keeps a check from telling anything."""


class Failure(Exception):
    pass
