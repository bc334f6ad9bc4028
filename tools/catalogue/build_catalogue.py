#!/usr/bin/env python3
"""Writes the gesture catalogue (examples/gestures/catalogue.xml).

The catalogue is plain configuration; this script only keeps its left and
right halves mirror images of each other and its measures consistent. Edit
here, run it, then run evaluate.py to see what a change does.
"""
import os
import sys

values = []
funcs = []


def val(t, name):
    values.append((t, name))


def fn(name, ret, *ops):
    funcs.append((name, ret, ops))


def follow(target, source, step, rate):
    """target moves toward source by rate of the gap each frame; step is scratch."""
    fn('SUB', '@'+step, '@'+source, '@'+target); fn('MUL', '@'+step, '@'+step, rate); fn('ADD', '@'+target, '@'+target, '@'+step)


# ---- Body frame
val('vector3','ShoulderLine'); val('float','ShoulderWidth'); val('vector3','RightDir')
val('vector3','TorsoLine'); val('float','TorsoLength'); val('vector3','UpDir')
val('vector3','PlaneNormal'); val('vector3','FeetLine'); val('float','Facing')
val('float','FacingSteady'); val('float','FacingStep')
val('vector3','ForwardDir')
fn('SUB','@ShoulderLine','@P_RightShoulder','@P_LeftShoulder')
fn('LENGTH','@ShoulderWidth','@ShoulderLine')
fn('NORMALIZE','@RightDir','@ShoulderLine')
fn('SUB','@TorsoLine','@P_Neck','@P_Waist')
fn('LENGTH','@TorsoLength','@TorsoLine')
fn('NORMALIZE','@UpDir','@TorsoLine')
fn('CROSS','@PlaneNormal','@UpDir','@RightDir')
fn('MUL','@PlaneNormal','@PlaneNormal','1,-1,1')
fn('SUB','@FeetLine','@P_LeftFoot','@P_LeftAnkle')
fn('ADD','@FeetLine','@FeetLine','@P_RightFoot')
fn('SUB','@FeetLine','@FeetLine','@P_RightAnkle')
fn('DOT','@Facing','@PlaneNormal','@FeetLine')
# The feet are tracked loosely: a frame's facing flips now and then (often for
# long stretches when the person squats or turns the toes), and every reach
# forward flips with it. FacingSteady follows the facing at 5% a frame and
# starts at the first frame's, so only a lasting turn changes the forward
# side; a frame whose feet clearly point one way weighs more than one whose
# feet lie nearly along the shoulders.
follow('FacingSteady', 'Facing', 'FacingStep', '0.05')
facing_funcs = list(funcs); funcs.clear()
fn('MUL','@FacingSteady','@Facing','1.0')
facing_start_funcs = list(funcs); funcs.clear()
fn('MUL','@ForwardDir','@PlaneNormal','@FacingSteady')
fn('NORMALIZE','@ForwardDir','@ForwardDir')
val('vector3','AheadHighDir')
fn('ADD','@AheadHighDir','@ForwardDir','@UpDir'); fn('NORMALIZE','@AheadHighDir','@AheadHighDir')

def sidefeat(s, sign):
    o = 'Left' if s == 'Right' else 'Right'
    hfs = s+'HandFromShoulder'; val('vector3', hfs)
    fn('SUB', '@'+hfs, '@P_'+s+'Hand', '@P_'+s+'Shoulder')
    def proj(name, vec, direction, scale, mirror=False):
        val('float', name)
        fn('DOT', '@'+name, '@'+vec, '@'+direction)
        fn('DIV', '@'+name, '@'+name, '@'+scale)
        if mirror and sign < 0: fn('MUL', '@'+name, '@'+name, '-1.0')
    # arm straightness: shoulder-hand distance over the arm's two segments
    st = s+'ArmStraight'; seg = s+'ArmLength'
    val('float', st); val('float', seg)
    fn('DISTANCE', '@'+seg, '@P_'+s+'Shoulder', '@P_'+s+'Elbow')
    fn('DISTANCE', '@'+st, '@P_'+s+'Elbow', '@P_'+s+'Hand')
    fn('ADD', '@'+seg, '@'+seg, '@'+st)
    fn('DISTANCE', '@'+st, '@P_'+s+'Shoulder', '@P_'+s+'Hand')
    fn('DIV', '@'+st, '@'+st, '@'+seg)
    # how far the arm falls short of straight, 0 when straight: a punch's
    # limit lies within a few hundredths of straight, where the shortfall
    # reads it at its own scale
    ab = s+'ArmBend'; val('float', ab)
    fn('MUL', '@'+ab, '@'+st, '-1.0'); fn('ADD', '@'+ab, '@'+ab, '1.0')
    # where the hand is, in arm lengths from its shoulder
    proj(s+'HandReach', hfs, 'ForwardDir', seg)
    # how fast the hand moves, in arm lengths per second
    hs = s+'HandSpeed'; val('float', hs)
    fn('LENGTH', '@'+hs, '@V_'+s+'Hand'); fn('DIV', '@'+hs, '@'+hs, '@'+seg); fn('MUL', '@'+hs, '@'+hs, '1000.0')
    # how fast the hand moves forward, in arm lengths per second
    hp = s+'HandPush'; val('float', hp)
    fn('DOT', '@'+hp, '@V_'+s+'Hand', '@ForwardDir'); fn('DIV', '@'+hp, '@'+hp, '@'+seg); fn('MUL', '@'+hp, '@'+hp, '1000.0')
    # how fast the hand moves up, in arm lengths per second: a punch drives
    # level or rising, a throw or a beat comes down from high
    # how fast the shoulder moves forward, in arm lengths per second: a
    # throw turns the body and drives the shoulder, a knock moves the forearm
    sp = s+'ShoulderPush'; val('float', sp)
    fn('DOT', '@'+sp, '@V_'+s+'Shoulder', '@ForwardDir'); fn('DIV', '@'+sp, '@'+sp, '@'+seg); fn('MUL', '@'+sp, '@'+sp, '1000.0')
    hl = s+'HandLift'; val('float', hl)
    fn('DOT', '@'+hl, '@V_'+s+'Hand', '@UpDir'); fn('DIV', '@'+hl, '@'+hl, '@'+seg); fn('MUL', '@'+hl, '@'+hl, '1000.0')
    proj(s+'HandOut', hfs, 'RightDir', seg, True)
    # how far out the hand is along the side turned 30 degrees forward, in
    # arm lengths: people push out to the side straight or half forward
    od = s+'OutwardDir'; val('vector3', od)
    fn('MUL', '@'+od, '@ForwardDir', '0.577'); fn('ADD' if sign > 0 else 'SUB', '@'+od, '@'+od, '@RightDir'); fn('NORMALIZE', '@'+od, '@'+od)
    proj(s+'HandOutward', hfs, od, seg)
    # how far the hand is ahead and up together, along the direction halfway
    # between forward and up, in arm lengths: a hand swept out at the side
    # stays low or near the shoulder line, one drawing in the air or swiping
    # goes out in front at shoulder height
    proj(s+'HandAheadHigh', hfs, 'AheadHighDir', seg)
    proj(s+'HandRise', hfs, 'UpDir', seg)
    fa = s+'Forearm'; val('vector3', fa); fn('SUB', '@'+fa, '@P_'+s+'Hand', '@P_'+s+'Elbow')
    proj(s+'ForearmRise', fa, 'UpDir', seg)
    # how far the elbow is above its shoulder, in arm lengths: hands put on
    # the head lift the elbows out to shoulder height or above, goggles held
    # before the eyes keep them low in front of the chest
    ua = s+'UpperArm'; val('vector3', ua); fn('SUB', '@'+ua, '@P_'+s+'Elbow', '@P_'+s+'Shoulder')
    proj(s+'ElbowRise', ua, 'UpDir', seg)
    proj(s+'ForearmOut', fa, 'RightDir', seg, True)
    # how far the hand is ahead of its elbow: a throw is cocked with the
    # forearm raised and the hand back over or behind the elbow, however
    # high the whole arm is held
    proj(s+'ForearmReach', fa, 'ForwardDir', seg)
    hh = s+'HandFromHead'; val('vector3', hh); fn('SUB', '@'+hh, '@P_'+s+'Hand', '@P_Head')
    proj(s+'HandAboveHead', hh, 'UpDir', 'TorsoLength')
    # how high the hand rests on the head, its height above the head joint
    # plus twice the elbow's rise: some people's hands on the head are
    # tracked at or just under the head joint, and then only the raised
    # elbows tell them from goggles held before the eyes
    oh = s+'HandOnHead'; val('float', oh)
    fn('MUL', '@'+oh, '@'+s+'ElbowRise', '2.0'); fn('ADD', '@'+oh, '@'+oh, '@'+s+'HandAboveHead')
    # how far the hand is in front of the face, in shoulder widths: goggles
    # are held before the eyes, hands put on the head rest over or behind it
    proj(s+'HandBeforeHead', hh, 'ForwardDir', 'ShoulderWidth')
    nh = s+'HandNearHead'; val('float', nh); fn('DISTANCE', '@'+nh, '@P_'+s+'Hand', '@P_Head'); fn('DIV', '@'+nh, '@'+nh, '@ShoulderWidth')
    hn = s+'HandFromNeck'; val('vector3', hn); fn('SUB', '@'+hn, '@P_'+s+'Hand', '@P_Neck')
    proj(s+'HandAcross', hn, 'RightDir', 'ShoulderWidth')
    # legs
    ffh = s+'FootFromHip'; val('vector3', ffh); fn('SUB', '@'+ffh, '@P_'+s+'Foot', '@P_'+s+'Hip')
    proj(s+'FootForward', ffh, 'ForwardDir', 'TorsoLength')
    proj(s+'FootOut', ffh, 'RightDir', 'TorsoLength', True)
    proj(s+'FootUp', ffh, 'UpDir', 'TorsoLength')
    # how high the foot is above the other foot, in torso lengths: the hips
    # stand at different heights above the feet (a fighter's deep crouch
    # brings the feet half a torso nearer them), where the standing
    # foot marks the floor in every stance
    fo = s+'FootFromOther'; val('vector3', fo); fn('SUB', '@'+fo, '@P_'+s+'Foot', '@P_'+o+'Foot')
    proj(s+'FootAboveOther', fo, 'UpDir', 'TorsoLength')
    # how much further out than forward the foot is
    fs = s+'FootSideways'; val('float', fs); fn('SUB', '@'+fs, '@'+s+'FootOut', '@'+s+'FootForward')
    # how far the foot is to either side of its hip: a side kick by a fighter
    # turned side-on can be tracked with the foot across the body
    fa = s+'FootAside'; val('float', fa); fn('ABS', '@'+fa, '@'+s+'FootOut')
    ls = s+'LegStretch'; lseg = s+'LegSegment'
    val('float', ls); val('float', lseg)
    fn('DISTANCE', '@'+lseg, '@P_'+s+'Hip', '@P_'+s+'Knee')
    fn('DISTANCE', '@'+ls, '@P_'+s+'Knee', '@P_'+s+'Ankle')
    fn('ADD', '@'+lseg, '@'+lseg, '@'+ls)
    fn('DISTANCE', '@'+ls, '@P_'+s+'Hip', '@P_'+s+'Ankle')
    fn('DIV', '@'+ls, '@'+ls, '@'+lseg)

