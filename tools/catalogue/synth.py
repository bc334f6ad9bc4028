#!/usr/bin/env python3
"""A small motion synthesiser: skeleton recordings of scripted gestures in the
native recording format, for people of any size, at any distance, with noise,
at any speed, seen by trackers with either handedness.

The body is a chain of segments whose lengths are fixed fractions of the body
height. A performance is a list of key poses (segment directions in the body's
own frame: x the person's right, y up, z forward) interpolated smoothly; the
pelvis height keeps the lower foot on the floor unless a jump lifts it.
Standard library only.
"""
import argparse
import csv
import math
import random

JOINTS = ["Waist", "Torso", "Neck", "Head", "LeftShoulder", "LeftElbow", "LeftWrist", "LeftHand",
          "RightShoulder", "RightElbow", "RightWrist", "RightHand", "LeftHip", "LeftKnee", "LeftAnkle",
          "LeftFoot", "RightHip", "RightKnee", "RightAnkle", "RightFoot"]
FPS = 30.0

# Segment lengths as fractions of the height from the foot joints to the head
# joint, in the proportions a depth tracker reports (measured on the PRECOG
# recordings while the subjects stood still).
SPINE, NECK, HEAD = 0.054, 0.276, 0.117
SHOULDER, HIP_HALF, HIP_DROP = 0.107, 0.046, 0.047
UPPER_ARM, FOREARM, HAND = 0.156, 0.151, 0.049
THIGH, SHANK, ANKLE, FOOT = 0.296, 0.236, 0.039, 0.057


def add(a, b): return (a[0] + b[0], a[1] + b[1], a[2] + b[2])
def scale(a, s): return (a[0] * s, a[1] * s, a[2] * s)
def unit(a):
    n = math.sqrt(a[0] ** 2 + a[1] ** 2 + a[2] ** 2)
    return (a[0] / n, a[1] / n, a[2] / n)
def mix(a, b, t): return unit((a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t, a[2] + (b[2] - a[2]) * t))
def mirror(d): return (-d[0], d[1], d[2])


# A pose names segment directions: arm (upper arm, forearm) and leg (thigh,
# shank) of each side, the torso, and a lift of the whole body (jumps).
REST = {
    "torso": (0, 1, 0), "lift": 0.0,
    "RightArm": ((0.12, -1, 0.02), (0.05, -1, 0.12)), "LeftArm": ((-0.12, -1, 0.02), (-0.05, -1, 0.12)),
    "RightLeg": ((0.02, -1, 0.0), (0.0, -1, -0.02)), "LeftLeg": ((-0.02, -1, 0.0), (0.0, -1, -0.02)),
}
GUARD = ((0.25, -0.75, 0.45), (-0.15, 0.85, 0.45))


def pose(**changes):
    p = dict(REST)
    p.update(changes)
    return p


def mirrored(limbs):
    """The same limb directions on the other side of the body."""
    return tuple(mirror(d) for d in limbs)


def arms(right=None, left=None, **rest):
    changes = dict(rest)
    if right: changes["RightArm"] = right
    if left: changes["LeftArm"] = left
    return pose(**changes)


def interpolate(a, b, t):
    t = 0.5 - 0.5 * math.cos(math.pi * t)
    out = {"lift": a["lift"] + (b["lift"] - a["lift"]) * t, "torso": mix(a["torso"], b["torso"], t)}
    for limb in ("RightArm", "LeftArm", "RightLeg", "LeftLeg"):
        out[limb] = (mix(a[limb][0], b[limb][0], t), mix(a[limb][1], b[limb][1], t))
    return out


