<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>BlockWriter</name>
    <message>
        <source>cannot write the recording: %1</source>
        <translation>die Aufzeichnung kann nicht geschrieben werden: %1</translation>
    </message>
</context>
<context>
    <name>ChoiceGroup</name>
    <message>
        <source>nothing</source>
        <translation>nichts</translation>
    </message>
    <message>
        <source>a tab</source>
        <translation>einen Tabulator</translation>
    </message>
    <message>
        <source>a blank</source>
        <translation>ein Leerzeichen</translation>
    </message>
    <message numerus="yes">
        <source>%1... (%n characters)</source>
        <translation>
            <numerusform>%1... (%n Zeichen)</numerusform>
            <numerusform>%1... (%n Zeichen)</numerusform>
        </translation>
    </message>
    <message>
        <source>the plug-in uses %1 between fields</source>
        <translation>das Plug-in setzt %1 zwischen die Felder</translation>
    </message>
    <message>
        <source>the plug-in writes %1 into empty fields</source>
        <translation>das Plug-in schreibt %1 in leere Felder</translation>
    </message>
    <message>
        <source>none of %1 and %2 is on: %3</source>
        <translation>keine von %1 und %2 ist an: %3</translation>
    </message>
    <message>
        <source>%1 and %2 are both on</source>
        <translation>%1 und %2 sind beide an</translation>
    </message>
    <message>
        <source>%1 and %2 are all on</source>
        <translation>%1 und %2 sind alle an</translation>
    </message>
    <message>
        <source>%1: %2 (%3 wins)</source>
        <translation>%1: %2 (%3 gewinnt)</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>not a regular file</source>
        <translation>keine reguläre Datei</translation>
    </message>
    <message>
        <source>Try &apos;asciiexport %1 --help&apos;.</source>
        <translation>Mehr mit „asciiexport %1 --help“.</translation>
    </message>
    <message>
        <source>Show this help.</source>
        <translation>Diese Hilfe zeigen.</translation>
    </message>
    <message>
        <source>Show the versions of the program and the plug-in.</source>
        <translation>Die Versionen des Programms und des Plug-ins zeigen.</translation>
    </message>
    <message>
        <source>PATH</source>
        <translation>PFAD</translation>
    </message>
    <message>
        <source>FILE</source>
        <translation>DATEI</translation>
    </message>
    <message>
        <source>unexpected argument &quot;%1&quot;</source>
        <translation>unerwartetes Argument „%1“</translation>
    </message>
    <message>
        <source>%1: the settings cannot be read</source>
        <translation>%1: Die Einstellungen können nicht gelesen werden</translation>
    </message>
    <message>
        <source>%1: the settings cannot be read: %2</source>
        <translation>%1: Die Einstellungen können nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>%1: ignored: %2</source>
        <translation>%1: übergangen: %2</translation>
    </message>
    <message>
        <source>(standard output)</source>
        <translation>(Standardausgabe)</translation>
    </message>
    <message>
        <source>%1: cannot be written: %2</source>
        <translation>%1: kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>For PX4 flight logs, how the samples of the IMU take the messages of slower topics: none (the default: each message goes onto the one sample nearest to it), hold (each sample takes the latest message before it) or nearest (the nearest message on either side).</source>
        <translation>Bei PX4-Fluglogs, wie die Abtastwerte der IMU die Nachrichten langsamerer Topics übernehmen: none (die Vorgabe: jede Nachricht kommt auf den einen Abtastwert, der ihr am nächsten liegt), hold (jeder Abtastwert nimmt die letzte Nachricht vor ihm) oder nearest (die nächste Nachricht auf beiden Seiten).</translation>
    </message>
    <message>
        <source>POLICY</source>
        <translation>REGEL</translation>
    </message>
    <message>
        <source>For --fill hold and nearest: how far from a sample, in milliseconds, a message may lie at most (default 500).</source>
        <translation>Für --fill hold und nearest: wie weit eine Nachricht höchstens von einem Abtastwert entfernt liegen darf, in Millisekunden (Vorgabe 500).</translation>
    </message>
    <message>
        <source>MS</source>
        <translation>MS</translation>
    </message>
    <message>
        <source>--fill takes none, hold or nearest, not &quot;%1&quot;</source>
        <translation>--fill nimmt none, hold oder nearest, nicht „%1“</translation>
    </message>
    <message>
        <source>--max-age takes a whole number of milliseconds, 0 or more</source>
        <translation>--max-age nimmt eine ganze Zahl von Millisekunden ab 0</translation>
    </message>
    <message>
        <source>--max-age applies to --fill hold and nearest only</source>
        <translation>--max-age gilt nur für --fill hold und nearest</translation>
    </message>
    <message>
        <source>unknown option &quot;%1&quot;; did you mean &quot;%2&quot;?</source>
        <translation>unbekannte Option „%1“; war „%2“ gemeint?</translation>
    </message>
    <message>
        <source>  plug-in:  %1</source>
        <translation>  Plug-in:       %1</translation>
    </message>
    <message>
        <source>  settings: %1</source>
        <translation>  Einstellungen: %1</translation>
    </message>
    <message>
        <source>Default files:</source>
        <translation>Vorgegebene Dateien:</translation>
    </message>
    <message>
        <source>The plug-in file to load (default: the first libasciiexporter.so in the folders of ASCIIEXPORT_PLUGIN_PATH, else the one installed with the program; see below).</source>
        <translation>Die zu ladende Plug-in-Datei (Vorgabe: die erste libasciiexporter.so in den Ordnern von ASCIIEXPORT_PLUGIN_PATH, sonst die mit dem Programm installierte; siehe unten).</translation>
    </message>
    <message>
        <source>The INI file that holds the settings (default: see below).</source>
        <translation>Die INI-Datei mit den Einstellungen (Vorgabe: siehe unten).</translation>
    </message>
    <message>
        <source>%1 does not exist yet: OK or Apply makes it</source>
        <translation>%1 gibt es noch nicht: OK oder Übernehmen legt sie an</translation>
    </message>
    <message>
        <source>%1 does not exist yet: the default settings apply</source>
        <translation>%1 gibt es noch nicht: es gelten die Vorgaben</translation>
    </message>
    <message>
        <source>note: %1</source>
        <translation>Hinweis: %1</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>useOtherDelimiter is on with an empty otherDelimiter: the fields of a line would run together</source>
        <translation>useOtherDelimiter ist an, otherDelimiter aber leer: die Felder einer Zeile liefen ineinander</translation>
    </message>
    <message>
        <source>warning: %1</source>
        <translation>Warnung: %1</translation>
    </message>
