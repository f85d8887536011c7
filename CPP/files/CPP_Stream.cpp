#include "CPP/CPP_Stream.h"

CPP_Stream::~CPP_Stream() = default;

const char *CPP_Stream::peekBuffered(int &)
{
    return nullptr;
}

void CPP_Stream::skipBuffered(int) {}

const char *CPP_Stream::readError() const
{
    return nullptr;
}

bool CPP_Stream::isSpecial() const
{
    return false;
}
