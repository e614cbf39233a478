// PageWorkings: what pages work with in the gallery.
#pragma once

#include <string>
#include <utility>

#include "engine/base/NotificationCenter.h"
#include "services/foundation/QtMainQueue.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/page/PageServices.h"
#include "ui/shell/FileIcons.h"

namespace orrinvale {

/// Outlives the pages. Main thread only.
struct PageWorkings {
    NotificationCenter notifications;
    QtMainQueue mainQueue;
    WindowDialogs dialogs;
    FileIcons icons;

    /// Over these files and settings, which outlive the pages too. Nothing is opened outside of the
    /// gallery.
    [[nodiscard]] PageServices parts(const FileSystem& files, UserDefaults& defaults,
                                     std::string stateFolder = {}) {
        return {.files = &files,
                .notifications = &notifications,
                .defaults = &defaults,
                .dialogs = &dialogs,
                .mainQueue = &mainQueue,
                .stateFolder = std::move(stateFolder),
                .icons = [this](const IconRequest& request) { return icons.icon(request); },
                .reveal = {},
                .openAddress = {}};
    }
};

}  // namespace orrinvale