</context>
<context>
    <name>Commands</name>
    <message>
        <source>FILE</source>
        <translation>DATEI</translation>
    </message>
    <message>
        <source>KEY=VALUE</source>
        <translation>SCHLÜSSEL=WERT</translation>
    </message>
    <message>
        <source>DIR</source>
        <translation>ORDNER</translation>
    </message>
    <message>
        <source>Show progress even when standard error is not a terminal.</source>
        <translation>Den Fortschritt auch zeigen, wenn die Standardfehlerausgabe kein Terminal ist.</translation>
    </message>
    <message>
        <source>no recording given</source>
        <translation>keine Aufzeichnung angegeben</translation>
    </message>
    <message>
        <source>--output and --output-dir exclude each other</source>
        <translation>--output und --output-dir schließen einander aus</translation>
    </message>
    <message>
        <source>--output takes one recording only; use --output-dir for several</source>
        <translation>--output nimmt nur eine Aufzeichnung; für mehrere --output-dir verwenden</translation>
    </message>
    <message>
        <source>--progress and --quiet exclude each other</source>
        <translation>--progress und --quiet schließen einander aus</translation>
    </message>
    <message>
        <source>--set takes KEY=VALUE, not &quot;%1&quot;</source>
        <translation>--set nimmt SCHLÜSSEL=WERT, nicht „%1“</translation>
    </message>
    <message>
        <source>%1 takes true, false, 1 or 0, not &quot;%2&quot;</source>
        <translation>%1 nimmt true, false, 1 oder 0, nicht „%2“</translation>
    </message>
    <message>
        <source>Lists every setting of the plug-in: its current value, its default and its description.</source>
        <translation>Listet jede Einstellung des Plug-ins auf: ihren Wert, ihre Vorgabe und ihre Beschreibung.</translation>
    </message>
    <message>
        <source>(none)</source>
        <translation>(keiner)</translation>
    </message>
    <message>
        <source>Shows the settings dialog with the plug-in&apos;s options page.</source>
        <translation>Zeigt den Einstellungsdialog mit der Optionsseite des Plug-ins.</translation>
    </message>
    <message>
        <source>Shows the plug-in&apos;s metadata, name, version and file extension.</source>
        <translation>Zeigt die Metadaten, den Namen, die Version und die Dateiendung des Plug-ins.</translation>
    </message>
    <message>
        <source>Plug-in</source>
        <translation>Plug-in</translation>
    </message>
    <message>
        <source>IID</source>
        <translation>IID</translation>
    </message>
    <message>
        <source>Class</source>
        <translation>Klasse</translation>
    </message>
    <message>
        <source>Built for Qt</source>
        <translation>Gebaut für Qt</translation>
    </message>
    <message>
        <source>Debug build</source>
        <translation>Debug-Build</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>ja</translation>
    </message>
    <message>
        <source>no</source>
        <translation>nein</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>File extension</source>
        <translation>Dateiendung</translation>
    </message>
    <message>
        <source>Number of samples (default 1000).</source>
        <translation>Anzahl der Abtastwerte (Vorgabe 1000).</translation>
    </message>
    <message>
        <source>N</source>
        <translation>N</translation>
    </message>
    <message>
        <source>Samples per second (default 100).</source>
        <translation>Abtastwerte je Sekunde (Vorgabe 100).</translation>
    </message>
    <message>
        <source>HZ</source>
        <translation>HZ</translation>
    </message>
    <message>
        <source>Comma-separated sample keys to write, or all (the default).</source>
        <translation>Die zu schreibenden Schlüssel, durch Kommas getrennt, oder all (die Vorgabe).</translation>
    </message>
    <message>
        <source>LIST</source>
        <translation>LISTE</translation>
    </message>
    <message>
        <source>Seed of the noise (default 1).</source>
        <translation>Startwert des Rauschens (Vorgabe 1).</translation>
    </message>
    <message>
        <source>S</source>
        <translation>S</translation>
    </message>
    <message>
        <source>Writes a synthetic recording: the same options give the same bytes. Keys: %1.</source>
        <translation>Schreibt eine synthetische Aufzeichnung: Gleiche Optionen ergeben gleiche Bytes. Schlüssel: %1.</translation>
    </message>
    <message>
        <source>--output is required</source>
        <translation>--output ist erforderlich</translation>
    </message>
    <message>
        <source>--samples takes a whole number of 0 or more</source>
        <translation>--samples nimmt eine ganze Zahl ab 0</translation>
    </message>
    <message>
        <source>--rate takes a number greater than 0</source>
        <translation>--rate nimmt eine Zahl größer als 0</translation>
    </message>
    <message>
        <source>--seed takes a whole number of 0 or more</source>
        <translation>--seed nimmt eine ganze Zahl ab 0</translation>
    </message>
    <message>
        <source>unknown sample key &quot;%1&quot;</source>
        <translation>unbekannter Schlüssel „%1“</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>not one of Euler, Matrix, Quaternion and None: the plug-in writes no orientation columns</source>
        <translation>keines von Euler, Matrix, Quaternion und None: Das Plug-in schreibt keine Spalten der Orientierung</translation>
    </message>
    <message>
        <source>not one of true, false, 1 and 0: the plug-in reads it as true</source>
        <translation>keines von true, false, 1 und 0: Das Plug-in liest es als true</translation>
    </message>
    <message>
        <source>not one of true, false, 1 and 0: the plug-in reads it as false</source>
        <translation>keines von true, false, 1 und 0: Das Plug-in liest es als false</translation>
    </message>
    <message>
        <source>Change one setting for this run only; may be given again. An unknown key is an error.</source>
        <translation>Eine Einstellung nur für diesen Lauf ändern; darf mehrfach angegeben werden. Ein unbekannter Schlüssel ist ein Fehler.</translation>
    </message>
    <message>
        <source>Write exactly this file (one recording only); - writes to standard output.</source>
        <translation>Genau diese Datei schreiben (nur eine Aufzeichnung); - schreibt in die Standardausgabe.</translation>
    </message>
    <message>
        <source>Write the files into this folder, made if need be, instead of beside the recordings.</source>
        <translation>Die Dateien in diesen Ordner schreiben, der bei Bedarf angelegt wird, statt neben die Aufzeichnungen.</translation>
    </message>
    <message>
        <source>Export the good samples of a damaged recording: warn about each bad line and go on.</source>
        <translation>Die guten Abtastwerte einer beschädigten Aufzeichnung exportieren: vor jeder fehlerhaften Zeile warnen und weitermachen.</translation>
    </message>
    <message>
        <source>standard input (-) can be read once only</source>
        <translation>die Standardeingabe (-) kann nur einmal gelesen werden</translation>
    </message>
    <message>
        <source>--output takes a file name, or - for standard output</source>
        <translation>--output nimmt einen Dateinamen, oder - für die Standardausgabe</translation>
    </message>
    <message>
        <source>--output-dir takes a folder name</source>
        <translation>--output-dir nimmt einen Ordnernamen</translation>
    </message>
    <message>
        <source>unknown setting &quot;%1&quot;; did you mean &quot;%2&quot;?</source>
        <translation>unbekannte Einstellung „%1“; war „%2“ gemeint?</translation>
    </message>
    <message>
        <source>--set %1=%2: %3</source>
        <translation>--set %1=%2: %3</translation>
    </message>
    <message>
        <source>%1: %2=%3: %4</source>
        <translation>%1: %2=%3: %4</translation>
    </message>
    <message>
        <source>%1: the folder cannot be made: %2</source>
        <translation>%1: Der Ordner kann nicht angelegt werden: %2</translation>
    </message>
    <message>
        <source>%1: samples written: %2, bad lines skipped: %3</source>
        <translation>%1: geschriebene Abtastwerte: %2, übersprungene fehlerhafte Zeilen: %3</translation>
    </message>
    <message>
        <source>The recording file to write; - writes to standard output.</source>
        <translation>Die zu schreibende Aufzeichnungsdatei; - schreibt in die Standardausgabe.</translation>
    </message>
    <message>
        <source>FORMAT</source>
        <translation>FORMAT</translation>
    </message>
    <message>
        <source>--groups applies to JSON Lines recordings only</source>
        <translation>--groups gilt nur für Aufzeichnungen in JSON Lines</translation>
    </message>
    <message>
        <source>(standard output)</source>
        <translation>(Standardausgabe)</translation>
    </message>
    <message>
        <source>The JSON Lines recording to write; - writes to standard output.</source>
        <translation>Die zu schreibende Aufzeichnung in JSON Lines; - schreibt in die Standardausgabe.</translation>
    </message>
    <message>
        <source>give one log</source>
        <translation>ein Log angeben</translation>
    </message>
    <message>
        <source>The data groups to export, comma-separated, as the options page names them (such as &quot;packet counter,rate of turn,quaternion&quot;), or all or none; --set goes on from there.</source>
        <translation>Die zu exportierenden Datengruppen, durch Kommas getrennt, so benannt wie auf der Optionsseite (etwa „packet counter,rate of turn,quaternion“), oder all oder none; --set setzt darauf auf.</translation>
    </message>
    <message>
        <source>Export from this sample on: an index (0 is the first sample) or seconds from the start such as 12.5s.</source>
        <translation>Ab diesem Abtastwert exportieren: ein Index (0 ist der erste Abtastwert) oder Sekunden ab dem Anfang wie 12.5s.</translation>
    </message>
    <message>
        <source>WHERE</source>
        <translation>WO</translation>
    </message>
    <message>
        <source>Export up to this sample, which is not exported itself: an index or seconds from the start.</source>
        <translation>Bis zu diesem Abtastwert exportieren, der selbst nicht exportiert wird: ein Index oder Sekunden ab dem Anfang.</translation>
    </message>
    <message>
        <source>Export every N-th of these samples.</source>
        <translation>Jeden N-ten dieser Abtastwerte exportieren.</translation>
    </message>
    <message>
        <source>Export up to N recordings at a time, in N worker processes; the files and messages are those of one export after another.</source>
        <translation>Bis zu N Aufzeichnungen gleichzeitig exportieren, in N Arbeitsprozessen; Dateien und Meldungen sind die eines Exports nach dem anderen.</translation>
    </message>
    <message>
        <source>Show no progress, and do not name the files written.</source>
        <translation>Keinen Fortschritt zeigen und die geschriebenen Dateien nicht nennen.</translation>
    </message>
    <message>
        <source>--from must come before --to</source>
        <translation>--from muss vor --to liegen</translation>
    </message>
    <message>
        <source>--every takes a whole number of 1 or more</source>
        <translation>--every nimmt eine ganze Zahl ab 1</translation>
    </message>
    <message>
        <source>--jobs takes a whole number of 1 or more</source>
        <translation>--jobs nimmt eine ganze Zahl ab 1</translation>
    </message>
    <message>
        <source>--jobs cannot share standard input (-) between processes</source>
        <translation>--jobs kann die Standardeingabe (-) nicht zwischen Prozessen teilen</translation>
    </message>
    <message>
        <source>%1 -&gt; %2</source>
        <translation>%1 -&gt; %2</translation>
    </message>
    <message>
        <source>%1 recordings</source>
        <translation>%1 Aufzeichnungen</translation>
    </message>
    <message>
        <source>%1: the output file is the log %2 itself</source>
        <translation>%1: Die Ausgabedatei ist das Log %2 selbst</translation>
    </message>
    <message>
        <source>%1 (--skip-bad-lines exports the other samples)</source>
        <translation>%1 (--skip-bad-lines exportiert die übrigen Abtastwerte)</translation>
    </message>
    <message>
        <source>%1 (a recording cannot be salvaged without its first line, the recording object)</source>
        <translation>%1 (ohne ihre erste Zeile, das Aufzeichnungsobjekt, ist eine Aufzeichnung nicht zu retten)</translation>
    </message>
    <message>
        <source>%1: gives no update rate, so --from and --to cannot be in seconds</source>
        <translation>%1: nennt keine Aktualisierungsrate, daher können --from und --to nicht in Sekunden sein</translation>
    </message>
    <message>
        <source>The UBX receiver log or PX4 flight log (ULog) to convert.</source>
        <translation>Das zu wandelnde UBX-Empfänger-Log oder PX4-Fluglog (ULog).</translation>
    </message>
    <message>
        <source>Writes a UBX receiver log or a PX4 flight log as a recording in the JSON Lines format, which exports to the same bytes as the log.</source>
        <translation>Schreibt ein UBX-Empfänger-Log oder ein PX4-Fluglog als Aufzeichnung im Format JSON Lines, die zu denselben Bytes exportiert wie das Log.</translation>
    </message>
    <message>
        <source>%1: is neither a UBX receiver log nor a PX4 flight log</source>
        <translation>%1: ist weder ein UBX-Empfänger-Log noch ein PX4-Fluglog</translation>
    </message>
    <message>
        <source>Recordings to export (JSON Lines, UBX logs or PX4 flight logs); - reads one from standard input.</source>
        <translation>Zu exportierende Aufzeichnungen (JSON Lines, UBX-Logs oder PX4-Fluglogs); - liest eine aus der Standardeingabe.</translation>
    </message>
    <message>
        <source>jsonl (the default); ubx for a receiver log of --samples navigation epochs at --rate a second; ulog for a PX4 flight log of --samples IMU samples at --rate a second.</source>
        <translation>jsonl (die Vorgabe); ubx für ein Empfänger-Log aus --samples Navigationsepochen, --rate je Sekunde; ulog für ein PX4-Fluglog aus --samples IMU-Abtastwerten, --rate je Sekunde.</translation>
    </message>
    <message>
        <source>For ulog: current (the default), or older for the layout in which sensor_combined carries the magnetometer and the barometer&apos;s temperature.</source>
        <translation>Für ulog: current (die Vorgabe) oder older für das Layout, in dem sensor_combined das Magnetometer und die Temperatur des Barometers trägt.</translation>
    </message>
    <message>
        <source>LAYOUT</source>
        <translation>LAYOUT</translation>
    </message>
    <message>
        <source>--layout applies to ULog logs only</source>
        <translation>--layout gilt nur für ULog-Logs</translation>
    </message>
    <message>
        <source>--format takes jsonl, ubx or ulog, not &quot;%1&quot;</source>
        <translation>--format nimmt jsonl, ubx oder ulog, nicht „%1“</translation>
    </message>
    <message>
        <source>--layout takes current or older, not &quot;%1&quot;</source>
        <translation>--layout nimmt current oder older, nicht „%1“</translation>
    </message>
    <message>
        <source>Exports recordings as delimited text, one file per recording. The output file is named by the settings outputFileFormat and outputFileExtension unless --output is given.