sidefeat('Right', 1)
sidefeat('Left', -1)
# whole body
val('float','LegStretch'); fn('ADD','@LegStretch','@RightLegStretch','@LeftLegStretch'); fn('MUL','@LegStretch','@LegStretch','0.5')
def operand(x):
    """a value's name as a function reads it, or a number as it is"""
    return x if x.lstrip('-')[:1].isdigit() else '@'+x
def extreme(target, a, b, gap, toward):
    """target = (a + b -/+ |a - b|) / 2, the lesser of a and b when toward is
    'SUB', the greater when 'ADD'; b may be a number; gap is scratch."""
    fn('SUB', '@'+gap, '@'+a, operand(b)); fn('ABS', '@'+gap, '@'+gap)
    fn('ADD', '@'+target, '@'+a, operand(b)); fn(toward, '@'+target, '@'+target, '@'+gap); fn('MUL', '@'+target, '@'+target, '0.5')
def lesser(target, a, b, gap): extreme(target, a, b, gap, 'SUB')
def greater(target, a, b, gap): extreme(target, a, b, gap, 'ADD')
def sinking_peak(target, source, sink, gap):
    """target = the greater of source and target lowered by sink; gap is scratch."""
    fn('SUB', '@'+target, '@'+target, sink)
    greater(target, source, target, gap)
val('float','LowerHandRise'); val('float','HandsRiseGap')
lesser('LowerHandRise', 'RightHandRise', 'LeftHandRise', 'HandsRiseGap')
# CrouchStretch is the legs' stretch lowered by up to 0.2 as the lower hand
# rises toward shoulder height: people squatting hold both arms forward for
# balance and bend the knees only as far as sitting down (stretch about
# 0.85), where a duck bends them further with the hands low. Only a hand
# raised above two thirds of an arm below the shoulder counts, 0.2 times
# (1 + 1.5 times its rise, capped at the shoulder): a person sitting down
# lets the hands hang by the thighs, lower than that.
val('float','CrouchStretch'); val('float','CrouchHands')
fn('ABS','@CrouchStretch','@LowerHandRise'); fn('SUB','@CrouchStretch','@LowerHandRise','@CrouchStretch'); fn('MUL','@CrouchStretch','@CrouchStretch','0.75')
fn('ADD','@CrouchStretch','@CrouchStretch','1.0'); fn('ABS','@CrouchHands','@CrouchStretch'); fn('ADD','@CrouchStretch','@CrouchStretch','@CrouchHands')
fn('MUL','@CrouchStretch','@CrouchStretch','-0.1'); fn('ADD','@CrouchStretch','@CrouchStretch','@LegStretch')
val('vector3','ThighLine'); val('float','TorsoThigh')
fn('SUB','@ThighLine','@P_RightKnee','@P_RightHip'); fn('ADD','@ThighLine','@ThighLine','@P_LeftKnee'); fn('SUB','@ThighLine','@ThighLine','@P_LeftHip')
fn('NORMALIZE','@ThighLine','@ThighLine'); fn('DOT','@TorsoThigh','@UpDir','@ThighLine')
HEIGHTS = (('Waist', '@P_Waist'), ('RightFoot', '@P_RightFoot'), ('LeftFoot', '@P_LeftFoot'))
# Rises are measured along UpReference, a slow average of the torso direction
# (standing, the vertical: a lean or a bounce of the torso does not tilt it),
# from an anchor that follows each joint slowly, so a jump stands out.
val('vector3', 'UpReference'); val('vector3', 'Drift')
# ShoulderTurn is how far the shoulder line has turned from a slow average of
# it (followed at 3% a frame), 0 square, 1 at a right angle: a side kick
# pivots the body round on the standing foot, a front kick keeps it square.
val('vector3', 'ShoulderLineSteady'); val('float', 'ShoulderTurn')
for n, joint in HEIGHTS:
    val('vector3', n+'Anchor'); val('float', n+'Rise')
frame_funcs = list(funcs); funcs.clear()
fn('MUL', '@UpReference', '@UpDir', '1.0')
# the first frame's torso is upright by definition: it is the vertical
fn('DOT', '@TorsoUprightLately', '@UpReference', '@UpDir')
fn('MUL', '@ShoulderLineSteady', '@RightDir', '1.0')
for n, joint in HEIGHTS:
    fn('MUL', '@'+n+'Anchor', joint, '1.0')
for s in ('Right', 'Left'):
    fn('MUL', '@'+s+'HandRiseLately', '@'+s+'HandRise', '1.0')
    fn('MUL', '@'+s+'HandTrail', '@P_'+s+'Hand', '1.0')
fn('MUL', '@RightHandRiseTrail', '@RightHandRise', '1.0')
fn('MUL', '@RightHandRiseOfLate', '@RightHandRise', '1.0')
start_funcs = list(funcs); funcs.clear()
follow('UpReference', 'UpDir', 'Drift', '0.01'); fn('NORMALIZE', '@UpReference', '@UpReference')
follow('ShoulderLineSteady', 'RightDir', 'Drift', '0.03'); fn('NORMALIZE', '@ShoulderLineSteady', '@ShoulderLineSteady')
fn('DOT', '@ShoulderTurn', '@RightDir', '@ShoulderLineSteady'); fn('MUL', '@ShoulderTurn', '@ShoulderTurn', '-1.0'); fn('ADD', '@ShoulderTurn', '@ShoulderTurn', '1.0')
for n, joint in HEIGHTS:
    fn('SUB', '@Drift', joint, '@'+n+'Anchor')
    fn('DOT', '@'+n+'Rise', '@Drift', '@UpReference')
    fn('DIV', '@'+n+'Rise', '@'+n+'Rise', '@TorsoLength')
    fn('MUL', '@Drift', '@Drift', '0.03'); fn('ADD', '@'+n+'Anchor', '@'+n+'Anchor', '@Drift')
