// What is found out about code when all of it is there, and where registers lie.
//
// Varying: a register varies from point to point when one of its writers reads what
// varies, when it is written for some points only, or when it comes from the renderer.
// Derivatives: from the operations that use them backwards to what they come from. Both
// grow until nothing changes. Registers whose time of use does not meet share a place.
#include "osl/code/osl_Generator.h"

#include "osl/code/osl_Masks.h"
#include "osl/code/osl_OpClass.h"
#include "osl/lib/osl_Noise.h"

#include <algorithm>

namespace
{
class Analysis
{
public:
    Analysis(osl_Made &made, osl_Registers &registers) : myMade(made), myRegisters(registers) {}

    std::unique_ptr<osl_Code> run();

private:
    using Register = osl_Registers::Register;

    Register &rootOf(int reg) { return myRegisters[myRegisters.root(reg)]; }
    const int *argumentsOf(const osl_Instruction &in) const
    {
        return &myMade.arguments[static_cast<size_t>(in.first)];
    }

    void markSources();
    bool spreadVarying();
    bool spreadRegion(const osl_Instruction &in, int region);
    bool isVaryingRegion(int region) const;
    bool makeVarying(int region);
    bool isVarying(int reg) { return reg >= 0 && rootOf(reg).isVarying; }
    bool readsVarying(const osl_Instruction &in);
    bool spreadDerivatives();
    bool need(int reg);
    bool needArguments(const osl_Instruction &in);
    void flag();
    void markSpread();
    void findUses();
    void use(int reg, int at);
    void extendOverLoops();
    static bool isUsed(const Register &made);
    void place();
    int placeConstants(osl_Code &code, int at);
    osl_Operand operandOf(int reg) const;
    static bool writesArguments(osl_Op op);
    static bool isOwn(osl_Op op);

