#include "vcpp/vcpp_Dependencies.h"

#include "UT/UT_MakeRule.h"
#include "vcpp/vcpp_Options.h"

namespace
{
// "folder/name.x" gives "name", or keeps the folder.
std::string stemOf(const std::string &name, bool keepsFolder)
{
    const size_t base = name.rfind('/') + 1; // npos + 1 is 0
    const size_t dot = name.rfind('.');
    const size_t end = dot != name.npos && dot > base ? dot : name.size();
    return keepsFolder ? name.substr(0, end) : name.substr(base, end - base);
}

bool hasOutputFile(const vcpp_Options &options)
{
    return options.print != vcpp_Options::RULE && !options.output.empty() && options.output != "-";
}

std::string inputOf(const vcpp_Options &options)
{
    return options.files.empty() ? "-" : options.files[0];
}

std::string defaultTarget(const vcpp_Options &options)
{
    if (hasOutputFile(options))
        return options.output;
    const std::string input = inputOf(options);
    return input == "-" ? input : stemOf(input, false) + ".o";
}

std::string targetsOf(const vcpp_Options &options)
{
    if (options.targets.empty())
        return UTquoteForMake(defaultTarget(options));
    std::string all;
    for (const std::string &target : options.targets)
        (all += all.empty() ? "" : " ") += target;
    return all;
}
} // namespace

std::string vcpp_makeRule(const vcpp_Options &options, const std::vector<std::string> &files)
{
    std::string rule = UTmakeRule(targetsOf(options), files);
    for (const std::string &file : files)
        if (options.hasPhony && file != inputOf(options))
            rule += UTquoteForMake(file) + ":\n";
    return rule;
}

std::string vcpp_ruleFile(const vcpp_Options &options)
{
    if (!options.ruleFile.empty())
        return options.ruleFile;
    const bool isBesideOutput = hasOutputFile(options);
    return stemOf(isBesideOutput ? options.output : inputOf(options), isBesideOutput) + ".d";
}
