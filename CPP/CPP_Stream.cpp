#include "CPP/CPP_Stream.h"

CPP_Stream::~CPP_Stream() = default;

bool CPP_Stream::isSpecial() const
{
    return false;
}
