"""Hostile arguments are refused before C could touch memory it does not
own; a session closed under running threads stops them with an error."""

import ctypes
import os
import tempfile
import threading
import unittest

from support import DOWN, JOINTS, LIBRARY, pelmora, session

E = pelmora.PelmoraError


def param(types=None, SkeletonNum=3, **sizes):
    types = (ctypes.c_int32 * 3)(1, 9, 15) if types is None else types
    return pelmora.GestureConfigParam(ReturnInfoType=2, SkeletonNum=SkeletonNum, SkeletonTypeArray=types, **sizes)


class HostileArgumentsTest(unittest.TestCase):
    def tearDown(self):
        pelmora.session._close_at_exit()

    def test_each_is_refused_with_its_error(self):
        s = session()
        results = (pelmora.PelmoraResult24 * 2)()
        closed = pelmora.Session(JOINTS, library=LIBRARY)
        cases = [
            (lambda: LIBRARY.UpdateSketonDataImmediate(0, DOWN, 0xDEAD), TypeError,
             "results must be a ctypes array of result records, not int"),
            (lambda: LIBRARY.GetPlayerGestureState(0, (pelmora.PelmoraResult16 * 2)()), E,
             "results buffer holds 1 records of 24 bytes, GetGestureNum(0) is 2"),
            (lambda: LIBRARY.UpdateSketonData(0, DOWN[:2], 3), E, "count 3 is more than the 2 joints given"),
            (lambda: LIBRARY.UpdateSketonData(0, ctypes.pointer(pelmora.Point3())), TypeError,
             "a joint frame must hold its joints; a LP_Point3 gives no length"),
            (lambda: LIBRARY.UpdateSketonDataImmediate(0, DOWN, results, 4), E,
             "count 4 is more than the 3 joints given"),
            (lambda: s.update(0, DOWN[:2]), E, "a frame of 2 joints, the session's skeleton has 3"),
            (lambda: s.update(-1, DOWN), E, "player -1 is not one of the session's 1"),
            (lambda: s.results(1), E, "player 1 is not one of the session's 1"),
            (lambda: s.submit(0, None), E, "a frame is needed, got None"),
            (lambda: s.enable(0, 2), E, "gesture 2 is not one of the 2 compiled"),
            (lambda: s.velocities(0), E, "the session keeps no velocities: open it with velocity_data=True"),
            (s.close, None, None),
            (lambda: s.update(0, DOWN), E, "the session is closed"),
            (lambda: closed.results(0), E, "the session is closed"),
            (lambda: LIBRARY.InitPelmora(param(SkeletonNum=4)), E,
             "SkeletonTypeArray holds 3 joint types, SkeletonNum is 4"),
            (lambda: LIBRARY.InitPelmora(param(ctypes.pointer(ctypes.c_int32(1)), 2)), E,
             "SkeletonTypeArray holds 1 joint types, SkeletonNum is 2"),
            (lambda: LIBRARY.InitPelmora(param(VelocityFrameNum=2 ** 31 - 1)), E,
             "VelocityFrameNum 2147483647 is above the library's limit of 4096"),
            (lambda: pelmora.Session(JOINTS, 2 ** 32 + 1, library=LIBRARY).open(), OverflowError,
             "PlayerNum 4294967297 does not fit the C argument"),
            (lambda: pelmora.Session(JOINTS, 10 ** 6, library=LIBRARY).open(), E,
             "PlayerNum 1000000 is above the library's limit of 1024"),
        ]
        for row, (call, error, message) in enumerate(cases):
            if error is None:
                call()
                continue
            with self.subTest(row=row, message=message), self.assertRaises(error) as raised:
                call()
            self.assertEqual(str(raised.exception), message)
        with session(velocity_data=True) as s:
            self.assertIsNone(s.velocities(0))  # nothing evaluated yet

    def test_replay_names_the_recording(self):
        with tempfile.NamedTemporaryFile("w", suffix=".csv", delete=False) as f:
            f.write("time_ms,player,Head.x,Head.y,Head.z\n" + "".join("0,%d,0,1,2\n" % p for p in range(1025)))
        self.addCleanup(os.unlink, f.name)
        with self.assertRaises(E) as raised:
            list(pelmora.replay("unused.xml", f.name, library=LIBRARY))
        self.assertEqual(str(raised.exception), f.name + ": PlayerNum 1025 is above the library's limit of 1024")


class CloseUnderLoadTest(unittest.TestCase):
    def test_close_waits_for_calls_in_flight_and_later_calls_raise(self):
        for _ in range(5):  # each round closes at some point of an update
            s, updates, ended = session(), threading.Semaphore(0), []

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
