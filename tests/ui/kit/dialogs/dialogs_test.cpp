// Sheets as a user has them: keys, focus, what stays out of reach; the choice of folders; and the
// recorder that pages' tests use.
#include <gtest/gtest-spi.h>

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QVBoxLayout>

#include "support/test.h"
#include "ui/kit/chrome/SheetHost.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/support/RecordedDialogs.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

using testing::RecordedDialogs;

class HostWindow : public QWidget, public SheetHost {
public:
    HostWindow()
        : field(new QLineEdit(this)), button(new QPushButton(QStringLiteral("Remove"), this)) {
        auto* column = new QVBoxLayout(this);
        column->addWidget(field);
        column->addWidget(button);
        column->addStretch();
        resize(600, 400);
        show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(this));
        button->setFocus();
    }
    QRect sheetArea() const override { return rect().adjusted(0, 36, 0, 0); }
    Sheet* sheet() const { return findChild<Sheet*>(); }

    QLineEdit* const field;
    QPushButton* const button;
};

Alert question() {
    Alert alert;
    alert.title = QStringLiteral("Remove all?");
    alert.text = QStringLiteral(" ");
    alert.buttons = QStringList{QStringLiteral("Sure"), QStringLiteral("Cancel")};
    alert.cancelButton = 1;
    return alert;
}

void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

TEST(WindowDialogs, KeysChooseTheButton) {
    const struct {
        const char* name;
        int cancelButton;
        QStringList buttons;
        QList<Qt::Key> keys;
        int answer;  // -2: the sheet stays
    } cases[] = {
        {"Enter takes the default", 1, {}, {Qt::Key_Return}, 0},
        {"the other Enter too", 1, {}, {Qt::Key_Enter}, 0},
        {"Escape cancels", 1, {}, {Qt::Key_Escape}, 1},
        {"Tab and space", 1, {}, {Qt::Key_Tab, Qt::Key_Space}, 1},
        {"Enter presses the button that the keyboard is on",
         1,
         {},
         {Qt::Key_Tab, Qt::Key_Return},
         1},
        {"Tab goes round", 1, {}, {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Return}, 0},
        {"and back", 1, {}, {Qt::Key_Backtab, Qt::Key_Return}, 1},
        {"no cancel button", -1, {}, {Qt::Key_Escape}, -2},
        {"the only button cancels", -1, {QStringLiteral("OK")}, {Qt::Key_Escape}, 0},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        HostWindow window;
        WindowDialogs dialogs;
        Alert alert = question();
        alert.cancelButton = each.cancelButton;
        if (!each.buttons.isEmpty()) alert.buttons = each.buttons;
        QList<int> answers;
        dialogs.alert(window.button, alert, [&](int button) { answers.append(button); });
        for (const Qt::Key key : each.keys) press(key);
        EXPECT_TRUE(answers.isEmpty()) << "nothing is answered within the call";
        if (each.answer == -2) {
            QTest::qWait(300);  // longer than a sheet takes to leave
            EXPECT_TRUE(answers.isEmpty());
            continue;
        }
        press(Qt::Key_Return);  // comes too late
        ASSERT_SOON(window.sheet() == nullptr);
        EXPECT_EQ(answers, QList<int>{each.answer});
        EXPECT_EQ(QApplication::focusWidget(), window.button);
    }
}

TEST(WindowDialogs, ThePageIsOutOfReachMeanwhile) {
    HostWindow window;
    QAction shortcut(&window);
    shortcut.setShortcut(QKeySequence(Qt::Key_F5));
    window.addAction(&shortcut);
    const QSignalSpy triggered(&shortcut, &QAction::triggered),
        clicked(window.button, &QPushButton::clicked);
    press(Qt::Key_F5);
    ASSERT_EQ(triggered.count(), 1) << "the shortcut works without a sheet";

    WindowDialogs dialogs;
    bool isAnswered = false;
    dialogs.alert(&window, question(), [&](int) { isAnswered = true; });
    ASSERT_SOON(window.sheet()->content()->y() == 0);
    EXPECT_EQ(window.sheet()->geometry(), window.sheetArea());
    EXPECT_EQ(window.childAt(window.button->geometry().center())->window(), &window);
    EXPECT_NE(window.childAt(window.button->geometry().center()), window.button);
    press(Qt::Key_F5);
    EXPECT_EQ(triggered.count(), 1);

    // The Enter that opened the sheet is still held down.
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(QApplication::focusWidget(), &held);
    // The page asks for the keyboard: it has to wait for the end.
    window.field->setFocus();
    EXPECT_TRUE(window.sheet()->isAncestorOf(QApplication::focusWidget()));
    window.resize(700, 500);
    EXPECT_SOON(window.sheet()->geometry() == window.sheetArea());
    EXPECT_FALSE(isAnswered);
    press(Qt::Key_Return);
    EXPECT_SOON(isAnswered);
    EXPECT_EQ(QApplication::focusWidget(), window.field);
    EXPECT_EQ(clicked.count(), 0);
}

