<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>Colors</name>
    <message>
        <source>blue</source>
        <translation>blue</translation>
    </message>
    <message>
        <source>red</source>
        <translation>red</translation>
    </message>
    <message>
        <source>#ffa9b8</source>
        <translation>#ffa9b8</translation>
    </message>
    <message>
        <source>darkorange</source>
        <translation>darkorange</translation>
    </message>
    <message>
        <source>#8b5a2b</source>
        <translation>#8b5a2b</translation>
    </message>
    <message>
        <source>#ffbd94</source>
        <translation>#ffbd94</translation>
    </message>
    <message>
        <source>green</source>
        <translation>green</translation>
    </message>
    <message>
        <source>#fffacd</source>
        <translation>#fffacd</translation>
    </message>
    <message>
        <source>#ff6060</source>
        <translation>#ff6060</translation>
    </message>
    <message>
        <source>yellow</source>
        <translation>yellow</translation>
    </message>
    <message>
        <source>lightgreen</source>
        <translation>lightgreen</translation>
    </message>
</context>
<context>
    <name>Execute</name>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>fork() failed; errno = %1 (%2)</source>
        <translation>fork() ist fehlgeschlagen; errno = %1 (%2)</translation>
    </message>
</context>
<context>
    <name>Fonts</name>
    <message>
        <source>Bitstream Vera Sans Mono</source>
        <translation>Bitstream Vera Sans Mono</translation>
    </message>
    <message>
        <source>DejaVu Sans Mono</source>
        <translation>DejaVu Sans Mono</translation>
    </message>
    <message>
        <source>Monospace</source>
        <translation>Monospace</translation>
    </message>
    <message>
        <source>Courier</source>
        <translation>Courier</translation>
    </message>
</context>
<context>
    <name>HProgressBar</name>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
</context>
<context>
    <name>Log::Window</name>
    <message>
        <source>VOK Log</source>
        <translation>VOK-Protokoll</translation>
    </message>
    <message>
        <source>Threshold beyond which more detailed log messages are omitted.
Higher levels show more detail.
The valid range is 0 .. %1.
The default is %2.
Higher levels contain debug information.
This corresponds to yum&apos;s debuglevel (-d) option.</source>
        <translation>Schwelle, jenseits derer ausführlichere Protokollmeldungen weggelassen werden.
Höhere Stufen zeigen mehr Einzelheiten.
Der gültige Bereich ist 0 .. %1.
Die Voreinstellung ist %2.
Höhere Stufen enthalten Informationen zur Fehlersuche.
Dies entspricht yums Option debuglevel (-d).</translation>
    </message>
    <message>
        <source>Detail level</source>
        <translation>Detailstufe</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Close the Log Window</source>
        <translation>Das Protokollfenster schließen</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Meldungen</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>Ausgabe</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>VOK - %1</source>
        <translation>VOK - %1</translation>
    </message>
    <message>
        <source>Clean RPM package headers cached locally in %1</source>
        <translation>Die Header von RPM-Paketen löschen, die lokal in %1 zwischengespeichert sind</translation>
    </message>
    <message>
        <source>Clean RPM packages cached locally in %1
(useful for recovering disk space)</source>
        <translation>Die RPM-Pakete löschen, die lokal in %1 zwischengespeichert sind
(nützlich, um Speicherplatz zurückzugewinnen)</translation>
    </message>
    <message>
        <source>Clean XML metadata cached locally in %1
(useful along with Clean Pickled Data for
 forcing download of new available package lists)</source>
        <translation>Die XML-Metadaten löschen, die lokal in %1 zwischengespeichert sind
(nützlich zusammen mit „Pickle-Daten löschen“, um das Herunterladen
 neuer Listen der verfügbaren Pakete zu erzwingen)</translation>
    </message>
    <message>
        <source>Clean pickled data cached locally in %1
(useful along with Clean XML Metadata for
 forcing download of new available package lists)</source>
        <translation>Die Pickle-Daten löschen, die lokal in %1 zwischengespeichert sind
(nützlich zusammen mit „XML-Metadaten löschen“, um das Herunterladen
 neuer Listen der verfügbaren Pakete zu erzwingen)</translation>
    </message>
    <message>
        <source>Clean sqlite data cached locally in %1
(useful along with Clean XML Metadata for
 forcing download of new available package lists)</source>
        <translation>Die Sqlite-Daten löschen, die lokal in %1 zwischengespeichert sind
(nützlich zusammen mit „XML-Metadaten löschen“, um das Herunterladen
 neuer Listen der verfügbaren Pakete zu erzwingen)</translation>
    </message>
    <message>
        <source>Clean all data cached locally in %1</source>
        <translation>Alle Daten löschen, die lokal in %1 zwischengespeichert sind</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>&lt;h3&gt;VOK %1&lt;/h3&gt;&lt;hr&gt;&lt;p&gt;VOK, Package Steward, is a graphical user interface which allows a user to make modifications to the installed rpm packages on a system.&lt;/p&gt;&lt;p&gt;Capabilities:&lt;p&gt;&lt;ul&gt;&lt;li&gt;Install new packages or update existing packages by downloading them from a yum package repository&lt;/li&gt;&lt;li&gt;Remove existing packages.&lt;/li&gt;&lt;li&gt;Configure sets of repositories from which to obtain new and updated packages.&lt;/li&gt;&lt;li&gt;Examine installed packages or packages available for installation or update&lt;/li&gt;&lt;li&gt;Install, update, or remove groups of packages&lt;/li&gt;&lt;li&gt;Install or update suites of packages&lt;/li&gt;&lt;/ul&gt;&lt;p&gt;For more information see https://vok.example/.&lt;/p&gt;</source>
        <translation>&lt;h3&gt;VOK %1&lt;/h3&gt;&lt;hr&gt;&lt;p&gt;VOK, Package Steward, ist eine grafische Oberfläche, mit der sich die auf einem System installierten rpm-Pakete verändern lassen.&lt;/p&gt;&lt;p&gt;Fähigkeiten:&lt;p&gt;&lt;ul&gt;&lt;li&gt;Neue Pakete installieren oder vorhandene aktualisieren, indem sie aus einer yum-Paketquelle heruntergeladen werden&lt;/li&gt;&lt;li&gt;Vorhandene Pakete entfernen&lt;/li&gt;&lt;li&gt;Die Paketquellen einrichten, aus denen neue und aktualisierte Pakete bezogen werden&lt;/li&gt;&lt;li&gt;Installierte Pakete und solche untersuchen, die sich installieren oder aktualisieren lassen&lt;/li&gt;&lt;li&gt;Paketgruppen installieren, aktualisieren oder entfernen&lt;/li&gt;&lt;li&gt;Paketsammlungen installieren oder aktualisieren&lt;/li&gt;&lt;/ul&gt;&lt;p&gt;Mehr dazu unter https://vok.example/.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&amp;Program</source>
        <translation>&amp;Programm</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation>Ctrl+Q</translation>
    </message>
    <message>
        <source>&amp;Windows</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Log</source>
        <translation>&amp;Protokoll</translation>
    </message>
    <message>
        <source>Ctrl+L</source>
        <translation>Ctrl+L</translation>
    </message>
    <message>
        <source>&amp;Repositories</source>
        <translation>Paket&amp;quellen</translation>
    </message>
    <message>
        <source>&amp;Edit Configuration</source>
        <translation>Konfiguration &amp;bearbeiten</translation>
    </message>
    <message>
        <source>Ctrl+E</source>
        <translation>Ctrl+E</translation>
    </message>
    <message>
        <source>&amp;Cache</source>
        <translation>&amp;Cache</translation>
    </message>
    <message>
        <source>Clean Headers</source>
        <translation>Header löschen</translation>
    </message>
    <message>
        <source>Clean Packages</source>
        <translation>Pakete löschen</translation>
    </message>
    <message>
        <source>Clean XML Metadata</source>
        <translation>XML-Metadaten löschen</translation>
    </message>
    <message>
        <source>Clean Pickled Data</source>
        <translation>Pickle-Daten löschen</translation>
    </message>
    <message>
        <source>Clean Sqlite Data</source>
        <translation>Sqlite-Daten löschen</translation>
    </message>
    <message>
        <source>Clean All</source>
        <translation>Alles löschen</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Manual (html)</source>
        <translation>Handbuch (HTML)</translation>
    </message>
    <message>
        <source>Manual (PDF)</source>
        <translation>Handbuch (PDF)</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>&amp;Über</translation>
    </message>
    <message>
        <source>Progress of this step</source>
        <translation>Fortschritt dieses Schritts</translation>
    </message>
    <message>
        <source>Total progress</source>
        <translation>Gesamtfortschritt</translation>
    </message>
    <message>
        <source>Mode</source>
        <translation>Modus</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filtern</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Regular expression</source>
        <translation>Regulärer Ausdruck</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>View Updatable</source>
        <translation>Aktualisierbare zeigen</translation>
    </message>
    <message>
        <source>View Installable</source>
        <translation>Installierbare zeigen</translation>
    </message>
    <message>
        <source>View Removable</source>
        <translation>Entfernbare zeigen</translation>
    </message>
    <message>
        <source>View All</source>
        <translation>Alle zeigen</translation>
    </message>
    <message>
        <source>Filter for those packages which are eligible for updating,
