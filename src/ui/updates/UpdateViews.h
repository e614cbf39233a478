// UpdateViews: the controls of the window that looks for a newer version, and how they lie.
#pragma once

#include <QString>
#include <functional>

#include "engine/updates/NewVersion.h"

class QFont;
class QLabel;
class QScrollArea;
class QWidget;

namespace orrinvale {

class Spinner;
class TCImageWindow;
class TextImageButton;

/// The controls belong to the window. Of the four views one is to be seen at a time.
struct UpdateViews {
    QWidget* checkProgressView = nullptr;
    QWidget* noNetworkView = nullptr;
    QWidget* noUpdateView = nullptr;
    QWidget* haveUpdateView = nullptr;
    QLabel* titleLabel = nullptr;  ///< in the title bar
    Spinner* progressBar = nullptr;
    QLabel* noUpdateTitle = nullptr;
    QLabel* noUpdateText = nullptr;
    QLabel* titleLable = nullptr;                  ///< the headline of a new version
    QLabel* versionLabel = nullptr;                ///< over the list
    QScrollArea* changeValueScrollView = nullptr;  ///< scrolls the list
    QWidget* showVersionScrollView = nullptr;      ///< the list
    TextImageButton* updateClickHere = nullptr;
};

/// Gives the window its title bar and its contents; no view is to be seen yet. `close` is what the
/// buttons of three views do.
[[nodiscard]] UpdateViews makeUpdateViews(TCImageWindow& window,
                                          const std::function<void()>& close);

/// Makes the window as high as the view that is to be seen wants to be.
void fitUpdateWindow(TCImageWindow& window);

/// The rows of the list, from the top down, in place of those before.
void fillChanges(const UpdateViews& views, const NewVersion& version);

/// Of the text, broken at words and in words that are longer than a line.
[[nodiscard]] double heightForStringDrawing(const QString& text, const QFont& font, double width);

}  // namespace orrinvale
