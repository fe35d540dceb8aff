#include "frmSMTP.h"

#include "DialogButtons.h"
#include "MailClientEvents.h"
#include "NamedControls.h"
#include "TabOrder.h"
#include "WindowHandler.h"

#include "core/Numbers.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"
#include "mail/SmtpLog.h"
#include "mail/SmtpSettings.h"
#include "mail/clsSendMail.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {

const QString kSettingsTitle = QStringLiteral("SMTP Settings");

} // namespace

frmSMTP::frmSMTP(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmSMTP"));
    setWindowTitle(kSettingsTitle);
    BuildFields();
    LoadSettings();
}

QLineEdit *frmSMTP::AddLine(const char *name)
{
    auto *field = new QLineEdit(this);
    field->setObjectName(QLatin1String(name));
    return field;
}

void frmSMTP::BuildFields()
{
    m_server = AddLine("txtServer");
    m_port = AddLine("txtPort");
    m_from = AddLine("txtFrom");
    m_testTo = AddLine("txtTestTo");
    m_message = new QPlainTextEdit(this);
    m_message->setObjectName(QStringLiteral("txtMessage"));
    // Tab moves on to the next field, as in every other field of the window.
    m_message->setTabChangesFocus(true);
    m_delay = AddLine("txtDelay");
    m_encryption = NamedList(this, "cmbEncryption",
                             {QStringLiteral("None"), QStringLiteral("STARTTLS"), QStringLiteral("TLS")});
    m_secure = new QCheckBox(QStringLiteral("Server requires authentication"), this);
    m_secure->setObjectName(QStringLiteral("chkSecure"));
    m_user = AddLine("txtUser");
    m_password = AddLine("txtPassword");
    m_password->setEchoMode(QLineEdit::Password);

    m_secureFrame = new QGroupBox(QStringLiteral("Authentication"), this);
    m_secureFrame->setObjectName(QStringLiteral("frSecure"));
    auto *secure = new QFormLayout(m_secureFrame);
    secure->addRow(QStringLiteral("User"), m_user);
    secure->addRow(QStringLiteral("Password"), m_password);
    connect(m_secure, &QCheckBox::toggled, m_secureFrame, &QWidget::setEnabled);

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("SMTP Server"), m_server);
    fields->addRow(QStringLiteral("SMTP Port"), m_port);
    fields->addRow(QStringLiteral("From Address"), m_from);
    fields->addRow(QStringLiteral("Test Address"), m_testTo);
    fields->addRow(QStringLiteral("Standard message"), m_message);
    fields->addRow(QStringLiteral("Delay Between Messages"), m_delay);
    fields->addRow(QStringLiteral("Encryption"), m_encryption);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *save = AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { cmdSave_Click(); });
    QPushButton *test =
        AddButton(buttons, "cmdTest", QStringLiteral("Send &Test Message"), [this] { cmdTest_Click(); });

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(m_secure);
    layout->addWidget(m_secureFrame);
    layout->addWidget(buttons);
    SetTabOrder({m_server, m_port, m_from, m_testTo, m_message, m_delay, m_encryption, m_secure, m_user,
                 m_password, save, test});
}

void frmSMTP::LoadSettings()
{
    const clsSchedule &schedule = m_globals.Schedule;
    m_server->setText(schedule.SMTP_Server);
    m_port->setText(QString::number(schedule.SMTP_Port));
    m_from->setText(schedule.SMTP_From);
    m_testTo->setText(schedule.TestMessageTo);
    m_message->setPlainText(schedule.SMTP_StdMessage);
    m_delay->setText(QString::number(schedule.SMTPDelay));
    SelectOrAdd(m_encryption, schedule.SMTP_Encryption);
    const bool secure = schedule.SMTPAuthentication == QLatin1String("Yes");
    m_secure->setChecked(secure);
    m_secureFrame->setEnabled(secure);
    m_user->setText(schedule.SMTPUser);
    m_password->setText(schedule.SMTPPassword);
}

bool frmSMTP::FieldsComplete(bool forTest)
{
    if (m_server->text().isEmpty())
        return Refuse(m_server, QStringLiteral("Please enter a server name"));
    if (m_from->text().isEmpty())
        return Refuse(m_from, QStringLiteral("Please enter your email address"));
    if (forTest && m_testTo->text().isEmpty())
        return Refuse(m_testTo, QStringLiteral("Please enter a destination address for the test message"));
    return true;
}

bool frmSMTP::Refuse(QWidget *field, const QString &text)
{
    m_globals.prompter.ShowMessage(kSettingsTitle, text);
    field->setFocus();
    return false;
}

// A port that is no number shows its run-time error; the window stays and nothing is stored.
void frmSMTP::cmdSave_Click()
{
    if (FieldsComplete(false) && RunHandler(m_globals.prompter, [this] { SaveFields(); }))
        accept();
}

void frmSMTP::SaveFields()
{
    clsSchedule &schedule = m_globals.Schedule;
    const qint32 port = Numbers::TextToInt32(m_port->text());
    schedule.SMTP_Server = m_server->text();
    schedule.SMTP_From = m_from->text();
    schedule.TestMessageTo = m_testTo->text();
    schedule.SMTP_StdMessage = m_message->toPlainText();
    // A delay that is no number leaves the old one without a word.
    if (Numbers::IsNumeric(m_delay->text()))
        schedule.SMTPDelay = Numbers::TextToInt16(m_delay->text());
    schedule.SMTP_Encryption = m_encryption->currentText();
    schedule.SMTPAuthentication = m_secure->isChecked() ? QStringLiteral("Yes") : QStringLiteral("No");
    schedule.SMTPUser = m_user->text();
    schedule.SMTPPassword = m_password->text();
    schedule.SMTP_Port = port;
    m_globals.SaveSchedule();
}

void frmSMTP::cmdTest_Click()
{
    if (FieldsComplete(true))
        RunHandler(m_globals.prompter, [this] { SendTestMessage(); });
}

// The values in the fields are tested, saved or not.
void frmSMTP::SendTestMessage()
{
    SmtpLog::StartSmtpLog(QStringLiteral("Sending Test Message"));
    MailClientEvents events(m_globals.prompter, m_globals.AppPath);
    clsSendMail &mail = events.poSendMail();
    mail.SetSMTPHost(m_server->text());
    mail.SetFrom(m_from->text());
    mail.SetRecipient(m_testTo->text());
    mail.SetSubject(QStringLiteral("Test message from QorloMANAGER"));
    mail.SetMessage(QStringLiteral("Here is a test message from QorloMANAGER"));
    const SmtpSettings fields{m_server->text(),
                              m_from->text(),
                              Numbers::TextToInt32(m_port->text()),
                              m_encryption->currentText(),
                              m_secure->isChecked() ? QStringLiteral("Yes") : QStringLiteral("No"),
                              m_user->text(),
                              m_password->text()};
    fields.ApplyTo(mail);
    mail.Send();
}
