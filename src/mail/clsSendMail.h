#pragma once
// The program's own mail client: one object sends one message over SMTP and reports by signals.

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

class QSslSocket;

class clsSendMail : public QObject
{
    Q_OBJECT
public:
    explicit clsSendMail(QObject *parent = nullptr);
    ~clsSendMail() override;

    bool AsHTML() const { return m_asHTML; }
    void SetAsHTML(bool value) { m_asHTML = value; }
    QString Attachment() const { return m_attachmentPaths.join(m_delimiter); }
    void SetAttachment(const QString &value);
    QString BccRecipient() const { return m_bccList.join(m_delimiter); }
    void SetBccRecipient(const QString &value);
    QString CcDisplayName() const { return m_ccNames.join(m_delimiter); }
    void SetCcDisplayName(const QString &value);
    QString CcRecipient() const { return m_ccList.join(m_delimiter); }
    void SetCcRecipient(const QString &value);
    qint32 ConnectRetry() const { return m_connectRetry; }
    void SetConnectRetry(qint32 value);
    qint32 ConnectTimeout() const { return m_connectTimeout; }
    void SetConnectTimeout(qint32 value);
    QString ContentBase() const { return m_contentBase; }
    void SetContentBase(const QString &value);
    QString Delimiter() const { return m_delimiter; }
    void SetDelimiter(const QString &value);
    qint32 EmailAddressValidation() const { return m_emailAddressValidation; }
    void SetEmailAddressValidation(qint32 value);
    qint32 EncodeType() const { return m_encodeType; }
    void SetEncodeType(qint32 value);
    QString From() const { return m_from; }
    void SetFrom(const QString &value);
    QString FromDisplayName() const { return m_fromDisplayName; }
    void SetFromDisplayName(const QString &value);
    qint32 MaxRecipients() const { return m_maxRecipients; }
    void SetMaxRecipients(qint32 value);
    QString Message() const { return m_message; }
    void SetMessage(const QString &value);
    qint32 MessageTimeout() const { return m_messageTimeout; }
    void SetMessageTimeout(qint32 value);
    QString Password() const { return m_password; }
    void SetPassword(const QString &value) { m_password = value; }
    qint16 PersistentSettings() const { return m_persistentSettings; }
    void SetPersistentSettings(qint16 value);
    qint32 Priority() const { return m_priority; }
    void SetPriority(qint32 value);
    bool Receipt() const { return m_receipt; }
    void SetReceipt(bool value) { m_receipt = value; }
    QString Recipient() const { return m_recipients.join(m_delimiter); }
    void SetRecipient(const QString &value);
    QString RecipientDisplayName() const { return m_recipientNames.join(m_delimiter); }
    void SetRecipientDisplayName(const QString &value);
    QString ReplyToAddress() const { return m_replyToAddress; }
    void SetReplyToAddress(const QString &value) { m_replyToAddress = value.trimmed(); }
    QString POP3Host() const { return m_pop3Host; }
    void SetPOP3Host(const QString &value);
    // The POP3 server's port, 110 unless a test points elsewhere; never stored.
    quint16 POP3Port() const { return m_pop3Port; }
    void SetPOP3Port(quint16 value) { m_pop3Port = value; }
    QString SMTPHost() const { return m_smtpHost; }
    void SetSMTPHost(const QString &value);
    qint32 SMTPHostValidation() const { return m_smtpHostValidation; }
    void SetSMTPHostValidation(qint32 value);
    qint32 SMTPPort() const { return m_smtpPort; }
    void SetSMTPPort(qint32 value);
    QString Subject() const { return m_subject; }
    void SetSubject(const QString &value) { m_subject = value; }
    bool UseAuthentication() const { return m_useAuthentication; }
    void SetUseAuthentication(bool value);
    bool UsePopAuthentication() const { return m_usePopAuthentication; }
    void SetUsePopAuthentication(bool value);
    QString Username() const { return m_username; }
    void SetUsername(const QString &value);
    // "None" (the plain dialogue), "STARTTLS" or "TLS" (implicit); stored as "SMTP-Encryption".
    QString Encryption() const { return m_encryption; }
    void SetEncryption(const QString &value);
    // PEM certificates trusted for TLS besides the system's own; never stored.
    QString ExtraCACertificates() const { return m_extraCACertificates; }
    void SetExtraCACertificates(const QString &pemFile) { m_extraCACertificates = pemFile; }

    bool Connect();
    void Disconnect();
    QString GetContentType(const QString &fileName, const QString &fallback) const;
    QString GetIPAddress(QString &host) const;
    QString GetIPHost() const;
    bool IsValidEmailAddress(const QString &address) const;
    QString MXQuery(const QString &domain);
    bool Ping(QString &host, QString &time, QString &size, bool &same) const;
    void Send();
    void Shutdown() {}
    QString DecodeBase64String(const QString &text) const;

Q_SIGNALS:
    void SendSuccesful();
    void SendFailed(const QString &text);
    void Status(const QString &text);
    void Progress(int percent);

private:
    // The socket states the dialogue looks at: 0 closed, 7 open, 9 failed, anything else busy.
    enum SocketStates { Closed = 0, ResolvingHost = 4, Connecting = 6, Open = 7, PeerClosing = 8, Error = 9 };
    // The socket's error number for data sent over a connection that is not open.
    static constexpr int kWrongState = 40006;