# HandsFromHead follows the hands' mean distance from the head at 10% a frame,
# so a hand passing the head does not count as resting near it.
val('float', 'HandsNearHead'); val('float', 'HandsFromHead')
fn('ADD', '@HandsNearHead', '@RightHandNearHead', '@LeftHandNearHead'); fn('MUL', '@HandsNearHead', '@HandsNearHead', '0.5')
follow('HandsFromHead', 'HandsNearHead', 'HandsNearHead', '0.1')
# FootAsideSteady follows how far the foot is to either side of its hip at
# 25% a frame, so a frame or two of a foot tracked astray is not taken for
# a side kick's.
for s in ('Right', 'Left'):
    val('float', s+'FootAsideSteady'); val('float', s+'FootAsideStep')
    follow(s+'FootAsideSteady', s+'FootAside', s+'FootAsideStep', '0.25')
# how far the right hand is to the left of the left hand, in shoulder widths
val('float', 'HandsCrossed'); fn('SUB', '@HandsCrossed', '@LeftHandAcross', '@RightHandAcross')
val('float', 'HandsGap'); fn('DISTANCE', '@HandsGap', '@P_RightHand', '@P_LeftHand'); fn('DIV', '@HandsGap', '@HandsGap', '@ShoulderWidth')
# RightHandDownOrJoined is the right hand's rise or, when lower, the hands'
# gap less 0.55 shoulder widths: a change of weapon ends with the right hand
# back below the shoulder, or with it joined to the left hand at the
# shoulder, aiming the new weapon.
val('float', 'HandsGapPastJoined'); val('float', 'RightHandDownOrJoined'); val('float', 'DownOrJoinedGap')
fn('SUB', '@HandsGapPastJoined', '@HandsGap', '0.55')
lesser('RightHandDownOrJoined', 'RightHandRise', 'HandsGapPastJoined', 'DownOrJoinedGap')
# HandsApart and ArmsStraightness follow the hands' gap and the arms' mean
# straightness at 10% a frame: beating drums keeps the hands apart and the
# elbows bent on the whole, though a stroke may bring the hands near or
# straighten an arm for a frame or two.
val('float', 'HandsApart'); val('float', 'HandsApartStep')
follow('HandsApart', 'HandsGap', 'HandsApartStep', '0.1')
val('float', 'ArmsStraight'); val('float', 'ArmsStraightness')
fn('ADD', '@ArmsStraight', '@RightArmStraight', '@LeftArmStraight'); fn('MUL', '@ArmsStraight', '@ArmsStraight', '0.5')
follow('ArmsStraightness', 'ArmsStraight', 'ArmsStraight', '0.1')
# HandsSwinging follows, at 10% a frame, how far both hands are from where
# they were lately (a trail that follows each hand at 10% a frame), in arm
# lengths: beating keeps the hands swinging to and fro, up and down or in and
# out as people do it, where arms raised or hands held at the head soon come
# to rest. A distance rather than a speed, as a Kinect v1 shakes hands held
# overhead by a few centimetres a frame, which a speed makes much of.
for s in ('Right', 'Left'):
    val('vector3', s+'HandTrail'); val('vector3', s+'HandTrailStep'); val('float', s+'HandSwing')
    follow(s+'HandTrail', 'P_'+s+'Hand', s+'HandTrailStep', '0.1')
    fn('DISTANCE', '@'+s+'HandSwing', '@P_'+s+'Hand', '@'+s+'HandTrail'); fn('DIV', '@'+s+'HandSwing', '@'+s+'HandSwing', '@'+s+'ArmLength')
val('float', 'HandsSwinging'); val('float', 'HandsSwing')
fn('ADD', '@HandsSwing', '@RightHandSwing', '@LeftHandSwing')
follow('HandsSwinging', 'HandsSwing', 'HandsSwing', '0.1')
# Some people beat in front of the chest rather than at the head: a second
# or so of strokes of both hands together, arms straight or bent, the hands
# never much above the shoulders. What tells them is the order of the
# strokes: down, up and down again in quick succession, with the hands in
# front of the body, neither flung wide (a wind-up swings them out to the
# sides) nor joined (a shot aims with them together), and not over the head
# (arms raised high shake and sink). A hand's stroke is its vertical speed
# against its shoulder, followed at 40% a frame, in arm lengths per second:
# a squat or a duck carries the hands held forward up and down with the
# body. A stroke of both hands is the slower of the two, counted only while
# the hands have room to beat: the lower hand above 0.75 arm lengths below
# its shoulder, the higher below 0.35 above its own, the hands 0.3 to 2.3
# shoulder widths apart (StrokeRoom is 20 times the least margin, at most
# 3, so a fast drop does not stand for a slow stroke). Each link of the chain
# holds the slower of its stroke and the link before, sinking by 0.07 a
# frame: it is only as fast as its slowest stroke and comes apart when the
# strokes pause. Raising the hands and dropping them make one or two
# strokes, not three. StrokesLately holds the chains' highest for a second
# or two, sinking by 0.007 a frame, and ChestStrokes is 20 times how far it
# is past 0.65 arm lengths per second: past nothing, it stands in for the
# hands being up, apart and bent, and BeatHold, the time the beat is held
# at each step, falls from 500 ms to none, as a beat in front of the chest
# may last a second in all. ChestBeating stays above nothing while those
# strokes are recent and the hands still have room, so such a beat ends
# when the hands come down from it, not as soon as they are below the
# shoulders.
val('vector3', 'HandOnBodyVelocity')
for s in ('Right', 'Left'):
    val('float', s+'HandLiftSteady'); val('float', s+'HandLiftStep')
    fn('SUB', '@HandOnBodyVelocity', '@V_'+s+'Hand', '@V_'+s+'Shoulder'); fn('DOT', '@'+s+'HandLiftStep', '@HandOnBodyVelocity', '@UpDir')
    fn('DIV', '@'+s+'HandLiftStep', '@'+s+'HandLiftStep', '@'+s+'ArmLength'); fn('MUL', '@'+s+'HandLiftStep', '@'+s+'HandLiftStep', '1000.0')
    follow(s+'HandLiftSteady', s+'HandLiftStep', s+'HandLiftStep', '0.4')
val('float', 'HandsStrokeUp'); val('float', 'HandsStrokeDown'); val('float', 'StrokeGap')
lesser('HandsStrokeUp', 'RightHandLiftSteady', 'LeftHandLiftSteady', 'StrokeGap')
greater('HandsStrokeDown', 'RightHandLiftSteady', 'LeftHandLiftSteady', 'StrokeGap'); fn('MUL', '@HandsStrokeDown', '@HandsStrokeDown', '-1.0')
val('float', 'StrokeRoomLeft')
def stroke_room(room, floor):
    """room is 20 times the hands' least margin to beat in, at most 3; the
    lower hand's margin is above floor arm lengths below its shoulder"""
    val('float', room)
    fn('ADD', '@'+room, '@LowerHandRise', floor)
    fn('ADD', '@StrokeRoomLeft', '@LowerHandRise', '@HandsRiseGap'); fn('SUB', '@StrokeRoomLeft', '0.35', '@StrokeRoomLeft'); lesser(room, room, 'StrokeRoomLeft', 'StrokeGap')
    fn('SUB', '@StrokeRoomLeft', '2.3', '@HandsGap'); lesser(room, room, 'StrokeRoomLeft', 'StrokeGap')
    fn('SUB', '@StrokeRoomLeft', '@HandsGap', '0.3'); lesser(room, room, 'StrokeRoomLeft', 'StrokeGap')
    fn('MUL', '@'+room, '@'+room, '20.0'); lesser(room, room, '3.0', 'StrokeGap')
stroke_room('StrokeRoom', '0.75')
val('float', 'StrokeLink')
def stroke_chain(links, room='StrokeRoom'):
    """links are (name, stroke) pairs in the order the strokes come"""
    for k, (link, stroke) in enumerate(links):
        val('float', link)
        lesser('StrokeLink', stroke, room, 'StrokeGap')
        if k: lesser('StrokeLink', 'StrokeLink', links[k - 1][0], 'StrokeGap')
        sinking_peak(link, 'StrokeLink', '0.07', 'StrokeGap')
