#include "osl/text/osl_Messages.h"

#include <algorithm>

int osl_Messages::fileNumber(std::string_view name)
{
    const auto found = std::find(myFiles.begin(), myFiles.end(), name);
    if (found != myFiles.end())
        return static_cast<int>(found - myFiles.begin());
    myFiles.emplace_back(name);
    return static_cast<int>(myFiles.size()) - 1;
}

std::string_view osl_Messages::baseName(int number) const
{
    const std::string_view name = fileName(number);
    const size_t slash = name.rfind('/');
    return slash == std::string_view::npos ? name : name.substr(slash + 1);
}

void osl_Messages::append(osl_Place place, const char *severity, std::string_view text)
{
    myText += fileName(place.file);
    myText += ':';
    myText += std::to_string(place.line);
    myText += severity;
    myText += text;
    myText += '\n';
}

void osl_Messages::error(osl_Place place, std::string_view text)
{
    if (isFull())
        return;
    ++myErrors;
    append(place, ": error: ", text);
    if (isFull())
        append(place, ": error: ", "too many errors");
}

void osl_Messages::warning(osl_Place place, std::string_view text)
{
    if (myWarnings >= MAX_ERRORS || myQuietLines.count({place.file, place.line}) > 0)
        return;
    ++myWarnings;
    append(place, ": warning: ", text);
}
