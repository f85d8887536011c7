// Any pattern lists folders, each with its short form, the same when built again; one
// in which nothing is expanded lists those that a plain reading finds.
#include "UT/UT_PathSearch.h"

#include "fuzz/fuzz.h"
#include "tests/support/PlainText.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/ScratchDirectory.h"

// The pattern is its own default, too.
static std::string plainFolders(const std::string &pattern, bool isDefault)
{
    std::string all;
    for (size_t at = 0, end; at < pattern.size(); at = end + 1) {
        end = std::min(pattern.find_first_of(";:", at), pattern.size());
        std::string folder = pattern.substr(at, end - at);
        if (folder == "&" && !isDefault) {
            all += plainFolders(pattern, true);
            continue;
        }
        while (folder.size() > 1 && folder.back() == '/')
            folder.pop_back();
        for (const auto &[mark, value] : {std::pair('^', "class"), std::pair('=', "vip")})
            if (const size_t found = folder.find(mark); found != folder.npos)
                folder.replace(found, 1, value);
        all += folder.empty() ? "" : folder + '|';
    }
    return all;
}

void fuzz(const std::string &bytes)
{
    static const ScratchDirectory scratch;
    static const ScopedVariable home("HOME", scratch.path().c_str()), vip("VIP", "vip");
    const std::string pattern = bytes.c_str();
    UT_PathSearch path(pattern.c_str(), -1, "class", -1);
    const std::string folders = shown(path.getAllDirs());
    fuzzExpectEqual(path.getAllDirs().entries(), path.getAbbreviatedDirs().entries());
    if (pattern.find_first_of("$~'\\") == pattern.npos)
        fuzzExpectEqual(plainFolders(pattern, false), folders);
    path.rebuild();
    fuzzExpectEqual(folders, shown(path.getAllDirs()));
}