stroke_chain((('StrokesDown', 'HandsStrokeDown'), ('StrokesDownUp', 'HandsStrokeUp'), ('StrokesDownUpDown', 'HandsStrokeDown')))
# Some beat one hand after the other: one hand strokes up while the other
# strokes down, then the other way round, then again (a stroke of the pair
# is the slower of the two hands' opposite speeds). Boxing makes such chains
# too, but slower, as its fists are driven forward rather than up and down,
# so this chain counts for 0.2 arm lengths per second less than one of both
# hands together. A hand stroking down alone sinks lower than both hands
# beating together, so the lower hand has room down to 0.85 arm lengths
# below its shoulder (0.9 lets jogging arms through).
stroke_room('TurnRoom', '0.85')
val('float', 'RightUpLeftDown'); val('float', 'LeftUpRightDown'); val('float', 'HandLiftFalling')
fn('MUL', '@HandLiftFalling', '@LeftHandLiftSteady', '-1.0'); lesser('RightUpLeftDown', 'RightHandLiftSteady', 'HandLiftFalling', 'StrokeGap')
fn('MUL', '@HandLiftFalling', '@RightHandLiftSteady', '-1.0'); lesser('LeftUpRightDown', 'LeftHandLiftSteady', 'HandLiftFalling', 'StrokeGap')
turns = ('RightUpLeftDown', 'LeftUpRightDown', 'RightUpLeftDown', 'LeftUpRightDown')
stroke_chain(tuple(('TurnsFromRight%d' % k, turns[k]) for k in range(3)), 'TurnRoom')
stroke_chain(tuple(('TurnsFromLeft%d' % k, turns[k + 1]) for k in range(3)), 'TurnRoom')
val('float', 'StrokesSeen'); greater('StrokesSeen', 'TurnsFromRight2', 'TurnsFromLeft2', 'StrokeGap'); fn('SUB', '@StrokesSeen', '@StrokesSeen', '0.2')
greater('StrokesSeen', 'StrokesSeen', 'StrokesDownUpDown', 'StrokeGap')
val('float', 'StrokesLately'); sinking_peak('StrokesLately', 'StrokesSeen', '0.007', 'StrokeGap')
val('float', 'ChestStrokes'); fn('SUB', '@ChestStrokes', '@StrokesLately', '0.65'); fn('MUL', '@ChestStrokes', '@ChestStrokes', '20.0')
val('float', 'BeatHeight'); greater('BeatHeight', 'LowerHandRise', 'ChestStrokes', 'StrokeGap')
val('float', 'BeatApart'); greater('BeatApart', 'HandsApart', 'ChestStrokes', 'StrokeGap')
val('float', 'BeatStraightness'); fn('MUL', '@BeatStraightness', '@ChestStrokes', '-1.0')
lesser('BeatStraightness', 'ArmsStraightness', 'BeatStraightness', 'StrokeGap')
val('float', 'BeatHold'); fn('MUL', '@BeatHold', '@ChestStrokes', '-500.0'); fn('ADD', '@BeatHold', '@BeatHold', '500.0')
greater('BeatHold', 'BeatHold', '0.0', 'StrokeGap'); lesser('BeatHold', 'BeatHold', '500.0', 'StrokeGap')
val('float', 'ChestBeating'); lesser('ChestBeating', 'ChestStrokes', 'StrokeRoom', 'StrokeGap')
# BeatSettled falls below nothing once a beat is over: either the higher
# hand has come down under the height where a beat ends (0.03 arm lengths
# below its shoulder), or the hands, still up, have stopped swinging (their
# slowly followed swing under 0.2 arm lengths). Some people end a beat by
# holding the hands up still for a second before they lower them, which the
# hands' coming down alone reads too late.
val('float', 'HandsOverBeatEnd'); val('float', 'HandsSwingOverStill'); val('float', 'BeatSettled'); val('float', 'BeatSettledGap')
fn('ADD', '@HandsOverBeatEnd', '@LowerHandRise', '@HandsRiseGap'); fn('ADD', '@HandsOverBeatEnd', '@HandsOverBeatEnd', '0.03')
greater('HandsOverBeatEnd', 'HandsOverBeatEnd', 'ChestBeating', 'BeatSettledGap')
fn('SUB', '@HandsSwingOverStill', '@HandsSwinging', '0.2')
lesser('BeatSettled', 'HandsOverBeatEnd', 'HandsSwingOverStill', 'BeatSettledGap')
# BeatRest is above nothing while the hands rest, ready to beat: both hands
# more than 0.69 arm lengths below their shoulders, or still (HandsSwinging
# under 0.2, as where a beat ends) anywhere up to 0.3 arm lengths above them.
# Some people rest with the forearms raised between beats, so a beat that
# could only start from hanging hands is read once and never again. Armed
# on still hands held higher too, the rule finds no more beats but more
# false ones, left out of the fit.
# The beat is then timed from the hands' moving off again (swinging past
# 0.25), not from their height, which such a rest has already passed.
val('float', 'BeatRest'); val('float', 'HandsStillUnder'); val('float', 'HandsStillBy'); val('float', 'BeatRestGap')
fn('ADD', '@BeatRest', '@LowerHandRise', '@HandsRiseGap'); fn('SUB', '@HandsStillUnder', '0.3', '@BeatRest'); fn('SUB', '@BeatRest', '-0.69', '@BeatRest')
fn('SUB', '@HandsStillBy', '0.2', '@HandsSwinging'); lesser('HandsStillUnder', 'HandsStillUnder', 'HandsStillBy', 'BeatRestGap')
greater('BeatRest', 'BeatRest', 'HandsStillUnder', 'BeatRestGap')
# HandSwingAcross follows, at 10% a frame, how much faster the hand moves
# along the shoulder line than 0.7 times its speed forward-back and up-down
# together, in arm lengths per second: a wave swings the hand side to side,
# where a knock strikes forward and back and a drawn X's strokes come down as
# far as they go across.
for s in ('Right', 'Left'):
    sa = s+'HandSwingAcross'; ex = s+'HandAcrossExcess'; other = s+'HandOtherSpeed'
    val('float', ex); val('float', other); val('float', sa)
    fn('DOT', '@'+ex, '@V_'+s+'Hand', '@RightDir'); fn('DIV', '@'+ex, '@'+ex, '@'+s+'ArmLength'); fn('MUL', '@'+ex, '@'+ex, '1000.0'); fn('ABS', '@'+ex, '@'+ex)
    fn('ABS', '@'+other, '@'+s+'HandPush'); fn('MUL', '@'+other, '@'+other, '0.7'); fn('SUB', '@'+ex, '@'+ex, '@'+other)
    fn('ABS', '@'+other, '@'+s+'HandLift'); fn('MUL', '@'+other, '@'+other, '0.7'); fn('SUB', '@'+ex, '@'+ex, '@'+other)
    follow(sa, ex, other, '0.1')
# HandRiseLately holds a hand's highest rise of about the last second: it
# sinks by 0.02 a frame and jumps back up with the hand. A tennis serve tosses
# with the left hand, a basketball shot lifts both hands, and both are over
# before the right arm comes forward; a throw keeps the left hand down all
# along. A punch leaves from the guard, not from a hand raised overhead,
# and the guard hand has not just tossed a ball up for a serve.
val('float', 'RiseAboveLately')
for s in ('Right', 'Left'):
    val('float', s+'HandRiseLately')
    sinking_peak(s+'HandRiseLately', s+'HandRise', '0.02', 'RiseAboveLately')
