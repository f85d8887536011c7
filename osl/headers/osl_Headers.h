// The headers that come with us, in memory.
#pragma once

#include <string_view>

// The text of a header by the name in an #include, with or without folders in front;
// without data when we have none of that name.
std::string_view osl_findHeader(std::string_view name);
