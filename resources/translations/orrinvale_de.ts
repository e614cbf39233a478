<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>AppDelegate</name>
    <message>
        <source>%1 is error!</source>
        <translation>Fehler bei %1!</translation>
    </message>
</context>
<context>
    <name>ChangesColumn</name>
    <message>
        <source>%1, now %2</source>
        <translation>%1, jetzt %2</translation>
    </message>
    <message>
        <source>new</source>
        <translation>neu</translation>
    </message>
    <message>
        <source>gone</source>
        <translation>weg</translation>
    </message>
    <message>
        <source>mostly %1</source>
        <translation>vor allem %1</translation>
    </message>
    <message>
        <source>Files under %1</source>
        <translation>Dateien unter %1</translation>
    </message>
    <message>
        <source>1 smaller change</source>
        <translation>1 kleinere Änderung</translation>
    </message>
    <message>
        <source>%Ln smaller changes</source>
        <translation>%Ln kleinere Änderungen</translation>
    </message>
    <message>
        <source>removed</source>
        <translation>entfernt</translation>
    </message>
    <message>
        <source>%1 on disk</source>
        <translation>%1 auf dem Datenträger</translation>
    </message>
    <message>
        <source>new, or under %1 before</source>
        <translation>neu oder vorher unter %1</translation>
    </message>
    <message>
        <source>new, in the place of a file</source>
        <translation>neu, anstelle einer Datei</translation>
    </message>
    <message>
        <source>new, in the place of a folder</source>
        <translation>neu, anstelle eines Ordners</translation>
    </message>
    <message>
        <source>gone, or under %1 now</source>
        <translation>weg oder jetzt unter %1</translation>
    </message>
    <message>
        <source>gone, a file is in its place</source>
        <translation>weg, dort ist jetzt eine Datei</translation>
    </message>
    <message>
        <source>gone, a folder is in its place</source>
        <translation>weg, dort ist jetzt ein Ordner</translation>
    </message>
    <message>
        <source>another file system there</source>
        <translation>dort ein anderes Dateisystem</translation>
    </message>
    <message>
        <source>another file system in it</source>
        <translation>darin ein anderes Dateisystem</translation>
    </message>
    <message>
        <source>could not be read each time</source>
        <translation>nicht jedes Mal lesbar</translation>
    </message>
    <message>
        <source>not all of it could be read</source>
        <translation>nicht alles davon war lesbar</translation>
    </message>
    <message>
        <source>Files under %1, folders under %2</source>
        <translation>Dateien unter %1, Ordner unter %2</translation>
    </message>
</context>
<context>
    <name>CleanMemoryViews</name>
    <message>
        <source>What the memory is used for, as a pie; the figures follow</source>
        <translation>Wofür der Arbeitsspeicher gebraucht wird, als Torte; die Zahlen folgen</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Frei</translation>
    </message>
    <message>
        <source>Nothing is in it</source>
        <translation>Nichts steht darin</translation>
    </message>
    <message>
        <source>Active</source>
        <translation>Aktiv</translation>
    </message>
    <message>
        <source>What programs work on</source>
        <translation>Womit Programme arbeiten</translation>
    </message>
    <message>
        <source>Inactive</source>
        <translation>Inaktiv</translation>
    </message>
    <message>
        <source>Copies of files, given up when memory is wanted</source>
        <translation>Kopien von Dateien, die weichen, sobald Speicher gebraucht wird</translation>
    </message>
    <message>
        <source>Wired</source>
        <translation>Fest</translation>
    </message>
    <message>
        <source>The system&apos;s own</source>
        <translation>Des Systems eigener</translation>
    </message>
    <message>
        <source>Used</source>
        <translation>Belegt</translation>
    </message>
    <message>
        <source>All but the free</source>
        <translation>Alles außer dem freien</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>Gesamt</translation>
    </message>
    <message>
        <source>What this computer has</source>
        <translation>Was dieser Computer hat</translation>
    </message>
    <message>
        <source>Programs that hold most</source>
        <translation>Programme, die am meisten halten</translation>
    </message>
    <message>
        <source>Freeing memory ...</source>
        <translation>Arbeitsspeicher wird freigegeben ...</translation>
    </message>
    <message>
        <source>clean memory</source>
        <translation>Arbeitsspeicher freigeben</translation>
    </message>
</context>
<context>
    <name>CleanViews</name>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Caches, old logs, the trash and downloads are looked through. Nothing is removed until you tick it and confirm.</source>
        <translation>Caches, alte Protokolle, Papierkorb und Downloads werden durchgesehen. Nichts wird entfernt, bevor Sie es anhaken und bestätigen.</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>Durchsehen</translation>
    </message>
    <message>
        <source>Show what was found</source>
        <translation>Zeigen, was gefunden wurde</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Show All Entries</source>
        <translation>Alle Einträge zeigen</translation>
    </message>
    <message>
        <source>Show only names with these words</source>
        <translation>Nur Namen mit diesen Worten zeigen</translation>
    </message>
    <message>
        <source>Scan again</source>
        <translation>Noch einmal durchsehen</translation>
    </message>
    <message>
        <source>Tick everything in %1</source>
        <translation>Alles in %1 anhaken</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Clean</source>
        <translation>Aufräumen</translation>
    </message>
    <message>
        <source>Why less?</source>
        <translation>Warum weniger?</translation>
    </message>
</context>
<context>
    <name>Cleaning</name>
    <message>
        <source>Are you sure you want to continue?</source>
        <translation>Möchten Sie wirklich fortfahren?</translation>
    </message>
    <message>
        <source>Downloads folder is selected to clean. We recommend you to view this folder for anything useful before emptying it.</source>
        <translation>Der Ordner Downloads ist zum Aufräumen ausgewählt. Sehen Sie ihn besser nach Brauchbarem durch, bevor Sie ihn leeren.</translation>
    </message>
    <message>
        <source>Utilities</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>1 year</source>
        <translation>1 Jahr</translation>
    </message>
    <message numerus="yes">
        <source>%Ln years</source>
        <translation>
            <numerusform>%Ln Jahr</numerusform>
            <numerusform>%Ln Jahre</numerusform>
        </translation>
    </message>
    <message>
        <source>1 month</source>
        <translation>1 Monat</translation>
    </message>
    <message numerus="yes">
        <source>%Ln months</source>
        <translation>
            <numerusform>%Ln Monat</numerusform>
            <numerusform>%Ln Monate</numerusform>
        </translation>
    </message>
    <message>
        <source>1 day</source>
        <translation>1 Tag</translation>
    </message>
    <message numerus="yes">
        <source>%Ln days</source>
        <translation>
            <numerusform>%Ln Tag</numerusform>
            <numerusform>%Ln Tage</numerusform>
        </translation>
    </message>
    <message>
        <source>1 hour</source>
        <translation>1 Stunde</translation>
    </message>
    <message numerus="yes">
        <source>%Ln hours</source>
        <translation>
            <numerusform>%Ln Stunde</numerusform>
            <numerusform>%Ln Stunden</numerusform>
        </translation>
    </message>
    <message>
        <source>1 minute</source>
        <translation>1 Minute</translation>
    </message>
    <message numerus="yes">
        <source>%Ln minutes</source>
        <translation>
            <numerusform>%Ln Minute</numerusform>
            <numerusform>%Ln Minuten</numerusform>
        </translation>
    </message>
    <message>
        <source>just now</source>
        <translation>gerade eben</translation>
    </message>
    <message>
        <source>%1 space has been recovered since last clean %2. The capacity of startup disk is %3, and %4 is available.</source>
        <translation>%1 wurden beim letzten Aufräumen am %2 frei. Der Startdatenträger fasst %3, davon sind %4 verfügbar.</translation>
    </message>
    <message>
        <source>%1 space has been recovered since last clean %2.</source>
        <translation>%1 wurden beim letzten Aufräumen am %2 frei.</translation>
    </message>
    <message>
        <source>The capacity of startup disk is %1, and %2 is available.</source>
        <translation>Der Startdatenträger fasst %1, davon sind %2 verfügbar.</translation>
    </message>
    <message>
        <source>%1 of %2 selected, %3 will free up.</source>
        <translation>%1 von %2, %3 werden frei.</translation>
    </message>
    <message>
        <source>%1 is cleaned</source>
        <translation>%1 aufgeräumt</translation>
    </message>
    <message>
        <source>Remove what is ticked for good?</source>
        <translation>Angehaktes endgültig entfernen?</translation>
    </message>
    <message>
        <source>1 entry, %1. It cannot be brought back.</source>
        <translation>1 Eintrag, %1. Er lässt sich nicht zurückholen.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln entries, %1. They cannot be brought back.</source>
        <translation>
            <numerusform>%Ln Eintrag, %1. Er lässt sich nicht zurückholen.</numerusform>
            <numerusform>%Ln Einträge, %1. Sie lassen sich nicht zurückholen.</numerusform>
        </translation>
    </message>
    <message>
        <source>Clean %1</source>
        <translation>%1 aufräumen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>View Downloads</source>
        <translation>Downloads ansehen</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>You do not have privileges to clean these files. Please open the padlock at the bottom to have admin access.</source>
        <translation>Ihnen fehlen die Rechte, diese Dateien zu entfernen. Öffnen Sie das Vorhängeschloss, um sie als Verwalter zu entfernen.</translation>
    </message>
    <message>
        <source>Free space grew by %1</source>
        <translation>Freier Platz um %1 gewachsen</translation>
    </message>
    <message>
        <source>Free space did not grow</source>
        <translation>Freier Platz ist nicht gewachsen</translation>
    </message>
    <message>
        <source>%1 were promised. The rest is still held: by what stayed, by programs that have removed files open, by snapshots and shared copies; or files were compressed, or others have written meanwhile.</source>
        <translation>%1 waren versprochen. Den Rest halten noch: was geblieben ist, Programme, die entfernte Dateien geöffnet haben, Schnappschüsse und geteilte Kopien; oder Dateien waren komprimiert, oder andere haben inzwischen geschrieben.</translation>
    </message>
    <message>
        <source>kept: 1 entry</source>
        <translation>behalten: 1 Eintrag</translation>
    </message>
    <message numerus="yes">
        <source>kept: %Ln entries</source>
        <translation>
            <numerusform>behalten: %Ln Eintrag</numerusform>
            <numerusform>behalten: %Ln Einträge</numerusform>
        </translation>
    </message>
    <message>
        <source>1 entry, in it since %1.</source>
        <translation>1 Eintrag, darin seit %1.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln entries, the oldest in it since %1.</source>
        <translation>
            <numerusform>%Ln Eintrag, darin seit %1.</numerusform>
            <numerusform>%Ln Einträge, der älteste darin seit %1.</numerusform>
        </translation>
    </message>
    <message>
        <source>1 more is ticked that the filter hides; it stays.</source>
        <translation>1 weiterer ist angekreuzt, den der Filter verbirgt; er bleibt.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln more are ticked that the filter hides; they stay.</source>
        <translation>
            <numerusform>%Ln weiterer ist angekreuzt, den der Filter verbirgt; er bleibt.</numerusform>
            <numerusform>%Ln weitere sind angekreuzt, die der Filter verbirgt; sie bleiben.</numerusform>
        </translation>
    </message>
    <message>
        <source>Nothing was removed.</source>
        <translation>Nichts wurde entfernt.</translation>
    </message>
    <message>
        <source>What is ticked has changed since you were asked. Look at it again.</source>
        <translation>Was angekreuzt ist, hat sich seit der Frage geändert. Sehen Sie es noch einmal an.</translation>
    </message>
    <message>
        <source>because: %1; and for other reasons</source>
        <translation>Grund: %1, und andere</translation>
    </message>
    <message>
        <source>because: %1</source>
        <translation>Grund: %1</translation>
    </message>
    <message>
        <source>you asked to keep it</source>
        <translation>Sie wollten es behalten</translation>
    </message>
    <message>
        <source>something is mounted in it</source>
        <translation>etwas ist darin eingehängt</translation>
    </message>
    <message>
        <source>its program keeps here what it can not make again</source>
        <translation>sein Programm verwahrt hier, was es nicht wiederherstellen kann</translation>
    </message>
    <message>
        <source>a program has it open</source>
        <translation>ein Programm hat es geöffnet</translation>
    </message>
    <message>
        <source>its program runs, and does not show what it has open</source>
        <translation>sein Programm läuft und zeigt nicht, was es geöffnet hat</translation>
    </message>
    <message>
        <source>changed in the last 10 minutes</source>
        <translation>in den letzten 10 Minuten geändert</translation>
    </message>
    <message>
        <source>a document is in it</source>
        <translation>ein Dokument liegt darin</translation>
    </message>
    <message>
        <source>a repository is in it</source>
        <translation>ein Repository liegt darin</translation>
    </message>
    <message>
        <source>a password safe is in it</source>
        <translation>ein Passwortspeicher liegt darin</translation>
    </message>
    <message>
        <source>a database in use is in it</source>
        <translation>eine Datenbank in Gebrauch liegt darin</translation>
    </message>
    <message>
        <source>a program&apos;s socket is in it</source>
        <translation>der Socket eines Programms liegt darin</translation>
    </message>
    <message>
        <source>a download that is not complete</source>
        <translation>ein unvollständiger Download</translation>
    </message>
    <message>
        <source>a part of it can not be looked at</source>
        <translation>ein Teil davon lässt sich nicht ansehen</translation>
    </message>
    <message>
        <source>its folders lie too deep to be looked through</source>
        <translation>seine Ordner liegen zu tief zum Durchsehen</translation>
    </message>
</context>
<context>
    <name>Dialogs</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Choose a path to search</source>
        <translation>Ordner zum Durchsuchen auswählen</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Auswählen</translation>
    </message>
    <message>
        <source>Are you sure you want to delete all your selected files?</source>
        <translation>Möchten Sie wirklich alle ausgewählten Dateien löschen?</translation>
    </message>
    <message>
        <source>Sure</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>DiskUsageAppController</name>
    <message>
        <source>All checked files and folders will be removed.</source>
        <translation>Alle angekreuzten Dateien und Ordner werden entfernt.</translation>
    </message>
    <message>
        <source>Files: %1. Folders: %2. Together: %3</source>
        <translation>Dateien: %1. Ordner: %2. Zusammen: %3</translation>
    </message>
    <message>
        <source>Gives back up to %1 of the disk.</source>
        <translation>Gibt bis zu %1 auf dem Datenträger frei.</translation>
    </message>
    <message>
        <source>Gives back %1 of the disk.</source>
        <translation>Gibt %1 auf dem Datenträger frei.</translation>
    </message>
    <message>
        <source>What could not be read stays: %1</source>
        <translation>Was nicht gelesen werden konnte, bleibt: %1</translation>
    </message>
    <message>
        <source>What lies on other disks stays.</source>
        <translation>Was auf anderen Datenträgern liegt, bleibt.</translation>
    </message>
    <message>
        <source>What lies on other volumes and in subvolumes stays.</source>
        <translation>Was auf anderen Datenträgern und in Subvolumes liegt, bleibt.</translation>
    </message>
    <message>
        <source>Ticked, and stays all the same: %1</source>
        <translation>Angehakt, und bleibt trotzdem: %1</translation>
    </message>
    <message>
        <source>Last scan</source>
        <translation>Letzter Suchlauf</translation>
    </message>
    <message>
        <source>Yesterday</source>
        <translation>Gestern</translation>
    </message>
    <message>
        <source>Last week</source>
        <translation>Letzte Woche</translation>
    </message>
    <message>
        <source>Last month</source>
        <translation>Letzter Monat</translation>
    </message>
</context>
<context>
    <name>DiskUsageViews</name>
    <message>
        <source>Drop a folder here to see what fills it</source>
        <translation>Einen Ordner hier ablegen, um zu sehen, was ihn füllt</translation>
    </message>
    <message>
        <source>Drop the folder to see what fills it</source>
        <translation>Den Ordner ablegen, um zu sehen, was ihn füllt</translation>
    </message>
    <message>
        <source>Back to the places</source>
        <translation>Zurück zu den Orten</translation>
    </message>
    <message>
        <source>Choose a folder to look into</source>
        <translation>Ordner zum Untersuchen auswählen</translation>
    </message>
    <message>
        <source>See what fills your disk</source>
        <translation>Sehen, was den Datenträger füllt</translation>
    </message>
    <message>
        <source>Choose a place on the left, or drop a folder here. Walk down to what is large, and remove it.</source>
        <translation>Links einen Ort wählen oder einen Ordner hier ablegen. Zu dem gehen, was groß ist, und es entfernen.</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>Spalten</translation>
    </message>
    <message>
        <source>Map</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Open selected file</source>
        <translation>Ausgewählte Datei öffnen</translation>
    </message>
    <message>
        <source>Reveal selected file</source>
        <translation>Ausgewählte Datei zeigen</translation>
    </message>
    <message>
        <source>Progress of the scan</source>
        <translation>Fortschritt des Suchlaufs</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Stop Scan</source>
        <translation>Suche stoppen</translation>
    </message>
    <message>
        <source>To the folder above</source>
        <translation>Zum Ordner darüber</translation>
    </message>
    <message>
        <source>Map of the folder</source>
        <translation>Karte des Ordners</translation>
    </message>
    <message>
        <source>Folders and files by size</source>
        <translation>Ordner und Dateien nach Größe</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove selected file</source>
        <translation>Ausgewählte Dateien entfernen</translation>
    </message>
    <message>
        <source>Changes</source>
        <translation>Änderungen</translation>
    </message>
    <message>
        <source>Compare</source>
        <translation>Vergleichen</translation>
    </message>
    <message>
        <source>What changed, the biggest change first</source>
        <translation>Was sich geändert hat, die größte Änderung zuerst</translation>
    </message>
    <message>
        <source>Show what changed since then</source>
        <translation>Zeigen, was sich seitdem geändert hat</translation>
    </message>
</context>
<context>
    <name>EntryWords</name>
    <message>
        <source>1 file</source>
        <translation>1 Datei</translation>
    </message>
    <message numerus="yes">
        <source>%Ln files</source>
        <translation>
            <numerusform>%Ln Datei</numerusform>
            <numerusform>%Ln Dateien</numerusform>
        </translation>
    </message>
    <message>
        <source>1 folder</source>
        <translation>1 Ordner</translation>
    </message>
    <message numerus="yes">
        <source>%Ln folders</source>
        <translation>
            <numerusform>%Ln Ordner</numerusform>
            <numerusform>%Ln Ordner</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1 und %2</translation>
    </message>
    <message>
        <source>%1, %2, goes for good.</source>
        <translation>%1, %2, wird endgültig entfernt.</translation>
    </message>
    <message>
        <source>%1, %2, go for good.</source>
        <translation>%1, %2, werden endgültig entfernt.</translation>
    </message>
</context>
<context>
    <name>FSNodeColumn</name>
    <message>
        <source>%1 on disk</source>
        <translation>%1 auf dem Datenträger</translation>
    </message>
    <message>
        <source>Without what lies on other disks</source>
        <translation>Ohne das, was auf anderen Datenträgern liegt</translation>
    </message>
    <message>
        <source>ticked</source>
        <translation>angekreuzt</translation>
    </message>
    <message>
        <source>partly ticked</source>
        <translation>teilweise angekreuzt</translation>
    </message>
    <message>
        <source>1 item under %1</source>
        <translation>1 Eintrag unter %1</translation>
    </message>
    <message>
        <source>%Ln items under %1</source>
        <translation>%Ln Einträge unter %1</translation>
    </message>
    <message>
        <source>could not be read</source>
        <translation>nicht lesbar</translation>
    </message>
    <message>
        <source>on another disk</source>
        <translation>auf anderem Datenträger</translation>
    </message>
    <message>
        <source>not counted</source>
        <translation>nicht gezählt</translation>
    </message>