def gestures():
    """Each gesture: a list of (seconds to reach the pose, pose)."""
    up_arm = ((0.1, 1, 0.05), (0.05, 1, 0.05))
    out_arm = ((1, 0.02, 0.05), (1, 0.02, 0.05))
    wave_in = ((0.9, 0.15, 0.3), (-0.45, 0.9, 0.1))
    wave_out = ((0.9, 0.15, 0.3), (0.5, 0.87, 0.1))
    swipe_from = ((0.8, -0.5, 0.35), (0.3, 0.2, 0.93))
    swipe_to = ((-0.45, -0.35, 0.8), (-0.75, 0.1, 0.6))
    push_from = ((-0.1, -0.9, 0.45), (-0.8, 0.1, 0.6))
    punch = ((0.05, 0.05, 1), (0.02, 0.05, 1))
    stop = ((0.05, 0.05, 1), (0.0, 0.25, 1))
    kick_front = ((0.02, -0.1, 1.0), (0.0, -0.95, 0.3))
    kick_side = ((0.9, -0.45, 0.05), (0.97, -0.25, 0.0))
    lean_left = (-0.3, 0.95, 0.0)
    squat = ((0.0, -0.45, 0.89), (0.0, -0.9, -0.43))
    dip = ((0.0, -0.85, 0.5), (0.0, -0.95, -0.3))
    table = {
        "RaiseRightHand": [(0.7, arms(right=up_arm)), (0.6, arms(right=up_arm)), (0.7, REST)],
        "RaiseBothArms": [(0.6, arms(out_arm, mirrored(out_arm))), (0.6, arms(up_arm, mirrored(up_arm))),
                          (0.4, arms(up_arm, mirrored(up_arm))), (0.8, REST)],
        "WaveRightHand": [(0.6, arms(right=wave_in))] + [(0.3, arms(right=w)) for w in (wave_out, wave_in) * 3]
                         + [(0.6, REST)],
        "SwipeLeft": [(0.5, arms(right=swipe_from)), (0.3, arms(right=swipe_from)), (0.35, arms(right=swipe_to)),
                      (0.6, REST)],
        # People sweep back to the right with the right hand too.
        "SwipeRight": [(0.5, arms(right=swipe_to)), (0.3, arms(right=swipe_to)), (0.35, arms(right=swipe_from)),
                       (0.6, REST)],
        # People bring the hand across the body before pushing it out.
        "PushRight": [(0.5, arms(right=push_from)), (0.3, arms(right=push_from)), (0.35, arms(right=out_arm)),
                      (0.6, REST)],
        "RightPunch": [(0.5, arms(GUARD, mirrored(GUARD))), (0.3, arms(GUARD, mirrored(GUARD))),
                       (0.18, arms(punch, mirrored(GUARD))), (0.25, arms(GUARD, mirrored(GUARD))), (0.5, REST)],
        "FrontRightKick": [(0.45, pose(RightLeg=kick_front)), (0.45, REST)],
        "SideRightKick": [(0.45, pose(RightLeg=kick_side, torso=lean_left)), (0.5, REST)],
        "Jump": [(0.3, pose(RightLeg=dip, LeftLeg=mirrored(dip), lift=0.0)), (0.25, pose(lift=0.11)),
                 (0.25, REST)],
        "Duck": [(0.8, pose(RightLeg=squat, LeftLeg=mirrored(squat))), (0.6, pose(RightLeg=squat, LeftLeg=mirrored(squat))),
                 (0.8, REST)],
        "Bow": [(0.9, pose(torso=(0, 0.45, 0.89))), (0.5, pose(torso=(0, 0.45, 0.89))), (0.9, REST)],
        "TPose": [(0.7, arms(out_arm, mirrored(out_arm))), (1.6, arms(out_arm, mirrored(out_arm))), (0.7, REST)],
        "Stop": [(0.6, arms(right=stop)), (1.4, arms(right=stop)), (0.6, REST)],
    }
    # The left-handed gestures mirror their right-handed twins.
    swaps = {"RaiseRightHand": "RaiseLeftHand", "WaveRightHand": "WaveLeftHand", "RightPunch": "LeftPunch",
             "FrontRightKick": "FrontLeftKick", "SideRightKick": "SideLeftKick"}
    for right, left in swaps.items():
        table[left] = [(seconds, mirror_pose(p)) for seconds, p in table[right]]
    return table


def mirror_pose(p):
    return {"lift": p["lift"], "torso": mirror(p["torso"]),
            "RightArm": mirrored(p["LeftArm"]), "LeftArm": mirrored(p["RightArm"]),
            "RightLeg": mirrored(p["LeftLeg"]), "LeftLeg": mirrored(p["RightLeg"])}


class Body:
    """One person: size, place, facing, and how the tracker sees them."""

    def __init__(self, height, distance, lateral, noise, flip_x, rng):
        self.h, self.distance, self.lateral, self.noise, self.flip_x, self.rng = height, distance, lateral, noise, flip_x, rng

    def joints(self, p, walk=(0.0, 0.0)):
        h = self.h
        up, right = unit(p["torso"]), (1.0, 0.0, 0.0)
        out = {}
        pelvis = (0.0, 0.0, 0.0)
        out["Waist"] = pelvis
        out["Torso"] = add(pelvis, scale(up, SPINE * h))
        neck = add(pelvis, scale(up, NECK * h))
        out["Neck"], out["Head"] = neck, add(neck, scale(up, HEAD * h))
        for side, sign in (("Right", 1), ("Left", -1)):
            shoulder = add(neck, scale(right, sign * SHOULDER * h))
            upper, fore = p[side + "Arm"]
            elbow = add(shoulder, scale(unit(upper), UPPER_ARM * h))
            wrist = add(elbow, scale(unit(fore), FOREARM * h))
            out[side + "Shoulder"], out[side + "Elbow"], out[side + "Wrist"] = shoulder, elbow, wrist
            out[side + "Hand"] = add(wrist, scale(unit(fore), HAND * h))
            hip = add(pelvis, (sign * HIP_HALF * h, -HIP_DROP * h, 0.0))
            thigh, shank = p[side + "Leg"]
            knee = add(hip, scale(unit(thigh), THIGH * h))
            ankle = add(knee, scale(unit(shank), SHANK * h))
            out[side + "Hip"], out[side + "Knee"], out[side + "Ankle"] = hip, knee, ankle
            out[side + "Foot"] = add(ankle, (0.0, -ANKLE * h * 0.5, FOOT * h))
        # The lower foot stands on the floor; a jump lifts the whole body.
        floor = min(out["LeftFoot"][1], out["RightFoot"][1]) - ANKLE * h * 0.5
        lift = p["lift"] * h - floor
        return {name: self.place(add(point, (walk[0], lift, walk[1]))) for name, point in out.items()}

    def place(self, point):
        """Body frame to tracker frame: the person faces the sensor, which
        stands 0.8 m above the floor; some trackers mirror x."""
        x, y, z = point
        sensor = (x + self.lateral, y - 0.8, self.distance - z)
        sensor = tuple(c + self.rng.gauss(0.0, self.noise) for c in sensor)
        return (-sensor[0], sensor[1], sensor[2]) if self.flip_x else sensor


