#!/usr/bin/env python3
"""Measures the gesture catalogue: precision and recall of the finished events
of `pelmora replay` against labelled recordings, printed as a Markdown table.

Punches and kicks are measured on the PRECOG recordings (subjects 1-8, real
Kinect v1 data, hand-labelled); every gesture is measured on recordings from
the motion synthesiser (child to tall adult, 2 m and 4 m, slow and fast,
mirrored and plain tracker axes). Every other activity in a recording (the
other gestures, idle, walking, back fists and elbow strikes) is a negative.
An event counts as found when it falls within a tolerance of a labelled
performance of its gesture; a second event for the same performance, or one
outside any, is a false detection.
"""
import argparse
import csv
import glob
import json
import os
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

PRECOG_ACTIONS = {"1": "RightPunch", "2": "LeftPunch", "3": "FrontRightKick", "4": "FrontLeftKick",
                  "5": "SideRightKick", "6": "SideLeftKick"}
# Labels are set by hand (PRECOG) or cover the whole move (synthesiser): an
# event may come a little before or after the labelled span.
PRECOG_TOLERANCE_MS = (333.0, 333.0)
SYNTH_TOLERANCE_MS = (300.0, 500.0)


def performances(recording, names):
    """Labelled spans (gesture, start ms, end ms) of a native recording; a
    label is mapped through `names` when it is a dataset's action id. Spans
    split by a gap of up to 8 frames of the same label count once."""
    spans = []
    with open(recording, newline="") as source:
        for row in csv.DictReader(source):
            label = names.get(row["label"], row["label"])
            time = float(row["time_ms"])
            if spans and spans[-1][0] == label and time - spans[-1][2] <= 8 * 34.0:
                spans[-1][2] = time
            elif label:
                spans.append([label, time, time])
    return spans


def catalogue_gestures(catalogue):
    return {g.get("name") for g in ElementTree.parse(catalogue).getroot().iter("Gesture")}


def replay(pelmora, catalogue, recording):
    out = subprocess.run([pelmora, "replay", catalogue, recording, "--format", "jsonl"],
                         check=True, capture_output=True, text=True).stdout
    return [json.loads(line) for line in out.splitlines() if line.startswith("{")]


def score(tally, events, spans, tolerance, gestures):
    for gesture in gestures:
        mine = [s for s in spans if s[0] == gesture]
        found = set()
        entry = tally.setdefault(gesture, {"performances": 0, "events": 0, "hits": 0})
        entry["performances"] += len(mine)
        for event in events:
            if event["gesture"] != gesture or event["event"] != "finished":
                continue
            entry["events"] += 1
            t = float(event["time_ms"])
            match = [k for k, s in enumerate(mine) if s[1] - tolerance[0] <= t <= s[2] + tolerance[1]]
            if match and match[0] not in found:
                found.add(match[0])
        entry["hits"] += len(found)


def table(title, tally):
    lines = [f"| {title} | performances | events | precision | recall |", "|---|---:|---:|---:|---:|"]
    for gesture in sorted(tally):
        t = tally[gesture]
        if not t["performances"]:
            continue
        precision = t["hits"] / t["events"] if t["events"] else 0.0
        recall = t["hits"] / t["performances"]
        lines.append(f"| {gesture} | {t['performances']} | {t['events']} | {precision:.2f} | {recall:.2f} |")
    return "\n".join(lines)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    root = os.path.dirname(os.path.dirname(here))
    parser = argparse.ArgumentParser(description="Precision and recall of the gesture catalogue.")
    parser.add_argument("--pelmora", default=os.path.join(root, "build", "tools", "pelmora"))
    parser.add_argument("--catalogue", default=os.path.join(root, "examples", "gestures", "catalogue.xml"))
    parser.add_argument("--precog", default=os.path.join(os.path.dirname(root), "shared", "data", "precog"))
    args = parser.parse_args()

    gestures = catalogue_gestures(args.catalogue)
    with tempfile.TemporaryDirectory() as work:
        precog = {}
        for source in sorted(glob.glob(os.path.join(args.precog, "Seq*_*.csv"))):
            native = os.path.join(work, os.path.basename(source))
            subprocess.run([args.pelmora, "import", "precog", source, native], check=True, capture_output=True)
            score(precog, replay(args.pelmora, args.catalogue, native), performances(native, PRECOG_ACTIONS),
                  PRECOG_TOLERANCE_MS, gestures)

        synth_dir = os.path.join(work, "synth")
        os.mkdir(synth_dir)
        subprocess.run([sys.executable, os.path.join(here, "synth.py"), synth_dir], check=True, capture_output=True)
        synthetic = {}
        for recording in sorted(glob.glob(os.path.join(synth_dir, "*.csv"))):
            score(synthetic, replay(args.pelmora, args.catalogue, recording), performances(recording, {}),
                  SYNTH_TOLERANCE_MS, gestures)

    print(table("PRECOG, subjects 1-8", precog))
    others = ", ".join(f"{g} {t['events']}" for g, t in sorted(precog.items()) if not t["performances"] and t["events"])
    print(f"\nOther catalogue gestures fired on the PRECOG recordings: {others or 'none'}.\n")
    print(table("Synthesised", synthetic))


if __name__ == "__main__":
    main()
