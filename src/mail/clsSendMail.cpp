#include "clsSendMail.h"

#include "IcmpPing.h"
#include "MailAddress.h"
#include "MimeEncoders.h"
#include "modMXQuery.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "core/TWReg.h"
#include "core/WholeFile.h"

#include <QFileInfo>
#include <QHostInfo>
#include <QMimeDatabase>
#include <QRandomGenerator>
#include <QSslSocket>

namespace {

const QString kProgram = QStringLiteral("QorloSendMail");
const QString kSection = QStringLiteral("Settings");
constexpr int kPingPayload = 32;
constexpr int kPingTimeoutMs = 255;

QString BoolText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

bool TextBool(const QString &text)
{
    return text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || Numbers::NumericPrefix(text) != 0;
}

// A stored number that does not fit the field counts as missing.
qint32 TextNumber(const QString &text, qint32 fallback)
{
    try {
        return Numbers::ToInt32(Numbers::NumericPrefix(text));
    } catch (const QorloError &) {
        return fallback;
    }
}

} // namespace

clsSendMail::clsSendMail(QObject *parent) : QObject(parent), m_socket(new QSslSocket(this))
{
    connect(m_socket, &QSslSocket::connected, this, [this] {
        // Each command waits for its reply: holding small segments back for an acknowledgement only adds
        // delay.
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        if (m_socket->mode() == QSslSocket::UnencryptedMode)
            m_connected = true;
    });
    connect(m_socket, &QSslSocket::encrypted, this, [this] { m_connected = true; });
    connect(m_socket, &QSslSocket::disconnected, this, [this] { m_connected = false; });
    connect(m_socket, &QSslSocket::readyRead, this, &clsSendMail::OnDataArrival);
    connect(m_socket, &QSslSocket::errorOccurred, this, &clsSendMail::OnSocketError);
    connect(m_socket, &QSslSocket::bytesWritten, this, &clsSendMail::OnSendProgress);
    connect(m_socket, &QSslSocket::sslErrors, this, [this](const QList<QSslError> &errors) {
        QStringList reasons;
        for (const QSslError &error : errors)
            reasons.append(error.errorString());
        m_certificateProblem = QStringLiteral("TLS certificate of ") + m_remoteHost +
                               QStringLiteral(" not accepted: ") + reasons.join(QStringLiteral("; "));
    });

    m_persistentSettings = qint16(qBound(
        -32768, TextNumber(GetSavedSetting(QStringLiteral("PersistentSettings"), QStringLiteral("0")), 0),
        32767));
    if (m_persistentSettings != 0)
        LoadSettings();
    if (m_maxRecipients < 1)
        m_maxRecipients = 100;
    m_timeZoneText = BuildTimeZoneText();
}

clsSendMail::~clsSendMail()
{
    // A destructor must not throw: a failure or a stop while saying QUIT only ends the goodbye.
    try {
        if (SocketState() > 0)
            CloseConnection();
    } catch (...) {
    }
}

void clsSendMail::LoadSettings()
{
    const auto text = [this](const char *key) { return GetSavedSetting(QLatin1String(key), QString()); };
    const auto number = [this](const char *key, qint32 fallback) {
        return TextNumber(GetSavedSetting(QLatin1String(key), QString::number(fallback)), fallback);
    };
    m_connectRetry = number("ConnectRetry", 4);
    m_connectTimeout = number("ConnectTimeout", 40);
    m_emailAddressValidation = number("EmailValidation", 1);
    m_encodeType = number("EncodeType", 0);
    m_from = text("From");
    m_fromDisplayName = text("FromDisplayName");
    m_maxRecipients = number("MaxRecipients", 100);
    m_messageTimeout = number("MessageTimeout", 60);
    m_pop3Host = text("Pop3Host");
    m_smtpHost = text("RemoteHost");
    m_smtpHostValidation = number("SMTPHostValidation", 3);
    m_smtpPort = number("RemotePort", 25);
    m_useAuthentication = TextBool(text("UseAuthentication"));
    m_usePopAuthentication = TextBool(text("UsePopAuthentication"));
    m_username = text("Username");
    m_encryption = GetSavedSetting(QStringLiteral("SMTP-Encryption"), QStringLiteral("None"));
}

