"""The library's failures and warnings as Python sees them."""


class NuvoError(Exception):
    """A failure reported by the library.

    ``code`` is the library's (negative) return code, ``message`` its text
    ("ERROR 00112: ..."), ``where`` what failed (a file, a line of a parameter
    file).
    """

    def __init__(self, code, message, where=""):
        super().__init__(f"{where}: {message}" if where else message)
        self.code = code
        self.message = message
        self.where = where


class NuvoWarning(UserWarning):
    """A warning of the library ("WARNING 00038: ..."), issued through the
    :mod:`warnings` module while a simulation runs; turn it into an error with
    ``warnings.simplefilter("error", NuvoWarning)`` to stop the run on it."""
