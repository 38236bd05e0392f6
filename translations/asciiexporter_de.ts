<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AsciiExporter</name>
    <message>
        <source>// Start Time: </source>
        <translation>// Startzeit: </translation>
    </message>
    <message>
        <source>// Update Rate: </source>
        <translation>// Abtastrate: </translation>
    </message>
    <message>
        <source>Various
</source>
        <translation>Verschieden
</translation>
    </message>
    <message>
        <source>// Filter Profile: %1 (%3.%2)
</source>
        <translation>// Filterprofil: %1 (%3.%2)
</translation>
    </message>
    <message>
        <source>// Filter Profile: Error: No KVA filter profile
</source>
        <translation>// Filterprofil: Fehler: Kein KVA-Filterprofil
</translation>
    </message>
    <message>
        <source>// Option Flags: %1
</source>
        <translation>// Optionsflags: %1
</translation>
    </message>
    <message>
        <source>// Option Flags: Error: No option flags
</source>
        <translation>// Optionsflags: Fehler: Keine Optionsflags
</translation>
    </message>
    <message>
        <source>// Firmware Version: %1</source>
        <translation>// Firmwareversion: %1</translation>
    </message>
    <message>
        <source>// Firmware Version: Error: No firmware version</source>
        <translation>// Firmwareversion: Fehler: Keine Firmwareversion</translation>
    </message>
