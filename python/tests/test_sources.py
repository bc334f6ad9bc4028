"""Skeleton sources: the hand-written frames of tests/data/sources/frames.json
(shared with the tool's tests) through pelmora.sources, and the bundled
recording rendered as each source records it, then brought back through the
tool's importer and through the Python adapter, giving the catalogue's
events of the original."""

import collections
import json
import os
import subprocess
import sys
import tempfile
import unittest

from support import LIBRARY, SOURCE_DIR, pelmora
from pelmora import render, sources

CONFIG = os.path.join(SOURCE_DIR, "examples", "gestures", "catalogue.xml")
RECORDING = os.path.join(SOURCE_DIR, "examples", "recordings", "precog-seq1-subject7.csv")
with open(os.path.join(SOURCE_DIR, "tests", "data", "sources", "frames.json")) as cases:
    CASES = json.load(cases)

Landmark = collections.namedtuple("Landmark", "x y z visibility")
LandmarkList = collections.namedtuple("LandmarkList", "landmark")
# The forms a host hands a frame in: tuples, landmark objects, a landmark list.
SHAPES = [lambda points: [tuple(p) for p in points],
          lambda points: [Landmark(*p, 0.9) for p in points],
          lambda points: LandmarkList([Landmark(*p, 0.9) for p in points])]


def case_frame(case):
    source = sources.source(case["source"])
    points = [list(case.get("joints", {}).get(joint, case["others"])) for joint in source.joints]
    if "nan" in case:
        points[source.joints.index(case["nan"])][0] = float("nan")
    return source, points[:case.get("count", len(points))]


def finishes(recording):
    with pelmora.capture_library_output():
        return [(f.time_ms, f.gesture) for f in pelmora.replay(CONFIG, recording, library=LIBRARY)]


class SourcesTest(unittest.TestCase):
    def test_hand_written_frames_give_the_joints_they_hold(self):
        for k, case in enumerate(CASES["frames"]):
            source, points = case_frame(case)
            frame = source.frame(SHAPES[k % len(SHAPES)](points), case.get("mirrored", False))
            for joint, expected in case["expected"].items():
                for got, want in zip(frame[source.library_joints.index(joint)], expected):
                    self.assertAlmostEqual(got, want, 6, "%s %s" % (case["source"], joint))

    def test_bad_frames_raise_naming_the_source_and_the_fault(self):
        for case in CASES["bad"]:
            source, points = case_frame(case)
            with self.assertRaises(sources.SourceFrameError) as raised:
                source.frame(points)
            self.assertEqual(str(raised.exception), "%s: %s" % (case["source"], case["error"]))
        with self.assertRaisesRegex(ValueError, "^kinect-v2: joint SpineBase is not \\(x, y, z\\)$"):
            sources.kinect_v2([(0, 1)] * 25)

    def test_a_rendered_recording_gives_the_original_gestures(self):
        """Per source: the catalogue's finishes through `pelmora import` and
        through pelmora.sources, against the original's. Prints the table."""
        original = finishes(RECORDING)
        tool = os.environ.get("PELMORA_TOOL")
        rows = []
        with tempfile.TemporaryDirectory() as folder:
            for name, form in sorted(render.FORMS.items()):
                source = sources.source(name)
                adapted = pelmora.Recording(source.library_joints, False, [
                    pelmora.Frame(time_ms, player, source.frame(points), "", line)
                    for line, (time_ms, player, points) in enumerate(render.source_frames(source, RECORDING), 2)])
                through = {"python": finishes(adapted)}
                if tool:
                    rendered, imported = os.path.join(folder, name), os.path.join(folder, name + ".csv")
                    render.render(name, RECORDING, rendered)
                    subprocess.run([tool, "import", form, rendered, imported], check=True, capture_output=True)
                    through["import"] = finishes(imported)
                for path, events in through.items():
                    self.assertEqual(sorted(g for _t, g in events), sorted(g for _t, g in original), (name, path))
                    moved = max(abs(t - o) for (t, _g), (o, _h) in zip(sorted(events, key=lambda e: e[1]),
                                                                        sorted(original, key=lambda e: e[1])))
                    rows.append("| %s | %s | %s | %d | %d | %.0f |" % (name, form, path, len(original), len(events), moved))
        print("\n| source | form | through | events, original | events, converted | largest time shift (ms) |",
              *rows, sep="\n", file=sys.stderr)