def timeline(script, table, speed, rng):
    """Poses at 30 frames per second for a script of (label, gesture or None
    for idle seconds)."""
    frames = []
    current = REST
    for label, what in script:
        if isinstance(what, float):
            for i in range(int(what * FPS)):
                frames.append((idle_sway(current, i, rng), "", (0.0, 0.0)))
            continue
        if what == "Walk":
            frames.extend(walk_frames(label, speed))
            continue
        for seconds, target in table[what]:
            steps = max(2, int(seconds * FPS / speed))
            for i in range(1, steps + 1):
                frames.append((interpolate(current, target, i / steps), label, (0.0, 0.0)))
            current = target
    return frames


def idle_sway(p, i, rng):
    sway = 0.02 * math.sin(i / FPS * 1.3)
    q = dict(p)
    q["torso"] = unit(add(p["torso"], (sway, 0.0, sway * 0.5)))
    return q


def walk_frames(label, speed):
    frames = []
    steps = int(4.0 * FPS)
    for i in range(steps):
        phase = i / FPS * 2.0 * math.pi * 0.9 * speed
        swing = 0.35 * math.sin(phase)
        legs = {"RightLeg": ((0.02, -1, swing), (0.0, -1, swing * 0.3 - 0.1 * max(0.0, math.sin(phase)))),
                "LeftLeg": ((-0.02, -1, -swing), (0.0, -1, -swing * 0.3 - 0.1 * max(0.0, -math.sin(phase))))}
        arms_ = {"RightArm": ((0.12, -1, -swing * 0.6), (0.05, -1, 0.12 - swing * 0.3)),
                 "LeftArm": ((-0.12, -1, swing * 0.6), (-0.05, -1, 0.12 + swing * 0.3))}
        p = pose(**legs, **arms_)
        along = 0.6 * (i / FPS) * speed
        frames.append((p, label, (along - 1.0, 0.0) if label == "walk-across" else (0.0, along - 1.0)))
    return frames


def write(path, body, frames):
    with open(path, "w", newline="") as out:
        writer = csv.writer(out)
        writer.writerow(["time_ms", "player"] + [f"{j}.{c}" for j in JOINTS for c in "xyz"] + ["label"])
        for index, (p, label, walk) in enumerate(frames):
            points = body.joints(p, walk)
            row = [f"{index * 1000.0 / FPS:.1f}", "0"]
            row += [f"{v:.4f}" for j in JOINTS for v in points[j]]
            writer.writerow(row + [label])


# Foot-to-head-joint heights: about 0.88 of the stature (1.15 m to 1.98 m).
BODIES = {"child": 1.0, "teen": 1.35, "adult": 1.55, "tall": 1.75}


def render(path, table, height, distance, speed, flip, seed):
    """One recording: every gesture of the table once, in a shuffled order
    between idle pauses, then walks toward the sensor and across it. The seed
    alone fixes the person's place, the order, the pauses and the noise, so
    the same seed with and without `flip` gives mirror-image twins."""
    rng = random.Random(seed)
    noise = 0.004 if distance < 3 else 0.012
    body = Body(height, distance, rng.uniform(-0.4, 0.4), noise, flip, rng)
    order = sorted(table)
    rng.shuffle(order)
    script = [("", 1.5)]
    for name in order:
        script += [(name, name), ("", rng.uniform(0.8, 1.6))]
    script += [("walk-toward", "Walk"), ("", 1.0), ("walk-across", "Walk"), ("", 1.0)]
    write(path, body, timeline(script, table, speed, rng))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("output", help="folder for the recordings")
    parser.add_argument("--seed", type=int, default=7)
    args = parser.parse_args()
    table = gestures()
    count = 0
    for body_name, height in BODIES.items():
        for distance in (2.0, 4.0):
            for speed in (0.8, 1.25):
                flip = count % 2 == 1
                tag = f"{body_name}-{distance:.0f}m-speed{speed}{'-mirrored' if flip else ''}"
                render(f"{args.output}/synth-{tag}.csv", table, height, distance, speed, flip, args.seed * 1000 + count)
                count += 1
    print(f"wrote {count} recordings to {args.output}")


if __name__ == "__main__":
    main()
