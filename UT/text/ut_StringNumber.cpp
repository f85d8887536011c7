// The number at the end of a name.
#include "UT/UT_String.h"

#include "UT/UT_Character.h"

const char *UT_String::findNumber() const
{
    const char *number = myData + length();
    while (number != myData && UTisDigit(number[-1]))
        --number;
    return number == nullptr || *number == '\0' ? nullptr : number;
}

bool UT_String::stripNumber()
{
    const char *number = findNumber();
    if (number == nullptr)
        return false;
    const auto kept = number - myData;
    makeOwned();
    myData[kept] = '\0';
    return true;
}

void UT_String::incrementNumber()
{
    std::string name = toStdString();
    size_t i = name.size();
    for (; i > 0 && name[i - 1] == '9'; --i)
        name[i - 1] = '0';
    if (i > 0 && UTisDigit(name[i - 1]))
        ++name[i - 1];
    else
        name.insert(i, 1, '1');
    assignCopy(name.c_str());
}
