#include "vaskel/osl/vk_OslLibrary.h"

#include "UT/UT_Process.h"
#include "osl/lib/osl_TextFile.h"
#include "vaskel/params/vk_Nearest.h"
#include "vaskel/scene/vk_Scene.h"

#include <cstdio>

namespace
{
constexpr std::size_t MOST_MESSAGES = 5; // of one source that are told
constexpr std::size_t MOST_SAID = 100;   // lines of running shaders

// "file:3: error: text" and "file:3: warning: text" are told as such already.
std::string withoutSeverity(std::string line, const std::string &severity)
{
    const std::size_t at = line.find(severity);
    // What stays of it is the colon and the blank behind a line's number.
    return at == std::string::npos ? line : line.erase(at, severity.size() - 2);
}

std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        if (end > begin)
            lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}
} // namespace

void vk_OslLibrary::open(const vk_Scene &scene)
{
    myScene = &scene;
    // Messages begin with the picture, as all of this program do.
    mySubject = scene.picture;
    UTmakePrintable(mySubject.data(), mySubject.size());
    myFiles = std::make_unique<vk_OslFiles>(scene.picture);
}

OSL_Shader *vk_OslLibrary::shader(const std::string &name, std::vector<std::string> &messages)
{
    // Several statements may use one shader: it is compiled once.
    const bool isNew = myEntries.count(name) == 0;
    // One that failed is kept, too, so that each statement that names it gets its messages.
    Entry &entry = myEntries[name];
    if (isNew)
        compile(name, entry);
    messages = entry.messages;
    return entry.isGood ? &entry.shader : nullptr;
}

void vk_OslLibrary::compile(const std::string &name, Entry &entry)
{
    OSL_CompileOptions options;
    for (const std::string &folder : myFiles->folders())
        // That of the palette may be "", which is where we are.
        options.includePaths.push_back(folder.empty() ? "." : folder);
    options.mayRead = [this](const std::string &path) {
        return myFiles->mayRead(vk_OslFiles::INCLUDE, path);
    };
    // Sources within the scene come before files of their name: the palette is whole by itself.
    const auto source = mySources.find(name);
    if (source != mySources.end()) {
        entry.isGood = entry.shader.compileText(source->second, name, options);
    } else {
        std::string error;
        const std::string path = myFiles->find(vk_OslFiles::SOURCE, name, error);
        if (path.empty()) {
            entry.messages.push_back(error);
            return;
        }
        entry.isGood = entry.shader.compileFile(path, options);
    }
    for (const std::string &line : linesOf(entry.shader.messages())) {
        const std::string warning = withoutSeverity(line, ": warning: ");
        if (warning != line)
            // Said at once, as it does not stop the scene.
            say("warning", warning);
        else if (line[0] != ' ' && entry.messages.size() < MOST_MESSAGES) // no notes
            entry.messages.push_back(withoutSeverity(line, ": error: "));
    }
}

std::shared_ptr<const osl_Texture> vk_OslLibrary::texture(const std::string &name,
                                                          std::string &error)
{
    const std::string path = myFiles->find(vk_OslFiles::TEXTURE, name, error);
    return path.empty() ? nullptr : myTextures.find(path, error);
}

bool vk_OslLibrary::dictionary(const std::string &name, std::string &text)
{
    std::string error;
    const std::string path = myFiles->find(vk_OslFiles::DICTIONARY, name, error);
    if (!path.empty() && osl_readText(path, text))
        return true;
    say("warning", path.empty() ? error : vk_quotedName(name) + " cannot be read");
    return false;
}

void vk_OslLibrary::say(const char *kind, std::string_view text)
{
    // What a shader prints may end its line; what it warns of does not.
    while (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    std::string line(text);
    // Line ends inside as well: what a shader prints must not pass for a message of ours.
    UTmakePrintable(line.data(), line.size());
    line = mySubject + ": " + kind + ": " + line + "\n";
    const std::lock_guard<std::mutex> lock(myMutex);
    // The same line comes for each of a million points.
    if (text.empty() || mySaid.size() > MOST_SAID || !mySaid.insert(line).second)
        return;
    if (mySaid.size() > MOST_SAID)
        // In place of the one that is too many.
        line = mySubject + ": shaders say more than is shown\n";
    std::fputs(line.c_str(), stderr);
}

std::vector<std::string> vk_OslLibrary::opened() const
{
    // Until the scene is whole nothing may be opened.
    return myFiles == nullptr ? std::vector<std::string>() : myFiles->opened();
}