for installing, or for removing; or show all packages</source>
        <translation>Nur die Pakete zeigen, die sich aktualisieren, installieren
oder entfernen lassen; oder alle Pakete zeigen</translation>
    </message>
    <message>
        <source>Include Duplicates</source>
        <translation>Mit Duplikaten</translation>
    </message>
    <message>
        <source>Whether or not filter should include packages with duplicate names.
If unchecked, the package with the architecture closest to the base architecture is shown.</source>
        <translation>Ob der Filter Pakete mit gleichen Namen einschließen soll.
Wenn nicht, wird das Paket gezeigt, dessen Architektur der Basisarchitektur am nächsten kommt.</translation>
    </message>
    <message>
        <source>Include Groups</source>
        <translation>Mit Gruppen</translation>
    </message>
    <message>
        <source>Whether or not filter should include package groups</source>
        <translation>Ob der Filter Paketgruppen einschließen soll</translation>
    </message>
    <message>
        <source>Packages</source>
        <translation>Pakete</translation>
    </message>
    <message>
        <source>&amp;Describe</source>
        <translation>&amp;Beschreiben</translation>
    </message>
    <message>
        <source>Pop up a window with a detailed description of the currently selected package</source>
        <translation>Ein Fenster mit einer ausführlichen Beschreibung des ausgewählten Pakets öffnen</translation>
    </message>
    <message>
        <source>Re&amp;size</source>
        <translation>Anpa&amp;ssen</translation>
    </message>
    <message>
        <source>Resize the columns and window to optimal values</source>
        <translation>Die Spalten und das Fenster auf die besten Größen bringen</translation>
    </message>
    <message>
        <source>Re&amp;fresh</source>
        <translation>&amp;Neu laden</translation>
    </message>
    <message>
        <source>Refresh the list of installed packages and packages available for update.
Use this to check for new updates in repositories, or if any packages were installed manually.</source>
        <translation>Die Listen der installierten und der zur Aktualisierung verfügbaren Pakete neu laden.
Damit lassen sich neue Aktualisierungen in den Paketquellen und von Hand installierte Pakete finden.</translation>
    </message>
    <message>
        <source>Set &amp;Install/Update of Selected</source>
        <translation>Auswahl &amp;vormerken</translation>
    </message>
    <message>
        <source>Sets the Action for all selected packages which are Not Installed to Install, and
sets the Action for all selected packages which are Installed but Out-of-date to Update.
Does not Apply Actions automatically.</source>
        <translation>Setzt die Aktion aller ausgewählten Pakete, die nicht installiert sind, auf Installieren,
und die aller ausgewählten Pakete, die installiert, aber veraltet sind, auf Aktualisieren.
Die Aktionen werden nicht von selbst angewendet.</translation>
    </message>
    <message>
        <source>Set &amp;Update of Listed</source>
        <translation>&amp;Updates vormerken</translation>
    </message>
    <message>
        <source>Sets the Action to Update for any packages which are Installed but Out-of-date,
and which are currently listed based on the the Mode, Filter, Search, State, Duplicates, and Groups settings.
Does not Apply Actions automatically.</source>
        <translation>Setzt die Aktion aller Pakete auf Aktualisieren, die installiert, aber veraltet sind,
und die gemäß Modus, Filter, Suche, Status, Duplikaten und Gruppen zurzeit gelistet sind.
Die Aktionen werden nicht von selbst angewendet.</translation>
    </message>
    <message>
        <source>&amp;Clear Actions</source>
        <translation>&amp;Zurücknehmen</translation>
    </message>
    <message>
        <source>Clears all specified Actions (Updates, Installs, and Removals)</source>
        <translation>Nimmt alle festgelegten Aktionen zurück (Aktualisierungen, Installationen und Entfernungen)</translation>
    </message>
    <message>
        <source>&amp;Apply Actions</source>
        <translation>&amp;Anwenden</translation>
    </message>
    <message>
        <source>Applies the specified Actions (Updates, Installs, and Removals)</source>
        <translation>Wendet die festgelegten Aktionen an (Aktualisierungen, Installationen und Entfernungen)</translation>
    </message>
    <message>
        <source>Regular expression to compare to all fields of a package</source>
        <translation>Regulärer Ausdruck, der mit allen Feldern eines Pakets verglichen wird</translation>
    </message>
    <message>
        <source>Perform the search for the regular expression specified to the left</source>
        <translation>Nach dem links angegebenen regulären Ausdruck suchen</translation>
    </message>
    <message>
        <source>Regular expression filter matching textual fields visible in the table</source>
        <translation>Filter durch einen regulären Ausdruck, der mit den Texten in der Tabelle verglichen wird</translation>
    </message>
    <message>
        <source>Apply the filter specified to the left</source>
        <translation>Den links angegebenen Filter anwenden</translation>
    </message>
    <message>
        <source>Unlisted Actions</source>
        <translation>Nicht gelistete Aktionen</translation>
    </message>
    <message>
        <source>Some packages have actions specified, but because of the current
Mode, Filter, Search, State, Duplicates, and Groups settings,
these packages are not listed currently.
Pressing Apply will cause these actions to occur nonetheless.</source>
        <translation>Für einige Pakete sind Aktionen festgelegt, die aber wegen der jetzigen Einstellungen
von Modus, Filter, Suche, Status, Duplikaten und Gruppen nicht gelistet sind.
Mit „Anwenden“ werden diese Aktionen trotzdem ausgeführt.</translation>
    </message>
    <message>
        <source>Specify the method for using a regular expression to select packages in the table:
	Filter uses the textual fields visible in the table, as if they were separated by spaces.
	Search uses all fields in packages, including list of Files, Change Log, Requires, etc.,
	independently.  It is considerably slower.</source>
        <translation>Legt fest, wie ein regulärer Ausdruck die Pakete der Tabelle auswählt:
	„Filtern“ benutzt die Texte, die in der Tabelle zu sehen sind, als wären sie durch Leerzeichen getrennt.
	„Suchen“ benutzt alle Felder der Pakete, auch Dateiliste, Änderungsprotokoll, Abhängigkeiten usw.,
	jedes für sich. Dies ist erheblich langsamer.</translation>
    </message>
    <message>
        <source>%1 (Must load extra data.)</source>
        <translation>%1 (Muss weitere Daten laden.)</translation>
    </message>
</context>
<context>
    <name>PackageTable::ActionContextMenu</name>
    <message>
        <source>&amp;Update</source>
        <translation>&amp;Aktualisieren</translation>
    </message>
    <message>
        <source>&amp;Install</source>
        <translation>&amp;Installieren</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>&amp;No Action</source>
        <translation>&amp;Keine Aktion</translation>
    </message>
</context>
<context>
    <name>PackageTable::Describe::Dialog</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>VOK Package Description</source>
        <translation>VOK-Paketbeschreibung</translation>
    </message>
