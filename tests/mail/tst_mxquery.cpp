#include "Files.h"
#include "MailEvents.h"
#include "SmtpPeer.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "mail/modMXQuery.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QNetworkDatagram>
#include <QSemaphore>
#include <QUdpSocket>

#include <functional>
#include <thread>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// A name server of the test's own: answers one query with bytes made from it, or stays silent.
class CraftedDns
{
public:
    using Answer = std::function<QByteArray(const QByteArray &query)>;

    explicit CraftedDns(Answer answer) : m_port(FreeUdpPort())
    {
        m_thread = std::thread([this, answer] {
            QUdpSocket socket;
            m_listening = socket.bind(QHostAddress::LocalHost, m_port);
            m_bindTried.release();
            const QDeadlineTimer deadline(8000);
            while (m_listening && !socket.hasPendingDatagrams() && !deadline.hasExpired())
                socket.waitForReadyRead(50);
            if (!socket.hasPendingDatagrams())
                return;
            const QNetworkDatagram datagram = socket.receiveDatagram();
            m_query = datagram.data();
            if (answer) {
                socket.writeDatagram(answer(m_query), datagram.senderAddress(),
                                     quint16(datagram.senderPort()));
                socket.waitForBytesWritten(1000);
            }
        });
        m_bindTried.acquire();
    }
    ~CraftedDns() { finish(); }
    quint16 port() const { return m_port; }
    bool listening() const { return m_listening; }
    // The query it received, once it has answered; empty when none came in time.
    QByteArray query()
    {
        finish();
        return m_query;
    }

private:
    void finish()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

    quint16 m_port;
    bool m_listening = false;
    QSemaphore m_bindTried;
    QByteArray m_query;
    std::thread m_thread;
};

QByteArray Word(int value)
{
    QByteArray bytes;
    bytes.append(char(value >> 8));
    bytes.append(char(value & 0xFF));
    return bytes;
}

QByteArray Labels(const QString &name)
{
    QByteArray bytes;
    for (const QString &label : name.split(u'.'))
        bytes += char(label.size()) + label.toLatin1();
    return bytes;
}

// The reply header and the question copied from the query.
QByteArray Reply(const QByteArray &query, int answers)
{
    return query.left(2) + QByteArray::fromHex("8180") + Word(1) + Word(answers) + Word(0) + Word(0) +
           query.mid(12);
}

// One answer record: owner, type, class IN, TTL 300, then the data with its length.
QByteArray Record(const QByteArray &owner, int type, const QByteArray &data)
{
    return owner + Word(type) + Word(1) + QByteArray::fromHex("0000012c") + Word(int(data.size())) + data;
}

const QByteArray kQuestionPointer = QByteArray::fromHex("c00c");

QByteArray Mx(int preference, const QByteArray &exchange)
{
    return Word(preference) + exchange;
}

} // namespace

class TestMXQuery : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void craftedAnswers();
    void answersThatStopTheWalk();
    void silentServerAndRefusals();
    void dnsmasqRecords();
    void sendThroughMXHost();

private:
    void useServer(quint16 port,
                   const QString &resolver = u"nameserver 127.0.0.1\ndomain office.example.com\n"_s);
    // Aims the resolver at a crafted server, which must be listening.
    void useServer(CraftedDns &dns)
    {
        QVERIFY2(dns.listening(), "the crafted name server is not listening");
        useServer(dns.port());
    }
    QTemporaryDir m_folder;
};

void TestMXQuery::init()
{
    modMXQuery::SetDnsPort(53);
}

void TestMXQuery::useServer(quint16 port, const QString &resolver)
{
    modMXQuery::SetResolverFile(WriteFile(m_folder.filePath(u"resolv.conf"_s), resolver.toLatin1()));
    modMXQuery::SetDnsPort(port);
}

void TestMXQuery::craftedAnswers()
{
    // Two records of equal preference: the first in the answer is the best, and the sort keeps the order.
    CraftedDns dns([](const QByteArray &query) -> QByteArray {
        return Reply(query, 3) + Record(kQuestionPointer, 15, Mx(10, Labels(u"first"_s) + kQuestionPointer)) +
               Record(kQuestionPointer, 15, Mx(20, Labels(u"backup"_s) + kQuestionPointer)) +
               Record(kQuestionPointer, 15, Mx(10, Labels(u"second"_s) + kQuestionPointer));
    });
    useServer(dns);
    QCOMPARE(modMXQuery::ResolveMX(u"example.com"_s), u"first.example.com"_s);
    QCOMPARE(dns.query(), QByteArray::fromHex("11df01000001000000000000076578616d706c6503636f6d00000f0001"));
    const QList<modMXQuery::MXRecord> records = modMXQuery::MXRecords();
    QCOMPARE(records.size(), 3);
    QCOMPARE(records.at(0).host, u"first.example.com"_s);
    QCOMPARE(records.at(1).host, u"second.example.com"_s);
    QCOMPARE(records.at(2).host, u"backup.example.com"_s);
    QCOMPARE(records.at(2).preference, qint16(20));
    QCOMPARE(modMXQuery::LocalDomain(), u"office.example.com"_s);
    QCOMPARE(modMXQuery::ParentDomain(), u"example.com"_s);
}

