// Runs code over a batch of points.
//
// A mask says which lanes are on. Conditions and loops that are the same for all
// points jump; others take lanes away from the mask and give them back behind. Lanes
// that left a loop, a function or the shader early are dead until that ends. Kernels
// compute all lanes; under a mask they do so beside the registers, and the lanes that are
// on are copied. Long results, and what acts, have the old values of the others put back.
#pragma once

#include "osl/OSL_Context.h"
#include "osl/lib/osl_Dictionary.h"
#include "osl/lib/osl_Format.h"
#include "osl/lib/osl_Noise.h"
#include "osl/lib/osl_Regex.h"
#include "osl/lib/osl_Texture.h"
#include "osl/run/osl_Closure.h"
#include "osl/run/osl_Kernel.h"
#include "osl/run/osl_Texts.h"

#include <deque>
#include <memory>
#include <unordered_set>

class osl_Machine
{
public:
    osl_Machine(std::shared_ptr<const OSL_Program> program, OSL_Renderer &renderer, int width);

    bool run(const OSL_Points &points);

    const OSL_Output *output(const std::string &name) const;
    std::string_view text(int handle) const { return myTexts[handle]; }
    const osl_ClosureArena &closures() const { return myClosures; }
    uint64_t instructionsDone() const { return myDone; }
    uint64_t stepsDone() const { return myPointSteps; }

private:
    using In = const osl_Instruction &;
    using Mask = uint32_t;
    using Act = void (osl_Machine::*)(In in);

    struct ActRow {
        osl_Op op;
        Act act;
    };
    static const ActRow ACTS[];

    struct Step {
        osl_Kernel kernel = nullptr;
        Act act = nullptr;
        const osl_Instruction *in = nullptr;
        const osl_Operand *operands = nullptr;
        const osl_Operand *beside = nullptr; // the same with another result, under a mask
        unsigned cost = 1;                   // in short instructions
        bool isPlain = false;                // the kernel is all there is to do
        bool clearsDerivatives = false;      // the kernel gives none
    };

    // An open condition, loop or call.
    struct Frame {
        enum Kind : uint8_t { CONDITION, LOOP, CALL };
        Kind kind = CONDITION;
        Mask saved = 0;
        Mask other = 0;   // lanes of the other branch
        Mask left = 0;    // broken out of the loop, returned from the call
        Mask skipped = 0; // on to the loop's next round
    };

    struct Event {
        enum Kind : uint8_t { PRINT, ERROR, WARNING, FILE };
        Kind kind;
        std::string text;
        std::string file;
    };
    struct Message {
        int name;
        osl_Type type;
        osl_Place place;
        bool hasData;
        std::vector<int> words;
    };

    static constexpr uint64_t MAX_INSTRUCTIONS = 20000000;
    static constexpr size_t MAX_OUTPUT = size_t(64) << 20;
    static constexpr size_t MAX_MESSAGES = 1000; // set or asked for, at a point
    static constexpr int MOST_BESIDE = 64;       // words
    static constexpr unsigned GABOR_COST = 4000; // instructions

    // ---- The run (osl_Machine.cpp, osl_MachineControl.cpp)
    void prepare();
    void prepareBeside();
    void loadGlobals(const OSL_Points &points);
    void loadGlobal(int number, const OSL_Varying &from);
    void loadWord(int at, const float *from);
    void execute();
    int control(In in, int at);
    int doIf(In in, int at);
    int doElse(In in, int at);
    int doLoop(In in);
    int doLoopTest(In in, int at);
    int doLoopEnd(In in, int at);
    bool leave(Frame::Kind kind, Mask Frame::*lanes);
    Mask waitingFrom(size_t depth) const;
    void doStep(const Step &step);
    void doBeside(const Step &step);
    void copyLanesOn(const osl_Operand &to, const osl_Operand &from, int words);
    void saveResult(In in);
    void restoreResult(In in);
    const int *lanesOn();
    void broadcast(const osl_Operand &operand, int words);
    void clearDerivatives(const osl_Operand &result, int words);
    Mask lanesOf(const osl_Operand &condition) const;
    void stop(const std::string &why);
    void sendEvents();

