#include "UT/UT_ErrorManager.h"

#include "UT/UT_RefArray.h"
#include "UT/errors/ut_ErrorLog.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace
{

const char COMMON[] = "Common";

UT_ErrorManager::ErrorHook errorHook = nullptr;

UT_RefArray<UT_ErrorManager> &managers()
{
    static auto *stack = new UT_RefArray<UT_ErrorManager>; // to the end of the process
    return *stack;
}

bool matches(const UT_Error &error, int severityFilter)
{
    return severityFilter == UT_SEVERITY_NONE || severityFilter == error.getSeverity();
}

} // namespace

UT_ErrorManager::~UT_ErrorManager()
{
    clearAndDestroyErrors();
}

// ---- The stack ---------------------------------------------------------------

UT_ErrorManager &UT_ErrorManager::getCurrent()
{
    if (managers().entries() == 0)
        pushManager();
    return managers().last();
}

void UT_ErrorManager::pushManager()
{
    managers().insert(managers().entries());
}

void UT_ErrorManager::popManager()
{
    if (managers().entries() > 0)
        managers().removeIndex(managers().entries() - 1);
}

// ---- Adding ------------------------------------------------------------------

// Logged first: a full list deletes the record.
int UT_ErrorManager::make(const char *type, int code, const char *text, int severity)
{
    auto *error = new UT_Error(type, code, text, severity);
    ut_ErrorLog::instance().add(*error);
    return addError(error);
}

int UT_ErrorManager::makeWatched(const char *type, int code, const char *text)
{
    if (errorHook) {
        UT_String message;
        UT_Error(type, code, text, UT_SEVERITY_ERROR).getErrorMessage(message, 0, true);
        errorHook(message);
    }
    return make(type, code, text, UT_SEVERITY_ERROR);
}

void UT_ErrorManager::setErrorHook(ErrorHook hook)
{
    errorHook = hook;
}

int UT_ErrorManager::addMessage(const char *type, int code, const char *text)
{
    return make(type, code, text, UT_SEVERITY_MESSAGE);
}

int UT_ErrorManager::addNote(const char *type, int code, const char *text)
{
    return make(type, code, text, UT_SEVERITY_NOTE);
}

int UT_ErrorManager::addWarning(const char *type, int code, const char *text)
{
    return make(type, code, text, UT_SEVERITY_WARNING);
}

int UT_ErrorManager::addError(const char *type, int code, const char *text)
{
    return makeWatched(type, code, text);
}

int UT_ErrorManager::addFatal(const char *type, int code, const char *text)
{
    return make(type, code, text, UT_SEVERITY_FATAL);
}

int UT_ErrorManager::addSystemError(const char *text)
{
    return make("System", errno, text, UT_SEVERITY_ERROR);
}

int UT_ErrorManager::addCommonWarning(int code, const char *text)
{
    return addWarning(COMMON, code, text);
}

int UT_ErrorManager::addCommonError(int code, const char *text)
{
    return makeWatched(COMMON, code, text);
}

int UT_ErrorManager::addError(UT_Error *error)
{
    if (error)
        append(error);
    return getSeverity();
}

// The stored severity may be too high for a moment (records were taken away), never
// too low: what is above it is above all records.
void UT_ErrorManager::append(UT_Error *error)
{
    if (error->getSeverity() > mySeverity) {
        mySeverity = error->getSeverity();
        mySeverityStale = false;
    } else if (myErrors.entries() >= MAX_RECORDS) {
        delete error;
        return;
    }
    myErrors.append(error);
    myReadFlag = false;
}

// ---- Looking -----------------------------------------------------------------

int UT_ErrorManager::getSeverity()
{
    if (mySeverityStale) {
        mySeverity = UT_SEVERITY_NONE;
        for (const UT_Error *error : myErrors)
            mySeverity = std::max(mySeverity, error->getSeverity());
        mySeverityStale = false;
    }
    return mySeverity;
}

const UT_Error *UT_ErrorManager::getError(int index) const
{
    return index >= 0 && index < getNumErrors() ? myErrors(static_cast<unsigned>(index)) : nullptr;
}

