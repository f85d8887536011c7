#include "CPP/CPP_Stream.h"

CPP_Stream::~CPP_Stream() = default;

const char *CPP_Stream::peekBuffered(int &)
{
    return nullptr;
}

void CPP_Stream::skipBuffered(int) {}

bool CPP_Stream::isSpecial() const
{
    return false;
}
