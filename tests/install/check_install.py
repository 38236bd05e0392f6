"""The program as a user installs it.

Usage: check_install.py CHECK BUILD_DIR SOURCE_DIR WORK_DIR VERSION LIBDIR PLUGINDIR DATADIR MANDIR

The last four are the install folders, relative to the prefix.

CHECK is one of
  install      cmake --install into WORK_DIR/prefix (the others use that tree)
  program      the installed tree, copied elsewhere, exports and finds its
               plug-in; RUNPATHs are relative and no file names the build
               or source folder; --version on every command; the plug-in
               search path
  sdk          an exporter plug-in built out of tree against the installed
               SDK (CMake package), loaded by the installed program; a
               program built with the flags of the pkg-config file
  completion   the installed bash completion offers commands, options, setting
               keys and values, and recordings whose names hold blanks
  german       a German user gets the German texts of program and plug-in
  manpage      the installed man page names every option of every command
"""

import gzip
import os
import re
import shutil
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "common"))
from usercheck import environment, expect, fresh, run  # noqa: E402

COMMANDS = ["export", "convert", "settings", "options", "info", "generate"]


class Check:
    def __init__(self, build, source, work, version, libdir, plugindir, datadir, mandir):
        self.build, self.source, self.work, self.version = build, source, work, version
        self.libdir, self.plugindir, self.datadir, self.mandir = libdir, plugindir, datadir, mandir
        self.prefix = os.path.join(work, "prefix")
        self.walk = os.path.join(source, "examples", "walk.jsonl")

    def program(self, prefix=None):
        return os.path.join(prefix or self.prefix, "bin", "asciiexport")

    def plugin(self, prefix=None):
        return os.path.join(prefix or self.prefix, self.plugindir, "libasciiexporter.so")

    def settings(self, folder):
        return ["--settings", os.path.join(folder, "settings.ini")]

    def install(self):
        shutil.rmtree(self.prefix, ignore_errors=True)
        run(["cmake", "--install", self.build, "--prefix", self.prefix])
        for path in [self.program(), self.plugin()]:
            expect(os.access(path, os.X_OK) or os.path.isfile(path), path + " was not installed")

    def check_program(self):
        work = fresh(os.path.join(self.work, "program"))
        # A copy of the installed tree somewhere else: nothing in it may
        # lean on where it was installed, nor on the build.
        prefix = os.path.join(work, "moved")
        shutil.copytree(self.prefix, prefix, symlinks=True)
        program, plugin = self.program(prefix), self.plugin(prefix)
        needles = [os.path.realpath(self.build).encode(), os.path.realpath(self.source).encode()]
        elves = 0
        for folder, _, files in os.walk(prefix):
            for name in files:
                path = os.path.join(folder, name)
                if os.path.islink(path):
                    continue
                with open(path, "rb") as file:
                    content = file.read()
                for needle in needles:
                    expect(needle not in content, "%s names %s" % (path, needle.decode()))
                if content.startswith(b"\x7fELF"):
                    elves += 1
                    dynamic = run(["readelf", "-d", path]).stdout.decode()
                    expect("(RPATH)" not in dynamic, path + " has an RPATH, not a RUNPATH")
                    for runpath in re.findall(r"\(RUNPATH\).*\[(.*)\]", dynamic):
                        for entry in runpath.split(":"):
                            expect(entry.startswith("$ORIGIN"), "%s: RUNPATH %s" % (path, entry))
        expect(elves == 4, "%d binaries installed, expected 4" % elves)

        out = os.path.join(work, "out.txt")
        run([program, "export", "--quiet"] + self.settings(work) + ["-o", out, self.walk])
        reference = os.path.join(work, "reference.txt")
        run([os.path.join(self.build, "bin", "asciiexport"), "export", "--quiet"] + self.settings(work)
            + ["-o", reference, self.walk])
        with open(out, "rb") as a, open(reference, "rb") as b:
            expect(a.read() == b.read(), "the installed program exports other bytes than the built one")
        info = run([program, "info"]).stdout.decode()
        expect("Plug-in:        %s\n" % plugin in info, "info shows another plug-in:\n" + info)

        plugin_version = ".".join(self.version.split(".")[:2])
        expected = "asciiexport %s\nASCII Exporter %s (%s)\n" % (self.version, plugin_version, plugin)
        for command in [[]] + [[c] for c in COMMANDS]:
            result = run([program] + command + ["--version"])
            expect(result.stdout.decode() == expected,
                   "%s --version printed %r" % (" ".join(["asciiexport"] + command), result.stdout.decode()))
        result = run([program, "info", "--version", "--plugin", os.path.join(work, "missing.so")], status=1)
        expect(result.stdout.decode() == "asciiexport %s\n" % self.version, "--version without a plug-in")
        expect(b"missing.so: no such plug-in file" in result.stderr, "--version names the missing plug-in")

        # The search path: missing and empty folders are passed over, the
        # first folder with the plug-in wins, the installed one comes last.
        mine = fresh(os.path.join(work, "mine"))
        shutil.copy(plugin, mine)
        search = ":".join([os.path.join(work, "nowhere"), "", mine])
        info = run([program, "info"], env=environment(ASCIIEXPORT_PLUGIN_PATH=search)).stdout.decode()
        expect("Plug-in:        %s/libasciiexporter.so\n" % mine in info, "search path not used:\n" + info)
        info = run([program, "info"], env=environment(ASCIIEXPORT_PLUGIN_PATH=os.path.join(work, "nowhere")))
        expect(("Plug-in:        %s\n" % plugin).encode() in info.stdout, "no fallback to the installed plug-in")

    def check_sdk(self):
        work = fresh(os.path.join(self.work, "sdk"))
        build = os.path.join(work, "build")
        run(["cmake", "-S", os.path.join(self.source, "tests", "sdk", "countexporter"), "-B", build,
             "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_PREFIX_PATH=" + self.prefix])
        run(["cmake", "--build", build])
        plugin = os.path.join(build, "libcountexporter.so")
        info = run([self.program(), "info", "--plugin", plugin]).stdout.decode()
        expect("Name:           Count Exporter\n" in info and "Version:        0.1\n" in info,
               "info on the plug-in built against the SDK:\n" + info)

        recording = os.path.join(work, "three.jsonl")
        with open(recording, "w") as file:
            file.write('{"properties": {}, "updateRate": 100}\n'
                       '{"packetCounter": 7, "calibratedAcceleration": [0, 0, 9.81]}\n'
                       '{"packetCounter": 8}\n'
                       '{"packetCounter": 9, "calibratedAcceleration": [1, 2, 3]}\n')
        run([self.program(), "export", "--quiet", "--plugin", plugin] + self.settings(work)
            + ["--output-dir", work, recording])
        with open(os.path.join(work, "three.count")) as file:
            expect(file.read() == "count\n7 acc\n8 -\n9 acc\n", "the plug-in's export")
        # Found through the search path under the name the program looks for.
        path = fresh(os.path.join(work, "path"))
        shutil.copy(plugin, os.path.join(path, "libasciiexporter.so"))
        info = run([self.program(), "info"], env=environment(ASCIIEXPORT_PLUGIN_PATH=path)).stdout.decode()
        expect("Name:           Count Exporter\n" in info, "search path: " + info)

        pkgconfig = environment(PKG_CONFIG_PATH=os.path.join(self.prefix, self.libdir, "pkgconfig"))
        flags = run(["pkg-config", "--cflags", "--libs", "asciiexport-sdk"], env=pkgconfig).stdout.decode().split()
        binary = os.path.join(work, "patterns")
        libdir = os.path.join(self.prefix, self.libdir)
        run(["c++", "-std=c++17", "-fPIC", os.path.join(self.source, "tests", "sdk", "patterns.cpp"),
             "-o", binary, "-Wl,-rpath," + libdir] + flags)
        expect(run([binary]).stdout == b"walk-1 empty\n", "the program built with pkg-config's flags")

    def check_completion(self):
        script = os.path.join(self.prefix, self.datadir, "bash-completion", "completions", "asciiexport")
        bindir = os.path.dirname(self.program())
        env = environment(PATH=bindir + os.pathsep + os.environ["PATH"], HOME=fresh(os.path.join(self.work, "home")))

        files = fresh(os.path.join(self.work, "completion"))
        os.mkdir(os.path.join(files, "my walks"))
        for name in ["my walk.jsonl", "my drive.ubx", "my flight.ulg", "my notes.txt", "plain.jsonl"]:
            open(os.path.join(files, name), "w").close()

        def complete(line):
            # What bash does on Tab: the words as it splits them (also at
            # "=" and ":"), the cursor at the end of the line, in a folder of
            # recordings, with bash-completion's helpers loaded as an
            # interactive shell has them.
            words = re.findall(r"[^\s=:]+|[=:]", line) + ([""] if line[-1:].isspace() else [])
            shell = ('source /usr/share/bash-completion/bash_completion; source "$1"; '
                     'COMP_LINE="$2"; COMP_POINT=${#2}; shift 2; COMP_WORDS=("$@"); '
                     'COMP_CWORD=$(($# - 1)); _asciiexport; printf "%s\\n" "${COMPREPLY[@]}"')
            result = run(["bash", "-c", shell, "bash", script, line] + words, env=env, cwd=files)
            return sorted(filter(None, result.stdout.decode().split("\n")))

        expect(complete("asciiexport ") == sorted(COMMANDS + ["help", "--help", "--version"]),
               "commands: %s" % complete("asciiexport "))
        expect(complete("asciiexport exp") == ["export"], "a command's start")
        expect(complete("asciiexport help ex") == ["export"], "help on a command")
        options = complete("asciiexport export --")
        for option in ["--plugin", "--settings", "--set", "--output", "--output-dir", "--progress", "--quiet",
                       "--help", "--version"]:
            expect(option in options, "export's options lack %s: %s" % (option, options))
        expect(complete("asciiexport generate --s") == ["--samples", "--seed"], "generate's options")
        expect(complete("asciiexport export --fill ") == ["hold", "nearest", "none"], "fill policies")
        expect(complete("asciiexport convert --f") == ["--fill"], "convert's options")
        expect(complete("asciiexport generate --format u") == ["ubx", "ulog"], "generated formats")
        expect(complete("asciiexport generate --layout ") == ["current", "older"], "ULog layouts")
        keys = complete("asciiexport export --set export")
        expect("exportRssi=" in keys and "exportOrientation=" in keys and len(keys) > 20,
               "setting keys: %s" % keys)
        expect(complete("asciiexport export --set high") == ["highPrecision="], "a key without a default")
        expect(complete("asciiexport export --set useCommaDelimiter=") == ["false", "true"], "boolean values")
        expect(complete("asciiexport export --set useCommaDelimiter=t") == ["true"], "a boolean value's start")
        expect(complete("asciiexport export --set exportOrientation=") == ["Euler", "Matrix", "None", "Quaternion"],
               "orientations: %s" % complete("asciiexport export --set exportOrientation="))
        expect(complete("asciiexport export --set exportOrientation=Q") == ["Quaternion"], "an orientation's start")
        expect(complete("asciiexport export --delimiter ") == ["comma", "semicolon", "space", "tab"],
               "delimiters: %s" % complete("asciiexport export --delimiter "))
        expect(complete("asciiexport export --empty ") == ["0", "NaN", "nothing"], "empty-field texts")
        expect("--delimiter" in options and "--empty" in options, "export's new options: %s" % options)
        # Names with blanks stay whole; recordings of each format are offered.
        recordings = ["my drive.ubx", "my flight.ulg", "my walk.jsonl", "my walks"]
        expect(complete("asciiexport export my") == recordings, "recordings: %s" % complete("asciiexport export my"))
        expect(complete("asciiexport export ") == recordings + ["plain.jsonl"], "every recording")
        expect(complete("asciiexport convert my") == ["my drive.ubx", "my flight.ulg", "my walks"], "logs")
        expect(complete("asciiexport info --recording my") == recordings, "a recording to describe")
        expect(complete("asciiexport export --output-dir my") == ["my walks"], "a folder")

    def check_german(self):
        work = fresh(os.path.join(self.work, "german"))
        german = environment(LANG="de_DE.UTF-8", LANGUAGE="de")
        out = os.path.join(work, "out.txt")
        run([self.program(), "export", "--quiet"] + self.settings(work) + ["-o", out, self.walk], env=german)
        with open(out, encoding="utf-8") as file:
            header = file.read().split("\n")[:5]
        expect(header[0].startswith("// Startzeit: ") and header[1] == "// Abtastrate: 100.0Hz",
               "the plug-in's header in German: %s" % header)
        listing = run([self.program(), "settings"] + self.settings(work), env=german).stdout.decode()
        expect("exportUtc: false (default: false)  12-Byte-UTC-Zeit exportieren\n" in listing,
               "the plug-in's descriptions in German:\n" + listing)
        usage = run([self.program(), "export"], status=2, env=german).stderr.decode()
        expect(usage == "asciiexport export: keine Aufzeichnung angegeben\n"
                        "Mehr mit „asciiexport export --help“.\n", "a usage error in German: " + usage)
        helptext = run([self.program(), "export", "--help"], env=german).stdout.decode()
        expect("Keinen Fortschritt zeigen" in helptext, "the help in German:\n" + helptext)
        missing = run([self.program(), "info", "--plugin", os.path.join(work, "x.so")], status=1, env=german)
        expect(missing.stderr.decode() == "%s: Diese Plug-in-Datei gibt es nicht\n" % os.path.join(work, "x.so"),
               "the plug-in host's message in German: " + missing.stderr.decode())
        # Any other language keeps the English texts.
        english = run([self.program(), "export"], status=2, env=environment(LANG="fr_FR.UTF-8"))
        expect(english.stderr.decode().startswith("asciiexport export: no recording given\n"), "English")

    def check_manpage(self):
        with gzip.open(os.path.join(self.prefix, self.mandir, "man1", "asciiexport.1.gz"), "rt") as file:
            page = file.read()
        expect(page.startswith('.TH ASCIIEXPORT 1 "" "asciiexport %s"' % self.version), "the title line")
        for command in COMMANDS:
            expect("\n.B %s\n" % command in page, "the page lacks the command " + command)
            helptext = run([self.program(), command, "--help"]).stdout.decode()
            for option in re.findall(r"^ *(?:-\w, )?--([a-z-]+)", helptext, re.MULTILINE):
                expect("\\-\\-" + option.replace("-", "\\-") in page,
                       "the page lacks %s's option --%s" % (command, option))
        expect("ASCIIEXPORT_PLUGIN_PATH" in page, "the page names the plug-in search path")


def main():
    check, build, source, work = (sys.argv[1],) + tuple(os.path.abspath(path) for path in sys.argv[2:5])
    checker = Check(build, source, work, *sys.argv[5:10])
    {"install": checker.install, "program": checker.check_program, "sdk": checker.check_sdk,
     "completion": checker.check_completion, "german": checker.check_german,
     "manpage": checker.check_manpage}[check]()
    print("PASS: " + check)


if __name__ == "__main__":
    main()
