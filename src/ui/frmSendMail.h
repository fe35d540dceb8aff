#pragma once
// The help message window: sends the operator's free text to the maker's support mailbox.

#include <QDialog>

class QorloGlobals;
class QPlainTextEdit;

class frmSendMail : public QDialog
{
    Q_OBJECT
public:
    explicit frmSendMail(QorloGlobals &globals, QWidget *parent = nullptr);

    // An empty message box, as each opening of the window shows it.
    void ClearMessage();

private:
    void cmdSend_Click();

    QorloGlobals &m_globals;
    QPlainTextEdit *m_text = nullptr;
};
