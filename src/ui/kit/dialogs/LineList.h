// LineList: a plain window with lines to read and to copy: what could not be read, what could not be removed.
#pragma once

#include <QStringList>

class QWidget;

namespace orrinvale {

/// Opens a window of its own, not modal, that deletes itself when it is closed; Escape closes it. Main thread only.
void showLineList(QWidget* parent, const QString& title, const QStringList& lines);

}  // namespace orrinvale
