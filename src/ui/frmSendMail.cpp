#include "frmSendMail.h"

#include "DialogButtons.h"
#include "TabOrder.h"
#include "MailClientEvents.h"

#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"
#include "mail/SmtpLog.h"
#include "mail/clsSendMail.h"
#include "run/MailSources.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

frmSendMail::frmSendMail(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmSendMail"));
    setWindowTitle(QStringLiteral("Send Help Message"));
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("txtSend"));
    m_text->setTabChangesFocus(true);
    auto *caption = new QLabel(QStringLiteral("&Message to the QorloMANAGER support team"), this);
    caption->setBuddy(m_text);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *send = AddButton(buttons, "cmdSend", QStringLiteral("&Send"), [this] { cmdSend_Click(); });
    QPushButton *exit = AddButton(
        buttons, "cmdExit", QStringLiteral("E&xit"), [this] { reject(); }, QDialogButtonBox::RejectRole);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(caption);
    layout->addWidget(m_text);
    layout->addWidget(buttons);
    SetTabOrder({m_text, send, exit});
}

void frmSendMail::ClearMessage()
{
    m_text->clear();
    m_text->setFocus();
}

// The window closes whether the message went or not; a failure has shown its box by then.
void frmSendMail::cmdSend_Click()
{
    const QString text = m_text->toPlainText();
    if (text.isEmpty())
        m_globals.prompter.ShowMessage(QStringLiteral("Send Help message"),
                                       QStringLiteral("No Message to send"));
    else
        SendHelpMessage(text);
    close();
}

// The server and sender are the schedule's, as for every mail of a run.
void frmSendMail::SendHelpMessage(const QString &text)
{
    SmtpLog::StartSmtpLog(QStringLiteral("Sending Help Message"));
    const SmtpSettings settings = MailSources::ServerSettings(m_globals.Schedule);
    MailClientEvents events(m_globals.prompter, m_globals.AppPath);
    clsSendMail &mail = events.poSendMail();
    mail.SetSMTPHost(settings.server);
    mail.SetFrom(settings.from);
    settings.ApplyTo(mail);
    mail.SetRecipient(QStringLiteral(QORLO_SUPPORT_MAILBOX));
    mail.SetSubject(QStringLiteral("QorloMANAGER help request "));
    mail.SetMessage(text);
    mail.Send();
}