# RightHandRiseOfLate holds the right hand's highest rise of the last two
# seconds or so, sinking by 0.01 a frame, half as fast as HandRiseLately:
# drawing a triangle or a circle in the air, a swipe back to the right, a
# throw and a reach over the shoulder sweep the hand out low to the right a
# second or so after it was up near the shoulder or above, where a push to
# the right comes from a hand kept low.
val('float', 'RightHandRiseOfLate')
sinking_peak('RightHandRiseOfLate', 'RightHandRise', '0.01', 'RiseAboveLately')
# RightHandRiseKick is how far the right hand has just risen above a trail
# that follows its rise at 10% a frame, in arm lengths: a shot's recoil jerks
# the hands up from wherever they aim, where hands that settle onto the aim
# from above, or drift there, stay on their trail.
val('float', 'RightHandRiseTrail'); val('float', 'RightHandRiseKick')
follow('RightHandRiseTrail', 'RightHandRise', 'RightHandRiseKick', '0.1')
fn('SUB', '@RightHandRiseKick', '@RightHandRise', '@RightHandRiseTrail')
val('float', 'TorsoUpright'); fn('DOT', '@TorsoUpright', '@UpDir', '@UpReference')
# TorsoUprightLately holds the torso's lowest uprightness of the last few
# seconds: it drops at once with the torso and climbs back by only 0.002 a
# frame, so a bow leaves it low for seconds. Some people sweep an arm out to
# the side as they come up from a bow, as a courtier does, which a push to
# the right, made standing upright, must not be taken for.
val('float', 'TorsoUprightLately'); val('float', 'TorsoUprightGap')
fn('ADD', '@TorsoUprightLately', '@TorsoUprightLately', '0.002')
lesser('TorsoUprightLately', 'TorsoUprightLately', 'TorsoUpright', 'TorsoUprightGap')
# How far the chest faces up: negative when the torso bends forward over the
# hips, positive when it leans back, as in a kick.
val('float', 'TorsoFacingUp'); fn('DOT', '@TorsoFacingUp', '@ForwardDir', '@UpReference')
# How high the lower hand is above the feet, along the vertical, in torso
# lengths: picking something up or bowling a ball takes a hand near the
# floor, which a bow does not.
val('vector3', 'FeetMiddle'); val('vector3', 'HandOverFeet')
val('float', 'RightHandHeight'); val('float', 'LeftHandHeight'); val('float', 'LowerHandHeight'); val('float', 'HandsHeightGap')
fn('ADD', '@FeetMiddle', '@P_RightFoot', '@P_LeftFoot'); fn('MUL', '@FeetMiddle', '@FeetMiddle', '0.5')
for s in ('Right', 'Left'):
    fn('SUB', '@HandOverFeet', '@P_'+s+'Hand', '@FeetMiddle'); fn('DOT', '@'+s+'HandHeight', '@HandOverFeet', '@UpReference')
    fn('DIV', '@'+s+'HandHeight', '@'+s+'HandHeight', '@TorsoLength')
lesser('LowerHandHeight', 'RightHandHeight', 'LeftHandHeight', 'HandsHeightGap')
# FootRiseLately holds the higher foot's highest rise of the last second or
# two, sinking by 0.01 a frame: a fighter's arm flung out for balance in a
# side kick stays out a moment after the foot is down, where a push to the
# right is made standing.
val('float', 'FeetRiseGap'); val('float', 'HigherFootRise'); val('float', 'FootRiseLately')
greater('HigherFootRise', 'RightFootRise', 'LeftFootRise', 'FeetRiseGap')
sinking_peak('FootRiseLately', 'HigherFootRise', '0.01', 'RiseAboveLately')
baseline_funcs = list(funcs); funcs.clear()

OPS = {'>': 'Greate', '<': 'Less', '>=': 'EGreate', '<=': 'ELess'}
gestures = []  # (name, comment, [segments of (v1, op, v2, reset)])
def within(ms): return ('@SegmentTime', '<=', str(ms), True)
def held(ms): return ('@SegmentTime', '>=', str(ms), False)
def q(v, op, t, reset=False): return ('@'+v, op, t, reset)
grounded = [('@RightFootRise', '<', '0.2', False), ('@LeftFootRise', '<', '0.2', False)]
def R(items): return [(a, b, c, True) for (a, b, c, _) in items]
# A move's timeout runs from the moment the move begins, not from rest: a
# segment without a timeout waits for a light first step of the move. Timed
# from rest, the timeout would keep restarting while the person stands still
# and reset a move begun late in its cycle midway.
def begun(v, op, t): return [q(v, op, t)]
def G(name, comment, *segments): gestures.append((name, comment, list(segments)))

for s, o in (('Right', 'Left'), ('Left', 'Right')):
    # Throwing, drawing, catching and serving pass the hand over the head
    # too, but for a moment; a raised hand stays up.
    hand_up = [q(s+'HandAboveHead', '>', '0.15'), q(s+'ArmStraight', '>', '0.85'), q(s+'HandOut', '<', '0.4'), q(o+'HandAboveHead', '<', '-0.5')] + grounded
    G('Raise'+s+'Hand', 'the %s hand goes from below the head to above it and stays there a moment while the %s hand stays down' % (s.lower(), o.lower()),
      [q(s+'HandAboveHead', '<', '-0.3')],
      [within(2000)] + hand_up,
      R(hand_up) + [held(700)])
# Arms raised forward stay about a shoulder width apart, where aiming a
# shot holds the hands together.
# The hands swing up well clear of the head, but once up some people draw
# them in over it as they hold them: held, a hand may come to 0.85 shoulder
# widths of the head, still clear of hands held on it (within 0.8).
straight_up = [q('RightHandRise', '>', '0.4', True), q('LeftHandRise', '>', '0.4', True), q('RightArmStraight', '>', '0.9', True), q('LeftArmStraight', '>', '0.9', True),
               q('RightHandNearHead', '>', '0.85', True), q('LeftHandNearHead', '>', '0.85', True), q('HandsGap', '>', '0.6', True)]
G('RaiseBothArms', 'both arms swing up straight, sideways or forward, until both hands are above the shoulders, arms straight, apart and away from the head, and stay there a moment',
  [q('RightHandRise', '<', '-0.1'), q('LeftHandRise', '<', '-0.1')],
  [within(2000), q('RightHandRise', '>', '-0.3'), q('LeftHandRise', '>', '-0.3'), q('RightArmStraight', '>', '0.9'), q('LeftArmStraight', '>', '0.9')],
  [within(1200), q('RightHandRise', '>', '0.4'), q('LeftHandRise', '>', '0.4'), q('RightArmStraight', '>', '0.9'), q('LeftArmStraight', '>', '0.9'),
   q('RightHandNearHead', '>', '1.12'), q('LeftHandNearHead', '>', '1.12')] + grounded,
  straight_up + [held(300)])
for s, o in (('Right', 'Left'), ('Left', 'Right')):
    # The waving hand never goes behind the shoulder: a throw's cocked hand
    # swings the forearm from side to side too, but back there.
    up = lambda rise: [q(s+'ForearmRise', '>', rise, True), q(o+'HandRise', '<', '-0.3', True), q(s+'HandReach', '>', '0.0', True)]
    G('Wave'+s+'Hand', 'the %s forearm, raised, swings out, in and out again while the %s hand stays low; the hand must come down before the next wave counts' % (s.lower(), o.lower()),
      [q(s+'ForearmRise', '<', '0.1')],
      [within(3000), q(s+'ForearmRise', '>', '0.2'), q(s+'ForearmOut', '<', '-0.1'), q(o+'HandRise', '<', '-0.3')],
      [within(800)] + up('0.1') + [q(s+'ForearmOut', '>', '0.0')],
      [within(800)] + up('0.2') + [q(s+'ForearmOut', '<', '-0.1')],
      [within(800)] + up('0.0') + [q(s+'ForearmOut', '>', '0.1'), q(s+'HandSwingAcross', '>', '0.0')])
chest = lambda s: [q(s+'HandRise', '>', '-0.7'), q(s+'HandRise', '<', '0.25')]
# A swipe is one stroke: the right hand comes up from low on one side, sweeps
# across and drops again, the left hand staying down. Drawing in the air
# keeps the hand up from one stroke to the next. The time runs from the hand
# leaving its rest. A swipe to the left starts soon after, before the hand
# has been on the left: a wave swings across and back before it comes to the
# start, and the arm of a pick-up and throw lingers low. (The same limits on a
# swipe to the right cost it more under the refit on other people than they
# save.) A swipe to the left ends high, where the strokes of an X or a circle
# come down, and the hand does not climb again on its way down; a swipe to
# the right drops on the right, where a wave swings back across.
def swipe(name, comment, start, end, drop):
    G(name, comment,
      [q('RightHandRise', '<', '-0.82')],
      begun('RightHandRise', '>', '-0.75'),
      start + [q('LeftHandRise', '<', '-0.5')],
      end + [q('LeftHandRise', '<', '-0.5')],
      drop + [q('RightHandRise', '<', '-0.86')])
swipe('SwipeLeft', "the right hand comes up on the person's right, sweeps across the body to the left and drops",
      [within(400), q('RightHandAcross', '>', '-0.165', True), q('RightHandAcross', '>', '0.65'), q('RightHandRise', '>', '-0.3'), q('RightHandReach', '>', '0.6')],
      [within(900), q('RightHandAcross', '<', '-0.165'), q('RightHandRise', '>', '-0.2')],
      [within(770), q('RightHandRise', '<', '0.5', True)])
