// Making one picture: what ninja and a farm's task run.
//
// thumbrender says on standard error what is wrong, and its status tells nothing, so a
// picture counts as made when a new file has taken its place.
//
// Beside an item's stamp lie
//
//     STAMP          for ninja; as old as the picture is known to be good
//     STAMP.d        what the picture was made of, a rule for make that ninja reads; a file
//                    whose name ninja cannot read stands there as a link to it in names/
//     STAMP.failed   why there is no good picture, while there is none
//     STAMP.farm     a farm made the picture: the recipe's name, then the rule
#pragma once

#include "thumbmake/tm_Library.h"
#include "thumbmake/tm_Recipe.h"

#include <string>

struct tm_Result {
    bool isGood = false;
    std::string said; // of a bad one: why, a line; of a good one what it had to say
};

// Makes the picture, or takes over what a farm made with this recipe and what is not older
// than its sources.
tm_Result tm_makePicture(const tm_Item &item, const tm_Recipe &recipe,
                         const std::string &recipeName);

// The same on a farm, where nobody knows ninja's log: leaves STAMP.farm, and does nothing
// when an earlier task left it.
tm_Result tm_makeFarmPicture(const tm_Item &item, const tm_Recipe &recipe,
                             const std::string &recipeName);

// Whether the picture is older than its palette or than what it was made of, as far as that is
// known: then it does not show what its palette is now.
bool tm_isOutdated(const tm_Item &item);

// Why the item's picture is no good one; empty when nothing is known.
std::string tm_failure(const tm_Item &item);
