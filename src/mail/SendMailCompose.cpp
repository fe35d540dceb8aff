// clsSendMail: Send, which writes envelope, headers, body and attachments straight to the socket.

#include "clsSendMail.h"

#include "MailWait.h"
#include "MimeEncoders.h"

#include "core/EventWait.h"
#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/QorloError.h"

#include <QFile>
#include <QHostInfo>
#include <QRandomGenerator>
#include <QSslSocket>

#include <cmath>

namespace {

constexpr qint64 kChunkBytes = 11400; // 200 base64 lines of 57 bytes
constexpr qint64 kUuLineBytes = 45;
constexpr int kUuLinesPerPump = 50;
constexpr qint64 kDrainLimit = 4096;

const QString kLineBreakTab = QStringLiteral("\r\n\t");

QString Quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString Hex8(qint64 value)
{
    return QString::number(value, 16).toUpper().rightJustified(8, QLatin1Char('0'));
}

} // namespace

void clsSendMail::Send()
{
    try {
        const bool multipart = m_encodeType == 0 && m_attachmentCount > 0;
        if (!CheckBeforeSend())
            return;
        const bool embedded = m_attachmentCount != 0 && FindEmbeddedFiles();
        m_messageSize = EstimateMessageSize();
        m_failed = false;
        if (SocketState() != Open && !OpenConnection())
            return;
        m_bytesSent = 0;
        QString toValue, ccValue;
        if (!SendEnvelope(toValue, ccValue))
            return;
        m_replyOk = false;
        SendHeaders(toValue, ccValue, embedded, multipart);
        SendLine(QString());
        SendLine(m_message);
        if (m_attachmentCount != 0)
            SendLine(QString());
        if (!SendAttachments(embedded))
            return;
        if (multipart)
            SendLine(QStringLiteral("--") + m_boundary + QStringLiteral("--"));
        m_replyOk = false;
        SendLine(QStringLiteral("."));
        if (!WaitReply())
            return;
        Q_EMIT Progress(100);
        Q_EMIT Status(QStringLiteral("Transmission Complete..."));
        if (!m_manualConnection)
            CloseConnection();
        Q_EMIT SendSuccesful();
    } catch (const QorloError &error) {
        AddError(error.description());
        RaiseFailure();
    }
}

bool clsSendMail::CheckBeforeSend()
{
    if (m_from.isEmpty())
        AddError(QStringLiteral("Missing or Invalid Sender E-mail Address"));
    if (m_asHTML && m_encodeType == 1)
        AddError(QStringLiteral("Sending HTML requires MIME encoding"));
    const qsizetype recipients = m_recipients.size() + m_ccList.size() + m_bccList.size();
    if (recipients == 0)
        AddError(QStringLiteral("No Recipient E-mail Address Specified"));
    if (recipients > m_maxRecipients)
        AddError(QStringLiteral("Too many recipients"));
    m_recipientNames.resize(m_recipients.size());
    m_ccNames.resize(m_ccList.size());
    if (m_errorList.isEmpty())
        return true;
    RaiseFailure();
    return false;
}

bool clsSendMail::WaitReply()
{
    return WaitForFlag(m_replyOk, m_messageTimeout, true) && !m_failed;
}

bool clsSendMail::SendEnvelope(QString &toValue, QString &ccValue)
{
    Q_EMIT Status(QStringLiteral("Sending Sender Information..."));
    m_replyOk = false;
    // m_authParam is never raised, so the AUTH= parameter never goes out.
    SendLine(QStringLiteral("MAIL FROM: <") + m_from + QLatin1Char('>') +
             (m_authParam ? QStringLiteral(" AUTH=") + m_from : QString()));
    if (!WaitReply())
        return false;
    Q_EMIT Status(QStringLiteral("Sending Recipient Information..."));
    const QStringList envelope = m_recipients + m_ccList;
    for (const QString &address : envelope) {
        m_replyOk = false;
        SendLine(QStringLiteral("RCPT TO: <") + address + QLatin1Char('>'));
        if (!WaitReply())
            return false;
    }
    toValue = AddressLine(m_recipients, m_recipientNames);
    ccValue = AddressLine(m_ccList, m_ccNames);
    for (const QString &address : std::as_const(m_bccList)) {
        m_replyOk = false;
        SendLine(QStringLiteral("RCPT TO: <") + address.trimmed() + QLatin1Char('>'));
        if (!WaitReply())
            return false;
    }
    Q_EMIT Status(QStringLiteral("Sending Message..."));
    m_dataReady = false;
    SendLine(QStringLiteral("DATA"));
    return WaitForFlag(m_dataReady, m_messageTimeout, true) && !m_failed;
}

