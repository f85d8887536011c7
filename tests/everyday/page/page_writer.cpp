// Writes the page of a folder for a test: page_writer FOLDER < ENTRIES, where an entry is a
// palette, its picture and its message, each ended by a NUL.
#include "thumbmake/tm_Page.h"

#include <iostream>

int main(int argc, char *argv[])
{
    std::vector<tm_PageEntry> entries;
    tm_PageEntry entry;
    while (std::getline(std::cin, entry.palette, '\0') &&
           std::getline(std::cin, entry.picture, '\0') &&
           std::getline(std::cin, entry.message, '\0'))
        entries.push_back(entry);
    std::string error;
    if (argc == 2 && tm_writePage(argv[1], entries, error))
        return 0;
    std::cerr << "page_writer: " << error << '\n';
    return 1;
}