swipe('SwipeRight', "the right hand comes up on the person's left, sweeps back across the body to the right and drops there",
      [within(600), q('RightHandAcross', '<', '-0.12'), q('RightHandRise', '>', '-0.15'), q('RightHandReach', '>', '0.3')],
      [within(900), q('RightHandAcross', '>', '1.3'), q('RightHandRise', '>', '-0.125')],
      [within(770), q('RightHandAcross', '>', '0.3', True)])
# A push to the right sweeps the hand from in front of the body, across it or
# beside the thigh out to the side, straight out or half forward, below the
# shoulder, and holds it there a moment with the left hand still in; it does
# not go up in front as a swipe or a back fist does. Some people push low and
# more forward than out, so the hand need not go far out nor high; what
# tells the look-alikes is how it got there. A drawing in the air, a throw's
# backswing or a reach over the shoulder passes the same place soon after the
# hand was up, a courtier's arm sweeps out as the torso comes up from a bow, a
# duck's balancing arm goes out on bent legs, a side kicker's arm is out for
# balance as the foot leaves the floor or comes down, a cocked throw holds the
# hand behind the shoulder, and a wind-up takes the left hand out too. The
# hold lets the hand sink back a little, as it does after the sweep.
G('PushRight', "the right hand, from in front of the body or beside it, sweeps out to the person's right, straight out or half forward, arm straight, the left hand staying in, and stays out a moment",
  [q('RightHandOut', '<', '0.1')],
  [q('RightHandRise', '>', '-0.85', True), q('RightHandOutward', '>', '0.35')],
  [within(2050), q('RightHandOutward', '>', '0.6'), q('RightArmStraight', '>', '0.85'), q('LegStretch', '>', '0.9'), q('RightHandReach', '>', '0.0'), q('TorsoUprightLately', '>', '0.9'), q('RightHandRise', '<', '0.25'), q('RightHandRiseOfLate', '<', '0.05'), q('RightHandAheadHigh', '<', '0.3'),
   q('LeftHandOut', '<', '0.31'), q('FootRiseLately', '<', '0.2')],
  [q('RightHandOutward', '>', '0.55', True), q('RightHandRise', '<', '0.3', True), q('LeftHandOut', '<', '0.45', True), q('FootRiseLately', '<', '0.2', True), held(110)])
# A punch leaves from the guard, the fist near the head, where a tennis swing
# or a back fist comes from out at the side. Some fighters never lock the
# elbow, stopping a few hundredths short of straight, about as straight as a
# basketball shot goes; the shot and arms folded take the hand across the
# body, where a punch drives it ahead of its own shoulder, and a kick's
# balancing arm flung out to the side is no guard.
for s, o in (('Right', 'Left'), ('Left', 'Right')):
    G(s+'Punch', 'the %s fist, above the elbow, is thrown fast and straight forward from the guard to shoulder height while the %s hand keeps its guard near the chin' % (s.lower(), o.lower()),
      [q(s+'HandReach', '<', '0.7')],
      [q(s+'HandReach', '>', '0.4'), q(s+'HandReach', '<', '0.8', True), q(s+'ForearmRise', '>', '0.2'), q(s+'HandPush', '>', '2.4'), q(s+'HandLift', '>', '-0.75'), q(s+'HandRiseLately', '<', '0.44'), q(o+'HandRiseLately', '<', '0.4'),
       q(s+'HandNearHead', '<', '2.1')],
      [within(350), q(s+'HandReach', '>', '0.675'), q(s+'ArmBend', '<', '0.05'), q(s+'HandOut', '>', '-0.2'), q(s+'HandRise', '>', '-0.3'), q(o+'HandRise', '>', '-0.7'), q(o+'HandRise', '<', '0.45'), q(o+'HandReach', '<', '0.6'), q(o+'HandOut', '<', '0.5'),
       q('HandsGap', '>', '1.33')])
# A front kick drives the foot more forward than out, a side kick more out
# than forward. A front kick's foot stays in front of its hip, from the lift
# until it is down again: a foot that strays well to either side is a side
# kick's (a fighter turned side-on is tracked with it out or across the
# body), so one kick is not both. Timing the kick from its first lift, not
# from rest, gives a kick begun at any moment its whole time. The kick arms
# again only once the foot is back on the floor, level with the standing
# foot: a foot drawn back from one kick, still raised, would otherwise count
# as a second kick, and a deep crouch brings the feet nearer the hips than
# any fixed depth below them. The body stays up while the foot is raised:
# the hips dropping toward a crouch, a lunge or a bowler's step raise the
# foot against them too. The shoulders stay square while the foot is
# raised, where a side kick pivots them round.
for s, o in (('Right', 'Left'), ('Left', 'Right')):
    G('Front'+s+'Kick', 'the %s foot leaves the floor and snaps forward, staying in front of its hip, the other foot staying down, and comes back down' % s.lower(),
      [q(s+'FootUp', '<', '-1.6'), q(s+'FootRise', '<', '0.2')],
      begun(s+'FootUp', '>', '-1.5'),
      [within(1150), q(s+'FootAsideSteady', '<', '0.7', True), q('ShoulderTurn', '<', '0.34', True), q(s+'FootUp', '>', '-1.3'), q(s+'FootRise', '>', '0.5'), q(s+'FootForward', '>', '0.22'), q(o+'FootRise', '<', '0.2'), q('WaistRise', '>', '-0.3')],
      [within(1000), q(s+'FootAsideSteady', '<', '1.7', True), q(s+'FootAboveOther', '<', '0.85')])
# A side kick is told by its chamber: the knee comes up with the foot beside
# the hip, well more out than forward, before the leg extends. Where the
# foot then goes depends on how far the fighter has turned side-on: straight
# out, or, turned away, along what the tracker reads as forward or even
# across the body. So the extension asks only that the foot goes high. The
# chamber is the move's first step and starts its clock; a foot that comes
# back down from it, as a fighter's bouncing stance does, starts it again.
for s, o in (('Right', 'Left'), ('Left', 'Right')):
    G('Side'+s+'Kick', 'the %s foot is chambered beside the hip, more out than forward, then driven up high, the other foot staying down' % s.lower(),
      [q(s+'FootUp', '<', '-1.92')],
      [q(s+'FootRise', '>', '0.1'), q(s+'FootOut', '>', '0.83'), q(s+'FootSideways', '>', '0.8'), q(o+'FootRise', '<', '0.2')],
      [within(800), q(s+'FootUp', '>', '-2.3', True), q(s+'FootUp', '>', '-1.85'), q(s+'FootRise', '>', '0.35'), q(o+'FootRise', '<', '0.2')])
G('Jump', 'the waist and both feet rise together above their anchors, then the body lands',
  [q('WaistRise', '<', '0.05')],
  begun('WaistRise', '>', '0.1'),
  [within(600), q('WaistRise', '>', '0.2'), q('RightFootRise', '>', '0.15'), q('LeftFootRise', '>', '0.15'), q('FeetRiseGap', '<', '0.3')],
  [within(1000), q('WaistRise', '<', '0.1')])
# Standing up again from a crouch held only a moment, or bent over, is
# picking something up, not ducking.
G('Duck', 'from standing, the knees bend, the torso upright, until the hips drop well below their standing height, or as far as sitting down with both hands held forward, and the crouch is held a moment',
  [q('LegStretch', '>', '0.9')],
  begun('LegStretch', '<', '0.88'),
  [within(2750), q('CrouchStretch', '<', '0.74'), q('TorsoUpright', '>', '0.8'), q('RightFootRise', '<', '0.05'), q('LeftFootRise', '<', '0.05')],
  [q('CrouchStretch', '<', '0.85', True), held(350)])
# Bowling a ball bends the torso over too, but lunges: the legs bend while
# the torso comes back up, where a bow keeps them straight. A bow starts
# standing on straight legs: a person getting up from a chair leans the
# torso forward over the thighs as the knees straighten, as does one
# rising from a duck, which would otherwise count as bending over.
# Tracking that flickers between bent and upright would finish a bow at
# every flicker; a real bow stays bent a moment before it comes back up,
# so the torso must stay off upright for a while after the bend.
G('Bow', 'standing on straight legs, the torso bends forward over the hips, the chest turning down and the hands kept off the floor, and comes back up, the legs staying straight',
  [q('TorsoThigh', '<', '-0.425'), q('LegStretch', '>', '0.9')],
  begun('TorsoThigh', '>', '-0.93'),
  [within(1000), q('TorsoThigh', '>', '-0.86'), q('LegStretch', '>', '0.9'), q('TorsoUpright', '<', '0.85'), q('TorsoFacingUp', '<', '-0.4'), q('LowerHandHeight', '>', '0.5', True), q('RightFootRise', '<', '0.1'), q('LeftFootRise', '<', '0.1')],
  [q('TorsoThigh', '>', '-0.95', True), held(150)],
  [within(4125), q('LowerHandHeight', '>', '0.5', True), q('LegStretch', '>', '0.9', True), q('TorsoThigh', '<', '-0.95'), q('RightFootRise', '<', '0.0'), q('LeftFootRise', '<', '0.0')])
