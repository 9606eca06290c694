// The one line that tells of a fatal fault before the process ends.
#pragma once

namespace platform {

// While it lives, a fault that nothing else handles is reported on standard output:
//   Internal product error: Code = 0xC0000005, Address = 0x0000000140001234 State=Main loop in
//   module=C:\Tools\quillon.exe
// (on one line). Then the system ends the process in its own way, with the exception's code as exit
// status on Windows and by the signal elsewhere. Of several faults the first is reported.
//
// There is one at a time, made before all else in the main thread: the modules that the report can
// name are those of the process at that moment.
class CrashReport {
public:
    CrashReport();
    // Puts back what handled faults before.
    ~CrashReport();
    CrashReport(const CrashReport&) = delete;
    CrashReport& operator=(const CrashReport&) = delete;
};

}  // namespace platform
