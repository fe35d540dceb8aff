#include "GuiPrompter.h"

#include "core/QorloError.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QTextStream>

#include <cstdlib>

namespace {

QMessageBox::Icon BoxIcon(Prompter::Icon icon)
{
    switch (icon) {
    case Prompter::Icon::Warning: return QMessageBox::Warning;
    case Prompter::Icon::Critical: return QMessageBox::Critical;
    case Prompter::Icon::Information: break;
    }
    return QMessageBox::Information;
}

// Boxes are modal: the core waits for the operator's answer before it goes on.
QMessageBox::StandardButton Ask(QMessageBox::Icon icon, const QString &title, const QString &text,
                                QMessageBox::StandardButtons buttons)
{
    QMessageBox box(icon, title, text, buttons, QApplication::activeWindow());
    return QMessageBox::StandardButton(box.exec());
}

} // namespace

void GuiPrompter::ShowMessage(const QString &title, const QString &text, Icon icon)
{
    Ask(BoxIcon(icon), title, text, QMessageBox::Ok);
}

bool GuiPrompter::AskYesNo(const QString &title, const QString &text)
{
    return Ask(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

bool GuiPrompter::AskOkCancel(const QString &title, const QString &text)
{
    return Ask(QMessageBox::Question, title, text, QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

void GuiPrompter::FatalError(const QorloError &error)
{
    QTextStream(stderr) << error.runTimeText() << Qt::endl;
    Ask(QMessageBox::Critical, QStringLiteral("QorloMANAGER"), error.runTimeText(), QMessageBox::Ok);
    std::exit(1);
}

void GuiPrompter::SetBusy(bool busy)
{
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

QString GuiPrompter::AskOpenFileName(const QString &title, const QString &folder, const QString &filter)
{
    return QFileDialog::getOpenFileName(QApplication::activeWindow(), title, folder, filter);
}

QString GuiPrompter::AskFolder(const QString &title, const QString &folder)
{
    return QFileDialog::getExistingDirectory(QApplication::activeWindow(), title, folder);
}

QString GuiPrompter::AskSaveFileName(const QString &title, const QString &folder, const QString &filter)
{
    return QFileDialog::getSaveFileName(QApplication::activeWindow(), title, folder, filter);
}
