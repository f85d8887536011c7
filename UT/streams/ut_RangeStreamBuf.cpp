#include "UT/streams/ut_RangeStreamBuf.h"

#include <algorithm>
#include <cerrno>

ut_RangeStreamBuf::ut_RangeStreamBuf(UT_IStreamBuf &inner, int64_t start, int64_t length)
    : myInner(inner), myStart(start), myRemaining(std::max<int64_t>(length, 0))
{
    myInner.addReference();
    if (__builtin_add_overflow(myStart, myRemaining, &myEndPos))
        myEndPos = INT64_MAX; // "all the rest"
    if (!myInner.seekg(myStart, 0))
        myRemaining = 0;
}

ut_RangeStreamBuf::~ut_RangeStreamBuf()
{
    myInner.release();
}

int ut_RangeStreamBuf::read(void *dst, int n)
{
    const int got = myInner.bread(dst, static_cast<int>(std::min<int64_t>(n, myRemaining)));
    myRemaining -= got;
    return got;
}

int ut_RangeStreamBuf::peekChar()
{
    return myRemaining > 0 ? myInner.peekByte() : -1;
}

const char *ut_RangeStreamBuf::fillBuffer(int &start, int &end)
{
    const char *run = myRemaining > 0 ? myInner.takeRun(myRemaining, end) : nullptr;
    if (!run) {
        // A disk that fails must not look like the end of the range.
        if (myInner.hasError())
            setError(myInner.getErrorText());
        return nullptr;
    }
    start = 0;
    myRemaining -= end;
    return run;
}

// What the range has fetched, the inner source has delivered: its logical position is
// the medium's position here.
int64_t ut_RangeStreamBuf::tell()
{
    const int64_t position = myInner.tellg();
    return position < 0 ? position : position - myStart;
}

bool ut_RangeStreamBuf::fail(int reason)
{
    errno = reason;
    setError();
    return false;
}

bool ut_RangeStreamBuf::seek(int64_t pos, int whence)
{
    if (whence < 0 || whence > 2)
        return fail(EINVAL);
    const int64_t origins[] = {myStart, myInner.tellg(), myEndPos};
    int64_t target;
    if (__builtin_add_overflow(origins[whence], pos, &target))
        return fail(EINVAL);
    if (!myInner.seekg(target, 0))
        return fail(errno);
    const int64_t reached = myInner.tellg();
    myRemaining = reached < myStart ? 0 : std::max<int64_t>(myEndPos - reached, 0);
    return reached >= myStart || fail(EINVAL);
}

bool ut_RangeStreamBuf::isEof()
{
    return myRemaining <= 0 || myInner.isAtEnd();
}
