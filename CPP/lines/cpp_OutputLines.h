// The lines that are made, not read: markers and diagnostics.
#pragma once

class CPP_File;
class UT_ScratchBuffer;
class UT_String;

enum cpp_Severity : int { CPP_ERROR, CPP_WARNING };

// Where no file is open.
inline constexpr char CPP_NO_FILE[] = "<unknown>";

// # 12 "name"
void makeMarker(UT_ScratchBuffer &out, int lineNumber, const char *name);

// # error cpp error: "file":12 message
// Without the place where no file is open (null). The message brings its own newline, if any.
void makeDiagnostic(UT_String &out, cpp_Severity severity, const CPP_File *file,
                    const char *message);
