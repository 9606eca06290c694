// Copying, moving and removing files and folders. Failures give the system's text and code.
//
// A link is never followed into or out of a tree: it is copied, moved and removed as a link.
#pragma once

#include "base/error_record.h"
#include "base/strings.h"

namespace platform {

// True for a folder; false for a link to one, named without a separator at the end.
bool IsFolder(const String& name);

// True when `path` is `folder` or somewhere below it, links resolved. Neither must exist.
bool IsWithin(const String& path, const String& folder);

// True for the root of a file system: "/", "C:\", "\\server\share".
bool IsRoot(const String& name);

// The folder that relative names start from.
String CurrentFolder();

// Copies a file, its time of writing included, over what is there under the new name.
bool CopyOneFile(ErrorRecord& error, const String& from, const String& to);

// Gives a file or a folder another name; a file replaces what is there. A file may change to
// another file system, a folder not.
bool MovePath(ErrorRecord& error, const String& from, const String& to);

bool RemoveOneFile(ErrorRecord& error, const String& file);

// Copies everything in the folder `from` into the folder `to`, which is not within `from` and is
// made with its parents. Files are overwritten, folders merged. What was copied before a failure
// stays.
bool CopyFolderContent(ErrorRecord& error, const String& from, const String& to);

// Removes a folder, named without a separator at the end, with everything in it. What was removed
// before a failure is gone.
bool RemoveFolder(ErrorRecord& error, const String& folder);

}  // namespace platform
