"""The Debian packages, made, checked and unpacked as a user would.

Makes both packages with cpack from the build folder and checks their
control fields and members (dependencies, shlibs, the ldconfig trigger),
which file lands in which package, the copyright file and the changelog.
Unpacks both into a throw-away root with dpkg -x, exports the documentation's
sample recording with the program there and builds the example plug-in of
the -dev package against the unpacked SDK. Last, lintian on both packages:
any error or warning fails. Without lintian the test reports itself skipped
(exit 77) after the other checks.

Usage: check_package.py BUILD_DIR SOURCE_DIR WORK_DIR VERSION LIBDIR
"""

import glob
import gzip
import io
import os
import re
import shutil
import subprocess
import sys
import tarfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "common"))
from usercheck import environment, expect, fail, run as run_program  # noqa: E402

SKIPPED = 77


def run(args, **kwargs):
    """What args writes on standard output; fails unless it exits with 0."""
    return run_program(args, **kwargs).stdout.decode()


def field(package, name):
    return run(["dpkg-deb", "-f", package, name]).strip()


def control_member(package, name):
    """A control member's text, "" when the package has none of that name."""
    members = tarfile.open(fileobj=io.BytesIO(subprocess.run(
        ["dpkg-deb", "--ctrl-tarfile", package], stdout=subprocess.PIPE, check=True).stdout))
    if "./" + name not in members.getnames():
        return ""
    return members.extractfile("./" + name).read().decode()


def contents(package):
    """The package's paths (without the leading "."), symbolic links as "path -> target"."""
    paths = set()
    for line in run(["dpkg-deb", "-c", package]).splitlines():
        path = line.split(None, 5)[5][1:]
        if not path.endswith("/"):
            paths.add(path)
    return paths


def depends(package):
    return [entry.strip() for entry in field(package, "Depends").replace("\n", " ").split(",")]


