#include "osl/headers/osl_Headers.h"

namespace
{
const struct {
    const char *name, *text;
} HEADERS[] = {
#include "osl_HeaderTexts.h"
};
} // namespace

std::string_view osl_findHeader(std::string_view name)
{
    const size_t slash = name.rfind('/');
    if (slash != std::string_view::npos)
        name.remove_prefix(slash + 1);
    for (const auto &header : HEADERS) {
        if (name == header.name)
            return header.text;
    }
    return {};
}
