#include "osl/run/osl_Machine.h"

#include <algorithm>
#include <cstring>
#include <utility>

const osl_Machine::ActRow osl_Machine::ACTS[] = {
    {OSL_ELEMENT, &osl_Machine::element},
    {OSL_ELEMENTI, &osl_Machine::element},
    {OSL_SET_ELEMENT, &osl_Machine::setElement},
    {OSL_SET_ELEMENTI, &osl_Machine::setElement},
    {OSL_SPACES, &osl_Machine::spaces},
    {OSL_GETMATRIX, &osl_Machine::getMatrix},
    {OSL_TRANSFORMU, &osl_Machine::transformUnits},
    {OSL_TRANSFORMC, &osl_Machine::transformColour},
    {OSL_NOISE, &osl_Machine::noise},
    {OSL_HASHI, &osl_Machine::hashInt},
    {OSL_HASHF, &osl_Machine::hashFloats},
    {OSL_HASHS, &osl_Machine::hashText},
    {OSL_SPLINE, &osl_Machine::spline},
    {OSL_SPLINEINVERSE, &osl_Machine::splineInverse},
    {OSL_PRINTF, &osl_Machine::printText},
    {OSL_FPRINTF, &osl_Machine::printText},
    {OSL_ERROR, &osl_Machine::printText},
    {OSL_WARNING, &osl_Machine::printText},
    {OSL_FORMAT, &osl_Machine::formatText},
    {OSL_CONCAT, &osl_Machine::concat},
    {OSL_STRLEN, &osl_Machine::strlen},
    {OSL_STARTSWITH, &osl_Machine::startsWith},
    {OSL_ENDSWITH, &osl_Machine::endsWith},
    {OSL_STOI, &osl_Machine::stoi},
    {OSL_STOF, &osl_Machine::stof},
    {OSL_SPLIT, &osl_Machine::split},
    {OSL_SUBSTR, &osl_Machine::substr},
    {OSL_GETCHAR, &osl_Machine::getChar},
    {OSL_REGEX_SEARCH, &osl_Machine::regex},
    {OSL_REGEX_MATCH, &osl_Machine::regex},
    {OSL_TEXTURE, &osl_Machine::texture},
    {OSL_TEXTURE3D, &osl_Machine::texture3d},
    {OSL_ENVIRONMENT, &osl_Machine::environment},
    {OSL_TEXTUREINFO, &osl_Machine::textureInfo},
    {OSL_CLOSURE, &osl_Machine::makeClosure},
    {OSL_CLOSURE_ADD, &osl_Machine::addClosures},
    {OSL_CLOSURE_MUL, &osl_Machine::scaleClosure},
    {OSL_USERDATA, &osl_Machine::userdata},
    {OSL_GETATTRIBUTE, &osl_Machine::getAttribute},
    {OSL_SETMESSAGE, &osl_Machine::setMessage},
    {OSL_GETMESSAGE, &osl_Machine::getMessage},
    {OSL_SURFACEAREA, &osl_Machine::surfaceArea},
    {OSL_BACKFACING, &osl_Machine::backfacing},
    {OSL_RAYTYPE, &osl_Machine::rayType},
    {OSL_ISCONNECTED, &osl_Machine::isConnected},
    {OSL_TRACE, &osl_Machine::trace},
    {OSL_DICT_FIND, &osl_Machine::dictFind},
    {OSL_DICT_NEXT, &osl_Machine::dictNext},
    {OSL_DICT_VALUE, &osl_Machine::dictValue},
    {OSL_POINTCLOUD, &osl_Machine::nothingFound},
};

