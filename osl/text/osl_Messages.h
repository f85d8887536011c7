// What the compiler has to say about a source: errors and warnings, in the order of
// their discovery, each with its file and line.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Where something stands in the source: the number of a file and a line from 1.
struct osl_Place {
    int file = 0;
    int line = 0;
};

class osl_Messages
{
public:
    // The number of a file's name; the same name has the same number.
    int fileNumber(std::string_view name);
    const std::string &fileName(int number) const { return myFiles[static_cast<size_t>(number)]; }
    int files() const { return static_cast<int>(myFiles.size()); }
    // The name without its folders.
    std::string_view baseName(int number) const;

    void error(osl_Place place, std::string_view text);
    void warning(osl_Place place, std::string_view text);

    // No warnings about this line.
    void ignoreWarnings(osl_Place place) { myQuietLines.insert({place.file, place.line}); }

    // True once enough errors are known: the compiler then gives up.
    bool isFull() const { return myErrors >= MAX_ERRORS; }
    int errors() const { return myErrors; }

    // All of it, "file:line: error: text" and a newline each.
    const std::string &text() const { return myText; }

private:
    static constexpr int MAX_ERRORS = 200;

    void append(osl_Place place, const char *severity, std::string_view text);

    std::vector<std::string> myFiles;
    std::set<std::pair<int, int>> myQuietLines;
    std::string myText;
    int myErrors = 0;
    int myWarnings = 0;
};
