"""Builds a wheel of project_adaptors for pip, with CMake, ninja, a compiler and the libraries of the system.

Environment variables:
  PROJECT_ADAPTORS_BUILD_FOLDER  where to build; build/python below the checkout
  CMAKE_ARGS                     more arguments for CMake, such as a compiler cache
"""

from __future__ import annotations

import base64
import hashlib
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import sysconfig
import tempfile
import tomllib
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
TAG = "cp{0}{1}-cp{0}{1}-{2}".format(*sys.version_info[:2],
                                     re.sub("[^A-Za-z0-9]", "_", sysconfig.get_platform()))


def _project():
    """The table [project] with the version, which is that of the libraries."""
    project = tomllib.loads((ROOT / "pyproject.toml").read_text(encoding="utf-8"))["project"]
    version = re.search(r"\bVERSION (\d+\.\d+\.\d+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))
    if version is None:
        raise RuntimeError("CMakeLists.txt states no version")
    return {**project, "version": version[1]}


def _metadata(project):
    lines = ["Metadata-Version: 2.1", "Name: " + project["name"], "Version: " + project["version"],
             "Summary: " + project["description"], "Requires-Python: " + project["requires-python"]]
    for extra, packages in project["optional-dependencies"].items():
        lines.append("Provides-Extra: " + extra)
        lines += ['Requires-Dist: %s ; extra == "%s"' % (package, extra) for package in packages]
    return "\n".join(lines) + "\n"


def _install(folder):
    """Builds the package and puts it into a folder."""
    build = pathlib.Path(os.environ.get("PROJECT_ADAPTORS_BUILD_FOLDER", ROOT / "build" / "python"))
    launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
    commands = [
        ["cmake", "-S", ROOT, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
         "-DPROJECT_ADAPTORS_BUILD_PYTHON=ON", "-DPROJECT_ADAPTORS_BUILD_PROGRAM=OFF",
         "-DPROJECT_ADAPTORS_PYTHON_FOLDER=.", "-DPython_EXECUTABLE=" + sys.executable, *launcher,
         *shlex.split(os.environ.get("CMAKE_ARGS", ""))],
        ["cmake", "--build", build, "--target", "project-adaptors-python"],
        ["cmake", "--install", build, "--component", "python", "--strip", "--prefix", folder],
    ]
    for command in commands:
        subprocess.run(command, check=True)


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    project = _project()
    name = project["name"].replace("-", "_") + "-" + project["version"]
    info = name + ".dist-info"
    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary)
        _install(folder)
        (folder / info).mkdir()
        (folder / info / "METADATA").write_text(_metadata(project), encoding="utf-8")
        (folder / info / "WHEEL").write_text(
            "Wheel-Version: 1.0\nGenerator: project-adaptors\nRoot-Is-Purelib: false\nTag: %s\n" % TAG,
            encoding="utf-8")
        records = []
        wheel = name + "-" + TAG + ".whl"
        with zipfile.ZipFile(pathlib.Path(wheel_directory) / wheel, "w", zipfile.ZIP_DEFLATED) as archive:
            for path in sorted(path for path in folder.rglob("*") if path.is_file()):
                inside = path.relative_to(folder).as_posix()
                digest = base64.urlsafe_b64encode(hashlib.sha256(path.read_bytes()).digest()).rstrip(b"=")
                records.append("%s,sha256=%s,%d" % (inside, digest.decode("ascii"), path.stat().st_size))
                archive.write(path, inside)
            records.append(info + "/RECORD,,\n")
            archive.writestr(info + "/RECORD", "\n".join(records))
    return wheel


def build_sdist(sdist_directory, config_settings=None):
    raise RuntimeError("project_adaptors is built from a checkout; there is no source archive of it")