Exit status: 0 when every recording was exported, 1 when one failed, 2 for a usage error (an unknown option or setting key, a value a setting cannot take, an empty delimiter).</source>
        <translation>Exportiert Aufzeichnungen als Text mit Trennzeichen, eine Datei je Aufzeichnung. Die Ausgabedatei wird nach den Einstellungen outputFileFormat und outputFileExtension benannt, außer --output ist angegeben.
Exit-Status: 0, wenn jede Aufzeichnung exportiert wurde, 1, wenn eine fehlschlug, 2 bei einem Aufruffehler (eine unbekannte Option oder Einstellung, ein Wert, den eine Einstellung nicht annimmt, ein leeres Trennzeichen).</translation>
    </message>
    <message>
        <source>Refuse what the warnings about settings name (values that the options page cannot make, delimiter or empty-field settings that contradict each other, what the settings file holds besides settings), and exports that hold no data of the chosen groups, instead of warning about them.</source>
        <translation>Zurückweisen, wovor die Warnungen zu Einstellungen warnen (Werte, die die Optionsseite nicht erzeugen kann, Einstellungen für Trennzeichen oder leere Felder, die einander widersprechen, was die Einstellungsdatei außer Einstellungen enthält), und Exporte ohne Daten der gewählten Gruppen, statt vor ihnen zu warnen.</translation>
    </message>
    <message>
        <source>The field delimiter, set as the options page sets it: tab (or \t), space, comma (or ,), semicolon (or ;), or any other text, which becomes the custom delimiter. Excludes --set of the delimiter settings.</source>
        <translation>Das Trennzeichen der Felder, gesetzt wie auf der Optionsseite: tab (oder \t), space, comma (oder ,), semicolon (oder ;) oder ein anderer Text, der zum eigenen Trennzeichen wird. Schließt --set der Trennzeichen-Einstellungen aus.</translation>
    </message>
    <message>
        <source>TEXT</source>
        <translation>TEXT</translation>
    </message>
    <message>
        <source>The text of empty fields, set as the options page sets it: nothing (or &quot;&quot;), NaN, 0, or any other text, which becomes the custom placeholder. Excludes --set of the empty-field settings.</source>
        <translation>Der Text leerer Felder, gesetzt wie auf der Optionsseite: nothing (oder &quot;&quot;), NaN, 0 oder ein anderer Text, der zum eigenen Platzhalter wird. Schließt --set der Einstellungen für leere Felder aus.</translation>
    </message>
    <message>
        <source>--delimiter takes a text, such as tab, space, ; or ,</source>
        <translation>--delimiter nimmt einen Text, etwa tab, space, ; oder ,</translation>
    </message>
    <message>
        <source>%1 and --set %2 exclude each other</source>
        <translation>%1 und --set %2 schließen einander aus</translation>
    </message>
    <message>
        <source>%1 (--strict)</source>
        <translation>%1 (--strict)</translation>
    </message>
    <message>
        <source>%1 (--strict: no file written)</source>
        <translation>%1 (--strict: keine Datei geschrieben)</translation>
    </message>
    <message>
        <source>Show what this recording, UBX log or flight log holds instead: its samples, duration, rate, data groups and gaps.</source>
        <translation>Stattdessen zeigen, was diese Aufzeichnung, dieses UBX-Log oder Fluglog enthält: Abtastwerte, Dauer, Rate, Datengruppen und Lücken.</translation>
    </message>
