"""The C interface of libPelmora64 described with ctypes: its records, its
constants and a Library object whose methods are the exports, typed.

The methods keep the C names and the C meaning (neutral results, nothing
raised by the library itself). The binding adds only what Python needs:
str is accepted wherever C takes a string, joint frames may be given as
Point3 arrays, sequences of triples or float buffers (numpy arrays
included), out-parameters come back as return values, and integers that
do not fit their C type raise OverflowError instead of wrapping around to
another player or gesture. Whatever C would take on trust - that a buffer
holds what it will write or read, that a start-up record stays inside the
library's limits - is checked first and refused with PelmoraError (or
TypeError for an object that is no buffer at all), so no call reaches C
with memory it could overrun.
"""

import ctypes
import os
import sys
import traceback
from ctypes import (CFUNCTYPE, POINTER, Structure, c_bool, c_char_p, c_float, c_int, c_int32, c_uint32,
                    c_uint64, c_void_p)

from ._locate import load_library

try:  # optional: frames given as numpy arrays are converted without a loop
    import numpy as _numpy
except ImportError:  # pragma: no cover - depends on the machine
    _numpy = None

NO_GESTURE = 0xFFFFFFFF

# The limits of pelmora.h (PELMORA_MAX_*).
MAX_PLAYERS = 1024
MAX_JOINTS = 256
MAX_VELOCITY_FRAMES = 4096
MAX_NAME_LENGTH = 1024
MAX_HISTORY_POINTS = 16777216

RETURN_INFO_8 = 0
RETURN_INFO_16 = 1
RETURN_INFO_24 = 2

VELOCITY_EQUAL = 0
VELOCITY_HALVING = 1

# Joint types of GestureConfigParam.SkeletonTypeArray, in PelmoraJoint order;
# the names are those of the value pool without their "P_"/"V_" prefix.
JOINT_NAMES = (
    "Invalid", "Head", "Neck", "Torso", "Waist",
    "LeftCollar", "LeftShoulder", "LeftElbow", "LeftWrist", "LeftHand", "LeftFingertip",
    "RightCollar", "RightShoulder", "RightElbow", "RightWrist", "RightHand", "RightFingertip",
    "LeftHip", "LeftKnee", "LeftAnkle", "LeftFoot", "RightHip", "RightKnee", "RightAnkle", "RightFoot",
)
JOINTS = {name: index for index, name in enumerate(JOINT_NAMES)}


class PelmoraError(RuntimeError):
    """Something the library cannot do: a configuration that does not load
    or compile, a call that does not suit the session, or arguments it
    would have to take on trust and that do not hold."""


class GestureConfigParam(Structure):
    """The start-up record handed to InitPelmora (40 bytes)."""
    _fields_ = [
        ("IsUseSubThread", c_int32),
        ("ReturnInfoType", c_int32),
        ("PlayerNum", c_int32),
        ("SkeletonNum", c_int32),
        ("SkeletonTypeArray", POINTER(c_int32)),
        ("VelocityFrameNum", c_int32),
        ("VelocityMulType", c_int32),
        ("IsGetVelocityData", c_int32),
        ("Reserved", c_int32),
    ]


class Point3(Structure):
    """One joint position, or velocity in position units per millisecond."""
    _fields_ = [("x", c_float), ("y", c_float), ("z", c_float)]

    def __iter__(self):
        return iter((self.x, self.y, self.z))

    def __repr__(self):
        return "Point3(%r, %r, %r)" % (self.x, self.y, self.z)


class PelmoraResult8(Structure):
    _fields_ = [("finished", c_int32), ("gestureIndex", c_int32)]


class PelmoraResult16(Structure):
    _fields_ = PelmoraResult8._fields_ + [("segmentIndex", c_int32), ("succeeded", c_int32)]


class PelmoraResult24(Structure):
    _fields_ = PelmoraResult16._fields_ + [("gestureTimeMs", c_int32), ("segmentTimeMs", c_int32)]


RESULT_RECORDS = {RETURN_INFO_8: PelmoraResult8, RETURN_INFO_16: PelmoraResult16, RETURN_INFO_24: PelmoraResult24}

TIME_SOURCE = CFUNCTYPE(c_uint32, c_void_p)