</context>
<context>
    <name>PackageTable::Describe::Instance::Area</name>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Required Groups</source>
        <translation>Benötigte Gruppen</translation>
    </message>
    <message>
        <source>Default MetaPkgs</source>
        <translation>Standard-Metapakete</translation>
    </message>
    <message>
        <source>Optional MetaPkgs</source>
        <translation>Optionale Metapakete</translation>
    </message>
    <message>
        <source>Mandatory Packages</source>
        <translation>Notwendige Pakete</translation>
    </message>
    <message>
        <source>Default Packages</source>
        <translation>Standardpakete</translation>
    </message>
    <message>
        <source>Optional Packages</source>
        <translation>Optionale Pakete</translation>
    </message>
    <message>
        <source>Conditional Packages</source>
        <translation>Bedingte Pakete</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Repository</source>
        <translation>Paketquelle</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Einzelheiten</translation>
    </message>
    <message>
        <source>Architecture</source>
        <translation>Architektur</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Summary</source>
        <translation>Zusammenfassung</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Gruppe</translation>
    </message>
    <message>
        <source>Vendor</source>
        <translation>Anbieter</translation>
    </message>
    <message>
        <source>Build Time</source>
        <translation>Erstellt am</translation>
    </message>
    <message>
        <source>Build Host</source>
        <translation>Erstellt auf</translation>
    </message>
    <message>
        <source>Install Time</source>
        <translation>Installiert am</translation>
    </message>
    <message>
        <source>Binary RPM</source>
        <translation>Binär-RPM</translation>
    </message>
    <message>
        <source>Source RPM</source>
        <translation>Quell-RPM</translation>
    </message>
    <message>
        <source>License</source>
        <translation>Lizenz</translation>
    </message>
    <message>
        <source>Packager</source>
        <translation>Paketierer</translation>
    </message>
    <message>
        <source>URL</source>
        <translation>URL</translation>
    </message>
    <message>
        <source>Relocations</source>
        <translation>Verschiebbar nach</translation>
    </message>
    <message>
        <source>Provides</source>
        <translation>Stellt bereit</translation>
    </message>
    <message>
        <source>Requires</source>
        <translation>Benötigt</translation>
    </message>
    <message>
        <source>Conflicts</source>
        <translation>Im Konflikt mit</translation>
    </message>
    <message>
        <source>Obsoletes</source>
        <translation>Ersetzt</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Zeigen</translation>
    </message>
    <message>
        <source>Change Log</source>
        <translation>Änderungsprotokoll</translation>
    </message>
    <message>
        <source>%1:</source>
        <translation>%1:</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1 (must load extra data)</source>
        <translation>%1 (muss weitere Daten laden)</translation>
    </message>
    <message>
        <source>%1 %2 File List</source>
        <translation>Dateiliste von %1 %2</translation>
    </message>
    <message>
        <source>%1 %2 Change Log</source>
        <translation>Änderungsprotokoll von %1 %2</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Repository &quot;%1&quot; is not in the configuration</source>
        <translation>Die Paketquelle „%1“ ist nicht in der Konfiguration</translation>
    </message>
</context>
<context>
    <name>PackageTable::Describe::Instance::RepoDialog</name>
    <message>
        <source>VOK Repository Description</source>
        <translation>VOK-Beschreibung einer Paketquelle</translation>
    </message>
    <message>
        <source>Browse Repository</source>
        <translation>Paketquelle ansehen</translation>
    </message>
    <message>
        <source>Browse the first URL specified for the selected repository using an external web browser</source>
        <translation>Die erste URL der ausgewählten Paketquelle mit einem Webbrowser ansehen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>URLs</source>
        <translation>URLs</translation>
    </message>
    <message>
        <source>Mirror list URL</source>
        <translation>URL der Spiegelserverliste</translation>
    </message>
    <message>
        <source>%1:</source>
        <translation>%1:</translation>
    </message>
</context>
<context>
    <name>PackageTable::Model</name>
    <message>
        <source>Update package</source>
        <translation>Paket aktualisieren</translation>
    </message>
    <message>
        <source>Install package</source>
        <translation>Paket installieren</translation>
    </message>
    <message>
        <source>Remove package</source>
        <translation>Paket entfernen</translation>
    </message>
    <message>
        <source>Package is available to update an out-of-date version</source>
        <translation>Das Paket ist verfügbar, um eine veraltete Version zu aktualisieren</translation>
    </message>
    <message>
        <source>Package is available for installation</source>
        <translation>Das Paket ist zur Installation verfügbar</translation>
    </message>
    <message>
        <source>Package is installed and up-to-date</source>
        <translation>Das Paket ist installiert und aktuell</translation>
    </message>
    <message>
        <source>Suite of packages</source>
        <translation>Paketsammlung</translation>
    </message>
    <message>
        <source>Group of packages</source>
        <translation>Paketgruppe</translation>
    </message>
    <message>
        <source>Ordinary package</source>
        <translation>Gewöhnliches Paket</translation>
    </message>
    <message>
        <source>Available: %1
</source>
        <translation>Verfügbar: %1
</translation>
    </message>
    <message>
        <source>Installed: %1
</source>
        <translation>Installiert: %1
</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Aktion</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
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
        <source>Repository</source>
        <translation>Paketquelle</translation>
    </message>
    <message>
        <source>Architecture</source>
        <translation>Architektur</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Build Time</source>
        <translation>Erstellt am</translation>
    </message>
    <message>
        <source>Action to be performed on the package, if any: Update, Install, Remove</source>
        <translation>Aktion, die gegebenenfalls mit dem Paket ausgeführt wird: Aktualisieren, Installieren, Entfernen</translation>
    </message>
    <message>
        <source>Indicates whether the package is Installed or not and, if installed, whether it is Up-to-date or not</source>
        <translation>Zeigt, ob das Paket installiert ist, und, wenn ja, ob es aktuell ist</translation>
    </message>
    <message>
        <source>Whether the package is an ordinary package, a suite of packages, or a group of packages</source>
        <translation>Ob es ein gewöhnliches Paket, eine Paketsammlung oder eine Paketgruppe ist</translation>
    </message>
    <message>
        <source>Name of the package</source>
        <translation>Name des Pakets</translation>
    </message>
    <message>
        <source>Version and release of the package as version-release;
If the Epoch is non-zero, includes it as epoch:version-release</source>
        <translation>Version und Release des Pakets als Version-Release;
ist die Epoche nicht Null, als Epoche:Version-Release</translation>
    </message>
    <message>
        <source>Repository from which the most recent version of the package is available</source>
        <translation>Paketquelle, aus der die neueste Version des Pakets verfügbar ist</translation>
    </message>
    <message>
        <source>Architecture for which the package is applicable, or &quot;noarch&quot; for general-purpose packages</source>
        <translation>Architektur, für die das Paket bestimmt ist, oder „noarch“ bei allgemein verwendbaren Paketen</translation>
    </message>
    <message>
        <source>Size of the package</source>
        <translation>Größe des Pakets</translation>
    </message>
    <message>
        <source>Date and time at which the package was created</source>
        <translation>Datum und Uhrzeit, zu der das Paket erstellt wurde</translation>
    </message>
</context>
<context>
    <name>PackageTable::OtherContextMenu</name>
    <message>
        <source>&amp;Describe</source>
        <translation>&amp;Beschreiben</translation>
    </message>
    <message>
        <source>Browse Repository</source>
        <translation>Paketquelle ansehen</translation>
    </message>
</context>
<context>
    <name>PackageTable::View</name>
    <message>
        <source>Packages</source>
        <translation>Pakete</translation>
    </message>
</context>
<context>
    <name>Progress::Minion</name>
    <message>
        <source>%1 downloads</source>
        <translation>%1 Downloads</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Retrying</source>
        <translation>Neuer Versuch</translation>
    </message>
    <message>
        <source>In Progress</source>
        <translation>Läuft</translation>
    </message>
    <message>
        <source>%1 / %2 (%3%%)</source>
        <translation>%1 / %2 (%3%%)</translation>
    </message>
    <message>
        <source>Not Started Yet</source>
        <translation>Noch nicht begonnen</translation>
    </message>
</context>
<context>
    <name>RepoAuth::Dialog</name>
    <message>
        <source>VOK Authentication</source>
        <translation>VOK-Anmeldung</translation>
    </message>
    <message>
        <source>Some configured repositories require authentication</source>
        <translation>Einige der eingerichteten Paketquellen verlangen eine Anmeldung</translation>
    </message>
    <message>
        <source>Identifier</source>
        <translation>Kennung</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>URLs</source>
        <translation>URLs</translation>
    </message>
    <message>
        <source>Mirror list URL</source>
        <translation>URL der Spiegelserverliste</translation>
    </message>
    <message>
        <source>Authentication name for a repository using the vantry authentication method</source>
        <translation>Anmeldename für eine Paketquelle mit dem Anmeldeverfahren Vantry</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Authentication password for a repository using the vantry authentication method</source>
        <translation>Passwort für eine Paketquelle mit dem Anmeldeverfahren Vantry</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Disable for Session</source>
        <translation>Für diese Sitzung abschalten</translation>
    </message>
    <message>
        <source>Skip All</source>
        <translation>Alle übergehen</translation>
    </message>
    <message>
        <source>Apply to All</source>
        <translation>Für alle</translation>
    </message>
    <message>
        <source>Apply to All with this Host</source>
        <translation>Für alle auf diesem Server</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>RepoBrowse</name>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Repository configuration has no URL</source>
        <translation>Die Konfiguration der Paketquelle hat keine URL</translation>
    </message>
</context>
<context>
    <name>RepoEditor::Config</name>
    <message>
        <source>Identifier</source>
        <translation>Kennung</translation>
    </message>
    <message>
        <source>Unique identifier for the repository</source>
        <translation>Eindeutige Kennung der Paketquelle</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Description of the repository</source>
        <translation>Beschreibung der Paketquelle</translation>
    </message>
    <message>
        <source>URLs</source>
        <translation>URLs</translation>
    </message>
    <message>
        <source>List of URLs to the repository.
If more than one is specified, they all should be identical mirrors,
and will provide redundancy if some URLs are unreachable.</source>
        <translation>Liste der URLs der Paketquelle.