TEST(WindowDialogs, ASecondSheetLiesOverTheFirst) {
    HostWindow window;
    WindowDialogs dialogs;
    QStringList order;
    dialogs.alert(&window, question(), [&](int) { order << QStringLiteral("first"); });
    QWidget* const firstButton = QApplication::focusWidget();
    dialogs.alert(&window, question(), [&](int) { order << QStringLiteral("second"); });
    EXPECT_NE(QApplication::focusWidget(), firstButton);
    press(Qt::Key_Escape);
    ASSERT_SOON(order.size() == 1);
    EXPECT_EQ(QApplication::focusWidget(), firstButton);
    press(Qt::Key_Return);
    ASSERT_SOON(order.size() == 2);
    EXPECT_EQ(order, (QStringList{QStringLiteral("second"), QStringLiteral("first")}));
    EXPECT_EQ(QApplication::focusWidget(), window.button);
}

TEST(WindowDialogs, ALinkLeavesTheQuestionOpen) {
    HostWindow window;
    WindowDialogs dialogs;
    Alert alert = question();
    int visits = 0, answer = -2;
    alert.linkText = QStringLiteral("View & think");
    alert.linkAction = [&] { ++visits; };
    dialogs.alert(&window, alert, [&](int button) { answer = button; });
    const auto buttons = window.findChildren<TextImageButton*>();
    const auto link = std::ranges::find_if(buttons, [](const TextImageButton* each) {
        return each->role() == TextImageButton::Role::Link;
    });
    ASSERT_NE(link, buttons.end());
    ASSERT_SOON(window.sheet()->content()->y() == 0);
    QTest::mouseClick(*link, Qt::LeftButton);
    QTest::mouseClick(*link, Qt::LeftButton);
    EXPECT_EQ(visits, 2);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(*link)->text(QAccessible::Name),
              alert.linkText);
    press(Qt::Key_Escape);
    ASSERT_SOON(answer != -2);
    EXPECT_EQ(answer, 1);
}

TEST(WindowDialogs, AWindowThatEndsTakesItsQuestionsAlong) {
    auto window = std::make_unique<HostWindow>();
    WindowDialogs dialogs;
    int answers = 0;
    dialogs.alert(window.get(), question(), [&](int) { ++answers; });
    press(Qt::Key_Return);  // on its way out
    window.reset();
    QTest::qWait(300);
    EXPECT_EQ(answers, 0);
    dialogs.alert(nullptr, question(), [&](int button) { answers += 10 + button; });
    EXPECT_SOON(answers != 0);
    EXPECT_EQ(answers, 11) << "with no window at all it is cancelled";
}

TEST(WindowDialogs, AFolderIsChosenByItsBytes) {
    TestTree tree;
    ASSERT_TRUE(tree.folder("Bücher & Co") && tree.symlink("Bücher & Co", "link") &&
                tree.write("file", "x"));
    const struct {
        const char* entry;
        bool withFiles;
        Strings chosen;
    } cases[] = {
        {"Bücher & Co", false, {tree.at("Bücher & Co")}},
        {"link", false, {tree.at("Bücher & Co")}},
        {"file", true, {tree.at("file")}},
        {"Bücher & Co", true, {tree.at("Bücher & Co")}},
        {"gone", false, {}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.entry);
        HostWindow window;
        WindowDialogs dialogs;
        PathChoice choice;
        choice.directory = tree.path();
        choice.withFiles = each.withFiles;
        std::vector<Strings> results;
        dialogs.choosePaths(window.button, choice,
                            [&](auto paths) { results.push_back(std::move(paths)); });
        auto* chooser = window.findChild<QFileDialog*>();
        ASSERT_NE(chooser, nullptr);
        EXPECT_EQ(chooser->windowTitle(), choice.title);
        EXPECT_EQ(chooser->labelText(QFileDialog::Accept), choice.prompt);
        EXPECT_EQ(chooser->directory().absolutePath().toStdString(), tree.path());
        chooser->findChild<QLineEdit*>()->setText(QString::fromUtf8(each.entry));
        QMetaObject::invokeMethod(chooser, "accept");
        if (each.chosen.empty()) {
            EXPECT_TRUE(results.empty()) << "a wrong name leaves the choice open";
            chooser->reject();
        }
        ASSERT_EQ(results.size(), 1U);
        EXPECT_EQ(results.front(), each.chosen);
    }
}

TEST(RecordedDialogs, AnswersLaterAndKnowsWhatWasAsked) {
    RecordedDialogs dialogs;
    dialogs.willAnswer(0);
    dialogs.willChoose({"/a", "/b"});
    int answer = -2;
    Strings paths;
    dialogs.alert(nullptr, question(), [&](int button) { answer = button; });
    dialogs.choosePaths(nullptr, PathChoice(), [&](auto chosen) { paths = std::move(chosen); });
    EXPECT_EQ(answer, -2);
    QCoreApplication::processEvents();
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(paths, (Strings{"/a", "/b"}));
    EXPECT_EQ(dialogs.alerts().front().title, question().title);
    EXPECT_NONFATAL_FAILURE(dialogs.alert(nullptr, question(), [](int) {}),
                            "unexpected alert: Remove all?");
    EXPECT_NONFATAL_FAILURE(dialogs.choosePaths(nullptr, PathChoice(), [](auto) {}),
                            "unexpected choice");
    EXPECT_NONFATAL_FAILURE(RecordedDialogs().willAnswer(1), "never came");
}

}  // namespace
}  // namespace orrinvale
