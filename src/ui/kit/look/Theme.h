// Theme: the one palette, type scale and spacing of every window, light and dark. Pictures follow
// it, see picture.h.
#pragma once

#include <QColor>
#include <QFont>
#include <QObject>
#include <QPalette>
#include <QPointer>
#include <optional>

class QApplication;

namespace orrinvale {

class DesktopAppearance;

/// What a double click on a title bar does to the window.
enum class TitleDoubleClick { Zoom, Miniaturize, Nothing };

/// Main thread only. One instance a process; changed() tells windows to draw anew.
class Theme final : public QObject {
    Q_OBJECT
public:
    enum class Scheme { Light, Dark };

    /// What a colour is for. Foregrounds on the backgrounds that they are meant for have a contrast
    /// of at least 4.5.
    enum class Color {
        Window,         ///< behind everything
        Surface,        ///< cards, lists, the inside of a view
        SurfaceRaised,  ///< title bar, header rows
        Hover,          ///< a row or a button under the pointer
        Pressed,
        Selection,  ///< behind a selected row
        Line,       ///< hairlines between areas
        Text,
        TextSecondary,  ///< captions, counts, paths
        TextDisabled,
        TextOnAccent,
        Accent,  ///< the one colour that means "this acts"
        AccentHover,
        AccentPressed,
        Danger,  ///< what removes
        DangerHover,
        DangerPressed,
        Success,
        Warning,
        FocusRing,  ///< like Outline, at least 3.0 against every background
        Outline,    ///< the edge of a tick box, a field, a drop target
        Shadow,
        SizeWhite,  ///< sizes of entries, from the smallest to the largest, on all grounds
        SizeGreen,
        SizeYellow,
        SizeOrange,
        SizeRed,
        KindDocuments,  ///< areas that stand for kinds of files, under Text
        KindMusic,
        KindVideos,
        KindArchives,
        KindPictures,
        KindOthers,
        KindLeftOut,  ///< what is there and not listed
        Count
    };

    /// The type scale.
    enum class Text { Caption, Body, BodyStrong, Heading, Title, Display };

    /// Distances in points: every margin and gap is one of these.
    static constexpr int gapTiny = 4, gapSmall = 8, gap = 12, gapLarge = 16, gapHuge = 24,
                         gapSection = 32;
    static constexpr int radiusSmall = 4, radius = 8, radiusWindow = 10;
    static constexpr int rowHeight = 30, controlHeight = 32;

    [[nodiscard]] static Theme& shared();

    /// Fusion with the changes of HouseStyle.h, this palette and this type for the whole program,
    /// in the scheme of the desktop, which is followed from then on. Call before the first window.
    void install(QApplication& application);

    /// What a person has chosen in place of the desktop's; none for that. Takes effect at once.
    void setChosenScheme(std::optional<Scheme> scheme);

    /// The scheme that is asked for: ORRINVALE_THEME=light|dark if set, else the chosen one, else
    /// what the desktop's settings service prefers, else as light or dark as its palette was before
    /// install() covered it. Before install() only the palette is asked.
    [[nodiscard]] static Scheme desktopScheme();

    [[nodiscard]] Scheme scheme() const { return m_scheme; }
    /// Changes palette and pictures of all windows at once and emits changed(); the scheme in force
    /// changes nothing.
    void setScheme(Scheme scheme);

    /// False where the desktop's settings service asks for no animations; mayAnimate() of motion.h
    /// asks others too.
    [[nodiscard]] bool desktopAnimates() const;

    /// The desktop's own setting, known elsewhere as "AppleMiniaturizeOnDoubleClick"; Zoom where it
    /// has none.
    [[nodiscard]] TitleDoubleClick desktopDoubleClick() const;

    [[nodiscard]] QColor color(Color role) const { return color(role, m_scheme); }
    [[nodiscard]] static QColor color(Color role, Scheme scheme);
    /// In points, so that a desktop that scales its text by the resolution scales this too: at 96
    /// dots an inch the steps are 11, 13, 13, 15, 20 and 28 pixels.
    [[nodiscard]] QFont font(Text text) const;
    [[nodiscard]] QPalette palette() const;

Q_SIGNALS:
    void changed();

private:
    Theme() = default;
    void apply() const;

    Scheme m_scheme = Scheme::Light;
    std::optional<Scheme> m_chosenScheme;
    Scheme m_coveredScheme =
        Scheme::Light;  // what the desktop showed before our palette covered it
    QPointer<DesktopAppearance> m_appearance;  // owned by the application
    bool m_installed = false;
};

}  // namespace orrinvale