osl_Machine::osl_Machine(std::shared_ptr<const OSL_Program> program, OSL_Renderer &renderer,
                         int width)
    : myProgram(std::move(program)), myCode(myProgram->code()), myRenderer(renderer),
      myWidth(width), myTexts(myCode.texts), myEvents(static_cast<size_t>(width)),
      myMessages(static_cast<size_t>(width))
{
    constexpr size_t ALIGNMENT = 64;
    const size_t words =
        static_cast<size_t>(myCode.words + 3 * MOST_BESIDE) * static_cast<size_t>(width);
    myStorage.assign(words + ALIGNMENT / sizeof(int), 0);
    void *start = myStorage.data();
    size_t room = myStorage.size() * sizeof(int);
    myMemory = static_cast<int *>(std::align(ALIGNMENT, words * sizeof(int), start, room));
    prepare();
}

namespace
{
// Operations that take as long as so many short ones, noise for each word that it gives: no loop
// without end gets more than a second or two.
const struct {
    osl_Op op;
    unsigned cost;
} COSTS[] = {
    {OSL_POW, 12},        {OSL_MDIV, 50},         {OSL_MDIVF, 50},       {OSL_SPACES, 80},
    {OSL_GETMATRIX, 160}, {OSL_TRANSFORMU, 12},   {OSL_BLACKBODY, 600},  {OSL_WAVELENGTH, 16},
    {OSL_NOISE, 30},      {OSL_FORMAT, 120},      {OSL_PRINTF, 160},     {OSL_FPRINTF, 200},
    {OSL_ERROR, 400},     {OSL_WARNING, 400},     {OSL_SPLIT, 20},       {OSL_TEXTURE, 250},
    {OSL_TEXTURE3D, 80},  {OSL_ENVIRONMENT, 250}, {OSL_TEXTUREINFO, 40}, {OSL_GETATTRIBUTE, 30},
    {OSL_TRANSFORMC, 10}, {OSL_USERDATA, 20},     {OSL_TRACE, 400},      {OSL_DICT_FIND, 40},
    {OSL_DICT_VALUE, 20},
};

unsigned costOf(const osl_Instruction &in)
{
    const auto words = static_cast<unsigned>(in.words);
    const unsigned cost = 1 + (words >> 4);
    for (const auto &row : COSTS) {
        if (row.op == in.op)
            return cost + (in.op == OSL_NOISE ? words : 1) * row.cost;
    }
    return cost;
}
} // namespace

// Constants into their places, and for each instruction who does it.
void osl_Machine::prepare()
{
    for (size_t i = 0; i < myCode.constants.size(); ++i)
        std::fill_n(ints(myCode.constantsAt + static_cast<int>(i)), myWidth, myCode.constants[i]);
    const osl_KernelSet &one = osl_kernels(1, myWidth);
    const osl_KernelSet &all = osl_kernels(myWidth, myWidth);
    Act acts[OSL_OPS] = {};
    for (const ActRow &row : ACTS)
        acts[row.op] = row.act;
    for (In in : myCode.instructions) {
        const osl_KernelSet &set = in.isUniform ? one : all;
        Step step;
        step.act = acts[in.op];
        step.kernel = in.hasDerivatives ? set.dual[in.op] : set.plain[in.op];
        if (step.kernel == nullptr && in.hasDerivatives) {
            step.kernel = set.plain[in.op];
            step.clearsDerivatives = step.kernel != nullptr;
        }
        step.in = &in;
        step.operands = operands(in);
        step.cost = costOf(in);
        step.isPlain =
            step.kernel != nullptr && !step.clearsDerivatives && !in.isMasked && !in.isSpread;
        mySteps.push_back(step);
    }
    prepareBeside();
    for (const osl_CodeOutput &from : myCode.outputs) {
        const osl_RegisterInfo &info = myCode.registers[static_cast<size_t>(from.reg)];
        OSL_Output made;
        made.type = from.type;
        made.words = info.words;
        made.ints = ints(info.at);
        made.floats = floats(info.at);
        made.stride = myWidth;
        myOutputs.push_back(made);
        myOutputNames.emplace(from.name, &myOutputs.back());
    }
}

