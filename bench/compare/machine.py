"""The machine and the build, in general terms."""
import datetime
import os
import platform
import re
import subprocess
from pathlib import Path


def describe(build):
    """(what, which) in pairs; `build` is the folder that CMake configured."""
    return [("date", datetime.date.today().isoformat()),
            ("processor", f"{os.cpu_count()} cores, {_processor()}"),
            ("memory", f"{_memory_gib():.0f} GiB"),
            ("system", f"{_system()}, Linux {platform.release().split('-')[0]}"),
            ("compiler", _compiler(build)),
            ("load before", f"{os.getloadavg()[0]:.1f} processes")]


def _processor():
    match = re.search(r"^model name\s*: (.*)", Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    return re.sub(r"\((R|TM)\)", "", match[1]) if match else platform.machine()


def _memory_gib():
    return os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30


def _system():
    return platform.freedesktop_os_release().get("PRETTY_NAME", platform.system())


def _compiler(build):
    cache = (build / "CMakeCache.txt").read_text()
    settings = dict(re.findall(r"^(CMAKE_\w+):\w+=(.*)$", cache, re.MULTILINE))
    version = subprocess.run([settings["CMAKE_CXX_COMPILER"], "--version"], capture_output=True,
                             text=True, check=True).stdout.splitlines()[0]
    return f"{version}, {settings['CMAKE_BUILD_TYPE']}"