</context>
<context>
    <name>ExportJob</name>
    <message>
        <source>%1: the output file would replace the recording itself</source>
        <translation>%1: Die Ausgabedatei würde die Aufzeichnung selbst ersetzen</translation>
    </message>
    <message>
        <source>%1: cannot be written: %2</source>
        <translation>%1: kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1 (skipped)</source>
        <translation>%1 (übersprungen)</translation>
    </message>
    <message>
        <source>(standard input)</source>
        <translation>(Standardeingabe)</translation>
    </message>
    <message>
        <source>%1: gives no update rate, so its samples cannot be selected by time</source>
        <translation>%1: nennt keine Aktualisierungsrate, daher sind ihre Abtastwerte nicht nach der Zeit auszuwählen</translation>
    </message>
    <message>
        <source>%1: no sample was selected</source>
        <translation>%1: kein Abtastwert wurde ausgewählt</translation>
    </message>
    <message>
        <source>%1: the recording holds no sample</source>
        <translation>%1: die Aufzeichnung enthält keinen Abtastwert</translation>
    </message>
    <message>
        <source>%1: no sample was selected; the recording&apos;s samples go from 0 to %2</source>
        <translation>%1: kein Abtastwert wurde ausgewählt; die Abtastwerte der Aufzeichnung reichen von 0 bis %2</translation>
    </message>
    <message>
        <source>the recording holds no data of any group</source>
        <translation>die Aufzeichnung enthält keine Daten irgendeiner Gruppe</translation>
    </message>
    <message>
        <source>the recording holds: %1</source>
        <translation>die Aufzeichnung enthält: %1</translation>
    </message>
    <message>
        <source>the samples read, 0 to %1, hold no data of any group</source>
        <translation>die gelesenen Abtastwerte, 0 bis %1, enthalten keine Daten irgendeiner Gruppe</translation>
    </message>
    <message>
        <source>the samples read, 0 to %1, hold: %2</source>
        <translation>die gelesenen Abtastwerte, 0 bis %1, enthalten: %2</translation>
    </message>
    <message>
        <source>%1: none of the chosen groups makes a row of its own (counters, times, status words, clipping flags and RSSI go with other data); %2</source>
        <translation>%1: keine der gewählten Gruppen ergibt eine eigene Zeile (Zähler, Zeiten, Statuswörter, Clipping-Flags und RSSI gehen mit anderen Daten); %2</translation>
    </message>
    <message>
        <source>%1: no sample holds data of the chosen groups; %2</source>
        <translation>%1: kein Abtastwert enthält Daten der gewählten Gruppen; %2</translation>
    </message>