int UT_ErrorManager::findError(const char *type, int code) const
{
    for (int i = 0; type && i < getNumErrors(); ++i) {
        const UT_Error *error = getError(i);
        if (error->getCode() == code && std::strcmp(error->getType(), type) == 0)
            return i;
    }
    return -1;
}

int UT_ErrorManager::getErrorMessages(UT_String &out, int severityFilter, bool withPrefix)
{
    int count = 0;
    int previousSeverity = UT_SEVERITY_NONE;
    UT_String message;
    out.assignCopy("");
    for (const UT_Error *error : myErrors) {
        // Records left out count too: their places stay visible.
        if (error != *myErrors.begin())
            out += "\n";
        error->getErrorMessage(message, previousSeverity, withPrefix);
        previousSeverity = error->getSeverity();
        if (!matches(*error, severityFilter) || !message.isNonEmpty())
            continue;
        out += message;
        ++count;
    }
    myReadFlag = true;
    return count;
}

// ---- Taking away ---------------------------------------------------------------

void UT_ErrorManager::clearAndDestroyErrors()
{
    for (unsigned i = myErrors.entries(); i > 0; --i)
        delete myErrors(i - 1);
    myErrors.setCapacity(0);
    mySeverity = UT_SEVERITY_NONE;
    mySeverityStale = false;
    myReadFlag = true;
}

int UT_ErrorManager::removeError(int index)
{
    if (index < 0 || index >= getNumErrors())
        return -1;
    myErrors.removeIndex(static_cast<unsigned>(index));
    mySeverityStale = true;
    return index;
}

int UT_ErrorManager::stealErrors(UT_ErrorManager &src, int first, int last, int severityFilter,
                                 bool copy)
{
    const int end = last < 0 ? src.getNumErrors() : std::min(last, src.getNumErrors() - 1) + 1;
    UT_PtrArray<UT_Error *> taken; // first all of them: the other manager may be this one
    for (int i = std::max(first, 0); i < end; ++i) {
        UT_Error *&error = src.myErrors(static_cast<unsigned>(i));
        if (!matches(*error, severityFilter))
            continue;
        taken.append(copy ? new UT_Error(*error) : error);
        if (!copy)
            error = nullptr;
    }
    if (!copy && taken.entries() > 0) {
        src.myErrors.collapse();
        src.mySeverityStale = true;
    }
    for (UT_Error *error : taken)
        addError(error);
    return static_cast<int>(taken.entries());
}

// ---- On the current manager ------------------------------------------------------

int UTaddMessage(const char *type, int code, const char *text)
{
    return UT_ErrorManager::getCurrent().addMessage(type, code, text);
}

int UTaddNote(const char *type, int code, const char *text)
{
    return UT_ErrorManager::getCurrent().addNote(type, code, text);
}

int UTaddWarning(const char *type, int code, const char *text)
{
    return UT_ErrorManager::getCurrent().addWarning(type, code, text);
}

int UTaddError(const char *type, int code, const char *text)
{
    return UT_ErrorManager::getCurrent().addError(type, code, text);
}

int UTaddFatal(const char *type, int code, const char *text)
{
    return UT_ErrorManager::getCurrent().addFatal(type, code, text);
}

int UTaddSystemError(const char *text)
{
    return UT_ErrorManager::getCurrent().addSystemError(text);
}

int UTaddCommonWarning(int code, const char *text)
{
    return UT_ErrorManager::getCurrent().addCommonWarning(code, text);
}

int UTaddCommonError(int code, const char *text)
{
    return UT_ErrorManager::getCurrent().addCommonError(code, text);
}

int UTaddError(UT_Error *error)
{
    if (error)
        ut_ErrorLog::instance().add(*error);
    return UT_ErrorManager::getCurrent().addError(error);
}

int UTgetErrorSeverity()
{
    return UT_ErrorManager::getCurrent().getSeverity();
}

int UTfindError(const char *type, int code)
{
    return UT_ErrorManager::getCurrent().findError(type, code);
}