Sind es mehrere, sollten alle gleiche Spiegel sein;
sie dienen als Ersatz, wenn einige URLs nicht erreichbar sind.</translation>
    </message>
    <message>
        <source>Mirror list URL</source>
        <translation>URL der Spiegelserverliste</translation>
    </message>
    <message>
        <source>URL to a file containing a list of URLs to the repository.</source>
        <translation>URL einer Datei, die eine Liste der URLs der Paketquelle enthält.</translation>
    </message>
    <message>
        <source>Vantry Authentication</source>
        <translation>Vantry-Anmeldung</translation>
    </message>
    <message>
        <source>Authentication name for a repository using the vantry authentication method</source>
        <translation>Anmeldename für eine Paketquelle mit dem Anmeldeverfahren Vantry</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Authentication password for a repository using the vantry authentication method</source>
        <translation>Passwort für eine Paketquelle mit dem Anmeldeverfahren Vantry</translation>
    </message>
    <message>
        <source>Repository Options</source>
        <translation>Optionen der Paketquelle</translation>
    </message>
    <message>
        <source>Other Options:</source>
        <translation>Weitere Optionen:</translation>
    </message>
    <message>
        <source>Any other yum options for this repository.  See yum.conf(5)</source>
        <translation>Alle weiteren yum-Optionen dieser Paketquelle. Siehe yum.conf(5)</translation>
    </message>
    <message>
        <source>Enabled</source>
        <translation>Eingeschaltet</translation>
    </message>
    <message>
        <source>Whether or not the repository is enabled for use</source>
        <translation>Ob die Paketquelle zur Benutzung eingeschaltet ist</translation>
    </message>
    <message>
        <source>Check GPG Keys</source>
        <translation>GPG-Schlüssel prüfen</translation>
    </message>
    <message>
        <source>Whether or not GPG key signatures of packages from the repository are checked to ensure authenticity</source>
        <translation>Ob die GPG-Signaturen der Pakete dieser Paketquelle geprüft werden, um ihre Echtheit sicherzustellen</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Voreinstellung</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>Configuration File (expert)</source>
        <translation>Konfigurationsdatei (für Experten)</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Name of the yum configuration file into which to place this repository configuration.
If left blank, defaults to the repository&apos;s identifier</source>
        <translation>Name der yum-Konfigurationsdatei, in die die Konfiguration dieser Paketquelle geschrieben wird.
Bleibt er leer, wird er aus der Kennung der Paketquelle gebildet</translation>
    </message>
    <message>
        <source>Sort Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>A numeric sort key which determines the order of this repository configuration
in a configuration file which contains multiple configurations</source>
        <translation>Eine Zahl, nach der diese Konfiguration in einer Datei eingeordnet wird,
die mehrere Konfigurationen enthält</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <translation>%1 %2</translation>
    </message>
    <message>
        <source>(Yes)</source>
        <translation>(Ja)</translation>
    </message>
    <message>
        <source>(No)</source>
        <translation>(Nein)</translation>
    </message>
    <message>
        <source>No Identifier specified</source>
        <translation>Keine Kennung angegeben</translation>
    </message>
    <message>
        <source>No URLs or Mirror list URL specified</source>
        <translation>Keine URL angegeben</translation>
    </message>
    <message>
        <source>File is not in any reposdir directory</source>
        <translation>Datei liegt in keinem reposdir-Verzeichnis</translation>
    </message>
    <message>
        <source>File lacks .repo suffix</source>
        <translation>Der Datei fehlt die Endung .repo</translation>
    </message>
    <message>
        <source>No Vantry Authentication Name specified</source>
        <translation>Kein Vantry-Anmeldename angegeben</translation>
    </message>
    <message>
        <source>No Vantry Authentication Password specified</source>
        <translation>Kein Vantry-Passwort angegeben</translation>
    </message>
</context>
<context>
    <name>RepoEditor::ConfigDialog</name>
    <message>
        <source>VOK Repository Configuration</source>
        <translation>VOK-Konfiguration einer Paketquelle</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Undo changes to this repository configuration</source>
        <translation>Änderungen an der Konfiguration dieser Paketquelle zurücknehmen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Undo changes to this repository configuration and close the window</source>
        <translation>Änderungen an der Konfiguration dieser Paketquelle zurücknehmen und das Fenster schließen</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Apply changes to all repository configurations, and close the window</source>
        <translation>Änderungen an den Konfigurationen aller Paketquellen anwenden und das Fenster schließen</translation>
    </message>
</context>
<context>
    <name>RepoEditor::ContextMenu</name>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Browse Repository</source>
        <translation>Paketquelle ansehen</translation>
    </message>
</context>
<context>
    <name>RepoEditor::Dialog</name>
    <message>
        <source>VOK Repository Configuration Editor</source>
        <translation>VOK-Konfiguration der Paketquellen</translation>
    </message>
    <message>
        <source>Browse Repository</source>
        <translation>Paketquelle ansehen</translation>
    </message>
    <message>
        <source>Browse the first URL specified for the selected repository using an external web browser</source>
        <translation>Die erste URL der ausgewählten Paketquelle mit einem Webbrowser ansehen</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Edit the selected repository configuration</source>
        <translation>Die Konfiguration der ausgewählten Paketquelle bearbeiten</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Create a new repository configuration from scratch</source>
        <translation>Eine neue Konfiguration einer Paketquelle anlegen</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Create a new repository configuration based on the selected repository</source>
        <translation>Eine neue Konfiguration nach dem Vorbild der ausgewählten Paketquelle anlegen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove the selected repository configuration</source>
        <translation>Die Konfiguration der ausgewählten Paketquelle entfernen</translation>
    </message>
    <message>
        <source>Reset All</source>
        <translation>Alle zurücksetzen</translation>
    </message>
    <message>
        <source>Undo changes to all repository configurations since the last Apply or opening of the dialog</source>
        <translation>Alle Änderungen an Konfigurationen seit dem letzten Anwenden oder dem Öffnen des Fensters zurücknehmen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Undo changes to all repository configurations since the last Apply or opening of the dialog, and close the window</source>
        <translation>Alle Änderungen an Konfigurationen seit dem letzten Anwenden oder dem Öffnen des Fensters zurücknehmen und das Fenster schließen</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Anwenden</translation>
    </message>
    <message>
        <source>Apply changes to all repository configurations, but do not close the window</source>
        <translation>Änderungen an den Konfigurationen aller Paketquellen anwenden, ohne das Fenster zu schließen</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Apply changes to all repository configurations, and close the window</source>
        <translation>Änderungen an den Konfigurationen aller Paketquellen anwenden und das Fenster schließen</translation>
    </message>
    <message>
        <source>A repository has no Identifier</source>
        <translation>Eine Paketquelle hat keine Kennung</translation>
    </message>
    <message>
        <source>Two or more repositories have the Identifier, %1</source>
        <translation>Mehrere Paketquellen haben die Kennung %1</translation>
    </message>
    <message>
        <source>Unapplied Configuration Changes</source>
        <translation>Nicht angewendete Änderungen</translation>
    </message>
</context>
<context>
    <name>RepoEditor::Model</name>
    <message>
        <source>(new)</source>
        <translation>(neu)</translation>
    </message>
    <message>
        <source>Repository is enabled for this session</source>
        <translation>Die Paketquelle ist in dieser Sitzung eingeschaltet</translation>
    </message>
    <message>
        <source>Repository is not enabled for this session</source>
        <translation>Die Paketquelle ist in dieser Sitzung nicht eingeschaltet</translation>
    </message>
    <message>
        <source>Repository is configured to be enabled</source>
        <translation>Die Paketquelle ist laut Konfiguration eingeschaltet</translation>
    </message>
    <message>
        <source>Repository is not configured to be enabled</source>
        <translation>Die Paketquelle ist laut Konfiguration nicht eingeschaltet</translation>
    </message>
    <message>
        <source>Sess</source>
        <translation>Sitzung</translation>
    </message>
    <message>
        <source>Perm</source>
        <translation>Dauerhaft</translation>
    </message>
    <message>
        <source>Identifier</source>
        <translation>Kennung</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Whether or not the repository is used during this session.
It overrides the persistent Enabled flag in the repository configuration.</source>
        <translation>Ob die Paketquelle in dieser Sitzung benutzt wird.
Dies geht der dauerhaften Einstellung in der Konfiguration der Paketquelle vor.</translation>
    </message>
    <message>
        <source>Whether or not the repository is configured to be enabled by default.
It can be overridden for a particular session.</source>
        <translation>Ob die Paketquelle laut Konfiguration gewöhnlich eingeschaltet ist.
