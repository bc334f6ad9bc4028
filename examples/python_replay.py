#!/usr/bin/env python3
"""Replays a skeleton recording through a gesture configuration with the
Python binding and prints one line per finished gesture, as `pelmora replay`
does:

    1433.333 ms frame 43 player 0: RightPunch finished segment 2 [1]

The library's own messages go to standard error. By default the bundled
PRECOG recording runs through the gesture catalogue. It uses the installed
package, or else the one beside this checkout, which finds the library as
docs/python.md says ($PELMORA_LIBRARY first)."""

import argparse
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
try:
    import pelmora
except ImportError:  # not installed: the package beside this checkout
    sys.path.insert(0, os.path.join(HERE, "..", "python"))
    import pelmora


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("config", nargs="?", default=os.path.join(HERE, "gestures", "catalogue.xml"))
    parser.add_argument("recording", nargs="?",
                        default=os.path.join(HERE, "recordings", "precog-seq1-subject7.csv"))
    parser.add_argument("--gestures", help="gestures to enable, A,B (default: all)")
    args = parser.parse_args()
    gestures = args.gestures.split(",") if args.gestures else None
    try:
        with pelmora.library_output_to(2) as out:
            for finish in pelmora.replay(args.config, args.recording, gestures):
                print(finish, file=out)
    except (OSError, ValueError, pelmora.PelmoraError) as error:
        print("python_replay: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
