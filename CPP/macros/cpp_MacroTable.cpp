#include "CPP/cpp_MacroTable.h"

#include "CPP/cpp_Text.h"
#include "UT/UT_StringList.h"

#include <algorithm>
#include <string>
#include <vector>

namespace
{
constexpr size_t MAX_UNDEFINED_NAME = 1024;

// Counted over all tables of the process.
std::string nextIllegalName()
{
    static unsigned ourIllegalNames = 0;
    return "#illegal" + std::to_string(ourIllegalNames++) + "#";
}
} // namespace

// The table knows values as pointers only, and the macros' memory goes with its pages.
cpp_MacroTable::~cpp_MacroTable()
{
    const auto destroyMacro = [](void **value, const char *, void *table) {
        static_cast<cpp_MacroTable *>(table)->destroy(static_cast<cpp_Macro *>(*value));
        return 1;
    };
    myMacros.traverseSymbols(destroyMacro, this);
}

void cpp_MacroTable::destroy(cpp_Macro *macro)
{
    if (macro == nullptr)
        return;
    macro->~cpp_Macro();
    myMemory.release(macro);
}

const cpp_Macro *cpp_MacroTable::findHeld(std::string_view name) const
{
    void *value = nullptr;
    return !name.empty() && myMacros.findSymbol(name.data(), name.size(), &value)
               ? static_cast<cpp_Macro *>(value)
               : nullptr;
}

const char *cpp_MacroTable::store(std::string_view name, cpp_Macro *macro)
{
    void *&slot = myMacros.findOrAddSymbol(name.data(), name.size(), macro->myName);
    // Compared before the old one goes; the name belongs to the table and stays.
    auto *old = static_cast<cpp_Macro *>(slot);
    const bool isOther = old != nullptr && !old->isSameAs(*macro);
    destroy(old);
    slot = macro;
    // Never taken out again: a filter may hold names that are gone.
    myFilter.add(name);
    return isOther ? macro->myName : nullptr;
}

const char *cpp_MacroTable::define(const char *definition, bool commandLineForm)
{
    cpp_Macro *macro = make();
    const std::string_view name = macro->parse(definition, commandLineForm);
    return name.empty() ? store(nextIllegalName(), macro) : store(name, macro);
}

bool cpp_MacroTable::add(std::string_view name, const char *body, const char *end, bool isPadded)
{
    const char *key;
    void *&slot = myMacros.findOrAddSymbol(name.data(), name.size(), key);
    // Whether that differs, and is told, is for define() to see.
    if (slot != nullptr)
        return false;
    cpp_Macro *macro = make();
    macro->parseBody(body, end, isPadded);
    macro->myName = key;
    slot = macro;
    myFilter.add(name);
    return true;
}

void cpp_MacroTable::defineBuiltin(const char *name, cpp_Macro::Builtin builtin)
{
    cpp_Macro *macro = make();
    macro->myBuiltin = builtin;
    store(name, macro);
}

void cpp_MacroTable::undefine(const char *text)
{
    const char *begin = skipSpace(text);
    const char *end = begin;
    while (*end != '\0' && !UTisSpace(*end))
        ++end;
    const auto length = std::min(static_cast<size_t>(end - begin), MAX_UNDEFINED_NAME);
    const std::string name(begin, length);
    void *macro = nullptr;
    if (myMacros.findSymbol(name.c_str(), &macro))
        myMacros.deleteSymbol(name.c_str());
    destroy(static_cast<cpp_Macro *>(macro));
}

// Sorted, since the table's own order changes with its size.
void cpp_MacroTable::list(UT_StringList &lines)
{
    std::vector<std::string> found;
    const auto collect = [](void **value, const char *name, void *data) {
        const auto *macro = static_cast<const cpp_Macro *>(*value);
        if (macro->myBuiltin == cpp_Macro::NONE && UTisNameStart(*name))
            static_cast<std::vector<std::string> *>(data)->push_back(macro->toDefinition());
        return 1;
    };
    myMacros.traverseSymbols(collect, &found);
    std::sort(found.begin(), found.end());
    for (const std::string &line : found)
        lines.append(line.c_str());
}
