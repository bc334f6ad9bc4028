"""Recordings in the native CSV format shared with the pelmora tool:

    time_ms,player,<Joint>.x,<Joint>.y,<Joint>.z,...[,label]

<Joint> is a joint name ("Head", "RightHand", ...; JOINT_NAMES); the order of
the joint columns is the slot order handed to the library. One row per frame
and player, in time order.

The rules and messages are the tool's, so a file either tool or binding
refuses is refused by both with the same words: lines end in LF, CRLF or a
lone CR; a UTF-8 byte-order mark is skipped; UTF-16 text, a NUL byte and a
line over 1 MiB are refused; a quoted field closes on its line; numbers are
finite, joint coordinates in 32-bit float range, time_ms within +-2^53 and
never going back. Errors read `FILE: line N: cause`.

Nothing here is shared between threads: each RecordingStream pass opens the
file anew and keeps one line in memory."""

import contextlib
import math
import re
from typing import List, NamedTuple, Tuple

from ._native import JOINT_NAMES, JOINTS

_AXES = (".x", ".y", ".z")
_BLANKS = " \t\r"
MAX_LINE_BYTES = 1 << 20
MAX_TIME_MS = 2.0 ** 53
MAX_REPLAY_PLAYERS = 256
_CHUNK = 1 << 16
_LINE_END = re.compile(rb"[\r\n]")
# What std::from_chars reads whole: no "+", no hexadecimal, no "_".
_DECIMAL = re.compile(r"-?(?:(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?"
                      r"|(?i:inf(?:inity)?|nan(?:\([0-9A-Za-z_]*\))?))")
_INTEGER = re.compile(r"-?[0-9]+")


class Frame(NamedTuple):
    time_ms: float
    player: int
    joints: Tuple[Tuple[float, float, float], ...]
    label: str
    line: int = 0  # in the file, from 1


class Recording(NamedTuple):
    joints: List[int]        # PelmoraJoint type of each slot
    has_labels: bool
    frames: List[Frame]

    @property
    def players(self):
        """Distinct player numbers, ascending: the library's players 0..N-1."""
        return sorted({frame.player for frame in self.frames})


class _Refused(ValueError):
    """A rule broken on a line the caller names."""


def _lines(stream):
    """Yields (number, text) of each line of a binary stream; the line ends
    and a leading byte-order mark are dropped."""
    buffer, start, number = stream.read(_CHUNK), 0, 0
    if buffer[:1] in (b"\xff", b"\xfe"):
        raise ValueError("line 1: the file is UTF-16 text; save it as UTF-8")
    if buffer.startswith(b"\xef\xbb\xbf"):
        start = 3
    while start < len(buffer):
        end = _LINE_END.search(buffer, start)
        if end is None or end.end() == len(buffer):  # the line, or a CR's LF, may go on in the next chunk
            _check_line(buffer, start, len(buffer), number + 1)
            chunk = stream.read(_CHUNK)
            if chunk:
                buffer, start = buffer[start:] + chunk, 0
                continue
        stop = end.start() if end else len(buffer)
        number += 1
        _check_line(buffer, start, stop, number)
        yield number, _decode(buffer[start:stop], number)
        start = stop + (2 if buffer[stop:stop + 2] == b"\r\n" else 1)


def _check_line(buffer, start, stop, number):
    nul = buffer.find(b"\0", start, min(stop, start + MAX_LINE_BYTES + 1))
    if nul >= 0:
        raise ValueError("line %d: holds a NUL byte: not a text file" % number)
    if stop - start > MAX_LINE_BYTES:
        raise ValueError("line %d: longer than %d bytes" % (number, MAX_LINE_BYTES))


def _decode(line, number):
    try:
        return line.decode("utf-8")
    except UnicodeDecodeError:
        raise ValueError("line %d: not UTF-8 text" % number) from None