// Kernels under a mask get a place beside the registers for what they make.
void osl_Machine::prepareBeside()
{
    for (Step &step : mySteps) {
        if (step.kernel == nullptr || !step.in->isMasked || step.in->words > MOST_BESIDE)
            continue;
        myBeside.emplace_back(step.operands, step.operands + step.in->count);
        osl_Operand &result = myBeside.back()[0];
        const bool hasDerivatives = result.dx != myCode.zerosAt;
        result.at = myCode.words;
        result.dx = hasDerivatives ? result.at + step.in->words : myCode.zerosAt;
        result.dy = hasDerivatives ? result.dx + step.in->words : myCode.zerosAt;
        step.beside = myBeside.back().data();
    }
}

const OSL_Output *osl_Machine::output(const std::string &name) const
{
    const auto found = myOutputNames.find(name);
    return found == myOutputNames.end() ? nullptr : found->second;
}

// ---- The run --------------------------------------------------------------

// Lanes behind the last point repeat it: what they compute is thrown away.
void osl_Machine::loadWord(int at, const float *from)
{
    const int count = __builtin_popcount(myFull);
    float *to = floats(at);
    if (from == nullptr) {
        std::fill_n(to, myWidth, 0.0f);
        return;
    }
    std::copy_n(from, count, to);
    std::fill(to + count, to + myWidth, from[count - 1]);
}

void osl_Machine::loadGlobal(int number, const OSL_Varying &from)
{
    const int reg = myCode.globals[static_cast<size_t>(number)];
    if (reg < 0)
        return;
    const osl_RegisterInfo &info = myCode.registers[static_cast<size_t>(reg)];
    for (int word = 0; word < info.words; ++word) {
        loadWord(info.at + word, from.value[word]);
        if (!info.hasDerivatives)
            continue;
        loadWord(info.dx + word, from.dx[word]);
        loadWord(info.dy + word, from.dy[word]);
    }
}

void osl_Machine::loadGlobals(const OSL_Points &points)
{
    const OSL_Varying *const all[] = {&points.P,    &points.I,    &points.N,     &points.Ng,
                                      &points.dPdu, &points.dPdv, &points.Ps,    &points.u,
                                      &points.v,    &points.time, &points.dtime, &points.dPdtime};
    int number = 0;
    for (const OSL_Varying *global : all)
        loadGlobal(number++, *global);
    const int reg = myCode.globals[12]; // Ci
    if (reg >= 0)
        std::fill_n(ints(myCode.registers[static_cast<size_t>(reg)].at), myWidth, 0);
}

bool osl_Machine::run(const OSL_Points &points)
{
    if (isStopped)
        return false;
    myFull = points.count >= 32 ? ~0u : (1u << points.count) - 1;
    myMask = myFull;
    myDead = 0;
    myFirstPoint = points.first;
    myFrames.clear();
    myClosures.clear();
    myTexts.tidy();
    myOutputBytes = 0;
    for (auto &messages : myMessages)
        messages.clear();
    loadGlobals(points);
    execute();
    sendEvents();
    return !isStopped;
}

void osl_Machine::execute()
{
    uint64_t done = 0;
    uint64_t spent = 0;
    // Of each point by itself, so that batches and what was said or read before make no difference:
    // without ways through the code, and without extra costs.
    uint64_t points = static_cast<uint64_t>(__builtin_popcount(myMask));
    myExtraCost = 0;
    int at = 0;
    while (at >= 0 && !isStopped) {
        const Step &step = mySteps[static_cast<size_t>(at)];
        ++done;
        // Long registers count by their length, so that the time is bounded as well.
        spent += step.cost;
        if (spent > MAX_INSTRUCTIONS)
            stop("takes too long: a loop without end?");
        if (step.in->op >= OSL_IF) {
            at = control(*step.in, at);
            points = static_cast<uint64_t>(__builtin_popcount(myMask));
            continue;
        }
        myPointSteps += step.cost * points;
        if (step.isPlain) {
            step.kernel(myMemory, *step.in, step.operands);
            ++at;
            continue;
        }
        doStep(step);
        spent += std::exchange(myExtraCost, 0);
        ++at;
    }
    myDone += done * static_cast<uint64_t>(__builtin_popcount(myFull));
}