QString clsSendMail::GetSavedSetting(const QString &key, const QString &fallback) const
{
    return TWReg::ReadSetting(kSection, key, fallback, kProgram);
}

void clsSendMail::SaveSetting(const QString &key, const QString &value)
{
    if (m_persistentSettings != 0)
        TWReg::SaveSetting(kSection, key, value, kProgram);
}

void clsSendMail::SetAttachment(const QString &value)
{
    const QString missing = QStringLiteral("The file you tried to attach does not exist");
    m_attachmentPaths = MailAddress::SplitList(value, m_delimiter);
    m_attachmentCount = qint32(m_attachmentPaths.size());
    m_attachmentBytes = 0;
    m_attachmentNameChars = 0;
    ClearError(missing);
    m_attachmentNames = QStringList(m_attachmentCount, QString());
    m_attachmentEmbedded = QList<bool>(m_attachmentCount, false);
    for (qsizetype i = 0; i < m_attachmentPaths.size(); ++i) {
        const QFileInfo file(m_attachmentPaths.at(i));
        if (!WholeFile::IsWholeFile(file.filePath())) {
            AddError(missing);
            break;
        }
        m_attachmentNames[i] = CommonFile::FileNameOnly(m_attachmentPaths.at(i));
        m_attachmentBytes += file.size();
        m_attachmentNameChars += qint32(m_attachmentNames.at(i).size());
    }
}

QStringList clsSendMail::ParseList(const QString &value) const
{
    return MailAddress::CleanAddressList(MailAddress::SplitList(value, m_delimiter));
}

void clsSendMail::ValidateAddressList(const QString &value, const QString &message)
{
    ClearError(message);
    if (m_emailAddressValidation != 1)
        return;
    for (const QString &address : MailAddress::SplitList(value, m_delimiter)) {
        if (!MailAddress::IsValidEmailAddress(address)) {
            AddError(message);
            return;
        }
    }
}

void clsSendMail::SetBccRecipient(const QString &value)
{
    m_bccList = ParseList(value);
    ValidateAddressList(value, QStringLiteral("Invalid Bcc: Recipient E-mail Address"));
}

void clsSendMail::SetCcDisplayName(const QString &value)
{
    m_ccNames = ParseList(value);
}

void clsSendMail::SetCcRecipient(const QString &value)
{
    m_ccList = ParseList(value);
    ValidateAddressList(value, QStringLiteral("Invalid Cc: Recipient E-mail Address"));
}

void clsSendMail::SetRecipient(const QString &value)
{
    m_recipients = ParseList(value);
    ValidateAddressList(value, QStringLiteral("Missing or Invalid Recipient E-mail Address"));
}

void clsSendMail::SetRecipientDisplayName(const QString &value)
{
    m_recipientNames = ParseList(value);
}

void clsSendMail::SetConnectRetry(qint32 value)
{
    if (value >= 1 && value <= 20)
        m_connectRetry = value;
    SaveSetting(QStringLiteral("ConnectRetry"), QString::number(value));
}

void clsSendMail::SetConnectTimeout(qint32 value)
{
    if (value >= 1 && value <= 120)
        m_connectTimeout = value;
    SaveSetting(QStringLiteral("ConnectTimeout"), QString::number(value));
}

void clsSendMail::SetContentBase(const QString &value)
{
    if (value.isEmpty()) {
        m_contentBase = value;
        return;
    }
    QString base = value;
    base.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (!base.contains(QLatin1String("http://"), Qt::CaseInsensitive))
        base.prepend(QStringLiteral("http://"));
    if (!base.endsWith(QLatin1Char('/')))
        base.append(QLatin1Char('/'));
    m_contentBase = base;
}

