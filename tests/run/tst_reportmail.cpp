#include "../mail/tst_smtpmail_support.h"

#include "TestClocks.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "mail/SmtpLog.h"
#include "run/SMTPMail.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QSqlDatabase>
#include <QSqlQuery>

using namespace SMTPMail;
using namespace SmtpMailTest;
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

const char kReport[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<report version="1">
  <title>Sales by Region</title>
  <table name="Sales" location="sales" dll="sqlite"><property name="Database">sales.db</property></table>
  <parameter name="Region" type="12" multiple="true" prompt="Regions"/>
  <query>SELECT region, customer, amount FROM {Sales} WHERE region IN ({?Region}) ORDER BY region, customer</query>
  <layout>
    <page size="A4" orientation="portrait"/>
    <pageFooter>Page {PageNumber} of {TotalPages}</pageFooter>
    <column field="customer" caption="Customer" width="160"/>
    <column field="amount" caption="Amount" width="90" align="right" format="#,##0.00"/>
    <group field="region" caption="Region: {value}" newPage="true"><subtotal field="amount"/></group>
    <grandTotal field="amount"/>
  </layout>
</report>
)";

void WriteDatabase(const QString &path)
{
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reportmail"));
        db.setDatabaseName(path);
        db.open();
        QSqlQuery query(db);
        query.exec(QStringLiteral(
            "CREATE TABLE sales (id INTEGER PRIMARY KEY, region TEXT, customer TEXT, amount REAL)"));
        query.exec(QStringLiteral(
            "INSERT INTO sales (region, customer, amount) VALUES ('North', 'Alder Ltd', 120.5), "
            "('North', 'Birch plc', 80), ('South', 'Cedar & Sons', 42.25)"));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("reportmail"));
}

QString BodyText(const QJsonObject &parsed)
{
    return PartOf(parsed, 0).value(QStringLiteral("text")).toString();
}

} // namespace

