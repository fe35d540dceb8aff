#include "AppObjects.h"
#include "SalesReport.h"
#include "SmtpPeer.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "mail/SmtpLog.h"
#include "run/MailSources.h"
#include "run/SMTPMail.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QDir>
#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

using namespace SMTPMail;
using namespace TestSupport;

class TestReportMail : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void reportByFormat_data();
    void reportByFormat();
    void extraFilesAndMessages();
    void missingServerOrSender();
    void scheduleForTheMailCode();
    void noDataChoices();
    void noticesGoToNotifyList();
    void mailPause();

private:
    // The report exported as `format` into the staging folder of `app`, the way a mail run stages it.
    QString exportReport(MailApp &app, int format, const QString &extension);
    QString newMessage(qsizetype before) const;

    SmtpPeer m_peer;
    bool m_peerUp = false;
    QTemporaryDir m_reports;
    Engine::Application m_engine;
    std::unique_ptr<Engine::Report> m_report;
};

namespace {

QString BodyText(const QJsonObject &parsed)
{
    return PartOf(parsed, 0).value(u"text"_s).toString();
}

} // namespace

void TestReportMail::initTestCase()
{
    ShortMailTimeouts();
    m_peerUp = m_peer.start();
    QVERIFY2(m_peerUp || !m_peer.timedOut(), qPrintable(m_peer.error()));
    // North and South on a page each.
    MakeSalesDatabase(m_reports.filePath(u"sales.db"_s));
    m_report = m_engine.OpenReport(SalesReport(
        QDir(m_reports.path()), u"sales.rpt"_s,
        u"SELECT region, customer, amount FROM {Sales} WHERE region IN ({?Region}) ORDER BY region, customer"_s,
        u"<parameter name=\"Region\" type=\"12\" multiple=\"true\"/><layout>"
        "<column field=\"customer\" width=\"160\"/><column field=\"amount\" width=\"90\"/>"
        "<group field=\"region\" newPage=\"true\"/></layout>"_s));
    Engine::ParameterFieldDefinition &region = m_report->ParameterFields().Item(1);
    region.AddCurrentValue(u"North"_s);
    region.AddCurrentValue(u"South"_s);
    m_report->ReadRecords();
}

QString TestReportMail::exportReport(MailApp &app, int format, const QString &extension)
{
    QDir(app.appPath).mkdir(u"SMTP"_s);
    const QString staged = app.path(u"SMTP/sales."_s + extension);
    Engine::ExportOptions &options = m_report->ExportOptions();
    options = Engine::ExportOptions();
    options.FormatType = format;
    options.CharFieldDelimiter = u"|"_s;
    options.CharStringDelimiter = u"'"_s;
    options.HTMLEnableSeparatedPages = format == Engine::DhtmlFormat;
    options.HTMLHasPageNavigator = options.HTMLEnableSeparatedPages;
    (format == Engine::HtmlFormat || format == Engine::DhtmlFormat ? options.HTMLFileName
                                                                   : options.DiskFileName) = staged;
    m_report->Export(false);
    return staged;
}

QString TestReportMail::newMessage(qsizetype before) const
{
    const QStringList messages = m_peer.messages();
    return messages.size() == before + 1 ? messages.last() : QString();
}

void TestReportMail::reportByFormat_data()
{
    QTest::addColumn<QString>("emailAttach");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("contentType");
    QTest::addColumn<QStringList>("attached");
    QTest::addColumn<QString>("inBody");

    const QStringList none;
    QTest::newRow("csv in body") << u"In Body"_s << int(Engine::CharSeparatedFormat) << u"csv"_s
                                 << u"text/plain"_s << none
                                 << u"'North'|'Acme Ltd'|120.5\n'North'|'O''Brien \"Tools\"'|1500.25\n"_s;
    QTest::newRow("text in body") << u"In Body"_s << int(Engine::TextFormat) << u"txt"_s << u"text/plain"_s
                                  << none << u"O'Brien \"Tools\""_s;
    QTest::newRow("html page in body")
        << u"In Body"_s << int(Engine::HtmlFormat) << u"html"_s << u"text/html"_s << none << u"Acme Ltd"_s;
    QTest::newRow("html pages in body")
        << u"In Body"_s << int(Engine::DhtmlFormat) << u"html"_s << u"multipart/related"_s
        << QStringList{u"sales2.html"_s} << u"\"cid:sales2.html\""_s;
    QTest::newRow("pdf in body") << u"In Body"_s << int(Engine::PdfFormat) << u"pdf"_s << u"multipart/mixed"_s
                                 << QStringList{u"sales.pdf"_s} << QString();
    QTest::newRow("html pages attached")
        << u"Attachment"_s << int(Engine::DhtmlFormat) << u"html"_s << u"multipart/mixed"_s
        << QStringList{u"sales.html"_s, u"sales2.html"_s} << QString();
    QTest::newRow("in body in small letters")
        << u"in body"_s << int(Engine::CharSeparatedFormat) << u"csv"_s << u"multipart/mixed"_s
        << QStringList{u"sales.csv"_s} << QString();
    QTest::newRow("excel attached") << u"Attachment"_s << int(Engine::Excel80Format) << u"xls"_s
                                    << u"multipart/mixed"_s << QStringList{u"sales.xls"_s} << QString();
}

