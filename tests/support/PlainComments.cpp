#include "tests/support/PlainText.h"

namespace
{
// Length of the quoted text that `rest` begins with; 1 when nothing closes it.
size_t quotedLength(const std::string &rest)
{
    for (size_t i = 1; i < rest.size(); ++i) {
        if (rest[i] == rest[0] && rest[i - 1] != '\\')
            return i + 1;
    }
    return 1;
}
} // namespace

std::string plainStripComments(const std::string &line, bool bySlash, bool byHash, bool &isOpen)
{
    const bool hashCounts = byHash && line[0] != '#';
    std::string done;
    while (isOpen || done.size() < line.size()) {
        const std::string rest = line.substr(done.size());
        if (isOpen) {
            const size_t end = rest.find("*/");
            if (end == std::string::npos)
                return done + "\n";
            isOpen = false;
            done += std::string(end + 2, ' ');
        } else if (rest[0] == '"' || rest[0] == '\'') {
            done += rest.substr(0, quotedLength(rest));
        } else if (bySlash && rest.substr(0, 2) == "//") {
            return done + "\n";
        } else if (bySlash && rest.substr(0, 2) == "/*") {
            isOpen = true;
            done += "  ";
        } else if (hashCounts && rest[0] == '#' && !done.empty()) {
            return done;
        } else {
            done += rest[0];
        }
    }
    return done;
}
