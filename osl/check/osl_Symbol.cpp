#include "osl/check/osl_Symbol.h"

std::string osl_Function::parameterList() const
{
    std::string text;
    for (const Parameter &parameter : parameters) {
        text += text.empty() ? "" : ", ";
        text += parameter.isAny ? "<any>" : parameter.type.name();
    }
    if (tail != NO_MORE)
        text += text.empty() ? "..." : ", ...";
    return text;
}

osl_Symbol *osl_Symbols::find(std::string_view name) const
{
    const auto found = myNames.find(name);
    return found == myNames.end() ? nullptr : found->second;
}

osl_Symbol *osl_Symbols::findInScope(std::string_view name) const
{
    osl_Symbol *symbol = find(name);
    return symbol != nullptr && symbol->scope == scope() ? symbol : nullptr;
}

osl_Symbol *osl_Symbols::declare(std::string_view name, osl_Symbol::Kind kind, const osl_Type &type)
{
    mySymbols.emplace_back();
    osl_Symbol *symbol = &mySymbols.back();
    symbol->name = name;
    symbol->kind = kind;
    symbol->type = type;
    symbol->scope = scope();
    symbol->number = count() - 1;
    osl_Symbol *&entry = myNames[name];
    if (!myScopes.empty())
        myScopes.back().emplace_back(name, entry);
    entry = symbol;
    return symbol;
}

void osl_Symbols::closeScope()
{
    auto &names = myScopes.back();
    for (auto name = names.rbegin(); name != names.rend(); ++name)
        myNames[name->first] = name->second;
    myScopes.pop_back();
}
