"""Hostile arguments: each is refused with its own error before the library
could read or write memory it does not own, and a session closed under a
running thread stops that thread with an error, not a crash."""

import ctypes
import os
import tempfile
import threading
import unittest

from support import DOWN, JOINTS, LIBRARY, pelmora, session

E = pelmora.PelmoraError


def param(**fields):
    sizes = dict({"PlayerNum": 1, "SkeletonNum": 3, "VelocityFrameNum": 2}, **fields)
    return pelmora.GestureConfigParam(ReturnInfoType=2, SkeletonTypeArray=(ctypes.c_int32 * 3)(1, 9, 15), **sizes)


def record_types(count):
    p = param(SkeletonNum=count)
    p.SkeletonTypeArray = ctypes.cast(ctypes.pointer(ctypes.c_int32(1)), ctypes.POINTER(ctypes.c_int32))
    return p


class HostileArgumentsTest(unittest.TestCase):
    def tearDown(self):
        pelmora.session._close_at_exit()

    def check(self, cases):
        for name, call, error, message in cases:
            with self.subTest(name):
                with self.assertRaises(error) as raised:
                    call()
                self.assertEqual(str(raised.exception), message)

    def test_library_layer(self):
        s = session()
        results = (pelmora.PelmoraResult24 * 2)()
        self.check([
            ("an int as results buffer", lambda: LIBRARY.UpdateSketonDataImmediate(0, DOWN, 0xDEAD), TypeError,
             "results must be a ctypes array of result records, not int"),
            ("results smaller than GetGestureNum", lambda: LIBRARY.GetPlayerGestureState(0, (pelmora.PelmoraResult16 * 2)()),
             E, "results buffer holds 1 records of 24 bytes, GetGestureNum(0) is 2"),
            ("a count past the frame", lambda: LIBRARY.UpdateSketonData(0, DOWN[:2], 3), E,
             "count 3 is more than the 2 joints given"),
            ("... immediate", lambda: LIBRARY.UpdateSketonDataImmediate(0, DOWN, results, 4), E,
             "count 4 is more than the 3 joints given"),
        ])
        s.close()
        self.check([
            ("SkeletonNum past its types", lambda: LIBRARY.InitPelmora(param(SkeletonNum=4)), E,
             "SkeletonTypeArray holds 3 joint types, SkeletonNum is 4"),
            ("types behind a bare pointer", lambda: LIBRARY.InitPelmora(record_types(2)), E,
             "SkeletonTypeArray holds 1 joint types, SkeletonNum is 2"),
            ("PlayerNum past the limit", lambda: LIBRARY.InitPelmora(param(PlayerNum=10 ** 6)), E,
             "PlayerNum 1000000 is above the library's limit of 1024"),
            ("history past the limit", lambda: LIBRARY.InitPelmora(param(VelocityFrameNum=2 ** 31 - 1)), E,
             "VelocityFrameNum 2147483647 is above the library's limit of 4096"),
        ])

    def test_session_layer(self):
        s = session()
        self.check([
            ("a frame too short", lambda: s.update(0, DOWN[:2]), E, "a frame of 2 joints, the session's skeleton has 3"),
            ("player -1", lambda: s.update(-1, DOWN), E, "player -1 is not one of the session's 1"),
            ("a player too many", lambda: s.results(1), E, "player 1 is not one of the session's 1"),
            ("no frame", lambda: s.submit(0, None), E, "a frame is needed, got None"),
            ("no such gesture", lambda: s.enable(0, 2), E, "gesture 2 is not one of the 2 compiled"),
            ("velocities not kept", lambda: s.velocities(0), E,
             "the session keeps no velocities: open it with velocity_data=True"),
        ])
        s.close()
        self.check([
            ("use after close", lambda: s.update(0, DOWN), E, "the session is closed"),
            ("... results", lambda: s.results(0), E, "the session is closed"),
            ("players wrapping to 1", lambda: pelmora.Session(JOINTS, 2 ** 32 + 1, library=LIBRARY).open(),
             OverflowError, "PlayerNum 4294967297 does not fit the C argument"),
            ("players past the limit", lambda: pelmora.Session(JOINTS, 1025, library=LIBRARY).open(), E,
             "PlayerNum 1025 is above the library's limit of 1024"),
        ])
        with session(velocity_data=True) as s:
            self.assertIsNone(s.velocities(0))  # nothing evaluated yet

    def test_replay_names_the_recording(self):
        with tempfile.NamedTemporaryFile("w", suffix=".csv", delete=False) as f:
            f.write("time_ms,player,Head.x,Head.y,Head.z\n" + "".join("0,%d,0,1,2\n" % p for p in range(1025)))
        self.addCleanup(os.unlink, f.name)
        with self.assertRaises(E) as raised:
            list(pelmora.replay("unused.xml", f.name, library=LIBRARY))
        self.assertEqual(str(raised.exception), f.name + ": PlayerNum 1025 is above the library's limit of 1024")
        frames = [pelmora.Frame(0.0, 0, DOWN, "", 2), pelmora.Frame(float("nan"), 0, DOWN, "", 3)]
        with pelmora.capture_library_output(), self.assertRaises(E) as raised:
            list(pelmora.replay(os.path.join(os.path.dirname(__file__), "..", "..", "examples", "gestures",
                                             "catalogue.xml"), pelmora.Recording([1, 9, 15], False, frames),
                                library=LIBRARY))
        self.assertEqual(str(raised.exception), "recording: line 3: cannot convert float NaN to integer")


class CloseUnderLoadTest(unittest.TestCase):
    def test_close_waits_for_calls_in_flight_and_later_calls_raise(self):
        s = session()
        updates, ended = threading.Semaphore(0), []

        def feed():
            try:
                while True:
                    s.update(0, DOWN)
                    updates.release()
            except E as error:
                ended.append(str(error))

        threads = [threading.Thread(target=feed) for _ in range(2)]
        with pelmora.capture_library_output():
            for thread in threads:
                thread.start()
            self.assertTrue(all(updates.acquire(timeout=60) for _ in range(100)))
            s.close()
            for thread in threads:
                thread.join(60)
        self.assertEqual(ended, ["the session is closed"] * 2)


if __name__ == "__main__":
    unittest.main()
