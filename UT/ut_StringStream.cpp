#include "UT/UT_IStream.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"

bool UT_String::load(UT_IStream &is)
{
    if (is.isBinary())
        return is.readBinaryString(*this, 16);
    clear();
    UT_ScratchBuffer text;
    if (!is.getString(text))
        return false;
    text.copyToString(*this);
    return true;
}
