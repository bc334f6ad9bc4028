"""Replays a recording through the library the way `pelmora replay` does in
its default mode: one library player per recording player (ascending player
numbers become players 0..N-1), every frame evaluated on this thread at its
recorded time through the library's time source, 24-byte records, the
chosen gestures (all by default) enabled for every player."""

import contextlib
import math
import os
from typing import NamedTuple

from ._native import RETURN_INFO_24
from .recording import RecordingStream, format_ms, players_of
from .session import ManualClock, PelmoraError, Session


class Finish(NamedTuple):
    time_ms: float
    frame: int     # the recording's data row, from 0
    player: int    # the recording's player number
    gesture: str
    segment: int   # the segment that finished the gesture
    label: str     # the frame's label, empty for none

    def __str__(self):
        """The line the pelmora tool prints for a finish."""
        line = "%s ms frame %d player %d: %s finished segment %d" % (
            format_ms(self.time_ms), self.frame, self.player, self.gesture, self.segment)
        return line + (" [%s]" % self.label if self.label else "")


def ticks(time_ms):
    """The library's 32-bit millisecond tick for a recorded time: rounded
    half away from zero, wrapped (only differences matter to it)."""
    rounded = math.floor(abs(time_ms) + 0.5)
    return int(math.copysign(rounded, time_ms)) & 0xFFFFFFFF


def replay(config, recording, gestures=None, library=None):
    """Yields a Finish for every finished gesture, in recording order.
    `recording` is a path (read in two streaming passes, as the tool does:
    memory is bounded by the players, not the file), a Recording or a
    RecordingStream; `gestures` names the gestures to enable (None: all).
    A broken recording raises ValueError `FILE: line N: cause`; the library's
    failures raise PelmoraError naming the recording (and the line of a
    frame it refuses)."""
    source = "recording" if hasattr(recording, "frames") else os.fspath(recording)
    if not hasattr(recording, "frames"):
        recording = RecordingStream(source)
    players, first_ms = players_of(recording.frames, source)
    index_of = {number: index for index, number in enumerate(players)}
    clock = ManualClock(ticks(first_ms))
    session = Session(recording.joints, len(players), return_info=RETURN_INFO_24, clock=clock, library=library)
    with _naming(source):
        session.open()
    with session:
        session.load(config).start()
        for player in range(len(players)):
            session.track(player)
            session.enable(player, gestures)
        for row, frame in enumerate(recording.frames):
            with _naming("%s: line %d" % (source, frame.line)):
                clock.now = ticks(frame.time_ms)
                results = session.update(index_of[frame.player], frame.joints)
            for result in results:
                if result.finished:
                    yield Finish(frame.time_ms, row, frame.player, result.name, result.segment, frame.label)


@contextlib.contextmanager
def _naming(place):
    try:
        yield
    except (PelmoraError, ValueError, OverflowError) as error:
        raise PelmoraError("%s: %s" % (place, error)) from None
