// thumbmake: keeps the pictures of a library of palettes up to date.
#include "UT/UT_Environment.h"
#include "UT/UT_Installation.h"
#include "UT/UT_Process.h"
#include "thumbmake/tm_Cache.h"
#include "thumbmake/tm_Farm.h"
#include "thumbmake/tm_Job.h"
#include "thumbmake/tm_Ninja.h"
#include "thumbmake/tm_Options.h"
#include "thumbmake/tm_Page.h"
#include "thumbmake/tm_Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <thread>

#include <unistd.h>

namespace
{
enum Status { OK = 0, FAILED = 1, BAD_USAGE = 2 };

// What is said goes to ninja behind tabs, which tells it from the rest of its lines. The name
// that people know is no part of the command, which ninja remembers.
int runJob(const std::vector<std::string> &words)
{
    // The cache's lock is thumbmake's and ninja's: a job that outlives them hinders nobody.
    close_range(STDERR_FILENO + 1, ~0U, 0);
    tm_Recipe recipe;
    std::string text;
    if (words.size() != 5)
        return tm_fail("--job is for ninja");
    const tm_Item item = {"", words[1], words[3], words[2]};
    const bool hasRecipe = tm_readFile(words[0], text) && tm_parseRecipe(text, recipe);
    const tm_Result result = hasRecipe ? tm_makePicture(item, recipe, words[0])
                                       : tm_Result{false, "cannot read " + words[0]};
    for (const std::string &line : tm_split(result.said, '\n'))
        if (!line.empty())
            std::printf("\t%s\n", line.c_str());
    return result.isGood ? OK : FAILED;
}

// Many pictures keep all processors busy by themselves.
void shareProcessors(const tm_Options &options, size_t pictures)
{
    if (pictures >= static_cast<size_t>(options.jobs))
        setenv("VELDRIN_MAXTHREADS", "1", 0);
}

class Make
{
public:
    explicit Make(const tm_Options &options) : myOptions(options) {}

    int run()
    {
        std::error_code gone; // every relative path needs it, the jobs' shells too
        const std::string here = std::filesystem::current_path(gone);
        if (gone)
            return tm_fail("the working folder: " + gone.message());
        // Told before the pictures take their time.
        if (!myOptions.page.empty() && !std::filesystem::is_directory(myOptions.page, gone))
            return tm_fail(myOptions.page + ": no folder for the page");
        if (!myCache.open())
            return tm_fail(myCache.error());
        myLibrary = tm_findPalettes(myOptions, here, myCache.folder());
        say(myLibrary.problems);
        if (!myOptions.isQuiet)
            say(myLibrary.warnings);
        const std::string recipe = tm_recipeText(tm_makeRecipe(myOptions));
        myRecipeFile = myCache.folder() + "/recipes/" + tm_hex(tm_hash(recipe));
        if (!tm_writeFile(myRecipeFile, recipe) ||
            !tm_writeGraph(myCache.folder(), myRecipeFile, myLibrary, myOptions))
            return tm_fail("cannot write to " + myCache.folder() + ": " + std::strerror(errno));
        shareProcessors(myOptions, myLibrary.items.size());
        const int status = myOptions.isDryRun         ? ask()
                           : myOptions.submit.empty() ? make()
                                                      : submit();
        return std::max(status, writePage());
    }

private:
    static void say(const std::vector<std::string> &lines)
    {
        for (const std::string &line : lines)
            std::fprintf(stderr, "%s\n", line.c_str());
    }

    bool hasProblems() const { return !myLibrary.problems.empty(); }

    int ask()
    {
        std::vector<std::string> names;
        const tm_Outcome outcome = tm_askNinja(myCache.folder(), names);
        if (!outcome.error.empty())
            return tm_fail("ninja: " + outcome.error);
        if (myOptions.isForced) {
            names.clear();
            for (const tm_Item &item : myLibrary.items)
                names.push_back(item.name);
        }
        if (myOptions.isQuiet)
            return hasProblems() ? FAILED : OK;
        for (const std::string &name : names)
            std::printf("%s\n", tm_printable(name).c_str());
        const auto all = static_cast<long>(myLibrary.items.size());
        const auto count = static_cast<long>(names.size());
        const int status =
            tm_print(tm_grouped(count) + " to make, " + tm_grouped(all - count) + " up to date\n");
        return hasProblems() ? FAILED : status;
    }

