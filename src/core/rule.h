#pragma once

// What edition 2 of the job file does otherwise without a key for it. Who follows such a rule asks
// for the rule by its name and never for the edition.
enum class Rule {
    PlacedMessages,        // failures say step, place, role and row
    DataOwnsOutput,        // no message mixes into data that a step writes to standard output
    QuickJobNeedsNoFile,   // "-Type" makes a job where no job file is named and none is there
    FailedStepsCount,      // a failed step makes the exit status that of a failure
    RowFollowsColumns,     // each row has as many values as its result set has columns
    NextSetMustBegin,      // a target that cannot go on to the next result set fails the step
    BatchSizeChecked,      // a batch of no rows is refused
    StrictTexts,           // query and page files are UTF-8 or UTF-16 by their mark, and read whole
    FilesMustClose,        // a file that cannot be closed fails the step
    FilesMadeOnce,         // a step that would make the same file twice is refused
    AppendKeepsEncoding,   // appending goes on in the job's encoding; an empty file counts as new
    ConsoleIsForAll,       // STDOUT and CONSOLE are standard output for every file target
    NoEmptyTables,         // no table without rows stands between two result sets
    TabHasEscape,          // a delimiter may be written as \t
    EmptyTextIsTold,       // a text file that should hold names and is empty is told of by its name
    DataTypesChecked,      // a word of DataTypes that is none is refused
    WidthsAsWritten,       // fixed widths are those of what is written, in every result set
    LossesAreCounted,      // the statistics count records skipped and rows rejected
    DriversQuotes,         // names in queries stand between the quotes that the driver tells
    TransformsFollowSets,  // transformers change the columns of each result set, which has them
    SchemaIsMacro,         // "$SCHEMA$" is replaced beside "$TABLE$"
    MacroIsOneName,        // the value of a macro inside a table's name is one whole name
    BytesAsDigits,         // bytes of databases are read whole, as hexadecimal digits
    TargetsAreDescribed,   // a table that takes rows is described without reading it
    ColumnsMustBeTold,     // a result fails of which the driver does not tell the columns
    FoldersMoveAlone,      // MoveFolder moves no file
    WholeLines,            // WriteFile adds a whole line of its own or tells why there is none
    LoadsAreExact,         // what a database would change, fold or double in silence is prevented
    MemoryFailsStep,       // a step that memory runs out in fails and says so, and is no crash
};
