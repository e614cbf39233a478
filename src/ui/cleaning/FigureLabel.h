// FigureLabel: a sentence of the page whose figures stand out.
#pragma once

#include <QLabel>
#include <QStringList>
#include <map>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

/// Nothing of the words is read as markup. To screen readers it is the plain sentence. Main thread
/// only.
class FigureLabel final : public QLabel {
    Q_OBJECT
public:
    explicit FigureLabel(QWidget* parent = nullptr);

    /// `pattern` has %1 to %9 where the figures go. The first figure may stand in larger type.
    void showSentence(const QString& pattern, const QStringList& figures,
                      bool isFirstLarge = false);
    /// As a person reads it; empty before.
    [[nodiscard]] const QString& sentence() const { return m_sentence; }

    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void draw();

    QString m_pattern, m_sentence;
    QStringList m_figures;
    bool m_isFirstLarge = false;
    mutable std::map<int, int> m_heights;  // by width
};

}  // namespace orrinvale
