#include "PlainExpression.h"

#include "osl/lib/osl_Math.h"

#include <cmath>

// "a", "b", "c" in the text stand for parts; the value has them in the same order.
struct PlainExpression::Row {
    int parts;
    const char *text;
    float (*value)(float a, float b, float c);
};

const PlainExpression::Row PlainExpression::ROWS[] = {
    {2, "(@ + @)", [](float a, float b, float) { return a + b; }},
    {2, "(@ - @)", [](float a, float b, float) { return a - b; }},
    {2, "(@ * @)", [](float a, float b, float) { return a * b; }},
    {2, "(@ / @)", [](float a, float b, float) { return osl_div(a, b); }},
    {1, "(-@)", [](float a, float, float) { return -a; }},
    {1, "float(!@)", [](float a, float, float) { return a == 0 ? 1.0f : 0.0f; }},
    {1, "floor(@)", [](float a, float, float) { return std::floor(a); }},
    {1, "sqrt(@)", [](float a, float, float) { return osl_sqrt(a); }},
    {1, "fabs(@)", [](float a, float, float) { return std::fabs(a); }},
    {2, "min(@, @)", [](float a, float b, float) { return b < a ? b : a; }},
    {2, "max(@, @)", [](float a, float b, float) { return b > a ? b : a; }},
    {2, "mod(@, @)", [](float a, float b, float) { return osl_mod(a, b); }},
    {2, "step(@, @)", [](float a, float b, float) { return osl_step(a, b); }},
    {3, "mix(@, @, @)", [](float a, float b, float c) { return a * (1 - c) + b * c; }},
    {3, "clamp(@, @, @)", [](float a, float b, float c) { return osl_clamp(a, b, c); }},
    {3, "(@ > 0.25 ? @ : @)", [](float a, float b, float c) { return a > 0.25f ? b : c; }},
    {2, "float(@ < @)", [](float a, float b, float) { return a < b ? 1.0f : 0.0f; }},
    {2, "float(@ && @)", [](float a, float b, float) { return a != 0 && b != 0 ? 1.0f : 0.0f; }},
    {3, "(@ < 0.5 ? floor(@) : sqrt(@))",
     [](float a, float b, float c) { return a < 0.5f ? std::floor(b) : osl_sqrt(c); }},
};

PlainExpression::PlainExpression(Random &random, int depth, const std::vector<std::string> &names)
{
    constexpr size_t ROW_COUNT = sizeof ROWS / sizeof *ROWS;
    const bool isLeaf = depth <= 0 || random.below(6) == 0;
    myRow = isLeaf ? nullptr : &ROWS[random.below(ROW_COUNT)];
    // Eighths are the same in text and in memory.
    myNumber = static_cast<float>(random.below(32)) / 8;
    myVariable = random.below(names.size());
    if (random.below(2) == 0)
        myName = names[myVariable];
    if (myRow == nullptr)
        return;
    myA = std::make_unique<PlainExpression>(random, depth - 1, names);
    if (myRow->parts > 1)
        myB = std::make_unique<PlainExpression>(random, depth - 1, names);
    if (myRow->parts > 2)
        myC = std::make_unique<PlainExpression>(random, depth - 1, names);
}

std::string PlainExpression::text() const
{
    if (myRow == nullptr)
        return myName.empty() ? std::to_string(myNumber) : myName;
    const PlainExpression *parts[] = {myA.get(), myB.get(), myC.get()};
    std::string out;
    int part = 0;
    for (const char *c = myRow->text; *c != '\0'; ++c) {
        if (*c == '@')
            out += parts[part++]->text();
        else
            out += *c;
    }
    return out;
}

float PlainExpression::at(const float *values) const
{
    if (myRow == nullptr)
        return myName.empty() ? myNumber : values[myVariable];
    return myRow->value(myA->at(values), myB ? myB->at(values) : 0, myC ? myC->at(values) : 0);
}