    osl_Made &myMade;
    osl_Registers &myRegisters;
    std::unique_ptr<osl_Masks> myMasks;
    std::unique_ptr<osl_Code> myCode = std::make_unique<osl_Code>();
};

// Operations whose result depends on the point itself.
bool Analysis::isOwn(osl_Op op)
{
    return op == OSL_GETATTRIBUTE || op == OSL_GETMESSAGE || op == OSL_USERDATA ||
           op == OSL_RAYTYPE || op == OSL_BACKFACING || op == OSL_SURFACEAREA || op == OSL_TRACE ||
           op == OSL_SPACES || op == OSL_GETMATRIX || op == OSL_TRANSFORMU || op == OSL_TEXTURE ||
           op == OSL_TEXTURE3D || op == OSL_ENVIRONMENT || op == OSL_TEXTUREINFO ||
           op == OSL_CLOSURE || op == OSL_CLOSURE_ADD || op == OSL_CLOSURE_MUL ||
           op == OSL_POINTCLOUD || op == OSL_DICT_FIND || op == OSL_DICT_NEXT ||
           op == OSL_DICT_VALUE || op == OSL_CALCULATENORMAL || op == OSL_SPLIT ||
           op == OSL_REGEX_SEARCH || op == OSL_REGEX_MATCH;
}

bool Analysis::writesArguments(osl_Op op)
{
    return op == OSL_GETATTRIBUTE || op == OSL_GETMESSAGE || op == OSL_GETMATRIX ||
           op == OSL_TEXTURE || op == OSL_TEXTURE3D || op == OSL_ENVIRONMENT ||
           op == OSL_TEXTUREINFO || op == OSL_POINTCLOUD || op == OSL_DICT_VALUE ||
           op == OSL_SPLIT || op == OSL_REGEX_SEARCH || op == OSL_REGEX_MATCH;
}

void Analysis::markSources()
{
    for (size_t i = 0; i < myMade.globals.size(); ++i) {
        const int reg = myMade.globals[i];
        if (reg >= 0)
            myRegisters[reg].isVarying = true;
    }
}

bool Analysis::isVaryingRegion(int region) const
{
    for (; region >= 0; region = myMade.tree[static_cast<size_t>(region)].parent) {
        if (myMade.tree[static_cast<size_t>(region)].isVarying)
            return true;
    }
    return false;
}

bool Analysis::makeVarying(int region)
{
    osl_Region &made = myMade.tree[static_cast<size_t>(region)];
    const bool isNew = !made.isVarying;
    made.isVarying = true;
    return isNew;
}

// Leaving a region for some points only makes what follows varying.
bool Analysis::spreadRegion(const osl_Instruction &in, int region)
{
    const bool isLoop = in.op == OSL_BREAK || in.op == OSL_CONTINUE;
    if (!isLoop && in.op != OSL_RETURN && in.op != OSL_EXIT)
        return false;
    const osl_Region::Kind wanted = isLoop                ? osl_Region::LOOP
                                    : in.op == OSL_RETURN ? osl_Region::CALL
                                                          : osl_Region::MAIN;
    bool isPartial = false;
    bool isChanged = false;
    for (int at = region; at >= 0; at = myMade.tree[static_cast<size_t>(at)].parent) {
        const osl_Region &made = myMade.tree[static_cast<size_t>(at)];
        isPartial = isPartial || made.isVarying;
        if (isPartial)
            isChanged = (made.kind != osl_Region::BRANCH && makeVarying(at)) || isChanged;
        if (made.kind == wanted)
            break;
    }
    return isChanged;
}

bool Analysis::readsVarying(const osl_Instruction &in)
{
    if (isOwn(in.op))
        return true;
    const int *arguments = argumentsOf(in);
    const bool isSet = in.op == OSL_SET_ELEMENT || in.op == OSL_SET_ELEMENTI;
    for (int i = isSet ? 0 : 1; i < in.count; ++i) {
        if (isVarying(arguments[i]))
            return true;
    }
    return false;
}

bool Analysis::spreadVarying()
{
    bool isChanged = false;
    for (osl_Region &region : myMade.tree) {
        if (!region.isVarying && region.condition >= 0 && isVarying(region.condition))
            isChanged = region.isVarying = true;
    }
    for (size_t i = 0; i < myMade.instructions.size(); ++i) {
        const osl_Instruction &in = myMade.instructions[i];
        const int region = myMade.regions[i];
        isChanged = spreadRegion(in, region) || isChanged;
        const int *arguments = argumentsOf(in);
        const int results = writesArguments(in.op) ? in.count : 1;
        for (int k = 0; k < results; ++k) {
            if (arguments[k] < 0 || rootOf(arguments[k]).isVarying)
                continue;
            const bool isPartial = rootOf(arguments[k]).kind != osl_Registers::TEMPORARY &&
                                   (k == 0 ? myMasks->isNeeded(i) : isVaryingRegion(region));
            if (rootOf(arguments[k]).kind != osl_Registers::CONSTANT &&
                (isPartial || readsVarying(in)))
                isChanged = rootOf(arguments[k]).isVarying = true;
        }
    }
    return isChanged;
}

bool Analysis::need(int reg)
{
    if (reg < 0)
        return false;
    Register &root = rootOf(reg);
    if (root.hasDerivatives || root.kind == osl_Registers::CONSTANT || !root.type.isFloatBased())
        return false;
    return root.hasDerivatives = true;
}

bool Analysis::needArguments(const osl_Instruction &in)
{
    bool isChanged = false;
    const int *arguments = argumentsOf(in);
    for (int i = 1; i < in.count; ++i)
        isChanged = need(arguments[i]) || isChanged;
    return isChanged;
}

bool Analysis::spreadDerivatives()
{
    bool isChanged = false;
    for (auto in = myMade.instructions.rbegin(); in != myMade.instructions.rend(); ++in) {
        const osl_OpRow::Derivatives kind = OSL_OP_ROWS[in->op].derivatives;
        const int result = argumentsOf(*in)[0];
        const bool isWanted = result >= 0 && rootOf(result).hasDerivatives;
        const bool isTexture = in->op == OSL_TEXTURE || in->op == OSL_ENVIRONMENT;
        const bool isFiltered =
            in->op == OSL_NOISE && (in->number == OSL_NOISE_GABOR || in->number < 0);
        if (kind == osl_OpRow::USES || (kind == osl_OpRow::ALL && isWanted) || isTexture ||
            isFiltered)
            isChanged = needArguments(*in) || isChanged;
        // Elements are written into what is read later.
        if ((in->op == OSL_SET_ELEMENT) && isWanted)
            isChanged = needArguments(*in) || isChanged;
    }
    return isChanged;
}

void Analysis::flag()
{
    for (size_t i = 0; i < myMade.instructions.size(); ++i) {
        osl_Instruction &in = myMade.instructions[i];
        const int *arguments = argumentsOf(in);
        const bool isControl = in.op >= OSL_IF;
        const bool hasResult = arguments[0] >= 0;
        if (isControl)
            in.isUniform = in.count < 2 || !isVarying(arguments[1]);
        else
            in.isUniform = hasResult && !rootOf(arguments[0]).isVarying && !readsVarying(in);
        in.hasDerivatives = hasResult && rootOf(arguments[0]).hasDerivatives;
        in.isMasked = hasResult && rootOf(arguments[0]).kind != osl_Registers::TEMPORARY &&
                      myMasks->isNeeded(i);
        // A varying register that is written from uniform ones still has all lanes.
        if (hasResult && rootOf(arguments[0]).isVarying)
            in.isUniform = false;
    }
    markSpread();
}

// What is the same for all lanes is copied to all of them only where someone reads it so.
void Analysis::markSpread()
{
    for (const osl_CodeOutput &output : myMade.outputs)
        rootOf(output.reg).isReadByLanes = true;
    for (const osl_Instruction &in : myMade.instructions) {
        const int *arguments = argumentsOf(in);
        for (int i = 0; i < in.count && !in.isUniform; ++i) {
            if (arguments[i] >= 0)
                rootOf(arguments[i]).isReadByLanes = true;
        }
    }
    for (osl_Instruction &in : myMade.instructions) {
        const int result = argumentsOf(in)[0];
        in.isSpread = in.isUniform && result >= 0 && rootOf(result).isReadByLanes;
    }
}

void Analysis::use(int reg, int at)
{
    if (reg < 0)
        return;
    Register &root = rootOf(reg);
    root.firstUse = root.firstUse < 0 ? at : std::min(root.firstUse, at);
    root.lastUse = std::max(root.lastUse, at);
}

void Analysis::findUses()
{
    for (size_t i = 0; i < myMade.instructions.size(); ++i) {
        const osl_Instruction &in = myMade.instructions[i];
        const int *arguments = argumentsOf(in);
        for (int k = 0; k < in.count; ++k)
            use(arguments[k], static_cast<int>(i));
    }
    for (const osl_Region &region : myMade.tree) {
        if (region.condition >= 0)
            use(region.condition, region.last + 1);
    }
    for (const osl_CodeOutput &output : myMade.outputs)
        rootOf(output.reg).isKept = true;
}

// What is older than a loop and used in it, is used until the loop ends; and what a loop's
// own variable holds may be meant for its next round.
void Analysis::extendOverLoops()
{
    std::vector<std::pair<int, int>> loops;
    for (const osl_Region &region : myMade.tree) {
        if (region.kind == osl_Region::LOOP)
            loops.emplace_back(region.first, region.last);
    }
    if (loops.empty())
        return;
    for (int reg = 0; reg < myRegisters.count(); ++reg) {
        Register &made = myRegisters[reg];
        if (made.firstUse < 0 || made.kind == osl_Registers::CONSTANT)
            continue;
        for (auto loop = loops.rbegin(); loop != loops.rend(); ++loop) {
            const bool isInside = made.lastUse >= loop->first && made.firstUse <= loop->second;
            const bool isOlder = made.firstUse < loop->first;
            if (!isInside)
                continue;
            if (isOlder || made.kind != osl_Registers::TEMPORARY) {
                made.firstUse = std::min(made.firstUse, loop->first);
                made.lastUse = std::max(made.lastUse, loop->second);
            }
        }
    }
}

int Analysis::placeConstants(osl_Code &code, int at)
{
    code.constantsAt = at;
    code.constants = myRegisters.allData();
    int most = 16;
    for (int reg = 0; reg < myRegisters.count(); ++reg) {
        Register &made = myRegisters[reg];
        if (made.kind != osl_Registers::CONSTANT)
            continue;
        made.at = at + made.data;
        most = std::max(most, made.words);
    }
    at += static_cast<int>(code.constants.size());
    code.zerosAt = at;
    return at + most;
}

bool Analysis::isUsed(const Register &made)
{
    return made.firstUse >= 0 || made.isKept;
}

// Places by size: a register takes that of one that is used no more.
void Analysis::place()
{
    int at = placeConstants(*myCode, 0);
    std::vector<int> order;
    for (int reg = 0; reg < myRegisters.count(); ++reg) {
        const Register &made = myRegisters[reg];
        if (made.kind != osl_Registers::CONSTANT && made.parent < 0 && isUsed(made))
            order.push_back(reg);
    }
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
        return myRegisters[a].firstUse < myRegisters[b].firstUse;
    });
    // Of each size, places and when they are free again.
    std::map<int, std::multimap<int, int>> places;
    for (const int reg : order) {
        Register &made = myRegisters[reg];
        const int size = made.words * (made.hasDerivatives ? 3 : 1);
        const bool isFixed = made.isKept || made.kind == osl_Registers::GLOBAL;
        auto &ends = places[size];
        if (!isFixed && !ends.empty() && ends.begin()->first < made.firstUse) {
            made.at = ends.begin()->second;
            ends.erase(ends.begin());
        } else {
            made.at = at;
            at += size;
        }
        if (!isFixed)
            ends.emplace(made.lastUse, made.at);
    }
    myCode->words = at;
}

