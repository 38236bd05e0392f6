"""What the checks of the installed tree and of the packages share: failing
with a message, the environment of a user who has nothing of the build
around, and running a program in it."""

import os
import shutil
import subprocess
import sys


def fail(message):
    print("FAIL: " + message)
    sys.exit(1)


def expect(condition, message):
    if not condition:
        fail(message)


def environment(**changes):
    """The environment of a user who has nothing of the build around."""
    env = {key: value for key, value in os.environ.items()
           if key not in ("LD_LIBRARY_PATH", "ASCIIEXPORT_PLUGIN_PATH", "LANGUAGE")
           and not key.startswith("LC_")}
    env["LANG"] = "C.UTF-8"
    env.update(changes)
    return env


def run(args, status=0, env=None, cwd=None):
    """Runs args; fails unless it exits with status (None: any)."""
    result = subprocess.run(args, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                            env=env or environment(), cwd=cwd)
    if status is not None and result.returncode != status:
        fail("%s exited with %d, not %d\nstdout: %s\nstderr: %s" % (
            " ".join(args), result.returncode, status, result.stdout.decode(errors="replace"),
            result.stderr.decode(errors="replace")))
    return result


def fresh(path):
    """path, made anew and empty."""
    shutil.rmtree(path, ignore_errors=True)
    os.makedirs(path)
    return path
