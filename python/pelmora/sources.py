"""Skeleton sources: one frame of a tracker's joints turned into a frame of
the library's, by the table in sources.json that `pelmora import` embeds
too (names, weights, units, axes, origin and the words a mirrored view
swaps are all there).

    frame = pelmora.sources.mediapipe_pose(results.pose_world_landmarks)
    session = pelmora.Session(pelmora.sources.joints("mediapipe-pose"))
    session.update(0, frame)

A frame is a sequence of points in the source's joint order: lists or
tuples (x, y, z[, ...]), rows of a numpy array, or objects with .x, .y and
.z (the estimator's landmarks; a landmark list's .landmark is taken). Nothing
here imports the estimator or numpy. A frame the library must not see
raises SourceFrameError (a ValueError) naming the source and the fault.

Thread-safety: the table is read once at import and never changed, so the
functions may be called from any thread."""

import ctypes
import json
import math
import os

_TABLE_PATH = os.path.join(os.path.dirname(os.path.abspath(__file__)), "sources.json")


class SourceFrameError(ValueError):
    """A frame of a skeleton source that does not make a library frame."""


def _float32(value):
    return ctypes.c_float(value).value


class Source:
    """One entry of the table: `joints` are the source's joint names in its
    order, `library_joints` the library joints a converted frame holds."""

    def __init__(self, entry):
        self.name = entry["name"]
        self.title = entry["title"]
        self.joints = list(entry["joints"])
        self._scale = entry["metres_per_unit"]
        self._axes = entry["axes"]
        self._offset = entry["offset_m"]
        index = {joint: k for k, joint in enumerate(self.joints)}
        left, right = entry["mirror_names"]
        swapped = [j.replace(left, "\0").replace(right, left).replace("\0", right) for j in self.joints]
        self._mirror_twin = [index.get(j, k) for k, j in enumerate(swapped)]
        self.library_joints = []
        self.direct = {}  # source joint: the library joint it becomes unchanged
        self._slots = []
        for library, source in entry["library"]:
            weights = {source: 1.0} if isinstance(source, str) else source
            total = sum(weights.values())
            self.library_joints.append(library)
            self._slots.append([(index[joint], weight / total) for joint, weight in weights.items()])
            if isinstance(source, str):
                self.direct[source] = library

    def frame(self, points, mirrored=False):
        """The library frame, [(x, y, z), ...] in `library_joints` order, of
        one frame of this source. `mirrored`: the image was flipped before
        tracking (a selfie view), so left and right are swapped back and x
        negated."""
        source = self._points(points)
        return [self._slot(slot, terms, source, mirrored) for slot, terms in enumerate(self._slots)]

    def source_point(self, point):
        """Where the source puts a point the library sees at `point`: the
        inverse of the units, axes and offset."""
        return tuple((point[a] - self._offset[a]) * self._axes[a] / self._scale for a in range(3))

    def _fail(self, what):
        raise SourceFrameError("%s: %s" % (self.name, what))

    def _points(self, points):
        points = getattr(points, "landmark", points)
        try:
            points = list(points)
        except TypeError:
            self._fail("a frame is a sequence of joints, got %s" % type(points).__name__)
        if len(points) != len(self.joints):
            self._fail("expected %d joints, found %d" % (len(self.joints), len(points)))
        coordinates = [self._point(k, point) for k, point in enumerate(points)]
        if not any(any(point) for point in coordinates):
            self._fail("every joint is at 0: an untracked body")
        return coordinates

    def _point(self, k, point):
        try:
            xyz = (point.x, point.y, point.z) if hasattr(point, "x") else tuple(point[:3])
            xyz = tuple(float(v) for v in xyz)
        except (TypeError, ValueError, IndexError):
            xyz = ()
        if len(xyz) != 3:
            self._fail("joint %s is not (x, y, z)" % self.joints[k])
        if not all(math.isfinite(v) for v in xyz):
            self._fail("joint %s is not finite" % self.joints[k])
        return xyz

    def _slot(self, slot, terms, source, mirrored):
        total = [0.0, 0.0, 0.0]
        for joint, weight in terms:
            point = source[self._mirror_twin[joint] if mirrored else joint]
            for axis in range(3):
                value = -point[axis] if mirrored and axis == 0 else point[axis]
                total[axis] += weight * value
        x, y, z = (_float32(self._axes[a] * self._scale * total[a] + self._offset[a]) for a in range(3))
        name = self.library_joints[slot]
        if not all(math.isfinite(v) for v in (x, y, z)):
            self._fail("%s is beyond the range of a 32-bit float" % name)
        if not z > 0.0:
            self._fail("%s is at depth %.3f m, not in front of the camera" % (name, z))
        return (x, y, z)


def _read_table():
    with open(_TABLE_PATH, encoding="utf-8") as table:
        return {entry["name"]: Source(entry) for entry in json.load(table)["sources"]}


SOURCES = _read_table()


def source(name):
    """The Source of that name: kinect-v1, mediapipe-pose, azure-kinect or kinect-v2."""
    try:
        return SOURCES[name]
    except KeyError:
        raise ValueError("no skeleton source %r; the sources are %s" % (name, ", ".join(SOURCES))) from None


def joints(name):
    """The library joints, in slot order, that the source's frames give:
    the `joints` of a Session fed by it."""
    return list(source(name).library_joints)


def mediapipe_pose(landmarks, mirrored=False):
    """33 world landmarks of the webcam pose estimator (metres, origin at
    the hips, y down): the hips go 2.5 m in front of the camera, y up."""
    return SOURCES["mediapipe-pose"].frame(landmarks, mirrored)


def azure_kinect(joints, mirrored=False):
    """32 joints of depth-camera body tracking, in millimetres, y down."""
    return SOURCES["azure-kinect"].frame(joints, mirrored)


def kinect_v2(joints, mirrored=False):
    """25 joints of Kinect v2 body tracking, in metres."""
    return SOURCES["kinect-v2"].frame(joints, mirrored)


def kinect_v1(joints, mirrored=False):
    """20 joints of a Kinect v1 skeleton, in metres."""
    return SOURCES["kinect-v1"].frame(joints, mirrored)
