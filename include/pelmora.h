/* pelmora.h - the C interface of libPelmora64, a body-gesture recogniser.
 *
 * Conventions of this interface:
 *
 *  1. Lifecycle. InitPelmora, then LoadConfigFile or LoadConfigData (any
 *     number of times: documents add up), then StartGestureWork once; then
 *     per frame the player calls; finally ClosePelmora, after which the
 *     library is back in its load state and InitPelmora may be called again.
 *     StartGestureWork appends what it compiles: a second call compiles every
 *     gesture a second time. A second InitPelmora without ClosePelmora prints
 *     the three "has been created before" lines and rebuilds the players and
 *     per-player tables for the new record (stopping an earlier worker):
 *     declared values and compiled gestures are gone while the loaded
 *     documents stay, so hosts close first.
 *
 *  2. Neutral results, no error codes. A call that cannot do its work prints
 *     one or two lines on standard output and returns its neutral result:
 *     false, 0, PELMORA_NO_GESTURE or an empty string; a void call changes
 *     nothing. No call throws or aborts on bad arguments: null pointers and
 *     negative or too large player and gesture indices are refused. Beyond
 *     its length, a frame is judged by its first joint only: a depth (z) that
 *     is not above 0, NaN included, refuses it; other non-finite coordinates
 *     are taken as they are and make the comparisons that read them false.
 *
 *  3. Ownership. Every pointer handed in stays the caller's and is used only
 *     during the call: texts are parsed or copied at once, SkeletonTypeArray
 *     is read by InitPelmora only, frames are copied in, results and
 *     velocities are copied out into buffers the caller provides. Strings
 *     returned belong to the library and must not be freed: a gesture name
 *     stays valid until ClosePelmora or the next InitPelmora, the text of
 *     GetLastConfigError until the next load.
 *
 *  4. Records. GetPlayerGestureState and UpdateSketonDataImmediate write one
 *     result record per enabled gesture, in gesture-index order, into a
 *     buffer that must hold GetGestureNum(player) records of the size that
 *     GestureConfigParam.ReturnInfoType selects (8, 16 or 24 bytes: the
 *     PelmoraResult8/16/24 layouts below, 32-bit little-endian fields), and
 *     set *resultCount to the number written. A skeleton frame is SkeletonNum
 *     Point3 in the slot order of SkeletonTypeArray; velocities come back in
 *     the same order. After SetPlayer(Immediate) switches a player on, its
 *     first max(2, VelocityFrameNum) - 1 accepted frames only fill its
 *     history and produce no results.
 *
 *  5. Two modes, chosen by GestureConfigParam.IsUseSubThread.
 *     Worker (nonzero): hand frames in with UpdateSketonData, wake the worker
 *     with OnIdle once per frame and read results with GetPlayerGestureState
 *     (true once per new result set). Switch players and gestures with the
 *     queued calls (SetPlayer, SetPlayerGesture, ResetPlayerGesture and their
 *     FromName forms), which the worker applies at the start of its next
 *     pass. A pass evaluates the newest frame of every tracked player: frames
 *     handed in between two passes are dropped, and a player without a new
 *     frame has its last one evaluated again.
 *     Immediate (0): UpdateSketonDataImmediate evaluates on the caller's
 *     thread and returns the results at once; switch with the *Immediate
 *     calls. Queued calls are never applied in this mode, and the immediate
 *     calls race with the worker in the other one.
 *
 *  6. Threads. The data calls (UpdateSketonData, GetPlayerGestureState,
 *     GetPlayerVelocityData) and the queued calls are safe while the worker
 *     runs; one thread at a time should feed a given player. Loading,
 *     compiling, the immediate calls and ClosePelmora must not run
 *     concurrently with each other or with evaluation. SetDebugInfo and
 *     SetGestureLogOutPut may be called at any time. A time source installed
 *     with SetTimeSource is called on whichever thread evaluates.
 *
 *  7. Diagnostics. Messages are printf lines on standard output, buffered by
 *     the C runtime until SetGestureLogOutPut makes it unbuffered;
 *     SetDebugInfo traces every processing step and gesture check.
 *
 *  8. Limits. Sizes the host chooses are bounded so that a wrong one is
 *     refused rather than allocated: PlayerNum, SkeletonNum and
 *     VelocityFrameNum above PELMORA_MAX_PLAYERS, PELMORA_MAX_JOINTS and
 *     PELMORA_MAX_VELOCITY_FRAMES, or a product of the three above
 *     PELMORA_MAX_HISTORY_POINTS, make InitPelmora print one line naming
 *     the field and change nothing; a configuration document with an attribute
 *     value (a name, a value reference, a keyword) longer than
 *     PELMORA_MAX_NAME_LENGTH bytes does not load. Values below the lower
 *     ends keep their meaning (no players, no joints, two frames).
 */
#ifndef PELMORA_H
#define PELMORA_H

#include <stdbool.h>
#include <stdint.h>