void TestReportMail::reportByFormat()
{
    QFETCH(QString, emailAttach);
    QFETCH(int, format);
    QFETCH(QString, extension);
    QFETCH(QString, contentType);
    QFETCH(QStringList, attached);
    QFETCH(QString, inBody);
    QORLO_REQUIRE_PEER(m_peerUp, m_peer.error());
    MailApp app(m_peer.port());
    app.schedule.SetEMailAttach(emailAttach);
    app.schedule.SetRptMessage(u"Regions {?Region}"_s);
    const QString staged = exportReport(app, format, extension);
    const qsizetype before = m_peer.messages().size();
    SendReportMail({app.schedule, app.log, m_report.get()}, u"boss@example.com"_s, staged,
                   u"Sales for {?Region}"_s);

    const QString message = newMessage(before);
    QVERIFY2(!message.isEmpty(), qPrintable(app.smtpLog()));
    const QJsonObject parsed = ParseMessage(message);
    QCOMPARE(parsed.value(u"content_type"_s).toString(), contentType);
    QCOMPARE(parsed.value(u"subject"_s).toString(), u"Sales for North, South"_s);
    QCOMPARE(PartNames(parsed), QStringList{QString()} + attached);
    const QString body = BodyText(parsed);
    QVERIFY2(body.startsWith(u"\nRegions North, South\n"_s), qPrintable(body));
    QVERIFY2(body.contains(inBody), qPrintable(body));
    if (inBody.isEmpty())
        QCOMPARE(body, u"\nRegions North, South\n"_s);
    QVERIFY(app.smtpLog().contains(u"Message sent to boss@example.com"_s));
    QVERIFY(app.logEntries().isEmpty());
}

void TestReportMail::extraFilesAndMessages()
{
    QORLO_REQUIRE_PEER(m_peerUp, m_peer.error());
    MailApp app(m_peer.port());
    app.schedule.SetEMailAttach(u"Attachment"_s);
    app.schedule.SetRptFrom(u"sales@example.com"_s);
    app.schedule.SetRptToCC(u"cc@1"_s);
    app.schedule.SetRptToBCC(u"<hidden.lst>"_s);
    app.schedule.SaveDomain(1, u"example.org"_s);
    app.writeFile(u"hidden.lst"_s, "audit@example.net\r\n");
    app.schedule.SMTP_StdMessage = u"Standard text {?Region}"_s;
    const QString terms = app.writeFile(u"terms.txt"_s, "Terms\r\n");
    const QString logo = app.writeFile(u"logo.gif"_s, "GIF89a");
    const QString staged = exportReport(app, Engine::PdfFormat, u"pdf"_s);
    const qsizetype before = m_peer.messages().size();
    SendReportMail({app.schedule, app.log, m_report.get()}, u"boss@1"_s, staged, QString(),
                   terms + u";"_s + app.path(u"gone.doc"_s) + u";;"_s + logo);

    const QString message = newMessage(before);
    QVERIFY2(!message.isEmpty(), qPrintable(app.smtpLog()));
    QCOMPARE(SmtpPeer::envelopeOf(message).value(u"mail_from"_s).toString(), u"sales@example.com"_s);
    QCOMPARE(Recipients(message),
             QStringList({u"boss@example.org"_s, u"cc@example.org"_s, u"audit@example.net"_s}));
    const QJsonObject parsed = ParseMessage(message);
    QCOMPARE(parsed.value(u"subject"_s).toString(), u"Sales"_s);
    QCOMPARE(PartNames(parsed), QStringList({QString(), u"sales.pdf"_s, u"terms.txt"_s, u"logo.gif"_s}));
    // The standard message is substituted by the sender only.
    QCOMPARE(BodyText(parsed), u"\nStandard text North, South\n"_s);
    QVERIFY(!app.smtpLog().contains(u"gone.doc"_s));
}

