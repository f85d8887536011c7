#include "tests/support/ScratchDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

ScratchDirectory::ScratchDirectory()
{
    std::string pattern = (fs::temp_directory_path() / "veldrin-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        std::abort();
    // The real path: tests compare it with what programs print.
    myPath = fs::canonical(pattern).string();
}

ScratchDirectory::~ScratchDirectory()
{
    std::error_code ignored;
    fs::remove_all(myPath, ignored);
}

std::string ScratchDirectory::write(const std::string &name, const std::string &contents) const
{
    const std::string file = path(name);
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << contents;
    return file;
}

std::string ScratchDirectory::makeDirectory(const std::string &name) const
{
    fs::create_directories(path(name));
    return path(name);
}

std::string fileContents(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}