    // Connection and reply handling (SendMailConnection.cpp).
    bool OpenConnection();
    bool OpenPop3Login();
    bool OpenSmtpDialogue();
    void ConnectWithRetries(const QString &host, quint16 port, bool encrypted);
    bool SayHello();
    bool StartTls();
    void ConfigureTls(const QString &host);
    bool Login();
    void CloseConnection();
    void AddError(const QString &text);
    void ClearError(const QString &text);
    void RaiseFailure();
    void RaiseTimeout();
    bool WaitForFlag(const bool &flag, qint32 seconds, bool raiseOnTimeout);
    void OnDataArrival();
    void AnswerLoginPrompt(const QString &reply);
    void StepPop3Login();
    void OnSocketError();
    void OnSendProgress(qint64 bytesSent);
    int SocketState() const;
    void SocketConnect(const QString &host, quint16 port, bool encrypted);
    void SocketClose();
    void SendData(const QByteArray &bytes);
    void SendLine(const QString &text);
    static void PumpEvents();

    // Composition (SendMailCompose.cpp).
    bool CheckBeforeSend();
    bool SendEnvelope(QString &toValue, QString &ccValue);
    void SendHeaders(const QString &toValue, const QString &ccValue, bool embedded, bool multipart);
    bool SendAttachments(bool embedded);
    bool SendAttachment(qsizetype index, bool embedded);
    bool DrainSocket();
    bool SendFile(const QString &path, int mode);
    bool WaitReply();
    bool FindEmbeddedFiles();
    QString BuildMessageId() const;
    QString BuildDateText() const;
    QString BuildBoundary() const;
    qint64 EstimateMessageSize() const;
    QString AddressLine(const QStringList &addresses, const QStringList &names) const;

    // Settings and properties (clsSendMail.cpp).
    void LoadSettings();
    QString GetSavedSetting(const QString &key, const QString &fallback) const;
    void SaveSetting(const QString &key, const QString &value);
    bool SetHost(QString &target, QString value, const QString &key, const QString &message);
    void ValidateAddressList(const QString &value, const QString &message);
    QStringList ParseList(const QString &value) const;
    static QString BuildTimeZoneText();

    bool m_asHTML = false;
    QStringList m_attachmentPaths;
    QStringList m_attachmentNames;
    QList<bool> m_attachmentEmbedded;
    qint32 m_attachmentCount = 0;
    qint64 m_attachmentBytes = 0;
    qint32 m_attachmentNameChars = 0;
    QStringList m_recipients;
    QStringList m_recipientNames;
    QStringList m_ccList;
    QStringList m_ccNames;
    QStringList m_bccList;
    qint32 m_connectRetry = 4;
    qint32 m_connectTimeout = 40;
    QString m_contentBase;
    QString m_delimiter = QStringLiteral(";");
    qint32 m_emailAddressValidation = 1;
    qint32 m_encodeType = 0;
    QString m_from;
    QString m_fromDisplayName;
    qint32 m_maxRecipients = 100;
    QString m_message;
    bool m_eightBit = false;
    qint32 m_messageTimeout = 60;
    QString m_password;
    qint16 m_persistentSettings = 0;
    qint32 m_priority = 3;
    QString m_priorityText;
    bool m_receipt = false;
    QString m_replyToAddress;
    QString m_pop3Host;
    quint16 m_pop3Port = 110;
    QString m_smtpHost;
    qint32 m_smtpHostValidation = 3;
    qint32 m_smtpPort = 25;
    QString m_subject;
    bool m_useAuthentication = false;
    bool m_usePopAuthentication = false;
    QString m_username;
    QString m_encryption = QStringLiteral("None");
    QString m_extraCACertificates;
    QString m_timeZoneText;
    QString m_boundary;

    QStringList m_errorList;
    bool m_failed = false;
    bool m_connected = false;
    bool m_replyOk = false;
    bool m_dataReady = false;
    bool m_authOffered = false;
    bool m_authAccepted = false;
    bool m_authParam = false;
    bool m_popDone = false;
    bool m_manualConnection = false;
    int m_popStep = 0;
    qint64 m_bytesSent = 0;
    qint64 m_bytesRemaining = 0;
    qint64 m_messageSize = 0;
    bool m_sendProgressSeen = false;
    int m_lastPercent = 0;

    QSslSocket *m_socket = nullptr;
    QString m_remoteHost;
    bool m_socketError = false;
    QString m_certificateProblem;
    bool m_replyEnded = false; // the last read ended a reply; STARTTLS and the login wait for it
};
