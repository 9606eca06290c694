// The switches of the command line.
#pragma once

#include "core/key.h"

inline constexpr KeyTable kSwitches({
    {.name = u"-config",
     .meaning = u"the job file; default: quillon.qpr beside the program",
     .names = Names::FileRead},
    {.name = u"-silent",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"no banner, statistics and progress"},
    {.name = u"-Q", .kind = KeyKind::Flag, .meaning = u"list the job before it runs"},
    {.name = u"-Log", .meaning = u"the log file of all steps", .names = Names::File},
    {.name = u"-Edition",
     .kind = KeyKind::Number,
     .meaning = u"the defaults of this run: 1 or 2",
     .since = Since::Later},
    {.name = u"-help",
     .meaning = u"show help on the program, or on a type, a command or a section; runs nothing",
     .since = Since::Later},
    {.name = u"-version",
     .kind = KeyKind::Flag,
     .meaning = u"show the version; runs nothing",
     .since = Since::Later},
    {.name = u"-check",
     .kind = KeyKind::Word,
     .words = u"1 connect",
     .meaning = u"read the job, tell its mistakes and run nothing; connect: ask databases too",
     .since = Since::Later},
    {.name = u"-only",
     .meaning = u"run these steps: numbers from 1, and ranges of them, with commas",
     .since = Since::Later},
    {.name = u"-from",
     .kind = KeyKind::Number,
     .meaning = u"run the steps from this one on, counted from 1",
     .since = Since::Later},
    {.name = u"-report",
     .meaning = u"write a report of the run in JSON to this file",
     .since = Since::Later,
     .names = Names::File},
    {.name = u"-Type",
     .meaning = u"DatabaseQueryToTextFile: make every step export a query to a text file"},
    {.name = u"-DSN", .meaning = u"DSN of the Source", .names = Names::DataSource},
    {.name = u"-Query", .meaning = u"Query of the Source"},
    {.name = u"-Login", .meaning = u"User of the Source"},
    {.name = u"-Password", .meaning = u"Password of the Source", .names = Names::Secret},
    {.name = u"-Script", .meaning = u"QueryFile of the Source", .names = Names::FileRead},
    {.name = u"-Header", .meaning = u"Header of the Target"},
    {.name = u"-Output", .meaning = u"Name of the Target", .names = Names::File},
    {.name = u"-LogName", .meaning = u"Log of the Settings", .names = Names::File},
});
inline constexpr Key kConfigSwitch = kSwitches[u"-config"];
inline constexpr Key kSilentSwitch = kSwitches[u"-silent"];
inline constexpr Key kListSwitch = kSwitches[u"-Q"];
inline constexpr Key kLogSwitch = kSwitches[u"-Log"];
inline constexpr Key kEditionSwitch = kSwitches[u"-Edition"];
inline constexpr Key kHelpSwitch = kSwitches[u"-help"];
inline constexpr Key kVersionSwitch = kSwitches[u"-version"];
inline constexpr Key kCheckSwitch = kSwitches[u"-check"];
inline constexpr std::size_t kCheckConnect = 1;  // the word "connect" of "-check"
inline constexpr Key kOnlySwitch = kSwitches[u"-only"];
inline constexpr Key kFromSwitch = kSwitches[u"-from"];
inline constexpr Key kReportSwitch = kSwitches[u"-report"];
inline constexpr Key kTypeSwitch = kSwitches[u"-Type"];
inline constexpr Key kOutputSwitch = kSwitches[u"-Output"];