void TestReportMail::missingServerOrSender()
{
    MailApp app(1);
    app.schedule.SMTP_From.clear();
    SendReportMail({app.schedule, app.log, m_report.get()}, u"boss@example.com"_s, QString(), QString());
    QCOMPARE(app.schedule.ErrorMsg(), u"ERROR: No STMP server or sender specified"_s);
    QVERIFY(!QFile::exists(app.path(u"SMTP.Log"_s)));
    app.schedule.SetErrorMsg(QString());
    app.schedule.SMTP_From = u"scheduler@example.com"_s;
    app.schedule.SMTP_Server.clear();
    SendReportMail({app.schedule, app.log, m_report.get()}, u"boss@example.com"_s, QString(), QString());
    QCOMPARE(app.schedule.ErrorMsg(), u"ERROR: No STMP server or sender specified"_s);
}

void TestReportMail::scheduleForTheMailCode()
{
    // A send that fails is written in the run log against the running item, with its next run; the
    // line end of the mail client's error list becomes a blank in the one-line entry.
    MailApp app(1);
    SendReportMail({app.schedule, app.log, m_report.get()}, u"not an address"_s, QString(), QString());
    QCOMPARE(app.logEntries(), QStringList{QStringLiteral("7|Sales: Error Sending Email (Missing or Invalid "
                                                          "Recipient E-mail Address )|02-Mar-2026 06:00")});

    app.schedule.SMTPAuthentication = u"Yes"_s;
    app.schedule.SMTPUser = u"mailer"_s;
    app.schedule.SMTPPassword = u"s3cret"_s;
    app.schedule.SMTP_Encryption = u"STARTTLS"_s;
    const SmtpSettings settings = MailSources::ServerSettings(app.schedule);
    QCOMPARE(QStringList({settings.server, settings.from, QString::number(settings.port), settings.encryption,
                          settings.authentication, settings.user, settings.password}),
             QStringList({u"127.0.0.1"_s, u"scheduler@example.com"_s, u"1"_s, u"STARTTLS"_s, u"Yes"_s,
                          u"mailer"_s, u"s3cret"_s}));

    // Address lists: the schedule's folder and shortcuts; a missing list is logged against the item
    // processed when it is found missing.
    app.schedule.SaveDomain(9, u"example.net"_s);
    const AddressList::Sources sources = MailSources::ListSources(app.schedule, app.log);
    app.schedule.ProcessingID = u"17"_s;
    QCOMPARE(AddressList::ExpandAddressList(u"a@9;<gone.lst>"_s, sources), u"a@example.net;<gone.lst>"_s);
    QCOMPARE(app.logEntries().last(), u"17|Cannot find list file: "_s + app.path(u"gone.lst"_s) + u'|');
}