Für eine einzelne Sitzung lässt sich davon abweichen.</translation>
    </message>
    <message>
        <source>Unique identifier for the repository</source>
        <translation>Eindeutige Kennung der Paketquelle</translation>
    </message>
    <message>
        <source>Description of the repository</source>
        <translation>Beschreibung der Paketquelle</translation>
    </message>
    <message>
        <source>Used in this session, enabled in the configuration</source>
        <translation>In dieser Sitzung benutzt, laut Konfiguration eingeschaltet</translation>
    </message>
    <message>
        <source>Used in this session, not enabled in the configuration</source>
        <translation>In dieser Sitzung benutzt, laut Konfiguration nicht eingeschaltet</translation>
    </message>
    <message>
        <source>Not used in this session, enabled in the configuration</source>
        <translation>In dieser Sitzung nicht benutzt, laut Konfiguration eingeschaltet</translation>
    </message>
    <message>
        <source>Not used in this session, not enabled in the configuration</source>
        <translation>In dieser Sitzung nicht benutzt, laut Konfiguration nicht eingeschaltet</translation>
    </message>
</context>
<context>
    <name>RepoEditor::View</name>
    <message>
        <source>Repositories</source>
        <translation>Paketquellen</translation>
    </message>
</context>
<context>
    <name>ScrollableErrorDialog</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>TextDialog</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
</context>
<context>
    <name>YumConfIO</name>
    <message>
        <source>Unable to read yum configuration file %1</source>
        <translation>Die yum-Konfigurationsdatei %1 lässt sich nicht lesen</translation>
    </message>
    <message>
        <source>Unable to stat repository configuration file %1</source>
        <translation>Der Status der Konfigurationsdatei %1 lässt sich nicht abfragen</translation>
    </message>
    <message>
        <source>Unable to read repository configuration file %1</source>
        <translation>Die Konfigurationsdatei %1 lässt sich nicht lesen</translation>
    </message>
    <message>
        <source>Malformed section name in line: %1</source>
        <translation>Falsch geschriebener Abschnittsname in der Zeile: %1</translation>
    </message>
    <message>
        <source>Error reading repository configuration file %1</source>
        <translation>Fehler beim Lesen der Konfigurationsdatei %1</translation>
    </message>
    <message>
        <source>; errno = %1 (%2).</source>
        <translation>; errno = %1 (%2).</translation>
    </message>
    <message>
        <source>VOK Repository Editor Error</source>
        <translation>VOK-Fehler bei den Paketquellen</translation>
    </message>
    <message>
        <source>A repository has no Identifier.  It will be removed.</source>
        <translation>Eine Paketquelle hat keine Kennung. Sie wird entfernt.</translation>
    </message>
    <message>
        <source>Two or more repositories have the same Identifier(s), %1.  Only one repository will be applied for each Identifier.</source>
        <translation>Mehrere Paketquellen haben dieselbe Kennung: %1. Für jede Kennung wird nur eine Paketquelle angewendet.</translation>
    </message>
    <message>
        <source>Repository Editor</source>
        <translation>Paketquellen</translation>
    </message>
    <message>
        <source>  Proceed?</source>
        <translation>  Fortfahren?</translation>
    </message>
    <message>
        <source>Unable to write repository configuration file %1</source>
        <translation>Die Konfigurationsdatei %1 lässt sich nicht schreiben</translation>
    </message>
    <message>
        <source>Unable to unlink repository configuration file %1</source>
        <translation>Die Konfigurationsdatei %1 lässt sich nicht löschen</translation>
    </message>
</context>
<context>
    <name>YumIO</name>
    <message>
        <source>Unable to release yum lock</source>
        <translation>Die yum-Sperre lässt sich nicht freigeben</translation>
    </message>
    <message>
        <source>Internal error: cannot make python yumIOC module</source>
        <translation>Interner Fehler: das Python-Modul yumIOC lässt sich nicht anlegen</translation>
    </message>
    <message>
        <source>Internal error: cannot find python rpm module</source>
        <translation>Interner Fehler: das Python-Modul rpm fehlt</translation>
    </message>
    <message>
        <source>Internal error: cannot find python rpm dict</source>
        <translation>Interner Fehler: das Dictionary des Python-Moduls rpm fehlt</translation>
    </message>
    <message>
        <source>Internal error: cannot find python YumIO</source>
        <translation>Interner Fehler: YumIO fehlt in Python</translation>
    </message>
    <message>
        <source>Unable to initialize</source>
        <translation>Die Initialisierung ist nicht möglich</translation>
    </message>
    <message>
        <source>Internal error: cannot create python yumIO</source>
        <translation>Interner Fehler: yumIO lässt sich in Python nicht anlegen</translation>
    </message>
    <message>
        <source>Internal error: unable to open YumIO.py</source>
        <translation>Interner Fehler: YumIO.py lässt sich nicht öffnen</translation>
    </message>
    <message>
        <source>Internal error: unable to execute YumIO.py</source>
        <translation>Interner Fehler: YumIO.py lässt sich nicht ausführen</translation>
    </message>
    <message>
        <source>Applying</source>
        <translation>Wende an</translation>
    </message>
    <message>
        <source>Checking Dependencies: Total Progress</source>
        <translation>Prüfe Abhängigkeiten: Gesamtfortschritt</translation>
    </message>
    <message>
        <source>Preparing</source>
        <translation>Bereite vor</translation>
    </message>
    <message>
        <source>apply changes</source>
        <translation>Änderungen anwenden</translation>
    </message>
    <message>
        <source>Unable to add package %1 to installs list</source>
        <translation>Paket %1 lässt sich nicht zu den Installationen hinzufügen</translation>
    </message>
    <message>
        <source>Internal error: Unable to find installed version for package update %1</source>
        <translation>Interner Fehler: zur Aktualisierung des Pakets %1 fehlt die installierte Version</translation>
    </message>
    <message>
        <source>Unable to add new package to pair for updated package %1</source>
        <translation>Das neue Paket lässt sich nicht zum Paar des aktualisierten Pakets %1 hinzufügen</translation>
    </message>
    <message>
        <source>Unable to add old package to pair for updated package %1</source>
        <translation>Das alte Paket lässt sich nicht zum Paar des aktualisierten Pakets %1 hinzufügen</translation>
    </message>
    <message>
        <source>Unable to add package %1 to updates list</source>
        <translation>Paket %1 lässt sich nicht zu den Aktualisierungen hinzufügen</translation>
    </message>
    <message>
        <source>Unable to add package %1 to removes list</source>
        <translation>Paket %1 lässt sich nicht zu den Entfernungen hinzufügen</translation>
    </message>
    <message>
        <source>Internal error: unexpected progress text type</source>
        <translation>Interner Fehler: unerwarteter Typ des Fortschrittstexts</translation>
    </message>
    <message>
        <source>Finishing RPM rebuild from deltas</source>
        <translation>Schließe den Aufbau der RPMs aus Deltas ab</translation>
    </message>
    <message>
        <source>Internal error: unexpected progress name type</source>
        <translation>Interner Fehler: unerwarteter Typ des Fortschrittsnamens</translation>
    </message>
    <message>
        <source>Downloading %1</source>
        <translation>Lade %1 herunter</translation>
    </message>
    <message>
        <source>Downloading %1 header</source>
        <translation>Lade Header von %1 herunter</translation>
    </message>
    <message>
        <source>Internal error: unexpected progress failure message</source>
        <translation>Interner Fehler: unerwartete Fehlermeldung beim Fortschritt</translation>
    </message>
    <message>
        <source>Update</source>
        <translation>Aktualisierung</translation>
    </message>
    <message>
        <source>Install</source>
        <translation>Installation</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernung</translation>
    </message>
    <message>
        <source>ERROR</source>
        <translation>FEHLER</translation>
    </message>
    <message>
        <source>the package is optional</source>
        <translation>das Paket optional ist</translation>
    </message>
    <message>
        <source>Package %1 is included in group %2 which was marked for %3,
so the package would be marked for %4,
but it was marked individually for %5.
How do you wish to proceed?</source>
        <translation>Das Paket %1 gehört zur Gruppe %2,
die zur %3 vorgemerkt wurde,
also würde das Paket zur %4 vorgemerkt,
es wurde aber einzeln zur %5 vorgemerkt.
Wie möchten Sie fortfahren?</translation>
    </message>
    <message>
        <source>Package %1 is included in group %2 which was marked for %3,
so the package would be marked for %4,
but it also was part of group %5 and so was marked for %6.
How do you wish to proceed?</source>
        <translation>Das Paket %1 gehört zur Gruppe %2,
die zur %3 vorgemerkt wurde,
also würde das Paket zur %4 vorgemerkt,
es gehört aber auch zur Gruppe %5 und wurde darum zur %6 vorgemerkt.
Wie möchten Sie fortfahren?</translation>
    </message>
    <message>
        <source>Package %1 is included in group %2 which was marked for %3,