tpose = [q('RightHandOut', '>', '0.8'), q('LeftHandOut', '>', '0.8'), q('RightHandRise', '>', '-0.3'), q('RightHandRise', '<', '0.3'),
         q('LeftHandRise', '>', '-0.3'), q('LeftHandRise', '<', '0.3'), q('RightArmStraight', '>', '0.85'), q('LeftArmStraight', '>', '0.85')]
G('TPose', 'both arms held straight out sideways at shoulder height for a second',
  [q('RightHandOut', '<', '0.6')],
  tpose,
  R(tpose) + [held(1000)])
# Stop is the right hand alone: both hands held forward are aiming (Shoot) or
# keeping balance in a squat.
G('Stop', 'the right palm is pushed toward the sensor at shoulder height and held there, the left hand staying in',
  [q('RightHandReach', '<', '0.5')],
  begun('RightHandReach', '>', '0.55'),
  [within(1500), q('RightHandReach', '>', '0.75'), q('RightHandOut', '<', '0.35'), q('RightHandRise', '>', '-0.35'), q('RightHandRise', '<', '0.35'), q('RightForearmRise', '>', '0.0'),
   q('LeftHandReach', '<', '0.5')],
  [q('RightHandReach', '>', '0.7', True), q('RightHandOut', '<', '0.35', True), q('RightHandRise', '>', '-0.35', True), q('RightHandRise', '<', '0.35', True),
   q('LeftHandReach', '<', '0.5', True), held(800)])

# Arms folded cross well past each other at the chest, and do so soon after
# the hands meet in the middle; hands clasped low in front overlap a little,
# and a bat swung across the body takes longer to get there. They are folded
# standing: hands held out for balance in a squat cross now and then.
G('CrossArms', 'standing, the forearms cross in front of the chest, the right hand well to the left of the left hand, and stay crossed',
  [q('HandsCrossed', '<', '-0.6')],
  begun('HandsCrossed', '>', '0.0'),
  [within(500), q('HandsCrossed', '>', '0.5'), q('RightHandRise', '>', '-0.45'), q('RightHandRise', '<', '0.25'), q('LeftHandRise', '>', '-0.45'), q('LeftHandRise', '<', '0.25'),
   q('LegStretch', '>', '0.9')],
  [q('HandsCrossed', '>', '0.2', True), held(400)])
# A clap counts once until the hands come down again, however many times
# they meet. They meet in front of the chest, standing, and not at arm's
# length, where hands held out for balance in a squat come together. They
# part before they drop, where hands that meet on a wind-up or on a bat's
# handle part only as the arms swing down.
G('Clap', 'both hands come up apart in front of the chest, come together and part again, and must come down before the next clap counts',
  [q('RightHandRise', '<', '-0.7'), q('LeftHandRise', '<', '-0.7')],
  [q('HandsGap', '>', '1.3'), q('RightHandRise', '>', '-0.6'), q('RightHandRise', '<', '0.1'), q('LeftHandRise', '>', '-0.6'), q('LeftHandRise', '<', '0.1')],
  [within(950), q('HandsGap', '<', '0.3'), q('LegStretch', '>', '0.9'), q('RightHandReach', '>', '0.4'), q('LeftHandReach', '>', '0.4'),
   q('RightHandReach', '<', '0.8'), q('LeftHandReach', '<', '0.8'),
   q('RightHandRise', '>', '-0.3'), q('RightHandRise', '<', '0.25'), q('LeftHandRise', '>', '-0.3'), q('LeftHandRise', '<', '0.25')],
  [within(600), q('HandsGap', '>', '0.5'), q('RightHandRise', '>', '-0.7'), q('LeftHandRise', '>', '-0.7')])
# A push starts standing with both hands raised in front of the chest: in a
# deep squat the feet can turn the forward direction round, so arms held out
# for balance read as behind the body. It ends with the hands at chest height
# or above, where an arm curl swings them down through the front.
G('PushBothHands', 'standing, both hands, raised in front of the chest, push forward together until both arms are straight at chest height, the hands not dropping below it',
  [q('RightHandReach', '<', '0.55'), q('LeftHandReach', '<', '0.55'), q('RightHandRise', '>', '-0.5'), q('LeftHandRise', '>', '-0.5'), q('LegStretch', '>', '0.9'),
   q('RightHandReach', '>', '0.0'), q('LeftHandReach', '>', '0.0')],
  [within(1200), q('RightHandReach', '>', '0.85'), q('LeftHandReach', '>', '0.85'), q('RightArmStraight', '>', '0.85'), q('LeftArmStraight', '>', '0.85'),
   q('HandsGap', '>', '0.7'), q('HandsGap', '<', '1.28'), q('LegStretch', '>', '0.9'),
   q('RightHandRise', '>', '-0.15'), q('RightHandRise', '<', '0.25'), q('LeftHandRise', '>', '-0.15'), q('LeftHandRise', '<', '0.25')])
# The recoil is the hands moving up: people who shoot again without
# lowering them bring them down through the same heights onto the aim.
# The hands stop at the aim, rising at most half an arm length a second:
# hands swept up from low in one movement pass through the aim on their way
# above the shoulders, where a shot halts before the recoil. Told apart so,
# the recoil need take the hands only a little above the shoulders, as some
# people's kick is small; it is a jerk up from the aim, as hands brought down
# onto the aim from above, at the end of a change of weapon, stop there
# already a little above the shoulders. The hands may part a little in the
# kick, as some people's left hand jumps off the right. The aim is taken
# standing: people squatting hold both arms forward for balance.
G('Shoot', 'both hands, together, are raised from low and pointed straight forward at chest height, stopping there, then kick up with the recoil',
  [q('RightHandReach', '<', '0.86'), q('LeftHandReach', '<', '0.86')],
  begun('RightHandReach', '>', '0.88'),
  [within(1500), q('RightHandReach', '>', '0.8'), q('LeftHandReach', '>', '0.8'), q('HandsGap', '<', '0.4'), q('RightHandLift', '<', '0.5'), q('LegStretch', '>', '0.9')] + chest('Right') + chest('Left'),
  [within(2600), q('RightHandRise', '>', '0.05'), q('LeftHandRise', '>', '0.05'), q('HandsGap', '<', '0.6'), q('RightHandRiseKick', '>', '0.05')])
# Goggles are held before the eyes: the hands come up in front of the face,
# apart, and stay below the height at which had-enough rests them on top of
# the head. The height is read from the shoulders, as the head is tracked
# low on some people; a shot aims with the hands together, and claps and
# arm curls bring them up in front only to the chest.
G('Goggles', 'both hands come up from low to the eyes, in front of the face and apart, as if putting on goggles, and stay there a moment',
  [q('RightHandRise', '<', '-0.6'), q('LeftHandRise', '<', '-0.6')],
  begun('RightHandRise', '>', '-0.4'),
  [within(2500), q('RightHandNearHead', '<', '1.2'), q('LeftHandNearHead', '<', '1.2'), q('RightHandRise', '>', '0.25'), q('LeftHandRise', '>', '0.25'),
   q('RightHandRise', '<', '0.55'), q('LeftHandRise', '<', '0.55'), q('RightHandBeforeHead', '>', '0.35'), q('LeftHandBeforeHead', '>', '0.35'),
   q('HandsGap', '>', '0.3'), q('HandsGap', '<', '1.0')],
  [q('RightHandNearHead', '<', '1.3', True), q('LeftHandNearHead', '<', '1.3', True), q('RightHandRise', '<', '0.65', True), q('LeftHandRise', '<', '0.65', True),
   q('RightHandBeforeHead', '>', '0.15', True), q('LeftHandBeforeHead', '>', '0.15', True), held(400)])
# A throw is cocked by the forearm, raised with the hand back over the
# elbow, not by the height of the hand: some people cock it only a little
# above the shoulder, as when throwing something just picked up.
G('Throw', 'the right forearm, cocked up with the hand back over the elbow, is thrown fast forward with the right shoulder driving forward too, the left hand having stayed down',
  [q('RightForearmRise', '>', '0.35'), q('RightForearmReach', '<', '0.0')],
  [within(600), q('RightShoulderPush', '>', '0.8'), q('RightHandPush', '>', '2.0'), q('LeftHandRiseLately', '<', '0.0')],
  [within(400), q('RightHandReach', '>', '0.7')])