osl_Operand Analysis::operandOf(int reg) const
{
    osl_Operand operand;
    operand.reg = reg;
    operand.dx = operand.dy = myCode->zerosAt;
    if (reg < 0)
        return operand;
    const Register &made = myRegisters[reg];
    const Register &root = myRegisters[myRegisters.root(reg)];
    operand.words = made.words;
    operand.step = made.words > 1 ? 1 : 0;
    operand.at = root.at + made.offset;
    if (root.kind == osl_Registers::CONSTANT)
        operand.at = made.at;
    if (root.hasDerivatives) {
        operand.dx = operand.at + root.words;
        operand.dy = operand.at + 2 * root.words;
    }
    return operand;
}

std::unique_ptr<osl_Code> Analysis::run()
{
    findUses();
    myMasks = std::make_unique<osl_Masks>(myMade, myRegisters);
    markSources();
    while (spreadVarying()) {
    }
    while (spreadDerivatives()) {
    }
    flag();
    extendOverLoops();
    place();
    for (int &reg : myMade.globals) {
        if (reg >= 0 && !isUsed(myRegisters[reg])) // only isconstant() asked for it
            reg = -1;
    }
    for (const int reg : myMade.arguments)
        myCode->operands.push_back(operandOf(reg));
    for (int reg = 0; reg < myRegisters.count(); ++reg) {
        const osl_Operand operand = operandOf(reg);
        const Register &root = rootOf(reg);
        myCode->registers.push_back({myRegisters[reg].type, myRegisters[reg].words, operand.at,
                                     operand.dx, operand.dy, root.isVarying, root.hasDerivatives,
                                     root.kind == osl_Registers::CONSTANT});
    }
    myCode->instructions = std::move(myMade.instructions);
    myCode->texts = std::move(myRegisters.texts());
    myCode->globals = myMade.globals;
    myCode->outputs = std::move(myMade.outputs);
    for (const osl_ClosureRow *row : myMade.closures)
        myCode->closures.push_back(row);
    return std::move(myCode);
}
} // namespace

std::unique_ptr<osl_Code> osl_finish(osl_Made &made, osl_Registers &registers)
{
    return Analysis(made, registers).run();
}
