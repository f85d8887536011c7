#include "UT/UT_Error.h"

#include "UT/UT_PathSearch.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

TEST(Error, ReadsAsItsTableHasItBehindItsSeverity)
{
    UT_PathSearch::getInstance(UT_VELDRIN_PATH).addDirectory(TEST_DATA "/data");
    const auto message = [](bool withPrefix) {
        return [withPrefix](const char *in) {
            const std::vector<std::string> words = plainSplitWords(in);
            const std::string table = words[0] == "/" ? TEST_DATA "/data/error/Table" : words[0];
            const UT_Error error(table.c_str(), std::stoi(words[1]), "a%s", std::stoi(words[2]));
            UT_String out;
            error.getErrorMessage(out, std::stoi(words[3]), withPrefix);
            out.replaceText(TEST_DATA "/data/error/Table", "/", false);
            return out.toStdString();
        };
    };
    expectTable(TEST_DATA "/data/messages",
                {{"plain", message(false)}, {"with prefix", message(true)}});
}
