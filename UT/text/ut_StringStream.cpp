// Saving a text to a stream, and loading it again.
#include "UT/UT_String.h"

#include "UT/UT_ErrorManager.h"
#include "UT/UT_IStream.h"
#include "UT/UT_ScratchBuffer.h"

#include <cstdint>
#include <ostream>

namespace
{

void putBigEndian(std::ostream &os, uint32_t value, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        os.put(static_cast<char>(value >> shift & 0xff));
}

void putBinary(std::ostream &os, const UT_String &s)
{
    const uint32_t length = static_cast<uint32_t>(s.length());
    if (length < UINT16_MAX) {
        putBigEndian(os, length, 2);
    } else {
        putBigEndian(os, UINT16_MAX, 2);
        putBigEndian(os, length, 4);
    }
    os.write(s.text(), s.length());
}

} // namespace

bool UT_String::save(std::ostream &os, bool binary) const
{
    if (binary)
        putBinary(os, *this);
    else
        writeText(os);
    return UTcheckSaveError("String Save", nullptr);
}

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
