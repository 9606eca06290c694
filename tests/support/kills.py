"""Ends programs at random moments."""
import time


def killed_at_random(start, longest, rng):
    """Starts a program, and kills it within so many seconds unless it has ended before. Returns its
    exit status."""
    process = start()
    time.sleep(rng.uniform(0, longest))
    process.kill()
    process.communicate()
    return process.returncode