# C signature of every export: name -> (result type, argument types).
EXPORTS = {
    "InitPelmora": (None, [POINTER(GestureConfigParam)]),
    "ClosePelmora": (None, []),
    "SubThreadFPS": (c_int32, []),
    "LoadConfigFile": (c_bool, [c_char_p]),
    "LoadConfigData": (c_bool, [c_char_p]),
    "StartGestureWork": (c_bool, []),
    "OnIdle": (None, []),
    "GetGestureIndex": (c_uint32, [c_int32, c_char_p]),
    "GetGestureName": (c_char_p, [c_int32, c_uint32]),
    "GetGestureNum": (c_uint64, [c_int32]),
    "Stricmp": (c_int32, [c_char_p, c_char_p]),
    "SetGestureLogOutPut": (c_int32, []),
    "SetDebugInfo": (None, [c_bool]),
    "SetPlayer": (None, [c_int32, c_bool]),
    "SetPlayerGesture": (None, [c_int32, c_uint32, c_bool]),
    "SetPlayerGestureFromName": (None, [c_int32, c_char_p, c_bool]),
    "ResetPlayerGesture": (None, [c_int32, c_uint32]),
    "ResetPlayerGestureFromName": (None, [c_int32, c_char_p]),
    "SetPlayerImmediate": (None, [c_int32, c_bool]),
    "SetPlayerGestureImmediate": (None, [c_int32, c_uint32, c_bool]),
    "SetPlayerGestureImmediateFromName": (None, [c_int32, c_char_p, c_bool]),
    "ResetPlayerGestureImmediate": (None, [c_int32, c_uint32]),
    "ResetPlayerGestureImmediateFromName": (None, [c_int32, c_char_p]),
    "UpdateSketonData": (c_bool, [c_int32, POINTER(Point3), c_int32]),
    "UpdateSketonDataImmediate": (c_bool, [c_int32, POINTER(Point3), c_int32, c_void_p, POINTER(c_uint32)]),
    "GetPlayerGestureState": (c_bool, [c_int32, c_void_p, POINTER(c_uint32)]),
    "GetPlayerVelocityData": (c_bool, [c_int32, POINTER(Point3), c_int32]),
    "PelmoraVersion": (None, [POINTER(c_int), POINTER(c_int), POINTER(c_int)]),
    "SetTimeSource": (None, [TIME_SOURCE, c_void_p]),
    "GetLastConfigError": (c_char_p, []),
}

# What InitPelmora was last given, per loaded library file (every Library of
# one file drives one engine): the sizes its buffers are checked against.
_layouts = {}


class _Layout:
    def __init__(self, param):
        self.players = max(0, param.PlayerNum)
        self.joints = max(0, param.SkeletonNum)
        record = RESULT_RECORDS.get(param.ReturnInfoType)
        self.record_size = ctypes.sizeof(record) if record else 0


# Every callback ever installed as the library's clock stays referenced: the
# library may still be inside an old one (the worker reads the clock on its
# own thread) when a new one replaces it, and a freed ctypes thunk would
# crash it. One small object per installation.
_installed_time_sources = []


def _int(value, ctype, what):
    value = int(value)
    if ctype(value).value != value:
        raise OverflowError("%s %d does not fit the C argument" % (what, value))
    return value


def _player(value):
    return _int(value, c_int32, "player")


def _gesture(value):
    return _int(value, c_uint32, "gesture")


def _text(value):
    """str, bytes or None for a C string argument."""
    if value is None or isinstance(value, bytes):
        return value
    return os.fsencode(value) if isinstance(value, os.PathLike) else str(value).encode("utf-8", "surrogateescape")


def _decode(value):
    return "" if value is None else value.decode("utf-8", "surrogateescape")


def _kept_alive(kept):
    """The ctypes instances in the tree of objects a ctypes object keeps
    alive (its _objects)."""
    if isinstance(kept, (ctypes._SimpleCData, ctypes.Array, Structure)):
        yield kept
        kept = kept._objects
    if isinstance(kept, dict):
        kept = list(kept.values())
    if isinstance(kept, (tuple, list)):
        for item in kept:
            yield from _kept_alive(item)


def _type_array_length(param):
    """How many joint types SkeletonTypeArray points to: it must point into
    a ctypes object that the record keeps alive, the only memory whose size
    Python knows."""
    address = ctypes.cast(param.SkeletonTypeArray, c_void_p).value
    for kept in _kept_alive((param._objects or {}).get("4")):
        start = ctypes.addressof(kept)
        if start <= address < start + ctypes.sizeof(kept):
            return (start + ctypes.sizeof(kept) - address) // ctypes.sizeof(c_int32)
    raise TypeError("SkeletonTypeArray must be a ctypes c_int32 array assigned to the record")


