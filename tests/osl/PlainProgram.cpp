#include "PlainProgram.h"

#include "osl/lib/osl_Math.h"

#include <cmath>
#include <cstdio>

namespace
{
// u, four variables, then the elements of an array.
const std::vector<std::string> NAMES = {"u", "a", "b", "c", "d", "r[0]", "r[1]", "r[2]", "r[3]"};
constexpr size_t VARIABLES = 4;
constexpr size_t ARRAY_AT = 5;
constexpr size_t ARRAY_LENGTH = 4;
constexpr size_t FUNCTIONS = 2;
constexpr int MOST_ROUNDS = 5;

// Of a function: its argument and its output.
const std::vector<std::string> FORMALS = {"x", "y"};

enum Kind { ASSIGN, ELEMENT, IF, FOR, WHILE, CALL, PRINT, LEAVE, KINDS, LOCAL };

const struct {
    const char *text;
    float (*value)(float old, float by);
} ASSIGNMENTS[] = {
    {"=", [](float, float by) { return by; }},
    {"+=", [](float old, float by) { return old + by; }},
    {"-=", [](float old, float by) { return old - by; }},
    {"*=", [](float old, float by) { return old * by; }},
};

// Numbers that grow without end would differ in their last digits.
float tame(float x)
{
    return osl_clamp(x, -100, 100);
}

int elementAt(float x)
{
    return static_cast<int>(osl_mod(std::fabs(tame(x)), ARRAY_LENGTH));
}

int roundsAt(float x)
{
    return static_cast<int>(osl_clamp(x, 0, MOST_ROUNDS));
}

std::string indented(int depth)
{
    return std::string(static_cast<size_t>(depth) * 4, ' ');
}
} // namespace

// Which of these count depends on the kind.
struct PlainProgram::Statement {
    Kind kind = PRINT;
    size_t variable = 1;
    size_t assignment = 0;
    size_t function = 0;
    Way way = ON;
    Expression first, second;
    Block body, other;
};

// if (x > limit) return early; y = output; return late;
struct PlainProgram::Function {
    Expression limit, early, output, late;

    float call(float x, float &y) const
    {
        const float values[] = {x, y};
        if (x > limit->at(values))
            return tame(early->at(values));
        const float after[] = {x, tame(output->at(values))};
        y = after[1];
        return tame(late->at(after));
    }
};

struct PlainProgram::Run {
    const std::vector<Function> &functions;
    float values[ARRAY_AT + ARRAY_LENGTH] = {};
    std::string printed;

    Way run(const Block &block)
    {
        Way way = ON;
        const float outer = block.empty() ? 0 : values[block[0].variable];
        for (size_t i = 0; i < block.size() && way == ON; ++i)
            way = run(block[i]);
        if (!block.empty() && block[0].kind == LOCAL)
            values[block[0].variable] = outer;
        return way;
    }

    Way run(const Statement &s)
    {
        switch (s.kind) {
        case LOCAL:
            set(s.variable, s.first->at(values));
            return ON;
        case ASSIGN:
            set(s.variable,
                ASSIGNMENTS[s.assignment].value(values[s.variable], s.first->at(values)));
            return ON;
        case ELEMENT: {
            const float value = s.second->at(values);
            set(ARRAY_AT + static_cast<size_t>(elementAt(s.first->at(values))), value);
            return ON;
        }
        case IF:
            return run(s.first->at(values) > s.second->at(values) ? s.body : s.other);
        case FOR:
        case WHILE:
            return runLoop(s);
        case CALL: {
            const float x = s.first->at(values) + 0.0f;
            float y = values[s.variable % VARIABLES + 1];
            const float result = functions[s.function].call(x, y);
            values[s.variable % VARIABLES + 1] = y;
            values[s.variable] = result;
            return ON;
        }
        case LEAVE:
            return s.first->at(values) > s.second->at(values) ? s.way : ON;
        default:
            print(values[s.variable]);
            return ON;
        }
    }

    Way runLoop(const Statement &s)
    {
        for (int round = 0; round < MOST_ROUNDS; ++round) {
            const bool goesOn = s.kind == FOR ? round < roundsAt(s.first->at(values))
                                              : s.first->at(values) > s.second->at(values);
            if (!goesOn)
                break;
            const Way way = run(s.body);
            if (way == EXIT)
                return EXIT;
            if (way == BREAK)
                break;
        }
        return ON;
    }

    void set(size_t variable, float value) { values[variable] = tame(value); }

    void print(float value)
    {
        char text[32];
        std::snprintf(text, sizeof text, "%.5g ", static_cast<double>(value));
        printed += text;
    }
};

PlainProgram::Expression PlainProgram::expression(Random &random)
{
    return std::make_unique<PlainExpression>(random, 2, NAMES);
}

PlainProgram::PlainProgram(Random &random)
{
    const auto make = [&random] { return std::make_unique<PlainExpression>(random, 2, FORMALS); };
    for (size_t i = 0; i < FUNCTIONS; ++i)
        myFunctions.push_back({make(), make(), make(), make()});
    myLasting = random.below(VARIABLES + 1);
    myBody = block(random, 3, false);
}

