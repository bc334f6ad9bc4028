"""Recordings in the native CSV format shared with the pelmora tool:

    time_ms,player,<Joint>.x,<Joint>.y,<Joint>.z,...[,label]

<Joint> is a joint name ("Head", "RightHand", ...; JOINT_NAMES); the order of
the joint columns is the slot order handed to the library. One row per frame
and player, in time order."""

import csv
import math
from typing import List, NamedTuple, Tuple

from ._native import JOINT_NAMES, JOINTS

_AXES = (".x", ".y", ".z")


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


def _number(text, column):
    trimmed = text.strip(" \t\r")
    try:
        if "_" in trimmed:
            raise ValueError
        return float(trimmed)
    except ValueError:
        raise ValueError('%s is not a number: "%s"' % (column, text)) from None


def _read_header(columns):
    if len(columns) < 2 or columns[0] != "time_ms" or columns[1] != "player":
        raise ValueError("the header must begin with time_ms,player")
    has_labels = columns[-1] == "label"
    joint_columns = columns[2:-1] if has_labels else columns[2:]
    if not joint_columns or len(joint_columns) % 3:
        raise ValueError("joint columns come in threes: <Joint>.x,<Joint>.y,<Joint>.z")
    joints = []
    for first in range(0, len(joint_columns), 3):
        name = joint_columns[first][:-2]
        if JOINTS.get(name, 0) == 0:
            raise ValueError('unknown joint column "%s"' % joint_columns[first])
        for axis, column in zip(_AXES, joint_columns[first:first + 3]):
            if column != name + axis:
                raise ValueError('expected column "%s%s", found "%s"' % (name, axis, column))
        if JOINTS[name] in joints:
            raise ValueError("joint %s appears twice" % name)
        joints.append(JOINTS[name])
    return joints, has_labels


def _read_row(fields, joints, has_labels, line):
    expected = 2 + 3 * len(joints) + (1 if has_labels else 0)
    if len(fields) != expected:
        raise ValueError("expected %d fields, found %d" % (expected, len(fields)))
    time_ms = _number(fields[0], "time_ms")
    if not math.isfinite(time_ms):
        raise ValueError('time_ms is not a finite number: "%s"' % fields[0])
    try:
        player = int(fields[1].strip(" \t\r"))
    except ValueError:
        raise ValueError('player is not an integer: "%s"' % fields[1]) from None
    points = []
    for slot, joint in enumerate(joints):
        name = JOINT_NAMES[joint]
        points.append(tuple(_number(fields[2 + 3 * slot + k], name + _AXES[k]) for k in range(3)))
    return Frame(time_ms, player, tuple(points), fields[-1] if has_labels else "", line)


def read_recording(path):
    """Reads a recording; ValueError names the file and line at fault (the
    line a row begins on, when a quoted label spans lines)."""
    joints, has_labels, frames = None, False, []
    with open(path, newline="", encoding="utf-8") as stream:
        reader, number = csv.reader(stream, strict=True), 1
        try:
            for fields in reader:
                joints, has_labels = _read_line(fields, joints, has_labels, frames, number)
                number = reader.line_num + 1
        except UnicodeDecodeError:  # decoded ahead of the rows: no line to name
            raise ValueError("%s: not UTF-8 text" % path) from None
        except csv.Error as error:
            reason = "a quoted field is not closed" if "end of data" in str(error) else error
            raise ValueError("%s: line %d: %s" % (path, number, reason)) from None
        except ValueError as error:
            raise ValueError("%s: line %d: %s" % (path, number, error)) from None
    if joints is None:
        raise ValueError("%s: no header: the file is empty" % path)
    return Recording(joints, has_labels, frames)


def _read_line(fields, joints, has_labels, frames, number):
    """Reads the header (returned) or appends a frame of a data line."""
    if not "".join(fields).strip(" \t\r"):
        return joints, has_labels
    if joints is None:
        return _read_header([f.strip(" \t\r") for f in fields])
    frames.append(_read_row(fields, joints, has_labels, number))
    if len(frames) > 1 and frames[-1].time_ms < frames[-2].time_ms:
        raise ValueError("time_ms goes back in time")
    return joints, has_labels


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