def _split(line):
    """The fields of a CSV line: a quote toggles quoting anywhere, "" within
    quotes is a quote, and quoting must end on the line."""
    if '"' not in line:
        return line.split(",")
    fields, field, quoted, i = [], [], False, 0
    while i < len(line):
        c = line[i]
        if quoted and c == '"' and line[i + 1:i + 2] == '"':
            field.append(c)
            i += 1
        elif c == '"':
            quoted = not quoted
        elif c == "," and not quoted:
            fields.append("".join(field))
            field = []
        else:
            field.append(c)
        i += 1
    if quoted:
        raise _Refused("a quoted field is not closed on its line")
    return fields + ["".join(field)]


def _refused(column, fault, text):
    return _Refused('%s is %s: "%s"' % (column, fault, text))


def _double(text, column):
    trimmed = text.strip(_BLANKS)
    if not _DECIMAL.fullmatch(trimmed):
        raise _refused(column, "not a number", text)
    value = float(trimmed)
    if value != value or (math.isinf(value) and trimmed.lstrip("-")[:1] in "iI"):  # nan, inf, infinity
        raise _refused(column, "not finite", text)
    if math.isinf(value) or (value == 0 and _is_beyond_zero(trimmed)):
        raise _refused(column, "out of range", text)
    return value


def _is_beyond_zero(number):
    """Whether a number read as 0 was written with a digit other than 0 (it
    underflowed)."""
    if not number.strip("-0."):
        return False
    return any(c in "123456789" for c in re.split("[eE]", number)[0])


# A double rounds to a 32-bit float of 0 at or below half the least one,
# and to infinity from halfway between the greatest one and 2^128.
_FLOAT_LEAST_HALF = 2.0 ** -150
_FLOAT_OVERFLOW = 2.0 ** 128 - 2.0 ** 103


def _coordinate(text, column):
    """A joint coordinate: a double that must also be a 32-bit float."""
    value = _double(text, column)
    if value != 0 and not _FLOAT_LEAST_HALF < abs(value) < _FLOAT_OVERFLOW:
        raise _refused(column, "out of range", text)
    return value


def _integer(text, column):
    trimmed = text.strip(_BLANKS)
    if not _INTEGER.fullmatch(trimmed):
        raise _refused(column, "not an integer", text)
    value = int(trimmed)
    if not -2 ** 63 <= value < 2 ** 63:
        raise _refused(column, "out of range", text)
    return value


def _read_header(line):
    columns = [column.strip(_BLANKS) for column in _split(line.strip(_BLANKS))]
    if len(columns) < 2 or columns[0] != "time_ms" or columns[1] != "player":
        raise _Refused("the header must begin with time_ms,player")
    has_labels = columns[-1] == "label"
    joint_columns = columns[2:-1] if has_labels else columns[2:]
    if not joint_columns or len(joint_columns) % 3:
        raise _Refused("joint columns come in threes: <Joint>.x,<Joint>.y,<Joint>.z")
    joints = [_joint_of_columns(joint_columns[first:first + 3]) for first in range(0, len(joint_columns), 3)]
    for slot, joint in enumerate(joints):
        if joint in joints[:slot]:
            raise _Refused("joint %s appears twice" % JOINT_NAMES[joint])
    return joints, has_labels


def _joint_of_columns(columns):
    name = columns[0][:-2]
    if JOINTS.get(name, 0) == 0:
        raise _Refused('unknown joint column "%s"' % columns[0])
    for axis, column in zip(_AXES, columns):
        if column != name + axis:
            raise _Refused('expected column "%s%s", found "%s"' % (name, axis, column))
    return JOINTS[name]


