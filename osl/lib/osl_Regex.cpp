#include "osl/lib/osl_Regex.h"

#include "osl/lib/osl_RegexCompiler.h"

#include <algorithm>

namespace
{
bool isWordChar(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isEdge(std::string_view text, size_t at)
{
    const bool before = at > 0 && isWordChar(text[at - 1]);
    return before != (at < text.size() && isWordChar(text[at]));
}
} // namespace

// The threads of a program at one character of the text, those that are preferred first.
class osl_RegexRun
{
public:
    osl_RegexRun(const osl_Regex &regex, std::string_view text, size_t slots, bool isWhole)
        : myRegex(regex), myText(text), myIsWhole(isWhole), mySeen(regex.myCode.size(), NEVER),
          mySlots(slots)
    {
    }

    bool find(std::vector<int> &places);

private:
    using Places = std::vector<int>;
    // Where each thread stands, and one after the other their places.
    struct Threads {
        std::vector<size_t> at;
        Places places;
    };
    // What is left to follow, or a place to set back once its branch is done.
    struct Task {
        size_t at;
        int slot = -1;
        int old = 0;
    };
    static constexpr size_t NEVER = size_t(-1);
    static constexpr size_t MOST_STEPS = 10000000;

    void follow(size_t from, Places &places);
    void followOne(size_t at, Places &places);
    bool isTrue(osl_Regex::Op op) const;
    bool eats(const osl_Regex::Instruction &i, char c) const;
    void step();

    const osl_Regex &myRegex;
    std::string_view myText;
    bool myIsWhole;
    size_t myAt = 0;
    size_t mySteps = 0;
    std::vector<size_t> mySeen; // for each instruction: the last character it was met at
    size_t mySlots;
    Threads myThreads, myNext;
    std::vector<Task> myTasks;
    bool myHasMatch = false;
    Places myMatch;
};

bool osl_RegexRun::isTrue(osl_Regex::Op op) const
{
    switch (op) {
    case osl_Regex::BEGIN:
        return myAt == 0;
    case osl_Regex::END:
        return myAt == myText.size();
    case osl_Regex::EDGE:
        return isEdge(myText, myAt);
    default:
        return !isEdge(myText, myAt);
    }
}

bool osl_RegexRun::eats(const osl_Regex::Instruction &i, char c) const
{
    const int code = static_cast<unsigned char>(c);
    switch (i.op) {
    case osl_Regex::CHAR:
        return i.a == code;
    case osl_Regex::ANY:
        return c != '\n';
    case osl_Regex::SET:
        return myRegex.mySets[static_cast<size_t>(i.a)][static_cast<size_t>(code)];
    default:
        return false;
    }
}

// Adds the threads that an instruction leads to without eating a character.
void osl_RegexRun::follow(size_t from, Places &places)
{
    myTasks.push_back({from});
    while (!myTasks.empty()) {
        const Task task = myTasks.back();
        myTasks.pop_back();
        if (task.slot >= 0) {
            places[static_cast<size_t>(task.slot)] = task.old;
        } else if (mySeen[task.at] != myAt) {
            mySeen[task.at] = myAt;
            ++mySteps;
            followOne(task.at, places);
        }
    }
}

void osl_RegexRun::followOne(size_t at, Places &places)
{
    const osl_Regex::Instruction &i = myRegex.myCode[at];
    const auto go = [&](int by) {
        myTasks.push_back({static_cast<size_t>(static_cast<long>(at) + by)});
    };
    switch (i.op) {
    case osl_Regex::JUMP:
        return go(i.a);
    case osl_Regex::SPLIT:
        go(i.b); // looked at when everything from `a` is done
        return go(i.a);
    case osl_Regex::SAVE:
        if (static_cast<size_t>(i.a) < mySlots) {
            int &place = places[static_cast<size_t>(i.a)];
            myTasks.push_back({0, i.a, place});
            place = static_cast<int>(myAt);
        }
        return go(1);
    case osl_Regex::BEGIN:
    case osl_Regex::END:
    case osl_Regex::EDGE:
    case osl_Regex::NO_EDGE:
        if (isTrue(i.op))
            go(1);
        return;
    default:
        myNext.at.push_back(at);
        myNext.places.insert(myNext.places.end(), places.begin(), places.end());
    }
}

// All threads eat the next character; those behind one that is done are dropped.
void osl_RegexRun::step()
{
    std::swap(myThreads, myNext);
    myNext.at.clear();
    myNext.places.clear();
    const bool isAtEnd = myAt == myText.size();
    ++myAt;
    Places places(mySlots);
    for (size_t t = 0; t < myThreads.at.size(); ++t) {
        const size_t at = myThreads.at[t];
        const osl_Regex::Instruction &i = myRegex.myCode[at];
        std::copy_n(myThreads.places.begin() + static_cast<long>(t * mySlots), mySlots,
                    places.begin());
        if (i.op == osl_Regex::DONE) {
            if (myIsWhole && !isAtEnd)
                continue;
            myMatch = places;
            myHasMatch = true;
            return;
        }
        if (!isAtEnd && eats(i, myText[myAt - 1]))
            follow(at + 1, places);
    }
}

bool osl_RegexRun::find(std::vector<int> &places)
{
    while (myAt <= myText.size() && mySteps < MOST_STEPS) {
        const bool mayBegin = !myHasMatch && (myAt == 0 || !myIsWhole);
        if (mayBegin) {
            Places none(mySlots, -1);
            follow(0, none);
        }
        if (myNext.at.empty() && (myHasMatch || myIsWhole))
            break;
        step();
    }
    if (!myHasMatch)
        return false;
    std::fill(places.begin(), places.end(), -1);
    std::copy(myMatch.begin(), myMatch.end(), places.begin());
    return true;
}

osl_Regex::osl_Regex(std::string_view expression)
{
    osl_RegexCompiler(expression, *this).compile();
}

bool osl_Regex::run(std::string_view text, std::vector<int> &places, bool isWhole) const
{
    if (!myError.empty())
        return false;
    const size_t slots = std::min(places.size(), static_cast<size_t>(2 * (myGroups + 1)));
    return osl_RegexRun(*this, text, slots, isWhole).find(places);
}

bool osl_Regex::search(std::string_view text, std::vector<int> &places) const
{
    return run(text, places, false);
}

bool osl_Regex::match(std::string_view text, std::vector<int> &places) const
{
    return run(text, places, true);
}