#include "PelmoraExport.h"

PELMORA_C_BEGIN

/* The limits of convention 8. */
#define PELMORA_MAX_PLAYERS 1024
#define PELMORA_MAX_JOINTS 256
#define PELMORA_MAX_VELOCITY_FRAMES 4096
#define PELMORA_MAX_NAME_LENGTH 1024
/* PlayerNum x VelocityFrameNum x SkeletonNum: the points of history kept,
 * 24 bytes each (positions and velocities). */
#define PELMORA_MAX_HISTORY_POINTS 16777216

/* No such gesture: the neutral gesture index. */
#define PELMORA_NO_GESTURE 0xFFFFFFFFu

/* GestureConfigParam.ReturnInfoType: which result record each gesture
 * produces per frame. */
#define PELMORA_RETURN_INFO_8 0  /* PelmoraResult8 */
#define PELMORA_RETURN_INFO_16 1 /* PelmoraResult16 */
#define PELMORA_RETURN_INFO_24 2 /* PelmoraResult24 */

/* GestureConfigParam.VelocityMulType: weights kept for the velocity history. */
#define PELMORA_VELOCITY_EQUAL 0   /* equal weights */
#define PELMORA_VELOCITY_HALVING 1 /* 0.5, 0.25, ... topped up to sum 1 */

/* Skeleton joint types for GestureConfigParam.SkeletonTypeArray. */
enum PelmoraJoint {
    PELMORA_JOINT_INVALID = 0,
    PELMORA_JOINT_HEAD,
    PELMORA_JOINT_NECK,
    PELMORA_JOINT_TORSO,
    PELMORA_JOINT_WAIST,
    PELMORA_JOINT_LEFT_COLLAR,
    PELMORA_JOINT_LEFT_SHOULDER,
    PELMORA_JOINT_LEFT_ELBOW,
    PELMORA_JOINT_LEFT_WRIST,
    PELMORA_JOINT_LEFT_HAND,
    PELMORA_JOINT_LEFT_FINGERTIP,
    PELMORA_JOINT_RIGHT_COLLAR,
    PELMORA_JOINT_RIGHT_SHOULDER,
    PELMORA_JOINT_RIGHT_ELBOW,
    PELMORA_JOINT_RIGHT_WRIST,
    PELMORA_JOINT_RIGHT_HAND,
    PELMORA_JOINT_RIGHT_FINGERTIP,
    PELMORA_JOINT_LEFT_HIP,
    PELMORA_JOINT_LEFT_KNEE,
    PELMORA_JOINT_LEFT_ANKLE,
    PELMORA_JOINT_LEFT_FOOT,
    PELMORA_JOINT_RIGHT_HIP,
    PELMORA_JOINT_RIGHT_KNEE,
    PELMORA_JOINT_RIGHT_ANKLE,
    PELMORA_JOINT_RIGHT_FOOT,
    PELMORA_JOINT_COUNT
};

/* The start-up record: 40 bytes, natural alignment. */
typedef struct GestureConfigParam {
    int32_t IsUseSubThread;   /* nonzero: run the worker thread */
    int32_t ReturnInfoType;   /* PELMORA_RETURN_INFO_8, _16 or _24 */
    int32_t PlayerNum;        /* number of players, at most PELMORA_MAX_PLAYERS */
    int32_t SkeletonNum;      /* joints per skeleton frame, at most PELMORA_MAX_JOINTS */
    int32_t* SkeletonTypeArray; /* SkeletonNum joint types; read during InitPelmora only */
    int32_t VelocityFrameNum; /* frames kept for velocity; below 2 means 2, at most PELMORA_MAX_VELOCITY_FRAMES */
    int32_t VelocityMulType;  /* PELMORA_VELOCITY_EQUAL or _HALVING */
    int32_t IsGetVelocityData; /* nonzero: keep velocities for GetPlayerVelocityData */
    int32_t Reserved;         /* padding, ignored */
} GestureConfigParam;

/* One joint position (host units) or velocity (units per millisecond). */
typedef struct Point3 {
    float x, y, z;
} Point3;

/* Result records, one per enabled gesture and frame. Flags are 0 or 1; the
 * segment index and times are those before this frame's progress update. */
typedef struct PelmoraResult8 {
    int32_t finished;
    int32_t gestureIndex;
} PelmoraResult8;

typedef struct PelmoraResult16 {
    int32_t finished;
    int32_t gestureIndex;
    int32_t segmentIndex;
    int32_t succeeded;
} PelmoraResult16;

typedef struct PelmoraResult24 {
    int32_t finished;
    int32_t gestureIndex;
    int32_t segmentIndex;
    int32_t succeeded;
    int32_t gestureTimeMs;
    int32_t segmentTimeMs;
} PelmoraResult24;

/* ---- Lifecycle and configuration ---- */

/* Creates the engine, the configuration manager and the player manager, and
 * starts the worker when the record asks for one. */