void osl_Machine::doStep(const Step &step)
{
    In in = *step.in;
    const bool isPartial = in.isMasked && myMask != myFull;
    if (isPartial && step.beside != nullptr)
        return doBeside(step);
    if (isPartial)
        saveResult(in);
    if (step.kernel != nullptr)
        step.kernel(myMemory, in, step.operands);
    else if (step.act != nullptr)
        (this->*step.act)(in);
    if (step.clearsDerivatives)
        clearDerivatives(step.operands[0], in.words);
    if (in.isSpread)
        broadcast(step.operands[0], in.words);
    if (isPartial)
        restoreResult(in);
}

void osl_Machine::doBeside(const Step &step)
{
    step.kernel(myMemory, *step.in, step.beside);
    if (step.clearsDerivatives)
        clearDerivatives(step.beside[0], step.in->words);
    copyLanesOn(step.operands[0], step.beside[0], step.in->words);
}

// From the first lane to all.
void osl_Machine::broadcast(const osl_Operand &operand, int count)
{
    const bool hasDerivatives = operand.dx != myCode.zerosAt;
    for (const int at : {operand.at, operand.dx, operand.dy}) {
        for (int word = 0; word < count; ++word)
            std::fill_n(words(at + word), myWidth, words(at + word)[0]);
        if (!hasDerivatives)
            return;
    }
}

void osl_Machine::clearDerivatives(const osl_Operand &result, int count)
{
    if (result.dx == myCode.zerosAt)
        return;
    for (const int at : {result.dx, result.dy})
        std::fill_n(words(at), static_cast<size_t>(count) * static_cast<size_t>(myWidth), 0);
}

const int *osl_Machine::lanesOn()
{
    if (myLanesOnMask != myMask) {
        myLanesOnMask = myMask;
        for (int lane = 0; lane < myWidth; ++lane)
            myLanesOn[lane] = -static_cast<int>(myMask >> lane & 1);
    }
    return myLanesOn;
}

void osl_Machine::copyLanesOn(const osl_Operand &toOperand, const osl_Operand &fromOperand,
                              int count)
{
    const int *on = lanesOn();
    const int starts[3][2] = {{toOperand.at, fromOperand.at},
                              {toOperand.dx, fromOperand.dx},
                              {toOperand.dy, fromOperand.dy}};
    const int parts = toOperand.dx != myCode.zerosAt ? 3 : 1;
    for (int part = 0; part < parts; ++part) {
        osl_Word *to = words(starts[part][0]);
        const osl_Word *from = words(starts[part][1]);
        for (int word = 0; word < count; ++word, to += myWidth, from += myWidth) {
            for (int lane = 0; lane < myWidth; ++lane)
                to[lane] = (from[lane] & on[lane]) | (to[lane] & ~on[lane]);
        }
    }
}

void osl_Machine::saveResult(In in)
{
    const osl_Operand &result = operands(in)[0];
    const size_t size = static_cast<size_t>(in.words) * static_cast<size_t>(myWidth);
    const bool hasDerivatives = result.dx != myCode.zerosAt;
    mySaved.resize(std::max(mySaved.size(), size * 3));
    std::memcpy(mySaved.data(), words(result.at), size * sizeof(int));
    if (!hasDerivatives)
        return;
    std::memcpy(&mySaved[size], words(result.dx), size * sizeof(int));
    std::memcpy(&mySaved[2 * size], words(result.dy), size * sizeof(int));
}