</context>
<context>
    <name>AsciiExporterFactory</name>
    <message>
        <source>The format of the output file name. e.g. &lt;inputfile&gt;-&lt;seqnr&gt;. The .txt extension is automatically appended.</source>
        <translation>Das Format des Ausgabedateinamens, z. B. &lt;inputfile&gt;-&lt;seqnr&gt;. Die Endung .txt wird automatisch angehängt.</translation>
    </message>
    <message>
        <source>The extension of the output file name</source>
        <translation>Die Endung des Ausgabedateinamens</translation>
    </message>
    <message>
        <source>Export date (yyyy-mm-dd seconds)</source>
        <translation>Datum exportieren (jjjj-mm-tt Sekunden)</translation>
    </message>
    <message>
        <source>Export 12 byte UTC Time</source>
        <translation>12-Byte-UTC-Zeit exportieren</translation>
    </message>
    <message>
        <source>Export the packet counter</source>
        <translation>Paketzähler exportieren</translation>
    </message>
    <message>
        <source>Export the sample time fine</source>
        <translation>Feine Abtastzeit exportieren</translation>
    </message>
    <message>
        <source>Export the clip flags</source>
        <translation>Clipping-Flags exportieren</translation>
    </message>
    <message>
        <source>Export the status flags</source>
        <translation>Statusflags exportieren</translation>
    </message>
    <message>
        <source>Export the RSSI</source>
        <translation>RSSI exportieren</translation>
    </message>
    <message>
        <source>Export calibrated acceleration data</source>
        <translation>Kalibrierte Beschleunigungsdaten exportieren</translation>
    </message>
    <message>
        <source>Export the free acceleration</source>
        <translation>Freie Beschleunigung exportieren</translation>
    </message>
    <message>
        <source>Export calibrated rate gyroscope data</source>
        <translation>Kalibrierte Drehratendaten exportieren</translation>
    </message>
    <message>
        <source>Export the calibrated magnetic field</source>
        <translation>Kalibriertes Magnetfeld exportieren</translation>
    </message>
    <message>
        <source>Export the incremental velocity value since the last successful transmission</source>
        <translation>Geschwindigkeitsinkrement seit der letzten erfolgreichen Übertragung exportieren</translation>
    </message>
    <message>
        <source>Export the incremental orientation value since the last successful transmission</source>
        <translation>Orientierungsinkrement seit der letzten erfolgreichen Übertragung exportieren</translation>
    </message>
    <message>
        <source>Export orientation data in the format of the orientations &quot;Quaternion&quot;, &quot;Euler&quot;, &quot;Matrix&quot; or no orientation output: &quot;None&quot;</source>
        <translation>Orientierungsdaten im Format „Quaternion“, „Euler“ oder „Matrix“ exportieren, oder keine Orientierung: „None“</translation>
    </message>
    <message>
        <source>Export position data</source>
        <translation>Positionsdaten exportieren</translation>
    </message>
    <message>
        <source>Export velocity data</source>
        <translation>Geschwindigkeitsdaten exportieren</translation>
    </message>
    <message>
        <source>Export the heading</source>
        <translation>Kurs exportieren</translation>
    </message>
    <message>
        <source>Export temperature data</source>
        <translation>Temperaturdaten exportieren</translation>
    </message>
    <message>
        <source>Export the calibrated pressure data in hPa</source>
        <translation>Kalibrierte Druckdaten in hPa exportieren</translation>
    </message>
    <message>
        <source>Export gyroscope temperature data</source>
        <translation>Gyroskop-Temperaturdaten exportieren</translation>
    </message>
    <message>
        <source>Export SCR acceleration data</source>
        <translation>SCR-Beschleunigungsdaten exportieren</translation>
    </message>
    <message>
        <source>Export SCR gyroscope data</source>
        <translation>SCR-Gyroskopdaten exportieren</translation>
    </message>
    <message>
        <source>Export the SCR magnetic field</source>
        <translation>SCR-Magnetfeld exportieren</translation>
    </message>
    <message>
        <source>Export RAW temperature data</source>
        <translation>Rohe Temperaturdaten exportieren</translation>
    </message>
    <message>
        <source>Export the raw gps data</source>
        <translation>GPS-Rohdaten exportieren</translation>
    </message>
    <message>
        <source>Export the raw gnss data</source>
        <translation>GNSS-Rohdaten exportieren</translation>
    </message>
    <message>
        <source>Export SCR gyroscope temperature data</source>
        <translation>SCR-Gyroskop-Temperaturdaten exportieren</translation>
    </message>
    <message>
        <source>Export Trigger Indication 1</source>
        <translation>Triggermeldung 1 exportieren</translation>
    </message>
    <message>
        <source>Export Trigger Indication 2</source>
        <translation>Triggermeldung 2 exportieren</translation>
    </message>
    <message>
        <source>Insert &quot;NaN&quot; for empty fields</source>
        <translation>„NaN“ in leere Felder schreiben</translation>
    </message>
    <message>
        <source>Use &quot;,&quot; as a delimiter</source>
        <translation>„,“ als Trennzeichen verwenden</translation>
    </message>
    <message>
        <source>Use a custom delimiter (enter custom delimiter)</source>
        <translation>Eigenes Trennzeichen verwenden (eigenes Trennzeichen eingeben)</translation>
    </message>
    <message>
        <source>Use &quot;;&quot; as a delimiter</source>
        <translation>„;“ als Trennzeichen verwenden</translation>
    </message>
    <message>
        <source>Use &quot; &quot; as a delimiter</source>
        <translation>„ “ als Trennzeichen verwenden</translation>
    </message>
    <message>
        <source>Use &quot;\t&quot; as a delimiter</source>
        <translation>„\t“ als Trennzeichen verwenden</translation>
    </message>
    <message>
        <source>Use this custom delimiter</source>
        <translation>Dieses eigene Trennzeichen verwenden</translation>
    </message>
    <message>
        <source>Insert nothing for empty fields</source>
        <translation>Leere Felder leer lassen</translation>
    </message>
    <message>
        <source>Insert 0 for empty fields</source>
        <translation>0 in leere Felder schreiben</translation>
    </message>
    <message>
        <source>Insert custom text for empty fields</source>
        <translation>Eigenen Text in leere Felder schreiben</translation>
    </message>
    <message>
        <source>Use this custom placeholder for empty fields</source>
        <translation>Diesen eigenen Platzhalter für leere Felder verwenden</translation>
    </message>
</context>
<context>
    <name>AsciiExporterOptionsPage</name>
    <message>
        <source>Ascii Exporter Options</source>
        <translation>ASCII-Exporter-Optionen</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>Dateiname</translation>
    </message>
    <message>
        <source>Output Filename:</source>
        <translation>Ausgabedateiname:</translation>
    </message>
    <message>
        <source>&lt;!DOCTYPE HTML PUBLIC &quot;-//W3C//DTD HTML 4.0//EN&quot; &quot;http://www.w3.org/TR/REC-html40/strict.dtd&quot;&gt;
