// The macros by their names: what #define and #undef change, and every other stage asks.
#pragma once

#include "CPP/cpp_Macro.h"
#include "CPP/cpp_NameFilter.h"
#include "UT/UT_FixedAllocator.h"
#include "UT/UT_SymbolTable.h"

#include <new>
#include <string_view>

class UT_StringList;

class cpp_MacroTable
{
public:
    cpp_MacroTable() = default;
    ~cpp_MacroTable();
    cpp_MacroTable(const cpp_MacroTable &) = delete;
    cpp_MacroTable &operator=(const cpp_MacroTable &) = delete;

    // Null when there is none of that name. It lives until it is defined again or removed.
    const cpp_Macro *find(std::string_view name) const
    {
        return myFilter.mayHold(name) ? findHeld(name) : nullptr;
    }
    bool holds(std::string_view name) const { return find(name) != nullptr; }

    // Stores a definition as cpp_Macro::parse reads it, in place of a macro of that name.
    // A bad name makes a macro under a name that no text can refer to. Returns the name
    // when the macro that had it was another one, else null.
    const char *define(const char *definition, bool commandLineForm);
    void defineBuiltin(const char *name, cpp_Macro::Builtin builtin);

    // Adds a macro without parameters from what stands behind its name, with further blanks
    // at the end if it `isPadded`. False, and no change, when there is one of that name.
    // REQUIRES: the name is a good one
    bool add(std::string_view name, const char *body, const char *end, bool isPadded);

    // Removes the macro that the text's first word names, if there is one.
    void undefine(const char *text);

    // Appends each macro's definition, if it is not built in, in order.
    void list(UT_StringList &lines);

private:
    const cpp_Macro *findHeld(std::string_view name) const;
    cpp_Macro *make() { return new (myMemory.allocate()) cpp_Macro; }
    void destroy(cpp_Macro *macro); // null is none
    const char *store(std::string_view name, cpp_Macro *macro);

    UT_FixedAllocator myMemory{sizeof(cpp_Macro), false, 512};
    UT_SymbolTable myMacros; // values are cpp_Macro from there
    cpp_NameFilter myFilter; // of all names that myMacros ever held
};
