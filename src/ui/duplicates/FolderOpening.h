// FolderOpening: lists what lies in folders that are opened in the list of duplicates.
#pragma once

#include <QObject>
#include <deque>
#include <vector>

#include "ui/duplicates/OpenedFolders.h"

class QModelIndex;

namespace orrinvale {

class DuplicateResultModel;
struct PageServices;

/// On threads of its own, a few at a time, so that a disk that hangs holds up neither the list nor,
/// once what waits for it is closed, the other folders. Main thread only.
class FolderOpening final : public QObject {
public:
    /// Both outlive it.
    FolderOpening(const PageServices& services, DuplicateResultModel& model);

    /// Does nothing for what is no folder, or is open already.
    void open(const QModelIndex& row);
    void close(const QModelIndex& row);

private:
    void listNext();
    void list(const OpenedFolders::Stop& opening);

    const PageServices& m_services;
    DuplicateResultModel& m_model;
    std::deque<OpenedFolders::Stop> m_waiting;
    std::vector<OpenedFolders::Stop> m_running;  // with those closed that a disk still holds
};

}  // namespace orrinvale