so the package would be marked for %4,
but you resolved an earlier conflict by marking it for %5.
How do you wish to proceed?</source>
        <translation>Das Paket %1 gehört zur Gruppe %2,
die zur %3 vorgemerkt wurde,
also würde das Paket zur %4 vorgemerkt,
aber Sie haben einen früheren Konflikt gelöst, indem Sie es zur %5 vorgemerkt haben.
Wie möchten Sie fortfahren?</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Anwenden</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Manually resolving conflict: marking package %1 for %3</source>
        <translation>Konflikt von Hand gelöst: merke Paket %1 zur %3 vor</translation>
    </message>
    <message>
        <source>For group %1, marking package %2 for %3</source>
        <translation>Für Gruppe %1 wird Paket %2 zur %3 vorgemerkt</translation>
    </message>
    <message>
        <source>For group %1, package %2 already was marked for %3</source>
        <translation>Für Gruppe %1 war Paket %2 schon zur %3 vorgemerkt</translation>
    </message>
    <message>
        <source>For group %1, not marking package %2 for %3, becuase %4</source>
        <translation>Für Gruppe %1 wird Paket %2 nicht zur %3 vorgemerkt, weil %4</translation>
    </message>
    <message>
        <source>Internal error: group lacks required package lists</source>
        <translation>Interner Fehler: der Gruppe fehlen notwendige Paketlisten</translation>
    </message>
    <message>
        <source>Internal error: group lacks required proper required package lists</source>
        <translation>Interner Fehler: der Gruppe fehlen notwendige Listen der rechten Art</translation>
    </message>
    <message>
        <source>Internal error: group lacks package lists</source>
        <translation>Interner Fehler: der Gruppe fehlen Paketlisten</translation>
    </message>
    <message>
        <source>Internal error: group lacks required proper package lists</source>
        <translation>Interner Fehler: der Gruppe fehlen Paketlisten der rechten Art</translation>
    </message>
    <message>
        <source>Internal error: yum version not understood: %1 errno=%2 (%3)</source>
        <translation>Interner Fehler: die yum-Version ist nicht verständlich: %1 errno=%2 (%3)</translation>
    </message>
    <message>
        <source>Cleaning Headers</source>
        <translation>Lösche Header</translation>
    </message>
    <message>
        <source>Cleaning Packages</source>
        <translation>Lösche Pakete</translation>
    </message>
    <message>
        <source>Cleaning Xml Metadata</source>
        <translation>Lösche XML-Metadaten</translation>
    </message>
    <message>
        <source>Cleaning Pickled Cache</source>
        <translation>Lösche Pickle-Daten</translation>
    </message>
    <message>
        <source>Cleaning Sqlite Cache</source>
        <translation>Lösche Sqlite-Daten</translation>
    </message>
    <message>
        <source>Cleaning All</source>
        <translation>Lösche alles</translation>
    </message>
    <message>
        <source>Initialization</source>
        <translation>Initialisierung</translation>
    </message>
    <message>
        <source>Initializing: Total Progress</source>
        <translation>Initialisiere: Gesamtfortschritt</translation>
    </message>
    <message>
        <source>Unable to obtain yum lock</source>
        <translation>Die yum-Sperre ist nicht zu bekommen</translation>
    </message>
    <message>
        <source>Internal error: yumIO.repos.repos not evaluable</source>
        <translation>Interner Fehler: yumIO.repos.repos ist nicht auswertbar</translation>
    </message>
    <message>
        <source>Internal error: yumIO.repos.repos not a dictionary</source>
        <translation>Interner Fehler: yumIO.repos.repos ist kein Dictionary</translation>
    </message>
    <message>
        <source>contents</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <source>No repositories are configured.
Under the Repositories menu, Edit Configuration can be used to configure repositories.</source>
        <translation>Es sind keine Paketquellen eingerichtet.
Im Menü „Paketquellen“ lassen sie sich mit „Konfiguration bearbeiten“ einrichten.</translation>
    </message>
    <message>
        <source>No repositories are enabled.
Under the Repositories menu, Edit Configuration can be used to configure repositories.</source>
        <translation>Es sind keine Paketquellen eingeschaltet.
Im Menü „Paketquellen“ lassen sie sich mit „Konfiguration bearbeiten“ einrichten.</translation>
    </message>
    <message>
        <source>Reading repositories</source>
        <translation>Lese Paketquellen</translation>
    </message>
    <message>
        <source>Collecting updatable packages</source>
        <translation>Sammle aktualisierbare Pakete</translation>
    </message>
    <message>
        <source>setup transaction</source>
        <translation>Transaktion vorbereiten</translation>
    </message>
    <message>
        <source>collect updatable packages</source>
        <translation>aktualisierbare Pakete sammeln</translation>
    </message>
    <message>
        <source>Internal error: execution of yumIO.collectUpdates failed</source>
        <translation>Interner Fehler: yumIO.collectUpdates ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>Collecting installed and available packages</source>
        <translation>Sammle installierte und verfügbare Pakete</translation>
    </message>
    <message>
        <source>collect installed and available packages</source>
        <translation>installierte und verfügbare Pakete sammeln</translation>
    </message>
    <message>
        <source>Internal error: execution of yumIO.collectAll failed</source>
        <translation>Interner Fehler: yumIO.collectAll ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>Collecting groups</source>
        <translation>Sammle Gruppen</translation>
    </message>
    <message>
        <source>Internal error: execution of yumIO.setupTsGroup failed</source>
        <translation>Interner Fehler: yumIO.setupTsGroup ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>collect groups</source>
        <translation>Gruppen sammeln</translation>
    </message>
    <message>
        <source>Internal error: execution of yumIO.collectGroupInfo failed</source>
        <translation>Interner Fehler: yumIO.collectGroupInfo ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>unable to setup repository %1:
%2</source>
        <translation>die Paketquelle %1 lässt sich nicht einrichten:
