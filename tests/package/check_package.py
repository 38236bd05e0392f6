"""The Debian package, made and unpacked as a user would.

Makes the package with cpack from the build folder, checks its control
fields (the dependencies dpkg-shlibdeps worked out) and its files, unpacks
it into a throw-away root with dpkg -x and exports with the program there.

Usage: check_package.py BUILD_DIR SOURCE_DIR WORK_DIR VERSION
"""

import glob
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


def run(args, status=0, env=None):
    result = subprocess.run(args, stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=env)
    if result.returncode != status:
        fail("%s exited with %d\nstdout: %s\nstderr: %s" % (
            " ".join(args), result.returncode, result.stdout.decode(errors="replace"),
            result.stderr.decode(errors="replace")))
    return result.stdout.decode()


def main():
    build, source, work = (os.path.abspath(path) for path in sys.argv[1:4])
    version = sys.argv[4]
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(work)

    run(["cpack", "-G", "DEB", "--config", os.path.join(build, "CPackConfig.cmake"), "-B", work])
    packages = glob.glob(os.path.join(work, "asciiexport_*.deb"))
    expect(len(packages) == 1, "cpack made %s" % packages)
    package = packages[0]
    architecture = run(["dpkg", "--print-architecture"]).strip()
    expect(os.path.basename(package) == "asciiexport_%s_%s.deb" % (version, architecture),
           "package file name " + os.path.basename(package))

    fields = run(["dpkg-deb", "-f", package, "Package", "Version", "Architecture", "Depends"])
    expect("Package: asciiexport\n" in fields and "Version: %s\n" % version in fields, fields)
    depends = [entry.split()[0] for entry in
               fields.split("Depends:", 1)[1].strip().replace("\n ", " ").split(",")]
    for needed in ["libc6", "libstdc++6", "libqt5core5a", "libqt5gui5", "libqt5widgets5"]:
        expect(needed in depends, "Depends lacks %s: %s" % (needed, depends))
    expect(not any("pluginframework" in entry or "kvtypes" in entry for entry in depends),
           "the package depends on its own libraries: %s" % depends)

    files = run(["dpkg-deb", "-c", package])
    for name in ["./usr/bin/asciiexport", "/libasciiexporter.so", "./usr/share/man/man1/asciiexport.1.gz",
                 "./usr/share/bash-completion/completions/asciiexport", "/asciiexporter_de.qm",
                 "/AsciiExportSdkConfig.cmake", "/asciiexport-sdk.pc", "/pluginframework/abstractexporter.h"]:
        expect(name in files, "the package lacks " + name)

    root = os.path.join(work, "root")
    run(["dpkg", "-x", package, root])
    program = os.path.join(root, "usr", "bin", "asciiexport")
    env = {key: value for key, value in os.environ.items()
           if key not in ("LD_LIBRARY_PATH", "ASCIIEXPORT_PLUGIN_PATH")}
    env["LANG"] = "C.UTF-8"
    versions = run([program, "export", "--version"], env=env)
    expect(versions.startswith("asciiexport %s\nASCII Exporter " % version)
           and ("(%s/usr/lib/" % root) in versions, "the unpacked program's versions: " + versions)
    out = os.path.join(work, "walk.txt")
    settings = ["--settings", os.path.join(work, "settings.ini")]
    walk = os.path.join(source, "examples", "walk.jsonl")
    run([program, "export", "--quiet"] + settings + ["-o", out, walk], env=env)
    reference = os.path.join(work, "reference.txt")
    run([os.path.join(build, "bin", "asciiexport"), "export", "--quiet"] + settings + ["-o", reference, walk],
        env=env)
    with open(out, "rb") as a, open(reference, "rb") as b:
        expect(a.read() == b.read(), "the unpacked program exports other bytes than the built one")
    print("PASS")


if __name__ == "__main__":
    main()