</context>
<context>
    <name>GroupSelection</name>
    <message>
        <source>--groups names two orientations; the file holds one</source>
        <translation>--groups nennt zwei Orientierungen; die Datei enthält eine</translation>
    </message>
    <message>
        <source>--groups: unknown group &quot;%1&quot;; the groups are: %2</source>
        <translation>--groups: unbekannte Gruppe „%1“; die Gruppen sind: %2</translation>
    </message>
</context>
<context>
    <name>JsonLinesReader</name>
    <message>
        <source>the line is longer than %1 bytes</source>
        <translation>die Zeile ist länger als %1 Bytes</translation>
    </message>
    <message>
        <source>expected a JSON object, got %1</source>
        <translation>JSON-Objekt erwartet, %1 gefunden</translation>
    </message>
    <message>
        <source>%1:%2: %3</source>
        <translation>%1:%2: %3</translation>
    </message>
    <message>
        <source>the file holds no recording object</source>
        <translation>die Datei enthält kein Aufzeichnungsobjekt</translation>
    </message>
    <message>
        <source>&quot;properties&quot;: expected an object, got %1</source>
        <translation>„properties“: Objekt erwartet, %1 gefunden</translation>
    </message>
    <message>
        <source>&quot;properties.%1&quot;: the key appears more than once</source>
        <translation>„properties.%1“: Der Schlüssel kommt mehrfach vor</translation>
    </message>
    <message>
        <source>&quot;properties.%1&quot;: expected a string, a number, a boolean or null, got %2</source>
        <translation>„properties.%1“: Zeichenkette, Zahl, Wahrheitswert oder null erwartet, %2 gefunden</translation>
    </message>
    <message>
        <source>the first line must be the recording object, with &quot;properties&quot;</source>
        <translation>die erste Zeile muss das Aufzeichnungsobjekt mit „properties“ sein</translation>
    </message>
    <message>
        <source>&quot;properties.%1&quot;: the text holds a line break or a NUL character</source>
        <translation>„properties.%1“: Der Text enthält einen Zeilenumbruch oder ein NUL-Zeichen</translation>
    </message>
</context>
<context>
    <name>JsonTape</name>
    <message>
        <source>NUL byte at column %1</source>
        <translation>NUL-Byte in Spalte %1</translation>
    </message>
    <message>
        <source>lists and objects nested deeper than %1 levels</source>
        <translation>Listen und Objekte tiefer als %1 Ebenen verschachtelt</translation>
    </message>
    <message>
        <source>malformed JSON at column %1: %2</source>
        <translation>fehlerhaftes JSON in Spalte %1: %2</translation>
    </message>
</context>
<context>
    <name>LineReader</name>
    <message>
        <source>cannot be read: %1</source>
        <translation>kann nicht gelesen werden: %1</translation>
    </message>
</context>
<context>
    <name>OutputFile</name>
    <message>
        <source>the folder %1 no longer exists</source>
        <translation>der Ordner %1 existiert nicht mehr</translation>
    </message>
</context>
<context>
    <name>OutputNamer</name>
    <message>
        <source>%1: the output file name pattern &quot;%2&quot; gives the file name &quot;%3&quot; for this recording, which names no file</source>
        <translation>%1: Das Muster des Ausgabedateinamens „%2“ ergibt für diese Aufzeichnung den Dateinamen „%3“, der keine Datei benennt</translation>
    </message>
    <message>
        <source>%1: the output file name pattern &quot;%2&quot; gives the folder name &quot;%3&quot; for this recording; a recording&apos;s properties may not remove or climb a folder level</source>
        <translation>%1: Das Muster des Ausgabedateinamens „%2“ ergibt für diese Aufzeichnung den Ordnernamen „%3“; die Eigenschaften einer Aufzeichnung dürfen keine Ordnerebene entfernen oder verlassen</translation>
    </message>
    <message>
        <source>%1: the property %2 holds a line break, which the output file name pattern &quot;%3&quot; would put into the file name</source>
        <translation>%1: Die Eigenschaft %2 enthält einen Zeilenumbruch, den das Muster für Ausgabedateinamen &quot;%3&quot; in den Dateinamen setzen würde</translation>
    </message>
    <message>
        <source>%1: the folder %2 cannot be made: %3</source>
        <translation>%1: Der Ordner %2 kann nicht angelegt werden: %3</translation>
    </message>
