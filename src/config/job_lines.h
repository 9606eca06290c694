// The lines of a job file with those of its includes in their places.
#pragma once

#include <vector>

#include "base/strings.h"
#include "core/place.h"
#include "files/byte_order_mark.h"

struct JobLine {
    String text;
    Place place;
};

struct JobLines {
    std::vector<String> files;  // as they were named; places count from it
    std::vector<JobLine> lines;
};

// The two ways to read a job file.
struct JobFileRules {
    // Loads the lines; `open` opens the files. On failure `error` holds the message.
    bool (*load)(String& error, const String& path, const FileOpener& open, JobLines& job);
    // The line up to its comment.
    StringView (*cut_comment)(StringView line);
    // Errors begin with the place, and count lines within their file.
    bool placed_errors;
};

// Edition 1: a line a byte or by the file's mark, up to the first empty line and up to 16 MiB; one
// level of includes; a comment begins at the first "#" or ";" outside quotes. What is left out is
// told as a notice.
//   "Error loading configuration file: %s"
//   "@include statement. '%s' file is not accessible.\n"
extern const JobFileRules kLooseJobFile;

// Edition 2: UTF-8, or UTF-16 by its mark, read whole; includes within includes, 16 files deep; a
// comment begins at the start of a line or behind a blank. Besides the texts above:
//   "@include statement. '%s' includes itself: %s."          with the chain of names
//   "@include statement. '%s' lies more than 16 files deep: %s."
extern const JobFileRules kStrictJobFile;

// Reads what can be read by the strict rules, before the edition is known. Includes that are
// missing, lead too deep or include themselves are left out, and bytes that are no UTF-8 are
// characters of their own.
extern const JobFileRules kTolerantJobFile;
