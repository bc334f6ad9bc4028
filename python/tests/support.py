"""Shared by the binding's tests: the package on sys.path, the library of
the build under test ($PELMORA_LIBRARY), and a small configuration."""

import os
import sys

PYTHON_DIR = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SOURCE_DIR = os.environ.get("PELMORA_SOURCE_DIR", os.path.dirname(PYTHON_DIR))
sys.path.insert(0, PYTHON_DIR)

import pelmora  # noqa: E402

LIBRARY = pelmora.Library()

JOINTS = ["Head", "LeftHand", "RightHand"]

# Hands up: the right hand over the head, then both hands over it; the
# second segment restarts the gesture once it has waited 500 ms.
CONFIG = """<AppConfig>
  <Gesture name="HandsUp">
    <Segment><Qualification QualificationEnum="Greate" value1="@P_RightHand.y" value2="@P_Head.y"/></Segment>
    <Segment>
      <Qualification QualificationEnum="Less" value1="@SegmentTime" value2="500" IsResetOnFailed="1"/>
      <Qualification QualificationEnum="Greate" value1="@P_LeftHand.y" value2="@P_Head.y"/>
    </Segment>
  </Gesture>
  <Gesture name="Never"><Segment>
    <Qualification QualificationEnum="Less" value1="@P_Head.y" value2="-100.0"/>
  </Segment></Gesture>
</AppConfig>"""

DOWN = ((0.0, 1.6, 2.5), (-0.3, 1.0, 2.4), (0.3, 1.0, 2.4))
RIGHT_UP = ((0.0, 1.6, 2.5), (-0.3, 1.0, 2.4), (0.3, 2.0, 2.4))
BOTH_UP = ((0.0, 1.6, 2.5), (-0.3, 2.0, 2.4), (0.3, 2.0, 2.4))


def session(**options):
    """A Session on the library under test with the small configuration
    compiled, player 0 tracked and every gesture enabled."""
    options.setdefault("clock", pelmora.ManualClock(1000))
    s = pelmora.Session(JOINTS, library=LIBRARY, **options).open()
    s.load_text(CONFIG).start()
    s.track(0)
    s.enable(0)
    return s