# Had-enough rests the hands on top of the head, not held before the face
# as goggles are. Some people's hands on the head are tracked at or just
# under the head joint; raised elbows still tell them from goggles, which
# keep the elbows low in front of the chest. The hands rest near each other,
# where a beat may start with them held apart by the head. They need only
# still be there a moment later, not at every frame in between: a hand on
# the head is tracked astray for a frame now and then, which would otherwise
# cancel the move until the hands come down again.
G('HadEnough', 'both hands come up from low to the top of the head, the elbows raised, as if in despair, and rest there a moment',
  [q('RightHandRise', '<', '-0.4'), q('LeftHandRise', '<', '-0.4')],
  [within(6000), q('RightHandNearHead', '<', '0.7'), q('LeftHandNearHead', '<', '0.7'), q('RightHandOnHead', '>', '0.1'), q('LeftHandOnHead', '>', '0.1'),
   q('RightHandAboveHead', '>', '-0.2'), q('LeftHandAboveHead', '>', '-0.2'), q('RightHandBeforeHead', '<', '0.4'), q('LeftHandBeforeHead', '<', '0.4'), q('HandsGap', '<', '0.8')],
  [within(1000), q('RightHandNearHead', '<', '0.9'), q('LeftHandNearHead', '<', '0.9'), q('RightHandAboveHead', '>', '-0.2'), q('LeftHandAboveHead', '>', '-0.2'), held(500)])
G('WindItUp', 'both hands come up in front of the chest, then swing out wide to the sides and down, as if winding up',
  [q('RightHandRise', '<', '-0.125'), q('LeftHandRise', '<', '-0.125')],
  begun('RightHandRise', '>', '-0.3'),
  [within(1200), q('RightHandRise', '>', '-0.075'), q('LeftHandRise', '>', '-0.075'), q('RightHandReach', '>', '0.35'), q('LeftHandReach', '>', '0.35'),
   q('RightHandOut', '<', '0.35'), q('LeftHandOut', '<', '0.35')],
  [within(1050), q('RightHandOut', '>', '0.4'), q('LeftHandOut', '>', '0.4'), q('RightHandRise', '<', '0.0'), q('LeftHandRise', '<', '0.0')])
# The reach is read where the hand stops over the shoulder to take the
# weapon (slower than three quarters of an arm length a second) before it
# comes back: the strokes of a drawing or a bat's swing sweep the hand
# through the same place without stopping there. Many people reach only a
# little past the middle of the chest, so the place itself is loose: above
# the shoulder, a tenth of a shoulder width past the middle and no more than
# 1.2 shoulder widths in front of the head, however far aside the tracker
# puts a hand lost behind the head, standing upright, where a bow or a duck
# brings the hand there too. The reach comes within 2 s of the hand's first
# rise: a fighter's hands tracked astray in the guard get there later. The
# hands count as forward only once the right hand has come back down below
# the shoulder, or has joined the left hand there to aim the new weapon:
# people who keep aiming with the left hand during the reach would otherwise
# finish at the reach itself, long before the hands come forward again.
G('ChangeWeapon', 'the right hand reaches up over the left shoulder and stops there, standing upright, then comes down and both hands come forward together at the waist, or join at the shoulder to aim',
  [q('RightHandAcross', '>', '0.1'), q('RightHandRise', '<', '-0.48')],
  begun('RightHandRise', '>', '-0.2'),
  [within(2000), q('RightHandAcross', '<', '-0.1'), q('RightHandRise', '>', '0.0'), q('LeftHandRise', '<', '-0.1'), q('RightHandBeforeHead', '<', '1.2'), q('TorsoUpright', '>', '0.97'), q('RightHandSpeed', '<', '0.75')],
  [within(2750), q('RightHandReach', '>', '0.2'), q('LeftHandReach', '>', '0.11'), q('RightHandDownOrJoined', '<', '-0.15'), q('HandsGap', '<', '2.48')])
# Beating is told from arms raised and held, from hands held at the head or
# the eyes and from a shot by the hands still moving after half a second up,
# kept apart, with the elbows bent on the whole. Some people beat for barely
# a second, so the beat is not timed by how long the hands stay up. Arms
# lifted over the head hold both hands higher than a beat takes them.
# A beat swings, keeps the hands apart and bends the elbows soon after the
# hands are up; arms raised and held shake enough to read as swinging for a
# long while and bend only on the way down, so that must come within 2 s.
# A beat made in front of the chest passes for one made at the head once its
# strokes have read as one (ChestStrokes): it is then not held at each step,
# and ends when the hands come down from where they beat.
beat_up = [q('BeatHeight', '>', '-0.1', True), q('LowerHandRise', '<', '0.85', True), q('HandsFromHead', '>', '0.68', True)]
G('BeatBoth', 'both hands, raised to the height of the head but kept away from it and apart, keep beating with the elbows bent, or stroke down, up and down again in front of the chest, then come down or stop still',
  [q('BeatRest', '>', '0.0')],
  begun('LowerHandRise', '>', '-0.5') + [q('HandsSwinging', '>', '0.25')],
  [within(1500), q('BeatHeight', '>', '0.2')],
  beat_up + [held('@BeatHold')],
  beat_up + [q('HandsSwinging', '>', '0.3', True), held('@BeatHold'), q('BeatApart', '>', '1.2'), q('BeatStraightness', '<', '0.9'), within(2000)],
  [within(4800), q('BeatSettled', '<', '0.0')])

def attr(v): return v.replace('&', '&amp;').replace('<', '&lt;').replace('"', '&quot;')
out = []
w = out.append
w('<?xml version="1.0"?>')
w('<!-- Pelmora gesture catalogue.')
w('     Every threshold is relative to the person: hand and arm measures in shoulder widths,')
w('     leg and body measures in torso lengths (neck to waist), so children and tall adults,')
w('     near or far, are recognised alike. Directions come from the body: RightDir along the')
w('     shoulder line (the person\'s own right), UpDir along the torso, ForwardDir the normal of')
w('     the shoulder-torso plane, turned to the side the feet point to. No rule depends on the')
w('     sign of a tracker axis. Each gesture starts from a resting pose, so it fires once per')
w('     performance. Needs the joints Head, Neck, Waist, both Shoulders, Elbows, Hands, Hips,')
w('     Knees, Ankles and Feet. -->')
w('<AppConfig>')
w('  <IdentfyValues>')
for t, n in values:
    w('    <Value type="%s" name="%s"/>' % (t, n))
w('  </IdentfyValues>')
def block(update, comment, fs):
    w('  <!-- %s -->' % comment)
    w('  <Processing update="%d">' % update)
    for name, ret, ops in fs:
        a = ' '.join('value%d="%s"' % (i + 1, attr(v)) for i, v in enumerate(ops))
        w('    <Function name="%s" return="%s" %s/>' % (name, ret, a))
    w('  </Processing>')
block(1, 'Body frame, every frame: the facing read from the feet follows slowly (5% per frame).', facing_funcs)
block(0, 'Start of tracking: the facing begins at the current pose.', facing_start_funcs)
block(1, 'Forward direction and per-side measures, every frame.', frame_funcs)
block(0, 'Start of tracking: the vertical and the anchors begin at the current pose.', start_funcs)
block(1, 'The vertical (1% per frame) and the anchors (3% per frame) follow slowly; rises are measured from them.', baseline_funcs)
for name, comment, segs in gestures:
    w('  <!-- %s: %s. -->' % (name, comment))
    w('  <Gesture name="%s">' % name)
    for seg in segs:
        w('    <Segment>')
        for v1, op, v2, reset in seg:
            extra = ' IsResetOnFailed="1"' if reset else ''
            w('      <Qualification QualificationEnum="%s" value1="%s" value2="%s"%s/>' % (OPS[op], v1, attr(v2), extra))
        w('    </Segment>')
    w('  </Gesture>')
w('</AppConfig>')
default = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', 'examples', 'gestures', 'catalogue.xml')
with open(sys.argv[1] if len(sys.argv) > 1 else default, 'w') as target:
    target.write('\n'.join(out) + '\n')
print(len(values), 'values', len(frame_funcs)+len(start_funcs)+len(baseline_funcs), 'functions', len(gestures), 'gestures')
