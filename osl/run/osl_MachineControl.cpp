// The way through the code.
#include "osl/run/osl_Machine.h"

#include <emmintrin.h>

// Returns the next instruction; -1 at the end.
int osl_Machine::control(In in, int at)
{
    switch (in.op) {
    case OSL_IF:
        return doIf(in, at);
    case OSL_ELSE:
        return doElse(in, at);
    case OSL_ENDIF:
        if (!in.isUniform) {
            myMask = myFrames.back().saved & ~myDead;
            myFrames.pop_back();
        }
        return at + 1;
    case OSL_LOOP:
        return doLoop(in);
    case OSL_LOOP_TEST:
        return doLoopTest(in, at);
    case OSL_LOOP_STEP:
        myDead &= ~myFrames.back().skipped;
        myFrames.back().skipped = 0;
        myMask = myFrames.back().other & ~myDead;
        return myMask != 0 ? at + 1 : in.target;
    case OSL_LOOP_END:
        return doLoopEnd(in, at);
    case OSL_BREAK:
        return leave(Frame::LOOP, &Frame::left) ? in.target : at + 1;
    case OSL_CONTINUE:
        return leave(Frame::LOOP, &Frame::skipped) ? in.target : at + 1;
    case OSL_CALL:
        myFrames.push_back({Frame::CALL, myMask, myMask});
        return at + 1;
    case OSL_RETURN:
        return leave(Frame::CALL, &Frame::left) ? in.target : at + 1;
    case OSL_CALL_END:
        myDead &= ~myFrames.back().left;
        myMask = myFrames.back().saved & ~myDead;
        myFrames.pop_back();
        return at + 1;
    case OSL_EXIT:
        myDead |= myMask;
        myMask = 0;
        return (myDead & myFull) == myFull && waitingFrom(0) == 0 ? -1 : at + 1;
    default:
        return -1;
    }
}

osl_Machine::Mask osl_Machine::lanesOf(const osl_Operand &condition) const
{
    const int *value = myMemory + static_cast<std::ptrdiff_t>(condition.at) * myWidth;
    if (myWidth == 1)
        return value[0] != 0 ? 1 : 0;
    Mask zeros = 0;
    for (int lane = 0; lane < myWidth; lane += 4) {
        const __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i *>(value + lane));
        const __m128i areZero = _mm_cmpeq_epi32(four, _mm_setzero_si128());
        zeros |= static_cast<Mask>(_mm_movemask_ps(_mm_castsi128_ps(areZero))) << lane;
    }
    return ~zeros;
}

int osl_Machine::doIf(In in, int at)
{
    const osl_Operand &condition = operands(in)[1];
    if (in.isUniform)
        return myMask != 0 && intAt(condition, 0) != 0 ? at + 1 : in.target + 1;
    const Mask yes = lanesOf(condition);
    myFrames.push_back({Frame::CONDITION, myMask, myMask & ~yes});
    myMask &= yes;
    return myMask != 0 ? at + 1 : in.target;
}

int osl_Machine::doElse(In in, int at)
{
    if (in.isUniform)
        return in.target; // behind the taken branch
    myMask = myFrames.back().other & ~myDead;
    return myMask != 0 ? at + 1 : in.target;
}

// In a loop's frame `other` holds the lanes that go round; in a call's those that came.
int osl_Machine::doLoop(In in)
{
    myFrames.push_back({Frame::LOOP, myMask, myMask});
    return in.target;
}

int osl_Machine::doLoopTest(In in, int at)
{
    const osl_Operand &condition = operands(in)[1];
    const Mask yes = in.isUniform ? (intAt(condition, 0) != 0 ? ~0u : 0) : lanesOf(condition);
    Frame &frame = myFrames.back();
    frame.other &= yes & myMask;
    myMask = frame.other;
    return myMask != 0 ? in.target : at + 1;
}

int osl_Machine::doLoopEnd(In in, int at)
{
    Frame &frame = myFrames.back();
    myMask = frame.other & ~myDead;
    if (myMask != 0)
        return in.target;
    myDead &= ~frame.left;
    myMask = frame.saved & ~myDead;
    myFrames.pop_back();
    return at + 1;
}

// Lanes that come on again before the frames from `depth` on have ended.
osl_Machine::Mask osl_Machine::waitingFrom(size_t depth) const
{
    Mask waiting = 0;
    for (size_t i = depth; i < myFrames.size(); ++i)
        waiting |= myFrames[i].left | myFrames[i].skipped;
    return waiting;
}

// Takes the lanes that are on away until the innermost frame of a kind ends. True when
// none is left in it: then control goes to its end, where code is not masked.
bool osl_Machine::leave(Frame::Kind kind, Mask Frame::*lanes)
{
    size_t depth = myFrames.size();
    while (depth > 0 && myFrames[depth - 1].kind != kind)
        --depth;
    Frame &frame = myFrames[depth - 1];
    frame.*lanes |= myMask;
    myDead |= myMask;
    myMask = 0;
    const bool isOver = (frame.other & ~myDead) == 0 && waitingFrom(depth) == 0;
    if (isOver)
        myFrames.resize(depth);
    return isOver;
}
