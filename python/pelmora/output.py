"""The library prints its diagnostics with printf on the process's standard
output (file descriptor 1, through the C runtime's buffer), not through
sys.stdout. These helpers move or collect that output at the descriptor
level, flushing the C buffer at each switch so no line lands on the wrong
side."""

import contextlib
import ctypes
import os
import sys
import tempfile

_libc = ctypes.CDLL(None)
_libc.fflush.argtypes = [ctypes.c_void_p]


def flush_library_output():
    """Writes out what the C runtime still buffers for standard output."""
    _libc.fflush(None)


@contextlib.contextmanager
def _stdout_descriptor_to(target_fd):
    sys.stdout.flush()
    flush_library_output()
    saved = os.dup(1)
    try:
        os.dup2(target_fd, 1)
        yield saved
    finally:
        sys.stdout.flush()
        flush_library_output()
        os.dup2(saved, 1)
        os.close(saved)


@contextlib.contextmanager
def library_output_to(target_fd=2):
    """Sends everything printed on descriptor 1 (the library's messages, and
    Python's own sys.stdout) to target_fd, standard error by default, and
    yields a line-buffered text stream on the original standard output, so
    a program can keep its stdout for its own results."""
    with _stdout_descriptor_to(target_fd) as saved:
        with os.fdopen(os.dup(saved), "w", buffering=1) as out:
            yield out


class Captured:
    """What the library printed inside capture_library_output(); `text` is
    filled when the block ends."""

    def __init__(self):
        self.text = ""

    @property
    def lines(self):
        return self.text.splitlines()


@contextlib.contextmanager
def capture_library_output():
    """Collects what the library prints inside the block."""
    captured = Captured()
    with tempfile.TemporaryFile() as sink:
        try:
            with _stdout_descriptor_to(sink.fileno()):
                yield captured
        finally:
            sink.seek(0)
            captured.text = sink.read().decode("utf-8", "replace")
