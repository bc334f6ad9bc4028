"""Hostile arguments (the table tests/data/python/hostile_calls.tsv) are
refused before C could touch memory it does not own; a session closed under
running threads stops them with an error."""

import builtins
import ctypes
import os
import threading
import unittest

from support import CONFIG, DOWN, JOINTS, LIBRARY, SOURCE_DIR, pelmora, session

E = pelmora.PelmoraError


def param(types=None, **fields):
    types = (ctypes.c_int32 * 3)(1, 9, 15) if types is None else types
    return pelmora.GestureConfigParam(ReturnInfoType=2, SkeletonTypeArray=types, **dict({"SkeletonNum": 3}, **fields))


class HostileArgumentsTest(unittest.TestCase):
    def tearDown(self):
        pelmora.session._close_at_exit()

    def test_each_call_of_the_table_raises_its_error(self):
        scope = dict(s=session(), LIBRARY=LIBRARY, DOWN=DOWN, JOINTS=JOINTS, CONFIG=CONFIG, pelmora=pelmora,
                     ctypes=ctypes, param=param)
        with open(os.path.join(SOURCE_DIR, "tests", "data", "python", "hostile_calls.tsv")) as table:
            rows = [line.rstrip("\n").split("\t") for line in table if not line.startswith("#")]
        for call, error, message in rows:
            with self.subTest(call):
                if error == "-":
                    self.assertEqual(repr(eval(call, scope)), message)
                    continue
                with self.assertRaises(getattr(pelmora, error, None) or getattr(builtins, error)) as raised:
                    eval(call, scope)
                self.assertEqual(str(raised.exception), message)


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
