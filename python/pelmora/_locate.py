"""Where libPelmora64 is loaded from, and a clear error naming every place
looked when it is found nowhere. Pure functions of the environment; safe
from any thread.

The order: a path the caller names; else $PELMORA_LIBRARY (when set, it
alone is tried: a library the user pointed at and that does not load must
not be replaced silently by another one); else the library directory that
`cmake --install` recorded when it installed this package; else the libdir
pkg-config reports for pelmora64 (an installed prefix on PKG_CONFIG_PATH);
else the dynamic loader's own search (LD_LIBRARY_PATH, the ld.so cache).
"""

import ctypes
import os
import subprocess

# The SONAME carries the major version of the C interface this binding
# speaks; the unversioned link is only there where the headers are.
LIBRARY_FILES = ("libPelmora64.so.0", "libPelmora64.so")

PKG_CONFIG_MODULE = "pelmora64"


def _installed_library_dir():
    """The library directory recorded by `cmake --install`, or None for a
    package installed from the source tree alone."""
    try:
        from ._installed import LIBRARY_DIR
    except ImportError:
        return None
    return LIBRARY_DIR


def _pkg_config_library_dir():
    """(libdir or None, why not) from pkg-config."""
    try:
        answer = subprocess.run(["pkg-config", "--variable=libdir", PKG_CONFIG_MODULE],
                                capture_output=True, text=True, check=False)
    except OSError as error:
        return None, "pkg-config did not run (%s)" % error.strerror
    libdir = answer.stdout.strip()
    if answer.returncode != 0 or not libdir:
        return None, "pkg-config knows no %s (PKG_CONFIG_PATH=%s)" % (
            PKG_CONFIG_MODULE, os.environ.get("PKG_CONFIG_PATH", ""))
    return libdir, None


def _in_dir(libdir):
    return [os.path.join(libdir, name) for name in LIBRARY_FILES]


def _candidate_groups(path):
    """(where, [candidates] or None, why none) in the order of looking."""
    if path is not None:
        return [("the path given", [os.fspath(path)], None)]
    configured = os.environ.get("PELMORA_LIBRARY")
    if configured:
        return [("PELMORA_LIBRARY", [configured], None)]
    groups = [("PELMORA_LIBRARY", None, "not set")]
    installed = _installed_library_dir()
    if installed:
        groups.append(("the prefix cmake --install recorded", _in_dir(installed), None))
    libdir, why_not = _pkg_config_library_dir()
    groups.append(("pkg-config", _in_dir(libdir) if libdir else None, why_not))
    groups.append(("the dynamic loader", list(LIBRARY_FILES), None))
    return groups


def load_library(path=None):
    """(ctypes.CDLL, path loaded) of the first candidate that loads;
    OSError naming each place looked and why it failed otherwise."""
    tried = []
    for where, candidates, why_not in _candidate_groups(path):
        if candidates is None:
            tried.append("%s: %s" % (where, why_not))
            continue
        for candidate in candidates:
            try:
                return ctypes.CDLL(candidate), candidate
            except OSError as error:
                tried.append("%s: %s" % (where, error))
    raise OSError("libPelmora64 not found (set PELMORA_LIBRARY to its path); tried " + "; ".join(tried))
