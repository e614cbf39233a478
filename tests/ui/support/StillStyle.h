// StillStyle: a desktop on which nothing moves.
#pragma once

#include <QProxyStyle>

namespace orrinvale::testing {

/// Or one on which everything does.
class StillStyle final : public QProxyStyle {
public:
    explicit StillStyle(bool isStill = true) : m_duration(isStill ? 0 : 200) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_Widget_Animation_Duration
                   ? m_duration
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }

private:
    const int m_duration;
};

}  // namespace orrinvale::testing
