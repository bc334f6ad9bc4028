"""A Pythonic layer over the C interface: a Session is one run of the
library from InitPelmora to ClosePelmora, used as a context manager, with
results handed back as Result tuples and failures raised as PelmoraError."""

import atexit
import os
import time
from ctypes import c_int32
from typing import NamedTuple, Optional

from ._native import (JOINTS, NO_GESTURE, RESULT_RECORDS, RETURN_INFO_24, VELOCITY_EQUAL, GestureConfigParam,
                      Library, Point3)


class PelmoraError(RuntimeError):
    """A configuration that does not load or compile, or a call that does
    not suit the session's mode."""


class Result(NamedTuple):
    """One result record. Fields the configured record does not carry
    (segment and succeeded for 8 bytes, the times below 24) are None."""
    gesture: int
    name: str
    finished: bool
    succeeded: Optional[bool] = None
    segment: Optional[int] = None
    gesture_time_ms: Optional[int] = None
    segment_time_ms: Optional[int] = None


class ManualClock:
    """A clock the host sets: pass it as Session(clock=...) and assign
    `now` (milliseconds) before each frame, as a replay does."""

    def __init__(self, now=0):
        self.now = now

    def __call__(self):
        return self.now


_open_session = None


def _close_at_exit():
    # A worker still running when the interpreter tears down would call a
    # Python clock that no longer exists.
    if _open_session is not None:
        _open_session.close()


atexit.register(_close_at_exit)


def _joint_type(joint):
    if isinstance(joint, str):
        try:
            return JOINTS[joint[2:] if joint.startswith("P_") else joint]
        except KeyError:
            raise ValueError("unknown joint %r" % joint) from None
    return int(joint)