void TestMXQuery::answersThatStopTheWalk()
{
    // The number of answers and their records, the best host and the number of records kept.
    const std::tuple<int, QByteArray, QString, qsizetype> cases[] = {
        // A CNAME first: the walk reads no MX record.
        {2,
         Record(kQuestionPointer, 5, Labels(u"alias.example.com"_s) + '\0') +
             Record(kQuestionPointer, 15, Mx(10, Labels(u"mx.example.com"_s) + '\0')),
         QString(), 0},
        // An owner name spelled out instead of a pointer puts the walk off its track.
        {1, Record(Labels(u"example.com"_s) + '\0', 15, Mx(10, Labels(u"mx"_s) + kQuestionPointer)),
         QString(), 0},
        // A host name ending in a zero byte leaves the position one short: only the first record counts.
        {2,
         Record(kQuestionPointer, 15, Mx(20, Labels(u"mx2.example.com"_s) + '\0')) +
             Record(kQuestionPointer, 15, Mx(10, Labels(u"mx1"_s) + kQuestionPointer)),
         u"mx2.example.com"_s, 1}};
    for (const auto &[answers, records, best, kept] : cases) {
        CraftedDns dns(
            [&](const QByteArray &query) -> QByteArray { return Reply(query, answers) + records; });
        useServer(dns);
        QCOMPARE(modMXQuery::ResolveMX(u"example.com"_s), best);
        QCOMPARE(modMXQuery::MXRecords().size(), kept);
        QVERIFY(!dns.query().isEmpty());
    }
    // A pointer to itself and a name running past the packet end the reading without harm; only 192 is
    // a pointer: 193 is taken as a label length.
    const auto read = [](const char *hex, int &position) {
        QString text;
        modMXQuery::ReadDomainName(QByteArray::fromHex(hex), position, text);
        return text;
    };
    int position = 0;
    read("c000", position);
    QCOMPARE(position, 2);
    position = 0;
    QCOMPARE(read("05616263", position), u"abc\u0000\u0000"_s);
    position = 0;
    QCOMPARE(read("c100", position).size(), 193);
}

void TestMXQuery::silentServerAndRefusals()
{
    CraftedDns dns(nullptr);
    useServer(dns);
    clsSendMail mail;
    MailEvents events(mail);
    QElapsedTimer watch;
    watch.start();
    QCOMPARE(mail.MXQuery(u"example.com"_s), QString());
    QVERIFY(watch.elapsed() >= 4900);
    QVERIFY(!dns.query().isEmpty());
    QCOMPARE(events.statuses,
             QStringList({u"Performing MX Query, Domain: example.com"_s, u"Problem receiving MX query"_s}));
    try {
        modMXQuery::ResolveMX(u"a.io"_s);
        QFAIL("a domain of four characters is refused");
    } catch (const QorloError &error) {
        QCOMPARE(error.number(), 20000);
        QCOMPARE(error.description(), u"No Valid Domain Specified"_s);
    }
    useServer(dns.port(), u"# no name servers\nsearch corp.example.com other.example.com\n"_s);
    events.statuses.clear();
    QCOMPARE(mail.MXQuery(QString()), QString());
    QCOMPARE(events.statuses,
             QStringList({u"Performing MX Query"_s, u"No DNS entries found, MX Query cannot contine."_s}));
    useServer(dns.port(), u"nameserver 10.0.0.1 10.0.0.2\nsearch corp.example.com x.org\nnameserver ::1\n"_s);
    modMXQuery::GetDNSInfo();
    QCOMPARE(modMXQuery::DnsServers(), QStringList({u"10.0.0.1"_s, u"::1"_s}));
    QCOMPARE(modMXQuery::LocalDomain(), u"corp.example.com"_s);
}

void TestMXQuery::dnsmasqRecords()
{
    QORLO_REQUIRE_PEER(!FindProgram(u"dnsmasq"_s).isEmpty(), u"dnsmasq"_s);
    const quint16 port = FreeUdpPort();
    PeerProcess peer;
    QORLO_START_PEER(StartDnsPeer(peer, port,
                                  {u"--local=/example.com/"_s, u"--mx-host=example.com,mx1.example.com,10"_s,
                                   u"--mx-host=example.com,mx2.example.com,20"_s}),
                     peer);
    useServer(port);
    // dnsmasq lists the preference-20 record first and spells the exchange names out without a pointer:
    // the walk, built for compressed names, stops after that first record.
    QCOMPARE(modMXQuery::ResolveMX(u"example.com"_s), u"mx2.example.com"_s);
    QCOMPARE(modMXQuery::MXRecords().size(), 1);
    QCOMPARE(modMXQuery::MXRecords().first().preference, qint16(20));
    // A sub-domain without records falls back step by step to the parent of the local domain.
    QCOMPARE(modMXQuery::ResolveMX(u"a.sales.example.com"_s), u"mx2.example.com"_s);
    QCOMPARE(modMXQuery::ResolveMX(QString()), u"mx2.example.com"_s);
    useServer(port, u"nameserver 127.0.0.1\ndomain office.example.org\n"_s);
    QCOMPARE(modMXQuery::ResolveMX(u"sales.example.com"_s), QString());
}

void TestMXQuery::sendThroughMXHost()
{
    SmtpPeer smtp;
    QORLO_START_PEER(smtp.start(), smtp);
    CraftedDns dns([](const QByteArray &query) -> QByteArray {
        return Reply(query, 1) + Record(kQuestionPointer, 15, Mx(5, Labels(u"127.0.0.1"_s) + '\0'));
    });
    useServer(dns);
    clsSendMail mail;
    MailEvents events(mail);
    mail.SetSMTPPort(smtp.port());
    mail.SetConnectTimeout(5);
    mail.SetMessageTimeout(5);
    mail.SetFrom(u"reports@example.com"_s);
    mail.SetRecipient(u"boss@example.com"_s);
    mail.Send();
    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QCOMPARE(events.statuses.first(), u"Performing MX Query"_s);
    QCOMPARE(events.statuses.at(1), u"Connecting to SMTP Server (127.0.0.1)..."_s);
    QCOMPARE(smtp.messages().size(), 1);
}

QORLO_TEST_MAIN(TestMXQuery)
#include "tst_mxquery.moc"
