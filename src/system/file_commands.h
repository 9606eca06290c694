// The commands of a System step that work on files and folders. Each reads its keys from the
// section, macros replaced in all of them, and fails with one of the texts below or, where they say
// so, with the system's. That is also the text for a name with a zero character inside.
#pragma once

#include "base/strings.h"
#include "config/section_settings.h"

// The keys of the commands.
KeyList FileNameKeys();
KeyList CopyFolderKeys();
KeyList MoveFolderKeys();
KeyList DeleteFileKeys();
KeyList DeleteFolderKeys();
KeyList WriteFileKeys();

// `From`, `To`. A file that is there under the new name is replaced.
// "Copy File: from or to file name is empty."
// "Copy File: source file does not exist."
// the system's text and " Copy '%s' to '%s'"; for a move all three with "Move"
bool CopyFileCommand(String& error, const SectionSettings& settings);
bool MoveFileCommand(String& error, const SectionSettings& settings);

// `From`, `To`. Copies what is in the folder; makes the target with its parents.
// "Copy Folder: from or to folder name is empty."
// "Copy Folder: name is too long"
// "CopyFolder: the target is within the source"
// "CopyFolder: " and the system's text
bool CopyFolderCommand(String& error, const SectionSettings& settings);

// `From`, `To`. Gives a folder another name.
// "Move Folder: from or to folder name is empty."
// "Move Folder: name is too long"
// the system's text and " Move '%s' to '%s'"
bool MoveFolderCommand(String& error, const SectionSettings& settings);

// `File`.
// "Delete file: file name is empty."
// "Delete File: source file '%s' does not exist."
// the system's text
bool DeleteFileCommand(String& error, const SectionSettings& settings);

// `Folder`, with everything in it. A link to a folder is none.
// "Delete folder: folder name is empty."
// "DeleteFolder: name is too long"
// "DeleteFolder: folder to be deleted does not exist"
// "DeleteFolder: the folder is a root, '..' or holds the current folder"
// "DeleteFolder: " and the system's text
bool DeleteFolderCommand(String& error, const SectionSettings& settings);

// `File`, `Text`, `Overwrite`, `Encoding`. Writes the text as a line of its own.
// "Write File: file name or text is empty.", or dFile's messages
bool WriteFileCommand(String& error, const SectionSettings& settings);
