// An editing key calls the slot of that name of whatever has the focus, so that any class of field
// takes part.
#include "ui/shell/MyNSApplication.h"

#include <QLineEdit>
#include <QMetaMethod>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <QWidget>

namespace orrinvale {
namespace {

const char* slotOf(EditAction action) {
    switch (action) {
        case EditAction::Cut: return "cut()";
        case EditAction::Copy: return "copy()";
        case EditAction::Paste: return "paste()";
        case EditAction::Undo: return "undo()";
        case EditAction::SelectAll: return "selectAll()";
        case EditAction::Redo: return "redo()";
        case EditAction::None: break;
    }
    return nullptr;
}

// A field with nothing to do again does not take the action, so that a capital Z is typed as any
// letter.
bool canRedo(const QWidget& widget) {
    if (const auto* const line = qobject_cast<const QLineEdit*>(&widget))
        return line->isRedoAvailable();
    if (const auto* const text = qobject_cast<const QPlainTextEdit*>(&widget))
        return text->document()->isRedoAvailable();
    if (const auto* const text = qobject_cast<const QTextEdit*>(&widget))
        return text->document()->isRedoAvailable();
    return true;
}

EditAction commandAction(const QString& text) {
    if (text == QLatin1String("x")) return EditAction::Cut;
    if (text == QLatin1String("c")) return EditAction::Copy;
    if (text == QLatin1String("v")) return EditAction::Paste;
    if (text == QLatin1String("z")) return EditAction::Undo;
    if (text == QLatin1String("a")) return EditAction::SelectAll;
    return EditAction::None;
}

}  // namespace

EditAction editAction(const QKeyEvent& event) {
    const Qt::KeyboardModifiers held = event.modifiers() & ~Qt::KeypadModifier;
    // With Ctrl the text of a key is a control character; the key's code is the letter without
    // modifiers.
    const bool isLetter = event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z;
    if (held == Qt::ControlModifier) {
        if (!isLetter) return EditAction::None;
        return commandAction(QString(QLatin1Char(static_cast<char>(event.key()))).toLower());
    }
    const bool isCapital = held.testFlag(Qt::ShiftModifier) || event.text() == QLatin1String("Z");
    return event.key() == Qt::Key_Z && isCapital ? EditAction::Redo : EditAction::None;
}

bool MyNSApplication::sendAction(EditAction action, QWidget* to) {
    const char* const slot = slotOf(action);
    if (slot == nullptr || to == nullptr) return false;
    if (action == EditAction::Redo && !canRedo(*to)) return false;
    const auto* const line = qobject_cast<const QLineEdit*>(to);
    const bool onlyReads = action == EditAction::Copy || action == EditAction::SelectAll;
    // The field's own operations do not ask whether a person may change it.
    if (line != nullptr && line->isReadOnly() && !onlyReads) return false;
    const int index = to->metaObject()->indexOfMethod(slot);
    if (index < 0) return false;
    return to->metaObject()->method(index).invoke(to, Qt::DirectConnection);
}

bool MyNSApplication::notify(QObject* receiver, QEvent* event) {
    if (event->type() == QEvent::KeyPress && receiver->isWidgetType()) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (sendAction(editAction(key), focusWidget())) {
            event->accept();
            return true;
        }
    }
    return QApplication::notify(receiver, event);
}

}  // namespace orrinvale
