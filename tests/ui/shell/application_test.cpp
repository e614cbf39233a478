// The editing keys in a window without an Edit menu.
#include <QLineEdit>
#include <QTest>

#include "support/test.h"
#include "ui/shell/MyNSApplication.h"

namespace orrinvale {
namespace {

TEST(EditingKeys, AreToldFromTheKeyAndWhatIsHeld) {
    const Qt::KeyboardModifiers none, control = Qt::ControlModifier, shift = Qt::ShiftModifier,
                                      alt = Qt::AltModifier;
    const struct {
        int key;
        Qt::KeyboardModifiers held;
        const char* text;
        EditAction action;
    } cases[] = {
        {Qt::Key_X, control, "\x18", EditAction::Cut},
        {Qt::Key_C, control, "\x03", EditAction::Copy},
        {Qt::Key_V, control, "\x16", EditAction::Paste},
        {Qt::Key_Z, control, "\x1a", EditAction::Undo},
        {Qt::Key_A, control, "\x01", EditAction::SelectAll},
        {Qt::Key_B, control, "\x02", EditAction::None},
        {Qt::Key_Z, control | shift, "\x1a", EditAction::Redo},
        {Qt::Key_Z, shift, "Z", EditAction::Redo},
        {Qt::Key_Z, alt | shift, "Z", EditAction::Redo},
        {Qt::Key_Z, none, "z", EditAction::None},
        {Qt::Key_X, control | shift, "\x18", EditAction::None},
        {Qt::Key_C, control | alt, "c", EditAction::None},
        {Qt::Key_C, control | Qt::KeypadModifier, "", EditAction::Copy},
        {Qt::Key_1, control, "1", EditAction::None},
    };
    for (const auto& each : cases)
        EXPECT_EQ(editAction(QKeyEvent(QEvent::KeyPress, each.key, each.held,
                                       QString::fromLatin1(each.text))),
                  each.action)
            << each.key << " " << each.held;
}

TEST(EditingKeys, ReachTheFieldWithTheKeyboardOrAreTyped) {
    ASSERT_NE(qobject_cast<MyNSApplication*>(qApp), nullptr);
    QLineEdit field;
    field.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&field));
    const auto key = [&](Qt::Key each, Qt::KeyboardModifiers held) {
        QTest::keyClick(&field, each, held);
    };
    QTest::keyClicks(&field, QStringLiteral("ab"));
    QTest::keyClick(&field, 'Z', Qt::ShiftModifier);
    EXPECT_EQ(field.text(), QStringLiteral("abZ")) << "with nothing to do again it is a letter";
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field.text(), QString());
    QTest::keyClick(&field, 'Z', Qt::ShiftModifier);
    EXPECT_EQ(field.text(), QStringLiteral("abZ"));
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(field.text(), QString());
    key(Qt::Key_V, Qt::ControlModifier);
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field.text(), QStringLiteral("abZabZ"));
    field.setReadOnly(true);
    key(Qt::Key_A, Qt::ControlModifier);
    for (const Qt::Key each : {Qt::Key_X, Qt::Key_V, Qt::Key_Z}) {
        key(each, Qt::ControlModifier);
        EXPECT_EQ(field.text(), QStringLiteral("abZabZ")) << each;
    }
}

}  // namespace
}  // namespace orrinvale