QString clsSendMail::AddressLine(const QStringList &addresses, const QStringList &names) const
{
    QStringList entries;
    for (qsizetype i = 0; i < addresses.size(); ++i) {
        const QString name = names.value(i);
        const QString shown =
            name.isEmpty() ? Quoted(addresses.at(i).trimmed()) : MimeEncoders::EncodeHeaderText(name, true);
        entries.append(shown + QStringLiteral(" <") + addresses.at(i) + QLatin1Char('>'));
    }
    return entries.join(QStringLiteral(", ") + kLineBreakTab);
}

void clsSendMail::SendHeaders(const QString &toValue, const QString &ccValue, bool embedded, bool multipart)
{
    const bool mime = m_encodeType == 0;
    const QString name = m_fromDisplayName.trimmed().isEmpty()
                             ? Quoted(m_from)
                             : MimeEncoders::EncodeHeaderText(m_fromDisplayName, true);
    const QString fromValue = name + QStringLiteral(" <") + m_from + QLatin1Char('>');
    SendLine(QStringLiteral("Message-ID: <") + BuildMessageId() + QLatin1Char('>'));
    SendLine(QStringLiteral("From: ") + fromValue);
    SendLine(QStringLiteral("To: ") + toValue);
    if (!ccValue.isEmpty())
        SendLine(QStringLiteral("Cc: ") + ccValue);
    SendLine(QStringLiteral("Subject: ") + MimeEncoders::EncodeHeaderText(m_subject, false));
    if (!m_replyToAddress.isEmpty())
        SendLine(QStringLiteral("Reply-to: <") + m_replyToAddress + QLatin1Char('>'));
    SendLine(QStringLiteral("Date: ") + BuildDateText());
    if (mime) {
        SendLine(QStringLiteral("MIME-Version: 1.0"));
        if (m_priority != 3) {
            SendLine(QStringLiteral("X-Priority: ") + QString::number(m_priority));
            SendLine(QStringLiteral("X-MSMail-Priority: ") + m_priorityText);
        }
        if (m_receipt)
            SendLine(QStringLiteral("Disposition-Notification-To: ") + fromValue);
    }
    if (multipart) {
        m_boundary = BuildBoundary();
        SendLine(embedded ? QStringLiteral("Content-Type: multipart/related;")
                          : QStringLiteral("Content-Type: multipart/mixed;"));
        SendLine(QStringLiteral("\tboundary=") + Quoted(m_boundary) + QStringLiteral("\r\n"));
        SendLine(QStringLiteral("This is a multi-part message in MIME format.\r\n"));
        SendLine(QStringLiteral("--") + m_boundary);
    }
    if (mime) {
        SendLine(QStringLiteral("Content-Type: ") +
                 (m_asHTML ? QStringLiteral("text/html;") : QStringLiteral("text/plain;")));
        SendLine(QStringLiteral("\tcharset=\"iso-8859-1\""));
        SendLine(QStringLiteral("Content-Transfer-Encoding: ") +
                 (m_eightBit ? QStringLiteral("8bit") : QStringLiteral("7bit")));
        if (m_asHTML && !m_contentBase.isEmpty())
            SendLine(QStringLiteral("Content-Base: ") + Quoted(m_contentBase));
    }
}

bool clsSendMail::SendAttachments(bool embedded)
{
    for (qsizetype i = 0; i < m_attachmentCount; ++i) {
        if (!SendAttachment(i, embedded) || !DrainSocket())
            return false;
    }
    return true;
}

