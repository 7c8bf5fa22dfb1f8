"""The package's exception."""


class XunError(Exception):
    """A request the library refused: an unknown unit, item type or filter, units
    that cannot be converted into each other, a setup that cannot be loaded."""
