// The formats of printf(), format(), error(), warning() and fprintf().
//
// A format is read once; then it may be applied to the arguments of any number
// of points. Conversions are
//
//   %d %i %u %o %x %X %c     whole numbers
//   %f %F %e %E %g %G        floats; every component of colours, points and
//   %a %A %p %v %n %m %c     matrices, with blanks between them; %p to %c as %f
//   %s                       texts and closures
//   %%                       a per cent sign
//
// with flags, width and precision as C has them, but at most 500 of each. An
// array is written whole, with blanks between. A conversion that does not suit
// its argument is changed to one that does: %d for a whole number, %f for a float,
// %s for a text. Conversions without an argument give nothing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// One argument for one point: `count` numbers or texts, `stride` elements apart.
struct osl_FormatArg {
    enum Type { INT, FLOAT, STRING };

    osl_FormatArg(const int *values, int count, int stride = 1);
    osl_FormatArg(const float *values, int count, int stride = 1);
    osl_FormatArg(const std::string_view *values, int count, int stride = 1);

    Type type;
    const void *data;
    int count;
    int stride;
};

class osl_Format
{
public:
    explicit osl_Format(std::string_view format);

    // Conversions that take an argument, and whether one is made for a type.
    int conversions() const;
    bool suits(int conversion, osl_FormatArg::Type type) const;

    // "%d, %i, %o, %x, or %X", "%f, %g, or %e" or "%s": what an argument of the
    // type needs, for messages.
    static const char *conversionsFor(osl_FormatArg::Type type);

    // Appends the text for arguments; further ones are ignored. Stops at `limit`
    // characters in all: an array of long texts can be longer than anyone wants.
    void apply(const std::vector<osl_FormatArg> &args, std::string &out,
               size_t limit = 1 << 20) const;

private:
    // Text, then a conversion; the last one has none.
    struct Piece {
        std::string text;
        std::string flags; // "%-8.3", without the letter
        char letter = 0;
    };
    std::vector<Piece> myPieces;
};

// A float as %g writes it, as in printed closures.
std::string osl_floatText(float x);
