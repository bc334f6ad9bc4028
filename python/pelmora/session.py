"""A Pythonic layer over the C interface: a Session is one run of the
library from InitPelmora to ClosePelmora, used as a context manager, with
results handed back as Result tuples and failures raised as PelmoraError.

Thread-safety: a Session may be shared between threads. Its calls into the
library take turns under one lock, which close() takes too: close() waits
for the call in flight, and every call after it raises PelmoraError."""

import atexit
import contextlib
import operator
import os
import threading
import time
from ctypes import c_int32
from typing import NamedTuple, Optional

from ._native import (JOINTS, NO_GESTURE, RESULT_RECORDS, RETURN_INFO_24, VELOCITY_EQUAL, GestureConfigParam,
                      Library, PelmoraError, Point3, _int, point_array)


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
        self._with_velocities = set()  # players whose velocities were computed since tracking began
        # Reentrant: the clock the library calls back may use the session.
        self._lock = threading.RLock()
        self.is_open = False

    # ---- Lifecycle

    def open(self):
        with self._lock:
            return self._open()

    def _open(self):
        global _open_session
        if self.is_open:
            return self
        if _open_session is not None:
            raise PelmoraError("another Session is open: the library holds one engine per process")
        if not 0 <= self.players:
            raise PelmoraError("players must not be negative, got %d" % self.players)
        types = (c_int32 * max(1, len(self.joints)))(*self.joints)
        fields = {"IsUseSubThread": int(self.worker), "ReturnInfoType": self.return_info, "PlayerNum": self.players,
                  "SkeletonNum": len(self.joints), "VelocityFrameNum": self._velocity[0],
                  "VelocityMulType": self._velocity[1], "IsGetVelocityData": int(self._velocity[2])}
        param = GestureConfigParam(SkeletonTypeArray=types,
                                   **{name: _int(value, c_int32, name) for name, value in fields.items()})
        # The clock goes in first: the worker starts inside InitPelmora.
        if self._clock is not None:
            clock = self._clock
            self.library.SetTimeSource(lambda _user: clock())
        try:
            self.library.InitPelmora(param)
        except Exception:
            if self._clock is not None:
                self.library.SetTimeSource(None)
            raise
        self.is_open = True
        _open_session = self
        return self

    def close(self):
        """Waits for a call another thread has in flight, then closes."""
        global _open_session
        with self._lock:
            if not self.is_open:
                return
            self.library.ClosePelmora()
            if self._clock is not None:
                self.library.SetTimeSource(None)
            self.is_open = False
            self._names, self._buffers = [], {}
            _open_session = None

    @contextlib.contextmanager
    def _calling(self, player=None):
        """The library, for one call: the session open and `player` (when
        given) one of its players, under the session's lock."""
        with self._lock:
            if not self.is_open:
                raise PelmoraError("the session is closed")
            if player is not None and not 0 <= operator.index(player) < self.players:
                raise PelmoraError("player %d is not one of the session's %d" % (player, self.players))
            yield self.library

    def __enter__(self):
        return self.open()

    def __exit__(self, *exc):
        self.close()
        return False

    # ---- Configuration

    def load(self, path):
        """Loads a configuration file (str or os.PathLike); loads add up."""
        with self._calling() as library:
            if not library.LoadConfigFile(path):
                raise PelmoraError("%s does not load%s" % (os.fspath(path), self._load_detail()))
        return self

    def load_text(self, xml):
        """Loads a configuration document given as text."""
        with self._calling() as library:
            if not library.LoadConfigData(xml):
                raise PelmoraError("the configuration text does not load" + self._load_detail())
        return self

    def _load_detail(self):
        detail = self.library.GetLastConfigError()
        return ": " + detail if detail else ""

    def start(self):
        """Compiles what was loaded; every gesture starts disabled."""
        with self._calling() as library:
            if not library.StartGestureWork():
                raise PelmoraError("the configuration does not compile (the library printed why)")
            count = library.GetGestureNum(0) if self.players > 0 else 0
            self._names = [library.GetGestureName(0, g) for g in range(count)]
            self._buffers = {}
            self._with_velocities.clear()
        return self

    @property
    def gestures(self):
        """Gesture names by index, as compiled."""
        return list(self._names)

    def gesture_index(self, gesture):
        if isinstance(gesture, str):
            with self._calling() as library:
                index = library.GetGestureIndex(0, gesture) if self.players > 0 else NO_GESTURE
            if index == NO_GESTURE:
                raise PelmoraError('the configuration has no gesture "%s"' % gesture)
            return index
        if not 0 <= int(gesture) < len(self._names):
            raise PelmoraError("gesture %d is not one of the %d compiled" % (int(gesture), len(self._names)))
        return int(gesture)

    # ---- Players and gestures, in the calls of the session's mode

    def track(self, player, on=True):
        with self._calling(player) as library:
            (library.SetPlayer if self.worker else library.SetPlayerImmediate)(player, on)
            self._with_velocities.discard(player)

    def enable(self, player, gestures=None, on=True):
        """Switches gestures (names or indices; None: all) on or off."""
        chosen = range(len(self._names)) if gestures is None else gestures
        indices = [self.gesture_index(g) for g in ([chosen] if isinstance(chosen, (str, int)) else chosen)]
        with self._calling(player) as library:
            call = library.SetPlayerGesture if self.worker else library.SetPlayerGestureImmediate
            for index in indices:
                call(player, index, on)

    def reset(self, player, gesture):
        index = self.gesture_index(gesture)
        with self._calling(player) as library:
            (library.ResetPlayerGesture if self.worker else library.ResetPlayerGestureImmediate)(player, index)

    # ---- Frames and results

    def update(self, player, joints):
        """Immediate mode: evaluates one frame and returns its results (an
        empty list for a frame that still warms up or whose first joint is
        not in front of the sensor)."""
        if self.worker:
            raise PelmoraError("update() evaluates on this thread; a worker session uses submit() and wake()")
        points = self._points(joints)
        with self._calling(player) as library:
            buffer = self._buffer(player)
            ok, count = library.UpdateSketonDataImmediate(player, points, buffer)
            return self._results(player, buffer, count) if ok else []

    def submit(self, player, joints):
        """Worker mode: hands a frame over; True when stored."""
        points = self._points(joints)
        with self._calling(player) as library:
            return library.UpdateSketonData(player, points)

    def wake(self):
        """Worker mode: starts one pass over every tracked player."""
        with self._calling() as library:
            library.OnIdle()

    def results(self, player):
        """The newest results not read yet, or an empty list."""
        return self._read(player)[1]

    def wait(self, player, timeout=2.0):
        """Worker mode: polls until the next result set of `player` arrives;
        an empty list after `timeout` seconds."""
        deadline = time.monotonic() + timeout
        while True:
            ok, results = self._read(player)
            if ok or time.monotonic() > deadline:
                return results
            time.sleep(0.0005)

    def _read(self, player):
        """(a new result set was read, its results)."""
        with self._calling(player) as library:
            buffer = self._buffer(player)
            ok, count = library.GetPlayerGestureState(player, buffer)
            return ok, self._results(player, buffer, count) if ok else []

    def velocities(self, player):
        """The velocities of the player's newest evaluated frame as (x, y, z)
        tuples, or None before its first one. Needs velocity_data=True."""
        if not self._velocity[2]:
            raise PelmoraError("the session keeps no velocities: open it with velocity_data=True")
        with self._calling(player) as library:
            if player not in self._with_velocities:
                return None
            frame = (Point3 * len(self.joints))()
            return [tuple(p) for p in frame] if library.GetPlayerVelocityData(player, frame) else None

    @property
    def fps(self):
        with self._calling() as library:
            return library.SubThreadFPS()

    def debug(self, on=True):
        with self._calling() as library:
            library.SetDebugInfo(on)

    def _points(self, joints):
        if joints is None:
            raise PelmoraError("a frame is needed, got None")
        points = point_array(joints)
        if len(points) != len(self.joints):
            raise PelmoraError("a frame of %d joints, the session's skeleton has %d" % (len(points), len(self.joints)))
        return points

    def _buffer(self, player):
        buffer = self._buffers.get(player)
        if buffer is None:
            if self.record is None:
                raise PelmoraError("return_info %r has no result record" % self.return_info)
            buffer = self._buffers[player] = (self.record * max(1, self.library.GetGestureNum(player)))()
        return buffer

    def _results(self, player, buffer, count):
        self._with_velocities.add(player)
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
