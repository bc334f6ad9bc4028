"""Renders a native recording (library joints, metres, y up) as another
skeleton source would have recorded the same performance: its joints in
its order, units, axes and origin, including the joints the library does
not use (the face, the fingers, the clavicles), in one of the forms
`pelmora import` reads. Running the result back through the source's
adapter must give the library the same gestures: that is how the adapters
are tested, and how a user can try a source without its tracker.

    python3 -m pelmora.render SOURCE RECORDING OUTPUT

SOURCE is mediapipe-pose (JSON lines), azure-kinect (the body tracking
SDK's JSON), kinect-v2 (NTU RGB+D .skeleton) or kinect-v1 (kinect-text).
The recording needs the 20 joints of a Kinect v1 skeleton.

Thread-safety: stateless functions."""

import argparse
import itertools
import json
import sys

from ._native import JOINT_NAMES
from .recording import RecordingStream
from .sources import source as named_source

FORMS = {"mediapipe-pose": "mediapipe-jsonl", "azure-kinect": "azure-kinect-json", "kinect-v2": "ntu-skeleton",
         "kinect-v1": "kinect-text"}


def _add(*terms):
    """The sum of (weight, point) terms."""
    return tuple(sum(w * p[axis] for w, p in terms) for axis in range(3))


def _unit(vector):
    length = sum(v * v for v in vector) ** 0.5 or 1.0
    return tuple(v / length for v in vector)


def _cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


class _Body:
    """The library joints of one frame and the body's own directions: to its
    right, up and forward."""

    def __init__(self, joints):
        self.j = joints
        self.right = _unit(_add((1, joints["RightShoulder"]), (-1, joints["LeftShoulder"])))
        self.up = _unit(_add((1, joints["Neck"]), (-1, joints["Waist"])))
        self.forward = _unit(_cross(self.right, self.up))

    def at(self, joint, forward=0.0, up=0.0, right=0.0):
        """A point near a joint, offset in metres along the body's directions."""
        return _add((1, self.j[joint]), (forward, self.forward), (up, self.up), (right, self.right))

    def hand(self, side, along, across):
        """A point of the hand, `along` the wrist-to-hand line and `across` it
        toward the body's outside."""
        outside = -1.0 if side == "Left" else 1.0
        direction = _unit(_add((1, self.j[side + "Hand"]), (-1, self.j[side + "Wrist"])))
        return _add((1, self.j[side + "Hand"]), (along, direction), (across * outside, self.right))


def _sides(make):
    """{name: rule} for both sides: make(side, sign) gives (name, rule),
    sign -1 on the left, +1 on the right."""
    return dict(make(side, sign) for side, sign in (("Left", -1.0), ("Right", 1.0)))


# The joints a source has and the library does not, placed on the body. The
# estimator's three hand landmarks average to the hand and its ears to the
# head, the points its adapter takes them from.
_EXTRA = {
    "mediapipe-pose": {
        "nose": lambda b: b.at("Head", 0.09, -0.02),
        "mouth_left": lambda b: b.at("Head", 0.08, -0.05, -0.02),
        "mouth_right": lambda b: b.at("Head", 0.08, -0.05, 0.02),
        **{"%s_eye%s" % (side.lower(), part): (lambda b, s=sign, o=offset: b.at("Head", 0.08, 0.02, s * o))
           for side, sign in (("Left", -1.0), ("Right", 1.0))
           for part, offset in (("_inner", 0.015), ("", 0.03), ("_outer", 0.045))},
        **_sides(lambda side, sign: ("%s_ear" % side.lower(), lambda b: b.at("Head", 0, 0, sign * 0.075))),
        **_sides(lambda side, sign: ("%s_pinky" % side.lower(), lambda b: b.hand(side, 0.02, 0.03))),
        **_sides(lambda side, sign: ("%s_index" % side.lower(), lambda b: b.hand(side, 0.02, -0.01))),
        **_sides(lambda side, sign: ("%s_thumb" % side.lower(), lambda b: b.hand(side, -0.04, -0.02))),
        **_sides(lambda side, sign: ("%s_heel" % side.lower(), lambda b: b.at(side + "Ankle", -0.06, -0.04))),
    },
    "azure-kinect": {
        "SPINE_CHEST": lambda b: _add((0.5, b.j["Torso"]), (0.5, b.j["Neck"])),
        "NOSE": lambda b: b.at("Head", 0.09, -0.02),
        **_sides(lambda side, sign: ("CLAVICLE_" + side.upper(),
                                     lambda b: _add((0.6, b.j["Neck"]), (0.4, b.j[side + "Shoulder"])))),
        **_sides(lambda side, sign: ("HANDTIP_" + side.upper(), lambda b: b.hand(side, 0.07, 0))),
        **_sides(lambda side, sign: ("THUMB_" + side.upper(), lambda b: b.hand(side, 0.02, -0.04))),
        **_sides(lambda side, sign: ("EYE_" + side.upper(), lambda b: b.at("Head", 0.08, 0.02, sign * 0.03))),
        **_sides(lambda side, sign: ("EAR_" + side.upper(), lambda b: b.at("Head", 0, 0, sign * 0.075))),
    },
    "kinect-v2": {
        "Neck": lambda b: _add((0.65, b.j["Neck"]), (0.35, b.j["Head"])),
        **_sides(lambda side, sign: ("HandTip" + side, lambda b: b.hand(side, 0.07, 0))),
        **_sides(lambda side, sign: ("Thumb" + side, lambda b: b.hand(side, 0.02, -0.04))),
    },
}