PELMORA_API void InitPelmora(GestureConfigParam* param);
/* Stops the worker and destroys everything InitPelmora made. */
PELMORA_API void ClosePelmora(void);
/* The worker's measured passes per second; 0 without an engine. */
PELMORA_API int32_t SubThreadFPS(void);
/* Loads a configuration document from a file; true when loaded. */
PELMORA_API bool LoadConfigFile(const char* path);
/* Loads a configuration document from text; true when loaded. */
PELMORA_API bool LoadConfigData(const char* xml);
/* Compiles the loaded configuration for every player; true when all of it
 * compiled. Every gesture starts disabled. */
PELMORA_API bool StartGestureWork(void);
/* Wakes the worker for one update pass. */
PELMORA_API void OnIdle(void);
/* Index of the named gesture, PELMORA_NO_GESTURE when unknown. */
PELMORA_API uint32_t GetGestureIndex(int32_t player, const char* name);
/* Name of a gesture; "" when there is none. Owned by the library. */
PELMORA_API const char* GetGestureName(int32_t player, uint32_t gesture);
/* Number of gesture slots of a player (the result records it may return). */
PELMORA_API uint64_t GetGestureNum(int32_t player);
/* Case-insensitive comparison of two strings: <0, 0, >0. */
PELMORA_API int32_t Stricmp(const char* a, const char* b);

/* ---- Log output ---- */

/* Makes standard output unbuffered; returns setvbuf's result (0: success). */
PELMORA_API int32_t SetGestureLogOutPut(void);
/* Switches the step-by-step trace of processing and gesture checks. */
PELMORA_API void SetDebugInfo(bool on);

/* ---- Players and gestures ---- */

/* Queued (worker mode): applied at the start of the worker's next pass. */
PELMORA_API void SetPlayer(int32_t player, bool track);
PELMORA_API void SetPlayerGesture(int32_t player, uint32_t gesture, bool enable);
PELMORA_API void SetPlayerGestureFromName(int32_t player, const char* name, bool enable);
PELMORA_API void ResetPlayerGesture(int32_t player, uint32_t gesture);
PELMORA_API void ResetPlayerGestureFromName(int32_t player, const char* name);

/* Immediate (no worker): applied at once on the caller's thread. Unlike the
 * queued calls, disabling keeps a gesture's progress and a reset keeps its
 * time stamps. */
PELMORA_API void SetPlayerImmediate(int32_t player, bool track);
PELMORA_API void SetPlayerGestureImmediate(int32_t player, uint32_t gesture, bool enable);
PELMORA_API void SetPlayerGestureImmediateFromName(int32_t player, const char* name, bool enable);
PELMORA_API void ResetPlayerGestureImmediate(int32_t player, uint32_t gesture);
PELMORA_API void ResetPlayerGestureImmediateFromName(int32_t player, const char* name);

/* Hands a frame of `count` joints to the worker; true when stored. */
PELMORA_API bool UpdateSketonData(int32_t player, const Point3* joints, int32_t count);
/* Evaluates a frame at once and returns the player's new results, as
 * GetPlayerGestureState does. */
PELMORA_API bool UpdateSketonDataImmediate(int32_t player, const Point3* joints, int32_t count,
                                           void* results, uint32_t* resultCount);
/* Copies the newest result records; true only once per new result set. */
PELMORA_API bool GetPlayerGestureState(int32_t player, void* results, uint32_t* resultCount);
/* Copies the newest velocity frame when `count` equals the skeleton size;
 * velocities are kept only when GestureConfigParam.IsGetVelocityData is set. */
PELMORA_API bool GetPlayerVelocityData(int32_t player, Point3* joints, int32_t count);

/* ---- Extensions ---- */

/* The library's version (any pointer may be NULL): the version of the
 * pkg-config and CMake packages; the SONAME carries the major number. */
PELMORA_API void PelmoraVersion(int* major, int* minor, int* patch);

/* Replaces the library's millisecond clock (gesture and segment times,
 * velocities, the pass-rate meter) with now(user); NULL restores the steady
 * clock. The value wraps at 32 bits and only differences between readings
 * matter. now is called on whichever thread evaluates (the worker or the
 * caller of the immediate calls), so it must be cheap and thread-safe; user
 * is handed back as given. Install it before InitPelmora (or at least before
 * StartGestureWork) and change it only while no pass runs; ClosePelmora
 * keeps it, so pass NULL before what now reads goes away. Hosts use it to
 * replay recordings at their recorded times. */
PELMORA_API void SetTimeSource(uint32_t (*now)(void* user), void* user);
/* After a failed load: the parser's description of the fault with its row and
 * column, e.g. "Error reading end tag. (row 12, column 5)"; after a
 * successful load: "". Owned by the library, valid until the next load. */
PELMORA_API const char* GetLastConfigError(void);

PELMORA_C_END

#endif /* PELMORA_H */
