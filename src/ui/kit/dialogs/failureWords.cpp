// The tables hold the words that lower floors use.
#include "ui/kit/dialogs/failureWords.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>
#include <array>
#include <string_view>
#include <vector>

namespace orrinvale {
namespace {

constexpr const char* context = "Reason";

constexpr std::array whole{
    // What is removed, and where the trash is
    QT_TRANSLATE_NOOP("Reason", "a mount point"),
    QT_TRANSLATE_NOOP("Reason", "a home folder"),
    QT_TRANSLATE_NOOP("Reason", "a folder of the kernel"),
    QT_TRANSLATE_NOOP("Reason", "in a folder of the kernel"),
    QT_TRANSLATE_NOOP("Reason", "one of the program's own files"),
    QT_TRANSLATE_NOOP("Reason", "part of the system"),
    QT_TRANSLATE_NOOP("Reason", "the root of the file system"),
    QT_TRANSLATE_NOOP("Reason", "a folder with a mount below"),
    QT_TRANSLATE_NOOP("Reason", "a folder above a home folder"),
    QT_TRANSLATE_NOOP("Reason", "a folder above a folder of the kernel"),
    QT_TRANSLATE_NOOP("Reason", "a folder above one of the program's own files"),
    QT_TRANSLATE_NOOP("Reason", "a folder above part of the system"),
    QT_TRANSLATE_NOOP("Reason", "what is mounted can not be told"),
    QT_TRANSLATE_NOOP("Reason", "not a plain absolute path"),
    QT_TRANSLATE_NOOP("Reason", "changed since the scan"),
    QT_TRANSLATE_NOOP("Reason", "not seen by the scan"),
    QT_TRANSLATE_NOOP("Reason", "changed since it was looked at"),
    QT_TRANSLATE_NOOP("Reason", "moved meanwhile"),
    QT_TRANSLATE_NOOP("Reason", "another entry is in its place"),
    QT_TRANSLATE_NOOP("Reason", "another entry came into its place"),
    QT_TRANSLATE_NOOP("Reason", "in a protected folder"),
    QT_TRANSLATE_NOOP("Reason", "no other verified copy is left"),
    QT_TRANSLATE_NOOP("Reason", "its contents are not those of the copy that stays"),
    QT_TRANSLATE_NOOP("Reason", "the copy that stays is the same entry by another path"),
    QT_TRANSLATE_NOOP("Reason", "a program has it open for writing"),
    QT_TRANSLATE_NOOP("Reason", "a program has the copy that stays open for writing"),
    QT_TRANSLATE_NOOP("Reason", "something is mounted in the copy that stays"),
    QT_TRANSLATE_NOOP("Reason", "kept aside under another name, since its own is taken by now"),
    QT_TRANSLATE_NOOP("Reason", "it is another entry than the one that was set aside"),
    QT_TRANSLATE_NOOP("Reason", "stopped"),
    QT_TRANSLATE_NOOP("Reason", "still there"),
    QT_TRANSLATE_NOOP("Reason", "anybody may remove what others put there"),
    QT_TRANSLATE_NOOP("Reason", "the trash there is another user's"),
    QT_TRANSLATE_NOOP("Reason", "the trash is in it"),
    QT_TRANSLATE_NOOP("Reason", "it is in the trash"),
    QT_TRANSLATE_NOOP("Reason", "it is a part of the trash"),
    // What keeps its own space where copies share it
    QT_TRANSLATE_NOOP("Reason", "its file system can not let files have their space in common"),
    QT_TRANSLATE_NOOP("Reason",
                      "its file system does not let these two have their space in common"),
    QT_TRANSLATE_NOOP("Reason", "the copy that stays is on another file system"),
    QT_TRANSLATE_NOOP("Reason", "only files can have their space in common"),
    QT_TRANSLATE_NOOP("Reason",
                      "the copy that stays is protected, and a hard link would let it change"),
    QT_TRANSLATE_NOOP("Reason", "the copy that stays has further names, which may be protected"),
    QT_TRANSLATE_NOOP(
        "Reason",
        "owner, group, rights or extended attributes are not those of the copy that stays"),
    QT_TRANSLATE_NOOP("Reason", "it is marked as not to be changed"),
    QT_TRANSLATE_NOOP("Reason", "anybody may put files into the folder that it is in"),
    QT_TRANSLATE_NOOP("Reason", "nothing can be set aside in the folder that it is in"),
    QT_TRANSLATE_NOOP("Reason", "the copy that stays has as many names as its file system allows"),
    QT_TRANSLATE_NOOP("Reason", "it is a part of a copy that stays"),
    // What was moved to the trash, and did not come back
    QT_TRANSLATE_NOOP("Reason", "it could not be noted for undo"),
    QT_TRANSLATE_NOOP("Reason", "it is not in the trash any more"),
    QT_TRANSLATE_NOOP("Reason", "the folder that it was in is gone"),
    QT_TRANSLATE_NOOP("Reason", "the folder that it was in is gone, and it is not in the trash"),
    QT_TRANSLATE_NOOP("Reason", "another folder is where it was"),
    QT_TRANSLATE_NOOP("Reason", "another folder is where it was, and it is not in the trash"),
    QT_TRANSLATE_NOOP("Reason", "the trash has no record of it any more"),
    QT_TRANSLATE_NOOP("Reason", "by the trash's record it was elsewhere"),
    QT_TRANSLATE_NOOP("Reason", "the volume that it was on is not there"),
    QT_TRANSLATE_NOOP("Reason", "its name is taken by now"),
    QT_TRANSLATE_NOOP("Reason", "there is no such removal"),
    QT_TRANSLATE_NOOP("Reason", "its record is damaged"),
    // Patterns of names that a search leaves out
    QT_TRANSLATE_NOOP("Reason", "a pattern needs a character"),
    QT_TRANSLATE_NOOP("Reason", "the pattern is too long"),
    QT_TRANSLATE_NOOP("Reason", "a name can not hold this character"),
    QT_TRANSLATE_NOOP("Reason", "nothing follows this backslash"),
    QT_TRANSLATE_NOOP("Reason", "two slashes in a row"),
    QT_TRANSLATE_NOOP("Reason", "no ] closes this ["),
    QT_TRANSLATE_NOOP("Reason", "a set can not hold a slash"),
    QT_TRANSLATE_NOOP("Reason", "this set runs backwards"),
    QT_TRANSLATE_NOOP("Reason", "a pattern can not climb"),
    // Folders of cleaning that are left alone
    QT_TRANSLATE_NOOP("Reason", "the folder is a link"),
    QT_TRANSLATE_NOOP("Reason", "it is no folder"),
    QT_TRANSLATE_NOOP("Reason", "no answer for 5 seconds"),
    QT_TRANSLATE_NOOP("Reason", "the home folder is somebody else's"),
    QT_TRANSLATE_NOOP("Reason", "the folder is for other things as well"),
    // What a clean keeps
    QT_TRANSLATE_NOOP("Reason", "it is a folder of a category"),
    QT_TRANSLATE_NOOP("Reason", "a folder of a category lies in it"),
    QT_TRANSLATE_NOOP("Reason", "the folder is somebody else's"),
    QT_TRANSLATE_NOOP("Reason", "a program may be writing to it, by its date"),
    QT_TRANSLATE_NOOP("Reason", "the answers given when packages were set up"),
    QT_TRANSLATE_NOOP("Reason", "copies of databases made before upgrades"),
    QT_TRANSLATE_NOOP("Reason", "zones and keys of the name server"),
    QT_TRANSLATE_NOOP("Reason",
                      "state of the file server, logins for times without network among it"),
    QT_TRANSLATE_NOOP("Reason", "word lists that only a daily job makes again"),
    QT_TRANSLATE_NOOP("Reason", "word lists made when packages were set up"),
    QT_TRANSLATE_NOOP("Reason",
                      "the index of the manual pages, which only a daily job makes again"),
    QT_TRANSLATE_NOOP("Reason", "word lists of the database, made when packages were set up"),
    QT_TRANSLATE_NOOP("Reason", "systems to build packages in, set up by an administrator"),
    QT_TRANSLATE_NOOP("Reason", "backups"),
    QT_TRANSLATE_NOOP("Reason", "recordings of cameras"),
    QT_TRANSLATE_NOOP("Reason", "what was measured on this machine until now"),
    QT_TRANSLATE_NOOP("Reason",
                      "the security record; its service stops the machine when it can not write"),
    QT_TRANSLATE_NOOP("Reason", "the record of what administrators did"),
    QT_TRANSLATE_NOOP("Reason", "the folder belongs to a package; the files in it may go"),
    QT_TRANSLATE_NOOP("Reason", "a link that an administrator or a package set"),
    QT_TRANSLATE_NOOP("Reason", "not a file"),
    QT_TRANSLATE_NOOP("Reason", "the folder of the system's caches"),
    QT_TRANSLATE_NOOP("Reason", "a running program may hold it"),
    QT_TRANSLATE_NOOP("Reason", "the folder of the system's logs"),
    QT_TRANSLATE_NOOP("Reason", "the record of logins"),
    QT_TRANSLATE_NOOP("Reason", "the journal is being written to it"),
    QT_TRANSLATE_NOOP("Reason", "a database restores and copies itself from it"),
    QT_TRANSLATE_NOOP("Reason", "no rotated log: a program may be writing to it"),
    QT_TRANSLATE_NOOP("Reason", "not a plain path"),
    // The administrator's helper
    QT_TRANSLATE_NOOP("Reason", "a folder on the way belongs to someone else"),
    QT_TRANSLATE_NOOP("Reason", "a folder on the way may be written by others"),
    QT_TRANSLATE_NOOP("Reason", "the removal broke off"),
    // Applications
    QT_TRANSLATE_NOOP("Reason", "not installed any more as it was listed"),
    QT_TRANSLATE_NOOP("Reason", "what would go along could not be found out in time"),
    QT_TRANSLATE_NOOP("Reason", "what would go along could not be found out"),
    QT_TRANSLATE_NOOP("Reason", "What they left could not be looked for in time"),
    QT_TRANSLATE_NOOP("Reason", "only the administrator may remove it"),
    QT_TRANSLATE_NOOP("Reason", "The service that removes packages, PackageKit, is not there"),
    QT_TRANSLATE_NOOP("Reason", "The service that removes packages does not answer"),
    QT_TRANSLATE_NOOP("Reason", "The service that removes packages gave no reason"),
    QT_TRANSLATE_NOOP("Reason", "Another program installs or removes packages at the moment"),
    QT_TRANSLATE_NOOP("Reason", "The password was not given"),
    QT_TRANSLATE_NOOP("Reason", "The system does not let this person remove packages"),
    QT_TRANSLATE_NOOP("Reason", "The system needs it"),
    QT_TRANSLATE_NOOP("Reason", "the system needs it"),
    QT_TRANSLATE_NOOP("Reason", "Other packages need it"),
    QT_TRANSLATE_NOOP("Reason", "Other packages would go by now than those that were listed"),
    QT_TRANSLATE_NOOP("Reason", "The removal of packages could not be stopped any more"),
    QT_TRANSLATE_NOOP("Reason", "Packages are being installed or removed, or that was cut off"),
    QT_TRANSLATE_NOOP("Reason", "The list of packages can not be read"),
    QT_TRANSLATE_NOOP("Reason", "the desktop runs on it"),
    QT_TRANSLATE_NOOP("Reason", "people log in by it"),
    QT_TRANSLATE_NOOP("Reason", "the network is set up by it"),
    QT_TRANSLATE_NOOP("Reason", "rights are asked for by it"),
    QT_TRANSLATE_NOOP("Reason", "packages are removed by it"),
    QT_TRANSLATE_NOOP("Reason", "it is the program that runs"),
    QT_TRANSLATE_NOOP("Reason", "The library of flatpak, libflatpak, is not there"),
    QT_TRANSLATE_NOOP("Reason", "flatpak left it"),
    QT_TRANSLATE_NOOP("Reason", "flatpak gave no reason"),
    QT_TRANSLATE_NOOP("Reason", "The password was not given, or the system does not allow it"),
    QT_TRANSLATE_NOOP("Reason", "The snap service left it"),
    QT_TRANSLATE_NOOP("Reason", "The snap service gave no reason"),
    QT_TRANSLATE_NOOP("Reason", "The snap service is not there"),
    QT_TRANSLATE_NOOP("Reason", "The snap service does not answer"),
    QT_TRANSLATE_NOOP("Reason", "The snap service answers what makes no sense"),
    QT_TRANSLATE_NOOP("Reason", "The snap service does not tell what it has"),
    QT_TRANSLATE_NOOP("Reason", "Nothing here removes its kind"),
    // Login items
    QT_TRANSLATE_NOOP("Reason", "its program is gone"),
    QT_TRANSLATE_NOOP("Reason", "it names no program"),
    QT_TRANSLATE_NOOP("Reason", "it is no entry that starts a program"),
    QT_TRANSLATE_NOOP("Reason", "nothing can start this at login"),
    QT_TRANSLATE_NOOP("Reason", "it belongs to the system"),
    // Volumes
    QT_TRANSLATE_NOOP("Reason", "The disk service does not answer"),
    QT_TRANSLATE_NOOP("Reason", "The disk service, udisks2, is not there"),
    QT_TRANSLATE_NOOP("Reason", "The disk service gave no reason"),
    QT_TRANSLATE_NOOP("Reason", "The disk service can not be asked: no system bus"),
    QT_TRANSLATE_NOOP("Reason", "The disk service answers with something else"),
    QT_TRANSLATE_NOOP("Reason", "The disk service can not tell what the volume lies on"),
    QT_TRANSLATE_NOOP("Reason", "The disk service unmounted it, but it is still mounted here"),
    QT_TRANSLATE_NOOP("Reason", "The system bus does not answer"),
    QT_TRANSLATE_NOOP("Reason", "The drive is not there any more"),
    QT_TRANSLATE_NOOP("Reason", "The volume is in use"),
    QT_TRANSLATE_NOOP("Reason", "The volume is not mounted any more"),
    QT_TRANSLATE_NOOP("Reason", "Another volume is mounted over it"),
    QT_TRANSLATE_NOOP("Reason", "memory is swapped to it"),
    QT_TRANSLATE_NOOP("Reason", "it belongs to a storage pool"),
    QT_TRANSLATE_NOOP("Reason", "a file system on it spans other drives"),
    // Failures without a number, and of the C library those that files and folders meet
    QT_TRANSLATE_NOOP("Reason", "Not found"),
    QT_TRANSLATE_NOOP("Reason", "Not a folder"),
    QT_TRANSLATE_NOOP("Reason", "Not a regular file"),
    QT_TRANSLATE_NOOP("Reason", "Changed since it was looked at"),
    QT_TRANSLATE_NOOP("Reason", "Not supported here"),
    QT_TRANSLATE_NOOP("Reason", "Input/output error"),
    QT_TRANSLATE_NOOP("Reason", "Permission denied"),
    QT_TRANSLATE_NOOP("Reason", "Operation not permitted"),
    QT_TRANSLATE_NOOP("Reason", "No such file or directory"),
    QT_TRANSLATE_NOOP("Reason", "Not a directory"),
    QT_TRANSLATE_NOOP("Reason", "Is a directory"),
    QT_TRANSLATE_NOOP("Reason", "Directory not empty"),
    QT_TRANSLATE_NOOP("Reason", "File exists"),
    QT_TRANSLATE_NOOP("Reason", "File name too long"),
    QT_TRANSLATE_NOOP("Reason", "Too many levels of symbolic links"),
    QT_TRANSLATE_NOOP("Reason", "Read-only file system"),
    QT_TRANSLATE_NOOP("Reason", "No space left on device"),
    QT_TRANSLATE_NOOP("Reason", "Disk quota exceeded"),
    QT_TRANSLATE_NOOP("Reason", "Device or resource busy"),
    QT_TRANSLATE_NOOP("Reason", "Text file busy"),
    QT_TRANSLATE_NOOP("Reason", "No such device"),
    QT_TRANSLATE_NOOP("Reason", "No such device or address"),
    QT_TRANSLATE_NOOP("Reason", "Invalid argument"),
    QT_TRANSLATE_NOOP("Reason", "Invalid cross-device link"),
    QT_TRANSLATE_NOOP("Reason", "Operation not supported"),
    QT_TRANSLATE_NOOP("Reason", "Function not implemented"),
    QT_TRANSLATE_NOOP("Reason", "Too many open files"),
    QT_TRANSLATE_NOOP("Reason", "Too many open files in system"),
    QT_TRANSLATE_NOOP("Reason", "Cannot allocate memory"),
    QT_TRANSLATE_NOOP("Reason", "Resource temporarily unavailable"),
    QT_TRANSLATE_NOOP("Reason", "Stale file handle"),
    QT_TRANSLATE_NOOP("Reason", "Transport endpoint is not connected"),
    QT_TRANSLATE_NOOP("Reason", "Connection timed out"),
    QT_TRANSLATE_NOOP("Reason", "Host is down"),
};

// Those that end in what they concern, which may be a reason again.
constexpr std::array beginnings{
    QT_TRANSLATE_NOOP("Reason", "no trash on its volume: %1"),
    QT_TRANSLATE_NOOP("Reason", "the tool could not be started: %1"),
    QT_TRANSLATE_NOOP("Reason", "the tool was ended by signal %1"),
    QT_TRANSLATE_NOOP("Reason", "the tool ended with status %1"),
    QT_TRANSLATE_NOOP("Reason", "The system runs from this drive: %1"),
    QT_TRANSLATE_NOOP("Reason", "Another volume is mounted on it at %1"),
    QT_TRANSLATE_NOOP("Reason", "it is mounted on %1"),
    QT_TRANSLATE_NOOP("Reason", "In use: %1"),
    QT_TRANSLATE_NOOP("Reason", "another device is made of it: %1"),
    QT_TRANSLATE_NOOP("Reason", "a disk image on it is attached: %1"),
    QT_TRANSLATE_NOOP("Reason", "The volume is unmounted, but its drive stays: %1"),
    QT_TRANSLATE_NOOP("Reason", "Unknown error %1"),
    QT_TRANSLATE_NOOP("Reason", "the list of what is always kept can not be read: %1"),
    QT_TRANSLATE_NOOP("Reason", "Could not be looked through and is not offered: %1"),
};

// Sentences with names in them, those first that say more. What is filled in last may be a reason
// again.
constexpr std::array sentences{
    QT_TRANSLATE_NOOP("Reason", "%1 stays: %2 is a link to it"),
    QT_TRANSLATE_NOOP(
        "Reason",
        "The data of %1 are kept in a snapshot for 31 days, unless snapshots are switched off"),
    QT_TRANSLATE_NOOP("Reason", "What %1 keeps in the home stays where it is not ticked"),
    QT_TRANSLATE_NOOP("Reason", "The installation of flatpak in %1 can not be read"),
    QT_TRANSLATE_NOOP("Reason", "It is installed in %1, from where flatpak itself removes"),
    QT_TRANSLATE_NOOP("Reason", "Files of the package %1 go only with that package"),
    QT_TRANSLATE_NOOP("Reason", "A link leads to it, which is left alone: %1"),
    QT_TRANSLATE_NOOP("Reason", "Nobody can tell whether a package has brought it: %1"),
    QT_TRANSLATE_NOOP("Reason", "Nobody can tell whether it is gone: %1"),
    QT_TRANSLATE_NOOP("Reason", "More than a removal would be done to %1"),
    QT_TRANSLATE_NOOP("Reason",
                      "Another package went as well: %1; The removal of packages could not be "
                      "stopped any more"),
    QT_TRANSLATE_NOOP("Reason", "Another package went as well: %1"),
    QT_TRANSLATE_NOOP("Reason", "There are several packages %1"),
    QT_TRANSLATE_NOOP("Reason", "%1 could not be looked at: %2"),
    QT_TRANSLATE_NOOP("Reason", "%1 could not be read"),
    QT_TRANSLATE_NOOP("Reason",
                      "What is left in the home is not offered, since others may use it: %1"),
    QT_TRANSLATE_NOOP("Reason", "The service that removes packages says: %1"),
    QT_TRANSLATE_NOOP("Reason", "The snap service says: %1"),
    QT_TRANSLATE_NOOP("Reason", "it is named as the identifier of %1"),
    QT_TRANSLATE_NOOP("Reason", "it is named as the package %1, which is not installed any more"),
    QT_TRANSLATE_NOOP("Reason", "it is named as the package %1"),
    QT_TRANSLATE_NOOP("Reason", "it is named as the program of %1"),
    QT_TRANSLATE_NOOP("Reason", "the cache of %1"),
    QT_TRANSLATE_NOOP("Reason", "%1 is not installed any more"),
    QT_TRANSLATE_NOOP("Reason", "%1 is the program that runs"),
    QT_TRANSLATE_NOOP("Reason", "%1 is never removed"),
    QT_TRANSLATE_NOOP("Reason", "it is %1 by another path"),
    QT_TRANSLATE_NOOP("Reason", "The removal of %1 could not be stopped any more"),
    QT_TRANSLATE_NOOP("Reason", "%1 lies in its folder"),
    QT_TRANSLATE_NOOP("Reason", "%1 would go along: %2"),
    QT_TRANSLATE_NOOP("Reason", "%1 stays: %2"),
};

struct Form {
    const char* sentence;
    QRegularExpression expression;
};

// Made once: rows of lists say their reasons at each refresh.
const std::vector<Form>& forms() {
    static const std::vector<Form> made = [] {
        std::vector<Form> out;
        for (const char* const sentence : sentences) {
            QString form = QRegularExpression::escape(QString::fromLatin1(sentence));
            for (const char* const each : {"\\%1", "\\%2"})
                form.replace(QLatin1String(each), QStringLiteral("(.+)"));
            out.push_back(
                {sentence, QRegularExpression(QRegularExpression::anchoredPattern(form))});
        }
        return out;
    }();
    return made;
}

}  // namespace

QString inWords(const std::string& reason) {
    if (reason.empty()) return {};
    for (const char* const known : whole)
        if (reason == known) return QCoreApplication::translate(context, known);
    constexpr std::size_t filledIn = 2;  // "%1" at the end
    for (const char* const known : beginnings) {
        const std::string_view beginning(known, std::string_view(known).size() - filledIn);
        if (reason.starts_with(beginning))
            return QCoreApplication::translate(context, known)
                .arg(inWords(reason.substr(beginning.size())));
    }
    QString said = QString::fromStdString(reason);
    for (const Form& form : forms()) {
        const QStringList names = form.expression.match(said).capturedTexts().mid(1);
        if (names.isEmpty()) continue;
        const QString known = QCoreApplication::translate(context, form.sentence);
        const QString last = inWords(names.last().toStdString());
        return names.size() == 1 ? known.arg(last) : known.arg(names.first(), last);
    }
    return said;
}

}  // namespace orrinvale
