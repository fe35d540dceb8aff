#pragma once
// How the core speaks to the operator: message boxes, questions and the fatal error box of a front.

#include <QString>

class QorloError;

class Prompter
{
public:
    enum class Icon { Information, Warning, Critical };

    virtual ~Prompter() = default;
    virtual void ShowMessage(const QString &title, const QString &text, Icon icon = Icon::Information) = 0;
    // True for Yes.
    virtual bool AskYesNo(const QString &title, const QString &text) = 0;
    // True for OK.
    virtual bool AskOkCancel(const QString &title, const QString &text) = 0;
    // A failure that no handler caught: the front shows or prints error.runTimeText() and ends the
    // process with status 1.
    virtual void FatalError(const QorloError &error) = 0;
    // The wait cursor around a run started by hand.
    virtual void SetBusy(bool /*busy*/) {}
    // A file or a folder the operator picks, starting in `folder`; empty when cancelled, and always
    // on a front without dialogs. `filter` is in the form "Name (*.ext);;Other (*)".
    virtual QString AskOpenFileName(const QString & /*title*/, const QString & /*folder*/,
                                    const QString & /*filter*/)
    {
        return QString();
    }
    virtual QString AskFolder(const QString & /*title*/, const QString & /*folder*/) { return QString(); }
    // A file name to write, which need not exist yet; as above.
    virtual QString AskSaveFileName(const QString & /*title*/, const QString & /*folder*/,
                                    const QString & /*filter*/)
    {
        return QString();
    }
};
