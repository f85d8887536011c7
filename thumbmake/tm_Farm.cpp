#include "thumbmake/tm_Farm.h"

#include "thumbmake/tm_Job.h"
#include "thumbmake/tm_Options.h"
#include "thumbmake/tm_Recipe.h"
#include "thumbmake/tm_Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>

#include <sys/wait.h>
#include <unistd.h>

namespace
{
// A task costs a scheduler about as much as a picture costs vaskel; small jobs still get
// several machines.
constexpr size_t PICTURES_A_TASK = 100;
constexpr size_t TASKS_OF_SMALL_JOBS = 16;

size_t taskCount(size_t pictures)
{
    const size_t large = (pictures + PICTURES_A_TASK - 1) / PICTURES_A_TASK;
    return std::max({size_t{1}, large, std::min(pictures, TASKS_OF_SMALL_JOBS)});
}

// How an engine wants to be told. {tasks}, {task}, {list}, {folder} and {thumbmake} stand
// for what they say; `each` comes once for every task.
struct Engine {
    const char *name;
    const char *head, *each, *tail;
};
const Engine ENGINES[] = {
    // https://slurm.schedmd.com/sbatch.html
    {"slurm",
     "#!/bin/sh\n"
     "#SBATCH --job-name=thumbmake\n"
     "#SBATCH --array=1-{tasks}\n"
     "#SBATCH --requeue\n"
     "exec \"{thumbmake}\" --chunk \"$SLURM_ARRAY_TASK_ID/{tasks}\" \"{list}\"\n",
     "", ""},
    // OpenCue's job specification, for `pycuerun` or the launch call of its API.
    {"opencue",
     "<?xml version=\"1.0\"?>\n"
     "<!DOCTYPE spec PUBLIC \"SPI Cue Specification Language\" "
     "\"http://localhost:8080/spcue/dtd/cjsl-1.12.dtd\">\n"
     "<spec>\n  <facility>local</facility>\n  <show>testing</show>\n  <shot>thumbmake</shot>\n"
     "  <user>{user}</user>\n  <uid>{uid}</uid>\n  <job name=\"thumbmake\">\n    <layers>\n"
     "      <layer name=\"pictures\" type=\"Render\">\n"
     "        <cmd>\"{thumbmake}\" --chunk #IFRAME#/{tasks} \"{list}\"</cmd>\n"
     "        <range>1-{tasks}</range>\n        <chunk>1</chunk>\n      </layer>\n"
     "    </layers>\n  </job>\n</spec>\n",
     "", ""},
    // For `tractor-spool`.
    {"tractor", "Job -title {thumbmake} -serialsubtasks 0 -subtasks {\n",
     "    Task {part {task}} -cmds {\n"
     "        RemoteCmd {\"{thumbmake}\" --chunk {task}/{tasks} \"{list}\"}\n    }\n",
     "}\n"},
    // The two files of `deadlinecommand job.info plugin.info`.
    {"deadline",
     "# job.info\nPlugin=CommandLine\nName=thumbmake\nFrames=1-{tasks}\nChunkSize=1\n"
     "# plugin.info\nExecutable={thumbmake}\n"
     "Arguments=--chunk <STARTFRAME>/{tasks} <QUOTE>{list}<QUOTE>\n",
     "", ""},
    // https://github.com/OpenJobDescription/openjd-specifications
    {"openjd",
     "specificationVersion: jobtemplate-2023-09\nname: thumbmake\nsteps:\n- name: Pictures\n"
     "  parameterSpace:\n    taskParameterDefinitions:\n"
     "    - name: Part\n      type: INT\n      range: \"1-{tasks}\"\n"
     "  script:\n    actions:\n      onRun:\n        command: \"{thumbmake}\"\n"
     "        args: [\"--chunk\", \"{{Task.Param.Part}}/{tasks}\", \"{list}\"]\n",
     "", ""},
    // GNU parallel on machines without an engine; add --sshlogin for others than this one.
    {"parallel", "seq {tasks} | parallel -q \"{thumbmake}\" --chunk \"{}/{tasks}\" \"{list}\"\n",
     "", ""},
};

const Engine *findEngine(const std::string &name)
{
    const auto *const found = std::find_if(std::begin(ENGINES), std::end(ENGINES),
                                           [&](const Engine &e) { return name == e.name; });
    return found != std::end(ENGINES) ? found : nullptr;
}

void replaceAll(std::string &text, const std::string &from, const std::string &to)
{
    for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
        text.replace(at, from.size(), to);
}

// No form quotes in the same way, so paths may hold only what needs no quotes in any.
bool isPlain(const std::string &path)
{
    return std::all_of(path.begin(), path.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("/._+=,@%~ -", c);
    });
}

