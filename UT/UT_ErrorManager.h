// Collects the errors of an operation, to be shown or looked at afterwards.
//
// Managers form a stack that the whole process shares; the functions at the end
// work on its top, the current manager. An operation that wants its errors for
// itself pushes a manager and pops it again. The records are the manager's. Their
// highest severity is the manager's severity.
//
// A full manager, one with MAX_RECORDS, takes in only what is more severe than all
// it has. Records made here are also logged (ut_ErrorLog.h). The log may be used by
// several threads, managers and catalogues by one.
//
// A run of thumbrender does not come here: this is for other users of the library.
#pragma once

#include "UT/UT_Error.h"
#include "UT/UT_PtrArray.h"

class UT_ErrorManager
{
public:
    static constexpr unsigned MAX_RECORDS = 40;

    UT_ErrorManager() = default;
    ~UT_ErrorManager();
    UT_ErrorManager(const UT_ErrorManager &) = delete;
    UT_ErrorManager &operator=(const UT_ErrorManager &) = delete;

    // ---- The stack ---------------------------------------------------------

    // The top; an empty stack gets a manager first. The reference lasts until the
    // next push or pop.
    static UT_ErrorManager &getCurrent();
    static void pushManager();
    static void popManager(); // nothing happens to an empty stack

    // ---- Adding: log the record, add it, give the manager's severity --------
    // `type` is borrowed, `text` copied; see UT_Error.

    int addMessage(const char *type, int code, const char *text = nullptr);
    int addNote(const char *type, int code, const char *text = nullptr);
    int addWarning(const char *type, int code, const char *text = nullptr);
    int addError(const char *type, int code, const char *text = nullptr);
    int addFatal(const char *type, int code, const char *text = nullptr);

    // The system's error of the current errno.
    int addSystemError(const char *text = nullptr);

    // From the table "Common".
    int addCommonWarning(int code, const char *text = nullptr);
    int addCommonError(int code, const char *text = nullptr);

    // Adopts a record and does not log it. It may be gone afterwards: see above.
    int addError(UT_Error *error);

    // ---- Looking -------------------------------------------------------------

    int getSeverity();
    int getNumErrors() const { return static_cast<int>(myErrors.entries()); }

    // Null outside the list. The record stays ours.
    const UT_Error *getError(int index) const;

    // Index of the first record with that table and code, or -1.
    int findError(const char *type, int code) const;

    // Sets `out` to the messages of all records, or of those with one severity;
    // one newline for each record after the first, also for those left out.
    // Returns how many messages there are. See UT_Error about the prefix.
    int getErrorMessages(UT_String &out, int severityFilter, bool withPrefix);

    // Nothing was added since the messages were fetched or the list was cleared.
    bool isRead() const { return myReadFlag; }

    // ---- Taking away -----------------------------------------------------------

    void clearAndDestroyErrors();

    // Takes a record out, which is the caller's then. Its index, or -1.
    int removeError(int index);

    // Moves, or copies, records `first` to `last` (negative: to the end) of another
    // manager to this one: all, or those with one severity. Returns how many.
    int stealErrors(UT_ErrorManager &src, int first, int last, int severityFilter, bool copy);

    // ---- Watching ----------------------------------------------------------------

    // Called with the prefixed message of each addError(type, ...) and
    // addCommonError(); null, as at the start, for nobody.
    using ErrorHook = void (*)(const char *message);
    static void setErrorHook(ErrorHook hook);

private:
    int make(const char *type, int code, const char *text, int severity);
    int makeWatched(const char *type, int code, const char *text);
    void append(UT_Error *error);

    UT_PtrArray<UT_Error *> myErrors; // ours; oldest first
    int mySeverity = UT_SEVERITY_NONE;
    bool myReadFlag = false;
    bool mySeverityStale = false; // records were taken away: look again
};

// ---- The same on the current manager ---------------------------------------------

int UTaddMessage(const char *type, int code, const char *text = nullptr);
int UTaddNote(const char *type, int code, const char *text = nullptr);
int UTaddWarning(const char *type, int code, const char *text = nullptr);
int UTaddError(const char *type, int code, const char *text = nullptr);
int UTaddFatal(const char *type, int code, const char *text = nullptr);
int UTaddSystemError(const char *text = nullptr);
int UTaddCommonWarning(int code, const char *text = nullptr);
int UTaddCommonError(int code, const char *text = nullptr);
int UTaddError(UT_Error *error); // unlike the manager's, logs it as well
int UTgetErrorSeverity();
int UTfindError(const char *type, int code);

// The codes of the table "Common" that the library itself uses.
enum UT_CommonError {
    UT_COMMON_SAVE_FAILED = 4 // text: what failed, why and where
};

// To be called behind writing that set errno, which is to be 0 before it: adds
// UT_COMMON_SAVE_FAILED to the current manager and gives false when errno tells that
// what was written is lost (EIO, EMFILE, ENOSPC, EROFS, ENOSTR, ENOSR, ETIMEDOUT).
// Otherwise true. With VELDRIN_VERBOSE_ERROR any errno but 0 is reported on standard
// error as well. Null counts as "".
[[nodiscard]] bool UTcheckSaveError(const char *operation, const char *path);