def _check_param(param):
    for field, limit in (("PlayerNum", MAX_PLAYERS), ("SkeletonNum", MAX_JOINTS),
                         ("VelocityFrameNum", MAX_VELOCITY_FRAMES)):
        if getattr(param, field) > limit:
            raise PelmoraError("%s %d is above the library's limit of %d" % (field, getattr(param, field), limit))
    points = max(param.PlayerNum, 0) * max(param.VelocityFrameNum, 2) * max(param.SkeletonNum, 0)
    if points > MAX_HISTORY_POINTS:
        raise PelmoraError("PlayerNum x VelocityFrameNum x SkeletonNum %d is above the library's limit of %d"
                           % (points, MAX_HISTORY_POINTS))
    if param.SkeletonNum > 0 and param.SkeletonTypeArray:
        length = _type_array_length(param)
        if length < param.SkeletonNum:
            raise PelmoraError("SkeletonTypeArray holds %d joint types, SkeletonNum is %d"
                               % (length, param.SkeletonNum))


def _frame(joints, count):
    """The Point3 array and joint count of a frame argument."""
    points = None if joints is None else point_array(joints)
    given = 0 if points is None else len(points)
    count = given if count is None else _int(count, c_int32, "count")
    if count > given:
        raise PelmoraError("count %d is more than the %d joints given" % (count, given))
    return points, count