%2</translation>
    </message>
    <message>
        <source>Internal error: yumIO.collectAll.%1 not found</source>
        <translation>Interner Fehler: yumIO.collectAll.%1 fehlt</translation>
    </message>
    <message>
        <source>Resolve Dependencies</source>
        <translation>Löse Abhängigkeiten auf</translation>
    </message>
    <message>
        <source>Internal error: unexpected TSINFO: %1</source>
        <translation>Interner Fehler: unerwartete TSINFO: %1</translation>
    </message>
    <message>
        <source>Internal error: TSINFO mentions package %1 which does not appear to be a valid envra; interpreting as package name</source>
        <translation>Interner Fehler: TSINFO nennt das Paket %1, das keine gültige envra zu sein scheint; dies gilt nun als Paketname</translation>
    </message>
    <message>
        <source>Internal error: TSINFO mentions unknown package: %1</source>
        <translation>Interner Fehler: TSINFO nennt ein unbekanntes Paket: %1</translation>
    </message>
    <message>
        <source>Internal error: TSINFO mentions intent to install or upgrade package that already seems up-to-date: %1</source>
        <translation>Interner Fehler: TSINFO will ein Paket installieren oder aktualisieren, das schon aktuell zu sein scheint: %1</translation>
    </message>
    <message>
        <source>Available for update</source>
        <translation>Zur Aktualisierung verfügbar</translation>
    </message>
    <message>
        <source>Available for installation</source>
        <translation>Zur Installation verfügbar</translation>
    </message>
    <message>
        <source>Installed</source>
        <translation>Installiert</translation>
    </message>
    <message>
        <source>Suite of packages</source>
        <translation>Paketsammlung</translation>
    </message>
    <message>
        <source>Group of packages</source>
        <translation>Paketgruppe</translation>
    </message>
    <message>
        <source>Ordinary package</source>
        <translation>Gewöhnliches Paket</translation>
    </message>
    <message>
        <source>Collecting File Lists</source>
        <translation>Sammle Dateilisten</translation>
    </message>
    <message>
        <source>file lists</source>
        <translation>Dateilisten</translation>
    </message>
    <message>
        <source>Loading file lists: Total Progress</source>
        <translation>Lade Dateilisten: Gesamtfortschritt</translation>
    </message>
    <message>
        <source>collect filelists</source>
        <translation>Dateilisten sammeln</translation>
    </message>
    <message>
        <source>Internal error: execution of yumIO.collectFileLists failed</source>
        <translation>Interner Fehler: yumIO.collectFileLists ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>Collecting Miscellaneous data</source>
        <translation>Sammle weitere Daten</translation>
    </message>
    <message>
        <source>miscellaneous data</source>
        <translation>weitere Daten</translation>
    </message>
    <message>
        <source>Loading miscellaneous data: Total Progress</source>
        <translation>Lade weitere Daten: Gesamtfortschritt</translation>
    </message>
    <message>
        <source>collect miscellaneous data</source>
        <translation>weitere Daten sammeln</translation>
    </message>
    <message>
        <source>Internal error: execution of yumIO.collectOtherData failed</source>
        <translation>Interner Fehler: yumIO.collectOtherData ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>Internal error: cannot find package&apos;s files</source>
        <translation>Interner Fehler: die Dateien des Pakets fehlen</translation>
    </message>
    <message>
        <source>Internal error: cannot find package&apos;s changelog</source>
        <translation>Interner Fehler: das Änderungsprotokoll des Pakets fehlt</translation>
    </message>
    <message>
        <source>Internal error: cannot find package&apos;s prco.%1</source>
        <translation>Interner Fehler: prco.%1 des Pakets fehlt</translation>
    </message>
    <message>
        <source>getRpmHdrValue called for package with no hdr (i.e. not installed)</source>
        <translation>getRpmHdrValue wurde für ein Paket ohne hdr (also nicht installiert) aufgerufen</translation>
    </message>
    <message>
        <source>Internal error: cannot find rpm.%1</source>
        <translation>Interner Fehler: rpm.%1 fehlt</translation>
    </message>
    <message>
        <source>Internal error: groupInfo.visible_groups not evaluable</source>
        <translation>Interner Fehler: groupInfo.visible_groups ist nicht auswertbar</translation>
    </message>
    <message>
        <source>Internal error: group without name</source>
        <translation>Interner Fehler: Gruppe ohne Namen</translation>
    </message>
    <message>
        <source>Internal error: cannot find group&apos;s installed flag</source>
        <translation>Interner Fehler: das Kennzeichen, ob die Gruppe installiert ist, fehlt</translation>
    </message>
    <message>
        <source>Internal error: cannot find groupInfo.group_installed[&apos;%s&apos;]</source>
        <translation>Interner Fehler: groupInfo.group_installed[&apos;%s&apos;] fehlt</translation>
    </message>
    <message>
        <source>getGroupItem_22 called for incorrect version of yum</source>
        <translation>getGroupItem_22 wurde für die falsche Version von yum aufgerufen</translation>
    </message>
    <message>
        <source>Internal error: groupInfo.%1 not evaluable</source>
        <translation>Interner Fehler: groupInfo.%1 ist nicht auswertbar</translation>
    </message>
    <message>
        <source>Internal error: groupInfo.%1[%2] not evaluable</source>
        <translation>Interner Fehler: groupInfo.%1[%2] ist nicht auswertbar</translation>
    </message>
    <message>
        <source>getGroupItem_25 called for incorrect version of yum</source>
        <translation>getGroupItem_25 wurde für die falsche Version von yum aufgerufen</translation>
    </message>
    <message>
        <source>Internal error: group %1.%2 not evaluable</source>
        <translation>Interner Fehler: Gruppe %1.%2 ist nicht auswertbar</translation>
    </message>
    <message>
        <source>Internal error: collect grab size not understood</source>
        <translation>Interner Fehler: die Größe eines Downloads ist nicht verständlich</translation>
    </message>
    <message>
        <source>Internal error: unexpected progress name</source>
        <translation>Interner Fehler: unerwarteter Fortschrittsname</translation>
    </message>
    <message>
        <source>Internal error: unexpected progress filename</source>
        <translation>Interner Fehler: unerwarteter Dateiname beim Fortschritt</translation>
    </message>
    <message>
        <source>Downloading repository mirror list</source>
        <translation>Lade die Spiegelserverliste einer Paketquelle</translation>
    </message>
    <message>
        <source>Downloading repository repomd</source>
        <translation>Lade repomd einer Paketquelle</translation>
    </message>
    <message>
        <source>Downloading repository groups</source>
        <translation>Lade Gruppen einer Paketquelle</translation>
    </message>
    <message>
        <source>Downloading repository %1</source>
        <translation>Lade von Paketquelle: %1</translation>
    </message>
    <message>
        <source>Converting repository</source>
        <translation>Wandle Paketquelle um</translation>
    </message>
    <message>
        <source>Reading repository %1</source>
        <translation>Lese von Paketquelle: %1</translation>
    </message>
    <message>
        <source>Downloading repository mirror list for %2</source>
        <translation>Lade die Spiegelserverliste von %2</translation>
    </message>
    <message>
        <source>Downloading repository repomd for %2</source>
        <translation>Lade repomd von %2</translation>
    </message>
    <message>
        <source>Downloading repository groups for %2</source>
        <translation>Lade Gruppen von %2</translation>
    </message>
    <message>
        <source>Downloading repository %1 for %2</source>
        <translation>Lade %1 von %2</translation>
    </message>
    <message>
        <source>Converting repository %2</source>
        <translation>Wandle Paketquelle %2 um</translation>
    </message>
    <message>
        <source>Reading repository %1 for %2</source>
        <translation>Lese %1 von %2</translation>
    </message>
    <message>
        <source>Internal error: Start: unexpected thread %1 &gt; total files %2
</source>
        <translation>Interner Fehler: Start: unerwarteter Thread %1 &gt; alle Dateien %2
</translation>
    </message>
    <message>
        <source>Internal error: Unexpected parallel grab with no parallel support:
%1</source>
        <translation>Interner Fehler: unerwarteter gleichzeitiger Download ohne Unterstützung dafür:
%1</translation>
    </message>
    <message>
        <source>Internal error: Unexpected parallel grab type:
%1</source>
        <translation>Interner Fehler: unerwartete Art eines gleichzeitigen Downloads:
%1</translation>
    </message>
    <message>
        <source>Internal error: Update: unexpected thread %1 &gt; total files %2
</source>
        <translation>Interner Fehler: Update: unerwarteter Thread %1 &gt; alle Dateien %2
</translation>
    </message>
    <message>
        <source>Internal error: End: unexpected thread %1 &gt; total files %2
</source>
        <translation>Interner Fehler: End: unerwarteter Thread %1 &gt; alle Dateien %2
</translation>
    </message>
    <message>
        <source>Internal error: Failure: unexpected thread %1 &gt; total files %2
</source>
        <translation>Interner Fehler: Failure: unerwarteter Thread %1 &gt; alle Dateien %2
</translation>
    </message>
    <message>
        <source>VOK Yum Error</source>
        <translation>VOK: Yum-Fehler</translation>
    </message>
    <message>
        <source>VOK Yum Warning</source>
        <translation>VOK: Yum-Warnung</translation>
    </message>
    <message>
        <source>Unable to %1: I/O Error: %2

Emitting a walkback to the Log window.</source>
        <translation>Nicht möglich: %1: E/A-Fehler: %2

Das Protokollfenster zeigt die Aufrufe, die dazu führten.</translation>
    </message>
    <message>
        <source>Unable to %1: KeyboardInterrupt

This usually means VOK was sent signal SIGINT, SIGTERM, or similar.

But urlgrabber also can raise this error for several situations where it is just guessing.
So, emitting a walkback to the Log window.</source>
        <translation>Nicht möglich: %1: KeyboardInterrupt

Gewöhnlich heißt das, dass VOK das Signal SIGINT, SIGTERM oder ein ähnliches bekommen hat.

Aber auch urlgrabber kann diesen Fehler melden, in Lagen, in denen es nur rät.
Darum zeigt das Protokollfenster die Aufrufe, die dazu führten.</translation>
    </message>
    <message>
        <source>Internal error: python assertion failed
When reporting this issue, please include the contents of the
Log window, which should contain a walkback.</source>
        <translation>Interner Fehler: eine Annahme in Python war falsch
Wenn Sie dies melden, fügen Sie bitte den Inhalt des Protokollfensters
bei, das die Aufrufe enthalten sollte, die dazu führten.</translation>
    </message>
    <message>
        <source>Unable to %1: metadata unavailable from all repo mirrors:
%2</source>
        <translation>Nicht möglich: %1: die Metadaten sind von keinem der Spiegelserver zu bekommen:
%2</translation>
    </message>
    <message>
        <source>Unable to %1: a repository&apos;s sqlite database was locked unexpectedly
On some distributions, PackageKit has been known to cause this.</source>
        <translation>Nicht möglich: %1: die sqlite-Datenbank einer Paketquelle war unerwartet gesperrt
