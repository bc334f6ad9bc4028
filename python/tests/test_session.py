"""The Pythonic layer driving the real library: lifecycle, both modes, the
three record layouts, the clock, velocities and the library's messages."""

import unittest

from support import BOTH_UP, DOWN, JOINTS, LIBRARY, RIGHT_UP, pelmora, session


def run_hands_up(s, clock):
    """Frames at 33 ms steps: warm-up, down, right up, both up (finish),
    right up, then the left hand too late. Results per frame, HandsUp only."""
    timeline = []
    for step, frame in [(33, DOWN), (33, DOWN), (33, RIGHT_UP), (33, BOTH_UP), (33, RIGHT_UP), (535, RIGHT_UP),
                        (33, BOTH_UP)]:
        clock.now += step
        timeline.append([r for r in s.update(0, frame) if r.name == "HandsUp"])
    return timeline


class ImmediateModeTest(unittest.TestCase):
    def tearDown(self):
        pelmora.session._close_at_exit()

    def test_two_segment_gesture_in_24_byte_records(self):
        clock = pelmora.ManualClock(1000)
        s = session(clock=clock)
        self.assertEqual(s.gestures, ["HandsUp", "Never"])
        timeline = run_hands_up(s, clock)
        R = pelmora.Result
        self.assertEqual(timeline, [
            [],  # the first frame only warms up
            [R(0, "HandsUp", False, False, 0, 66, 66)],
            [R(0, "HandsUp", False, True, 0, 99, 99)],
            [R(0, "HandsUp", True, True, 1, 132, 33)],  # finished: both clocks restart
            [R(0, "HandsUp", False, True, 0, 33, 33)],
            [R(0, "HandsUp", False, False, 1, 568, 535)],  # waited too long: restarted
            [R(0, "HandsUp", False, True, 0, 33, 33)],  # from segment 0 again
        ])

    def test_smaller_records_leave_their_missing_fields_none(self):
        for kind, present in [(pelmora.RETURN_INFO_8, 3), (pelmora.RETURN_INFO_16, 5)]:
            with self.subTest(kind=kind):
                clock = pelmora.ManualClock(1000)
                with session(clock=clock, return_info=kind) as s:
                    finish = run_hands_up(s, clock)[3][0]
                    self.assertTrue(finish.finished)
                    self.assertEqual(finish[:present][:3], (0, "HandsUp", True))
                    self.assertTrue(all(field is None for field in finish[present:]))

    def test_refused_frames_yield_nothing_and_are_reported(self):
        with session() as s:
            with pelmora.capture_library_output() as printed:
                self.assertEqual(LIBRARY.UpdateSketonDataImmediate(0, DOWN[:2], s._buffer(0)), (False, 0))
                s.update(0, DOWN)
                self.assertEqual(s.update(0, ((0, 1.6, 0.0),) + DOWN[1:]), [])  # first joint at depth 0
            self.assertIn("DataSize(2) no equal with player position frame data size(3).", printed.lines)

    def test_velocities_are_position_units_per_millisecond(self):
        clock = pelmora.ManualClock(1000)
        with session(clock=clock, velocity_data=True) as s:
            s.update(0, DOWN)
            clock.now += 100
            moved = (DOWN[0], DOWN[1], (1.3, 1.0, 2.4))
            s.update(0, moved)
            velocities = s.velocities(0)
        self.assertEqual(len(velocities), len(JOINTS))
        self.assertAlmostEqual(velocities[2][0], 0.01, places=6)
        self.assertEqual(velocities[0], (0.0, 0.0, 0.0))

    def test_debug_trace_reaches_the_captured_output(self):
        with session() as s:
            s.debug(True)
            try:
                with pelmora.capture_library_output() as printed:
                    s.update(0, DOWN)
                    s.update(0, DOWN)
            finally:
                s.debug(False)
        self.assertIn("---Begin To Check Gesture(HandsUp), Segment(0)", printed.lines)


class LifecycleTest(unittest.TestCase):
    def tearDown(self):
        pelmora.session._close_at_exit()

    def test_one_session_at_a_time_and_closed_even_on_error(self):
        first = session()
        with self.assertRaises(pelmora.PelmoraError):
            pelmora.Session(JOINTS, library=LIBRARY).open()
        self.assertEqual(LIBRARY.GetGestureNum(0), 2)  # the first one is untouched
        with self.assertRaises(ZeroDivisionError):
            with first:
                1 / 0
        self.assertFalse(first.is_open)
        with pelmora.capture_library_output() as printed:
            self.assertEqual(LIBRARY.GetGestureNum(0), 0)
            self.assertEqual(LIBRARY.GetGestureName(0, 0), "")
        self.assertIn("GetGestureNum line: 163 Error: Pelmora::Instance is NULL", printed.lines)
        with session() as again:
            self.assertEqual(again.gestures, ["HandsUp", "Never"])

    def test_configuration_faults_raise_with_the_library_description(self):
        with pelmora.Session(JOINTS, library=LIBRARY) as s:
            with self.assertRaisesRegex(pelmora.PelmoraError, r"does not load: .*\(row \d+, column \d+\)"):
                s.load_text("<AppConfig><Gesture name='x'></AppConfig>")
            with self.assertRaisesRegex(pelmora.PelmoraError, "/nonexistent.xml does not load: Failed to open"):
                s.load("/nonexistent.xml")
            s.load_text("<AppConfig><Gesture name='Bad'><Segment><Qualification QualificationEnum='Greate'"
                        " value1='@Undeclared' value2='1'/></Segment></Gesture></AppConfig>")
            with self.assertRaisesRegex(pelmora.PelmoraError, "does not compile"):
                s.start()
            with self.assertRaisesRegex(pelmora.PelmoraError, 'no gesture "Nope"'):
                s.enable(0, "Nope")


class WorkerModeTest(unittest.TestCase):
    def tearDown(self):
        pelmora.session._close_at_exit()

    def test_queued_switches_and_passes_woken_per_frame(self):
        clock = pelmora.ManualClock(1000)
        with session(clock=clock, worker=True) as s:
            with self.assertRaises(pelmora.PelmoraError):
                s.update(0, DOWN)
            warmed = []
            for _ in range(5):  # frames until a pass publishes: warmed up
                clock.now += 33
                s.submit(0, DOWN)
                s.wake()
                warmed = s.wait(0, timeout=0.3)
                if warmed:
                    break
            self.assertEqual([r.name for r in warmed], ["HandsUp", "Never"])
            steps = []
            for frame in (RIGHT_UP, BOTH_UP):
                clock.now += 33
                self.assertTrue(s.submit(0, frame))
                s.wake()
                steps.append(s.wait(0, timeout=5.0)[0])
            self.assertEqual([(r.succeeded, r.finished, r.segment) for r in steps], [(True, False, 0), (True, True, 1)])
            self.assertGreater(s.fps, 0)


if __name__ == "__main__":
    unittest.main()
