// The files that a scene's OSL shaders may read: sources, includes, textures
// and dictionaries.
//
// A scene may come from a stranger's palette, so that it gets at little: regular files of
// bounded size, with an ending of their kind, at or below
//
//   - the palette's folder, which is that of the scene's own `picture` statement, or
//   - the folders of the shader path (VELDRIN_ZEL_PATH; those for surfaces, displacements,
//     lights and fog alike).
//
// What counts is where a file really lies, behind all symbolic links. Relative folders of
// the path and the file system's root do not count: nobody can tell what lies below those.
#pragma once

#include <mutex>
#include <string>
#include <vector>

class vk_OslFiles
{
public:
    enum Kind { SOURCE, INCLUDE, TEXTURE, DICTIONARY, KINDS };

    // As the scene's statement names the picture.
    explicit vk_OslFiles(const std::string &picture);

    // A file by the name in a scene or a shader: beside the palette, then along the path.
    // "", and why, when there is none that may be read. The file counts as opened.
    std::string find(Kind kind, const std::string &name, std::string &error);

    // Whether a file may be read; it then counts as opened.
    bool mayRead(Kind kind, const std::string &path);

    // Where find() looks, in order.
    const std::vector<std::string> &folders();

    // All that was opened, each once, in the order of first use.
    std::vector<std::string> opened();

private:
    bool mayReadLocked(Kind kind, const std::string &path, std::string &error);
    void takeFolders();

    std::mutex myMutex;
    std::string myHome;                 // the palette's folder
    std::vector<std::string> myFolders; // as they are named,
    std::vector<std::string> myRoots;   // and where they really lie
    std::vector<std::string> myOpened;
};