void TestReportMail::noDataChoices()
{
    QORLO_REQUIRE_PEER(m_peerUp, m_peer.error());
    MailApp app(m_peer.port());
    app.schedule.SetEmail(u"boss@1;desk@example.com"_s);
    app.schedule.SaveDomain(1, u"example.org"_s);
    app.schedule.ProcessingID = u"99"_s;
    struct Case
    {
        QString choice;
        QString body;
        QStringList recipients;
        QString logText;
    };
    const QList<Case> cases = {
        {u"Notify Administrator"_s,
         u"\nNo data found when processing the report:Sales  (ID=7)\n"_s,
         {u"scheduler@example.com"_s},
         u"No Data found when processing the Report.  Sending message to "
         "administrator=scheduler@example.com"_s},
        {u"notify recipient"_s,
         u"\nNo data found when processing report:"_s + app.schedule.File() + u"  (ID=99)\n"_s,
         {u"boss@example.org"_s, u"desk@example.com"_s},
         u"No Data in Report.  Sending message to recipients=boss@1;desk@example.com"_s},
        {u"No Report is Sent"_s, QString(), {}, u"No Data in Report.  No ouput generated and processed"_s},
        {u"Send Empty Report"_s,
         QString(),
         {},
         u"No Data in Report.  Invalid option selected=Send Empty Report"_s},
    };
    for (const Case &c : cases) {
        app.schedule.SetNoRecords(c.choice);
        const qsizetype before = m_peer.messages().size();
        SendNoDataMail({app.schedule, app.log, m_report.get()});
        QCOMPARE(app.logEntries().last(), u"99|"_s + c.logText + u'|');
        if (c.recipients.isEmpty()) {
            QCOMPARE(m_peer.messages().size(), before);
            continue;
        }
        const QString message = newMessage(before);
        QVERIFY2(!message.isEmpty(), qPrintable(c.choice));
        QCOMPARE(Recipients(message), c.recipients);
        const QJsonObject parsed = ParseMessage(message);
        QCOMPARE(parsed.value(u"subject"_s).toString(), u"No Data when processing report"_s);
        QCOMPARE(BodyText(parsed), c.body);
    }
    QCOMPARE(app.logEntries().size(), cases.size());
}

void TestReportMail::noticesGoToNotifyList()
{
    QORLO_REQUIRE_PEER(m_peerUp, m_peer.error());
    MailApp app(m_peer.port());
    app.schedule.SaveDomain(3, u"example.com"_s);
    app.schedule.SetNotifyTo(u"<notify.lst>"_s);
    app.writeFile(u"notify.lst"_s, "ops@3\r\n\"night@3\"\r\n\r\n");
    const MailRun run{app.schedule, app.log, m_report.get()};
    const qsizetype before = m_peer.messages().size();
    SendNotifyMail(run, QString(), u"unsent"_s, u"7"_s, u"Sales"_s);
    SendErrorMail(run, QString(), u"unsent"_s, u"7"_s, u"Sales"_s);
    QCOMPARE(m_peer.messages().size(), before);

    SendNotifyMail(run, u"someone@example.net"_s, u"Done for {?Region}"_s, u"7"_s, u"Sales"_s);
    SendErrorMail(run, u"x"_s, u"Error occured"_s, u"8"_s, u"Stock"_s);
    const QStringList messages = m_peer.messages();
    QCOMPARE(messages.size(), before + 2);
    const QStringList team{u"ops@example.com"_s, u"night@example.com"_s};
    QCOMPARE(Recipients(messages.at(before)), team);
    QCOMPARE(Recipients(messages.at(before + 1)), team);
    const QJsonObject notice = ParseMessage(messages.at(before));
    QCOMPARE(notice.value(u"subject"_s).toString(), u"Completed Processing 7: Sales"_s);
    QCOMPARE(BodyText(notice), u"Done for North, South\n"_s);
    const QJsonObject error = ParseMessage(messages.at(before + 1));
    QCOMPARE(error.value(u"subject"_s).toString(), u"Error Processing 8: Stock"_s);
    QCOMPARE(BodyText(error), u"Error occured\n"_s);
    QVERIFY(app.smtpLog().contains(u"Message sent to ops@example.com;night@example.com"_s));
}

void TestReportMail::mailPause()
{
    QTemporaryDir dir;
    clsSchedule schedule(dir.path());
    SmtpLog::StartSmtpLog(u"pause"_s);
    schedule.SMTPDelay = 0;
    MailPause(schedule);
    QVERIFY(!SmtpLog::SmtpLogBuffer().contains(u"Now waiting"_s));
    schedule.SMTPDelay = 1;
    MailPause(schedule);
    QVERIFY(SmtpLog::SmtpLogBuffer().endsWith(
        u"   Now waiting for 1 seconds before processing any more mail messages\r\n"_s));
    // 33 seconds are 33000 ms, past the 16-bit range: the overflow reaches the caller after the log line.
    schedule.SMTPDelay = 33;
    QCOMPARE(ErrorOf([&] { MailPause(schedule); }), int(QorloError::Overflow));
    QVERIFY(SmtpLog::SmtpLogBuffer().endsWith(
        u"   Now waiting for 33 seconds before processing any more mail messages\r\n"_s));
}

QORLO_TEST_MAIN(TestReportMail)
#include "tst_reportmail.moc"
