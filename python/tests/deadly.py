"""Runs `adaptors batch` and ends the process above it, a worker of the cluster, while it has one file in work.

usage: deadly.py PROGRAM FILE WORDS...
"""

import os
import signal
import sqlite3
import subprocess
import sys

program, poison, *words = sys.argv[1:]
state = words[words.index("--state") + 1]
listed = sys.stdin.buffer.read()


def is_failed():
    with sqlite3.connect(state) as database:
        return database.execute("SELECT state = 'failed' FROM files WHERE path = ?", (poison,)).fetchone() == (1,)


if not os.path.exists(state) or not is_failed():
    # All but that file, as if it came last; then the moment at which the worker dies.
    done = subprocess.run([program, *words], input=listed)
    with sqlite3.connect(state) as database:
        database.execute("UPDATE files SET state = 'working', code = NULL, sha256 = NULL WHERE path = ?", (poison,))
    os.kill(os.getppid(), signal.SIGKILL)
    sys.exit(1)
sys.exit(subprocess.run([program, *words], input=listed).returncode)
