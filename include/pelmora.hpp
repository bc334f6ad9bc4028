// pelmora.hpp - the exported C++ classes of libPelmora64, for hosts that want
// more than the C interface: reading and writing a player's values, building
// gestures or processing programmatically, or driving players directly.
// Everything lives in namespace PelmoraLib. The C interface (pelmora.h) and
// these classes work on the same singletons.
#pragma once

#include "pelmora.h"

#include "values/RTTI.h"
#include "values/BaseValue.h"
#include "values/IntValue.h"
#include "values/FloatValue.h"
#include "values/RefFloatValue.h"
#include "values/Vector3Value.h"
#include "values/ValueArithmetic.h"
#include "values/ValuesTable.h"
#include "values/IdentifyValues.h"

#include "gesture/Qualification.h"
#include "gesture/Segment.h"
#include "gesture/Gesture.h"
#include "gesture/GestureTable.h"

#include "processing/BaseFunction.h"
#include "processing/OneVariablesFunction.h"
#include "processing/TwoVariablesFunction.h"
#include "processing/Processing.h"
#include "processing/ProcessingTable.h"

#include "config/QualificationConfig.h"
#include "config/SegmentConfig.h"
#include "config/GestureConfig.h"
#include "config/GestureConfigTable.h"
#include "config/FunctionConfig.h"
#include "config/ProcessingConfig.h"
#include "config/ProcessingConfigTable.h"
#include "config/GestureConfigManager.h"

#include "engine/CriticalSection.h"
#include "engine/Pelmora.h"
#include "engine/ThreadCommand.h"
#include "engine/TCResetGesture.h"
#include "engine/TCSetGestureState.h"
#include "engine/TCSetPlayerState.h"

#include "player/PlayerGestureInfo.h"
#include "player/Player.h"