</context>
<context>
    <name>FastClean</name>
    <message>
        <source>Fast Clean</source>
        <translation>Schnell aufräumen</translation>
    </message>
    <message>
        <source>Progress of the cleaning</source>
        <translation>Fortschritt des Aufräumens</translation>
    </message>
    <message>
        <source>Clean</source>
        <translation>Aufräumen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Empty the Trash for good?</source>
        <translation>Den Papierkorb endgültig leeren?</translation>
    </message>
    <message>
        <source>Remove what is in Downloads for good?</source>
        <translation>Alles in Downloads endgültig entfernen?</translation>
    </message>
    <message>
        <source>1 item, %1. It cannot be brought back.</source>
        <translation>1 Objekt, %1. Es lässt sich nicht zurückholen.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln items, %1. They cannot be brought back.</source>
        <translation>
            <numerusform>%Ln Objekt, %1. Es lässt sich nicht zurückholen.</numerusform>
            <numerusform>%Ln Objekte, %1. Sie lassen sich nicht zurückholen.</numerusform>
        </translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Free space grew by %1</source>
        <translation>Freier Platz wuchs um %1</translation>
    </message>
    <message>
        <source>Free space did not grow</source>
        <translation>Der freie Platz wuchs nicht</translation>
    </message>
    <message>
        <source>Less than promised: files were compressed or are still open, or snapshots and shared copies hold what went, or others have written meanwhile.</source>
        <translation>Weniger als erwartet: Dateien waren komprimiert oder sind noch geöffnet, Schnappschüsse oder geteilte Kopien halten fest, was entfernt wurde, oder es wurde inzwischen Neues geschrieben.</translation>
    </message>
    <message>
        <source>Nothing to clean in %1. Choose others on the Clean page.</source>
        <translation>In %1 gibt es nichts aufzuräumen. Wählen Sie andere auf der Seite „Aufräumen“.</translation>
    </message>
    <message>
        <source>%1: the disk does not answer. Try again in a moment.</source>
        <translation>%1: Die Festplatte antwortet nicht. Versuchen Sie es gleich noch einmal.</translation>
    </message>
    <message>
        <source>Open the padlock for the rest</source>
        <translation>Für den Rest das Schloss öffnen</translation>
    </message>
    <message>
        <source>Not all went: open the padlock</source>
        <translation>Nicht alles ging: Schloss öffnen</translation>
    </message>
    <message>
        <source>%1 was left alone: %2</source>
        <translation>%1 blieb unberührt: %2</translation>
    </message>
    <message>
        <source>%1 can not be read: %2</source>
        <translation>%1 lässt sich nicht lesen: %2</translation>
    </message>
    <message numerus="yes">
        <source>Nothing was removed: %Ln changed or in use by now</source>
        <translation>
            <numerusform>Nichts wurde entfernt: %Ln inzwischen geändert oder in Gebrauch</numerusform>
            <numerusform>Nichts wurde entfernt: %Ln inzwischen geändert oder in Gebrauch</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>FilterField</name>
    <message>
        <source>Filter</source>
        <translation>Filtern</translation>
    </message>
</context>
<context>
    <name>FolderEntrance</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>FolderStart</name>
    <message>
        <source>Choose a Folder</source>
        <translation>Ordner auswählen</translation>
    </message>
</context>
<context>
    <name>LineList</name>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>ListFileViews</name>
    <message>
        <source>Drop a folder here to see what is large in it</source>
        <translation>Ordner hierher ziehen, um zu sehen, was darin groß ist</translation>
    </message>
    <message>
        <source>Choose a folder to look into</source>
        <translation>Ordner zum Untersuchen auswählen</translation>
    </message>
    <message>
        <source>See what takes up the space</source>
        <translation>Sehen Sie, was den Platz belegt</translation>
    </message>
    <message>
        <source>Drop a folder here, or choose one. The biggest files and folders come first.</source>
        <translation>Ordner hierher ziehen oder auswählen. Die größten Dateien und Ordner stehen oben.</translation>
    </message>
    <message>
        <source>Look into another folder</source>
        <translation>Anderen Ordner untersuchen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete what is selected, for good</source>
        <translation>Die Auswahl endgültig löschen</translation>
    </message>
    <message>
        <source>Progress of the scan</source>
        <translation>Fortschritt des Suchlaufs</translation>
    </message>
    <message>
        <source>Drop a folder here to look into it</source>
        <translation>Ordner hierher ziehen, um hineinzusehen</translation>
    </message>
    <message>
        <source>Drop the folder to look into it</source>
        <translation>Ordner loslassen, um hineinzusehen</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Largest Files</source>
        <translation>Größte Dateien</translation>
    </message>
    <message>
        <source>What the list shows</source>
        <translation>Was die Liste zeigt</translation>
    </message>
</context>
<context>
    <name>LogWords</name>
    <message>
        <source>The log is a file.</source>
        <translation>Das Protokoll ist eine Datei.</translation>
    </message>
    <message>
        <source>It tells what was removed and what went wrong, with the names of your files. Look through it before you give it to anybody.</source>
        <translation>Sie sagt, was entfernt wurde und was misslang, mit den Namen Ihrer Dateien. Sehen Sie sie durch, bevor Sie sie jemandem geben.</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>A log file can be had in the preferences, under General.</source>
        <translation>Eine Protokolldatei gibt es in den Einstellungen unter „Allgemein“.</translation>
    </message>
    <message>
        <source>The log file can not be written.</source>
        <translation>Die Protokolldatei kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>The log is in the terminal.</source>
        <translation>Das Protokoll steht im Terminal.</translation>
    </message>
    <message>
        <source>Orrinvale was started there, and its lines appear there.</source>
        <translation>Orrinvale wurde dort gestartet, und seine Zeilen erscheinen dort.</translation>
    </message>
    <message>
        <source>The log is in your system&apos;s journal.</source>
        <translation>Das Protokoll steht im Journal Ihres Systems.</translation>
    </message>
    <message>
        <source>In a terminal this shows it:
%1</source>
        <translation>In einem Terminal zeigt es dieser Befehl:
%1</translation>
    </message>
    <message>
        <source>There is no log file.</source>
        <translation>Es gibt keine Protokolldatei.</translation>
    </message>
    <message>
        <source>The lines go wherever this start of Orrinvale was told to send them.</source>
        <translation>Die Zeilen gehen dorthin, wohin Orrinvale sie bei diesem Start schicken sollte.</translation>
    </message>
    <message>
        <source>The file can not be written: %1</source>
        <translation>In die Datei kann nicht geschrieben werden: %1</translation>
    </message>
</context>
<context>
    <name>LoginItemViews</name>
    <message>
        <source>Login items</source>
        <translation>Anmeldeobjekte</translation>
    </message>
    <message>
        <source>Background services</source>
        <translation>Hintergrunddienste</translation>
    </message>
    <message>
        <source>Start hidden</source>
        <translation>Verborgen starten</translation>
    </message>
    <message>
        <source>Add …</source>
        <translation>Hinzufügen …</translation>
    </message>
    <message>
        <source>Add login item</source>
        <translation>Anmeldeobjekt hinzufügen</translation>
    </message>
    <message>
        <source>Applications</source>
        <translation>Anwendungen</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>What starts at login could not be read.</source>
        <translation>Was bei der Anmeldung startet, konnte nicht gelesen werden.</translation>
    </message>
</context>
<context>
    <name>NumberText</name>
    <message>
        <source>.</source>
        <extracomment>The decimal sign, as in 1.25 MB.</extracomment>
        <translation>,</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1&#xa0;%</translation>
    </message>
    <message>
        <source>%1 byte</source>
        <translation>%1 Byte</translation>
    </message>
</context>
<context>
    <name>PreferenceViews</name>
    <message>
        <source>Bytes</source>
        <translation>Byte</translation>
    </message>
    <message>
        <source>Cleaning</source>
        <translation>Aufräumen</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>On</source>
        <translation>Ein</translation>
    </message>
    <message>
        <source>Some</source>
        <translation>Teils</translation>
    </message>
    <message>
        <source>Some entries of this category are ticked on the page Clean.</source>
        <translation>Auf der Seite „Aufräumen“ sind einige Einträge dieser Kategorie angekreuzt.</translation>
    </message>
    <message>
        <source>Warnings</source>
        <translation>Warnungen</translation>
    </message>
    <message>
        <source>Tell me on the desktop</source>
        <translation>Auf dem Schreibtisch melden</translation>
    </message>
    <message>
        <source>Free space</source>
        <translation>Freier Platz</translation>
    </message>
    <message>
        <source>A disk with less than that is marked.</source>
        <translation>Ein Datenträger mit weniger wird hervorgehoben.</translation>
    </message>
    <message>
        <source>A word when a disk falls to this level.</source>
        <translation>Eine Meldung, wenn ein Datenträger auf diese Stufe fällt.</translation>
    </message>
    <message>
        <source>Free memory</source>
        <translation>Freier Speicher</translation>
    </message>
    <message>
        <source>Memory is marked when less than that is free.</source>
        <translation>Der Arbeitsspeicher wird hervorgehoben, wenn weniger frei ist.</translation>
    </message>
    <message>
        <source>Duplicates</source>
        <translation>Duplikate</translation>
    </message>
    <message>
        <source>Unit of the size</source>
        <translation>Einheit der Größe</translation>
    </message>
    <message>
        <source>Search hidden files too</source>
        <translation>Auch verborgene Dateien durchsuchen</translation>
    </message>
    <message>
        <source>Search the system&apos;s files too</source>
        <translation>Auch Dateien des Systems durchsuchen</translation>
    </message>
    <message>
        <source>Compare once more before removing</source>
        <translation>Vor dem Entfernen noch einmal vergleichen</translation>
    </message>
    <message>
        <source>Files larger than</source>
        <translation>Dateien größer als</translation>
    </message>
    <message>
        <source>With 0 files of any size are compared.</source>
        <translation>Bei 0 werden Dateien jeder Größe verglichen.</translation>
    </message>
    <message>
        <source>A copy goes only if it still has the same bytes as the one that stays.</source>
        <translation>Eine Kopie geht nur, wenn sie noch dieselben Bytes hat wie die, die bleibt.</translation>
    </message>
    <message>
        <source>Disk usage</source>
        <translation>Plattenbelegung</translation>
    </message>
    <message>
        <source>Stay on one file system</source>
        <translation>Auf einem Dateisystem bleiben</translation>
    </message>
    <message>
        <source>List from</source>
        <translation>Auflisten ab</translation>
    </message>
    <message>
        <source>Smaller entries are added up in one line.</source>
        <translation>Kleinere Einträge werden in einer Zeile zusammengezählt.</translation>
    </message>
    <message>
        <source>Other disks that are mounted in a folder are left out.</source>
        <translation>Andere Datenträger, die in einem Ordner eingehängt sind, bleiben weg.</translation>
    </message>
    <message>
        <source>Updates</source>
        <translation>Aktualisierungen</translation>
    </message>
    <message>
        <source>Look for updates by itself</source>
        <translation>Selbst nach Aktualisierungen sehen</translation>
    </message>
    <message>
        <source>Every day</source>
        <translation>Jeden Tag</translation>
    </message>
    <message>
        <source>Every week</source>
        <translation>Jede Woche</translation>
    </message>
    <message>
        <source>Every month</source>
        <translation>Jeden Monat</translation>
    </message>
    <message>
        <source>How often</source>
        <translation>Wie oft</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Start at login</source>
        <translation>Bei der Anmeldung starten</translation>
    </message>
    <message>
        <source>Start hidden</source>
        <translation>Verborgen starten</translation>
    </message>
    <message>
        <source>Hide the tray icon</source>
        <translation>Symbol im Infobereich verbergen</translation>
    </message>
    <message>
        <source>As the desktop</source>
        <translation>Wie der Schreibtisch</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>Log each step of a search</source>
        <translation>Jeden Schritt einer Suche protokollieren</translation>
    </message>
    <message>
        <source>Started at login, it stays in the tray without a window.</source>
        <translation>Bei der Anmeldung gestartet, bleibt es ohne Fenster im Infobereich.</translation>
    </message>
    <message>
        <source>Colours</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>From the next start on.</source>
        <translation>Vom nächsten Start an.</translation>
    </message>
    <message>
        <source>For reports of faults. What is removed is always logged.</source>
        <translation>Für Fehlerberichte. Was entfernt wird, wird immer protokolliert.</translation>
    </message>
    <message>
        <source>Everything here holds as soon as you change it</source>
        <translation>Alles hier gilt, sobald Sie es ändern</translation>
    </message>
    <message>
        <source>Its entries are ticked on the page Clean.</source>
        <translation>Ihre Einträge sind auf der Seite „Aufräumen“ angekreuzt.</translation>
    </message>
    <message>
        <source>Ask me</source>
        <translation>Nachfragen</translation>
    </message>
    <message>
        <source>Keep running</source>
        <translation>Weiterlaufen</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Without a window</source>
        <translation>Ohne Fenster</translation>
    </message>
    <message>
        <source>When its window is closed and no tray shows it.</source>
        <translation>Wenn das Fenster geschlossen wird und kein Infobereich es zeigt.</translation>
    </message>
    <message>
        <source>When needed</source>
        <translation>Bei Bedarf</translation>
    </message>
    <message>
        <source>Always</source>
        <translation>Immer</translation>
    </message>
    <message>
        <source>Never</source>
        <translation>Nie</translation>
    </message>
    <message>
        <source>Log file</source>
        <translation>Protokolldatei</translation>
    </message>
    <message>
        <source>Needed where neither a terminal nor the system&apos;s journal keeps the log.</source>
        <translation>Bedarf besteht, wo weder ein Terminal noch das Journal des Systems das Protokoll aufnimmt.</translation>
    </message>
    <message>
        <source>Offer the trash first</source>
        <translation>Den Papierkorb zuerst anbieten</translation>
    </message>
    <message>
        <source>What is in the trash can be brought back, and takes up room until it is emptied.</source>
        <translation>Was im Papierkorb liegt, lässt sich zurückholen und belegt Platz, bis er geleert wird.</translation>
    </message>
    <message>
        <source>Remember what files contain</source>
        <translation>Merken, was Dateien enthalten</translation>
    </message>
    <message>
        <source>The next search reads only what has changed. Checksums are kept, no names and no contents.</source>
        <translation>Die nächste Suche liest nur, was sich geändert hat. Aufgehoben werden Prüfsummen, weder Namen noch Inhalte.</translation>
    </message>
    <message>
        <source>Remember scans</source>
        <translation>Suchläufe merken</translation>
    </message>
    <message>
        <source>Names and sizes of folders are kept, for you alone, to tell what grew since.</source>
        <translation>Namen und Größen der Ordner werden aufbewahrt, nur für Sie, um zu sagen, was seither gewachsen ist.</translation>
    </message>
</context>
<context>
    <name>PreviewPane</name>
    <message>
        <source>Can not be shown: it is damaged</source>
        <translation>Kann nicht gezeigt werden: beschädigt</translation>
    </message>
    <message>
        <source>Can not be shown: it is too large</source>
        <translation>Kann nicht gezeigt werden: zu groß</translation>
    </message>
    <message>
        <source>Can not be shown: it takes too much memory</source>
        <translation>Kann nicht gezeigt werden: braucht zu viel Speicher</translation>
    </message>
    <message>
        <source>Can not be shown: it takes too long</source>
        <translation>Kann nicht gezeigt werden: dauert zu lange</translation>
    </message>
    <message>
        <source>Can not be shown: no program here understands it</source>
        <translation>Kann nicht gezeigt werden: kein Programm hier versteht es</translation>
    </message>
    <message>
        <source>Can not be shown</source>
        <translation>Kann nicht gezeigt werden</translation>
    </message>
    <message>
        <source>It is gone</source>
        <translation>Nicht mehr da</translation>
    </message>
    <message>
        <source>You may not read it</source>
        <translation>Darf nicht gelesen werden</translation>
    </message>
    <message>
        <source>It could not be read</source>
        <translation>Konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>A folder</source>
        <translation>Ein Ordner</translation>
    </message>
    <message>
        <source>A link, which is not followed</source>
        <translation>Eine Verknüpfung, der nicht gefolgt wird</translation>
    </message>
    <message>
        <source>A connection between programs</source>
        <translation>Eine Verbindung zwischen Programmen</translation>
    </message>
    <message>
        <source>A device</source>
        <translation>Ein Gerät</translation>
    </message>
    <message>
        <source>Mono</source>
        <translation>Mono</translation>
    </message>
    <message>
        <source>Stereo</source>
        <translation>Stereo</translation>
    </message>
    <message>
        <source>%1 channels</source>
        <translation>%1 Kanäle</translation>
    </message>
    <message>
        <source>beginning only</source>
        <translation>nur der Anfang</translation>
    </message>
    <message>
        <source>An empty file</source>
        <translation>Eine leere Datei</translation>
    </message>
    <message>
        <source>Nothing to see of this kind of file</source>
        <translation>Von dieser Art Datei ist nichts zu sehen</translation>
    </message>
</context>
<context>
    <name>PreviewWindow</name>
    <message>
        <source>This file is missing.</source>
        <translation>Diese Datei fehlt.</translation>
    </message>
    <message>
        <source>Link to %1</source>
        <translation>Verknüpfung mit %1</translation>
    </message>
    <message>
        <source>beginning only</source>
        <translation>nur der Anfang</translation>
    </message>
    <message>
        <source>Folder with 1 entry</source>
        <translation>Ordner mit 1 Eintrag</translation>
    </message>
</context>
<context>
    <name>QnCheckUpdateWindowController</name>
    <message>
        <source>Looking for a newer version…</source>
        <translation>Es wird nach einer neueren Version gesehen …</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>The web site of Orrinvale could not be reached.</source>
        <translation>Die Webseite von Orrinvale war nicht zu erreichen.</translation>
    </message>
    <message>
        <source>Look whether this computer is online, and try again.</source>
        <translation>Sehen Sie nach, ob dieser Rechner im Netz ist, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>What is new</source>
        <translation>Was neu ist</translation>
    </message>
    <message>
        <source>Open the Download Page</source>
        <translation>Seite zum Herunterladen öffnen</translation>
    </message>
