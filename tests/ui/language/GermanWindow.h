// GermanWindow: what a window says is looked at in German, for text of another language and text
// that is cut off.
#pragma once

#include <QApplication>
#include <QLocale>
#include <QMenu>
#include <QPlainTextEdit>

#include "support/test.h"
#include "ui/kit/dialogs/AlertPanel.h"
#include "ui/kit/look/Translations.h"
#include "ui/language/ShownTexts.h"
#include "ui/support/soon.h"

namespace orrinvale::testing {

class GermanWindow : public ::testing::Test {
protected:
    void SetUp() override {
        if (m_translations.language().isEmpty()) GTEST_SKIP() << "no lrelease here";
        ASSERT_GT(german.size(), 150);
    }

    /// Notes what stands there in another language, and what has too little room.
    void look(const char* where, const QWidget& widget) {
        QApplication::processEvents();
        for (const QString& text : shownTexts(widget)) {
            seen.insert(text);
            // A button of a menu may show what is chosen in it, with its arrow behind.
            const bool isChoice = text.endsWith(QStringLiteral(" \u25BE"));
            if (!german.knows(text) && !(isChoice && german.knows(text.chopped(2))))
                ADD_FAILURE() << where << ": \"" << text.toStdString() << "\" is no German of ours";
        }
        // What has come only now is laid out in turns of its own.
        static_cast<void>(QTest::qWaitFor([&] { return cutTexts(widget).isEmpty(); }, 500));
        for (const QString& text : cutTexts(widget))
            ADD_FAILURE() << where << " cuts off " << text.toStdString();
    }
    void lookAtMenu(const char* where, const QWidget& parent, const char* name = "") {
        auto* const menu = parent.findChild<QMenu*>(QLatin1String(name));
        ASSERT_NE(menu, nullptr) << where;
        look(where, *menu);
        menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    /// As it stands in its sheet.
    void lookAt(const Alert& alert) {
        AlertPanel panel(alert);
        panel.adjustSize();
        panel.show();
        look("alert", panel);
    }
    void lookAtLines(const char* where, QWidget& window) {
        auto* const lines = window.findChild<QWidget*>(QStringLiteral("lineList"));
        ASSERT_NE(lines, nullptr) << where;
        for (const QString& line :
             lines->findChild<QPlainTextEdit*>()->toPlainText().split(QLatin1Char('\n')))
            EXPECT_TRUE(german.knows(line.trimmed())) << where << ": " << line.toStdString();
        look(where, *lines);
        delete lines;
    }
    /// Looks at the menu, and chooses the entry of this text in it.
    void chooseIn(const char* where, const QWidget& parent, const char* name, const char* entry) {
        auto* const menu = parent.findChild<QMenu*>(QLatin1String(name));
        ASSERT_NE(menu, nullptr) << where;
        QAction* chosen = nullptr;
        for (QAction* const each : menu->actions())
            if (each->text() == QString::fromUtf8(entry)) chosen = each;
        ASSERT_NE(chosen, nullptr) << entry;
        look(where, *menu);
        chosen->trigger();
        menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void expectSeen(std::initializer_list<const char*> texts) {
        for (const char* const text : texts)
            EXPECT_TRUE(seen.contains(QString::fromUtf8(text))) << text;
    }

    /// As on a German desktop, dates and figures too.
    struct GermanLocale {
        GermanLocale() { QLocale::setDefault(QLocale(QStringLiteral("de_DE"))); }
        ~GermanLocale() { QLocale::setDefault(before); }
        const QLocale before;
    };

    const GermanLocale m_locale;
    Translations m_translations{QStringList{QStringLiteral("de-DE"), QStringLiteral("de")}};
    const GermanTexts german;
    QSet<QString> seen;
};

}  // namespace orrinvale::testing
