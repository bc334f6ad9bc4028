#!/usr/bin/env python3
"""Recognises gestures live from a webcam: OpenCV reads the camera, the
MediaPipe pose estimator finds the 33 world landmarks of the person in front
of it, pelmora.sources turns them into a library frame and the gesture
catalogue runs on it. Each finished gesture prints a line, as `pelmora
replay` prints it:

    1433.333 ms frame 43 player 0: RightPunch finished segment 2

--record FILE.csv writes the library's frames as a native recording (to
label, replay, evaluate and tune with the pelmora tool); --landmarks
FILE.jsonl keeps the estimator's landmarks as `pelmora import
mediapipe-jsonl` reads them. --replay FILE.jsonl reads such a landmark file
instead of the camera, so this runs without a camera, OpenCV or the
estimator. The library is found through $PELMORA_LIBRARY, an installed
prefix or the dynamic loader; its own messages go to standard error."""

import argparse
import contextlib
import json
import os
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "python"))

import pelmora  # noqa: E402  (found beside this checkout, or installed)

INSTALL_HINT = ("the live mode needs OpenCV and the MediaPipe pose estimator: "
                "pip install opencv-python mediapipe (or apt install python3-opencv, then pip install mediapipe); "
                "--replay FILE.jsonl runs without them")


class Failure(Exception):
    """A one-line reason to stop."""


def camera_frames(camera, mirrored):
    """(time_ms, landmarks, mirrored, where) per camera image with a person
    in it, until Esc or q in the preview window."""
    try:
        import cv2
        import mediapipe
    except ImportError:
        raise Failure(INSTALL_HINT) from None
    capture = cv2.VideoCapture(camera)
    if not capture.isOpened():
        raise Failure("camera %d does not open" % camera)
    return _estimate(cv2, mediapipe.solutions.pose.Pose(model_complexity=1), capture, mirrored)


def _estimate(cv2, estimator, capture, mirrored):
    start = time.monotonic()
    with estimator:
        try:
            while True:
                ok, image = capture.read()
                if not ok:
                    return
                found = estimator.process(cv2.cvtColor(image, cv2.COLOR_BGR2RGB)).pose_world_landmarks
                # The preview is shown as a mirror; the estimator saw the image unflipped.
                cv2.imshow("pelmora webcam (Esc quits)", cv2.flip(image, 1))
                if cv2.waitKey(1) & 0xFF in (27, ord("q")):
                    return
                if found is not None:
                    time_ms = (time.monotonic() - start) * 1000.0
                    yield time_ms, found.landmark, mirrored, "the camera image at %.0f ms" % time_ms
        finally:
            capture.release()
            cv2.destroyAllWindows()


def landmark_file_frames(path):
    """(time_ms, landmarks, mirrored, where) per line of a landmark file:
    {"time_ms": T, "landmarks": [[x, y, z(, visibility)], ...](, "mirrored": true)}."""
    with open(path, encoding="utf-8") as lines:
        for number, line in enumerate(lines, 1):
            if not line.strip():
                continue
            try:
                frame = json.loads(line)
                time_ms, found, mirrored = float(frame["time_ms"]), frame["landmarks"], bool(frame.get("mirrored", False))
            except (ValueError, KeyError, TypeError) as error:
                raise Failure("%s: line %d: not a landmark frame (%s)" % (path, number, error)) from None
            yield time_ms, found, mirrored, "%s: line %d" % (path, number)


def run(args, frames, out):
    joints = pelmora.sources.joints("mediapipe-pose")
    clock = pelmora.ManualClock(0)
    with contextlib.ExitStack() as files, pelmora.Session(joints, clock=clock) as session:
        record = files.enter_context(open(args.record, "w", encoding="utf-8")) if args.record else None
        landmarks = files.enter_context(open(args.landmarks, "w", encoding="utf-8")) if args.landmarks else None
        if record:
            record.write("time_ms,player,%s\n" % ",".join("%s.%s" % (j, a) for j in joints for a in "xyz"))
        session.load(args.config).start()
        session.track(0)
        session.enable(0, args.gestures.split(",") if args.gestures else None)
        for row, (time_ms, found, mirrored, where) in enumerate(frames):
            try:
                frame = pelmora.sources.mediapipe_pose(found, mirrored)
            except pelmora.sources.SourceFrameError as error:
                raise Failure("%s: %s" % (where, error)) from None
            if landmarks:
                points = [[p.x, p.y, p.z, p.visibility] if hasattr(p, "x") else list(p) for p in found]
                landmarks.write(json.dumps({"time_ms": time_ms, "landmarks": points, "mirrored": mirrored}) + "\n")
            if record:
                record.write("%s,0,%s\n" % (pelmora.format_ms(time_ms), ",".join("%.9g" % v for p in frame for v in p)))
            clock.now = pelmora.ticks(time_ms)
            for result in session.update(0, frame):
                if result.finished:
                    print(pelmora.Finish(time_ms, row, 0, result.name, result.segment, ""), file=out, flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--config", default=os.path.join(HERE, "gestures", "catalogue.xml"))
    parser.add_argument("--gestures", help="gestures to enable, A,B (default: all)")
    parser.add_argument("--camera", type=int, default=0, help="OpenCV camera number (default 0)")
    parser.add_argument("--mirrored", action="store_true",
                        help="the camera flips its image itself (a selfie view): swap left and right back")
    parser.add_argument("--record", metavar="FILE.csv", help="write the frames as a native recording")
    parser.add_argument("--landmarks", metavar="FILE.jsonl", help="write the estimator's landmarks")
    parser.add_argument("--replay", metavar="FILE.jsonl", help="read landmarks from a file instead of the camera")
    args = parser.parse_args()
    try:
        with pelmora.library_output_to(2) as out:
            frames = landmark_file_frames(args.replay) if args.replay else camera_frames(args.camera, args.mirrored)
            run(args, frames, out)
    except (Failure, OSError, pelmora.PelmoraError) as error:
        print("webcam: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
