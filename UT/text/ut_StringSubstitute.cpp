// The operation of UT_String that rests on the expansion of variables.
#include "UT/UT_String.h"

#include "UT/UT_ExpandVariables.h"
#include "UT/UT_ScratchBuffer.h"

void UT_String::substituteVariables()
{
    UT_ScratchBuffer expanded;
    UTexpandVariables(expanded, myData, nullptr, nullptr, true, true);
    assignCopy(expanded.buffer());
}
