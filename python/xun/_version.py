"""The package's version: the version of the library it belongs to.

It equals the file VERSION at the top of the source tree, which is the
library's single source of its version (xunVersion() gives it at run time);
python/tests/test_version.py keeps the three in step."""

__version__ = "1.1.0"