PlainProgram::~PlainProgram() = default;

PlainProgram::Block PlainProgram::block(Random &random, int depth, bool isInLoop)
{
    Block made;
    if (random.below(2) == 0) {
        made.push_back(statement(random, 0, false));
        made.back().kind = LOCAL;
    }
    for (size_t count = 1 + random.below(4); count > 0; --count)
        made.push_back(statement(random, depth, isInLoop));
    return made;
}

PlainProgram::Statement PlainProgram::statement(Random &random, int depth, bool isInLoop)
{
    static const Kind PLAIN[] = {ASSIGN, ELEMENT, CALL, PRINT, LEAVE};
    Statement made;
    made.kind = depth > 0 ? static_cast<Kind>(random.below(KINDS)) : PLAIN[random.below(5)];
    made.variable = 1 + random.below(VARIABLES);
    made.assignment = random.below(sizeof ASSIGNMENTS / sizeof *ASSIGNMENTS);
    made.function = random.below(FUNCTIONS);
    made.way = isInLoop && random.below(8) > 0 ? (random.below(2) == 0 ? BREAK : CONTINUE) : EXIT;
    made.first = expression(random);
    made.second = expression(random);
    const bool isLoop = made.kind == FOR || made.kind == WHILE;
    if (isLoop || made.kind == IF) {
        made.body = block(random, depth - 1, isLoop || isInLoop);
        if (random.below(3) > 0)
            made.other = block(random, depth - 1, isInLoop);
    }
    return made;
}

std::string PlainProgram::textOf(const Block &block, int depth)
{
    std::string all = "{\n";
    for (const Statement &statement : block)
        all += textOf(statement, depth + 1);
    return all + indented(depth) + "}\n";
}

std::string PlainProgram::loopText(const Statement &s, int depth)
{
    const std::string most = std::to_string(MOST_ROUNDS);
    const std::string body = textOf(s.body, depth);
    if (s.kind == FOR)
        return "for (int n = 0; n < int(clamp(" + s.first->text() + ", 0, " + most + ")); ++n) " +
               body;
    return "for (int n = 0; " + s.first->text() + " > " + s.second->text() + " && n < " + most +
           "; n++) " + body;
}

std::string PlainProgram::textOf(const Statement &s, int depth)
{
    static const char *const WAYS[] = {"", "break", "continue", "exit()"};
    const std::string first = s.first->text();
    const std::string second = s.second->text();
    const std::string name = NAMES[s.variable];
    const std::string condition = "if (" + first + " > " + second + ") ";
    const std::string tamed = name + " = clamp(" + name + ", -100, 100);\n";
    std::string text = indented(depth);
    switch (s.kind) {
    case LOCAL: // hides the outer one; its value may come from that
        return text + "float o = " + first + "; float " + name + " = o; " + tamed;
    case ASSIGN:
        return text + name + " " + ASSIGNMENTS[s.assignment].text + " " + first + "; " + tamed;
    case ELEMENT:
        return text + "r[int(mod(fabs(clamp(" + first + ", -100, 100)), 4))] = clamp(" + second +
               ", -100, 100);\n";
    case IF:
        return text + condition + textOf(s.body, depth) +
               (s.other.empty() ? "" : indented(depth) + "else " + textOf(s.other, depth));
    case FOR:
    case WHILE:
        return text + loopText(s, depth);
    case CALL:
        return text + name + " = f" + std::to_string(s.function) + "(" + first + " + 0.0, " +
               NAMES[s.variable % VARIABLES + 1] + ");\n";
    case LEAVE:
        return text + condition + WAYS[s.way] + ";\n";
    default:
        return text + "printf(\"%.5g \", " + name + ");\n";
    }
}

std::string PlainProgram::text() const
{
    std::string all;
    for (size_t i = 0; i < myFunctions.size(); ++i) {
        const Function &f = myFunctions[i];
        const auto tamed = [](const Expression &e) {
            return "clamp(" + e->text() + ", -100, 100);\n";
        };
        all += "float f" + std::to_string(i) + "(float x, output float y) {\n    if (x > " +
               f.limit->text() + ") return " + tamed(f.early) + "    y = " + tamed(f.output) +
               "    return " + tamed(f.late) + "}\n";
    }
    all += "shader t() {\n    float a = 0, b = 0, c = 0, d = 0, r[4] = {0, 0, 0, 0};\n    " +
           textOf(myBody, 1);
    for (size_t i = 1; i <= myLasting; ++i)
        all += "    printf(\"%.5g \", " + NAMES[i] + ");\n";
    return all + "}\n";
}

std::string PlainProgram::printedAt(float u) const
{
    Run run{myFunctions, {u}, ""};
    if (run.run(myBody) == EXIT)
        return run.printed;
    for (size_t i = 1; i <= myLasting; ++i)
        run.print(run.values[i]);
    return run.printed;
}