&lt;html&gt;&lt;head&gt;&lt;meta name=&quot;qrichtext&quot; content=&quot;1&quot; /&gt;&lt;style type=&quot;text/css&quot;&gt;
p, li { white-space: pre-wrap; }
&lt;/style&gt;&lt;/head&gt;&lt;body style=&quot; font-family:&apos;MS Shell Dlg 2&apos;; font-size:8.25pt; font-weight:400; font-style:normal;&quot;&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;Replacement Patterns:&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot;-qt-paragraph-type:empty; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px; font-size:8pt;&quot;&gt;&lt;br /&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;date&amp;gt;	: Date of export (e.g. %1)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;deviceid&amp;gt;	: Device ID (e.g. %2)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;inputfile&amp;gt;	: Original filename without extension (e.g. %3)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;seqnr&amp;gt;	: Sequential number (e.g. %4)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;productcode&amp;gt; : Product code (e.g. %5)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;filterprofile&amp;gt;	: Filter profile in use (e.g. %6)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;time&amp;gt;	: Time read from system clock (e.g. %7)&lt;/span&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;!DOCTYPE HTML PUBLIC &quot;-//W3C//DTD HTML 4.0//EN&quot; &quot;http://www.w3.org/TR/REC-html40/strict.dtd&quot;&gt;
&lt;html&gt;&lt;head&gt;&lt;meta name=&quot;qrichtext&quot; content=&quot;1&quot; /&gt;&lt;style type=&quot;text/css&quot;&gt;
p, li { white-space: pre-wrap; }
&lt;/style&gt;&lt;/head&gt;&lt;body style=&quot; font-family:&apos;MS Shell Dlg 2&apos;; font-size:8.25pt; font-weight:400; font-style:normal;&quot;&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;Ersetzungsmuster:&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot;-qt-paragraph-type:empty; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px; font-size:8pt;&quot;&gt;&lt;br /&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;date&amp;gt;	: Datum des Exports (z. B. %1)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;deviceid&amp;gt;	: Geräte-ID (z. B. %2)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;inputfile&amp;gt;	: Name der Originaldatei ohne Endung (z. B. %3)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;seqnr&amp;gt;	: Laufende Nummer (z. B. %4)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;productcode&amp;gt; : Produktcode (z. B. %5)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;filterprofile&amp;gt;	: Verwendetes Filterprofil (z. B. %6)&lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;&amp;lt;time&amp;gt;	: Uhrzeit der Systemuhr (z. B. %7)&lt;/span&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>&lt;inputfile&gt;-&lt;seqnr&gt;</source>
        <translation>&lt;inputfile&gt;-&lt;seqnr&gt;</translation>
    </message>
    <message>
        <source>.</source>
        <translation>.</translation>
    </message>
    <message>
        <source>myfile-003.txt</source>
        <translation>meinedatei-003.txt</translation>
    </message>
    <message>
        <source>Example:</source>
        <translation>Beispiel:</translation>
    </message>
    <message>
        <source>Delimiter Options</source>
        <translation>Trennzeichen</translation>
    </message>
    <message>
        <source>&amp;Other</source>
        <translation>&amp;Anderes</translation>
    </message>
    <message>
        <source>&amp;Tab</source>
        <translation>&amp;Tabulator</translation>
    </message>
    <message>
        <source>&amp;Space</source>
        <translation>&amp;Leerzeichen</translation>
    </message>
    <message>
        <source>Se&amp;micolon</source>
        <translation>Se&amp;mikolon</translation>
    </message>
    <message>
        <source>&amp;Comma</source>
        <translation>&amp;Komma</translation>
    </message>
    <message>
        <source>Empty Field Options</source>
        <translation>Leere Felder</translation>
    </message>
    <message>
        <source>Use this custom placeholder for empty fields</source>
        <translation>Diesen eigenen Platzhalter für leere Felder verwenden</translation>
    </message>
    <message>
        <source>NaN</source>
        <translation>NaN</translation>
    </message>
    <message>
        <source>Empty</source>
        <translation>Leer</translation>
    </message>
    <message>
        <source>0</source>
        <translation>0</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Anderer</translation>
    </message>
    <message>
        <source>Exported Data</source>
        <translation>Exportierte Daten</translation>
    </message>
    <message>
        <source>Orientation</source>
        <translation>Orientierung</translation>
    </message>
    <message>
        <source>Position and Velocity</source>
        <translation>Position und Geschwindigkeit</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Velocity</source>
        <translation>Geschwindigkeit</translation>
    </message>
    <message>
        <source>Timestamp</source>
        <translation>Zeitstempel</translation>
    </message>
    <message>
        <source>Packet Counter</source>
        <translation>Paketzähler</translation>
    </message>
    <message>
        <source>Sample Time Fine</source>
        <translation>Feine Abtastzeit</translation>
    </message>
    <message>
        <source>Date and time</source>
        <translation>Datum und Uhrzeit</translation>
    </message>
    <message>
        <source>UTC Time</source>
        <translation>UTC-Zeit</translation>
    </message>
    <message>
        <source>GNSS</source>
        <translation>GNSS</translation>
    </message>
    <message>
        <source>GNSS Receiver Message</source>
        <translation>GNSS-Empfängermeldung</translation>
    </message>
    <message>
        <source>GPS Receiver Message</source>
        <translation>GPS-Empfängermeldung</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Status Word</source>
        <translation>Statuswort</translation>
    </message>
    <message>
        <source>Clipping Flags</source>
        <translation>Clipping-Flags</translation>
    </message>
    <message>
        <source>RSSI</source>
        <translation>RSSI</translation>
    </message>
    <message>
        <source>Sensor Component Readout</source>
        <translation>Rohwerte der Sensorkomponenten (SCR)</translation>
    </message>
    <message>
        <source>SCR Acceleration</source>
        <translation>SCR-Beschleunigung</translation>
    </message>
    <message>
        <source>SCR Gyroscope Data</source>
        <translation>SCR-Gyroskopdaten</translation>
    </message>
    <message>
        <source>SCR Magnetic Field</source>
        <translation>SCR-Magnetfeld</translation>
    </message>
    <message>
        <source>SCR Temperature</source>
        <translation>SCR-Temperatur</translation>
    </message>
    <message>
        <source>SCR Gyro Temperatures</source>
        <translation>SCR-Gyroskoptemperaturen</translation>
    </message>
    <message>
        <source>Inertial Data</source>
        <translation>Inertialdaten</translation>
    </message>
    <message>
        <source>Orientation Increment</source>
        <translation>Orientierungsinkrement</translation>
    </message>
    <message>
        <source>Velocity Increment</source>
        <translation>Geschwindigkeitsinkrement</translation>
    </message>
    <message>
        <source>Rate Of Turn</source>
        <translation>Drehrate</translation>
    </message>
    <message>
        <source>Acceleration</source>
        <translation>Beschleunigung</translation>
    </message>
    <message>
        <source>Free Acceleration</source>
        <translation>Freie Beschleunigung</translation>
    </message>
    <message>
        <source>Miscellaneous Sensors</source>
        <translation>Weitere Sensoren</translation>
    </message>
    <message>
        <source>Magnetic Field</source>
        <translation>Magnetfeld</translation>
    </message>
    <message>
        <source>Temperature</source>
        <translation>Temperatur</translation>
    </message>
    <message>
        <source>Gyro Temperatures</source>
        <translation>Gyroskoptemperaturen</translation>
    </message>
    <message>
        <source>Barometric Pressure</source>
        <translation>Luftdruck</translation>
    </message>
    <message>
        <source>Triggers</source>
        <translation>Trigger</translation>
    </message>
    <message>
        <source>Trigger In 1</source>
        <translation>Triggereingang 1</translation>
    </message>
    <message>
        <source>Trigger In 2</source>
        <translation>Triggereingang 2</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>Quaternion</translation>
    </message>
    <message>
        <source>Euler Angles</source>
        <translation>Eulerwinkel</translation>
    </message>
    <message>
        <source>Matrix</source>
        <translation>Matrix</translation>
    </message>
    <message>
        <source>ASCII Exporter</source>
        <translation>ASCII-Exporter</translation>
    </message>
    <message>
        <source>Exporters</source>
        <translation>Exporter</translation>
    </message>
</context>
</TS>