class Session:
    """InitPelmora on open (or `with`), ClosePelmora on close. The library's
    engine is process-wide, so only one Session may be open at a time.

    joints: the skeleton's slot order, as joint names ("Head", "P_Head") or
            PelmoraJoint numbers; every frame gives one point per slot.
    worker: True runs the library's worker thread (submit/wake/results);
            False evaluates on the caller's thread (update).
    clock:  None for the library's steady clock, or a callable returning
            milliseconds (a ManualClock, for instance).
    """

    def __init__(self, joints, players=1, *, worker=False, return_info=RETURN_INFO_24, velocity_frames=2,
                 velocity_mul=VELOCITY_EQUAL, velocity_data=False, clock=None, library=None):
        self.joints = [_joint_type(j) for j in joints]
        self.players = players
        self.worker = worker
        self.return_info = return_info
        self.record = RESULT_RECORDS.get(return_info)
        self._velocity = (velocity_frames, velocity_mul, velocity_data)
        self._clock = clock
        self.library = library if library is not None else Library()
        self._names = []
        self._buffers = {}
        self.is_open = False

    # ---- Lifecycle

    def open(self):
        global _open_session
        if self.is_open:
            return self
        if _open_session is not None:
            raise PelmoraError("another Session is open: the library holds one engine per process")
        types = (c_int32 * max(1, len(self.joints)))(*self.joints)
        param = GestureConfigParam(IsUseSubThread=int(self.worker), ReturnInfoType=self.return_info,
                                   PlayerNum=self.players, SkeletonNum=len(self.joints), SkeletonTypeArray=types,
                                   VelocityFrameNum=self._velocity[0], VelocityMulType=self._velocity[1],
                                   IsGetVelocityData=int(self._velocity[2]))
        # The clock goes in first: the worker starts inside InitPelmora.
        if self._clock is not None:
            clock = self._clock
            self.library.SetTimeSource(lambda _user: clock())
        self.library.InitPelmora(param)
        self.is_open = True
        _open_session = self
        return self

    def close(self):
        global _open_session
        if not self.is_open:
            return
        self.library.ClosePelmora()
        if self._clock is not None:
            self.library.SetTimeSource(None)
        self.is_open = False
        self._names, self._buffers = [], {}
        _open_session = None

    def __enter__(self):
        return self.open()

    def __exit__(self, *exc):
        self.close()
        return False

    # ---- Configuration

    def load(self, path):
        """Loads a configuration file (str or os.PathLike); loads add up."""
        if not self.library.LoadConfigFile(path):
            raise PelmoraError("%s does not load%s" % (os.fspath(path), self._load_detail()))
        return self

    def load_text(self, xml):
        """Loads a configuration document given as text."""
        if not self.library.LoadConfigData(xml):
            raise PelmoraError("the configuration text does not load" + self._load_detail())
        return self

    def _load_detail(self):
        detail = self.library.GetLastConfigError()
        return ": " + detail if detail else ""

    def start(self):
        """Compiles what was loaded; every gesture starts disabled."""
        if not self.library.StartGestureWork():
            raise PelmoraError("the configuration does not compile (the library printed why)")
        count = self.library.GetGestureNum(0) if self.players > 0 else 0
        self._names = [self.library.GetGestureName(0, g) for g in range(count)]
        self._buffers = {}
        return self

    @property
    def gestures(self):
        """Gesture names by index, as compiled."""
        return list(self._names)

    def gesture_index(self, gesture):
        if isinstance(gesture, str):
            index = self.library.GetGestureIndex(0, gesture)
            if index == NO_GESTURE:
                raise PelmoraError('the configuration has no gesture "%s"' % gesture)
            return index
        return int(gesture)

    # ---- Players and gestures, in the calls of the session's mode

    def track(self, player, on=True):
        (self.library.SetPlayer if self.worker else self.library.SetPlayerImmediate)(player, on)

    def enable(self, player, gestures=None, on=True):
        """Switches gestures (names or indices; None: all) on or off."""
        chosen = range(len(self._names)) if gestures is None else gestures
        call = self.library.SetPlayerGesture if self.worker else self.library.SetPlayerGestureImmediate
        for gesture in ([chosen] if isinstance(chosen, (str, int)) else chosen):
            call(player, self.gesture_index(gesture), on)

    def reset(self, player, gesture):
        call = self.library.ResetPlayerGesture if self.worker else self.library.ResetPlayerGestureImmediate
        call(player, self.gesture_index(gesture))

    # ---- Frames and results

    def update(self, player, joints):
        """Immediate mode: evaluates one frame and returns its results (an
        empty list for a frame that was refused or still warms up)."""
        if self.worker:
            raise PelmoraError("update() evaluates on this thread; a worker session uses submit() and wake()")
        buffer = self._buffer(player)
        ok, count = self.library.UpdateSketonDataImmediate(player, joints, buffer)
        return self._results(buffer, count) if ok else []

    def submit(self, player, joints):
        """Worker mode: hands a frame over; True when stored."""
        return self.library.UpdateSketonData(player, joints)

    def wake(self):
        """Worker mode: starts one pass over every tracked player."""
        self.library.OnIdle()

    def results(self, player):
        """The newest results not read yet, or an empty list."""
        buffer = self._buffer(player)
        ok, count = self.library.GetPlayerGestureState(player, buffer)
        return self._results(buffer, count) if ok else []

    def wait(self, player, timeout=2.0):
        """Worker mode: polls until the next result set of `player` arrives;
        an empty list after `timeout` seconds."""
        deadline = time.monotonic() + timeout
        while True:
            buffer = self._buffer(player)
            ok, count = self.library.GetPlayerGestureState(player, buffer)
            if ok:
                return self._results(buffer, count)
            if time.monotonic() > deadline:
                return []
            time.sleep(0.0005)

    def velocities(self, player):
        """The newest velocity frame as (x, y, z) tuples, or None. Needs
        velocity_data=True."""
        frame = (Point3 * len(self.joints))()
        return [tuple(p) for p in frame] if self.library.GetPlayerVelocityData(player, frame) else None

    @property
    def fps(self):
        return self.library.SubThreadFPS()

    def debug(self, on=True):
        self.library.SetDebugInfo(on)

    def _buffer(self, player):
        buffer = self._buffers.get(player)
        if buffer is None:
            if self.record is None:
                raise PelmoraError("return_info %r has no result record" % self.return_info)
            slots = self.library.GetGestureNum(player) if 0 <= player < self.players else 0
            buffer = self._buffers[player] = (self.record * max(1, slots))()
        return buffer

    def _results(self, buffer, count):
        results = []
        for record in buffer[:count]:
            gesture = record.gestureIndex
            name = self._names[gesture] if 0 <= gesture < len(self._names) else ""
            fields = [gesture, name, bool(record.finished)]
            if hasattr(record, "segmentIndex"):
                fields += [bool(record.succeeded), record.segmentIndex]
            if hasattr(record, "gestureTimeMs"):
                fields += [record.gestureTimeMs, record.segmentTimeMs]
            results.append(Result(*fields))
        return results