</context>
<context>
    <name>Reason</name>
    <message>
        <source>a mount point</source>
        <translation>ein Einhängepunkt</translation>
    </message>
    <message>
        <source>a home folder</source>
        <translation>ein persönlicher Ordner</translation>
    </message>
    <message>
        <source>a folder of the kernel</source>
        <translation>ein Ordner des Kernels</translation>
    </message>
    <message>
        <source>in a folder of the kernel</source>
        <translation>in einem Ordner des Kernels</translation>
    </message>
    <message>
        <source>one of the program&apos;s own files</source>
        <translation>eine Datei dieses Programms</translation>
    </message>
    <message>
        <source>part of the system</source>
        <translation>Teil des Systems</translation>
    </message>
    <message>
        <source>the root of the file system</source>
        <translation>die Wurzel des Dateisystems</translation>
    </message>
    <message>
        <source>a folder with a mount below</source>
        <translation>ein Ordner, in dem etwas eingehängt ist</translation>
    </message>
    <message>
        <source>a folder above a home folder</source>
        <translation>ein Ordner über einem persönlichen Ordner</translation>
    </message>
    <message>
        <source>a folder above a folder of the kernel</source>
        <translation>ein Ordner über einem Ordner des Kernels</translation>
    </message>
    <message>
        <source>a folder above one of the program&apos;s own files</source>
        <translation>ein Ordner über einer Datei dieses Programms</translation>
    </message>
    <message>
        <source>a folder above part of the system</source>
        <translation>ein Ordner über einem Teil des Systems</translation>
    </message>
    <message>
        <source>what is mounted can not be told</source>
        <translation>es lässt sich nicht feststellen, was eingehängt ist</translation>
    </message>
    <message>
        <source>not a plain absolute path</source>
        <translation>kein einfacher absoluter Pfad</translation>
    </message>
    <message>
        <source>changed since the scan</source>
        <translation>seit dem Suchlauf geändert</translation>
    </message>
    <message>
        <source>changed since it was looked at</source>
        <translation>seit der Prüfung geändert</translation>
    </message>
    <message>
        <source>moved meanwhile</source>
        <translation>inzwischen verschoben</translation>
    </message>
    <message>
        <source>another entry is in its place</source>
        <translation>an seiner Stelle steht ein anderer Eintrag</translation>
    </message>
    <message>
        <source>another entry came into its place</source>
        <translation>ein anderer Eintrag ist an seine Stelle getreten</translation>
    </message>
    <message>
        <source>no other verified copy is left</source>
        <translation>es gibt keine andere geprüfte Kopie mehr</translation>
    </message>
    <message>
        <source>stopped</source>
        <translation>gestoppt</translation>
    </message>
    <message>
        <source>still there</source>
        <translation>noch vorhanden</translation>
    </message>
    <message>
        <source>anybody may remove what others put there</source>
        <translation>jeder darf entfernen, was andere dort ablegen</translation>
    </message>
    <message>
        <source>the trash there is another user&apos;s</source>
        <translation>der Papierkorb dort gehört jemand anderem</translation>
    </message>
    <message>
        <source>the trash is in it</source>
        <translation>der Papierkorb liegt darin</translation>
    </message>
    <message>
        <source>it is in the trash</source>
        <translation>es liegt im Papierkorb</translation>
    </message>
    <message>
        <source>it is a part of the trash</source>
        <translation>es ist ein Teil des Papierkorbs</translation>
    </message>
    <message>
        <source>a folder on the way belongs to someone else</source>
        <translation>ein Ordner auf dem Weg gehört jemand anderem</translation>
    </message>
    <message>
        <source>a folder on the way may be written by others</source>
        <translation>in einen Ordner auf dem Weg dürfen andere schreiben</translation>
    </message>
    <message>
        <source>the removal broke off</source>
        <translation>das Entfernen ist abgebrochen</translation>
    </message>
    <message>
        <source>The disk service does not answer</source>
        <translation>Der Datenträgerdienst antwortet nicht</translation>
    </message>
    <message>
        <source>The disk service, udisks2, is not there</source>
        <translation>Der Datenträgerdienst udisks2 ist nicht vorhanden</translation>
    </message>
    <message>
        <source>The disk service gave no reason</source>
        <translation>Der Datenträgerdienst nannte keinen Grund</translation>
    </message>
    <message>
        <source>The disk service can not be asked: no system bus</source>
        <translation>Der Datenträgerdienst ist nicht erreichbar: kein System-Bus</translation>
    </message>
    <message>
        <source>The disk service answers with something else</source>
        <translation>Der Datenträgerdienst antwortet anders als erwartet</translation>
    </message>
    <message>
        <source>The disk service can not tell what the volume lies on</source>
        <translation>Der Datenträgerdienst weiß nicht, worauf der Datenträger liegt</translation>
    </message>
    <message>
        <source>The disk service unmounted it, but it is still mounted here</source>
        <translation>Der Datenträgerdienst hat ihn ausgehängt, hier ist er aber noch eingehängt</translation>
    </message>
    <message>
        <source>The system bus does not answer</source>
        <translation>Der System-Bus antwortet nicht</translation>
    </message>
    <message>
        <source>The drive is not there any more</source>
        <translation>Das Laufwerk ist nicht mehr da</translation>
    </message>
    <message>
        <source>The volume is in use</source>
        <translation>Der Datenträger wird gerade benutzt</translation>
    </message>
    <message>
        <source>The volume is not mounted any more</source>
        <translation>Der Datenträger ist nicht mehr eingehängt</translation>
    </message>
    <message>
        <source>Another volume is mounted over it</source>
        <translation>Darüber ist ein anderer Datenträger eingehängt</translation>
    </message>
    <message>
        <source>it belongs to a storage pool</source>
        <translation>er gehört zu einem Speicherpool</translation>
    </message>
    <message>
        <source>a file system on it spans other drives</source>
        <translation>ein Dateisystem darauf erstreckt sich über andere Laufwerke</translation>
    </message>
    <message>
        <source>In use: %1</source>
        <translation>In Gebrauch: %1</translation>
    </message>
    <message>
        <source>another device is made of it: %1</source>
        <translation>ein anderes Gerät besteht daraus: %1</translation>
    </message>
    <message>
        <source>a disk image on it is attached: %1</source>
        <translation>ein Abbild darauf ist eingebunden: %1</translation>
    </message>
    <message>
        <source>memory is swapped to it</source>
        <translation>er dient als Auslagerungsspeicher</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Nicht gefunden</translation>
    </message>
    <message>
        <source>Not a folder</source>
        <translation>Kein Ordner</translation>
    </message>
    <message>
        <source>Not a regular file</source>
        <translation>Keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>Changed since it was looked at</source>
        <translation>Seit der Prüfung geändert</translation>
    </message>
    <message>
        <source>Not supported here</source>
        <translation>Hier nicht unterstützt</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>Ein-/Ausgabefehler</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Zugriff verweigert</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>Nicht erlaubt</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>Datei oder Ordner nicht vorhanden</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>Kein Ordner</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>Ist ein Ordner</translation>
    </message>
    <message>
        <source>Directory not empty</source>
        <translation>Ordner nicht leer</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>Datei schon vorhanden</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>Dateiname zu lang</translation>
    </message>
    <message>
        <source>Too many levels of symbolic links</source>
        <translation>Zu viele verschachtelte Verknüpfungen</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>Dateisystem schreibgeschützt</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>Kein Platz mehr auf dem Datenträger</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>Speicherkontingent überschritten</translation>
    </message>
    <message>
        <source>Device or resource busy</source>
        <translation>Gerät oder Ressource belegt</translation>
    </message>
    <message>
        <source>Text file busy</source>
        <translation>Programmdatei wird gerade ausgeführt</translation>
    </message>
    <message>
        <source>No such device</source>
        <translation>Gerät nicht vorhanden</translation>
    </message>
    <message>
        <source>No such device or address</source>
        <translation>Gerät oder Adresse nicht vorhanden</translation>
    </message>
    <message>
        <source>Invalid argument</source>
        <translation>Ungültiges Argument</translation>
    </message>
    <message>
        <source>Invalid cross-device link</source>
        <translation>Nicht über Datenträgergrenzen möglich</translation>
    </message>
    <message>
        <source>Operation not supported</source>
        <translation>Nicht unterstützt</translation>
    </message>
    <message>
        <source>Function not implemented</source>
        <translation>Funktion nicht vorhanden</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>Zu viele geöffnete Dateien</translation>
    </message>
    <message>
        <source>Too many open files in system</source>
        <translation>Zu viele geöffnete Dateien im System</translation>
    </message>
    <message>
        <source>Cannot allocate memory</source>
        <translation>Nicht genug Arbeitsspeicher</translation>
    </message>
    <message>
        <source>Resource temporarily unavailable</source>
        <translation>Ressource zurzeit nicht verfügbar</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>Datei auf dem Server nicht mehr vorhanden</translation>
    </message>
    <message>
        <source>Transport endpoint is not connected</source>
        <translation>Verbindung zum Dateisystem unterbrochen</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <translation>Zeitüberschreitung der Verbindung</translation>
    </message>
    <message>
        <source>Host is down</source>
        <translation>Rechner nicht erreichbar</translation>
    </message>
    <message>
        <source>no trash on its volume: %1</source>
        <translation>kein Papierkorb auf dem Datenträger: %1</translation>
    </message>
    <message>
        <source>The system runs from this drive: %1</source>
        <translation>Von diesem Laufwerk läuft das System: %1</translation>
    </message>
    <message>
        <source>Another volume is mounted on it at %1</source>
        <translation>Ein anderer Datenträger ist darauf eingehängt: %1</translation>
    </message>
    <message>
        <source>it is mounted on %1</source>
        <translation>er ist unter %1 eingehängt</translation>
    </message>
    <message>
        <source>The volume is unmounted, but its drive stays: %1</source>
        <translation>Der Datenträger ist ausgehängt, aber das Laufwerk bleibt: %1</translation>
    </message>
    <message>
        <source>Unknown error %1</source>
        <translation>Unbekannter Fehler %1</translation>
    </message>
    <message>
        <source>not seen by the scan</source>
        <translation>vom Suchlauf nicht gesehen</translation>
    </message>
    <message>
        <source>the tool could not be started: %1</source>
        <translation>das Werkzeug ließ sich nicht starten: %1</translation>
    </message>
    <message>
        <source>the tool was ended by signal %1</source>
        <translation>das Werkzeug wurde durch das Signal %1 beendet</translation>
    </message>
    <message>
        <source>the tool ended with status %1</source>
        <translation>das Werkzeug endete mit dem Status %1</translation>
    </message>
    <message>
        <source>its contents are not those of the copy that stays</source>
        <translation>ihr Inhalt ist nicht der der Kopie, die bleibt</translation>
    </message>
    <message>
        <source>the copy that stays is the same entry by another path</source>
        <translation>die Kopie, die bleibt, ist derselbe Eintrag auf anderem Weg</translation>
    </message>
    <message>
        <source>a program has it open for writing</source>
        <translation>ein Programm hat sie zum Schreiben geöffnet</translation>
    </message>
    <message>
        <source>a program has the copy that stays open for writing</source>
        <translation>ein Programm hat die Kopie, die bleibt, zum Schreiben geöffnet</translation>
    </message>
    <message>
        <source>kept aside under another name, since its own is taken by now</source>
        <translation>unter anderem Namen aufgehoben, da der eigene inzwischen vergeben ist</translation>
    </message>
    <message>
        <source>it is another entry than the one that was set aside</source>
        <translation>es ist ein anderer Eintrag als der, der beiseitegelegt wurde</translation>
    </message>
    <message>
        <source>the folder is a link</source>
        <translation>der Ordner ist eine Verknüpfung</translation>
    </message>
    <message>
        <source>it is no folder</source>
        <translation>es ist kein Ordner</translation>
    </message>
    <message>
        <source>no answer for 5 seconds</source>
        <translation>seit 5 Sekunden keine Antwort</translation>
    </message>
    <message>
        <source>the home folder is somebody else&apos;s</source>
        <translation>der persönliche Ordner gehört jemand anderem</translation>
    </message>
    <message>
        <source>the folder is for other things as well</source>
        <translation>der Ordner dient auch anderem</translation>
    </message>
    <message>
        <source>not installed any more as it was listed</source>
        <translation>nicht mehr so installiert, wie sie in der Liste stand</translation>
    </message>
    <message>
        <source>what would go along could not be found out in time</source>
        <translation>was mitgelöscht würde, war nicht rechtzeitig zu erfahren</translation>
    </message>
    <message>
        <source>its program is gone</source>
        <translation>sein Programm ist weg</translation>
    </message>
    <message>
        <source>it names no program</source>
        <translation>es nennt kein Programm</translation>
    </message>
    <message>
        <source>it is no entry that starts a program</source>
        <translation>es ist kein Eintrag, der ein Programm startet</translation>
    </message>
    <message>
        <source>nothing can start this at login</source>
        <translation>nichts kann das bei der Anmeldung starten</translation>
    </message>
    <message>
        <source>The service that removes packages, PackageKit, is not there</source>
        <translation>Der Dienst, der Pakete entfernt, PackageKit, ist nicht da</translation>
    </message>
    <message>
        <source>The service that removes packages does not answer</source>
        <translation>Der Dienst, der Pakete entfernt, antwortet nicht</translation>
    </message>
    <message>
        <source>The service that removes packages gave no reason</source>
        <translation>Der Dienst, der Pakete entfernt, nannte keinen Grund</translation>
    </message>
    <message>
        <source>Another program installs or removes packages at the moment</source>
        <translation>Ein anderes Programm installiert oder entfernt gerade Pakete</translation>
    </message>
    <message>
        <source>The password was not given</source>
        <translation>Das Passwort wurde nicht eingegeben</translation>
    </message>
    <message>
        <source>The system does not let this person remove packages</source>
        <translation>Das System lässt Sie keine Pakete entfernen</translation>
    </message>
    <message>
        <source>The system needs it</source>
        <translation>Das System braucht es</translation>
    </message>
    <message>
        <source>the system needs it</source>
        <translation>das System braucht es</translation>
    </message>
    <message>
        <source>Other packages need it</source>
        <translation>Andere Pakete brauchen es</translation>
    </message>
    <message>
        <source>Other packages would go by now than those that were listed</source>
        <translation>Inzwischen würden andere Pakete entfernt als die aufgeführten</translation>
    </message>
    <message>
        <source>The removal of packages could not be stopped any more</source>
        <translation>Das Entfernen der Pakete ließ sich nicht mehr anhalten</translation>
    </message>
    <message>
        <source>Packages are being installed or removed, or that was cut off</source>
        <translation>Pakete werden gerade installiert oder entfernt, oder das wurde abgebrochen</translation>
    </message>
    <message>
        <source>The list of packages can not be read</source>
        <translation>Die Liste der Pakete ist nicht zu lesen</translation>
    </message>
    <message>
        <source>the desktop runs on it</source>
        <translation>der Desktop läuft damit</translation>
    </message>
    <message>
        <source>people log in by it</source>
        <translation>die Anmeldung läuft darüber</translation>
    </message>
    <message>
        <source>the network is set up by it</source>
        <translation>das Netz wird damit eingerichtet</translation>
    </message>
    <message>
        <source>rights are asked for by it</source>
        <translation>nach Rechten wird damit gefragt</translation>
    </message>
    <message>
        <source>packages are removed by it</source>
        <translation>Pakete werden damit entfernt</translation>
    </message>
    <message>
        <source>it is the program that runs</source>
        <translation>es ist das Programm, das gerade läuft</translation>
    </message>
    <message>
        <source>The library of flatpak, libflatpak, is not there</source>
        <translation>Die Bibliothek von flatpak, libflatpak, ist nicht da</translation>
    </message>
    <message>
        <source>flatpak left it</source>
        <translation>flatpak hat es dagelassen</translation>
    </message>
    <message>
        <source>flatpak gave no reason</source>
        <translation>flatpak nannte keinen Grund</translation>
    </message>
    <message>
        <source>The snap service left it</source>
        <translation>Der snap-Dienst hat es dagelassen</translation>
    </message>
    <message>
        <source>The snap service gave no reason</source>
        <translation>Der snap-Dienst nannte keinen Grund</translation>
    </message>
    <message>
        <source>The snap service is not there</source>
        <translation>Der snap-Dienst ist nicht da</translation>
    </message>
    <message>
        <source>The snap service does not answer</source>
        <translation>Der snap-Dienst antwortet nicht</translation>
    </message>
    <message>
        <source>The snap service answers what makes no sense</source>
        <translation>Der snap-Dienst antwortet Unverständliches</translation>
    </message>
    <message>
        <source>The snap service does not tell what it has</source>
        <translation>Der snap-Dienst sagt nicht, was er hat</translation>
    </message>
    <message>
        <source>Nothing here removes its kind</source>
        <translation>Nichts hier entfernt diese Art</translation>
    </message>
    <message>
        <source>%1 stays: %2 is a link to it</source>
        <translation>%1 bleibt: %2 ist eine Verknüpfung darauf</translation>
    </message>
    <message>
        <source>What %1 keeps in the home stays where it is not ticked</source>
        <translation>Was %1 im persönlichen Ordner hat, bleibt, wo es nicht angehakt ist</translation>
    </message>
    <message>
        <source>The installation of flatpak in %1 can not be read</source>
        <translation>Die Installation von flatpak in %1 ist nicht zu lesen</translation>
    </message>
    <message>
        <source>It is installed in %1, from where flatpak itself removes</source>
        <translation>Es ist in %1 installiert, von wo flatpak selbst entfernt</translation>
    </message>
    <message>
        <source>Files of the package %1 go only with that package</source>
        <translation>Dateien des Pakets %1 gehen nur mit diesem Paket</translation>
    </message>
    <message>
        <source>A link leads to it, which is left alone: %1</source>
        <translation>Eine Verknüpfung führt dorthin, die unberührt bleibt: %1</translation>
    </message>
    <message>
        <source>Nobody can tell whether a package has brought it: %1</source>
        <translation>Ob ein Paket es mitgebracht hat, ist nicht zu sagen: %1</translation>
    </message>
    <message>
        <source>Nobody can tell whether it is gone: %1</source>
        <translation>Ob es entfernt ist, ist nicht zu sagen: %1</translation>
    </message>
    <message>
        <source>More than a removal would be done to %1</source>
        <translation>Mit %1 würde mehr geschehen als ein Entfernen</translation>
    </message>
    <message>
        <source>Another package went as well: %1</source>
        <translation>Ein weiteres Paket wurde mit entfernt: %1</translation>
    </message>
    <message>
        <source>What is left in the home is not offered, since others may use it: %1</source>
        <translation>Was im persönlichen Ordner bleibt, wird nicht angeboten, weil anderes es benutzen kann: %1</translation>
    </message>
    <message>
        <source>The service that removes packages says: %1</source>
        <translation>Der Dienst, der Pakete entfernt, sagt: %1</translation>
    </message>
    <message>
        <source>The snap service says: %1</source>
        <translation>Der snap-Dienst sagt: %1</translation>
    </message>
    <message>
        <source>it is named as the identifier of %1</source>
        <translation>es heißt wie die Kennung von %1</translation>
    </message>
    <message>
        <source>it is named as the package %1, which is not installed any more</source>
        <translation>es heißt wie das Paket %1, das nicht mehr installiert ist</translation>
    </message>
    <message>
        <source>it is named as the package %1</source>
        <translation>es heißt wie das Paket %1</translation>
    </message>
    <message>
        <source>it is named as the program of %1</source>
        <translation>es heißt wie das Programm von %1</translation>
    </message>
    <message>
        <source>the cache of %1</source>
        <translation>der Cache von %1</translation>
    </message>
    <message>
        <source>%1 is not installed any more</source>
        <translation>%1 ist nicht mehr installiert</translation>
    </message>
    <message>
        <source>%1 is the program that runs</source>
        <translation>%1 ist das Programm, das gerade läuft</translation>
    </message>
    <message>
        <source>%1 is never removed</source>
        <translation>%1 wird nie entfernt</translation>
    </message>
    <message>
        <source>%1 lies in its folder</source>
        <translation>%1 liegt in seinem Ordner</translation>
    </message>
    <message>
        <source>%1 would go along: %2</source>
        <translation>%1 würde mit entfernt: %2</translation>
    </message>
    <message>
        <source>%1 stays: %2</source>
        <translation>%1 bleibt: %2</translation>
    </message>
    <message>
        <source>what would go along could not be found out</source>
        <translation>was mitgelöscht würde, war nicht zu erfahren</translation>
    </message>
    <message>
        <source>What they left could not be looked for in time</source>
        <translation>Was sie hinterlassen, war nicht rechtzeitig zu finden</translation>
    </message>
    <message>
        <source>only the administrator may remove it</source>
        <translation>nur der Administrator darf es entfernen</translation>
    </message>
    <message>
        <source>Could not be looked through and is not offered: %1</source>
        <translation>Konnte nicht durchgesehen werden und wird nicht angeboten: %1</translation>
    </message>
    <message>
        <source>The data of %1 are kept in a snapshot for 31 days, unless snapshots are switched off</source>
        <translation>Die Daten von %1 werden 31 Tage in einem Schnappschuss aufgehoben, sofern Schnappschüsse nicht abgeschaltet sind</translation>
    </message>
    <message>
        <source>Another package went as well: %1; The removal of packages could not be stopped any more</source>
        <translation>Ein weiteres Paket wurde mit entfernt: %1; das Entfernen der Pakete ließ sich nicht mehr anhalten</translation>
    </message>
    <message>
        <source>There are several packages %1</source>
        <translation>Es gibt mehrere Pakete %1</translation>
    </message>
    <message>
        <source>%1 could not be looked at: %2</source>
        <translation>%1 konnte nicht angesehen werden: %2</translation>
    </message>
    <message>
        <source>%1 could not be read</source>
        <translation>%1 konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>in a protected folder</source>
        <translation>in einem geschützten Ordner</translation>
    </message>
    <message>
        <source>a pattern needs a character</source>
        <translation>ein Muster braucht ein Zeichen</translation>
    </message>
    <message>
        <source>the pattern is too long</source>
        <translation>das Muster ist zu lang</translation>
    </message>
    <message>
        <source>a name can not hold this character</source>
        <translation>ein Name kann dieses Zeichen nicht enthalten</translation>
    </message>
    <message>
        <source>nothing follows this backslash</source>
        <translation>auf diesen Rückstrich folgt nichts</translation>
    </message>
    <message>
        <source>two slashes in a row</source>
        <translation>zwei Schrägstriche hintereinander</translation>
    </message>
    <message>
        <source>no ] closes this [</source>
        <translation>kein ] schließt dieses [</translation>
    </message>
    <message>
        <source>a set can not hold a slash</source>
        <translation>eine Menge kann keinen Schrägstrich enthalten</translation>
    </message>
    <message>
        <source>this set runs backwards</source>
        <translation>diese Menge läuft rückwärts</translation>
    </message>
    <message>
        <source>a pattern can not climb</source>
        <translation>ein Muster kann nicht aufwärts führen</translation>
    </message>
    <message>
        <source>it could not be noted for undo</source>
        <translation>ließ sich nicht zum Zurückholen vermerken</translation>
    </message>
    <message>
        <source>it is not in the trash any more</source>
        <translation>liegt nicht mehr im Papierkorb</translation>
    </message>
    <message>
        <source>the folder that it was in is gone</source>
        <translation>der Ordner, in dem es lag, ist weg</translation>
    </message>
    <message>
        <source>the folder that it was in is gone, and it is not in the trash</source>
        <translation>der Ordner, in dem es lag, ist weg, und im Papierkorb liegt es nicht</translation>
    </message>
    <message>
        <source>another folder is where it was</source>
        <translation>wo es lag, ist jetzt ein anderer Ordner</translation>
    </message>
    <message>
        <source>another folder is where it was, and it is not in the trash</source>
        <translation>wo es lag, ist jetzt ein anderer Ordner, und im Papierkorb liegt es nicht</translation>
    </message>
    <message>
        <source>the trash has no record of it any more</source>
        <translation>der Papierkorb hat keinen Vermerk mehr dazu</translation>
    </message>
    <message>
        <source>its name is taken by now</source>
        <translation>sein Name ist inzwischen vergeben</translation>
    </message>
    <message>
        <source>there is no such removal</source>
        <translation>eine solche Entfernung gibt es nicht</translation>
    </message>
    <message>
        <source>its record is damaged</source>
        <translation>der Vermerk dazu ist beschädigt</translation>
    </message>
    <message>
        <source>by the trash&apos;s record it was elsewhere</source>
        <translation>laut dem Vermerk des Papierkorbs lag es woanders</translation>
    </message>
    <message>
        <source>the volume that it was on is not there</source>
        <translation>der Datenträger, auf dem es lag, ist nicht da</translation>
    </message>
    <message>
        <source>it is a folder of a category</source>
        <translation>es ist der Ordner einer Kategorie</translation>
    </message>
    <message>
        <source>a folder of a category lies in it</source>
        <translation>der Ordner einer Kategorie liegt darin</translation>
    </message>
    <message>
        <source>the folder is somebody else&apos;s</source>
        <translation>der Ordner gehört jemand anderem</translation>
    </message>
    <message>
        <source>a program may be writing to it, by its date</source>
        <translation>dem Datum nach schreibt vielleicht ein Programm hinein</translation>
    </message>
    <message>
        <source>the answers given when packages were set up</source>
        <translation>die Antworten, die beim Einrichten von Paketen gegeben wurden</translation>
    </message>
    <message>
        <source>copies of databases made before upgrades</source>
        <translation>Kopien von Datenbanken aus der Zeit vor Aktualisierungen</translation>
    </message>
    <message>
        <source>zones and keys of the name server</source>
        <translation>Zonen und Schlüssel des Nameservers</translation>
    </message>
    <message>
        <source>state of the file server, logins for times without network among it</source>
        <translation>der Zustand des Dateiservers, darunter Anmeldungen für Zeiten ohne Netz</translation>
    </message>
    <message>
        <source>word lists that only a daily job makes again</source>
        <translation>Wortlisten, die nur ein täglicher Lauf neu anlegt</translation>
    </message>
    <message>
        <source>word lists made when packages were set up</source>
        <translation>Wortlisten, die beim Einrichten von Paketen angelegt wurden</translation>
    </message>
    <message>
        <source>the index of the manual pages, which only a daily job makes again</source>
        <translation>das Verzeichnis der Handbuchseiten, das nur ein täglicher Lauf neu anlegt</translation>
    </message>
    <message>
        <source>word lists of the database, made when packages were set up</source>
        <translation>Wortlisten der Datenbank, die beim Einrichten von Paketen angelegt wurden</translation>
    </message>
    <message>
        <source>systems to build packages in, set up by an administrator</source>
        <translation>Systeme zum Bauen von Paketen, die ein Administrator eingerichtet hat</translation>
    </message>
    <message>
        <source>backups</source>
        <translation>Sicherungen</translation>
    </message>
    <message>
        <source>recordings of cameras</source>
        <translation>Aufnahmen von Kameras</translation>
    </message>
    <message>
        <source>what was measured on this machine until now</source>
        <translation>was auf diesem Rechner bisher gemessen wurde</translation>
    </message>
    <message>
        <source>the security record; its service stops the machine when it can not write</source>
        <translation>die Aufzeichnung zur Sicherheit; kann ihr Dienst nicht schreiben, hält er den Rechner an</translation>
    </message>
    <message>
        <source>the record of what administrators did</source>
        <translation>die Aufzeichnung dessen, was Administratoren getan haben</translation>
    </message>
    <message>
        <source>the folder belongs to a package; the files in it may go</source>
        <translation>der Ordner gehört zu einem Paket; die Dateien darin können weg</translation>
    </message>
    <message>
        <source>a link that an administrator or a package set</source>
        <translation>eine Verknüpfung, die ein Administrator oder ein Paket gesetzt hat</translation>
    </message>
    <message>
        <source>not a file</source>
        <translation>keine Datei</translation>
    </message>
    <message>
        <source>the folder of the system&apos;s caches</source>
        <translation>der Ordner der Zwischenspeicher des Systems</translation>
    </message>
    <message>
        <source>a running program may hold it</source>
        <translation>ein laufendes Programm hält es vielleicht</translation>
    </message>
    <message>
        <source>the folder of the system&apos;s logs</source>
        <translation>der Ordner der Protokolle des Systems</translation>
    </message>
    <message>
        <source>the record of logins</source>
        <translation>die Aufzeichnung der Anmeldungen</translation>
    </message>
    <message>
        <source>the journal is being written to it</source>
        <translation>das Journal wird gerade hineingeschrieben</translation>
    </message>
    <message>
        <source>a database restores and copies itself from it</source>
        <translation>daraus stellt sich eine Datenbank wieder her und gleicht sich ab</translation>
    </message>
    <message>
        <source>no rotated log: a program may be writing to it</source>
        <translation>kein abgelegtes Protokoll: vielleicht schreibt ein Programm hinein</translation>
    </message>
    <message>
        <source>not a plain path</source>
        <translation>kein schlichter Pfad</translation>
    </message>
    <message>
        <source>The password was not given, or the system does not allow it</source>
        <translation>Das Passwort wurde nicht gegeben, oder das System erlaubt es nicht</translation>
    </message>
    <message>
        <source>it belongs to the system</source>
        <translation>es gehört zum System</translation>
    </message>
    <message>
        <source>the list of what is always kept can not be read: %1</source>
        <translation>die Liste dessen, was immer bleibt, kann nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>it is %1 by another path</source>
        <translation>es ist %1 unter einem anderen Pfad</translation>
    </message>
    <message>
        <source>The removal of %1 could not be stopped any more</source>
        <translation>Das Entfernen von %1 ließ sich nicht mehr stoppen</translation>
    </message>
    <message>
        <source>something is mounted in the copy that stays</source>
        <translation>in der Kopie, die bleibt, ist etwas eingehängt</translation>
    </message>
    <message>
        <source>its file system can not let files have their space in common</source>
        <translation>ihr Dateisystem kann Dateien ihren Platz nicht teilen lassen</translation>
    </message>
    <message>
        <source>its file system does not let these two have their space in common</source>
        <translation>ihr Dateisystem lässt diese beiden ihren Platz nicht teilen</translation>
    </message>
    <message>
        <source>the copy that stays is on another file system</source>
        <translation>die Kopie, die bleibt, liegt auf einem anderen Dateisystem</translation>
    </message>
    <message>
        <source>only files can have their space in common</source>
        <translation>nur Dateien können ihren Platz teilen</translation>
    </message>
    <message>
        <source>the copy that stays is protected, and a hard link would let it change</source>
        <translation>die Kopie, die bleibt, ist geschützt, und ein Hardlink ließe sie sich ändern</translation>
    </message>
    <message>
        <source>the copy that stays has further names, which may be protected</source>
        <translation>die Kopie, die bleibt, hat weitere Namen, die geschützt sein können</translation>
    </message>
    <message>
        <source>owner, group, rights or extended attributes are not those of the copy that stays</source>
        <translation>Besitzer, Gruppe, Rechte oder erweiterte Attribute sind nicht die der Kopie, die bleibt</translation>
    </message>
    <message>
        <source>it is marked as not to be changed</source>
        <translation>sie ist als unveränderlich gekennzeichnet</translation>
    </message>
    <message>
        <source>anybody may put files into the folder that it is in</source>
        <translation>in ihren Ordner darf jeder Dateien legen</translation>
    </message>
    <message>
        <source>nothing can be set aside in the folder that it is in</source>
        <translation>in ihrem Ordner kann nichts beiseite gelegt werden</translation>
    </message>
    <message>
        <source>the copy that stays has as many names as its file system allows</source>
        <translation>die Kopie, die bleibt, hat so viele Namen, wie ihr Dateisystem erlaubt</translation>
    </message>
    <message>
        <source>it is a part of a copy that stays</source>
        <translation>sie ist Teil einer Kopie, die bleibt</translation>
    </message>
</context>
<context>
    <name>Removal</name>
    <message>
        <source>%1 removed, %2</source>
        <translation>%1 entfernt, %2</translation>
    </message>
    <message numerus="yes">
        <source>%Ln could not be removed</source>
        <translation>
            <numerusform>%Ln Datei nicht entfernt</numerusform>
            <numerusform>%Ln Dateien nicht entfernt</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ResultFrame</name>
    <message>
        <source>1 entry could not be read</source>
        <translation>1 Eintrag nicht lesbar</translation>
    </message>
    <message numerus="yes">
        <source>%Ln entries could not be read</source>
        <translation>
            <numerusform>%Ln Eintrag nicht lesbar</numerusform>
            <numerusform>%Ln Einträge nicht lesbar</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln not read</source>
        <translation>
            <numerusform>%Ln nicht gelesen</numerusform>
            <numerusform>%Ln nicht gelesen</numerusform>
        </translation>
    </message>
    <message>
        <source>Choose Another Folder</source>
        <translation>Anderen Ordner auswählen</translation>
    </message>
</context>
<context>
    <name>ResultRow</name>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Documents</source>
        <translation>Dokumente</translation>
    </message>
    <message>
        <source>Videos</source>
        <translation>Videos</translation>
    </message>
    <message>
        <source>Music</source>
        <translation>Musik</translation>
    </message>
    <message>
        <source>Archives</source>
        <translation>Archive</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Others</source>
        <translation>Andere</translation>
    </message>
</context>
<context>
    <name>RowMenu</name>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Copy Path</source>
        <translation>Pfad kopieren</translation>
    </message>
</context>
<context>
    <name>SameFileDeleteViews</name>
    <message>
        <source>Drop a folder here to search it</source>
        <translation>Ordner hierher ziehen, um ihn zu durchsuchen</translation>
    </message>
    <message>
        <source>Choose a folder to search</source>
        <translation>Ordner zum Durchsuchen auswählen</translation>
    </message>
    <message>
        <source>Find files that you have twice</source>
        <translation>Finden Sie Dateien, die Sie doppelt haben</translation>
    </message>
    <message>
        <source>Drop a folder here, or choose one. Nothing is removed until you tick it and confirm.</source>
        <translation>Ordner hierher ziehen oder auswählen. Entfernt wird nur, was Sie auswählen und bestätigen.</translation>
    </message>
    <message>
        <source>Select scan path</source>
        <translation>Ordner zum Durchsuchen auswählen</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Open the web page of Orrinvale</source>
        <translation>Die Webseite von Orrinvale öffnen</translation>
    </message>
    <message>
        <source>Orrinvale on the web</source>
        <translation>Orrinvale im Web</translation>
    </message>
    <message>
        <source>At this moment</source>
        <translation>Gerade in Arbeit</translation>
    </message>
    <message>
        <source>Progress of the search</source>
        <translation>Fortschritt der Suche</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Stop Scan</source>
        <translation>Suche stoppen</translation>
    </message>
    <message>
        <source>Kinds of files</source>
        <translation>Dateiarten</translation>
    </message>
    <message>
        <source>Search another folder</source>
        <translation>Anderen Ordner durchsuchen</translation>
    </message>
    <message>
        <source>Open selected file</source>
        <translation>Ausgewählte Datei öffnen</translation>
    </message>
    <message>
        <source>Reveal selected file in finder</source>
        <translation>Ausgewählte Datei im Ordner zeigen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove selected file</source>
        <translation>Ausgewählte Dateien entfernen</translation>
    </message>
    <message>
        <source>Drop the folder to search it</source>
        <translation>Ordner loslassen, um ihn zu durchsuchen</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Choose which copy of each group stays, and tick all others</source>
        <translation>Wählen, welche Kopie jeder Gruppe bleibt, und alle anderen auswählen</translation>
    </message>
    <message>
        <source>Several Folders…</source>
        <translation>Mehrere Ordner …</translation>
    </message>
    <message>
        <source>Search several folders as one, protect some, leave things out</source>
        <translation>Mehrere Ordner als einen durchsuchen, manche schützen, anderes auslassen</translation>
    </message>
    <message>
        <source>Keep ▾</source>
        <translation>Behalten ▾</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Bring back what was moved to the trash (Ctrl+Z)</source>
        <translation>Zurückholen, was in den Papierkorb gelegt wurde (Strg+Z)</translation>
    </message>
    <message>
        <source>Search Again</source>
        <translation>Neu suchen</translation>
    </message>
    <message>
        <source>Show what is there now (Ctrl+R)</source>
        <translation>Zeigen, was jetzt da ist (Strg+R)</translation>
    </message>
    <message>
        <source>Plans and Removals ▾</source>
        <translation>Pläne und Entferntes ▾</translation>
    </message>
    <message>
        <source>Plans and Removals</source>
        <translation>Pläne und Entferntes</translation>
    </message>
    <message>
        <source>More</source>
        <translation>Mehr</translation>
    </message>
    <message>
        <source>To the trash or for good, sharing, plans, removals of 30 days</source>
        <translation>In den Papierkorb oder endgültig, Platz teilen, Pläne, Entferntes aus 30 Tagen</translation>
    </message>
</context>
<context>
    <name>ShareWords</name>
    <message>
        <source>1 file, up to %1: it stays a file of its own.</source>
        <translation>1 Datei, bis zu %1: Sie bleibt eine eigene Datei.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln files, up to %1: each stays a file of its own.</source>
        <translation>
            <numerusform>%Ln Dateien, bis zu %1: Jede bleibt eine eigene Datei.</numerusform>
            <numerusform>%Ln Dateien, bis zu %1: Jede bleibt eine eigene Datei.</numerusform>
        </translation>
    </message>
    <message>
        <source>1 file, up to %1, by a hard link alone: it becomes another name of the copy that stays. They are one file then, and a change to one is a change to both.</source>
        <translation>1 Datei, bis zu %1, nur durch einen Hardlink: Sie wird zu einem weiteren Namen der Kopie, die bleibt. Beide sind dann eine Datei, und eine Änderung an einer ist eine Änderung an beiden.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln files, up to %1, by hard links alone: they become other names of the copies that stay. That is one file then, and a change to one is a change to all.</source>
        <translation>
            <numerusform>%Ln Dateien, bis zu %1, nur durch Hardlinks: Sie werden zu weiteren Namen der Kopien, die bleiben. Das ist dann jeweils eine Datei, und eine Änderung an einer ist eine Änderung an allen.</numerusform>
            <numerusform>%Ln Dateien, bis zu %1, nur durch Hardlinks: Sie werden zu weiteren Namen der Kopien, die bleiben. Das ist dann jeweils eine Datei, und eine Änderung an einer ist eine Änderung an allen.</numerusform>
        </translation>
    </message>
    <message>
        <source>1 has nothing to give.</source>
        <translation>1 hat nichts abzugeben.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln have nothing to give.</source>
        <translation>
            <numerusform>%Ln haben nichts abzugeben.</numerusform>
            <numerusform>%Ln haben nichts abzugeben.</numerusform>
        </translation>
    </message>
    <message>
        <source>1 folder or link is left out: only files can have their space in common.</source>
        <translation>1 Ordner oder Verweis bleibt draußen: nur Dateien können ihren Platz teilen.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln folders or links are left out: only files can have their space in common.</source>
        <translation>
            <numerusform>%Ln Ordner oder Verweise bleiben draußen: nur Dateien können ihren Platz teilen.</numerusform>
            <numerusform>%Ln Ordner oder Verweise bleiben draußen: nur Dateien können ihren Platz teilen.</numerusform>
        </translation>
    </message>
    <message>
        <source>1 group is left out: all its copies are ticked, and one stays.</source>
        <translation>1 Gruppe bleibt draußen: alle ihre Kopien sind ausgewählt, und eine bleibt.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln groups are left out: all their copies are ticked, and one stays.</source>
        <translation>
            <numerusform>%Ln Gruppen bleiben draußen: alle ihre Kopien sind ausgewählt, und eine bleibt.</numerusform>
            <numerusform>%Ln Gruppen bleiben draußen: alle ihre Kopien sind ausgewählt, und eine bleibt.</numerusform>
        </translation>
    </message>
    <message>
        <source>1 keeps its own space.</source>
        <translation>1 behält ihren eigenen Platz.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln keep their own space.</source>
        <translation>
            <numerusform>%Ln behalten ihren eigenen Platz.</numerusform>
            <numerusform>%Ln behalten ihren eigenen Platz.</numerusform>
        </translation>
    </message>
    <message>
        <source>Show Why</source>
        <translation>Warum?</translation>
    </message>
    <message>
        <source>Nothing here can share its space</source>
        <translation>Hier kann nichts seinen Platz teilen</translation>
    </message>
    <message>
        <source>Share the space of the copies that stay?</source>
        <translation>Den Platz der Kopien teilen, die bleiben?</translation>
    </message>
    <message>
        <source>Share</source>
        <translation>Teilen</translation>
    </message>
    <message>
        <source>Make Hard Links</source>
        <translation>Hardlinks anlegen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>With Hard Links Too</source>
        <translation>Auch mit Hardlinks</translation>
    </message>
    <message>
        <source>Nothing was shared</source>
        <translation>Nichts wurde geteilt</translation>
    </message>
    <message>
        <source>Free space shrank by %1, of %2 at the most.</source>
        <translation>Der freie Platz nahm um %1 ab, von höchstens %2.</translation>
    </message>
    <message>
        <source>Free space grew by %1, of %2 at the most.</source>
        <translation>Der freie Platz wuchs um %1, von höchstens %2.</translation>
    </message>
    <message>
        <source>Snapshots, further copies and programs that write meanwhile make it less.</source>
        <translation>Schnappschüsse, weitere Kopien und Programme, die währenddessen schreiben, machen es weniger.</translation>
    </message>
    <message>
        <source>Looking how these copies can share their space…</source>
        <translation>Es wird geprüft, wie diese Kopien ihren Platz teilen können …</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>%1 shared before</source>
        <translation>%1 schon vorher geteilt</translation>
    </message>
    <message>
        <source>%1 shared, up to %2</source>
        <translation>%1 geteilt, bis zu %2</translation>
    </message>
    <message>
        <source>%1 shared</source>
        <translation>%1 geteilt</translation>
    </message>
    <message>
        <source>%1 shared, %2</source>
        <translation>%1 geteilt, %2</translation>
    </message>
    <message>
        <source>%1 not shared</source>
        <translation>%1 nicht geteilt</translation>
    </message>
</context>
<context>
    <name>TrashWords</name>
    <message numerus="yes">
        <source>%Ln could not be moved</source>
        <translation>
            <numerusform>%Ln ließ sich nicht verschieben</numerusform>
            <numerusform>%Ln ließen sich nicht verschieben</numerusform>
        </translation>
    </message>
    <message>
        <source>Nothing was left to bring back</source>
        <translation>Es war nichts mehr zurückzuholen</translation>
    </message>
    <message>
        <source>Nothing came back</source>
        <translation>Nichts kam zurück</translation>
    </message>
    <message numerus="yes">
        <source>%Ln could not be brought back</source>
        <translation>
            <numerusform>%Ln ließ sich nicht zurückholen</numerusform>
            <numerusform>%Ln ließen sich nicht zurückholen</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, in the trash as %2</source>
        <translation>%1, im Papierkorb als %2</translation>
    </message>
    <message>
        <source>%1, %2 moved</source>
        <translation>%1, %2 verschoben</translation>
    </message>
    <message>
        <source>%1 is back</source>
        <translation>%1 ist zurück</translation>
    </message>
    <message>
        <source>%1 are back</source>
        <translation>%1 sind zurück</translation>
    </message>
</context>
<context>
    <name>TreemapPicture</name>
    <message>
        <source>Smaller items: %1</source>
        <translation>Kleinere Einträge: %1</translation>
    </message>
</context>
<context>
    <name>UninstallAppsViews</name>
    <message>
        <source>ALL Software</source>
        <translation>Alle Software</translation>
    </message>
    <message>
        <source>System program</source>
        <translation>Systemprogramme</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>Anwendungen</translation>
    </message>
    <message>
        <source>Which applications are shown</source>
        <translation>Welche Anwendungen gezeigt werden</translation>
    </message>
    <message>
        <source>Filter by name</source>
        <translation>Nach Namen filtern</translation>
    </message>
    <message>
        <source>Looking for applications</source>
        <translation>Anwendungen werden gesucht</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Uninstall</source>
        <translation>Deinstallieren</translation>
    </message>
</context>
<context>
    <name>orrinvale::Animation</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
</context>
<context>
    <name>orrinvale::AppDelegate</name>
    <message>
        <source>This folder can not be searched.</source>
        <translation>Dieser Ordner kann nicht durchsucht werden.</translation>
    </message>
    <message>
        <source>Something else is under way.</source>
        <translation>Gerade läuft etwas anderes.</translation>
    </message>
    <message>
        <source>Stop it or wait for its end, and then choose %1 again.</source>
        <translation>Stoppen Sie es oder warten Sie, bis es fertig ist, und wählen Sie dann %1 noch einmal.</translation>
    </message>
    <message>
        <source>Finds duplicates, shows what is large, and removes what you tick: that and nothing else.

Free software under the Apache License 2.0.</source>
        <translation>Findet Duplikate, zeigt, was viel Platz belegt, und entfernt, was Sie auswählen: das und nichts anderes.

Freie Software unter der Apache License 2.0.</translation>
    </message>
    <message>
        <source>The user guide could not be opened.</source>
        <translation>Das Handbuch konnte nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>It is installed together with the program, and shown by your web browser.</source>
        <translation>Es wird mit dem Programm installiert und von Ihrem Webbrowser angezeigt.</translation>
    </message>
    <message>
        <source>mounted</source>
        <translation>eingehängt</translation>
    </message>
    <message>
        <source>unmounted</source>
        <translation>ausgehängt</translation>
    </message>
    <message>
        <source>You disk</source>
        <translation>Ihr Datenträger</translation>
    </message>
    <message>
        <source>%1 is %2 successfully!</source>
        <translation>%1 wurde erfolgreich %2.</translation>
    </message>
    <message>
        <source>Not every volume could be ejected.</source>
        <translation>Nicht alle Datenträger konnten ausgeworfen werden.</translation>
    </message>
    <message>
        <source>A removal was ended in the middle. Everything that it had set aside has been looked after.</source>
        <translation>Ein Entfernen wurde mittendrin beendet. Was es beiseitegelegt hatte, ist versorgt.</translation>
    </message>
    <message>
        <source>Back under their own names: %1</source>
        <translation>Wieder unter ihrem eigenen Namen: %1</translation>
    </message>
    <message>
        <source>A question is still open.</source>
        <translation>Eine Frage ist noch offen.</translation>
    </message>
    <message>
        <source>Answer it, and then choose %1 again.</source>
        <translation>Beantworten Sie sie, und wählen Sie %1 dann noch einmal.</translation>
    </message>
    <message>
        <source>Any web browser shows it. It lies at:
%1</source>
        <translation>Jeder Webbrowser zeigt sie. Sie liegt hier:
%1</translation>
    </message>
    <message>
        <source>Nothing on this desktop shows Orrinvale while its window is closed.</source>
        <translation>Auf diesem Schreibtisch zeigt nichts Orrinvale, solange sein Fenster geschlossen ist.</translation>
    </message>
    <message>
        <source>It can go on without a window: it watches your disks, and starting it again brings the window back. The answer is remembered.</source>
        <translation>Es kann ohne Fenster weiterlaufen: Es behält Ihre Datenträger im Auge, und ein weiterer Start bringt das Fenster zurück. Die Antwort wird gemerkt.</translation>
    </message>
    <message>
        <source>Keep Running</source>
        <translation>Weiterlaufen lassen</translation>
    </message>
    <message>
        <source>Quit Orrinvale</source>
        <translation>Orrinvale beenden</translation>
    </message>
    <message>
        <source>The volume could not be ejected.</source>
        <translation>Der Datenträger konnte nicht ausgeworfen werden.</translation>
    </message>
    <message>
        <source>Orrinvale %1 has been released.</source>
        <translation>Orrinvale %1 ist erschienen.</translation>
    </message>
    <message>
        <source>See what is new in it.</source>
        <translation>Sehen Sie nach, was darin neu ist.</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <source>A report to copy, without any names of yours</source>
        <translation>Ein Bericht zum Kopieren, ohne Namen von Ihnen</translation>
    </message>
    <message>
        <source>Eject all volumes?</source>
        <translation>Alle Datenträger auswerfen?</translation>
    </message>
    <message>
        <source>What can be ejected is unmounted and given back.</source>
        <translation>Was sich auswerfen lässt, wird ausgehängt und freigegeben.</translation>
    </message>
    <message>
        <source>Eject All</source>
        <translation>Alle auswerfen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>The computer and its volumes are being asked…</source>
        <translation>Der Computer und seine Datenträger werden gefragt …</translation>
    </message>
    <message>
        <source>it does not answer</source>
        <translation>er antwortet nicht</translation>
    </message>
</context>
<context>
    <name>orrinvale::AppPrefsWindowController</name>
    <message>
        <source>Web Site</source>
        <translation>Webseite</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
</context>
<context>
    <name>orrinvale::ApplicationMenu</name>
    <message>
        <source>About Orrinvale</source>
        <translation>Über Orrinvale</translation>
    </message>
    <message>
        <source>Preferences…</source>
        <translation>Einstellungen …</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <translation>Nach Aktualisierungen suchen …</translation>
    </message>
    <message>
        <source>Show All Pages</source>
        <translation>Alle Seiten zeigen</translation>
    </message>
    <message>
        <source>Eject All</source>
        <translation>Alle Datenträger auswerfen</translation>
    </message>
    <message>
        <source>User Guide</source>
        <translation>Handbuch</translation>
    </message>
    <message>
        <source>Quit Orrinvale</source>
        <translation>Orrinvale beenden</translation>
    </message>
    <message>
        <source>Fast Clean</source>
        <translation>Schnell aufräumen</translation>
    </message>
    <message>
        <source>Clean</source>
        <translation>Aufräumen</translation>
    </message>
    <message>
        <source>Free Space</source>
        <translation>Freier Platz</translation>
    </message>
    <message>
        <source>Volumes</source>
        <translation>Datenträger</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>Arbeitsspeicher</translation>
    </message>
    <message>
        <source>Disk Usage</source>
        <translation>Speicherbelegung</translation>
    </message>
    <message>
        <source>Login Items</source>
        <translation>Anmeldeobjekte</translation>
    </message>
    <message>
        <source>New: Orrinvale %1…</source>
        <translation>Neu: Orrinvale %1 …</translation>
    </message>
    <message>
        <source>Uninstall Applications</source>
        <translation>Anwendungen deinstallieren</translation>
    </message>
    <message>
        <source>About This Computer</source>
        <translation>Über diesen Computer</translation>
    </message>
    <message>
        <source>Show Log…</source>
        <translation>Protokoll zeigen …</translation>
    </message>
    <message>
        <source>Copy Report…</source>
        <translation>Bericht kopieren …</translation>
    </message>
</context>
<context>
    <name>orrinvale::CleanMemoryController</name>
    <message>
        <source>This frees copies of files. Programs could have had that memory anyway, and files may open more slowly for a while.</source>
        <translation>Dies gibt Kopien von Dateien frei. Programme könnten diesen Speicher ohnehin haben, und Dateien öffnen sich eine Weile vielleicht langsamer.</translation>
    </message>
    <message>
        <source>The system does not tell what its memory is used for</source>
        <translation>Das System sagt nicht, wofür sein Arbeitsspeicher gebraucht wird</translation>
    </message>
    <message>
        <source>%1 of %2 are in use</source>
        <translation>%1 von %2 sind in Gebrauch</translation>
    </message>
    <message>
        <source>Memory runs low: %1 of %2 are available to programs</source>
        <translation>Der Arbeitsspeicher wird knapp: %1 von %2 sind für Programme verfügbar</translation>
    </message>
    <message>
        <source>%1 of %2 are available to programs</source>
        <translation>%1 von %2 sind für Programme verfügbar</translation>
    </message>
    <message>
        <source>Swap: %1 of %2 in use</source>
        <translation>Auslagerung: %1 von %2 in Gebrauch</translation>
    </message>
    <message>
        <source>Programs waited for memory in %1 of the last minute</source>
        <translation>Programme warteten in %1 der letzten Minute auf Speicher</translation>
    </message>
    <message>
        <source>%1 freed.</source>
        <translation>%1 freigegeben.</translation>
    </message>
    <message>
        <source>The run ended early.</source>
        <translation>Der Lauf endete vorzeitig.</translation>
    </message>
    <message>
        <source>Nothing was taken: there is no room left for it here, or the system does not tell how much.</source>
        <translation>Nichts wurde genommen: Hier ist kein Platz mehr dafür, oder das System sagt nicht, wie viel.</translation>
    </message>
    <message>
        <source>Nothing had to be given up: as much as one run takes was free.</source>
        <translation>Nichts musste weichen: So viel, wie ein Lauf nimmt, war frei.</translation>
    </message>
    <message>
        <source>Copies of files went. Programs could have had that memory anyway.</source>
        <translation>Kopien von Dateien sind gewichen. Programme hätten diesen Speicher ohnehin haben können.</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>Arbeitsspeicher</translation>
    </message>
    <message>
        <source>No more is free than before: what was given up is in use again, if anything was.</source>
        <translation>Es ist nicht mehr frei als vorher: Was aufgegeben wurde, ist wieder in Gebrauch, falls es etwas war.</translation>
    </message>
</context>
<context>
    <name>orrinvale::CleanSysController</name>
    <message>
        <source>Scanning system...</source>
        <translation>System wird durchsucht …</translation>
    </message>
    <message>
        <source>Deleting items...</source>
        <translation>Objekte werden gelöscht …</translation>
    </message>
    <message>
        <source>Nothing is removed before you click.</source>
        <translation>Nichts wird entfernt, bevor Sie klicken.</translation>
    </message>
    <message>
        <source>Waiting for another removal to end</source>
        <translation>Wartet, bis ein anderes Entfernen zu Ende ist</translation>
    </message>
    <message>
        <source>Looking how much space was freed...</source>
        <translation>Freigegebener Platz wird ermittelt …</translation>
    </message>
</context>
<context>
    <name>orrinvale::CleanTreeModel</name>
    <message>
        <source>Ticked</source>
        <translation>Angehakt</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>Ausgewählt</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>Geändert</translation>
    </message>
</context>
<context>
    <name>orrinvale::ComputerPanel</name>
    <message>
        <source>Copy Report…</source>
        <translation>Bericht kopieren …</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>About This Computer</source>
        <translation>Über diesen Computer</translation>
    </message>
</context>
<context>
    <name>orrinvale::CustomComInfoView</name>
    <message>
        <source>About this computer</source>
        <translation>Über diesen Computer</translation>
    </message>
    <message>
        <source>Model Identifier:</source>
        <translation>Modell:</translation>
    </message>
    <message>
        <source>CPU Vendor:</source>
        <translation>Hersteller der CPU:</translation>
    </message>
    <message>
        <source>CPU Brand:</source>
        <translation>Bezeichnung der CPU:</translation>
    </message>
    <message>
        <source>Memory:</source>
        <translation>Arbeitsspeicher:</translation>
    </message>
    <message>
        <source>OS Type:</source>
        <translation>Art des Systems:</translation>
    </message>
    <message>
        <source>OS Release:</source>
        <translation>Ausgabe des Systems:</translation>
    </message>
    <message>
        <source>Hostname:</source>
        <translation>Name im Netz:</translation>
    </message>
</context>
<context>
    <name>orrinvale::CustomStatusItemView</name>
    <message>
        <source>Free:%1</source>
        <translation>Frei:%1</translation>
    </message>
    <message>
        <source>Total:%1</source>
        <translation>Gesamt:%1</translation>
    </message>
</context>
<context>
    <name>orrinvale::CustomTableView</name>
    <message>
        <source>What can be cleaned</source>
        <translation>Was aufgeräumt werden kann</translation>
    </message>
</context>
<context>
    <name>orrinvale::CustomVolumView</name>
    <message>
        <source>Open in file manager</source>
        <translation>In der Dateiverwaltung öffnen</translation>
    </message>
    <message>
        <source>Eject</source>
        <translation>Auswerfen</translation>
    </message>
    <message>
        <source>%1 Free</source>
        <translation>%1 frei</translation>
    </message>
    <message>
        <source>Ejecting ...</source>
        <translation>Wird ausgeworfen ...</translation>
    </message>
    <message>
        <source>Total: %1</source>
        <translation>Gesamt: %1</translation>
    </message>
    <message>
        <source>Does not answer: %1</source>
        <translation>Antwortet nicht: %1</translation>
    </message>
    <message>
        <source>Open %1 in file manager</source>
        <translation>%1 in der Dateiverwaltung öffnen</translation>
    </message>
    <message>
        <source>Eject %1</source>
        <translation>%1 auswerfen</translation>
    </message>
    <message>
        <source>%1 used</source>
        <translation>%1 belegt</translation>
    </message>
</context>
<context>
    <name>orrinvale::DBPrefsWindowController</name>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
</context>
<context>
    <name>orrinvale::DiskRing</name>
    <message>
        <source>%1 of %2 are free</source>
        <translation>%1 von %2 sind frei</translation>
    </message>
    <message>
        <source>can go</source>
        <translation>können weg</translation>
    </message>
    <message>
        <source>free</source>
        <translation>frei</translation>
    </message>
</context>
<context>
    <name>orrinvale::DiskUsageAppController</name>
    <message>
        <source>Look into another folder?</source>
        <translation>In einen anderen Ordner sehen?</translation>
    </message>
    <message>
        <source>What is ticked in the folder before is forgotten, and nothing is removed. To be looked into: %1</source>
        <translation>Was im vorigen Ordner angekreuzt ist, wird vergessen, und nichts wird entfernt. Angesehen wird: %1</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Ansehen</translation>
    </message>
    <message>
        <source>Nothing is left in this folder.</source>
        <translation>In diesem Ordner ist nichts mehr übrig.</translation>
    </message>
    <message>
        <source>Nothing was read of this folder.</source>
        <translation>Von diesem Ordner wurde nichts gelesen.</translation>
    </message>
    <message>
        <source>This folder is empty.</source>
        <translation>Dieser Ordner ist leer.</translation>
    </message>
    <message>
        <source>This folder could not be read.</source>
        <translation>Dieser Ordner konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Reading %1</source>
        <translation>%1 wird gelesen</translation>
    </message>
    <message>
        <source>%1 in %2</source>
        <translation>%1 in %2</translation>
    </message>
    <message>
        <source>%1 in %2, shown from %3 on</source>
        <translation>%1 in %2, gezeigt ab %3</translation>
    </message>
    <message>
        <source>Places</source>
        <translation>Orte</translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message numerus="yes">
        <source>%Ln ticked</source>
        <translation>
            <numerusform>%Ln angekreuzt</numerusform>
            <numerusform>%Ln angekreuzt</numerusform>
        </translation>
    </message>
    <message>
        <source>Scan This Folder Again</source>
        <translation>Diesen Ordner neu durchsuchen</translation>
    </message>
    <message>
        <source>Disk Usage</source>
        <translation>Belegung</translation>
    </message>
    <message>
        <source>Counting what is ticked</source>
        <translation>Das Angekreuzte wird gezählt</translation>
    </message>
    <message>
        <source>Are you sure you want to remove all checked items?</source>
        <translation>Wirklich alles Angekreuzte entfernen?</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Removing</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Waiting for another removal to end</source>
        <translation>Wartet, bis ein anderes Entfernen zu Ende ist</translation>
    </message>
    <message>
        <source>Removing %1</source>
        <translation>%1 wird entfernt</translation>
    </message>
    <message>
        <source>Some files that require admin access can&apos;t be removed!</source>
        <translation>Einige Dateien lassen sich nur mit Administratorrechten entfernen!</translation>
    </message>
    <message>
        <source>Could not be removed</source>
        <translation>Nicht entfernt</translation>
    </message>
    <message>
        <source>Please select some path to scan.</source>
        <translation>Bitte einen Ort zum Durchsuchen wählen.</translation>
    </message>
    <message>
        <source>%1 items</source>
        <translation>%1 Einträge</translation>
    </message>
    <message>
        <source>No items found in selected folder. Please try another one.</source>
        <translation>Im gewählten Ordner wurde nichts gefunden. Bitte einen anderen wählen.</translation>
    </message>
    <message>
        <source>Could not be read</source>
        <translation>Nicht lesbar</translation>
    </message>
    <message>
        <source>Leave this folder?</source>
        <translation>Diesen Ordner verlassen?</translation>
    </message>
    <message>
        <source>What is ticked in it is forgotten, and nothing is removed.</source>
        <translation>Was darin angehakt ist, wird vergessen, und nichts wird entfernt.</translation>
    </message>
    <message>
        <source>Leave</source>
        <translation>Verlassen</translation>
    </message>
    <message>
        <source>Nothing of what is ticked can be removed.</source>
        <translation>Nichts von dem, was angehakt ist, kann entfernt werden.</translation>
    </message>
    <message>
        <source>Since %1</source>
        <translation>Seit %1</translation>
    </message>
    <message>
        <source>Compare</source>
        <translation>Vergleichen</translation>
    </message>
    <message>
        <source>Show what changed since an earlier scan</source>
        <translation>Zeigen, was sich seit einem früheren Suchlauf geändert hat</translation>
    </message>
    <message>
        <source>No earlier scan of this place is kept</source>
        <translation>Von diesem Ort ist kein früherer Suchlauf aufbewahrt</translation>
    </message>
    <message>
        <source>Without Comparison</source>
        <translation>Ohne Vergleich</translation>
    </message>
    <message>
        <source>Forget the Scans of This Place</source>
        <translation>Suchläufe dieses Orts vergessen</translation>
    </message>
    <message>
        <source>This scan can not be read.</source>
        <translation>Dieser Suchlauf kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Forget the scans of this place?</source>
        <translation>Die Suchläufe dieses Orts vergessen?</translation>
    </message>
    <message>
        <source>What it took up on earlier days can not be told any more. The files themselves stay as they are.</source>
        <translation>Was er an früheren Tagen belegt hat, lässt sich dann nicht mehr sagen. Die Dateien selbst bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>Forget</source>
        <translation>Vergessen</translation>
    </message>
    <message>
        <source>Show in Columns</source>
        <translation>In Spalten zeigen</translation>
    </message>
    <message>
        <source>Only a scan that came to its end can be compared</source>
        <translation>Nur ein Suchlauf, der bis zum Ende kam, lässt sich vergleichen</translation>
    </message>
    <message>
        <source>The preferences say that scans are not remembered</source>
        <translation>In den Einstellungen ist abgewählt, dass Suchläufe gemerkt werden</translation>
    </message>
    <message>
        <source>As much as on %1</source>
        <translation>So viel wie am %1</translation>
    </message>
    <message>
        <source>%1 more than on %2</source>
        <translation>%1 mehr als am %2</translation>
    </message>
    <message>
        <source>%1 less than on %2</source>
        <translation>%1 weniger als am %2</translation>
    </message>
    <message>
        <source>Changes</source>
        <translation>Änderungen</translation>
    </message>
    <message>
        <source>The scans could not be forgotten.</source>
        <translation>Die Suchläufe konnten nicht vergessen werden.</translation>
    </message>
    <message>
        <source>As much as then</source>
        <translation>So viel wie damals</translation>
    </message>
    <message>
        <source>%1 more</source>
        <translation>%1 mehr</translation>
    </message>
    <message>
        <source>%1 less</source>
        <translation>%1 weniger</translation>
    </message>
</context>
<context>
    <name>orrinvale::DiskUsageLeftCell</name>
    <message>
        <source>%1 of %2 free</source>
        <translation>%1 von %2 frei</translation>
    </message>
    <message>
        <source>%1 free</source>
        <translation>%1 frei</translation>
    </message>
</context>
<context>
    <name>orrinvale::DragView</name>
    <message>
        <source>Drop area</source>
        <translation>Ablagefläche</translation>
    </message>
    <message>
        <source>Takes a folder that is dragged here from the file manager</source>
        <translation>Nimmt einen Ordner an, der aus der Dateiverwaltung hierher gezogen wird</translation>
    </message>
</context>
<context>
    <name>orrinvale::DuplicateMainWindowController</name>
    <message>
        <source>Duplicate File Finder</source>
        <translation>Duplikate finden</translation>
    </message>
    <message>
        <source>Large File Finder</source>
        <translation>Große Dateien finden</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Menu (F10)</source>
        <translation>Menü (F10)</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
</context>
<context>
    <name>orrinvale::DuplicateResultModel</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>Geändert</translation>
    </message>
    <message>
        <source>Reached through a link</source>
        <translation>Über eine Verknüpfung erreicht</translation>
    </message>
    <message>
        <source>Reached through a link; it lies at %1</source>
        <translation>Über eine Verknüpfung erreicht; liegt in Wirklichkeit hier: %1</translation>
    </message>
    <message numerus="yes">
        <source>One file with %Ln names; its space is free when all of them are gone</source>
        <translation>
            <numerusform>Eine Datei mit %Ln Namen; ihr Platz wird frei, wenn er weg ist</numerusform>
            <numerusform>Eine Datei mit %Ln Namen; ihr Platz wird frei, wenn alle weg sind</numerusform>
        </translation>
    </message>
    <message>
        <source>Ticked</source>
        <translation>Ausgewählt</translation>
    </message>
    <message>
        <source>In a protected folder: it stays</source>
        <translation>In einem geschützten Ordner: Sie bleibt</translation>
    </message>
    <message>
        <source>All copies are protected and stay</source>
        <translation>Alle Kopien sind geschützt und bleiben</translation>
    </message>
    <message>
        <source>A folder with 1 file, which goes or stays as a whole</source>
        <translation>Ein Ordner mit 1 Datei, der als Ganzes geht oder bleibt</translation>
    </message>
    <message numerus="yes">
        <source>A folder with %Ln files, which goes or stays as a whole</source>
        <translation>
            <numerusform>Ein Ordner mit %Ln Datei, der als Ganzes geht oder bleibt</numerusform>
            <numerusform>Ein Ordner mit %Ln Dateien, der als Ganzes geht oder bleibt</numerusform>
        </translation>
    </message>
    <message>
        <source>Goes with the folder %1</source>
        <translation>Geht mit dem Ordner %1</translation>
    </message>
    <message>
        <source>%1, 1 file each</source>
        <translation>%1, je 1 Datei</translation>
    </message>
    <message numerus="yes">
        <source>%1, %Ln files each</source>
        <translation>
            <numerusform>%1, je %Ln Datei</numerusform>
            <numerusform>%1, je %Ln Dateien</numerusform>
        </translation>
    </message>
    <message>
        <source>Looking at what is in it…</source>
        <translation>Der Inhalt wird gelesen …</translation>
    </message>
    <message>
        <source>What is in it can not be told: %1</source>
        <translation>Der Inhalt lässt sich nicht zeigen: %1</translation>
    </message>
    <message>
        <source>Nothing is in it any more</source>
        <translation>Es liegt nichts mehr darin</translation>
    </message>
    <message>
        <source>Goes or stays with the folder %1</source>
        <translation>Geht oder bleibt mit dem Ordner %1</translation>
    </message>
</context>
<context>
    <name>orrinvale::FastClean</name>
    <message>
        <source>Another clean has not ended yet. Try again in a moment.</source>
        <translation>Ein anderes Aufräumen ist noch nicht zu Ende. Versuchen Sie es gleich noch einmal.</translation>
    </message>
</context>
<context>
    <name>orrinvale::FileNodeModel</name>
    <message>
        <source>%1, %2 on disk</source>
        <translation>%1, auf dem Datenträger %2</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Ticked</source>
        <translation>Ausgewählt</translation>
    </message>
    <message numerus="yes">
        <source>One of %Ln names of one file; its space is free when all are gone</source>
        <translation>
            <numerusform>Einer von %Ln Namen einer Datei; ihr Platz wird frei, wenn er weg ist</numerusform>
            <numerusform>Einer von %Ln Namen einer Datei; ihr Platz wird frei, wenn alle weg sind</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>orrinvale::FreeSpacePage</name>
    <message>
        <source>There are no volumes here.</source>
        <translation>Hier sind keine Datenträger.</translation>
    </message>
    <message>
        <source>Free Space</source>
        <translation>Freier Platz</translation>
    </message>
    <message>
        <source>Your volumes</source>
        <translation>Ihre Datenträger</translation>
    </message>
    <message>
        <source>This computer runs out of space: %1 of %2 are free</source>
        <translation>Auf diesem Computer wird der Platz knapp: %1 von %2 sind frei</translation>
    </message>
    <message>
        <source>%1 of %2 are free on this computer</source>
        <translation>Auf diesem Computer sind %1 von %2 frei</translation>
    </message>
    <message>
        <source>Looking at your volumes ...</source>
        <translation>Ihre Datenträger werden angesehen ...</translation>
    </message>
</context>
<context>
    <name>orrinvale::HistoryDesk</name>
    <message>
        <source>It could not be brought back</source>
        <translation>Es ließ sich nicht zurückholen</translation>
    </message>
    <message>
        <source>Why?</source>
        <translation>Warum?</translation>
    </message>
    <message>
        <source>Forget these removals?</source>
        <translation>Diese Liste vergessen?</translation>
    </message>
    <message>
        <source>What is in the trash stays there, and can be restored by the file manager.</source>
        <translation>Was im Papierkorb liegt, bleibt dort und lässt sich in der Dateiverwaltung wiederherstellen.</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Some could not be forgotten</source>
        <translation>Einiges ließ sich nicht vergessen</translation>
    </message>
</context>
<context>
    <name>orrinvale::HistoryPanel</name>
    <message>
        <source>When</source>
        <translation>Wann</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>In the trash</source>
        <translation>Im Papierkorb</translation>
    </message>
    <message>
        <source>Removals of the last 30 days</source>
        <translation>Entferntes der letzten 30 Tage</translation>
    </message>
    <message>
        <source>What was moved to the trash can be brought back until the trash is emptied.</source>
        <translation>Was in den Papierkorb gelegt wurde, lässt sich zurückholen, bis er geleert wird.</translation>
    </message>
    <message>
        <source>Removals</source>
        <translation>Entferntes</translation>
    </message>
    <message>
        <source>One moment…</source>
        <translation>Einen Moment …</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Forget this list; what is in the trash stays there</source>
        <translation>Diese Liste vergessen; was im Papierkorb liegt, bleibt dort</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Bring Back</source>
        <translation>Zurückholen</translation>
    </message>
    <message>
        <source>Nothing was moved to the trash in the last 30 days.</source>
        <translation>In den letzten 30 Tagen wurde nichts in den Papierkorb gelegt.</translation>
    </message>
    <message>
        <source>Nothing of it is in the trash</source>
        <translation>Nichts davon liegt im Papierkorb</translation>
    </message>
    <message>
        <source>Bringing it back…</source>
        <translation>Wird zurückgeholt …</translation>
    </message>
    <message>
        <source>Entries</source>
        <translation>Einträge</translation>
    </message>
</context>
<context>
    <name>orrinvale::HostMenu</name>
    <message>
        <source>Ejecting %1 …</source>
        <translation>%1 wird ausgeworfen …</translation>
    </message>
    <message>
        <source>Eject %1</source>
        <translation>%1 auswerfen</translation>
    </message>
</context>
<context>
    <name>orrinvale::ItemFacts</name>
    <message>
        <source>%1, %2 on disk</source>
        <translation>%1, auf dem Datenträger %2</translation>
    </message>
    <message>
        <source>It is gone.</source>
        <translation>Sie ist nicht mehr da.</translation>
    </message>
    <message>
        <source>Its removal gives back up to %1</source>
        <translation>Ihr Entfernen gibt bis zu %1 frei</translation>
    </message>
    <message>
        <source>Its removal gives back %1</source>
        <translation>Ihr Entfernen gibt %1 frei</translation>
    </message>
    <message>
        <source>Together %1. They are too small to be listed one by one.</source>
        <translation>Zusammen %1. Sie sind zu klein, um einzeln aufgeführt zu werden.</translation>
    </message>
</context>
<context>
    <name>orrinvale::LargestFilesDesk</name>
    <message>
        <source>Any age</source>
        <translation>Jedes Alter</translation>
    </message>
    <message>
        <source>Not changed for a month</source>
        <translation>Seit einem Monat nicht geändert</translation>
    </message>
    <message>
        <source>Not changed for half a year</source>
        <translation>Seit einem halben Jahr nicht geändert</translation>
    </message>
    <message>
        <source>Not changed for a year</source>
        <translation>Seit einem Jahr nicht geändert</translation>
    </message>
    <message>
        <source>Not opened for a month</source>
        <translation>Seit einem Monat nicht geöffnet</translation>
    </message>
    <message>
        <source>Not opened for half a year</source>
        <translation>Seit einem halben Jahr nicht geöffnet</translation>
    </message>
    <message>
        <source>Not opened for a year</source>
        <translation>Seit einem Jahr nicht geöffnet</translation>
    </message>
    <message>
        <source>The files are listed once everything has been read</source>
        <translation>Die Dateien werden aufgelistet, sobald alles gelesen ist</translation>
    </message>
    <message>
        <source>%1 left out: it is not noted there when a file is opened</source>
        <translation>%1 ausgelassen: Dort wird nicht vermerkt, wann eine Datei geöffnet wird</translation>
    </message>
    <message>
        <source>No such files</source>
        <translation>Keine solchen Dateien</translation>
    </message>
    <message>
        <source>All kinds</source>
        <translation>Alle Arten</translation>
    </message>
    <message>
        <source>It is not noted here when files are opened</source>
        <translation>Hier wird nicht vermerkt, wann Dateien geöffnet werden</translation>
    </message>
    <message>
        <source>%1 left out: their disk does not answer whether openings are noted there</source>
        <translation>%1 ausgelassen: Ihr Datenträger antwortet nicht, ob dort vermerkt wird, wann eine Datei geöffnet wird</translation>
    </message>
</context>
<context>
    <name>orrinvale::LargestFilesModel</name>
    <message>
        <source>in the future</source>
        <translation>in der Zukunft</translation>
    </message>
    <message>
        <source>before 1970</source>
        <translation>vor 1970</translation>
    </message>
    <message>
        <source>2106 or later</source>
        <translation>2106 oder später</translation>
    </message>
    <message>
        <source>today</source>
        <translation>heute</translation>
    </message>
    <message>
        <source>It is not noted here when a file is opened</source>
        <translation>Hier wird nicht vermerkt, wann eine Datei geöffnet wird</translation>
    </message>
    <message>
        <source>Last read or written: %1</source>
        <translation>Zuletzt gelesen oder geschrieben: %1</translation>
    </message>
    <message>
        <source>Ticked</source>
        <translation>Ausgewählt</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>1 day</source>
        <translation>1 Tag</translation>
    </message>
    <message numerus="yes">
        <source>%Ln days</source>
        <translation>
            <numerusform>%Ln Tag</numerusform>
            <numerusform>%Ln Tage</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln months</source>
        <translation>
            <numerusform>%Ln Monat</numerusform>
            <numerusform>%Ln Monate</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln years</source>
        <translation>
            <numerusform>%Ln Jahr</numerusform>
            <numerusform>%Ln Jahre</numerusform>
        </translation>
    </message>
    <message>
        <source>Last written: %1</source>
        <translation>Zuletzt geschrieben: %1</translation>
    </message>
    <message>
        <source>Age</source>
        <translation>Alter</translation>
    </message>
    <message>
        <source>Unopened</source>
        <translation>Ungeöffnet</translation>
    </message>
    <message>
        <source>%1, age: %2</source>
        <translation>%1, Alter: %2</translation>
    </message>
    <message>
        <source>Its disk does not answer whether that is noted</source>
        <translation>Ihr Datenträger antwortet nicht, ob das vermerkt wird</translation>
    </message>
</context>
<context>
    <name>orrinvale::LargestFilesOutline</name>
    <message>
        <source>Largest files of all folders</source>
        <translation>Größte Dateien aller Ordner</translation>
    </message>
    <message>
        <source>Select all files of this list</source>
        <translation>Alle Dateien dieser Liste auswählen</translation>
    </message>
</context>
<context>
    <name>orrinvale::ListFileViewController</name>
    <message>
        <source>1 could not be removed; a new scan will show it again</source>
        <translation>1 Eintrag nicht entfernt; ein neuer Suchlauf zeigt ihn wieder</translation>
    </message>
    <message>
        <source>%1 could not be removed; a new scan will show them again</source>
        <translation>%1 Einträge nicht entfernt; ein neuer Suchlauf zeigt sie wieder</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
    <message>
        <source>Could not be removed</source>
        <translation>Nicht entfernt</translation>
    </message>
    <message>
        <source>Move to Trash</source>
        <translation>In den Papierkorb verschieben</translation>
    </message>
    <message>
        <source>This could not be moved to the trash.</source>
        <translation>Das konnte nicht in den Papierkorb verschoben werden.</translation>
    </message>
    <message>
        <source>Nothing is left in this folder.</source>
        <translation>In diesem Ordner ist nichts mehr übrig.</translation>
    </message>
    <message>
        <source>This folder is empty.</source>
        <translation>Dieser Ordner ist leer.</translation>
    </message>
    <message>
        <source>Nothing was read of this folder.</source>
        <translation>Von diesem Ordner wurde nichts gelesen.</translation>
    </message>
    <message>
        <source>This folder could not be read.</source>
        <translation>Dieser Ordner konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Could not be read</source>
        <translation>Nicht lesbar</translation>
    </message>
    <message>
        <source>Stopped: %1 removed, %2</source>
        <translation>Angehalten: %1 entfernt, %2</translation>
    </message>
    <message>
        <source>%1 removed, %2</source>
        <translation>%1 entfernt, %2</translation>
    </message>
    <message>
        <source>Look into another folder?</source>
        <translation>In einen anderen Ordner sehen?</translation>
    </message>
    <message>
        <source>What is ticked here is forgotten, and nothing is removed. To be looked into: %1</source>
        <translation>Die Auswahl hier wird vergessen, und nichts wird gelöscht. Anzusehen: %1</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Ansehen</translation>
    </message>
    <message>
        <source>One folder at a time: only %1 is looked into</source>
        <translation>Immer nur ein Ordner: angesehen wird allein %1</translation>
    </message>
    <message>
        <source>The list is empty. A new scan shows what stayed in this folder.</source>
        <translation>Die Liste ist leer. Was in diesem Ordner geblieben ist, zeigt ein neuer Durchgang.</translation>
    </message>
    <message>
        <source>Ticked: %1</source>
        <translation>Ausgewählt: %1</translation>
    </message>
    <message>
        <source>1 file, %1</source>
        <translation>1 Datei, %1</translation>
    </message>
    <message>
        <source>%1 files, %2</source>
        <translation>%1 Dateien, %2</translation>
    </message>
    <message>
        <source>%1, ticked: %2</source>
        <translation>%1, ausgewählt: %2</translation>
    </message>
    <message>
        <source>%1, ticked: %2, of it not in this list: %3</source>
        <translation>%1, ausgewählt: %2, davon nicht in dieser Liste: %3</translation>
    </message>
    <message>
        <source>1 folder with all that is in it</source>
        <translation>1 Ordner mit allem, was darin ist</translation>
    </message>
    <message numerus="yes">
        <source>%Ln folders with all that is in them</source>
        <translation>
            <numerusform>%Ln Ordner mit allem, was darin ist</numerusform>
            <numerusform>%Ln Ordner mit allem, was darin ist</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, %2, goes for good.</source>
        <translation>%1, %2, wird endgültig entfernt.</translation>
    </message>
    <message>
        <source>%1, %2, go for good.</source>
        <translation>%1, %2, werden endgültig entfernt.</translation>
    </message>
    <message>
        <source>1 file</source>
        <translation>1 Datei</translation>
    </message>
    <message numerus="yes">
        <source>%Ln files</source>
        <translation>
            <numerusform>%Ln Datei</numerusform>
            <numerusform>%Ln Dateien</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 and %2, %3 in all, go for good.</source>
        <translation>%1 und %2, zusammen %3, werden endgültig entfernt.</translation>
    </message>
    <message>
        <source>%1 of it is not in the list that you see.</source>
        <translation>%1 davon stehen nicht in der Liste, die Sie sehen.</translation>
    </message>
    <message>
        <source>1 of the files has other names, and frees nothing while one of them is left.</source>
        <translation>1 der Dateien hat weitere Namen und gibt keinen Platz frei, solange einer davon bleibt.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln of the files have other names, and free nothing while one of them is left.</source>
        <translation>
            <numerusform>%Ln der Dateien hat weitere Namen und gibt keinen Platz frei, solange einer davon bleibt.</numerusform>
            <numerusform>%Ln der Dateien haben weitere Namen und geben keinen Platz frei, solange einer davon bleibt.</numerusform>
        </translation>
    </message>
    <message>
        <source>What lies in folders and has other names elsewhere frees nothing while one of them is left.</source>
        <translation>Was in Ordnern liegt und anderswo weitere Namen hat, gibt keinen Platz frei, solange einer davon bleibt.</translation>
    </message>
</context>
<context>
    <name>orrinvale::LoginItemController</name>
    <message>
        <source>Reading ...</source>
        <translation>Wird gelesen ...</translation>
    </message>
    <message>
        <source>Programs that start when you log in: %1</source>
        <translation>Programme, die bei der Anmeldung starten: %1</translation>
    </message>
    <message>
        <source>Nothing starts when you log in.</source>
        <translation>Bei der Anmeldung startet nichts.</translation>
    </message>
    <message>
        <source>Only Orrinvale itself can start hidden: other programs do not know this.</source>
        <translation>Nur Orrinvale selbst kann verborgen starten: Andere Programme kennen das nicht.</translation>
    </message>
    <message>
        <source>This could not be changed: %1</source>
        <translation>Das konnte nicht geändert werden: %1</translation>
    </message>
    <message>
        <source>Choose a login item</source>
        <translation>Anmeldeobjekt auswählen</translation>
    </message>
    <message>
        <source>Of several files the first one was added.</source>
        <translation>Von mehreren Dateien wurde die erste hinzugefügt.</translation>
    </message>
    <message>
        <source>Move &quot;%1&quot; to the trash?</source>
        <translation>„%1“ in den Papierkorb legen?</translation>
    </message>
    <message>
        <source>The system&apos;s own entry of that name starts again then.</source>
        <translation>Dann startet wieder der Eintrag des Systems mit diesem Namen.</translation>
    </message>
    <message>
        <source>It does not start any more when you log in.</source>
        <translation>Es startet dann nicht mehr bei der Anmeldung.</translation>
    </message>
    <message>
        <source>Move to Trash</source>
        <translation>In den Papierkorb</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Login Items</source>
        <translation>Anmeldeobjekte</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Start hidden</source>
        <translation>Verborgen starten</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Services that run in the background: %1</source>
        <translation>Dienste, die im Hintergrund laufen: %1</translation>
    </message>
    <message>
        <source>No services run in the background.</source>
        <translation>Im Hintergrund laufen keine Dienste.</translation>
    </message>
</context>
<context>
    <name>orrinvale::LoginItemModel</name>
    <message>
        <source>You</source>
        <translation>Sie</translation>
    </message>
    <message>
        <source>The system</source>
        <translation>Das System</translation>
    </message>
    <message>
        <source>Starts at login</source>
        <translation>Startet bei der Anmeldung</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Brought by</source>
        <translation>Gebracht von</translation>
    </message>
    <message>
        <source>only in %1</source>
        <translation>nur in %1</translation>
    </message>
    <message>
        <source>Show in File Manager</source>
        <translation>In der Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>not on this desktop</source>
        <translation>nicht auf diesem Desktop</translation>
    </message>
</context>
<context>
    <name>orrinvale::MainViewController</name>
    <message>
        <source>Clean</source>
        <translation>Aufräumen</translation>
    </message>
    <message>
        <source>1 entry stayed</source>
        <translation>1 Eintrag ist geblieben</translation>
    </message>
    <message numerus="yes">
        <source>%Ln entries stayed</source>
        <translation>
            <numerusform>%Ln Eintrag ist geblieben</numerusform>
            <numerusform>%Ln Einträge sind geblieben</numerusform>
        </translation>
    </message>
    <message>
        <source>What stayed</source>
        <translation>Was geblieben ist</translation>
    </message>
    <message>
        <source>Clean %1</source>
        <translation>%1 aufräumen</translation>
    </message>
    <message>
        <source>Tick first what is to go</source>
        <translation>Haken Sie zuerst an, was weg soll</translation>
    </message>
    <message>
        <source>What is kept, and why</source>
        <translation>Was behalten wird, und warum</translation>
    </message>
    <message>
        <source>Nothing has been looked through yet</source>
        <translation>Noch nichts durchgesehen</translation>
    </message>
    <message>
        <source>Looking for what can go: %1 so far</source>
        <translation>Suche, was weg kann: bisher %1</translation>
    </message>
    <message>
        <source>Stopping</source>
        <translation>Wird angehalten</translation>
    </message>
    <message>
        <source>Removing %1</source>
        <translation>Wird entfernt: %1</translation>
    </message>
    <message>
        <source>Removing what was ticked</source>
        <translation>Angehaktes wird entfernt</translation>
    </message>
    <message>
        <source>Nothing can go</source>
        <translation>Nichts kann weg</translation>
    </message>
    <message>
        <source>%1 in one category can go</source>
        <translation>%1 können weg</translation>
    </message>
    <message numerus="yes">
        <source>%1 in %n categories can go</source>
        <translation>
            <numerusform>%1 in %n Kategorie können weg</numerusform>
            <numerusform>%1 in %n Kategorien können weg</numerusform>
        </translation>
    </message>
    <message>
        <source>See what can go</source>
        <translation>Sehen Sie, was weg kann</translation>
    </message>
    <message>
        <source>Nothing can go. Your disk is tidy.</source>
        <translation>Nichts kann weg. Ihr Datenträger ist aufgeräumt.</translation>
    </message>
    <message>
        <source>Scan first, to see what can go.</source>
        <translation>Sehen Sie erst durch, was weg kann.</translation>
    </message>
    <message>
        <source>%1: looking ...</source>
        <translation>%1: wird durchgesehen ...</translation>
    </message>
    <message>
        <source>Nothing in %1 can go.</source>
        <translation>In %1 kann nichts weg.</translation>
    </message>
    <message>
        <source>Always Keep</source>
        <translation>Immer behalten</translation>
    </message>
    <message>
        <source>That could not be noted.</source>
        <translation>Das ließ sich nicht vermerken.</translation>
    </message>
    <message numerus="yes">
        <source>and %Ln more</source>
        <translation>
            <numerusform>und %Ln weiterer</numerusform>
            <numerusform>und %Ln weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>Waiting for another removal to end</source>
        <translation>Wartet, bis ein anderes Entfernen zu Ende ist</translation>
    </message>
    <message>
        <source>%1 found before the scan was stopped</source>
        <translation>%1 gefunden, bevor die Suche angehalten wurde</translation>
    </message>
    <message>
        <source>Nothing was found that can go, but not everything could be looked at.</source>
        <translation>Nichts wurde gefunden, das weg kann, aber nicht alles ließ sich ansehen.</translation>
    </message>
    <message>
        <source>%1 was left alone: %2.</source>
        <translation>%1 blieb unberührt: %2.</translation>
    </message>
    <message>
        <source>Stopped before its end: there may be more</source>
        <translation>Vor dem Ende angehalten: es kann mehr geben</translation>
    </message>
    <message>
        <source>The scan was stopped before its end. There may be more.</source>
        <translation>Die Suche wurde vor ihrem Ende angehalten. Es kann mehr geben.</translation>
    </message>
    <message>
        <source>%1: the scan was stopped before its end.</source>
        <translation>%1: Die Suche wurde vor ihrem Ende angehalten.</translation>
    </message>
    <message>
        <source>%1. It is left out until the next scan.</source>
        <translation>%1. Bis zur nächsten Suche bleibt es außen vor.</translation>
    </message>
</context>
<context>
    <name>orrinvale::MenuItemView</name>
    <message>
        <source>Eject %1</source>
        <translation>%1 auswerfen</translation>
    </message>
    <message>
        <source>It does not answer: %1</source>
        <translation>Keine Antwort: %1</translation>
    </message>
    <message>
        <source>Ejecting %1 …</source>
        <translation>%1 wird ausgeworfen …</translation>
    </message>
    <message>
        <source>Free: %1</source>
        <translation>Frei: %1</translation>
    </message>
    <message>
        <source>Total: %1</source>
        <translation>Gesamt: %1</translation>
    </message>
    <message>
        <source>%1: %2 free of %3</source>
        <translation>%1: %2 frei von %3</translation>
    </message>
    <message>
        <source>%1, does not answer</source>
        <translation>%1, antwortet nicht</translation>
    </message>
    <message>
        <source>Does not answer</source>
        <translation>Antwortet nicht</translation>
    </message>
</context>
<context>
    <name>orrinvale::NewMainViewController</name>
    <message>
        <source>What was found</source>
        <translation>Was gefunden wurde</translation>
    </message>
    <message>
        <source>Tick everything</source>
        <translation>Alles anhaken</translation>
    </message>
    <message>
        <source>Ticked entries</source>
        <translation>Angehakte Einträge</translation>
    </message>
</context>
<context>
    <name>orrinvale::NewOutlineView</name>
    <message>
        <source>Files and folders by size</source>
        <translation>Dateien und Ordner nach Größe</translation>
    </message>
    <message>
        <source>Select everything</source>
        <translation>Alles auswählen</translation>
    </message>
</context>
<context>
    <name>orrinvale::Padlock</name>
    <message>
        <source>Administrator right</source>
        <translation>Administratorrechte</translation>
    </message>
    <message>
        <source>Click lock to get a higer privileges.</source>
        <translation>Klicken Sie auf das Schloss, um höhere Rechte zu erhalten.</translation>
    </message>
</context>
<context>
    <name>orrinvale::PartlyPanel</name>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>%1 of it is also in %2</source>
        <translation>%1 davon liegen auch in %2</translation>
    </message>
    <message>
        <source>Shared</source>
        <translation>Gemeinsam</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Partly equal folders</source>
        <translation>Teilweise gleiche Ordner</translation>
    </message>
    <message>
        <source>Folders that are for the most part in another one</source>
        <translation>Ordner, die größtenteils in einem anderen liegen</translation>
    </message>
    <message>
        <source>Counted are files with equal contents, under whatever name and wherever in the other folder they lie. Nothing is ticked by this list.</source>
        <translation>Gezählt werden Dateien mit gleichem Inhalt, unter welchem Namen und wo auch immer sie im anderen Ordner liegen. Diese Liste kreuzt nichts an.</translation>
    </message>
    <message>
        <source>Show Both Folders</source>
        <translation>Beide Ordner zeigen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Search These Two</source>
        <translation>Diese beiden durchsuchen</translation>
    </message>
    <message>
        <source>A new search in these two folders alone</source>
        <translation>Eine neue Suche in diesen beiden Ordnern allein</translation>
    </message>
</context>
<context>
    <name>orrinvale::PlacesPanel</name>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Best places</source>
        <translation>Beste Orte</translation>
    </message>
    <message>
        <source>Keep the copy in the best place</source>
        <translation>Die Kopie am besten Ort behalten</translation>
    </message>
    <message>
        <source>The copy in the topmost of these folders stays, and all others are ticked.</source>
        <translation>Es bleibt die Kopie im obersten dieser Ordner, alle anderen werden ausgewählt.</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Add Folder…</source>
        <translation>Ordner hinzufügen …</translation>
    </message>
    <message>
        <source>Take Out</source>
        <translation>Herausnehmen</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Nach unten</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Add a folder first</source>
        <translation>Erst einen Ordner hinzufügen</translation>
    </message>
</context>
<context>
    <name>orrinvale::PlanDesk</name>
    <message>
        <source>Duplicates %1</source>
        <translation>Duplikate %1</translation>
    </message>
    <message>
        <source>Folder for the plan</source>
        <translation>Ordner für den Plan</translation>
    </message>
    <message>
        <source>Could not be saved: %1</source>
        <translation>Nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>Choose a plan</source>
        <translation>Plan auswählen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>This plan can not be used</source>
        <translation>Dieser Plan ist nicht brauchbar</translation>
    </message>
    <message>
        <source>Nothing went</source>
        <translation>Nichts wurde entfernt</translation>
    </message>
    <message>
        <source>It could not be brought back</source>
        <translation>Es ließ sich nicht zurückholen</translation>
    </message>
    <message>
        <source>Why?</source>
        <translation>Warum?</translation>
    </message>
</context>
<context>
    <name>orrinvale::PlanPanel</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>What becomes of it</source>
        <translation>Was damit geschieht</translation>
    </message>
    <message>
        <source>goes</source>
        <translation>geht</translation>
    </message>
    <message>
        <source>protected</source>
        <translation>geschützt</translation>
    </message>
    <message>
        <source>stays</source>
        <translation>bleibt</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Plan</source>
        <translation>Plan</translation>
    </message>
    <message>
        <source>1 of them lies outside of the folders of the plan.</source>
        <translation>1 davon liegt außerhalb der Ordner des Plans.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln of them lie outside of the folders of the plan.</source>
        <translation>
            <numerusform>%Ln davon liegt außerhalb der Ordner des Plans.</numerusform>
            <numerusform>%Ln davon liegen außerhalb der Ordner des Plans.</numerusform>
        </translation>
    </message>
    <message>
        <source>Each is compared with its copy once more before it goes.</source>
        <translation>Jede wird vorher noch einmal mit ihrer Kopie verglichen.</translation>
    </message>
    <message>
        <source>Files of the plan</source>
        <translation>Dateien des Plans</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Move to Trash</source>
        <translation>In den Papierkorb</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>One moment…</source>
        <translation>Einen Moment …</translation>
    </message>
    <message>
        <source>Compared again and moved: %1 of %2</source>
        <translation>Noch einmal verglichen und verschoben: %1 von %2</translation>
    </message>
    <message>
        <source>Compared again and removed: %1 of %2</source>
        <translation>Noch einmal verglichen und entfernt: %1 von %2</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>%1, %2, can go. A copy of it stays.</source>
        <translation>%1, %2, kann gehen. Eine Kopie davon bleibt.</translation>
    </message>
    <message>
        <source>%1, %2, can go. Of each a copy stays.</source>
        <translation>%1, %2, können gehen. Von allem bleibt eine Kopie.</translation>
    </message>
</context>
<context>
    <name>orrinvale::PreferenceGroup</name>
    <message>
        <source>Restore Defaults</source>
        <translation>Vorgaben wiederherstellen</translation>
    </message>
    <message>
        <source>Restore the defaults of %1</source>
        <translation>Vorgaben von %1 wiederherstellen</translation>
    </message>
</context>
<context>
    <name>orrinvale::PreferencePage</name>
    <message>
        <source>less than %1</source>
        <translation>weniger als %1</translation>
    </message>
    <message>
        <source>Nothing on this desktop shows such an icon.</source>
        <translation>Nichts auf diesem Schreibtisch zeigt ein solches Symbol.</translation>
    </message>
    <message>
        <source>Nothing on this desktop shows such words.</source>
        <translation>Nichts auf diesem Schreibtisch zeigt solche Meldungen.</translation>
    </message>
    <message>
        <source>Nothing here starts it at login.</source>
        <translation>Nichts hier startet es bei der Anmeldung.</translation>
    </message>
    <message>
        <source>Not saved: %1. It holds until the program ends.</source>
        <translation>Nicht gespeichert: %1. Es gilt, bis das Programm endet.</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>The entry for the login could not be changed.</source>
        <translation>Der Eintrag für die Anmeldung konnte nicht geändert werden.</translation>
    </message>
    <message>
        <source>Newer versions come with your system.</source>
        <translation>Neuere Versionen kommen mit Ihrem System.</translation>
    </message>
    <message>
        <source>This copy does not look for newer versions.</source>
        <translation>Diese Kopie sieht nicht nach neueren Versionen.</translation>
    </message>
    <message>
        <source>Where newer versions come from is still being looked up.</source>
        <translation>Es wird noch ermittelt, woher neuere Versionen kommen.</translation>
    </message>
    <message>
        <source>There is no page Disk Usage here.</source>
        <translation>Hier gibt es keine Seite „Speicherbelegung“.</translation>
    </message>
    <message>
        <source>Nothing Remembered</source>
        <translation>Nichts gemerkt</translation>
    </message>
    <message>
        <source>Forget %1</source>
        <translation>%1 vergessen</translation>
    </message>
    <message>
        <source>It could not be forgotten: %1</source>
        <translation>Es konnte nicht vergessen werden: %1</translation>
    </message>
    <message>
        <source>The scans could not be forgotten.</source>
        <translation>Die Suchläufe konnten nicht vergessen werden.</translation>
    </message>
</context>
<context>
    <name>orrinvale::PrefsToolbar</name>
    <message>
        <source>Icon and Text</source>
        <translation>Symbol und Text</translation>
    </message>
    <message>
        <source>Icon Only</source>
        <translation>Nur Symbol</translation>
    </message>
    <message>
        <source>Text Only</source>
        <translation>Nur Text</translation>
    </message>
</context>
<context>
    <name>orrinvale::PreviewFolders</name>
    <message>
        <source>In this folder</source>
        <translation>In diesem Ordner</translation>
    </message>
    <message numerus="yes">
        <source>%Ln copies, in these folders</source>
        <translation>
            <numerusform>%Ln Kopie, in diesem Ordner</numerusform>
            <numerusform>%Ln Kopien, in diesen Ordnern</numerusform>
        </translation>
    </message>
    <message>
        <source>Open the folder %1</source>
        <translation>Ordner %1 öffnen</translation>
    </message>
    <message>
        <source>Shows %1 in the file manager</source>
        <translation>Zeigt %1 im Dateimanager</translation>
    </message>
    <message numerus="yes">
        <source>and %Ln more</source>
        <translation>
            <numerusform>und %Ln weiterer</numerusform>
            <numerusform>und %Ln weitere</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>orrinvale::PreviewHost</name>
    <message>
        <source>Show a preview beside the list (F3)</source>
        <translation>Vorschau neben der Liste zeigen (F3)</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
</context>
<context>
    <name>orrinvale::PreviewLook</name>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Still reading</source>
        <translation>Wird noch gelesen</translation>
    </message>
</context>
<context>
    <name>orrinvale::PreviewPane</name>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>The texts differ from line %1 on</source>
        <translation>Die Texte unterscheiden sich ab Zeile %1</translation>
    </message>
    <message>
        <source>What is shown of the texts is the same</source>
        <translation>Was von den Texten zu sehen ist, ist gleich</translation>
    </message>
    <message>
        <source>The texts are the same</source>
        <translation>Die Texte sind gleich</translation>
    </message>
</context>
<context>
    <name>orrinvale::PreviewPicture</name>
    <message>
        <source>%1 × %2 pixels, shown at %3 %</source>
        <translation>%1 × %2 Pixel, gezeigt mit %3 %</translation>
    </message>
</context>
<context>
    <name>orrinvale::ProgramList</name>
    <message>
        <source>%1 (%2 processes)</source>
        <translation>%1 (%2 Prozesse)</translation>
    </message>
    <message>
        <source>up to %1</source>
        <translation>bis zu %1</translation>
    </message>
</context>
<context>
    <name>orrinvale::ProgressWindowController</name>
    <message>
        <source>Progress of the removal</source>
        <translation>Fortschritt beim Entfernen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Removing</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Removing what you selected</source>
        <translation>Ihre Auswahl wird entfernt</translation>
    </message>
</context>
<context>
    <name>orrinvale::QnCheckUpdateWindowController</name>
    <message>
        <source>New features of Version %1:</source>
        <translation>Neu in Version %1:</translation>
    </message>
    <message>
        <source>Orrinvale %1 has been released.</source>
        <translation>Orrinvale %1 ist erschienen.</translation>
    </message>
    <message>
        <source>This is Orrinvale %1.</source>
        <translation>Dies ist Orrinvale %1.</translation>
    </message>
    <message>
        <source>No newer version was found.</source>
        <translation>Es wurde keine neuere Version gefunden.</translation>
    </message>
    <message>
        <source>Newer versions come with your system.</source>
        <translation>Neuere Versionen kommen mit Ihrem System.</translation>
    </message>
    <message>
        <source>It was installed as a package, and is updated together with the others.</source>
        <translation>Es wurde als Paket installiert und wird zusammen mit den anderen aktualisiert.</translation>
    </message>
    <message>
        <source>This copy does not look for newer versions.</source>
        <translation>Diese Kopie sieht nicht nach neueren Versionen.</translation>
    </message>
    <message>
        <source>It was built without the keys by which a release is recognised. Newer versions are where you got this one.</source>
        <translation>Sie wurde ohne die Schlüssel gebaut, an denen eine Veröffentlichung zu erkennen ist. Neuere Versionen gibt es dort, woher Sie diese haben.</translation>
    </message>
</context>
<context>
    <name>orrinvale::ResultOutline</name>
    <message>
        <source>Groups of duplicates</source>
        <translation>Gruppen von Duplikaten</translation>
    </message>
    <message>
        <source>Select all but one of each group</source>
        <translation>In jeder Gruppe alle bis auf eine Datei auswählen</translation>
    </message>
</context>
<context>
    <name>orrinvale::SameFileDeleteViewController</name>
    <message>
        <source>Duplicates</source>
        <translation>Duplikate</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Some files that require admin access can&apos;t be removed!</source>
        <translation>Einige Dateien lassen sich nur mit Administratorrechten entfernen!</translation>
    </message>
    <message>
        <source>Could not be removed</source>
        <translation>Nicht entfernt</translation>
    </message>
    <message>
        <source>Tick All but This One</source>
        <translation>Alle außer dieser Datei auswählen</translation>
    </message>
    <message numerus="yes">
        <source>selected %n files in All</source>
        <translation>
            <numerusform>insgesamt %n ausgewählt</numerusform>
            <numerusform>insgesamt %n ausgewählt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>selected %n file in All</source>
        <translation>
            <numerusform>insgesamt %n ausgewählt</numerusform>
            <numerusform>insgesamt %n ausgewählt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n files in %1</source>
        <translation>
            <numerusform>%n Datei in %1</numerusform>
            <numerusform>%n Dateien in %1</numerusform>
        </translation>
    </message>
    <message>
        <source>Are you sure you want to delete all the duplicate files?</source>
        <translation>Möchten Sie wirklich alle Duplikate löschen?</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>This folder could not be read.</source>
        <translation>Dieser Ordner konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>No duplicates are left here.</source>
        <translation>Hier sind keine Duplikate mehr.</translation>
    </message>
    <message>
        <source>No two files here are the same.</source>
        <translation>Hier gibt es keine zwei gleichen Dateien.</translation>
    </message>
    <message>
        <source>Could not be read</source>
        <translation>Nicht lesbar</translation>
    </message>
    <message>
        <source>Waiting for another removal to end</source>
        <translation>Wartet, bis ein anderes Entfernen zu Ende ist</translation>
    </message>
    <message>
        <source>Nothing can be gained</source>
        <translation>Nichts zu gewinnen</translation>
    </message>
    <message>
        <source>%1 can be gained</source>
        <translation>%1 zu gewinnen</translation>
    </message>
    <message>
        <source>A file with several names counts once, and only when all its names are ticked.</source>
        <translation>Eine Datei mit mehreren Namen zählt einmal, und nur wenn alle ihre Namen ausgewählt sind.</translation>
    </message>
    <message>
        <source>1 of them lies outside of the folder that was searched.</source>
        <translation>1 davon liegt außerhalb des durchsuchten Ordners.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln of them lie outside of the folder that was searched.</source>
        <translation>
            <numerusform>%Ln davon liegt außerhalb des durchsuchten Ordners.</numerusform>
            <numerusform>%Ln davon liegen außerhalb des durchsuchten Ordners.</numerusform>
        </translation>
    </message>
    <message>
        <source>Search another folder?</source>
        <translation>Einen anderen Ordner durchsuchen?</translation>
    </message>
    <message>
        <source>What is ticked here is forgotten, and nothing is removed. To be searched: %1</source>
        <translation>Die Auswahl hier wird vergessen, und nichts wird gelöscht. Zu durchsuchen: %1</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Durchsuchen</translation>
    </message>
    <message>
        <source>One folder at a time: only %1 is searched</source>
        <translation>Immer nur ein Ordner: durchsucht wird allein %1</translation>
    </message>
    <message>
        <source>1 file listed, %1 compared</source>
        <translation>1 Datei erfasst, %1 verglichen</translation>
    </message>
    <message numerus="yes">
        <source>%Ln files listed, %1 compared</source>
        <translation>
            <numerusform>%Ln Datei erfasst, %1 verglichen</numerusform>
            <numerusform>%Ln Dateien erfasst, %1 verglichen</numerusform>
        </translation>
    </message>
    <message>
        <source>Compared again and removed: %1 of %2</source>
        <translation>Noch einmal verglichen und entfernt: %1 von %2</translation>
    </message>
    <message>
        <source>Where it leaves copies equal, the rule chosen before decides</source>
        <translation>Wo danach Kopien gleich sind, entscheidet die zuvor gewählte Regel</translation>
    </message>
    <message>
        <source>Newest</source>
        <translation>Neueste</translation>
    </message>
    <message>
        <source>Oldest</source>
        <translation>Älteste</translation>
    </message>
    <message>
        <source>Shortest Path</source>
        <translation>Kürzester Pfad</translation>
    </message>
    <message>
        <source>Shortest Name</source>
        <translation>Kürzester Name</translation>
    </message>
    <message>
        <source>In “%1”</source>
        <translation>In „%1“</translation>
    </message>
    <message>
        <source>In Folder…</source>
        <translation>In Ordner …</translation>
    </message>
    <message>
        <source>Copies in this folder stay</source>
        <translation>Kopien in diesem Ordner bleiben</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
    <message>
        <source>Remove %1 · %2</source>
        <translation>%1 entfernen · %2</translation>
    </message>
    <message>
        <source>Could not be saved: %1</source>
        <translation>Konnte nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>%1 is %2 and was searched once</source>
        <translation>%1 ist %2 und wurde einmal durchsucht</translation>
    </message>
    <message>
        <source>%1 lies in %2 and was searched once</source>
        <translation>%1 liegt in %2 und wurde einmal durchsucht</translation>
    </message>
    <message numerus="yes">
        <source>%n folders</source>
        <translation>
            <numerusform>%n Ordner</numerusform>
            <numerusform>%n Ordnern</numerusform>
        </translation>
    </message>
    <message>
        <source>Tick All Copies in “%1”</source>
        <translation>Alle Kopien in „%1“ auswählen</translation>
    </message>
    <message>
        <source>Untick All in “%1”</source>
        <translation>Alle Kopien in „%1“ abwählen</translation>
    </message>
    <message>
        <source>No copy lies in “%1”</source>
        <translation>In „%1“ liegt keine Kopie</translation>
    </message>
    <message>
        <source>The rules chosen before decide which copies stay.</source>
        <translation>Welche Kopien bleiben, entscheiden die zuvor gewählten Regeln.</translation>
    </message>
    <message>
        <source>Compared again and moved: %1 of %2</source>
        <translation>Noch einmal verglichen und verschoben: %1 von %2</translation>
    </message>
    <message>
        <source>Move to Trash</source>
        <translation>In den Papierkorb</translation>
    </message>
    <message>
        <source>Move %1 to Trash</source>
        <translation>%1 in den Papierkorb</translation>
    </message>
    <message>
        <source>Move %1 to Trash · %2</source>
        <translation>%1 in den Papierkorb · %2</translation>
    </message>
    <message>
        <source>Move selected files to the trash</source>
        <translation>Ausgewählte Dateien in den Papierkorb legen</translation>
    </message>
    <message>
        <source>Remove selected file</source>
        <translation>Ausgewählte Dateien entfernen</translation>
    </message>
    <message>
        <source>1 group loses all its copies.</source>
        <translation>1 Gruppe verliert alle ihre Kopien.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln groups lose all their copies.</source>
        <translation>
            <numerusform>%Ln Gruppe verliert alle ihre Kopien.</numerusform>
            <numerusform>%Ln Gruppen verlieren alle ihre Kopien.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 in all. What is moved can be brought back until the trash is emptied.</source>
        <translation>Zusammen %1. Was dort liegt, lässt sich zurückholen, bis der Papierkorb geleert wird.</translation>
    </message>
    <message>
        <source>Could not be brought back</source>
        <translation>Nicht zurückgeholt</translation>
    </message>
    <message>
        <source>Could not be moved</source>
        <translation>Nicht verschoben</translation>
    </message>
    <message>
        <source>Bringing it back…</source>
        <translation>Wird zurückgeholt …</translation>
    </message>
    <message>
        <source>It could not be brought back</source>
        <translation>Es ließ sich nicht zurückholen</translation>
    </message>
    <message>
        <source>Search again?</source>
        <translation>Neu suchen?</translation>
    </message>
    <message>
        <source>What is ticked here is forgotten, and nothing is removed.</source>
        <translation>Was hier ausgewählt ist, wird vergessen, und nichts wird entfernt.</translation>
    </message>
    <message>
        <source>Best Places…</source>
        <translation>Beste Orte …</translation>
    </message>
    <message>
        <source>Search Again</source>
        <translation>Neu suchen</translation>
    </message>
    <message>
        <source>Save Plan…</source>
        <translation>Plan speichern …</translation>
    </message>
    <message>
        <source>Open Plan…</source>
        <translation>Plan öffnen …</translation>
    </message>
    <message>
        <source>Removals of 30 Days…</source>
        <translation>Entferntes der letzten 30 Tage …</translation>
    </message>
    <message>
        <source>Move to Trash…</source>
        <translation>In den Papierkorb …</translation>
    </message>
    <message>
        <source>Remove for Good…</source>
        <translation>Endgültig entfernen …</translation>
    </message>
    <message>
        <source>Whole Folders</source>
        <translation>Ganze Ordner</translation>
    </message>
    <message>
        <source>Folders that are equal as wholes stand above the files, and the files in them are not listed one by one</source>
        <translation>Ordner, die als Ganzes gleich sind, stehen über den Dateien, und die Dateien in ihnen werden nicht einzeln aufgeführt</translation>
    </message>
    <message>
        <source>As Found</source>
        <translation>Wie gefunden</translation>
    </message>
    <message>
        <source>Biggest Gain First</source>
        <translation>Größter Gewinn zuerst</translation>
    </message>
    <message>
        <source>What their removal gives, as long as one copy stays</source>
        <translation>Was ihr Entfernen bringt, solange eine Kopie bleibt</translation>
    </message>
    <message>
        <source>Partly Equal Folders…</source>
        <translation>Teilweise gleiche Ordner …</translation>
    </message>
    <message>
        <source>Folders that are for the most part in another one</source>
        <translation>Ordner, die größtenteils in einem anderen liegen</translation>
    </message>
    <message>
        <source>Found by a search with Whole Folders on</source>
        <translation>Eine Suche mit „Ganze Ordner“ findet sie</translation>
    </message>
    <message>
        <source>1 of them is a folder: all that is in it goes, %1.</source>
        <translation>1 davon ist ein Ordner: Alles darin geht, %1.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln of them are folders: all that is in them goes, %1.</source>
        <translation>
            <numerusform>%Ln davon ist ein Ordner: Alles darin geht, %1.</numerusform>
            <numerusform>%Ln davon sind Ordner: Alles darin geht, %1.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>selected %n entries in All</source>
        <translation>
            <numerusform>insgesamt %n ausgewählt</numerusform>
            <numerusform>insgesamt %n ausgewählt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n entries in %1</source>
        <translation>
            <numerusform>%n Eintrag in %1</numerusform>
            <numerusform>%n Einträge in %1</numerusform>
        </translation>
    </message>
    <message>
        <source>selected 1 entry in All</source>
        <translation>insgesamt 1 ausgewählt</translation>
    </message>
    <message>
        <source>1 entry in %1</source>
        <translation>1 Eintrag in %1</translation>
    </message>
    <message>
        <source>View…</source>
        <translation>Ansicht …</translation>
    </message>
    <message>
        <source>Measuring the free space…</source>
        <translation>Der freie Platz wird gemessen …</translation>
    </message>
    <message>
        <source>Shared: %1 of %2</source>
        <translation>Geteilt: %1 von %2</translation>
    </message>
    <message>
        <source>Keep their own space</source>
        <translation>Behalten ihren eigenen Platz</translation>
    </message>
    <message>
        <source>Share the Space…</source>
        <translation>Platz teilen …</translation>
    </message>
    <message>
        <source>Nothing here takes its space twice any more.</source>
        <translation>Nichts belegt hier seinen Platz mehr doppelt.</translation>
    </message>
    <message>
        <source>Hide What Is in It</source>
        <translation>Inhalt verbergen</translation>
    </message>
    <message>
        <source>Show What Is in It</source>
        <translation>Inhalt zeigen</translation>
    </message>
    <message>
        <source>It is a folder: all that is in it goes, %1.</source>
        <translation>Es ist ein Ordner: Alles darin geht, %1.</translation>
    </message>
    <message>
        <source>Move %1 to the trash?</source>
        <translation>%1 in den Papierkorb legen?</translation>
    </message>
</context>
<context>
    <name>orrinvale::SavePlanPanel</name>
    <message>
        <source>Save a plan</source>
        <translation>Plan speichern</translation>
    </message>
    <message>
        <source>Save what is ticked as a plan</source>
        <translation>Das Ausgewählte als Plan speichern</translation>
    </message>
    <message>
        <source>1 group is left out: all its copies are ticked, and a plan keeps one.</source>
        <translation>1 Gruppe bleibt draußen: alle ihre Kopien sind ausgewählt, und ein Plan behält eine.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln groups are left out: all their copies are ticked, and a plan keeps one.</source>
        <translation>
            <numerusform>%Ln Gruppe bleibt draußen: alle ihre Kopien sind ausgewählt, und ein Plan behält eine.</numerusform>
            <numerusform>%Ln Gruppen bleiben draußen: alle ihre Kopien sind ausgewählt, und ein Plan behält eine.</numerusform>
        </translation>
    </message>
    <message>
        <source>1 link is left out: a plan removes no links.</source>
        <translation>1 Verknüpfung bleibt draußen: ein Plan entfernt keine.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln links are left out: a plan removes no links.</source>
        <translation>
            <numerusform>%Ln Verknüpfung bleibt draußen: ein Plan entfernt keine.</numerusform>
            <numerusform>%Ln Verknüpfungen bleiben draußen: ein Plan entfernt keine.</numerusform>
        </translation>
    </message>
    <message>
        <source>Where the plan is kept</source>
        <translation>Wo der Plan liegt</translation>
    </message>
    <message>
        <source>Choose Folder…</source>
        <translation>Ordner auswählen …</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Nothing that is ticked can go by a plan.</source>
        <translation>Nichts vom Ausgewählten kann nach einem Plan gehen.</translation>
    </message>
    <message>
        <source>Write the whole path, from the first slash on</source>
        <translation>Den ganzen Pfad schreiben, vom ersten Schrägstrich an</translation>
    </message>
    <message>
        <source>1 folder is left out: what is in it has changed since the search.</source>
        <translation>1 Ordner bleibt weg: Sein Inhalt hat sich seit der Suche geändert.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln folders are left out: what is in them has changed since the search.</source>
        <translation>
            <numerusform>%Ln Ordner bleibt weg: Sein Inhalt hat sich seit der Suche geändert.</numerusform>
            <numerusform>%Ln Ordner bleiben weg: Ihr Inhalt hat sich seit der Suche geändert.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, %2. It goes when the plan is opened and confirmed.</source>
        <translation>%1, %2. Das geht, wenn der Plan geöffnet und bestätigt wird.</translation>
    </message>
    <message>
        <source>%1, %2. They go when the plan is opened and confirmed.</source>
        <translation>%1, %2. Sie gehen, wenn der Plan geöffnet und bestätigt wird.</translation>
    </message>
</context>
<context>
    <name>orrinvale::ScanListModel</name>
    <message>
        <source>Ticked</source>
        <translation>Angehakt</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Age</source>
        <translation>Alter</translation>
    </message>
    <message>
        <source>Show in File Manager</source>
        <translation>In der Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <source>Came back since it was last cleaned</source>
        <translation>Seit dem letzten Aufräumen zurückgekommen</translation>
    </message>
</context>
<context>
    <name>orrinvale::ScopePanel</name>
    <message>
        <source>Search several folders</source>
        <translation>Mehrere Ordner durchsuchen</translation>
    </message>
    <message>
        <source>They are searched as one. What lies in a protected folder is compared, and never ticked or removed.</source>
        <translation>Sie werden als einer durchsucht. Was in einem geschützten Ordner liegt, wird verglichen, aber nie angekreuzt oder entfernt.</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Add Folder…</source>
        <translation>Ordner hinzufügen …</translation>
    </message>
    <message>
        <source>Names or paths, separated by semicolons: * for any characters, ? for one, a slash at the end for folders</source>
        <translation>Namen oder Pfade, durch Strichpunkte getrennt: * für beliebige Zeichen, ? für eines, ein Schrägstrich am Ende für Ordner</translation>
    </message>
    <message>
        <source>At most:</source>
        <translation>Höchstens:</translation>
    </message>
    <message>
        <source>Heed files named %1</source>
        <translation>Dateien namens %1 beachten</translation>
    </message>
    <message>
        <source>Such a file names in each line what is left out of its folder</source>
        <translation>Eine solche Datei nennt in jeder Zeile, was in ihrem Ordner ausgelassen wird</translation>
    </message>
    <message>
        <source>Leave out:</source>
        <translation>Auslassen:</translation>
    </message>
    <message>
        <source>At least:</source>
        <translation>Mindestens:</translation>
    </message>
    <message>
        <source>Kinds:</source>
        <translation>Arten:</translation>
    </message>
    <message>
        <source>Name to save it under</source>
        <translation>Name, unter dem sie gespeichert wird</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Protected</source>
        <translation>Geschützt</translation>
    </message>
    <message>
        <source>Take this folder out</source>
        <translation>Diesen Ordner herausnehmen</translation>
    </message>
    <message>
        <source>“%1” is no size: write 10 MB, 4 KiB or a number of bytes</source>
        <translation>„%1“ ist keine Größe: Schreiben Sie 10 MB, 4 KiB oder eine Zahl von Bytes</translation>
    </message>
    <message>
        <source>Choose a kind</source>
        <translation>Wählen Sie eine Art</translation>
    </message>
    <message>
        <source>The smallest size is larger than the largest</source>
        <translation>Die kleinste Größe ist größer als die größte</translation>
    </message>
    <message>
        <source>“%1”, character %2: %3</source>
        <translation>„%1“, Zeichen %2: %3</translation>
    </message>
    <message>
        <source>Add a folder first</source>
        <translation>Fügen Sie zuerst einen Ordner hinzu</translation>
    </message>
    <message>
        <source>All folders are protected</source>
        <translation>Alle Ordner sind geschützt</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Alle vergessen</translation>
    </message>
    <message>
        <source>Saved Searches ▾</source>
        <translation>Gespeicherte Suchen ▾</translation>
    </message>
</context>
<context>
    <name>orrinvale::SpaceWarnings</name>
    <message>
        <source>%1 is almost full</source>
        <translation>%1 ist fast voll</translation>
    </message>
    <message>
        <source>%1 of %2 are free.</source>
        <translation>%1 von %2 sind frei.</translation>
    </message>
    <message>
        <source>Free up space</source>
        <translation>Platz schaffen</translation>
    </message>
</context>
<context>
    <name>orrinvale::StatusMenu</name>
    <message>
        <source>Eject All</source>
        <translation>Alle Datenträger auswerfen</translation>
    </message>
    <message>
        <source>Main Window</source>
        <translation>Hauptfenster</translation>
    </message>
    <message>
        <source>Quit Orrinvale</source>
        <translation>Orrinvale beenden</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>Arbeitsspeicher</translation>
    </message>
</context>
<context>
    <name>orrinvale::Tray</name>
    <message>
        <source>Total Size:%1</source>
        <translation>Gesamtgröße:%1</translation>
    </message>
    <message>
        <source>Free Space:%1</source>
        <translation>Freier Platz:%1</translation>
    </message>
</context>
<context>
    <name>orrinvale::UninstallAppsController</name>
    <message>
        <source>No application here has this in its name.</source>
        <translation>Keine Anwendung hier hat das in ihrem Namen.</translation>
    </message>
    <message>
        <source>There are no applications of this kind here.</source>
        <translation>Anwendungen dieser Art gibt es hier nicht.</translation>
    </message>
    <message>
        <source>Looking for applications ...</source>
        <translation>Anwendungen werden gesucht ...</translation>
    </message>
    <message>
        <source>1 application is installed</source>
        <translation>1 Anwendung ist installiert</translation>
    </message>
    <message>
        <source>%1 applications are installed</source>
        <translation>%1 Anwendungen sind installiert</translation>
    </message>
    <message>
        <source>%1 of %2 applications</source>
        <translation>%1 von %2 Anwendungen</translation>
    </message>
    <message>
        <source>Uninstall</source>
        <translation>Deinstallieren</translation>
    </message>
    <message>
        <source>System application(s),Do you want to uninstall it?</source>
        <translation>Darunter sind Systemprogramme. Sollen sie wirklich deinstalliert werden?</translation>
    </message>
    <message>
        <source>Uninstall the selected application(s)?</source>
        <translation>Sollen die ausgewählten Anwendungen deinstalliert werden?</translation>
    </message>
    <message>
        <source>What would go along could not be found out in time.</source>
        <translation>Was mitgehen würde, war in der Zeit nicht herauszufinden.</translation>
    </message>
    <message>
        <source>What would go along is not known.</source>
        <translation>Was mitgehen würde, ist nicht bekannt.</translation>
    </message>
    <message>
        <source>Waiting for your password ...</source>
        <translation>Ihr Passwort wird erwartet ...</translation>
    </message>
    <message>
        <source>%1 removed, %2</source>
        <translation>%1 entfernt, %2</translation>
    </message>
    <message>
        <source>Why?</source>
        <translation>Warum?</translation>
    </message>
    <message>
        <source>Selected application(s) were uninstalled successfully.</source>
        <translation>Die ausgewählten Anwendungen wurden deinstalliert.</translation>
    </message>
    <message>
        <source>Failed to uninstall the selected application(s). Please refer to Help for more info.</source>
        <translation>Die ausgewählten Anwendungen ließen sich nicht deinstallieren. Mehr dazu steht in der Hilfe.</translation>
    </message>
    <message>
        <source>Removing %1 ...</source>
        <translation>%1 wird entfernt ...</translation>
    </message>
    <message>
        <source>Could not be removed</source>
        <translation>Nicht entfernt werden konnte</translation>
    </message>
    <message>
        <source>%1 of %2 selected.</source>
        <translation>%1 von %2 ausgewählt.</translation>
    </message>
    <message>
        <source>Tick the applications that are to go</source>
        <translation>Kreuzen Sie an, was gehen soll</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Einzelheiten</translation>
    </message>
    <message>
        <source>stopped before its turn came</source>
        <translation>angehalten, bevor es an der Reihe war</translation>
    </message>
    <message>
        <source>Stopping ...</source>
        <translation>Wird angehalten ...</translation>
    </message>
    <message>
        <source>free space grew by %1</source>
        <translation>freier Platz wuchs um %1</translation>
    </message>
    <message>
        <source>Could not be read</source>
        <translation>Nicht lesbar</translation>
    </message>
    <message>
        <source>Not all could be read</source>
        <translation>Nicht alles war lesbar</translation>
    </message>
    <message>
        <source>Of these kinds more may be installed than is listed</source>
        <translation>Von diesen Arten kann mehr installiert sein, als aufgeführt ist</translation>
    </message>
</context>
<context>
    <name>orrinvale::UninstallAppsModel</name>
    <message>
        <source>System program</source>
        <translation>Systemprogramm</translation>
    </message>
    <message>
        <source>Ticked</source>
        <translation>Angekreuzt</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>Anwendung</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Last Used</source>
        <translation>Zuletzt benutzt</translation>
    </message>
    <message>
        <source>Installed</source>
        <translation>Installiert</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Einzelheiten</translation>
    </message>
    <message>
        <source>Bundle</source>
        <translation>Bündel</translation>
    </message>
    <message>
        <source>Flatpak</source>
        <translation>Flatpak</translation>
    </message>
    <message>
        <source>Snap</source>
        <translation>Snap</translation>
    </message>
    <message>
        <source>Package</source>
        <translation>Paket</translation>
    </message>
    <message>
        <source>AppImage</source>
        <translation>AppImage</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Bundles</source>
        <translation>Bündel</translation>
    </message>
    <message>
        <source>Flatpaks</source>
        <translation>Flatpaks</translation>
    </message>
    <message>
        <source>Snaps</source>
        <translation>Snaps</translation>
    </message>
    <message>
        <source>Packages</source>
        <translation>Pakete</translation>
    </message>
    <message>
        <source>AppImages</source>
        <translation>AppImages</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>up to %1</source>
        <translation>bis zu %1</translation>
    </message>
    <message>
        <source>This is Orrinvale, which does not remove itself.</source>
        <translation>Das ist Orrinvale, das sich nicht selbst entfernt.</translation>
    </message>
</context>
<context>
    <name>orrinvale::UninstallAppsTable</name>
    <message>
        <source>Applications</source>
        <translation>Anwendungen</translation>
    </message>
    <message>
        <source>Select everything</source>
        <translation>Alles auswählen</translation>
    </message>
</context>
<context>
    <name>orrinvale::UninstallDetails</name>
    <message>
        <source>Measuring ...</source>
        <translation>Wird gemessen ...</translation>
    </message>
    <message>
        <source>Created: %1</source>
        <translation>Erstellt: %1</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>up to %1</source>
        <translation>bis zu %1</translation>
    </message>
    <message>
        <source>Last used: %1</source>
        <translation>Zuletzt benutzt: %1</translation>
    </message>
</context>
<context>
    <name>orrinvale::UninstallQuestion</name>
    <message>
        <source>Uninstall Applications</source>
        <translation>Anwendungen deinstallieren</translation>
    </message>
    <message>
        <source>Finding out what goes along ...</source>
        <translation>Es wird festgestellt, was mitgeht ...</translation>
    </message>
    <message>
        <source>Uninstall</source>
        <translation>Deinstallieren</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Stays: %1</source>
        <translation>Bleibt: %1</translation>
    </message>
    <message>
        <source>Goes along: %1</source>
        <translation>Geht mit: %1</translation>
    </message>
    <message>
        <source>Left by it and by nothing else; tick what is to go to the trash:</source>
        <translation>Von ihr und nur von ihr; kreuzen Sie an, was in den Papierkorb soll:</translation>
    </message>
    <message>
        <source>Probably left by it; settings and documents may be in there:</source>
        <translation>Wahrscheinlich von ihr; Einstellungen und Dokumente können darin sein:</translation>
    </message>
    <message>
        <source>It is running.</source>
        <translation>Sie läuft gerade.</translation>
    </message>
    <message>
        <source>Close It</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>More that it left stays: %1</source>
        <translation>Weiteres, das sie hinterlassen hat, bleibt: %1</translation>
    </message>
    <message>
        <source>Removed for good:</source>
        <translation>Wird endgültig gelöscht:</translation>
    </message>
    <message>
        <source>Goes to the trash:</source>
        <translation>Kommt in den Papierkorb:</translation>
    </message>
    <message>
        <source>It is running and can not be closed from here. Close its windows, and save what is open.</source>
        <translation>Sie läuft und kann von hier nicht beendet werden. Schließen Sie ihre Fenster und sichern Sie, was offen ist.</translation>
    </message>
    <message>
        <source>Nobody knows yet what would go along</source>
        <translation>Noch ist nicht bekannt, was mitgelöscht würde</translation>
    </message>
    <message>
        <source>None of them can be removed</source>
        <translation>Keine davon kann entfernt werden</translation>
    </message>
    <message>
        <source>with a document or database</source>
        <translation>mit einem Dokument oder einer Datenbank</translation>
    </message>
    <message>
        <source>with %1 documents and databases</source>
        <translation>mit %1 Dokumenten und Datenbanken</translation>
    </message>
    <message>
        <source>Nobody can tell whether it runs.</source>
        <translation>Ob es läuft, lässt sich nicht sagen.</translation>
    </message>
    <message>
        <source>1 more follows</source>
        <translation>1 weitere folgt</translation>
    </message>
    <message>
        <source>%1 more follow</source>
        <translation>%1 weitere folgen</translation>
    </message>
    <message>
        <source>1 more goes along</source>
        <translation>1 weiteres wird mit entfernt</translation>
    </message>
    <message>
        <source>%1 more go along</source>
        <translation>%1 weitere werden mit entfernt</translation>
    </message>
    <message>
        <source>1 stays</source>
        <translation>1 bleibt</translation>
    </message>
    <message>
        <source>%1 stay</source>
        <translation>%1 bleiben</translation>
    </message>
</context>
<context>
    <name>orrinvale::V3MainListView</name>
    <message>
        <source>Cleaned:</source>
        <translation>Aufgeräumt:</translation>
    </message>
</context>
<context>
    <name>orrinvale::WindowButton</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>Minimieren</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Maximieren</translation>
    </message>
</context>
</TS>
