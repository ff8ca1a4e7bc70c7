"""The tool in an install root of a test's own. ZENTARA_TOOL is its command, ZENTARA_FIXTURES where the plug-ins lie that go
wrong as a text in their file says, in the root of what was built."""

import os
import shlex
import shutil
import subprocess
from pathlib import Path

TOOL = shlex.split(os.environ["ZENTARA_TOOL"])
FIXTURES = Path(os.environ["ZENTARA_FIXTURES"])
BUILT = FIXTURES.parent
WINDOWS = (FIXTURES / "misbehaving.dll").exists()
ENDING = ".dll" if WINDOWS else ".so"


def put(root, behaviour, variant="misbehaving", name=None):
    """A copy that goes wrong as told: WHERE HOW."""
    content = (FIXTURES / (variant + ENDING)).read_bytes()
    mark = content.index(b"MISBEHAVIOUR:") + len(b"MISBEHAVIOUR:")
    wish = behaviour.encode() + b" "
    place = root / "bin" / "Plugins"
    place.mkdir(parents=True, exist_ok=True)
    file = place / ((name or behaviour) + ENDING)
    file.write_bytes(content[:mark] + wish + content[mark + len(wish):])
    return file


def copy_built(root):
    """All that was built. Returns its plug-ins' folder"""
    plugins = root / "bin" / "Plugins"
    plugins.parent.mkdir()
    shutil.copytree(BUILT / "bin" / "Plugins", plugins)
    shutil.copytree(BUILT / "cameras", root / "cameras")
    return plugins


def tool(root, *arguments, **environment):
    """Returns exit status, output and errors"""
    done = subprocess.run([*TOOL, *map(str, arguments)], capture_output=True, timeout=200,
                          env={**os.environ, "ZENTARASDK_ROOT": f"{root}/", "ZENTARA_SYSFS": f"{root}/none", **environment})
    return done.returncode, *(said.decode().replace("\r\n", "\n") for said in (done.stdout, done.stderr))