    int make()
    {
        const tm_Outcome outcome = tm_runNinja(myCache.folder(), myOptions);
        if (!outcome.error.empty())
            return tm_fail("ninja: " + outcome.error);
        const auto failed = static_cast<long>(outcome.failures.size() + myLibrary.problems.size());
        if (myOptions.deletesOnError)
            deletePictures();
        const long rest = static_cast<long>(myLibrary.items.size()) - outcome.made -
                          static_cast<long>(outcome.failures.size());
        const bool isWhole = !outcome.wasInterrupted &&
                             (myOptions.failures == 0 ||
                              outcome.failures.size() < static_cast<size_t>(myOptions.failures));
        const std::string summary = tm_grouped(outcome.made) + " made, " + tm_grouped(failed) +
                                    " failed, " + tm_grouped(rest) +
                                    (isWhole ? " up to date\n" : " up to date or not begun\n");
        const int status = myOptions.isQuiet ? static_cast<int>(OK) : tm_print(summary);
        return failed > 0 || outcome.wasInterrupted ? static_cast<int>(FAILED) : status;
    }

    void deletePictures() const
    {
        for (const tm_Item &item : myLibrary.items)
            if (!tm_failure(item).empty() && tm_isOutdated(item))
                unlink(item.picture.c_str());
    }

    int submit()
    {
        std::vector<std::string> names;
        const tm_Outcome outcome = tm_askNinja(myCache.folder(), names);
        if (!outcome.error.empty())
            return tm_fail("ninja: " + outcome.error);
        const std::set<std::string> wanted(names.begin(), names.end());
        std::vector<tm_Item> items;
        for (const tm_Item &item : myLibrary.items)
            if (wanted.count(item.name) != 0)
                items.push_back(item);
        std::string list;
        if (!tm_writeList(myCache.folder(), myRecipeFile, items, list))
            return tm_fail("cannot write " + list + ": " + std::strerror(errno));
        if (items.empty() && !myOptions.isQuiet && !myOptions.waits)
            std::fprintf(stderr, "nothing to submit, %s up to date\n",
                         tm_grouped(static_cast<long>(myLibrary.items.size())).c_str());
        const int status = items.empty() ? OK : tm_submit(myOptions, list, items.size());
        if (status == OK && myOptions.waits)
            return make();
        return hasProblems() ? FAILED : status;
    }

    int writePage()
    {
        if (myOptions.page.empty())
            return OK;
        std::vector<tm_PageEntry> entries;
        for (const tm_Item &item : myLibrary.items)
            entries.push_back({item.palette, item.picture, tm_failure(item)});
        std::string error;
        return tm_writePage(myOptions.page, entries, error) ? OK : tm_fail(error);
    }

    const tm_Options &myOptions;
    tm_Cache myCache;
    tm_Library myLibrary;
    std::string myRecipeFile;
};
} // namespace

int main(int argc, char *argv[])
{
    UTstartProgram();
    UTuseInstalledData();
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (!words.empty() && words[0] == "--job")
        return runJob({words.begin() + 1, words.end()});
    tm_Options options;
    std::string error;
    if (!tm_parseOptions(words, options, error)) {
        static_cast<void>(tm_fail(error + " (thumbmake --help tells more)"));
        return BAD_USAGE;
    }
    if (options.wantsHelp)
        return tm_print(tm_usage());
    if (options.wantsVersion)
        return tm_print("thumbmake 1.0\n");
    if (options.jobs == 0)
        options.jobs = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    return options.chunk > 0 ? tm_makeChunk(options) : Make(options).run();
}
