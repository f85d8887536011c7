#include "tests/support/PlainScanner.h"
#include "tests/support/PlainText.h"

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
            const std::string quoted = PlainScanner{rest}.take("(['\"])(.*?[^\\\\])??\\1");
            done += quoted.empty() ? rest.substr(0, 1) : quoted;
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
