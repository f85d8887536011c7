#include "osl/run/osl_Texts.h"

osl_Texts::osl_Texts(const std::vector<std::string> &constants)
    : myTexts(constants.begin(), constants.end()), myConstants(constants.size())
{
    for (size_t i = 0; i < myTexts.size(); ++i)
        myHandles.emplace(myTexts[i], static_cast<int>(i));
}

int osl_Texts::handle(std::string_view text)
{
    const auto found = myHandles.find(text);
    if (found != myHandles.end())
        return found->second;
    if (myBytes + text.size() > MAX_BYTES)
        return -1;
    myBytes += text.size() + 64;
    myTexts.emplace_back(text);
    const int made = static_cast<int>(myTexts.size()) - 1;
    myHandles.emplace(myTexts.back(), made);
    return made;
}

void osl_Texts::tidy()
{
    if (myBytes < KEPT_BYTES)
        return;
    while (myTexts.size() > myConstants) {
        myHandles.erase(myTexts.back());
        myTexts.pop_back();
    }
    myBytes = 0;
}
