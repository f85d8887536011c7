// Runs text through the preprocessor, the way tests want to see it.
#pragma once

#include "CPP/CPP_Manager.h"
#include "UT/UT_WordList.h"
#include "tests/support/PlainReader.h"
#include "tests/support/PlainText.h"

#include <string>

// The remaining output lines, joined.
inline std::string allLines(CPP_Manager &manager)
{
    std::string all;
    UT_String line;
    while (manager.getLine(line))
        all += line.text();
    return all;
}

// The same, in the pieces that getLines() gives.
inline std::string allPieces(CPP_Manager &manager)
{
    std::string all;
    const char *text;
    int length;
    while (manager.getLines(text, length))
        all.append(text, static_cast<size_t>(length));
    return all;
}

// Options as on a command line, with quotes as in UT_String::splitWords.
inline int parseOptions(CPP_Manager &manager, const std::string &options)
{
    UT_String line(("vcpp " + options).c_str(), true);
    UT_WordList words;
    const int count = line.splitWords(words);
    return manager.parseOptions(count, words.getArgv());
}

// The whole output for a file called "in" that holds `text`.
inline std::string preprocessed(const std::string &options, const std::string &text)
{
    CPP_Manager manager;
    parseOptions(manager, options);
    UT_IStream in = streamOver(text);
    if (!manager.openStream(&in, "in"))
        return "cannot open the stream";
    return allLines(manager);
}