</context>
<context>
    <name>OutputNames</name>
    <message>
        <source>%1: the output file %2 was written for %3 already</source>
        <translation>%1: Die Ausgabedatei %2 wurde schon für %3 geschrieben</translation>
    </message>
    <message>
        <source>%1: the output file %2 would replace a recording of this run</source>
        <translation>%1: Die Ausgabedatei %2 würde eine Aufzeichnung dieses Laufs ersetzen</translation>
    </message>
</context>
<context>
    <name>ParallelExports</name>
    <message>
        <source>%1: the export process was killed by signal %2 (%3) before it finished</source>
        <translation>%1: Der Exportprozess wurde durch Signal %2 (%3) beendet, bevor er fertig war</translation>
    </message>
    <message>
        <source>%1: the export process ended with status %2 before it finished</source>
        <translation>%1: Der Exportprozess endete mit Status %2, bevor er fertig war</translation>
    </message>
</context>
<context>
    <name>PluginHost</name>
    <message>
        <source>%1: no such plug-in file</source>
        <translation>%1: Diese Plug-in-Datei gibt es nicht</translation>
    </message>
    <message>
        <source>%1: is a folder, not a plug-in file</source>
        <translation>%1: ist ein Ordner, keine Plug-in-Datei</translation>
    </message>
    <message>
        <source>%1: not a readable file</source>
        <translation>%1: keine lesbare Datei</translation>
    </message>
    <message>
        <source>%1: not a usable Qt plug-in: %2</source>
        <translation>%1: kein brauchbares Qt-Plug-in: %2</translation>
    </message>
    <message>
        <source>%1: not an exporter plug-in (it does not provide %2)</source>
        <translation>%1: kein Exporter-Plug-in (es bietet %2 nicht an)</translation>
    </message>
</context>
<context>
    <name>ProgressBar</name>
    <message>
        <source>%1 left</source>
        <translation>noch %1</translation>
    </message>
</context>
<context>
    <name>RecordingFileReader</name>
    <message>
        <source>%1: is a directory, not a recording</source>
        <translation>%1: ist ein Ordner, keine Aufzeichnung</translation>
    </message>
    <message>
        <source>%1: cannot be read: %2</source>
        <translation>%1: kann nicht gelesen werden: %2</translation>
    </message>
</context>
<context>
    <name>RecordingGenerator</name>
    <message>
        <source>the number of samples must not be negative</source>
        <translation>die Anzahl der Abtastwerte darf nicht negativ sein</translation>
    </message>
    <message>
        <source>the rate must be above 0 and at most 10000 Hz</source>
        <translation>die Rate muss über 0 und höchstens 10000 Hz sein</translation>
    </message>
    <message>
        <source>unknown sample key &quot;%1&quot;</source>
        <translation>unbekannter Schlüssel „%1“</translation>
    </message>
</context>
<context>
    <name>RecordingReport</name>
    <message>
        <source>Recording</source>
        <translation>Aufzeichnung</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>UBX receiver log</source>
        <translation>UBX-Empfänger-Log</translation>
    </message>
    <message>
        <source>JSON Lines</source>
        <translation>JSON Lines</translation>
    </message>
    <message>
        <source>Bytes</source>
        <translation>Bytes</translation>
    </message>
    <message>
        <source>Frames</source>
        <translation>Frames</translation>
    </message>
    <message>
        <source>%1 (%2 bytes)</source>
        <translation>%1 (%2 Bytes)</translation>
    </message>
    <message>
        <source>Bad checksums</source>
        <translation>Falsche Prüfsummen</translation>
    </message>
    <message>
        <source>Cut short at end</source>
        <translation>Am Ende abgeschnitten</translation>
    </message>
    <message>
        <source>Bytes skipped</source>
        <translation>Übersprungene Bytes</translation>
    </message>
    <message>
        <source>Messages used:</source>
        <translation>Verwendete Nachrichten:</translation>
    </message>
    <message>
        <source>Messages not used:</source>
        <translation>Nicht verwendete Nachrichten:</translation>
    </message>
    <message>
        <source>Wrong length</source>
        <translation>Falsche Länge</translation>
    </message>
    <message>
        <source>Repeated</source>
        <translation>Wiederholt</translation>
    </message>
    <message>
        <source>Epochs</source>
        <translation>Epochen</translation>
    </message>
    <message>
        <source>Satellites</source>
        <translation>Satelliten</translation>
    </message>
    <message>
        <source>%1 GPS in NAV-SVINFO, %2 GNSS in NAV-SAT</source>
        <translation>%1 GPS in NAV-SVINFO, %2 GNSS in NAV-SAT</translation>
    </message>
    <message>
        <source>Samples</source>
        <translation>Abtastwerte</translation>
    </message>
    <message>
        <source>Update rate</source>
        <translation>Aktualisierungsrate</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>not known</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>At iTOW 0</source>
        <translation>Bei iTOW 0</translation>
    </message>
    <message>
        <source>week %1 iTOW %2 ms</source>
        <translation>Woche %1 iTOW %2 ms</translation>
    </message>
    <message>
        <source>iTOW %1 ms</source>
        <translation>iTOW %1 ms</translation>
    </message>
    <message>
        <source>%1 (%2 to %3)</source>
        <translation>%1 (%2 bis %3)</translation>
    </message>
    <message>
        <source>PX4 flight log (ULog)</source>
        <translation>PX4-Fluglog (ULog)</translation>
    </message>
    <message>
        <source>Topics (instance, messages, rate):</source>
        <translation>Topics (Instanz, Nachrichten, Rate):</translation>
    </message>
    <message>
        <source>  %1 %2 %3 %4 Hz</source>
        <translation>  %1 %2 %3 %4 Hz</translation>
    </message>
    <message>
        <source>Dropouts</source>
        <translation>Aussetzer</translation>
    </message>
    <message>
        <source>%1 (%2 ms in all)</source>
        <translation>%1 (%2 ms insgesamt)</translation>
    </message>
    <message>
        <source>Logged messages</source>
        <translation>Geloggte Meldungen</translation>
    </message>
    <message>
        <source>  %1 s level %2: %3</source>
        <translation>  %1 s Stufe %2: %3</translation>
    </message>
    <message>
        <source>Keys (messages: placed, dropped, collided; from):</source>
        <translation>Schlüssel (Nachrichten: platziert, verworfen, verdrängt; aus):</translation>
    </message>
    <message>
        <source>  %1 %2: %3, %4, %5; %6</source>
        <translation>  %1 %2: %3, %4, %5; %6</translation>
    </message>
    <message>
        <source>Passed over</source>
        <translation>Übergangen</translation>
    </message>
    <message>
        <source>from the sample times</source>
        <translation>aus den Zeiten der Abtastwerte</translation>
    </message>
    <message>
        <source>from the receiver&apos;s times</source>
        <translation>aus den Zeiten des Empfängers</translation>
    </message>
    <message>
        <source>from the update rate</source>
        <translation>aus der Aktualisierungsrate</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>Rate</source>
        <translation>Rate</translation>
    </message>
    <message>
        <source>%1 s (%2)</source>
        <translation>%1 s (%2)</translation>
    </message>
    <message>
        <source>%1 samples/s</source>
        <translation>%1 Abtastwerte/s</translation>
    </message>
    <message>
        <source>Data groups</source>
        <translation>Datengruppen</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Counter gaps</source>
        <translation>Lücken im Zähler</translation>
    </message>
    <message>
        <source>no packet counter</source>
        <translation>kein Paketzähler</translation>
    </message>
    <message>
        <source>%1; the largest %2 -&gt; %3 before sample %4</source>
        <translation>%1; die größte %2 -&gt; %3 vor Abtastwert %4</translation>
    </message>
    <message>
        <source>Time gaps</source>
        <translation>Lücken in der Zeit</translation>
    </message>
    <message>
        <source>in the receiver&apos;s time: %1</source>
        <translation>in der Zeit des Empfängers: %1</translation>
    </message>
    <message>
        <source>no sample times</source>
        <translation>keine Zeiten der Abtastwerte</translation>
    </message>
    <message>
        <source>none (median step %1 s)</source>
        <translation>keine (Median-Schritt %1 s)</translation>
    </message>
    <message>
        <source>%1 (steps over 1.5 times the median step %2 s); the largest %3 s before sample %4</source>
        <translation>%1 (Schritte über dem 1,5-Fachen des Median-Schritts %2 s); der größte %3 s vor Abtastwert %4</translation>
    </message>