class RecordingStream:
    """A recording read from its file as its frames are consumed: the header
    is read at once, and each use of `frames` is a new pass over the file,
    so memory holds one line whatever the file's length."""

    def __init__(self, path):
        self.path = path
        lines = self._data_lines()
        header = next(lines, None)
        lines.close()
        if header is None:
            raise ValueError("%s: no header: the file is empty" % path)
        with _at_line(self.path, header[0]):
            self.joints, self.has_labels = _read_header(header[1])
        names = [JOINT_NAMES[joint] for joint in self.joints]
        self._columns = [name + axis for name in names for axis in _AXES]

    @property
    def frames(self):
        """A generator of the file's frames, checked as they are read."""
        lines, last_ms = self._data_lines(), -math.inf
        next(lines)
        for number, line in lines:
            with _at_line(self.path, number):
                frame = self._read_row(line, number)
                if frame.time_ms < last_ms:
                    raise _Refused("time_ms goes back in time")
            last_ms = frame.time_ms
            yield frame

    def _data_lines(self):
        """(number, text) of each line that is not blank."""
        with open(self.path, "rb") as stream:
            try:
                for number, line in _lines(stream):
                    if line.strip(_BLANKS):
                        yield number, line
            except ValueError as error:
                raise ValueError("%s: %s" % (self.path, error)) from None

    def _read_row(self, line, number):
        fields = _split(line)
        expected = 2 + len(self._columns) + (1 if self.has_labels else 0)
        if len(fields) != expected:
            raise _Refused("expected %d fields, found %d" % (expected, len(fields)))
        time_ms = _double(fields[0], "time_ms")
        if not abs(time_ms) <= MAX_TIME_MS:
            raise _Refused("time_ms is out of range: %s is beyond +-%s" % (format_ms(time_ms), format_ms(MAX_TIME_MS)))
        player = _integer(fields[1], "player")
        values = [_coordinate(text, column) for text, column in zip(fields[2:], self._columns)]
        points = tuple(tuple(values[first:first + 3]) for first in range(0, len(values), 3))
        return Frame(time_ms, player, points, fields[-1] if self.has_labels else "", number)


@contextlib.contextmanager
def _at_line(path, number):
    """Turns a rule broken on a line into `FILE: line N: cause`."""
    try:
        yield
    except _Refused as error:
        raise ValueError("%s: line %d: %s" % (path, number, error)) from None


def read_recording(path):
    """Reads a whole recording into memory; ValueError names the file and
    line at fault. replay() streams instead (RecordingStream)."""
    stream = RecordingStream(path)
    return Recording(stream.joints, stream.has_labels, list(stream.frames))


def players_of(frames, source):
    """The distinct player numbers of the frames, ascending, and the first
    frame's time (0 for none); more than MAX_REPLAY_PLAYERS (the tool's limit) are refused."""
    players, first_ms = set(), None
    for frame in frames:
        first_ms = frame.time_ms if first_ms is None else first_ms
        players.add(frame.player)
        if len(players) > MAX_REPLAY_PLAYERS:
            raise ValueError("%s: line %d: more than %d distinct players, the most a replay takes" % (
                source, frame.line, MAX_REPLAY_PLAYERS))
    return sorted(players), 0 if first_ms is None else first_ms
def format_ms(value):
    """A time as the pelmora tool prints it: the shortest text that reads
    back as the same double, in fixed or exponent notation, whichever is
    shorter (fixed on a tie) - 7400, 33.333, 1e+05."""
    if math.isnan(value):
        return "nan" if math.copysign(1.0, value) > 0 else "-nan"
    if math.isinf(value):
        return "inf" if value > 0 else "-inf"
    sign = "-" if math.copysign(1.0, value) < 0 else ""
    if value == 0:
        return sign + "0"
    # repr holds the shortest round-trip digits; split them from the exponent.
    mantissa, _, exponent = repr(abs(value)).partition("e")
    whole, _, fraction = mantissa.partition(".")
    digits = (whole + fraction).lstrip("0")
    point = len(whole) + int(exponent or 0)  # digits before the point in `whole + fraction`
    point -= len(whole + fraction) - len((whole + fraction).lstrip("0"))
    digits = digits.rstrip("0")
    if point >= len(digits):
        fixed = digits + "0" * (point - len(digits))
    elif point > 0:
        fixed = digits[:point] + "." + digits[point:]
    else:
        fixed = "0." + "0" * -point + digits
    power = point - 1
    scientific = digits[0] + ("." + digits[1:] if len(digits) > 1 else "") + "e%s%02d" % (
        "-" if power < 0 else "+", abs(power))
    return sign + (fixed if len(fixed) <= len(scientific) else scientific)