In manchen Distributionen kommt das durch PackageKit vor.</translation>
    </message>
    <message>
        <source>Unable to %1</source>
        <translation>Nicht möglich: %1</translation>
    </message>
    <message>
        <source>Reaped zombie child %1</source>
        <translation>Den beendeten Kindprozess %1 abgeholt</translation>
    </message>
    <message>
        <source>Unable to reap children; errno=%1 (%2)</source>
        <translation>Beendete Kindprozesse lassen sich nicht abholen; errno=%1 (%2)</translation>
    </message>
    <message>
        <source>Unable to disable SIGCHLD signal handler; errno=%1 (%2)</source>
        <translation>Die Behandlung des Signals SIGCHLD lässt sich nicht abschalten; errno=%1 (%2)</translation>
    </message>
    <message>
        <source>Unable to restore SIGCHLD signal handler; errno=%1 (%2)</source>
        <translation>Die Behandlung des Signals SIGCHLD lässt sich nicht wiederherstellen; errno=%1 (%2)</translation>
    </message>
    <message>
        <source>%1 %3-%4 (%2)</source>
        <translation>%1 %3-%4 (%2)</translation>
    </message>
    <message>
        <source>%1 %3:%4-%5 (%2)</source>
        <translation>%1 %3:%4-%5 (%2)</translation>
    </message>
    <message>
        <source> [%1]</source>
        <translation> [%1]</translation>
    </message>
    <message>
        <source>	%1: %2
</source>
        <translation>	%1: %2
</translation>
    </message>
    <message>
        <source>	%1: %2 with %3
</source>
        <translation>	%1: %2 durch %3
</translation>
    </message>
    <message>
        <source>Internal error: Unable to find package for install/update/remove of %1.%2</source>
        <translation>Interner Fehler: das Paket zur Installation, Aktualisierung oder Entfernung von %1.%2 fehlt</translation>
    </message>
    <message>
        <source>Transaction to be performed:
</source>
        <translation>Auszuführende Transaktion:
</translation>
    </message>
    <message>
        <source>Performing the following to resolve dependencies:
</source>
        <translation>Um Abhängigkeiten aufzulösen, geschieht außerdem:
</translation>
    </message>
    <message>
        <source>Other Transactions:
</source>
        <translation>Weitere Transaktionen:
</translation>
    </message>
    <message>
        <source>Obsoleting</source>
        <translation>Ersetzung</translation>
    </message>
    <message>
        <source>Total download size: %1
</source>
        <translation>Herunterzuladen sind insgesamt: %1
</translation>
    </message>
    <message>
        <source>Query</source>
        <translation>Frage</translation>
    </message>
    <message>
        <source>Applying: OK</source>
        <translation>Anwenden: OK</translation>
    </message>
    <message>
        <source>Not Applying: Canceled</source>
        <translation>Nicht angewendet: abgebrochen</translation>
    </message>
    <message>
        <source>Confirmation: Yes</source>
        <translation>Bestätigung: Ja</translation>
    </message>
    <message>
        <source>Confirmation: No</source>
        <translation>Bestätigung: Nein</translation>
    </message>
    <message>
        <source>Running Transaction: Total Progress</source>
        <translation>Führe Transaktion aus: Gesamtfortschritt</translation>
    </message>
    <message>
        <source>Removed</source>
        <translation>Entfernt</translation>
    </message>
    <message>
        <source>Dependency Removed</source>
        <translation>Als Abhängigkeit entfernt</translation>
    </message>
    <message>
        <source>Dependency Installed</source>
        <translation>Als Abhängigkeit installiert</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Aktualisiert</translation>
    </message>
    <message>
        <source>Dependency Updated</source>
        <translation>Als Abhängigkeit aktualisiert</translation>
    </message>
    <message>
        <source>Obsoleted</source>
        <translation>Ersetzt</translation>
    </message>
    <message>
        <source>Preparing the Search</source>
        <translation>Bereite die Suche vor</translation>
    </message>
    <message>
        <source>Preparing the search: Total Progress</source>
        <translation>Bereite die Suche vor: Gesamtfortschritt</translation>
    </message>
    <message>
        <source>Reading packages</source>
        <translation>Lese Pakete</translation>
    </message>
    <message>
        <source>Unable to keep the texts to search, so searching will be slow</source>
        <translation>Die zu durchsuchenden Texte lassen sich nicht aufbewahren, daher wird die Suche langsam sein</translation>
    </message>
    <message>
        <source>Internal error: YumIO::tsCallback UNINST of %1 too many times</source>
        <translation>Interner Fehler: YumIO::tsCallback: UNINST von %1 zu oft</translation>
    </message>
    <message>
        <source>Completing update for: %1</source>
        <translation>Schließe Aktualisierung ab: %1</translation>
    </message>
    <message>
        <source>Removing %1</source>
        <translation>Entferne %1</translation>
    </message>
    <message>
        <source>Internal error: YumIO::tsCallback what=%1 not understood; ignoring</source>
        <translation>Interner Fehler: YumIO::tsCallback: what=%1 ist nicht verständlich und wird übergangen</translation>
    </message>
    <message>
        <source>Transaction Test</source>
        <translation>Test der Transaktion</translation>
    </message>
    <message>
        <source>Internal error: YumIO::tsCallback UNINST of %1 not expected</source>
        <translation>Interner Fehler: YumIO::tsCallback: UNINST von %1 unerwartet</translation>
    </message>
    <message>
        <source>Internal error: Unable to find package for install/update of %1.%2</source>
        <translation>Interner Fehler: das Paket zur Installation oder Aktualisierung von %1.%2 fehlt</translation>
    </message>
    <message>
        <source>Updating %1</source>
        <translation>Aktualisiere %1</translation>
    </message>
    <message>
        <source>Installing %1</source>
        <translation>Installiere %1</translation>
    </message>
    <message>
        <source>Internal error: YumIO::tsCallback REMOVE/COMPLETE of %1 not expected</source>
        <translation>Interner Fehler: YumIO::tsCallback: REMOVE/COMPLETE von %1 unerwartet</translation>
    </message>
    <message>
        <source>Internal error: YumIO::tsEvent action=%1 not understood; ignoring</source>
        <translation>Interner Fehler: YumIO::tsEvent: action=%1 ist nicht verständlich und wird übergangen</translation>
    </message>
    <message>
        <source>Internal error: Unable to find package for %1 of %2.%3</source>
        <translation>Interner Fehler: das Paket zu %1 von %2.%3 fehlt</translation>
    </message>
    <message>
        <source>Internal error: YumIO::pyString called with NULL</source>
        <translation>Interner Fehler: YumIO::pyString mit NULL aufgerufen</translation>
    </message>
    <message>
        <source>Internal error: YumIO::pyString did not understand type</source>
        <translation>Interner Fehler: YumIO::pyString verstand den Typ nicht</translation>
    </message>
    <message>
        <source>Internal error: YumIO::pyStringX did not understand type</source>
        <translation>Interner Fehler: YumIO::pyStringX verstand den Typ nicht</translation>
    </message>
    <message>
        <source>Internal error: time not understood: %1</source>
        <translation>Interner Fehler: Zeit nicht verständlich: %1</translation>
    </message>
    <message>
        <source>Internal error: time not understood</source>
        <translation>Interner Fehler: Zeit nicht verständlich</translation>
    </message>
    <message>
        <source>Internal error: package size not understood: %1</source>
        <translation>Interner Fehler: Paketgröße nicht verständlich: %1</translation>
    </message>
    <message>
        <source>Internal error: package size not understood</source>
        <translation>Interner Fehler: Paketgröße nicht verständlich</translation>
    </message>
    <message>
        <source>Internal error: package size result not understood</source>
        <translation>Interner Fehler: Ergebnis der Paketgröße nicht verständlich</translation>
    </message>
    <message>
        <source>Eb</source>
        <translation>EB</translation>
    </message>
    <message>
        <source>Pb</source>
        <translation>PB</translation>
    </message>
    <message>
        <source>Tb</source>
        <translation>TB</translation>
    </message>
    <message>
        <source>Gb</source>
        <translation>GB</translation>
    </message>
    <message>
        <source>Mb</source>
        <translation>MB</translation>
    </message>
    <message>
        <source>Kb</source>
        <translation>KB</translation>
    </message>
    <message>
        <source>b</source>
        <translation>B</translation>
    </message>
    <message>
        <source>Preparing to Run Transaction</source>
        <translation>Bereite die Transaktion vor</translation>
    </message>
    <message>
        <source>Preparing to Test Transaction</source>
        <translation>Bereite den Test der Transaktion vor</translation>
    </message>
    <message>
        <source>Unable to remove %1</source>
        <translation>Nicht zu entfernen: %1</translation>
    </message>
</context>
<context>
    <name>YumIOCapturers</name>
    <message>
        <source>Unable to open pipe to capture rpm transaction output</source>
        <translation>Die Pipe für die Ausgabe der rpm-Transaktion lässt sich nicht öffnen</translation>
    </message>
    <message>
        <source>Unable to dup2 pipe to capture rpm transaction output</source>
        <translation>Die Pipe für die Ausgabe der rpm-Transaktion lässt sich nicht mit dup2 einsetzen</translation>
    </message>
    <message>
        <source>Unable to dup2 to restore stderr</source>
        <translation>stderr lässt sich nicht mit dup2 wiederherstellen</translation>
    </message>
</context>
<context>
    <name>YumIODialogsMinion</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
</TS>
