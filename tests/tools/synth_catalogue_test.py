#!/usr/bin/env python3
"""The catalogue on synthesised people: every catalogue gesture the motion
synthesiser can perform fires once in its performance (the frames labelled
with its name), for people from a child to a tall adult, at 2 m and 4 m, slow
and fast, and a tracker with a mirrored x axis gives the same events. The
gestures are those of the synthesiser's table that the current catalogue
holds, so the test follows changes to either.
Usage: synth_catalogue_test.py PELMORA CATALOGUE SYNTH_DIR
"""
import json
import os
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

sys.dont_write_bytecode = True
sys.path.insert(0, sys.argv[3])
import synth  # noqa: E402

# (body, metres from the sensor, speed): each size, distance and speed once.
PEOPLE = [("child", 2.0, 0.8), ("tall", 4.0, 1.25), ("teen", 4.0, 0.8), ("adult", 2.0, 1.25)]


def finishes(pelmora, catalogue, path):
    out = subprocess.run([pelmora, "replay", catalogue, path, "--format", "jsonl"], check=True,
                         stdout=subprocess.PIPE, text=True).stdout
    return [(event["time_ms"], event["gesture"], event.get("label", "")) for event in map(json.loads, out.splitlines())]


def main():
    pelmora, catalogue = sys.argv[1], sys.argv[2]
    table = synth.gestures()
    gestures = sorted({g.get("name") for g in ElementTree.parse(catalogue).iter("Gesture")} & set(table))
    failed = []
    with tempfile.TemporaryDirectory() as work:
        for seed, (body, distance, speed) in enumerate(PEOPLE):
            tag = f"{body} at {distance:.0f} m, speed {speed}"
            twins = []
            for flip in (False, True):
                path = os.path.join(work, f"{body}-{flip}.csv")
                synth.render(path, table, synth.BODIES[body], distance, speed, flip, seed)
                twins.append(finishes(pelmora, catalogue, path))
            for name in gestures:
                count = sum(1 for _, gesture, label in twins[0] if gesture == name == label)
                if count != 1:
                    failed.append(f"{tag}: {name} fired {count} times in its performance")
            if twins[0] != twins[1]:
                failed.append(f"{tag}: the mirrored tracker differs in {sorted(set(twins[0]) ^ set(twins[1]))[:4]}")
    print(f"{len(gestures)} gestures, {len(PEOPLE)} people, plain and mirrored")
    for line in failed:
        print("FAIL:", line)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