</context>
<context>
    <name>SampleReader</name>
    <message>
        <source>a list of 3 rows</source>
        <translation>eine Liste aus 3 Zeilen</translation>
    </message>
    <message>
        <source>a list of integers</source>
        <translation>eine Liste ganzer Zahlen</translation>
    </message>
</context>
<context>
    <name>SampleSelection</name>
    <message>
        <source>takes a sample index (0 is the first sample) or seconds from the start such as 12.5s, not &quot;%1&quot;</source>
        <translation>nimmt einen Index (0 ist der erste Abtastwert) oder Sekunden ab dem Anfang wie 12.5s, nicht „%1“</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>The settings could not be saved.</source>
        <translation>Die Einstellungen konnten nicht gespeichert werden.</translation>
    </message>
</context>
<context>
    <name>SettingsFileCheck</name>
    <message>
        <source>%1: not a settings file: it holds bytes that are not text</source>
        <translation>%1: keine Einstellungsdatei: sie enthält Bytes, die kein Text sind</translation>
    </message>
    <message>
        <source>section [%1] is not read: the plug-in&apos;s settings belong in [General]</source>
        <translation>der Abschnitt [%1] wird nicht gelesen: die Einstellungen des Plug-ins gehören in [General]</translation>
    </message>
    <message>
        <source>neither KEY=VALUE nor a [section]: ignored</source>
        <translation>weder SCHLÜSSEL=WERT noch ein [Abschnitt]: übergangen</translation>
    </message>
    <message>
        <source>no key before the =: ignored</source>
        <translation>kein Schlüssel vor dem =: übergangen</translation>
    </message>
    <message>
        <source>unknown setting &quot;%1&quot;; did you mean &quot;%2&quot;?</source>
        <translation>unbekannte Einstellung „%1“; war „%2“ gemeint?</translation>
    </message>
</context>
<context>
    <name>TapeFieldReader</name>
    <message>
        <source>a list</source>
        <translation>eine Liste</translation>
    </message>
    <message>
        <source>an integer</source>
        <translation>eine ganze Zahl</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: %2 is not an integer</source>
        <translation>„%1“: %2 ist keine ganze Zahl</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: %2 is out of range (%3..%4)</source>
        <translation>„%1“: %2 liegt außerhalb des Bereichs (%3..%4)</translation>
    </message>
    <message>
        <source>a number</source>
        <translation>eine Zahl</translation>
    </message>
    <message>
        <source>a list of %1 numbers</source>
        <translation>eine Liste aus %1 Zahlen</translation>
    </message>
    <message>
        <source>a string</source>
        <translation>eine Zeichenkette</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: %2 is not an ISO 8601 date and time</source>
        <translation>„%1“: %2 ist kein Datum mit Uhrzeit nach ISO 8601</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: expected %2, got %3</source>
        <translation>„%1“: %2 erwartet, %3 gefunden</translation>
    </message>
    <message>
        <source>null</source>
        <translation>null</translation>
    </message>
    <message>
        <source>a boolean</source>
        <translation>ein Wahrheitswert</translation>
    </message>
    <message>
        <source>an object</source>
        <translation>ein Objekt</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: the key appears more than once</source>
        <translation>„%1“: Der Schlüssel kommt mehrfach vor</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: expected %2, got %3 entries</source>
        <translation>„%1“: %2 erwartet, %3 Einträge gefunden</translation>
    </message>
