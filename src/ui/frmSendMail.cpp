#include "frmSendMail.h"

#include "DialogButtons.h"
#include "SupportMail.h"
#include "TabOrder.h"
#include "MailClientEvents.h"

#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

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
    QPushButton *exit = AddExitButton(buttons, this);

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
        SupportMail::Send(m_globals, QStringLiteral("Sending Help Message"),
                          QStringLiteral("QorloMANAGER help request "), text);
    close();
}