void clsSendMail::SetDelimiter(const QString &value)
{
    m_delimiter = value.left(1);
}

void clsSendMail::SetEmailAddressValidation(qint32 value)
{
    m_emailAddressValidation = value;
    SaveSetting(QStringLiteral("EmailValidation"), QString::number(value));
}

void clsSendMail::SetEncodeType(qint32 value)
{
    m_encodeType = value;
    SaveSetting(QStringLiteral("EncodeType"), QString::number(value));
}

void clsSendMail::SetFrom(const QString &value)
{
    m_from = value.trimmed();
    ValidateAddressList(m_from, QStringLiteral("Missing or Invalid Sender E-mail Address"));
    SaveSetting(QStringLiteral("From"), m_from);
}

void clsSendMail::SetFromDisplayName(const QString &value)
{
    m_fromDisplayName = value.trimmed();
    SaveSetting(QStringLiteral("FromDisplayName"), m_fromDisplayName);
}

void clsSendMail::SetMaxRecipients(qint32 value)
{
    m_maxRecipients = qAbs(value);
    SaveSetting(QStringLiteral("MaxRecipients"), QString::number(m_maxRecipients));
}

void clsSendMail::SetMessage(const QString &value)
{
    m_message = MimeEncoders::PrepareMessageText(value);
    m_eightBit = MimeEncoders::HasEightBit(m_message);
}

void clsSendMail::SetMessageTimeout(qint32 value)
{
    m_messageTimeout = qAbs(value);
    SaveSetting(QStringLiteral("MessageTimeout"), QString::number(m_messageTimeout));
}

void clsSendMail::SetPersistentSettings(qint16 value)
{
    m_persistentSettings = value;
    SaveSetting(QStringLiteral("PersistentSettings"), QString::number(value));
}

void clsSendMail::SetPriority(qint32 value)
{
    m_priority = value;
    if (value == 1)
        m_priorityText = QStringLiteral("High");
    else if (value == 3)
        m_priorityText = QStringLiteral("Normal");
    else if (value == 5)
        m_priorityText = QStringLiteral("Low");
}

bool clsSendMail::SetHost(QString &target, QString value, const QString &key, const QString &message)
{
    value.remove(QChar(0));
    bool valid = true;
    if (!value.isEmpty()) {
        QString host = value;
        if (m_smtpHostValidation == 1)
            valid = MailAddress::IsValidDomain(value);
        else if (m_smtpHostValidation == 2) {
            QString time, size;
            bool same = false;
            valid = Ping(host, time, size, same);
        } else if (m_smtpHostValidation == 3)
            valid = !GetIPAddress(host).isEmpty();
    }
    if (!valid) {
        AddError(message);
        return false;
    }
    SaveSetting(key, value);
    ClearError(message);
    target = value;
    return true;
}

void clsSendMail::SetPOP3Host(const QString &value)
{
    SetHost(m_pop3Host, value, QStringLiteral("Pop3Host"),
            QStringLiteral("Invalid or Missing POP3 Host Name"));
}

void clsSendMail::SetSMTPHost(const QString &value)
{
    SetHost(m_smtpHost, value, QStringLiteral("RemoteHost"),
            QStringLiteral("Invalid or Missing SMTP Host Name"));
}

void clsSendMail::SetSMTPHostValidation(qint32 value)
{
    m_smtpHostValidation = value;
    SaveSetting(QStringLiteral("SMTPHostValidation"), QString::number(value));
    if (!m_smtpHost.isEmpty())
        SetSMTPHost(m_smtpHost);
}

void clsSendMail::SetSMTPPort(qint32 value)
{
    if (value < 1 || value > 65535) {
        AddError(QStringLiteral("Invalid Remote Port"));
        return;
    }
    m_smtpPort = value;
    SaveSetting(QStringLiteral("RemotePort"), QString::number(value));
}

