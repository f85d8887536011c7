// The argument vector that tells the preprocessor about one render job.
//
// Laid out like main's argv, each entry one word whatever it holds:
//
//     thumbrender -x -DOUTPUT_PICTURE="name" [-DSHADER_PATH="path"] [-DNO_SHADOWS]
//     [-DGEO_...] [-DNO_BACKGROUND] -D..._SHADER=shader
#pragma once

#include "UT/UT_String.h"
#include "UT/UT_WordList.h"

class UT_Args;
struct ThumbRenderer;

class thumb_Definitions
{
public:
    // Fills the vector. False after a message: an unknown shader type, or a
    // picture name that cannot stand between double quotes.
    // REQUIRES: a fresh object
    [[nodiscard]] bool build(const ThumbRenderer &row, const UT_Args &args,
                             const char *pictureName);

    int count() const { return myWords.getArgc(); }
    char **words() const { return myWords.getArgv(); } // as long as this lives

private:
    bool addPicture(int kind, const char *pictureName);
    void addShaderPath();
    void addGeometry(const char *type);
    bool addShader(const ThumbRenderer &row);
    void add(const char *word) { myWords.setArg(myWords.getArgc(), word); }

    UT_WordList myWords;

    // The words that are composed here.
    UT_String myPicture;
    UT_String myShaderPath;
    UT_String myShader;
};

// Appends where RenderMan shaders are looked for, and a closing '"': the setting
// VELDRIN_RI_SHADERPATH, or else ".:&" and each ri_shaders on the main search path.
void appendShaderPath(UT_String &define);