</context>
<context>
    <name>TemporaryCopy</name>
    <message>
        <source>%1: cannot make a temporary copy: %2</source>
        <translation>%1: keine temporäre Kopie möglich: %2</translation>
    </message>
    <message>
        <source>%1: cannot be read: %2</source>
        <translation>%1: kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>%1: cannot make a temporary copy: after %2, the temporary folder %3 would have less than %4 free (TMPDIR names another folder)</source>
        <translation>%1: keine temporäre Kopie möglich: nach %2 hätte der temporäre Ordner %3 weniger als %4 frei (TMPDIR nennt einen anderen Ordner)</translation>
    </message>
    <message>
        <source>%1: cannot make a temporary copy in %2: %3</source>
        <translation>%1: keine temporäre Kopie in %2 möglich: %3</translation>
    </message>
</context>
<context>
    <name>UbxReader</name>
    <message>
        <source>%1: holds no UBX frame with a good checksum</source>
        <translation>%1: enthält keinen UBX-Frame mit richtiger Prüfsumme</translation>
    </message>
    <message>
        <source>%1: the log changed while it was read</source>
        <translation>%1: Das Log hat sich beim Lesen geändert</translation>
    </message>
    <message>
        <source>%1: a UBX log is read twice, which a pipe cannot be</source>
        <translation>%1: Ein UBX-Protokoll wird zweimal gelesen, was eine Pipe nicht zulässt</translation>
    </message>
    <message>
        <source>%1: is too large to be read as a UBX log</source>
        <translation>%1: ist zu groß, um als UBX-Protokoll gelesen zu werden</translation>
    </message>
    <message>
        <source>%1 of %2 bytes outside good UBX frames (frames with a bad checksum: %3, cut short at the end: %4)</source>
        <translation>%1 von %2 Bytes außerhalb guter UBX-Frames (Frames mit falscher Prüfsumme: %3, am Ende abgeschnitten: %4)</translation>
    </message>
    <message>
        <source>messages of a wrong length: %1</source>
        <translation>Nachrichten falscher Länge: %1</translation>
    </message>
    <message>
        <source>repeated messages: %1</source>
        <translation>wiederholte Nachrichten: %1</translation>
    </message>
    <message>
        <source>messages at time of week 0, which hold no data: %1</source>
        <translation>Nachrichten bei Wochenzeit 0, die keine Daten enthalten: %1</translation>
    </message>
    <message>
        <source>%1: passed over: %2</source>
        <translation>%1: übergangen: %2</translation>
    </message>
</context>
<context>
    <name>UlogReader</name>
    <message>
        <source>%1: a ULog is read twice, which a pipe cannot be</source>
        <translation>%1: Ein ULog wird zweimal gelesen, was bei einer Pipe nicht geht</translation>
    </message>
    <message>
        <source>the log holds no sensor_combined messages</source>
        <translation>Das Log enthält keine sensor_combined-Nachrichten</translation>
    </message>
    <message>
        <source>%1: the log changed while it was read</source>
        <translation>%1: Das Log hat sich beim Lesen geändert</translation>
    </message>
    <message>
        <source>sensor_combined, the sample&apos;s index</source>
        <translation>sensor_combined, der Index des Samples</translation>
    </message>
    <message>
        <source>; and %1 more</source>
        <translation>; und %1 weitere</translation>
    </message>
    <message>
        <source>passed over: %1</source>
        <translation>übergangen: %1</translation>
    </message>
    <message>
        <source>messages of unknown types: %1</source>
        <translation>Nachrichten unbekannter Typen: %1</translation>
    </message>
    <message>
        <source>repeated messages dropped: %1</source>
        <translation>wiederholte Nachrichten verworfen: %1</translation>
    </message>
    <message>
        <source>messages left out for values not finite: %1</source>
        <translation>wegen nicht endlicher Werte ausgelassene Nachrichten: %1</translation>
    </message>
    <message>
        <source>%1 %2 dropped</source>
        <translation>%1 %2 verworfen</translation>
    </message>
    <message>
        <source>%1 %2 collided</source>
        <translation>%1 %2 kollidiert</translation>
    </message>
    <message>
        <source>%1 %2 dropped and %3 collided</source>
        <translation>%1 %2 verworfen und %3 kollidiert</translation>
    </message>
    <message>
        <source>messages not placed (fill %1): %2</source>
        <translation>nicht platzierte Nachrichten (Füllung %1): %2</translation>
    </message>
</context>
<context>
    <name>UlogSources</name>
    <message>
        <source>%1 (older layout)</source>
        <translation>%1 (älteres Layout)</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>no command given</source>
        <translation>kein Befehl angegeben</translation>
    </message>
    <message>
        <source>unknown command &quot;%1&quot;</source>
        <translation>unbekannter Befehl „%1“</translation>
    </message>
    <message>
        <source>Usage: asciiexport COMMAND [options]

Exports motion-tracker recordings as delimited text through the ASCII
exporter plug-in, and edits its settings.

Commands:
  export     export recordings, one text file each
  settings   list every setting: value, default, description
  options    edit the settings in the settings dialog
  info       show the plug-in&apos;s metadata, name, version and extension
  generate   write a synthetic recording
  convert    write a UBX receiver log or a PX4 flight log as JSON Lines

&apos;asciiexport COMMAND --help&apos; or &apos;asciiexport help COMMAND&apos; tells more
about each command; &apos;asciiexport --version&apos; shows the versions of the
program and the plug-in.
</source>
        <translation>Aufruf: asciiexport BEFEHL [Optionen]

Exportiert Aufzeichnungen von Bewegungssensoren über das Plug-in
„ASCII Exporter“ als Text mit Trennzeichen und bearbeitet seine Einstellungen.

Befehle:
  export     Aufzeichnungen exportieren, je eine Textdatei
  settings   jede Einstellung auflisten: Wert, Vorgabe, Beschreibung
  options    die Einstellungen im Einstellungsdialog bearbeiten
  info       Metadaten, Name, Version und Dateiendung des Plug-ins zeigen
  generate   eine synthetische Aufzeichnung schreiben
  convert    ein UBX-Empfänger-Log oder PX4-Fluglog als JSON Lines schreiben

„asciiexport BEFEHL --help“ oder „asciiexport help BEFEHL“ sagt mehr über
jeden Befehl; „asciiexport --version“ zeigt die Versionen des Programms und
des Plug-ins.
</translation>
    </message>
    <message>
        <source>unknown command &quot;%1&quot;; did you mean &quot;%2&quot;?</source>
        <translation>unbekannter Befehl „%1“; war „%2“ gemeint?</translation>
    </message>
</context>
</TS>