bool clsSendMail::SendAttachment(qsizetype index, bool embedded)
{
    const QString name = m_attachmentNames.at(index);
    const QString path = m_attachmentPaths.at(index);
    Q_EMIT Status(m_attachmentEmbedded.at(index)
                      ? QStringLiteral("Sending Embedded File, ") + name + QStringLiteral("...")
                      : QStringLiteral("Sending Attachment, ") + name + QStringLiteral("..."));
    if (m_encodeType != 0) {
        SendLine(QStringLiteral("begin 600 ") + name);
        if (!SendFile(path, 1))
            return false;
        SendLine(QStringLiteral("end"));
        return true;
    }
    SendLine(QStringLiteral("--") + m_boundary);
    SendLine(QStringLiteral("Content-Type: ") +
             GetContentType(name, QStringLiteral("application/octet-stream")) + QLatin1Char(';'));
    SendLine(QStringLiteral("\tname=") + Quoted(name));
    SendLine(QStringLiteral("Content-Transfer-Encoding: base64"));
    SendLine(QStringLiteral("Content-Disposition: attachment;"));
    SendLine(QStringLiteral("\tfilename=") + Quoted(name));
    if (m_attachmentEmbedded.at(index) && embedded)
        SendLine(QStringLiteral("Content-ID: <") + name + QLatin1Char('>'));
    SendLine(QString());
    if (!SendFile(path, 0))
        return false;
    SendLine(QString());
    return true;
}

// Keeps the socket's own queue short between attachments; a queue that stops moving is a time-out.
bool clsSendMail::DrainSocket()
{
    while (m_bytesRemaining > kDrainLimit) {
        const MailDeadline deadline(m_messageTimeout);
        const qint64 seen = m_bytesRemaining;
        while (m_bytesRemaining == seen && m_bytesRemaining >= kDrainLimit) {
            if (deadline.Passed()) {
                RaiseTimeout();
                return false;
            }
            WaitForNextEvent(kMailTurnMs);
        }
    }
    return true;
}

bool clsSendMail::SendFile(const QString &path, int mode)
{
    QFile file(path);
    try {
        if (!file.open(QIODevice::ReadOnly))
            throw QorloError(QorloError::FileNotFound);
        qint64 lines = 0;
        // A failure already reported ends the file, so that one dropped connection gives one SendFailed.
        while (!file.atEnd() && !m_failed) {
            if (mode == 0)
                m_sendProgressSeen = false;
            const QByteArray chunk = file.read(mode == 0 ? kChunkBytes : kUuLineBytes);
            if (SocketState() != Open)
                throw QorloError(kWrongState, QStringLiteral("Socket not Open"));
            if (mode == 0) {
                SendData(MimeEncoders::EncodeBase64Bytes(chunk));
                WaitForFlag(m_sendProgressSeen, 2, false);
            } else {
                SendData(MimeEncoders::UuEncodeLine(chunk) + "\r\n");
                if (++lines % kUuLinesPerPump == 0)
                    PumpEvents();
            }
        }
    } catch (const QorloError &error) {
        AddError(error.description());
        RaiseFailure();
        m_failed = true;
    }
    return !m_failed;
}

bool clsSendMail::FindEmbeddedFiles()
{
    if (!m_asHTML)
        return false;
    bool found = false;
    for (qsizetype i = 0; i < m_attachmentCount; ++i) {
        const QString name = m_attachmentNames.at(i);
        if (name.isEmpty())
            continue;
        qsizetype from = 0;
        qsizetype at;
        while ((at = m_message.indexOf(name, from, Qt::CaseInsensitive)) >= 0) {
            const qsizetype lt = m_message.lastIndexOf(QLatin1Char('<'), at);
            const qsizetype gt = lt < 0 ? -1 : m_message.indexOf(QLatin1Char('>'), lt);
            if (lt < 0 || gt < 0 || gt <= at || lt >= at) {
                from = at + name.size();
                continue;
            }
            const qsizetype eq = m_message.lastIndexOf(QLatin1Char('='), at);
            const qsizetype quote = eq < 0 ? -1 : m_message.indexOf(QLatin1Char('"'), eq);
            const qsizetype cut = quote >= 0 && quote < at ? quote : eq;
            m_message =
                m_message.left(cut + 1) + QStringLiteral("cid:") + name + m_message.mid(at + name.size());
            m_attachmentEmbedded[i] = true;
            found = true;
            from = cut + name.size() + 4;
        }
    }
    return found;
}