void TestReportMail::initTestCase()
{
    ShortClientTimeouts();
    m_peerUp = m_peer.start();
    WriteDatabase(m_reports.filePath(QStringLiteral("sales.db")));
    QFile file(m_reports.filePath(QStringLiteral("sales.rpt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(kReport);
    file.close();
    m_report = m_engine.OpenReport(file.fileName());
    Engine::ParameterFieldDefinition &region = m_report->ParameterFields().Item(1);
    region.AddCurrentValue(QStringLiteral("North"));
    region.AddCurrentValue(QStringLiteral("South"));
    m_report->ReadRecords();
}

QString TestReportMail::exportReport(MailApp &app, int format, const QString &extension)
{
    QDir(app.dir.path()).mkdir(QStringLiteral("SMTP"));
    const QString staged = app.path(QStringLiteral("SMTP/sales.") + extension);
    Engine::ExportOptions &options = m_report->ExportOptions();
    options = Engine::ExportOptions();
    options.FormatType = format;
    options.CharFieldDelimiter = QStringLiteral("|");
    options.CharStringDelimiter = QStringLiteral("'");
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
    QTest::newRow("csv in body") << QStringLiteral("In Body") << int(Engine::CharSeparatedFormat)
                                 << QStringLiteral("csv") << QStringLiteral("text/plain") << none
                                 << QStringLiteral("'North'|'Alder Ltd'|120.5\n'North'|'Birch plc'|80\n");
    QTest::newRow("text in body") << QStringLiteral("In Body") << int(Engine::TextFormat)
                                  << QStringLiteral("txt") << QStringLiteral("text/plain") << none
                                  << QStringLiteral("Cedar & Sons");
    QTest::newRow("html page in body")
        << QStringLiteral("In Body") << int(Engine::HtmlFormat) << QStringLiteral("html")
        << QStringLiteral("text/html") << none << QStringLiteral("Alder Ltd");
    QTest::newRow("html pages in body")
        << QStringLiteral("In Body") << int(Engine::DhtmlFormat) << QStringLiteral("html")
        << QStringLiteral("multipart/related") << QStringList{QStringLiteral("sales2.html")}
        << QStringLiteral("\"cid:sales2.html\"");
    QTest::newRow("pdf in body") << QStringLiteral("In Body") << int(Engine::PdfFormat)
                                 << QStringLiteral("pdf") << QStringLiteral("multipart/mixed")
                                 << QStringList{QStringLiteral("sales.pdf")} << QString();
    QTest::newRow("html pages attached")
        << QStringLiteral("Attachment") << int(Engine::DhtmlFormat) << QStringLiteral("html")
        << QStringLiteral("multipart/mixed")
        << QStringList{QStringLiteral("sales.html"), QStringLiteral("sales2.html")} << QString();
    QTest::newRow("in body in small letters")
        << QStringLiteral("in body") << int(Engine::CharSeparatedFormat) << QStringLiteral("csv")
        << QStringLiteral("multipart/mixed") << QStringList{QStringLiteral("sales.csv")} << QString();
    QTest::newRow("excel attached") << QStringLiteral("Attachment") << int(Engine::Excel80Format)
                                    << QStringLiteral("xls") << QStringLiteral("multipart/mixed")
                                    << QStringList{QStringLiteral("sales.xls")} << QString();
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
    app.schedule.SetRptMessage(QStringLiteral("Regions {?Region}"));
    const QString staged = exportReport(app, format, extension);
    const qsizetype before = m_peer.messages().size();
    SendReportMail({app.schedule, app.log, m_report.get()}, QStringLiteral("boss@example.com"), staged,
                   QStringLiteral("Sales for {?Region}"));

    const QString message = newMessage(before);
    QVERIFY2(!message.isEmpty(), qPrintable(app.smtpLog()));
    const QJsonObject parsed = ParseMessage(message);
    QCOMPARE(parsed.value(QStringLiteral("content_type")).toString(), contentType);
    QCOMPARE(parsed.value(QStringLiteral("subject")).toString(), QStringLiteral("Sales for North, South"));
    QCOMPARE(PartNames(parsed), QStringList{QString()} + attached);
    const QString body = BodyText(parsed);
    QVERIFY2(body.startsWith(QStringLiteral("\nRegions North, South\n")), qPrintable(body));
    QVERIFY2(body.contains(inBody), qPrintable(body));
    if (inBody.isEmpty())
        QCOMPARE(body, QStringLiteral("\nRegions North, South\n"));
    QVERIFY(app.smtpLog().contains(QStringLiteral("Message sent to boss@example.com")));
    QVERIFY(app.logEntries().isEmpty());
}

void TestReportMail::extraFilesAndMessages()
{
    QORLO_REQUIRE_PEER(m_peerUp, m_peer.error());
    MailApp app(m_peer.port());
    app.schedule.SetEMailAttach(QStringLiteral("Attachment"));
    app.schedule.SetRptFrom(QStringLiteral("sales@example.com"));
    app.schedule.SetRptToCC(QStringLiteral("cc@1"));
    app.schedule.SetRptToBCC(QStringLiteral("<hidden.lst>"));
    app.schedule.SaveDomain(1, QStringLiteral("example.org"));
    app.writeFile(QStringLiteral("hidden.lst"), "audit@example.net\r\n");
    app.schedule.SMTP_StdMessage = QStringLiteral("Standard text {?Region}");
    const QString terms = app.writeFile(QStringLiteral("terms.txt"), "Terms\r\n");
    const QString logo = app.writeFile(QStringLiteral("logo.gif"), "GIF89a");
    const QString staged = exportReport(app, Engine::PdfFormat, QStringLiteral("pdf"));
    const qsizetype before = m_peer.messages().size();
    SendReportMail({app.schedule, app.log, m_report.get()}, QStringLiteral("boss@1"), staged, QString(),
                   terms + QStringLiteral(";") + app.path(QStringLiteral("gone.doc")) + QStringLiteral(";;") +
                       logo);

    const QString message = newMessage(before);
    QVERIFY2(!message.isEmpty(), qPrintable(app.smtpLog()));
    QCOMPARE(SmtpPeer::envelopeOf(message).value(QStringLiteral("mail_from")).toString(),
             QStringLiteral("sales@example.com"));
    QCOMPARE(Recipients(message),
             QStringList({QStringLiteral("boss@example.org"), QStringLiteral("cc@example.org"),
                          QStringLiteral("audit@example.net")}));
    const QJsonObject parsed = ParseMessage(message);
    QCOMPARE(parsed.value(QStringLiteral("subject")).toString(), QStringLiteral("Sales"));
    QCOMPARE(PartNames(parsed), QStringList({QString(), QStringLiteral("sales.pdf"),
                                             QStringLiteral("terms.txt"), QStringLiteral("logo.gif")}));
    // The standard message is substituted by the sender only.
    QCOMPARE(BodyText(parsed), QStringLiteral("\nStandard text North, South\n"));
    QVERIFY(!app.smtpLog().contains(QStringLiteral("gone.doc")));
}

void TestReportMail::missingServerOrSender()
{
    MailApp app(1);
    app.schedule.SMTP_From.clear();
    SendReportMail({app.schedule, app.log, m_report.get()}, QStringLiteral("boss@example.com"), QString(),
                   QString());
    QCOMPARE(app.schedule.ErrorMsg(), QStringLiteral("ERROR: No STMP server or sender specified"));
    QVERIFY(!QFile::exists(app.path(QStringLiteral("SMTP.Log"))));
    app.schedule.SetErrorMsg(QString());
    app.schedule.SMTP_From = QStringLiteral("scheduler@example.com");
    app.schedule.SMTP_Server.clear();
    SendReportMail({app.schedule, app.log, m_report.get()}, QStringLiteral("boss@example.com"), QString(),
                   QString());
    QCOMPARE(app.schedule.ErrorMsg(), QStringLiteral("ERROR: No STMP server or sender specified"));
}

void TestReportMail::noDataChoices()
{
    QORLO_REQUIRE_PEER(m_peerUp, m_peer.error());
    MailApp app(m_peer.port());
    app.schedule.SetEmail(QStringLiteral("boss@1;desk@example.com"));
    app.schedule.SaveDomain(1, QStringLiteral("example.org"));
    app.schedule.ProcessingID = QStringLiteral("99");
    struct Case
    {
        QString choice;
        QString body;
        QStringList recipients;
        QString logText;
    };
    const QList<Case> cases = {
        {QStringLiteral("Notify Administrator"),
         QStringLiteral("\nNo data found when processing the report:Sales  (ID=7)\n"),
         {QStringLiteral("scheduler@example.com")},
         QStringLiteral("No Data found when processing the Report.  Sending message to "
                        "administrator=scheduler@example.com")},
        {QStringLiteral("notify recipient"),
         QStringLiteral("\nNo data found when processing report:") + app.schedule.File() +
             QStringLiteral("  (ID=99)\n"),
         {QStringLiteral("boss@example.org"), QStringLiteral("desk@example.com")},
         QStringLiteral("No Data in Report.  Sending message to recipients=boss@1;desk@example.com")},
        {QStringLiteral("No Report is Sent"),
         QString(),
         {},
         QStringLiteral("No Data in Report.  No ouput generated and processed")},
        {QStringLiteral("Send Empty Report"),
         QString(),
         {},
         QStringLiteral("No Data in Report.  Invalid option selected=Send Empty Report")},
    };
    for (const Case &c : cases) {
        app.schedule.SetNoRecords(c.choice);
        const qsizetype before = m_peer.messages().size();
        SendNoDataMail({app.schedule, app.log, m_report.get()});
        QCOMPARE(app.logEntries().last(), QStringLiteral("99|") + c.logText + QLatin1Char('|'));
        if (c.recipients.isEmpty()) {
            QCOMPARE(m_peer.messages().size(), before);
            continue;
        }
        const QString message = newMessage(before);
        QVERIFY2(!message.isEmpty(), qPrintable(c.choice));
        QCOMPARE(Recipients(message), c.recipients);
        const QJsonObject parsed = ParseMessage(message);
        QCOMPARE(parsed.value(QStringLiteral("subject")).toString(),
                 QStringLiteral("No Data when processing report"));
        QCOMPARE(BodyText(parsed), c.body);
    }
    QCOMPARE(app.logEntries().size(), cases.size());
}

void TestReportMail::noticesGoToNotifyList()
{
    QORLO_REQUIRE_PEER(m_peerUp, m_peer.error());
    MailApp app(m_peer.port());
    app.schedule.SaveDomain(3, QStringLiteral("example.com"));
    app.schedule.SetNotifyTo(QStringLiteral("<notify.lst>"));
    app.writeFile(QStringLiteral("notify.lst"), "ops@3\r\n\"night@3\"\r\n\r\n");
    const MailRun run{app.schedule, app.log, m_report.get()};
    const qsizetype before = m_peer.messages().size();
    SendNotifyMail(run, QString(), QStringLiteral("unsent"), QStringLiteral("7"), QStringLiteral("Sales"));
    SendErrorMail(run, QString(), QStringLiteral("unsent"), QStringLiteral("7"), QStringLiteral("Sales"));
    QCOMPARE(m_peer.messages().size(), before);

    SendNotifyMail(run, QStringLiteral("someone@example.net"), QStringLiteral("Done for {?Region}"),
                   QStringLiteral("7"), QStringLiteral("Sales"));
    SendErrorMail(run, QStringLiteral("x"), QStringLiteral("Error occured"), QStringLiteral("8"),
                  QStringLiteral("Stock"));
    const QStringList messages = m_peer.messages();
    QCOMPARE(messages.size(), before + 2);
    const QStringList team{QStringLiteral("ops@example.com"), QStringLiteral("night@example.com")};
    QCOMPARE(Recipients(messages.at(before)), team);
    QCOMPARE(Recipients(messages.at(before + 1)), team);
    const QJsonObject notice = ParseMessage(messages.at(before));
    QCOMPARE(notice.value(QStringLiteral("subject")).toString(),
             QStringLiteral("Completed Processing 7: Sales"));
    QCOMPARE(BodyText(notice), QStringLiteral("Done for North, South\n"));
    const QJsonObject error = ParseMessage(messages.at(before + 1));
    QCOMPARE(error.value(QStringLiteral("subject")).toString(), QStringLiteral("Error Processing 8: Stock"));
    QCOMPARE(BodyText(error), QStringLiteral("Error occured\n"));
    QVERIFY(app.smtpLog().contains(QStringLiteral("Message sent to ops@example.com;night@example.com")));
}

void TestReportMail::mailPause()
{
    QTemporaryDir dir;
    clsSchedule schedule(dir.path());
    SmtpLog::StartSmtpLog(QStringLiteral("pause"));
    schedule.SMTPDelay = 0;
    MailPause(schedule);
    QVERIFY(!SmtpLog::SmtpLogBuffer().contains(QStringLiteral("Now waiting")));
    schedule.SMTPDelay = 1;
    MailPause(schedule);
    QVERIFY(SmtpLog::SmtpLogBuffer().endsWith(
        QStringLiteral("   Now waiting for 1 seconds before processing any more mail messages\r\n")));
    // 33 seconds are 33000 ms, past the 16-bit range: the overflow reaches the caller after the log line.
    schedule.SMTPDelay = 33;
    try {
        MailPause(schedule);
        QFAIL("no overflow");
    } catch (const QorloError &error) {
        QCOMPARE(error.number(), int(QorloError::Overflow));
    }
    QVERIFY(SmtpLog::SmtpLogBuffer().endsWith(
        QStringLiteral("   Now waiting for 33 seconds before processing any more mail messages\r\n")));
}

QORLO_TEST_MAIN(TestReportMail)
#include "tst_reportmail.moc"
