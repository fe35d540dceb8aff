#pragma once
// The desktop front's message boxes and questions, and its fatal error box.

#include "scheduler/Prompter.h"

class GuiPrompter : public Prompter
{
public:
    void ShowMessage(const QString &title, const QString &text, Icon icon = Icon::Information) override;
    bool AskYesNo(const QString &title, const QString &text) override;
    bool AskOkCancel(const QString &title, const QString &text) override;
    // Writes the failure to standard error, shows it and ends the process with status 1.
    void FatalError(const QorloError &error) override;
    void SetBusy(bool busy) override;
    QString AskOpenFileName(const QString &title, const QString &folder, const QString &filter) override;
    QString AskFolder(const QString &title, const QString &folder) override;
    QString AskSaveFileName(const QString &title, const QString &folder, const QString &filter) override;
};