QString clsSendMail::BuildMessageId() const
{
    const QDateTime now = Clock::current().now();
    QRandomGenerator random(quint32(now.toMSecsSinceEpoch()));
    QString id = now.toUTC().toString(QStringLiteral("yyyyMMddHHmmsszzz")) + QLatin1Char('.');
    for (int i = 0; i < 20; ++i)
        id += QLatin1Char(MimeEncoders::kBase64Table[int(random.generateDouble() * 61)]);
    const QString localIp = m_socket->localAddress().toString();
    const QHostInfo reverse = QHostInfo::fromName(localIp);
    const bool named = reverse.error() == QHostInfo::NoError && !reverse.hostName().isEmpty() &&
                       reverse.hostName() != localIp;
    return id + QLatin1Char('@') + (named ? reverse.hostName() : m_remoteHost);
}

QString clsSendMail::BuildDateText() const
{
    static const QStringList dayNames{QString(),
                                      QStringLiteral("Sun"),
                                      QStringLiteral("Mon"),
                                      QStringLiteral("Tue"),
                                      QStringLiteral("Wed"),
                                      QStringLiteral("Thu"),
                                      QStringLiteral("Fri"),
                                      QStringLiteral("Sat")};
    const double now = Now();
    const QTime time = DayDate::ToDateTime(now).time();
    return dayNames.at(Weekday(now)) + QStringLiteral(", ") + QString::number(DayDate::Day(now)) +
           QLatin1Char(' ') + MonthAbbreviation(DayDate::Month(now)) + QLatin1Char(' ') +
           QString::number(DayDate::Year(now)) + QLatin1Char(' ') +
           time.toString(QStringLiteral("HH:mm:ss")) + QLatin1Char(' ') + m_timeZoneText;
}

QString clsSendMail::BuildBoundary() const
{
    const double now = Now();
    const double day = std::floor(now);
    return QStringLiteral("----_=_NextPart_000_") + Hex8(qint64(day)) + QLatin1Char('.') +
           Hex8(qRound64((now - day) * 1e8));
}

qint64 clsSendMail::EstimateMessageSize() const
{
    qint64 size = 0;
    if (m_useAuthentication) {
        size += m_from.size() + 25 + m_username.size() * 4 / 3 + m_password.size() * 4 / 3;
    }
    const auto addresses = [&size](const QStringList &list, qint64 factor) {
        for (qsizetype i = 0; i < list.size(); ++i)
            size += factor * list.at(i).size() + 15 + (i > 0 ? 6 : 0);
    };
    addresses(m_recipients, 2);
    addresses(m_ccList, 2);
    addresses(m_bccList, 1);
    for (const QString &name : m_recipientNames + m_ccNames)
        size += name.size() + 11;
    if (!m_fromDisplayName.isEmpty())
        size += m_fromDisplayName.size() + 3;
    if (!m_replyToAddress.isEmpty())
        size += m_replyToAddress.size() + 14;
    size += m_subject.size() + m_message.size();
    if (m_encodeType == 0) {
        size += 64;
        if (m_asHTML && !m_contentBase.isEmpty())
            size += m_contentBase.size() + 18;
        if (m_receipt)
            size += m_fromDisplayName.size() + m_from.size() + 36;
    }
    if (m_attachmentCount > 0) {
        const qint64 bytes = m_attachmentBytes;
        if (m_encodeType == 0)
            size += bytes * 4 / 3 + 2 * (bytes / 57) + 42 + 2 * qint64(m_attachmentNameChars) +
                    182 * qint64(m_attachmentCount) + 290;
        else
            size += bytes * 4 / 3 + 3 * (bytes / 45) + m_attachmentNameChars + 20 * qint64(m_attachmentCount);
    }
    return size;
}