std::string jobText(const Engine &engine, const std::string &list, size_t tasks)
{
    std::string text = engine.head;
    for (size_t task = 1; *engine.each != '\0' && task <= tasks; ++task) {
        std::string each = engine.each;
        replaceAll(each, "{task}", std::to_string(task));
        text += each;
    }
    text += engine.tail;
    replaceAll(text, "{tasks}", std::to_string(tasks));
    replaceAll(text, "{list}", list);
    replaceAll(text, "{thumbmake}", tm_findProgram("thumbmake"));
    replaceAll(text, "{uid}", std::to_string(geteuid()));
    const char *const user = getenv("USER");
    replaceAll(text, "{user}", user != nullptr && isPlain(user) ? user : "unknown");
    return text;
}

// Slurm's messages pass through. With --wait its status is that of the worst task, which
// says no more than that something is left to do here.
int runSbatch(const tm_Options &options, const std::string &folder, const std::string &script)
{
    const std::string log = "--output=" + folder + "/%a.log";
    std::vector<const char *> words = {"sbatch", log.c_str()};
    if (options.waits)
        words.push_back("--wait");
    words.insert(words.end(), {script.c_str(), nullptr});
    const pid_t child = fork();
    if (child == 0) {
        execvp(words[0], const_cast<char *const *>(words.data()));
        tm_fail(std::string("cannot start sbatch: ") + std::strerror(errno));
        _exit(127);
    }
    int status = 0;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    if (child < 0 || (WIFEXITED(status) && WEXITSTATUS(status) == 127))
        return 1;
    return options.waits ? 0 : static_cast<int>(status != 0);
}

bool parseItem(const std::string &line, tm_Item &item)
{
    const std::vector<std::string> words = tm_split(line, '\t');
    if (words.size() != 4)
        return false;
    item = {words[0], words[1], words[2], words[3]};
    return true;
}
} // namespace

bool tm_isEngine(const std::string &name)
{
    return findEngine(name) != nullptr;
}

std::string tm_engineNames()
{
    std::string names;
    for (const Engine &engine : ENGINES)
        (names += names.empty() ? "" : ", ") += engine.name;
    return names;
}

bool tm_writeList(const std::string &cache, const std::string &recipeFile,
                  const std::vector<tm_Item> &items, std::string &list)
{
    std::string text = recipeFile + "\n";
    for (const tm_Item &item : items)
        text += item.name + "\t" + item.palette + "\t" + item.picture + "\t" + item.stamp + "\n";
    list = cache + "/lists/" + tm_hex(tm_hash(text)) + "/list";
    return tm_writeFile(list, text);
}

int tm_submit(const tm_Options &options, const std::string &list, size_t pictures)
{
    const Engine &engine = *findEngine(options.submit);
    if (!isPlain(list) || !isPlain(tm_findProgram("thumbmake")))
        return tm_fail("a path that no engine's form can hold: " + list);
    const std::string text = jobText(engine, list, taskCount(pictures));
    if (options.submit != "slurm")
        return tm_print(text);
    const std::string folder = list.substr(0, list.rfind('/'));
    if (!tm_writeFile(folder + "/job.sh", text))
        return tm_fail("cannot write " + folder + "/job.sh: " + std::strerror(errno));
    return runSbatch(options, folder, folder + "/job.sh");
}

int tm_makeChunk(const tm_Options &options)
{
    std::string text, recipeText;
    if (!tm_readFile(options.inputs[0], text))
        return tm_fail("cannot read " + options.inputs[0] + ": " + std::strerror(errno));
    if (text.empty() || text.back() != '\n')
        return tm_fail(options.inputs[0] + " is not whole");
    text.pop_back();
    const std::vector<std::string> lines = tm_split(text, '\n');
    tm_Recipe recipe;
    if (!tm_readFile(lines[0], recipeText) || !tm_parseRecipe(recipeText, recipe))
        return tm_fail("no recipe for " + options.inputs[0]);
    if (tm_fingerprint() != recipe.fingerprint)
        return tm_fail("programs, templates or settings here are not those that wrote " +
                       options.inputs[0]);
    int status = 0;
    const auto parts = static_cast<size_t>(options.chunkCount);
    for (size_t i = static_cast<size_t>(options.chunk); i < lines.size(); i += parts) {
        tm_Item item;
        if (!parseItem(lines[i], item))
            return tm_fail("no list for --chunk: " + options.inputs[0]);
        const tm_Result result = tm_makeFarmPicture(item, recipe, lines[0]);
        if (result.isGood)
            continue;
        std::fprintf(stderr, "%s\n", tm_printable(item.name + ": " + result.said).c_str());
        status = 1;
    }
    return status;
}