void clsSendMail::SetUseAuthentication(bool value)
{
    m_useAuthentication = value;
    SaveSetting(QStringLiteral("UseAuthentication"), BoolText(value));
}

void clsSendMail::SetUsePopAuthentication(bool value)
{
    m_usePopAuthentication = value;
    SaveSetting(QStringLiteral("UsePopAuthentication"), BoolText(value));
}

void clsSendMail::SetUsername(const QString &value)
{
    m_username = value;
    SaveSetting(QStringLiteral("Username"), value);
}

void clsSendMail::SetEncryption(const QString &value)
{
    m_encryption = value;
    SaveSetting(QStringLiteral("SMTP-Encryption"), value);
}

bool clsSendMail::Connect()
{
    m_manualConnection = true;
    return OpenConnection();
}

void clsSendMail::Disconnect()
{
    m_manualConnection = false;
    CloseConnection();
}

QString clsSendMail::GetContentType(const QString &fileName, const QString &fallback) const
{
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return fallback;
    const QMimeType type = QMimeDatabase().mimeTypeForFile(QStringLiteral("file") + fileName.mid(dot),
                                                           QMimeDatabase::MatchExtension);
    return type.isDefault() ? fallback : type.name();
}

QString clsSendMail::GetIPAddress(QString &host) const
{
    if (host.isEmpty())
        host = GetIPHost();
    const QHostInfo info = QHostInfo::fromName(host.trimmed());
    for (const QHostAddress &address : info.addresses()) {
        if (address.protocol() == QAbstractSocket::IPv4Protocol)
            return address.toString();
    }
    return QString();
}

QString clsSendMail::GetIPHost() const
{
    const QString name = CommonFile::ComputerName().left(256);
    const qsizetype end = name.indexOf(QChar(0));
    return end < 0 ? name : name.left(end);
}

bool clsSendMail::IsValidEmailAddress(const QString &address) const
{
    return MailAddress::IsValidEmailAddress(address);
}

QString clsSendMail::MXQuery(const QString &domain)
{
    Q_EMIT Status(domain.isEmpty() ? QStringLiteral("Performing MX Query")
                                   : QStringLiteral("Performing MX Query, Domain: ") + domain);
    try {
        return modMXQuery::ResolveMX(domain);
    } catch (const QorloError &error) {
        Q_EMIT Status(error.description());
        return QString();
    }
}

bool clsSendMail::Ping(QString &host, QString &time, QString &size, bool &same) const
{
    const QString address = MailAddress::IsIPAddress(host) ? host : GetIPAddress(host);
    if (address.isEmpty())
        return false;
    QByteArray payload(kPingPayload, '\0');
    for (char &byte : payload)
        byte = char(QRandomGenerator::global()->bounded(1, 255));
    const std::optional<IcmpPing::EchoReply> reply =
        IcmpPing::Echo(QHostAddress(address), payload, kPingTimeoutMs);
    if (!reply)
        return false;
    host = reply->address.toString();
    time = QString::number(reply->roundTripMs);
    size = QString::number(reply->data.size()) + QStringLiteral(" bytes");
    const qsizetype end = reply->data.indexOf('\0');
    const QByteArray returned = end < 0 ? reply->data : reply->data.left(end);
    same = QString::fromLatin1(returned).compare(QString::fromLatin1(payload), Qt::CaseInsensitive) == 0;
    return reply->status == 0 && reply->address == QHostAddress(address);
}

QString clsSendMail::DecodeBase64String(const QString &text) const
{
    return MimeEncoders::DecodeBase64String(text);
}

QString clsSendMail::BuildTimeZoneText()
{
    const int eastMinutes = Clock::current().now().offsetFromUtc() / 60;
    const QString text =
        Numbers::FormatZeros(eastMinutes / 60, 2) + Numbers::FormatZeros(qAbs(eastMinutes % 60), 2);
    return text.contains(QLatin1Char('-')) ? text : QLatin1Char('+') + text;
}
