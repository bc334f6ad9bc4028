"""Replaying the bundled recording: the binding must see what the pelmora
tool sees, and the example script must print only the finish lines."""

import os
import subprocess
import sys
import tempfile
import unittest

from support import LIBRARY, SOURCE_DIR, pelmora

CONFIG = os.path.join(SOURCE_DIR, "examples", "gestures", "catalogue.xml")
RECORDING = os.path.join(SOURCE_DIR, "examples", "recordings", "precog-seq1-subject7.csv")
EXAMPLE = os.path.join(SOURCE_DIR, "examples", "python_replay.py")


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, timeout=120)


class ReplayTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with pelmora.capture_library_output():
            cls.finishes = list(pelmora.replay(CONFIG, RECORDING, library=LIBRARY))

    def test_finishes_carry_the_frame_and_its_label(self):
        self.assertTrue(self.finishes)
        frames = pelmora.read_recording(RECORDING).frames
        for finish in self.finishes:
            self.assertEqual((finish.time_ms, finish.label), (frames[finish.frame].time_ms, frames[finish.frame].label))

    @unittest.skipUnless(os.environ.get("PELMORA_TOOL"), "PELMORA_TOOL names no pelmora tool")
    def test_same_lines_as_pelmora_replay(self):
        tool = run(os.environ["PELMORA_TOOL"], "replay", CONFIG, RECORDING)
        self.assertEqual(tool.returncode, 0, tool.stderr)
        self.assertEqual([str(f) for f in self.finishes], tool.stdout.splitlines())

    def test_only_the_chosen_gestures_are_enabled(self):
        chosen = {self.finishes[0].gesture}
        with pelmora.capture_library_output():
            names = {f.gesture for f in pelmora.replay(CONFIG, RECORDING, sorted(chosen), library=LIBRARY)}
        self.assertEqual(names, chosen)

    def test_example_prints_finishes_on_stdout_and_the_library_on_stderr(self):
        example = run(sys.executable, EXAMPLE, CONFIG, RECORDING)
        self.assertEqual(example.returncode, 0, example.stderr)
        self.assertEqual(example.stdout.splitlines(), [str(f) for f in self.finishes])
        self.assertIn("All GestureConfig Compiler Succeed!!", example.stderr)
        failed = run(sys.executable, EXAMPLE, CONFIG, RECORDING, "--gestures", "NoSuchGesture")
        self.assertEqual((failed.returncode, failed.stdout), (1, ""))
        self.assertIn('python_replay: the configuration has no gesture "NoSuchGesture"', failed.stderr)


class RecordingRulesTest(unittest.TestCase):
    def test_each_recording_of_the_table_reads_as_the_tool_reads_it(self):
        with open(os.path.join(SOURCE_DIR, "tests", "data", "python", "recordings.tsv")) as table:
            rows = [line.rstrip("\n").split("\t") for line in table if not line.startswith("#")]
        home = os.getcwd()
        tool = os.environ.get("PELMORA_TOOL") and os.path.join(home, os.environ["PELMORA_TOOL"])
        for name, setup, outcome in rows:
            with self.subTest(name), tempfile.TemporaryDirectory() as scratch:
                subprocess.run(setup, shell=True, cwd=scratch, check=True, timeout=120)
                os.chdir(scratch)
                try:
                    stream = pelmora.RecordingStream("t.csv")
                    pelmora.recording.players_of(stream.frames, "t.csv")
                    self.assertEqual(str([(f.line, f.player, f.label) for f in stream.frames]), outcome)
                except ValueError as error:
                    self.assertEqual(str(error), outcome)
                    if tool:
                        self.assertEqual(run(tool, "replay", CONFIG, "t.csv").stderr, "pelmora: %s\n" % outcome)
                finally:
                    os.chdir(home)


if __name__ == "__main__":
    unittest.main()
