"""How the module behaves in a process: threads, signals, settings, and what it loads."""

import concurrent.futures
import os
import pathlib
import subprocess
import sys
import threading

import pytest

import project_adaptors

ROOT = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = sorted(str(path) for path in (ROOT / "samples").glob("holiday-v*.*"))


def test_threads_give_the_same_as_one():
    wanted = {path: project_adaptors.migrate(path).data for path in SAMPLES}
    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        done = list(pool.map(lambda path: (path, project_adaptors.migrate(path).data), SAMPLES * 5))
    assert len(done) == 5 * len(SAMPLES)
    for path, data in done:
        assert data == wanted[path]


def test_the_lock_of_the_interpreter_is_released():
    """Another thread gets on while one is inside the module, though the interpreter takes the lock from nobody here."""
    project = large_project(2000)
    inside = threading.Event()
    got_on = threading.Event()
    calls = 0

    def work():
        nonlocal calls
        inside.set()
        while not got_on.is_set() and calls < 2000:
            project_adaptors.verify(project)
            calls += 1

    interval = sys.getswitchinterval()
    sys.setswitchinterval(1000)
    try:
        thread = threading.Thread(target=work)
        thread.start()
        inside.wait()
        got_on.set()
        thread.join()
    finally:
        sys.setswitchinterval(interval)
    assert calls < 2000


def large_project(objects=60000):
    items = b",".join(b'{"@meta": {"class_name": "B", "object_id": %d}}' % number for number in range(2, objects))
    return b'{"version": "1.0", "schemaVersion": 70, "data": {"@meta": {"class_name": "A", "object_id": 1}, "items": [%s]}}' % items


def test_a_signal_ends_the_work():
    code = """
import os, signal, sys, threading, project_adaptors
signal.signal(signal.SIGINT, signal.default_int_handler)  # also where the shell has it ignored
project = sys.stdin.buffer.read()
threading.Timer(0.3, os.kill, (os.getpid(), signal.SIGINT)).start()
try:
    while True:
        project_adaptors.migrate(project)
except KeyboardInterrupt:
    print("interrupted")
"""
    done = subprocess.run([sys.executable, "-c", code], input=large_project(), stdout=subprocess.PIPE, timeout=300)
    assert done.stdout == b"interrupted\n" and done.returncode == 0


def test_importing_writes_nothing_and_steps_log_nothing():
    code = """
import project_adaptors, sys
for path in sys.argv[1:]:
    project_adaptors.migrate(path)
"""
    done = subprocess.run([sys.executable, "-c", code, *SAMPLES], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    assert done.stdout == b"" and done.returncode == 0


@pytest.mark.parametrize("settings", [{"LC_ALL": "C"}, {"LC_ALL": "C", "PYTHONUTF8": "0"}, {"QT_HASH_SEED": "7"}])
def test_settings_of_the_process_change_nothing(tmp_path, settings):
    path = tmp_path / "fílm.xml"
    path.write_bytes((ROOT / "samples" / "holiday-v27.xml").read_bytes())
    code = """
import os, sys, project_adaptors
name, = os.listdir(sys.argv[1])
sys.stdout.buffer.write(project_adaptors.migrate(os.path.join(sys.argv[1], name)).data)
"""
    done = subprocess.run([sys.executable, "-c", code, tmp_path], stdout=subprocess.PIPE, env={**os.environ, **settings})
    assert done.stdout == project_adaptors.migrate(path).data != b""


def test_a_forked_process_can_work():
    wanted = project_adaptors.migrate(SAMPLES[0]).data
    child = os.fork()
    if child == 0:
        os._exit(0 if project_adaptors.migrate(SAMPLES[0]).data == wanted else 1)
    assert os.waitpid(child, 0)[1] == 0


def test_the_module_shows_one_symbol():
    from project_adaptors import _native
    listed = subprocess.run(["nm", "-D", "--defined-only", _native.__file__], stdout=subprocess.PIPE, text=True)
    names = {line.split()[-1] for line in listed.stdout.splitlines()}
    assert names - {"__bss_start", "_edata", "_end"} == {"PyInit__native"}
