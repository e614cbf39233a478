// One text field and not a list, so that any part of the lines can be marked and copied.
#include "ui/kit/dialogs/LineList.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

struct LineList {
    Q_DECLARE_TR_FUNCTIONS(LineList)
};

constexpr QSize usualSize{620, 380};

}  // namespace

QStringList linesOf(const std::vector<Error>& errors) {
    QStringList lines;
    for (const Error& error : errors)
        lines.push_back(inWords(error.reason()) + QStringLiteral(": ") +
                        onOneLine(QString::fromStdString(error.path)));
    return lines;
}

QDialog* showLineList(QWidget* parent, const QString& title, const QStringList& lines) {
    auto* const dialog = new QDialog(parent != nullptr ? parent->window() : nullptr);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(QStringLiteral("lineList"));
    dialog->setWindowTitle(title);
    auto* const heading = new QLabel(title);
    heading->setFont(Theme::shared().font(Theme::Text::Heading));
    auto* const text = new QPlainTextEdit;
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setPlainText(lines.join(QLatin1Char('\n')));
    text->setAccessibleName(title);
    auto* const copy = new TextImageButton(LineList::tr("Copy"));
    auto* const close = new TextImageButton(LineList::tr("Close"), TextImageButton::Role::Primary);
    close->setDefault(true);
    QObject::connect(copy, &QAbstractButton::clicked, text,
                     [text] { QGuiApplication::clipboard()->setText(text->toPlainText()); });
    QObject::connect(close, &QAbstractButton::clicked, dialog, &QDialog::close);

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(copy);
    buttons->addWidget(close);
    auto* const column = new QVBoxLayout(dialog);
    column->setContentsMargins(Theme::gapLarge, Theme::gapLarge, Theme::gapLarge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    column->addWidget(heading);
    column->addWidget(text);
    column->addLayout(buttons);
    dialog->resize(usualSize);
    dialog->show();
    return dialog;
}

void setLinesOf(QDialog& lineList, const QStringList& lines) {
    lineList.findChild<QPlainTextEdit*>()->setPlainText(lines.join(QLatin1Char('\n')));
}

}  // namespace orrinvale
