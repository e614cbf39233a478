// The names of all settings. Code names a setting by its constant, so that each text stands in one
// place.
#pragma once

namespace orrinvale {

inline constexpr const char* ZvDisplayTypeKey =
    "DisplayType";  ///< integer: style of the volume views
inline constexpr const char* ZvSpaceAlarmKey =
    "SpaceAlarm";  ///< float: warn below this share of free space
inline constexpr const char* ZvMemoryAlarmKey =
    "MemoryAlarm";  ///< float: warn below this share of free memory
inline constexpr const char* ZvSystemCachesKey =
    "SystemCaches";  ///< 0, 1 or 2: none, all or some rows ticked
inline constexpr const char* ZvUserCachesKey = "UserCaches";        ///< as ZvSystemCachesKey
inline constexpr const char* ZvSystemLogsKey = "SystemLogs";        ///< as ZvSystemCachesKey
inline constexpr const char* ZvUserLogsKey = "UserLogs";            ///< as ZvSystemCachesKey
inline constexpr const char* ZvUserTrashKey = "UserTrash";          ///< as ZvSystemCachesKey
inline constexpr const char* ZvUserDownloadsKey = "UserDownloads";  ///< as ZvSystemCachesKey
inline constexpr const char* ZvLoginCheckKey = "LoginCheck";     ///< int: 1 when started at login
inline constexpr const char* ZvMyMacClicked = "ZvMyMacClicked";  ///< int: registered, not read yet
inline constexpr const char* ZvLoginItemIsHide =
    "ZvLoginItemIsHide";  ///< boolean: hidden when started at login
inline constexpr const char* ZvLastClickRow =
    "ZvLastClickRow";  ///< int: row of the cleaning window's left table
inline constexpr const char* ZvUserAllDiskItemArr =
    "ZvUserAllDiskItemArr";  ///< nothing is stored under it
inline constexpr const char* ZvUninstall =
    "ZvUninstall";  ///< int: click state of the uninstaller entry
inline constexpr const char* ZvFreeSpace =
    "ZvFreeSpace";  ///< int: click state of the free space entry
inline constexpr const char* ZvToobarItem =
    "ZvToolbarItem";  ///< int: pane of the preferences window
inline constexpr const char* ZvToobarItem_app =
    "ZvToolbarItem_app";  ///< int: registered, not read yet
inline constexpr const char* ZvDuplicationLimit =
    "ZvDuplicationLimit";  ///< int, in units of ZvDuplicatesUnit
inline constexpr const char* ZvHidenDuplication =
    "ZvHidenDuplication";  ///< boolean: duplicates among hidden files
inline constexpr const char* ZvSystemDuplication =
    "ZvSystemDuplication";  ///< boolean: duplicates among system files
inline constexpr const char* ZvDuplicatesUnit =
    "ZvDuplicatesUnit";  ///< int: a tag of sizeUnitFactor()
/// Boolean. True hides the status item: the accessors' names are right and the key's is not.
inline constexpr const char* ZvShowStatusItem = "ZvShowStatusItem";
inline constexpr const char* ZvDiskUsageLimit =
    "ZvDiskUsageLimit";  ///< int, in units of ZvDiskUsageUnit
inline constexpr const char* ZvDiskUsageUnit =
    "ZvDiskUsageUnit";  ///< int: a tag of sizeUnitFactor()

inline constexpr const char* SUEnableAutomaticChecks = "SUEnableAutomaticChecks";  ///< boolean
inline constexpr const char* SUScheduledCheckInterval =
    "SUScheduledCheckInterval";  ///< integer: a pop-up tag

/// Boolean: the bytes of a copy and of one that stays are compared once more before the copy is
/// removed.
inline constexpr const char* compareBeforeRemovingKey = "compareBeforeRemoving";
/// Boolean: the duplicate page offers the trash first, and the removal for good second.
inline constexpr const char* trashFirstKey = "trashFirst";

/// Boolean: the duplicate page tells of folders that are equal as wholes, in place of their files.
inline constexpr const char* wholeFoldersKey = "wholeFolders";
/// Boolean: its groups stand in the order of what their removal gives.
inline constexpr const char* gainFirstKey = "gainFirst";

/// Boolean: searches for duplicates remember hashes of what they read, see HashCache.
inline constexpr const char* rememberContentsKey = "rememberContents";

/// Boolean: a word on the desktop when a disk falls to ZvSpaceAlarmKey.
inline constexpr const char* spaceWarningsKey = "spaceWarnings";
inline constexpr const char* warnedVolumesKey =
    "warnedVolumes";  ///< text: who was warned of, see LowSpace

/// Boolean, or the word of keepRunning.h: whether the program goes on when its window is closed
/// and no tray shows it; nothing means that it asks.
inline constexpr const char* keepRunningKey = "keepRunning";

/// Boolean: the disk usage page stays on the file system that its scan starts on.
inline constexpr const char* oneFileSystemKey = "oneFileSystem";
/// Boolean: finished scans of the disk usage page are kept, to be compared with.
inline constexpr const char* rememberScansKey = "rememberScans";
inline constexpr const char* logKey =
    "log";  ///< boolean: a line in the log for each step of a search
/// Text: a log file "auto"matically where nothing else keeps the lines, "always" or "never".
inline constexpr const char* logFileKey = "logFile";
inline constexpr const char* themeKey = "theme";        ///< text: desktop, light or dark
inline constexpr const char* languageKey = "language";  ///< text: desktop, en or de

// Of the preferences window.
inline constexpr const char* openAtStartupKey = "openAtStartup";  ///< boolean: open it at start
inline constexpr const char* fadeKey = "fade";                    ///< boolean: panes cross-fade
inline constexpr const char* shiftSlowsAnimationKey =
    "shiftSlowsAnimation";  ///< boolean: Shift slows the change
inline constexpr const char* DBPreferencesToolbarKey =
    "DBPreferencesToolbar";  ///< int: a ToolbarDisplay

}  // namespace orrinvale