class Check:
    def __init__(self, build, source, work, version, libdir):
        self.build, self.source, self.work, self.version = build, source, work, version
        self.libdir = "/usr/" + libdir
        self.architecture = run(["dpkg", "--print-architecture"]).strip()

    def make(self):
        shutil.rmtree(self.work, ignore_errors=True)
        os.makedirs(self.work)
        run(["cpack", "-G", "DEB", "--config", os.path.join(self.build, "CPackConfig.cmake"), "-B", self.work])
        made = sorted(os.path.basename(path) for path in glob.glob(os.path.join(self.work, "*.deb")))
        self.runtime, self.dev = ("%s_%s_%s.deb" % (name, self.version, self.architecture)
                                  for name in ("asciiexport", "asciiexport-dev"))
        expect(made == sorted([self.runtime, self.dev]), "cpack made %s" % made)
        self.runtime, self.dev = (os.path.join(self.work, name) for name in (self.runtime, self.dev))

    def check_control(self):
        for package, name, section in [(self.runtime, "asciiexport", "science"),
                                       (self.dev, "asciiexport-dev", "libdevel")]:
            for key, value in [("Package", name), ("Version", self.version), ("Section", section),
                               ("Priority", "optional"), ("Architecture", self.architecture)]:
                expect(field(package, key) == value, "%s: %s is %r" % (name, key, field(package, key)))

        needed = [entry.split()[0] for entry in depends(self.runtime)]
        for library in ["libc6", "libstdc++6", "libqt5core5a", "libqt5gui5", "libqt5widgets5"]:
            expect(library in needed, "asciiexport's Depends lacks %s: %s" % (library, needed))
        expect(not any(entry.startswith("asciiexport") for entry in needed),
               "asciiexport depends on itself: %s" % needed)
        dev = depends(self.dev)
        expect("asciiexport (= %s)" % self.version in dev and any(d.startswith("qtbase5-dev") for d in dev),
               "asciiexport-dev's Depends: %s" % dev)

        expect(control_member(self.runtime, "triggers").split("\n") == ["activate-noawait ldconfig", ""],
               "the runtime package's triggers: %r" % control_member(self.runtime, "triggers"))
        major = self.version.split(".")[0]
        shlibs = sorted(filter(None, control_member(self.runtime, "shlibs").split("\n")))
        expect(shlibs == ["lib%s %s asciiexport (>= %s)" % (library, major, self.version)
                          for library in ("kvtypes", "pluginframework")], "shlibs: %s" % shlibs)
        expect(control_member(self.dev, "shlibs") == "", "the -dev package has a shlibs file")

    def check_files(self):
        lib, major, version = self.libdir, self.version.split(".")[0], self.version
        runtime, dev = contents(self.runtime), contents(self.dev)
        expected_runtime = {
            "/usr/bin/asciiexport",
            lib + "/asciiexport/plugins/exporters/libasciiexporter.so",
            "/usr/share/asciiexport/translations/asciiexport_de.qm",
            "/usr/share/asciiexport/translations/asciiexporter_de.qm",
            "/usr/share/man/man1/asciiexport.1.gz",
            "/usr/share/bash-completion/completions/asciiexport",
            "/usr/share/doc/asciiexport/copyright",
            "/usr/share/doc/asciiexport/changelog.gz",
            "/usr/share/doc/asciiexport/recording-format.md",
            "/usr/share/doc/asciiexport/examples/walk-1s.jsonl",
            "/usr/share/lintian/overrides/asciiexport",
        }
        for library in ("kvtypes", "pluginframework"):
            expected_runtime |= {"%s/lib%s.so.%s" % (lib, library, version),
                                 "%s/lib%s.so.%s -> lib%s.so.%s" % (lib, library, major, library, version)}
        expect(runtime == expected_runtime, "asciiexport holds %s more, lacks %s" % (
            sorted(runtime - expected_runtime), sorted(expected_runtime - runtime)))

        headers = {
            "kvtypes": ["kvconstants.h", "kveulerangles.h", "kvmatrix.h", "kvquaternion.h", "kvreceiverrecords.h",
                        "kvtriggerindication.h", "kvtypes_global.h", "kvutctime.h", "kvvector.h"],
            "pluginframework": ["abstractexporter.h", "abstractexporterfactory.h", "abstractoptionspage.h",
                                "abstractplugin.h", "abstractpluginfactory.h", "exportsource.h",
                                "filenamepatternreplacer.h", "pluginframework_global.h", "settingssynchronizer.h"],
        }
        expected_dev = {
            lib + "/pkgconfig/asciiexport-sdk.pc",
            "/usr/share/doc/asciiexport-dev/copyright",
            "/usr/share/doc/asciiexport-dev/changelog.gz",
        }
        for name in ["Config", "ConfigVersion", "Targets", "Targets-release"]:
            expected_dev.add("%s/cmake/AsciiExportSdk/AsciiExportSdk%s.cmake" % (lib, name))
        for library, names in headers.items():
            expected_dev |= {"/usr/include/asciiexport/%s/%s" % (library, name) for name in names}
            expected_dev.add("%s/lib%s.so -> lib%s.so.%s" % (lib, library, library, major))
        example = os.path.join(self.source, "tests", "sdk", "countexporter")
        expected_dev |= {"/usr/share/doc/asciiexport-dev/examples/countexporter/" + name
                         for name in os.listdir(example)}
        expect(dev == expected_dev, "asciiexport-dev holds %s more, lacks %s" % (
            sorted(dev - expected_dev), sorted(expected_dev - dev)))

    def unpack(self):
        self.root = os.path.join(self.work, "root")
        for package in (self.runtime, self.dev):
            run(["dpkg", "-x", package, self.root])
        doc = os.path.join(self.root, "usr", "share", "doc")
        for name in ("asciiexport", "asciiexport-dev"):
            with open(os.path.join(doc, name, "copyright")) as file:
                copyright = file.read()
            expect(copyright.startswith(
                "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/\n")
                and "\nFiles: *\n" in copyright and "\nLicense: " in copyright,
                name + "'s copyright file is not in the machine-readable format")
            with gzip.open(os.path.join(doc, name, "changelog.gz"), "rt") as file:
                changelog = file.read()
            expect(changelog.startswith("asciiexport (%s) " % self.version),
                   "%s's changelog begins %r" % (name, changelog.split("\n")[0]))
            expect(re.search(r"^ -- .+ <.+>  \w{3}, \d\d \w{3} \d{4} \d\d:\d\d:\d\d [+-]\d{4}$", changelog, re.M),
                   name + "'s changelog has no trailer line")
        with open(os.path.join(doc, "asciiexport", "recording-format.md")) as file:
            expect(file.read().startswith("# The recording format\n"), "the page of the recording format")

    def check_program(self):
        program = os.path.join(self.root, "usr", "bin", "asciiexport")
        versions = run([program, "--version"])
        expect(versions.startswith("asciiexport %s\nASCII Exporter " % self.version)
               and ("(%s%s/asciiexport/" % (self.root, self.libdir)) in versions,
               "the unpacked program's versions: " + versions)
        settings = ["--settings", os.path.join(self.work, "settings.ini")]
        sample = os.path.join(self.root, "usr", "share", "doc", "asciiexport", "examples", "walk-1s.jsonl")
        out = os.path.join(self.work, "walk-1s.txt")
        run([program, "export", "--quiet"] + settings + ["-o", out, sample])
        reference = os.path.join(self.work, "reference.txt")
        run([os.path.join(self.build, "bin", "asciiexport"), "export", "--quiet"] + settings
            + ["-o", reference, sample])
        with open(out, "rb") as a, open(reference, "rb") as b:
            exported = a.read()
            expect(exported == b.read(), "the unpacked program exports other bytes than the built one")
        rows = [line for line in exported.split(b"\n") if line and not line.startswith(b"//")]
        expect(len(rows) == 101, "the sample recording exports %d lines, not a header and 100 rows" % len(rows))

    def check_sdk(self):
        build = os.path.join(self.work, "countexporter")
        example = os.path.join(self.root, "usr", "share", "doc", "asciiexport-dev", "examples", "countexporter")
        run(["cmake", "-S", example, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
             "-DCMAKE_PREFIX_PATH=" + os.path.join(self.root, "usr")])
        run(["cmake", "--build", build])
        program = os.path.join(self.root, "usr", "bin", "asciiexport")
        info = run([program, "info", "--plugin", os.path.join(build, "libcountexporter.so")])
        expect("Name:           Count Exporter\n" in info, "the example plug-in in the unpacked program:\n" + info)
        flags = [flag[:2] + os.path.normpath(flag[2:]) if flag[:2] in ("-I", "-L") else flag
                 for flag in run(["pkg-config", "--cflags", "--libs", "asciiexport-sdk"], env=environment(
                     PKG_CONFIG_PATH=os.path.join(self.root + self.libdir, "pkgconfig"))).split()]
        expect("-I%s/usr/include/asciiexport/pluginframework" % self.root in flags
               and "-L%s%s" % (self.root, self.libdir) in flags, "pkg-config's flags: %s" % flags)

    def lintian(self):
        lintian = shutil.which("lintian")
        if not lintian:
            print("SKIP: lintian is not installed (scripts/test installs it)")
            sys.exit(SKIPPED)
        # Its scratch files stay in the work folder too.
        scratch = os.path.join(self.work, "lintian")
        os.makedirs(scratch)
        result = subprocess.run([lintian, "--fail-on", "error,warning", self.runtime, self.dev],
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment(TMPDIR=scratch))
        findings = [line for line in result.stdout.decode().split("\n") if line[:2] in ("E:", "W:")]
        expect(result.returncode == 0 and not findings, "lintian (exit %d):\n%s%s" % (
            result.returncode, result.stdout.decode(), result.stderr.decode()))


def main():
    build, source, work = (os.path.abspath(path) for path in sys.argv[1:4])
    check = Check(build, source, work, *sys.argv[4:6])
    check.make()
    check.check_control()
    check.check_files()
    check.unpack()
    check.check_program()
    check.check_sdk()
    check.lintian()
    print("PASS")


if __name__ == "__main__":
    main()
