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
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The extension of the output file name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export date (yyyy-mm-dd seconds)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export 12 byte UTC Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the packet counter</source>
        <translation>Paketzähler exportieren</translation>
    </message>
    <message>
        <source>Export the sample time fine</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the clip flags</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the status flags</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the RSSI</source>
        <translation>RSSI exportieren</translation>
    </message>
    <message>
        <source>Export calibrated acceleration data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the free acceleration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export calibrated rate gyroscope data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the calibrated magnetic field</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the incremental velocity value since the last successful transmission</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the incremental orientation value since the last successful transmission</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export orientation data in the format of the orientations &quot;Quaternion&quot;, &quot;Euler&quot;, &quot;Matrix&quot; or no orientation output: &quot;None&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export position data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export velocity data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the heading</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export temperature data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the calibrated pressure data in hPa</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export gyroscope temperature data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export SCR acceleration data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export SCR gyroscope data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the SCR magnetic field</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export RAW temperature data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the raw gps data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export the raw gnss data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export SCR gyroscope temperature data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export Trigger Indication 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export Trigger Indication 2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Insert &quot;NaN&quot; for empty fields</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use &quot;,&quot; as a delimiter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use a custom delimiter (enter custom delimiter)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use &quot;;&quot; as a delimiter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use &quot; &quot; as a delimiter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use &quot;\t&quot; as a delimiter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use this custom delimiter</source>
        <translation>Dieses eigene Trennzeichen verwenden</translation>
    </message>
    <message>
        <source>Insert nothing for empty fields</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Insert 0 for empty fields</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Insert custom text for empty fields</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use this custom placeholder for empty fields</source>
        <translation type="unfinished"></translation>
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
        <translation type="unfinished"></translation>
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
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;inputfile&gt;-&lt;seqnr&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>myfile-003.txt</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Example:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delimiter Options</source>
        <translation>Trennzeichen</translation>
    </message>
    <message>
        <source>&amp;Other</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Tab</source>
        <translation>&amp;Tabulator</translation>
    </message>
    <message>
        <source>&amp;Space</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Se&amp;micolon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Comma</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Empty Field Options</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use this custom placeholder for empty fields</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>NaN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>0</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Other</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exported Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Orientation</source>
        <translation>Orientierung</translation>
    </message>
    <message>
        <source>Position and Velocity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Position</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Velocity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Timestamp</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Packet Counter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sample Time Fine</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date and time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>UTC Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GNSS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GNSS Receiver Message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GPS Receiver Message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status Word</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clipping Flags</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RSSI</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sensor Component Readout</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SCR Acceleration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SCR Gyroscope Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SCR Magnetic Field</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SCR Temperature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SCR Gyro Temperatures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Inertial Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Orientation Increment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Velocity Increment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rate Of Turn</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Acceleration</source>
        <translation>Beschleunigung</translation>
    </message>
    <message>
        <source>Free Acceleration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Miscellaneous Sensors</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Magnetic Field</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Temperature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gyro Temperatures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Barometric Pressure</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Triggers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trigger In 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trigger In 2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>None</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Euler Angles</source>
        <translation>Eulerwinkel</translation>
    </message>
    <message>
        <source>Matrix</source>
        <translation type="unfinished"></translation>
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
