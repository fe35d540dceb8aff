#pragma once
// The sender of one run message: collects fields and files, owns the mail client, logs its story.

#include "mail/SmtpSettings.h"
#include "mail/clsSendMail.h"

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

class frmSMTPSendMail : public QObject
{
    Q_OBJECT
public:
    // The substitution a run applies to subject and body; an empty one leaves the text as it is.
    using TextExpander = std::function<QString(const QString &)>;
    // Records a failed send where the caller keeps its story; the text is the client's explanation.
    using FailureLogger = std::function<void(const QString &explanation)>;

    // SMTP.Log lies in `appPath`.
    frmSMTPSendMail(const SmtpSettings &settings, const QString &appPath, FailureLogger logFailure = {},
                    TextExpander expandMailText = {}, QObject *parent = nullptr);
    ~frmSMTPSendMail() override;

    QString MailServer;
    QString MailFrom;
    QString MailTo;
    QString MailCc;
    QString MailBcc;
    QString MailSubject;
    QString MailBody;
    QString MailFormat; // "HTML" makes an HTML mail
    QString lStatus;    // the status caption: every status line of the message

    // The client of the message between StartMail and SendMail, else null.
    clsSendMail *poSendMail() const { return m_sendMail.get(); }

    // The order is fixed: StartMail, fields, Append..., SendMail, CloseForm. The Append calls need
    // the client that StartMail makes.
    void StartMail();
    void SendMail();
    void AppendFile(const QString &path);
    void AppendTextFile(const QString &path);
    void AppendHTMLFolder(const QString &path, const QString &mainFile);
    void AppendTextMsg(const QString &text);
    void CloseForm();

private:
    void poSendMail_SendFailed(const QString &text);
    void poSendMail_SendSuccesful();
    void poSendMail_Status(const QString &text);
    // The tests every Append makes: false, with a line in the SMTP log, for an empty or missing path.
    // Logs the text for an empty path or a missing file. A file to be read whole must be a whole file
    // (WholeFile.h), else it counts as missing.
    enum class Use { Open, ReadWhole };
    bool PathFound(const QString &path, const QString &noPathText, const QString &missingText,
                   Use use = Use::ReadWhole) const;
    QString Expanded(const QString &text) const;

    const SmtpSettings m_settings;
    const QString m_appPath;
    FailureLogger m_logFailure;
    TextExpander m_expandMailText;
    std::unique_ptr<clsSendMail> m_sendMail;
};
