// Copying, moving and removing files and folders. Failures give the system's text and code. Names
// with a zero character inside are refused as the system refuses invalid ones.
//
// A link is never followed into or out of a tree: it is copied, moved and removed as a link.
#pragma once

#include <optional>

#include "base/error_record.h"
#include "base/strings.h"

namespace platform {

// True for a text that may name a file or a folder, whether there is one or not.
bool CheckName(ErrorRecord& error, const String& name);

// True for a folder; false for a link to one, named without a separator at the end.
bool IsFolder(const String& name);

// True when `path` is `folder` or somewhere below it, links resolved. Neither must exist. Nothing
// when the system does not tell where one of them leads.
std::optional<bool> IsWithin(ErrorRecord& error, const String& path, const String& folder);

// True for a folder that nobody wants to lose: the root of a file system ("/", "C:\",
// "\\server\share") and one that holds the folder that the program runs in. Nothing as above.
std::optional<bool> IsRootOrHoldsCurrentFolder(ErrorRecord& error, const String& folder);

// Copies a file, its time of writing included, over what is there under the new name. Of a file
// that is there, the old or the new one is whole at any time: the copy is made beside it under a
// name of its own. Where that cannot be (in a folder without the right to make files, for a file
// with several names), it is overwritten in place.
bool CopyOneFile(ErrorRecord& error, const String& from, const String& to);

// Gives a file or a folder another name; a file replaces what is there. A file may change to
// another file system, a folder not. After a failure the file is whole under its old name. Fails as
// a file that exists when `to` is the file that `from` is or leads to, under another name.
bool MovePath(ErrorRecord& error, const String& from, const String& to);

// The same with a folder or a link to one, which replaces nothing. Fails for what is no folder.
bool MoveOneFolder(ErrorRecord& error, const String& from, const String& to);

bool RemoveOneFile(ErrorRecord& error, const String& file);

// Copies everything in the folder `from` into the folder `to`, which is not within `from` and is
// made with its parents. Files are overwritten, folders merged. What was copied before a failure
// stays.
bool CopyFolderContent(ErrorRecord& error, const String& from, const String& to);

// Removes a folder, named without a separator at the end, with everything in it. What was removed
// before a failure is gone.
bool RemoveFolder(ErrorRecord& error, const String& folder);

}  // namespace platform
