"""The ctypes description against the C header and the loaded library, and
the pure-Python parts: frame conversion, time text, recordings."""

import array
import ctypes
import os
import re
import tempfile
import unittest

from support import LIBRARY, SOURCE_DIR, pelmora

try:
    import numpy
except ImportError:
    numpy = None


def header_exports():
    """name -> parameter count of every PELMORA_API function of pelmora.h."""
    with open(os.path.join(SOURCE_DIR, "include", "pelmora.h")) as header:
        text = re.sub(r"/\*.*?\*/", "", header.read(), flags=re.S)
    exports = {}
    for match in re.finditer(r"PELMORA_API\s+[\w\s\*]*?\b(\w+)\s*\(((?:[^()]|\([^()]*\))*)\)\s*;", text):
        params = match.group(2).strip()
        exports[match.group(1)] = 0 if params in ("", "void") else len(re.split(r",(?![^()]*\))", params))
    return exports


class InterfaceTest(unittest.TestCase):
    def test_every_header_export_is_declared_with_its_arity_and_wrapped(self):
        exports = header_exports()
        self.assertGreaterEqual(len(exports), 30)
        self.assertEqual(set(exports), set(pelmora.EXPORTS))
        for name, count in exports.items():
            self.assertEqual(len(pelmora.EXPORTS[name][1]), count, name)
            self.assertTrue(callable(getattr(LIBRARY, name)), name)

    def test_record_layouts_match_the_wire_format(self):
        P = pelmora.GestureConfigParam
        self.assertEqual(ctypes.sizeof(P), 40)
        self.assertEqual([P.SkeletonTypeArray.offset, P.VelocityFrameNum.offset, P.IsGetVelocityData.offset],
                         [16, 24, 32])
        self.assertEqual(ctypes.sizeof(pelmora.Point3), 12)
        sizes = {kind: ctypes.sizeof(record) for kind, record in pelmora.RESULT_RECORDS.items()}
        self.assertEqual(sizes, {0: 8, 1: 16, 2: 24})
        self.assertEqual(pelmora.PelmoraResult24.gestureTimeMs.offset, 16)
        self.assertEqual(pelmora.PelmoraResult24.segmentTimeMs.offset, 20)
        self.assertEqual(len(pelmora.JOINT_NAMES), 25)
        self.assertEqual((pelmora.JOINTS["Head"], pelmora.JOINTS["RightFoot"]), (1, 24))

    def test_version_is_the_project_version(self):
        with open(os.path.join(SOURCE_DIR, "CMakeLists.txt")) as lists:
            declared = re.search(r"project\(Pelmora64 VERSION (\d+)\.(\d+)\.(\d+)", lists.read()).groups()
        self.assertEqual(LIBRARY.PelmoraVersion(), tuple(map(int, declared)))

    def test_arguments_are_checked_before_they_reach_c(self):
        self.assertEqual(LIBRARY.Stricmp("Jump", b"JUMP"), 0)
        self.assertLess(LIBRARY.Stricmp("a", "B"), 0)
        with self.assertRaises(OverflowError):
            LIBRARY.GetGestureName(2 ** 32, 0)  # would wrap to player 0
        with self.assertRaises(OverflowError):
            LIBRARY.SetPlayerGestureImmediate(0, -1, True)

    def test_limits_are_those_of_the_header(self):
        with open(os.path.join(SOURCE_DIR, "include", "pelmora.h")) as header:
            declared = dict(re.findall(r"#define PELMORA_MAX_(\w+) (\d+)", header.read()))
        self.assertEqual({name: int(value) for name, value in declared.items()},
                         {name[4:]: getattr(pelmora, name) for name in dir(pelmora) if name.startswith("MAX_")})

    def test_missing_library_names_every_place_looked(self):
        with self.assertRaises(OSError) as raised:
            pelmora.Library("/nonexistent/libPelmora64.so")
        self.assertIn("PELMORA_LIBRARY", str(raised.exception))


class FrameConversionTest(unittest.TestCase):
    EXPECTED = [(1.0, 2.0, 3.0), (4.0, 5.0, 6.0)]

    def check(self, joints):
        self.assertEqual([tuple(p) for p in pelmora.point_array(joints)], self.EXPECTED)

    def test_triples_points_and_float_buffers(self):
        self.check(self.EXPECTED)
        self.check([pelmora.Point3(1, 2, 3), pelmora.Point3(4, 5, 6)])
        self.check(array.array("f", [1, 2, 3, 4, 5, 6]))
        with self.assertRaises(TypeError):
            pelmora.point_array(array.array("d", [1, 2, 3]))
        with self.assertRaises(ValueError):
            pelmora.point_array(array.array("f", [1, 2]))

    @unittest.skipIf(numpy is None, "numpy is not installed")
    def test_numpy_arrays_of_any_float_type_and_shape(self):
        self.check(numpy.array(self.EXPECTED))  # float64, (2, 3)
        self.check(numpy.arange(1, 7, dtype=numpy.float32))  # flat
        self.check(numpy.array(self.EXPECTED, dtype=numpy.float32).T.copy().T)  # not C-contiguous
        with self.assertRaises(ValueError):
            pelmora.point_array(numpy.zeros(4))


class TextTest(unittest.TestCase):
    def test_times_print_as_the_tool_prints_them(self):
        cases = [(7400.0, "7400"), (33.333, "33.333"), (9866.667, "9866.667"), (10000.0, "10000"),
                 (1e5, "1e+05"), (1e6, "1e+06"), (0.001, "0.001"), (1e-4, "1e-04"), (1.5e-7, "1.5e-07"),
                 (123456789012.0, "123456789012"), (1.23e17, "1.23e+17"), (0.0, "0"), (-0.0, "-0"),
                 (-2.5, "-2.5"), (0.1 + 0.2, "0.30000000000000004")]
        for value, text in cases:
            self.assertEqual(pelmora.format_ms(value), text, repr(value))

    def test_ticks_round_half_away_from_zero_and_wrap(self):
        self.assertEqual([pelmora.ticks(t) for t in (2.5, 3.5, 33.333, -2.5)], [3, 4, 33, 0xFFFFFFFD])


class RecordingTest(unittest.TestCase):
    def read(self, text):
        with tempfile.NamedTemporaryFile("w", suffix=".csv", delete=False, errors="surrogateescape") as f:
            f.write(text)
        self.addCleanup(os.unlink, f.name)
        return pelmora.read_recording(f.name)

    def test_reads_joints_rows_and_quoted_labels(self):
        recording = self.read("time_ms,player,Head.x,Head.y,Head.z,RightHand.x,RightHand.y,RightHand.z,label\n"
                              "0,3,1,2,3,4,5,6,\n\n33.5,1,1,2,3,4,5,6,\"wave, then bow\"\n")
        self.assertEqual(recording.joints, [1, 15])
        self.assertEqual(recording.players, [1, 3])
        self.assertEqual(recording.frames[1], pelmora.Frame(33.5, 1, ((1, 2, 3), (4, 5, 6)), "wave, then bow", 4))


if __name__ == "__main__":
    unittest.main()