def source_frame(source, joints):
    """The source's points for one frame of library joints ({name: (x, y,
    z)}): the inverse of its adapter, in its units, axes and origin."""
    extra = _EXTRA.get(source.name, {})
    body = _Body(joints)
    points = [source.source_point(extra[name](body) if name in extra else joints[source.direct[name]])
              for name in source.joints]
    if source.name == "mediapipe-pose":  # world landmarks sit around the midpoint of the hips
        hips = [points[source.joints.index(name)] for name in ("left_hip", "right_hip")]
        points = [tuple(p[a] - (hips[0][a] + hips[1][a]) / 2 for a in range(3)) for p in points]
    return points


def source_frames(source, recording):
    """(time_ms, player, points) per row of the recording, for the source."""
    stream = RecordingStream(recording)
    names = [JOINT_NAMES[joint] for joint in stream.joints]
    for frame in stream.frames:
        yield frame.time_ms, frame.player, source_frame(source, dict(zip(names, frame.joints)))


def _write_jsonl(frames, out):
    for time_ms, _player, points in frames:
        out.write(json.dumps({"time_ms": time_ms, "landmarks": [list(p) + [0.99] for p in points]}) + "\n")


def _write_body_tracking(source, frames, out):
    by_time = itertools.groupby(frames, key=lambda frame: frame[0])
    document = {
        "frames": [{"frame_id": index, "timestamp_usec": round(time_ms * 1000),
                    "bodies": [{"body_id": player + 1, "joint_positions": [list(p) for p in points]}
                               for _time, player, points in rows]}
                   for index, (time_ms, rows) in enumerate(by_time)],
        "joint_names": source.joints,
    }
    json.dump(document, out, indent=4)
    out.write("\n")


def _write_ntu(frames, out):
    grouped = [list(rows) for _time, rows in itertools.groupby(frames, key=lambda frame: frame[0])]
    out.write("%d\n" % len(grouped))
    for rows in grouped:
        out.write("%d\n" % len(rows))
        for _time, player, points in rows:
            out.write("%d 0 0 0 0 0 0 0 0 2\n%d\n" % (player + 1, len(points)))
            for x, y, z in points:
                out.write("%r %r %r 0 0 0 0 1 0 0 0 2\n" % (x, y, z))


def _write_kinect_text(frames, out):
    for time_ms, _player, points in frames:
        out.write("%d %s\n" % (round(time_ms * 1000), " ".join("%r %r %r 1" % p for p in points)))


def render(source_name, recording, output):
    """Writes the recording, as the source records it, to the path `output`."""
    source = named_source(source_name)
    frames = source_frames(source, recording)
    with open(output, "w", encoding="utf-8") as out:
        if source.name == "mediapipe-pose":
            _write_jsonl(frames, out)
        elif source.name == "azure-kinect":
            _write_body_tracking(source, frames, out)
        elif source.name == "kinect-v2":
            _write_ntu(frames, out)
        else:
            _write_kinect_text(frames, out)


def main(argv=None):
    parser = argparse.ArgumentParser(prog="python3 -m pelmora.render", description=__doc__.split("\n\n")[0])
    parser.add_argument("source", choices=sorted(FORMS))
    parser.add_argument("recording")
    parser.add_argument("output")
    args = parser.parse_args(argv)
    try:
        render(args.source, args.recording, args.output)
    except (OSError, ValueError, KeyError) as error:
        print("pelmora.render: %s" % error, file=sys.stderr)
        return 1
    print("%s: %s, as %s reads it" % (args.output, args.source, FORMS[args.source]))
    return 0


if __name__ == "__main__":
    sys.exit(main())
