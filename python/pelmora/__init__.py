"""Python binding of libPelmora64, the body-gesture recogniser, over its C
interface with ctypes (standard library only; numpy arrays are accepted as
joint frames when numpy is installed).

    Library     every export of pelmora.h, typed, under its C name
    Session     InitPelmora ... ClosePelmora as a context manager
    replay      a recording through a configuration, as `pelmora replay`
    sources     frames of today's skeleton trackers turned into the library's

`pelmora.__version__` is the version of the library the package loads
(PelmoraVersion), so reading it finds and loads the library.
"""

from ._native import (EXPORTS, JOINT_NAMES, JOINTS, MAX_HISTORY_POINTS, MAX_JOINTS, MAX_NAME_LENGTH, MAX_PLAYERS,
                      MAX_VELOCITY_FRAMES, NO_GESTURE, PelmoraError, RESULT_RECORDS, RETURN_INFO_8, RETURN_INFO_16,
                      RETURN_INFO_24, TIME_SOURCE, VELOCITY_EQUAL, VELOCITY_HALVING, GestureConfigParam, Library,
                      PelmoraResult8, PelmoraResult16, PelmoraResult24, Point3, point_array)
from .output import capture_library_output, flush_library_output, library_output_to
from .recording import Frame, Recording, RecordingStream, format_ms, read_recording
from .replay import Finish, replay, ticks
from .session import ManualClock, Result, Session
from . import sources

__all__ = [
    "EXPORTS", "JOINT_NAMES", "JOINTS", "MAX_HISTORY_POINTS", "MAX_JOINTS", "MAX_NAME_LENGTH", "MAX_PLAYERS",
    "MAX_VELOCITY_FRAMES", "NO_GESTURE", "RESULT_RECORDS", "RETURN_INFO_8", "RETURN_INFO_16",
    "RETURN_INFO_24", "TIME_SOURCE", "VELOCITY_EQUAL", "VELOCITY_HALVING", "GestureConfigParam", "Library",
    "PelmoraResult8", "PelmoraResult16", "PelmoraResult24", "Point3", "point_array",
    "capture_library_output", "flush_library_output", "library_output_to",
    "Frame", "Recording", "RecordingStream", "format_ms", "read_recording", "Finish", "replay", "ticks",
    "ManualClock", "PelmoraError", "Result", "Session", "sources",
]


def __getattr__(name):
    if name != "__version__":
        raise AttributeError("module %r has no attribute %r" % (__name__, name))
    version = "%d.%d.%d" % Library().PelmoraVersion()
    globals()["__version__"] = version
    return version