    // ---- What operations use
    const osl_Operand *operands(In in) const
    {
        return &myCode.operands[static_cast<size_t>(in.first)];
    }
    const osl_Type &typeOf(const osl_Operand &operand) const
    {
        return myCode.registers[static_cast<size_t>(operand.reg)].type;
    }
    int *ints(int word) { return myMemory + static_cast<std::ptrdiff_t>(word) * myWidth; }
    float *floats(int word) { return reinterpret_cast<float *>(ints(word)); }
    osl_Word *words(int word) { return reinterpret_cast<osl_Word *>(ints(word)); }
    int intAt(const osl_Operand &o, int lane, int word = 0)
    {
        return ints(o.at + word * o.step)[lane];
    }
    float floatAt(const osl_Operand &o, int lane, int word = 0)
    {
        return floats(o.at + word * o.step)[lane];
    }
    std::string_view textAt(const osl_Operand &o, int lane, int word = 0)
    {
        const std::string_view text = myTexts[intAt(o, lane, word)];
        myExtraCost += text.size() >> 4; // whoever asks reads it all
        return text;
    }
    osl_Vec vectorAt(const osl_Operand &o, int lane)
    {
        return {floatAt(o, lane, 0), floatAt(o, lane, 1), floatAt(o, lane, 2)};
    }
    osl_DualVec dualVectorAt(const osl_Operand &o, int lane);
    osl_Dual dualAt(const osl_Operand &o, int lane, int word = 0);
    void setFloat(const osl_Operand &o, int lane, float x, int word = 0)
    {
        floats(o.at + word)[lane] = x;
    }
    void setInt(const osl_Operand &o, int lane, int x, int word = 0)
    {
        ints(o.at + word)[lane] = x;
    }
    void setText(const osl_Operand &o, int lane, std::string_view text, int word = 0)
    {
        setInt(o, lane, newText(text), word);
    }
    void setDerivatives(const osl_Operand &o, int lane, int word, float dx, float dy);
    void setValue(const osl_Operand &o, int lane, const OSL_Value &value);
    int newText(std::string_view text);
    int lanes(In in) const { return in.isUniform ? 1 : myWidth; }
    // Calls f for each lane that is on; for the first only where all are alike.
    template <class F>
    void forLanes(In in, F f)
    {
        if (in.isUniform) {
            f(0);
            return;
        }
        for (int lane = 0; lane < myWidth; ++lane) {
            if ((myMask >> lane & 1) != 0)
                f(lane);
        }
    }
    void report(int lane, Event::Kind kind, std::string text);
    void error(In in, int lane, std::string text);
    std::string placeText(In in) const; // "file:line"
    int pointOf(int lane) const { return myFirstPoint + lane; }

    // ---- Operations (osl_MachineTexts.cpp)
    void printText(In in);
    void formatText(In in);
    std::string formatted(const osl_Operand *o, int count, int lane);
    const osl_Format &formatOf(int handle);
    const osl_Regex &regexOf(int handle);
    void concat(In in);
    void strlen(In in);
    void startsWith(In in);
    void endsWith(In in);
    void stoi(In in);
    void stof(In in);
    void split(In in);
    void substr(In in);
    void getChar(In in);
    void regex(In in);
    void hashInt(In in);
    void hashFloats(In in);
    void hashText(In in);

    // (osl_MachinePatterns.cpp)
    void element(In in);
    void setElement(In in);
    int checkedIndex(In in, const osl_Operand &index, int lane);
    void noise(In in);
    void noiseOfKind(In in, osl_NoiseKind kind);
    void gaborOptions(In in, osl_GaborOptions &options, int lane);
    void zeroResult(In in);
    void spline(In in);
    void splineInverse(In in);
    void transformColour(In in);

    // (osl_MachineTextures.cpp)
    void texture(In in);
    void texture3d(In in);
    void environment(In in);
    void textureInfo(In in);
    osl_TextureOptions textureOptions(In in, int lane);
    const osl_Texture *textureOf(std::string_view name, std::string &error);
    void setTexel(In in, int lane, const osl_TextureValue &value, const std::string &error,
                  const osl_TexturePlace &place);

    // (osl_MachineRenderer.cpp)
    void spaces(In in);
    void getMatrix(In in);
    bool matrixBetween(In in, std::string_view from, std::string_view to, int lane,
                       osl_Matrix &matrix);
    void transformUnits(In in);
    void userdata(In in);
    void getAttribute(In in);
    void setMessage(In in);
    void getMessage(In in);
    void rayType(In in);
    void backfacing(In in);
    void surfaceArea(In in);
    void isConnected(In in);
    void trace(In in);
    void nothingFound(In in);
    void dictFind(In in);
    void dictNext(In in);
    void dictValue(In in);
    osl_Dictionaries &dictionaries();
    void makeClosure(In in);
    void addClosures(In in);
    void scaleClosure(In in);

    std::shared_ptr<const OSL_Program> myProgram;
    const osl_Code &myCode;
    OSL_Renderer &myRenderer;
    int myWidth;
    std::vector<int> myStorage;
    int *myMemory; // in myStorage, aligned
    std::vector<Step> mySteps;
    uint64_t myExtraCost = 0; // of the run: what took longer than an instruction
    std::vector<Frame> myFrames;
    std::vector<int> mySaved; // results under a mask
    std::deque<std::vector<osl_Operand>> myBeside;
    alignas(64) int myLanesOn[32] = {}; // 0 or ~0 for each lane of ...
    Mask myLanesOnMask = 0;
    Mask myMask = 0;
    Mask myFull = 0;
    Mask myDead = 0;
    bool isStopped = false;
    uint64_t myDone = 0;
    uint64_t myPointSteps = 0;
    int myFirstPoint = 0;

    osl_Texts myTexts;
    osl_Inverter myInverter; // of the way from a space
    osl_ClosureArena myClosures;
    std::unordered_map<int, std::unique_ptr<osl_Format>> myFormats;
    std::unordered_map<int, std::unique_ptr<osl_Regex>> myRegexes;
    std::unordered_map<std::string, std::pair<std::shared_ptr<const osl_Texture>, std::string>>
        myTextures;
    std::unique_ptr<osl_Dictionaries> myDictionaries; // null until one is asked
    std::vector<std::vector<Event>> myEvents;         // of each lane
    std::vector<std::vector<Message>> myMessages;     // likewise
    std::unordered_set<std::string> myReported;
    size_t myOutputBytes = 0;
    std::deque<OSL_Output> myOutputs;
    std::unordered_map<std::string, const OSL_Output *> myOutputNames;
};
