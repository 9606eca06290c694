// The keys of the Globals section and of the Settings section of a step.
#pragma once

#include "core/key.h"

inline constexpr KeyTable kGlobalsKeys({
    {.name = u"Edition",
     .kind = KeyKind::Number,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"the defaults of this job: 1 or 2",
     .since = Since::Later},
    {.name = u"StopOnError",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"whether a failed preparation or System step ends the run"},
    {.name = u"environment", .meaning = u"environment variables that become macros, with commas"},
    {.name = u"UnknownKeys",
     .kind = KeyKind::Word,
     .words = u"Ignore Refuse",
     .edition1 = u"Ignore",
     .edition2 = u"Refuse",
     .meaning = u"keys, sections and switches that nobody reads, and keys given twice",
     .since = Since::Later},
    {.name = u"UnresolvedMacros",
     .kind = KeyKind::Word,
     .words = u"Keep Refuse",
     .edition1 = u"Keep",
     .edition2 = u"Refuse",
     .meaning = u"a macro that is left in a value whose macros are replaced",
     .since = Since::Later},
    {.name = u"MaskSecrets",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"1",
     .meaning = u"show passwords and other secrets as *** in all that the program tells",
     .since = Since::Later},
    {.name = u"MessagesTo",
     .kind = KeyKind::Word,
     .words = u"Output Error",
     .edition1 = u"Output",
     .edition2 = u"Error",
     .meaning = u"the standard stream that takes messages where there is no log file",
     .since = Since::Later},
});
inline constexpr Key kEdition = kGlobalsKeys[u"Edition"];
inline constexpr Key kStopOnError = kGlobalsKeys[u"StopOnError"];
inline constexpr Key kEnvironment = kGlobalsKeys[u"environment"];
inline constexpr Key kUnknownKeys = kGlobalsKeys[u"UnknownKeys"];
inline constexpr Key kUnresolvedMacros = kGlobalsKeys[u"UnresolvedMacros"];
inline constexpr Key kMaskSecrets = kGlobalsKeys[u"MaskSecrets"];
inline constexpr Key kMessagesTo = kGlobalsKeys[u"MessagesTo"];

enum class UnknownKeys { Ignore, Refuse };
enum class UnresolvedMacros { Keep, Refuse };
enum class MessagesTo { Output, Error };

inline constexpr KeyTable kSettingsKeys({
    {.name = u"Log",
     .meaning = u"the step's log file; messages go there only",
     .macros = Macros::Replaced,
     .names = Names::File},
    {.name = u"Overwrite",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"start the log file empty"},
    {.name = u"ShowProgress",
     .kind = KeyKind::Number,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"a dot among the messages for every so many rows; 0 for none"},
    {.name = u"Progress",
     .kind = KeyKind::Word,
     .words = u"Off Auto On",
     .edition1 = u"Off",
     .edition2 = u"Auto",
     .meaning = u"a line on standard error that tells how far the step is; Auto: on a terminal",
     .since = Since::Later},
    {.name = u"OnReadError",
     .kind = KeyKind::Word,
     .words = u"End Stop",
     .edition1 = u"End",
     .edition2 = u"Stop",
     .meaning = u"reading that fails ends the rows as if they were all, or fails the step",
     .since = Since::Later},
    {.name = u"DateMacroFormat",
     .edition2 = u"YYYY-MM-DD",
     .meaning = u"the layout of $DATE$, of YYYY, MM and DD"},
    {.name = u"TimeMacroFormat",
     .edition2 = u"HHMMSS",
     .meaning = u"the layout of $TIME$, of HH, MM and SS"},
});
inline constexpr Key kLog = kSettingsKeys[u"Log"];
inline constexpr Key kLogOverwrite = kSettingsKeys[u"Overwrite"];
inline constexpr Key kShowProgress = kSettingsKeys[u"ShowProgress"];
inline constexpr Key kProgress = kSettingsKeys[u"Progress"];
inline constexpr Key kOnReadError = kSettingsKeys[u"OnReadError"];
inline constexpr Key kDateMacroFormat = kSettingsKeys[u"DateMacroFormat"];
inline constexpr Key kTimeMacroFormat = kSettingsKeys[u"TimeMacroFormat"];

enum class Progress { Off, Auto, On };
enum class OnReadError { End, Stop };
