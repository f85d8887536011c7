#include "osl/code/osl_Masks.h"

#include "osl/code/osl_OpClass.h"

osl_Masks::osl_Masks(const osl_Made &made, const osl_Registers &registers)
    : myMade(made), myRegisters(registers), myReturns(made.tree.size())
{
    for (int root = 0; root < registers.count(); ++root) {
        const Register &variable = registers[root];
        const bool isOwn = variable.kind == osl_Registers::VARIABLE && variable.parent < 0 &&
                           variable.firstUse >= 0 && !variable.isKept;
        const int where = isOwn ? home(variable) : -1;
        myHomes.push_back(isOwn && isBornWhole(root, where) ? where : -1);
    }
    findReturns();
}

void osl_Masks::findReturns()
{
    std::vector<size_t> steps(myMade.tree.size());
    for (size_t i = 0; i < myMade.instructions.size(); ++i) {
        if (myMade.instructions[i].op == OSL_LOOP_STEP)
            steps[static_cast<size_t>(myMade.regions[i])] = i;
    }
    for (size_t i = 0; i < myMade.instructions.size(); ++i) {
        if (myMade.instructions[i].op != OSL_CONTINUE)
            continue;
        int loop = myMade.regions[i];
        while (region(loop).kind != osl_Region::LOOP)
            loop = region(loop).parent;
        myReturns[static_cast<size_t>(loop)] = steps[static_cast<size_t>(loop)];
    }
}

int osl_Masks::home(const Register &made) const
{
    int at = myMade.regions[static_cast<size_t>(made.firstUse)];
    while (region(at).parent >= 0 && made.lastUse > region(at).last)
        at = region(at).parent;
    return at;
}

bool osl_Masks::isBornWhole(int root, int home) const
{
    const auto first = static_cast<size_t>(myRegisters[root].firstUse);
    const osl_Instruction &in = myMade.instructions[first];
    const int *arguments = &myMade.arguments[static_cast<size_t>(in.first)];
    if (myMade.regions[first] != home || arguments[0] != root || !osl_hasOneResult(in.op))
        return false;
    for (int i = 1; i < in.count; ++i) {
        if (arguments[i] >= 0 && myRegisters.root(arguments[i]) == root)
            return false;
    }
    return true;
}

// Whether lanes that are off in the loop do not see the variable again.
bool osl_Masks::endsIn(int loop, size_t instruction, int root) const
{
    if (myRegisters[root].lastUse > region(loop).last ||
        instruction < myReturns[static_cast<size_t>(loop)])
        return false;
    const int home = myHomes[static_cast<size_t>(root)];
    for (int at = region(loop).parent; at != home; at = region(at).parent) {
        if (region(at).kind == osl_Region::LOOP)
            return false;
    }
    return true;
}

bool osl_Masks::isNeeded(size_t instruction) const
{
    const osl_Instruction &in = myMade.instructions[instruction];
    const int root = myRegisters.root(myMade.arguments[static_cast<size_t>(in.first)]);
    const int home = myHomes[static_cast<size_t>(root)];
    for (int at = myMade.regions[instruction]; at != home; at = region(at).parent) {
        if (home >= 0 && region(at).kind == osl_Region::LOOP && endsIn(at, instruction, root))
            return false;
        if (region(at).isVarying)
            return true;
    }
    return home >= 0 && isSeenByReturning(home, instruction, root);
}

// Whether lanes that `continue` has taken away from a write are on again at a later use.
bool osl_Masks::isSeenByReturning(int home, size_t instruction, int root) const
{
    const size_t back = myReturns[static_cast<size_t>(home)]; // 0 but in loops
    return region(home).isVarying && instruction < back &&
           static_cast<size_t>(myRegisters[root].lastUse) >= back;
}