def point_array(joints):
    """A ctypes Point3 array from joints: a Point3 array (used as it is),
    a float buffer of n*3 values (numpy array, array.array('f'), ...), or
    a sequence of (x, y, z) triples or Point3."""
    if isinstance(joints, ctypes.Array) and joints._type_ is Point3:
        return joints
    if isinstance(joints, (int, ctypes._Pointer, c_void_p)):
        raise TypeError("a joint frame must hold its joints; a %s gives no length" % type(joints).__name__)
    if _numpy is not None and isinstance(joints, _numpy.ndarray):
        flat = _numpy.ascontiguousarray(joints, dtype=_numpy.float32).reshape(-1)
        if flat.size % 3:
            raise ValueError("a joint array needs x, y, z per joint, got %d numbers" % flat.size)
        return (Point3 * (flat.size // 3)).from_buffer_copy(flat)
    try:
        view = memoryview(joints)
    except TypeError:
        view = None
    if view is not None:
        if view.format != "f":
            raise TypeError("a joint buffer must hold 32-bit floats, not format %r" % view.format)
        if view.nbytes % ctypes.sizeof(Point3):
            raise ValueError("a joint buffer needs x, y, z per joint")
        return (Point3 * (view.nbytes // ctypes.sizeof(Point3))).from_buffer_copy(view)
    points = [p if isinstance(p, Point3) else Point3(*map(float, p)) for p in joints]
    return (Point3 * len(points))(*points)


class Library:
    """libPelmora64 loaded into this process. Without a path it is looked
    for in $PELMORA_LIBRARY, then in the installed prefix (the one `cmake
    --install` recorded, pkg-config's), then by the dynamic loader.

    The library keeps process-wide state: every Library object of the same
    file drives the same engine."""

    def __init__(self, path=None):
        self._dll, self.path = load_library(path)
        for name, (restype, argtypes) in EXPORTS.items():
            function = getattr(self._dll, name)
            function.restype = restype
            function.argtypes = argtypes

    # ---- Lifecycle and configuration

    def InitPelmora(self, param):
        if param is not None:
            _check_param(param)
        self._dll.InitPelmora(None if param is None else ctypes.byref(param))
        if param is not None:
            _layouts[self._dll._handle] = _Layout(param)

    def ClosePelmora(self):
        self._dll.ClosePelmora()
        _layouts.pop(self._dll._handle, None)

    def SubThreadFPS(self):
        return self._dll.SubThreadFPS()

    def LoadConfigFile(self, path):
        return self._dll.LoadConfigFile(_text(path))

    def LoadConfigData(self, xml):
        return self._dll.LoadConfigData(_text(xml))

    def StartGestureWork(self):
        return self._dll.StartGestureWork()

    def OnIdle(self):
        self._dll.OnIdle()

    def GetGestureIndex(self, player, name):
        return self._dll.GetGestureIndex(_player(player), _text(name))

    def GetGestureName(self, player, gesture):
        return _decode(self._dll.GetGestureName(_player(player), _gesture(gesture)))

    def GetGestureNum(self, player):
        return self._dll.GetGestureNum(_player(player))

    def Stricmp(self, a, b):
        return self._dll.Stricmp(_text(a), _text(b))

    # ---- Log output

    def SetGestureLogOutPut(self):
        return self._dll.SetGestureLogOutPut()

    def SetDebugInfo(self, on):
        self._dll.SetDebugInfo(bool(on))

    # ---- Players and gestures, queued (worker mode)

    def SetPlayer(self, player, track):
        self._dll.SetPlayer(_player(player), bool(track))

    def SetPlayerGesture(self, player, gesture, enable):
        self._dll.SetPlayerGesture(_player(player), _gesture(gesture), bool(enable))

    def SetPlayerGestureFromName(self, player, name, enable):
        self._dll.SetPlayerGestureFromName(_player(player), _text(name), bool(enable))

    def ResetPlayerGesture(self, player, gesture):
        self._dll.ResetPlayerGesture(_player(player), _gesture(gesture))

    def ResetPlayerGestureFromName(self, player, name):
        self._dll.ResetPlayerGestureFromName(_player(player), _text(name))

    # ---- Players and gestures, immediate (no worker)

    def SetPlayerImmediate(self, player, track):
        self._dll.SetPlayerImmediate(_player(player), bool(track))

    def SetPlayerGestureImmediate(self, player, gesture, enable):
        self._dll.SetPlayerGestureImmediate(_player(player), _gesture(gesture), bool(enable))

    def SetPlayerGestureImmediateFromName(self, player, name, enable):
        self._dll.SetPlayerGestureImmediateFromName(_player(player), _text(name), bool(enable))

    def ResetPlayerGestureImmediate(self, player, gesture):
        self._dll.ResetPlayerGestureImmediate(_player(player), _gesture(gesture))

    def ResetPlayerGestureImmediateFromName(self, player, name):
        self._dll.ResetPlayerGestureImmediateFromName(_player(player), _text(name))

    # ---- Frames and results

    def UpdateSketonData(self, player, joints, count=None):
        """Hands a frame to the worker; count defaults to the joints given
        and may not exceed them."""
        points, count = _frame(joints, count)
        return self._dll.UpdateSketonData(_player(player), points, count)

    def UpdateSketonDataImmediate(self, player, joints, results, count=None):
        """Evaluates a frame and copies the results into `results` (an array
        of the configured record type, one per gesture slot). Returns
        (new results copied, number of records)."""
        points, count = _frame(joints, count)
        player = _player(player)
        self._check_results(player, results)
        written = c_uint32(0)
        ok = self._dll.UpdateSketonDataImmediate(player, points, count, results, ctypes.byref(written))
        return ok, written.value

    def GetPlayerGestureState(self, player, results):
        """Returns (new results copied, number of records)."""
        player = _player(player)
        self._check_results(player, results)
        written = c_uint32(0)
        ok = self._dll.GetPlayerGestureState(player, results, ctypes.byref(written))
        return ok, written.value

    def _check_results(self, player, results):
        """A results buffer must hold GetGestureNum(player) records of the
        configured size. Where the library would refuse the call anyway (not
        started, no such player) it is left to do so."""
        if results is None:
            return
        if not isinstance(results, (ctypes.Array, Structure)):
            raise TypeError("results must be a ctypes array of result records, not %s" % type(results).__name__)
        layout = _layouts.get(self._dll._handle)
        if layout is None or not 0 <= player < layout.players or not layout.record_size:
            return
        needed = self._dll.GetGestureNum(player)
        held = ctypes.sizeof(results) // layout.record_size
        if held < needed:
            raise PelmoraError("results buffer holds %d records of %d bytes, GetGestureNum(%d) is %d"
                               % (held, layout.record_size, player, needed))

    def GetPlayerVelocityData(self, player, joints):
        """Copies the newest velocities into `joints`, a Point3 array of the
        skeleton's size; True when copied."""
        return self._dll.GetPlayerVelocityData(_player(player), joints, 0 if joints is None else len(joints))

    # ---- Extensions

    def PelmoraVersion(self):
        parts = (c_int(), c_int(), c_int())
        self._dll.PelmoraVersion(*(ctypes.byref(p) for p in parts))
        return tuple(p.value for p in parts)

    def SetTimeSource(self, now, user=None):
        """Installs now(user) -> milliseconds as the library's clock (called
        from the worker thread too); None restores the steady clock. An
        exception inside `now` is printed and reads as 0."""
        if now is None:
            self._dll.SetTimeSource(TIME_SOURCE(), None)
            return
        if not isinstance(now, TIME_SOURCE):
            python_now = now

            def trampoline(user_pointer):
                try:
                    return int(python_now(user_pointer)) & 0xFFFFFFFF
                except BaseException:  # nothing may unwind into the library
                    traceback.print_exc(file=sys.stderr)
                    return 0

            now = TIME_SOURCE(trampoline)
        _installed_time_sources.append(now)
        self._dll.SetTimeSource(now, user)

    def GetLastConfigError(self):
        return _decode(self._dll.GetLastConfigError())
