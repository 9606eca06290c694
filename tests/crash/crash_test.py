#!/usr/bin/env python3
"""What is reported when a program crashes, and how it ends. The program of crash.cpp crashes."""
import pathlib
import re
import resource
import signal
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from program import COMMAND, WINDOWS, Scene, run, run_tests  # noqa: E402

ADDRESS = "[0-9A-F]{16}"
PROGRAM = r".*[/\\]quillon_crash(\.exe)?"
UNCAUGHT = 0xE06D7363
# Fault: code, address, module, and on Linux the signal that ends the process.
if WINDOWS:
    RUNTIME = r"C:\\windows\\system32\\kernelbase\.dll"
    FAULTS = {
        "null": (0xC0000005, ADDRESS, PROGRAM),
        "call-above": (0xC0000005, "00007FFFFFFE0000", r".*\.(dll|exe)"),
        "call-below": (0xC0000005, "0000000000000010", "unknown"),
        "instruction": (0xC000001D, ADDRESS, PROGRAM),
        "division": (0xC0000094, ADDRESS, PROGRAM),
        "stack": (0xC00000FD, ADDRESS, PROGRAM),
        "abort": (0x40000015, ADDRESS, RUNTIME),
        "exception": (UNCAUGHT, ADDRESS, RUNTIME),
        "noexcept": (UNCAUGHT, ADDRESS, RUNTIME),
        "terminate": (0x40000015, ADDRESS, RUNTIME),
    }
else:
    LIBC, LIBSTDCXX = r".*/libc\.so\.6", r".*/libstdc\+\+\.so\.6"
    ABOVE = r"(.*/ld-linux-x86-64\.so\.2|linux-vdso\.so\.1)"
    FAULTS = {
        "null": (signal.SIGSEGV, ADDRESS, PROGRAM, signal.SIGSEGV),
        "call-above": (signal.SIGSEGV, "00007FFFFFFE0000", ABOVE, signal.SIGSEGV),
        "call-below": (signal.SIGSEGV, "0000000000000010", "unknown", signal.SIGSEGV),
        "instruction": (signal.SIGILL, ADDRESS, PROGRAM, signal.SIGILL),
        "division": (signal.SIGFPE, ADDRESS, PROGRAM, signal.SIGFPE),
        "stack": (signal.SIGSEGV, ADDRESS, PROGRAM, signal.SIGSEGV),
        "abort": (signal.SIGABRT, ADDRESS, LIBC, signal.SIGABRT),
        "exception": (UNCAUGHT, ADDRESS, LIBSTDCXX, signal.SIGABRT),
        "noexcept": (UNCAUGHT, ADDRESS, LIBSTDCXX, signal.SIGABRT),
        "terminate": (signal.SIGABRT, ADDRESS, LIBC, signal.SIGABRT),
    }


# A sanitizer leaves the faults alone.
QUIET = "handle_segv=0:handle_sigbus=0:handle_sigfpe=0:detect_leaks=0"


def status_after(fault):
    """The exit status that the system gives to a process that ended so."""
    code, address, module, *ended_by = FAULTS[fault]
    if not WINDOWS:
        return -ended_by[0]
    if len(COMMAND) == 1:
        return code
    # Wine keeps the lowest byte. For the end of an overflowed stack it has too little stack itself.
    return 1 if fault == "stack" else code & 0xFF


class CrashReport(Scene):
    def crash(self, *arguments, sanitizer=QUIET):
        return run(self.path, *arguments, environment={"ASAN_OPTIONS": sanitizer})

    def test_line_and_end_of_each_fault(self):
        for fault, (code, address, module, *_) in FAULTS.items():
            with self.subTest(fault):
                status, output, errors = self.crash(fault)
                line = (f"Internal product error: Code = 0x{code:08X}, Address = 0x{address} "
                        f"State=Testing in module={module}" + ("\r\n" if WINDOWS else "\n"))
                self.assertRegex(output, re.compile(f"\\A{line}\\Z".encode()), errors)
                self.assertEqual(status, status_after(fault))

    def test_nothing_is_reported_once_the_report_is_gone(self):
        status, output, errors = self.crash("null", "after")
        self.assertEqual(status, status_after("null"), errors)
        self.assertNotIn(b"Internal product error", output)

    @unittest.skipIf(WINDOWS, "the Windows runtime is not asked for its message")
    def test_uncaught_exception_is_told_on_standard_error(self):
        self.assertIn(b"what():  thrown by the test\n", self.crash("exception")[2])

    @unittest.skipIf(WINDOWS, "there are no signals")
    def test_handlers_that_were_there_are_left_alone(self):
        if b"AddressSanitizer" not in self.crash("null", "after", sanitizer="detect_leaks=0")[2]:
            self.skipTest("only a sanitizer brings handlers along")
        status, output, errors = self.crash("null", sanitizer="detect_leaks=0")
        self.assertEqual((status, output), (1, b""))
        self.assertIn(b"AddressSanitizer: SEGV", errors)


if __name__ == "__main__":
    if not WINDOWS:
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    run_tests(__doc__)
