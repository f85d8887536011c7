// Where temporary files go, and names for them.
#pragma once

class UT_String;

// The environment's VELDRIN_TEMP_DIR without one slash at its end, or "/tmp" when it
// is not set. The first answer stays for the life of the process.
const char *UTgetTempDir();

// A name in UTgetTempDir() that no file has yet: `prefix` (null counts as ""), the
// process id and a number. Nothing is created: open it with O_CREAT | O_EXCL. False,
// and an unset result, when the folder cannot be looked into.
[[nodiscard]] bool UTgetTempFileName(UT_String &result, const char *prefix);