void osl_Machine::restoreResult(In in)
{
    const osl_Operand &result = operands(in)[0];
    const bool hasDerivatives = result.dx != myCode.zerosAt;
    const int *on = lanesOn();
    const int *saved = mySaved.data();
    for (const int at : {result.at, result.dx, result.dy}) {
        osl_Word *to = words(at);
        for (int word = 0; word < in.words; ++word, to += myWidth, saved += myWidth) {
            for (int lane = 0; lane < myWidth; ++lane)
                to[lane] = (to[lane] & on[lane]) | (saved[lane] & ~on[lane]);
        }
        if (!hasDerivatives)
            return;
    }
}

// ---- Messages -------------------------------------------------------------

void osl_Machine::stop(const std::string &why)
{
    report(0, Event::ERROR, "Shader [" + myCode.shader + "] " + why);
    isStopped = true;
}

void osl_Machine::report(int lane, Event::Kind kind, std::string text)
{
    if (kind == Event::ERROR || kind == Event::WARNING) {
        constexpr size_t MOST = 10000;
        if (myReported.size() > MOST || !myReported.insert(text).second)
            return;
    }
    myExtraCost += text.size();
    myOutputBytes += text.size() + (kind == Event::FILE ? sizeof(Event) : 0);
    if (myOutputBytes > MAX_OUTPUT && !isStopped)
        return stop("prints too much");
    auto &events = myEvents[static_cast<size_t>(lane)];
    if (kind == Event::PRINT && !events.empty() && events.back().kind == Event::PRINT)
        events.back().text += text;
    else
        events.push_back({kind, std::move(text), ""});
}

void osl_Machine::error(In in, int lane, std::string text)
{
    if (in.isUniform && myMask != 0)
        lane = __builtin_ctz(myMask);
    report(lane, Event::ERROR, std::move(text));
}

std::string osl_Machine::placeText(In in) const
{
    return myCode.files[static_cast<size_t>(in.place.file)] + ":" + std::to_string(in.place.line);
}

void osl_Machine::sendEvents()
{
    for (auto &events : myEvents) {
        for (const Event &event : events) {
            if (event.kind == Event::PRINT)
                myRenderer.print(event.text);
            else if (event.kind == Event::FILE)
                myRenderer.appendToFile(event.file, event.text);
            else
                myRenderer.message(event.kind == Event::ERROR ? OSL_Renderer::ERROR
                                                              : OSL_Renderer::WARNING,
                                   event.text);
        }
        events.clear();
    }
}

// ---- Access ---------------------------------------------------------------

int osl_Machine::newText(std::string_view text)
{
    myExtraCost += text.size();
    const int handle = myTexts.handle(text);
    if (handle < 0 && !isStopped)
        stop("makes too many texts");
    return std::max(handle, 0);
}

osl_Dual osl_Machine::dualAt(const osl_Operand &o, int lane, int word)
{
    word *= o.step;
    return {floats(o.at + word)[lane], floats(o.dx + word)[lane], floats(o.dy + word)[lane]};
}

osl_DualVec osl_Machine::dualVectorAt(const osl_Operand &o, int lane)
{
    return {dualAt(o, lane, 0), dualAt(o, lane, 1), dualAt(o, lane, 2)};
}

void osl_Machine::setDerivatives(const osl_Operand &o, int lane, int word, float dx, float dy)
{
    if (o.dx == myCode.zerosAt)
        return;
    floats(o.dx + word)[lane] = dx;
    floats(o.dy + word)[lane] = dy;
}

// A value of the operand's type.
void osl_Machine::setValue(const osl_Operand &o, int lane, const OSL_Value &value)
{
    int word = 0;
    for (const int number : value.ints)
        setInt(o, lane, number, word++);
    for (const float number : value.floats) {
        setDerivatives(o, lane, word, 0, 0);
        setFloat(o, lane, number, word++);
    }
    for (const std::string &text : value.strings)
        setText(o, lane, text, word++);
}
