#include "frmSMTPSendMail.h"

#include "SmtpLog.h"

#include "core/CommonFile.h"
#include "core/LineReader.h"
#include "core/WholeFile.h"

#include <QDir>
#include <QFileInfo>

using namespace SmtpLog;

namespace {

const QString kCrLf = QStringLiteral("\r\n");

} // namespace

frmSMTPSendMail::frmSMTPSendMail(const SmtpSettings &settings, const QString &appPath,
                                 FailureLogger logFailure, TextExpander expandMailText, QObject *parent)
    : QObject(parent), m_settings(settings), m_appPath(appPath), m_logFailure(std::move(logFailure)),
      m_expandMailText(std::move(expandMailText))
{
}

frmSMTPSendMail::~frmSMTPSendMail() = default;

void frmSMTPSendMail::StartMail()
{
    m_sendMail = std::make_unique<clsSendMail>();
    connect(m_sendMail.get(), &clsSendMail::SendFailed, this, &frmSMTPSendMail::poSendMail_SendFailed);
    connect(m_sendMail.get(), &clsSendMail::SendSuccesful, this, &frmSMTPSendMail::poSendMail_SendSuccesful);
    connect(m_sendMail.get(), &clsSendMail::Status, this, &frmSMTPSendMail::poSendMail_Status);
    MailBody.clear();
    MailTo.clear();
    MailCc.clear();
    MailBcc.clear();
    MailSubject.clear();
    MailFormat.clear();
}

void frmSMTPSendMail::SendMail()
{
    clsSendMail &mail = *m_sendMail;
    mail.SetSMTPHostValidation(0);
    mail.SetEmailAddressValidation(1);
    mail.SetDelimiter(QStringLiteral(";"));
    mail.SetSMTPHost(MailServer);
    mail.SetFrom(MailFrom);
    mail.SetRecipient(MailTo);
    m_settings.ApplyTo(mail);
    if (!MailCc.isEmpty())
        mail.SetCcRecipient(MailCc);
    if (!MailBcc.isEmpty())
        mail.SetBccRecipient(MailBcc);
    // A report mail's subject and message were substituted once already; the second pass is intended.
    mail.SetSubject(Expanded(MailSubject));
    mail.SetMessage(Expanded(MailBody));
    if (MailFormat == QLatin1String("HTML"))
        mail.SetAsHTML(true);
    mail.Send();
    m_sendMail.reset();
}

void frmSMTPSendMail::AppendFile(const QString &path)
{
    if (!PathFound(path, QStringLiteral("Request to load File-but no file specified"),
                   QStringLiteral("Cannot Find File: ")))
        return;
    const QString attached = m_sendMail->Attachment();
    m_sendMail->SetAttachment(attached.isEmpty() ? path : attached + QStringLiteral(";") + path);
}

void frmSMTPSendMail::AppendTextFile(const QString &path)
{
    if (!PathFound(path, QStringLiteral("Request to load Text File - but no file specified"),
                   QStringLiteral("Cannot Find Text File: ")))
        return;
    LineReader file(path);
    while (!file.atEnd())
        MailBody += kCrLf + file.readLine();
}

void frmSMTPSendMail::AppendHTMLFolder(const QString &path, const QString &mainFile)
{
    if (!PathFound(path, QStringLiteral("Request to load HTML Folder - but no file specified"),
                   QStringLiteral("Cannot Find HTML Folder: "), Use::Open))
        return;
    const QString folder = CommonFile::FolderOf(path);
    QStringList attachments;
    for (const QString &name : QDir(folder).entryList(QDir::Files, QDir::Name)) {
        const QString file = CommonFile::JoinPath(folder, name);
        if (file == mainFile)
            AppendTextFile(file);
        else
            attachments.append(file);
    }
    m_sendMail->SetAttachment(attachments.join(QLatin1Char(';')));
}

void frmSMTPSendMail::AppendTextMsg(const QString &text)
{
    MailBody += kCrLf + text;
}

void frmSMTPSendMail::CloseForm()
{
    m_sendMail.reset();
    lStatus.clear();
}

void frmSMTPSendMail::poSendMail_SendFailed(const QString &text)
{
    AddSmtpLog(QStringLiteral("Send failed to ") + MailTo + QStringLiteral("  Failure=") + text + kCrLf);
    FlushSmtpLog(m_appPath);
    if (m_logFailure)
        m_logFailure(text);
}

void frmSMTPSendMail::poSendMail_SendSuccesful()
{
    AddSmtpLog(QStringLiteral("Message sent to ") + MailTo + kCrLf);
    FlushSmtpLog(m_appPath);
}

void frmSMTPSendMail::poSendMail_Status(const QString &text)
{
    lStatus += kCrLf + text;
    AddSmtpLog(text);
}

bool frmSMTPSendMail::PathFound(const QString &path, const QString &noPathText, const QString &missingText,
                                Use use) const
{
    if (path.isEmpty()) {
        AddSmtpLog(noPathText);
        return false;
    }
    if (use == Use::ReadWhole ? !WholeFile::IsWholeFile(path) : !QFileInfo::exists(path)) {
        AddSmtpLog(missingText + path);
        return false;
    }
    return true;
}

QString frmSMTPSendMail::Expanded(const QString &text) const
{
    return m_expandMailText ? m_expandMailText(text) : text;
}
