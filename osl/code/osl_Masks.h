// Which results must stay as they are where a lane is off.
//
// A lane that is off may be given any value as long as nobody reads it there: its kernel
// computes all lanes anyway, and putting old values back costs more than most operations.
// The home of a variable is the innermost region with all its uses. When its first use
// writes all of it, in its home itself, then lanes that are off there never see what was
// written meanwhile: they come on again only in front of that first write, or where
// `continue` goes on, when the home is a loop. What counts besides that are the regions
// inside the home: their lanes come on again behind them. Of these, a
// loop behind whose end the variable is not used counts neither, unless another one
// around it brings back what was used in front of it, or `continue` brings lanes back.
#pragma once

#include "osl/code/osl_Generator.h"

class osl_Masks
{
public:
    // REQUIRES: the registers know their first and last use, not yet drawn over loops
    osl_Masks(const osl_Made &made, const osl_Registers &registers);

    // Of the result of an instruction, which is a register. Never turns back to false
    // while more and more regions vary.
    bool isNeeded(size_t instruction) const;

private:
    using Register = osl_Registers::Register;

    void findReturns();
    int home(const Register &made) const;
    bool isBornWhole(int root, int home) const;
    bool endsIn(int loop, size_t instruction, int root) const;
    bool isSeenByReturning(int home, size_t instruction, int root) const;
    const osl_Region &region(int number) const { return myMade.tree[static_cast<size_t>(number)]; }

    const osl_Made &myMade;
    const osl_Registers &myRegisters;
    std::vector<int> myHomes;      // of the registers; -1 where all that counts is the mask
    std::vector<size_t> myReturns; // of the regions: where `continue` brings lanes back
};
