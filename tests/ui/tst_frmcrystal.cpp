#include "AppObjects.h"
#include "EngineOracles.h"
#include "Readers.h"
#include "SalesReport.h"
#include "WindowFixture.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "core/TWReg.h"
#include "engine/Codes.h"
#include "engine/Report.h"
#include "ui/ItemWindows.h"
#include "ui/ReportPageView.h"
#include "ui/ReportViewer.h"
#include "ui/frmAlert10.h"
#include "ui/frmCrystal.h"
#include "ui/frmSchedule.h"

#include <QAction>
#include <QDateTimeEdit>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTimer>
#include <QTreeWidget>

using namespace Qt::Literals::StringLiterals;

namespace {

// The demo folder copied, a schedule over it, and the viewers opened on its reports.
struct ViewerFixture : TestSupport::GlobalsFixture
{
    ViewerFixture()
    {
        const QDir demo(QStringLiteral(QORLO_SOURCE_DIR "/demo"));
        for (const QString &name : demo.entryList({u"*.rpt"_s, u"*.db"_s, u"*.png"_s}, QDir::Files))
            QFile::copy(demo.filePath(name), dir.filePath(name));
    }
    ~ViewerFixture()
    {
        QSqlDatabase::removeDatabase(dir.path());
        // Windows that own other windows take them along.
        QList<QPointer<QWidget>> windows;
        for (QWidget *window : QApplication::topLevelWidgets())
            windows.append(window);
        for (const QPointer<QWidget> &window : std::as_const(windows))
            delete window.data();
    }

    // A report over a table of the copied demo database, called S in `elements`.
    QString report(const QString &name, const QString &elements, const QString &table = u"sales"_s)
    {
        return TestSupport::WriteReport(QDir(dir.path()), name,
                                        u"<table name=\"S\" location=\"%1\" dll=\"sqlite\"><property "
                                        "name=\"Database\">demo.db</property></table>\n"_s.arg(table) +
                                            elements);
    }
    frmCrystal *view(const QString &name) { return frmCrystal::ViewFile(globals, path(name)); }
    // The copied demo database, on a connection of this fixture.
    QSqlDatabase db()
    {
        if (!QSqlDatabase::contains(dir.path())) {
            QSqlDatabase added = QSqlDatabase::addDatabase(u"QSQLITE"_s, dir.path());
            added.setDatabaseName(path(u"demo.db"_s));
            added.open();
        }
        return QSqlDatabase::database(dir.path());
    }
    // A count by SQL on the copied demo database.
    int count(const QString &sql)
    {
        QSqlQuery query(sql, db());
        return query.next() ? query.value(0).toInt() : -1;
    }
    QString exportPdf(frmCrystal &window, const QString &name)
    {
        const QString pdf = dir.filePath(name);
        window.Viewer().ExportTo(Engine::PdfFormat, pdf);
        return pdf;
    }
};

// The words of a text, sorted: drawing order and line breaks differ between the model and pdftotext.
QStringList Words(const QString &text)
{
    QStringList words = text.split(QRegularExpression(u"\\s+"_s), Qt::SkipEmptyParts);
    words.sort();
    return words;
}

QString ModelText(const Engine::ReportPages &pages, int number)
{
    QStringList texts;
    for (const Engine::PageText &text : pages.page(number).texts)
        texts.append(text.text);
    return texts.join(u' ');
}

bool HasInk(const QImage &image)
{
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) {
            if (qGray(image.pixel(x, y)) < 100)
                return true;
        }
    }
    return false;
}

// Accepts the parameter dialog once it shows, after `fill` has set its fields.
void AnswerParameters(const std::function<void(QDialog &)> &fill)
{
    TestSupport::WhenDialogShows([fill](QDialog &dialog) {
        fill(dialog);
        if (dialog.isVisible())
            dialog.accept();
        if (dialog.isVisible())
            qWarning() << dialog.findChild<QLabel *>(u"lblError"_s)->text();
    });
}

QString CsvIds(frmCrystal &window, const QString &path)
{
    window.Viewer().ExportTo(Engine::CharSeparatedFormat, path);
    return EngineOracles::ReadUtf8(path);
}

} // namespace

class TestFrmCrystal : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void demoReportsMatchTheirPdf();
    void groupTreeSearchAndZoom();
    void alertsNarrowTheView();
    void fiftyTwoAlertsOverrun();
    void parametersReachTheQuery();
    void windowOperations();
};

void TestFrmCrystal::demoReportsMatchTheirPdf()
{
    ViewerFixture f;
    const QStringList reports = QDir(f.dir.path()).entryList({u"*.rpt"_s}, QDir::Files);
    QVERIFY(reports.size() >= 5);
    for (const QString &name : reports) {
        if (EngineOracles::ReadUtf8(f.path(name)).contains(u"<parameter"_s))
            AnswerParameters([](QDialog &dialog) {
                // A parameter without a default gets a region.
                for (QLineEdit *edit : dialog.findChildren<QLineEdit *>()) {
                    if (edit->text().isEmpty())
                        edit->setText(u"North"_s);
                }
                for (QPlainTextEdit *edit : dialog.findChildren<QPlainTextEdit *>()) {
                    if (edit->toPlainText().isEmpty())
                        edit->setPlainText(u"North"_s);
                }
            });
        frmCrystal *window = f.view(name);
        QVERIFY2(window && window->Report(), qPrintable(name));
        QCOMPARE(window->ErrorText(), QString());
        QCOMPARE(window->Report()->PrintingStatus().Progress(), int(Engine::ProgressCompleted));
        const Engine::ReportPages &pages = window->Viewer().Pages();
        QVERIFY2(pages.complete() && pages.pagesArrived() == pages.pageCount(), qPrintable(name));
        QVERIFY(window->windowTitle() == window->Report()->ReportTitle());
        const QString pdf = f.exportPdf(*window, name + u".pdf"_s);
        QCOMPARE(TestSupport::PdfPages(pdf), pages.pageCount());
        for (int number : {1, pages.pageCount()}) {
            QCOMPARE(Words(ModelText(pages, number)), Words(TestSupport::PdfText(pdf, number)));
            window->Viewer().GoToPage(number);
            QVERIFY2(HasInk(window->Viewer().PageView().image()), qPrintable(name));
        }
        QCOMPARE(window->Viewer().CurrentPage(), pages.pageCount());
        window->close();
    }
    QCOMPARE(f.prompter.take(), QStringList());
}

void TestFrmCrystal::groupTreeSearchAndZoom()
{
    ViewerFixture f;
    frmCrystal *window = f.view(u"sales-by-region.rpt"_s);
    QVERIFY(window);
    ReportViewer &viewer = window->Viewer();
    const QString pdf = f.exportPdf(*window, u"regions.pdf"_s);

    // One branch a region, in the report's order, each holding its products.
    QTreeWidget &tree = viewer.GroupTree();
    QCOMPARE(tree.topLevelItemCount(), f.count(u"SELECT count(DISTINCT region) FROM sales"_s));
    const QStringList regions{u"East"_s, u"North"_s, u"South"_s, u"West"_s};
    for (int i = 0; i < regions.size(); ++i) {
        QTreeWidgetItem *region = tree.topLevelItem(i);
        QCOMPARE(region->text(0), u"Region: "_s + regions[i]);
        QCOMPARE(region->childCount(),
                 f.count(u"SELECT count(DISTINCT product) FROM sales WHERE region = '%1'"_s.arg(regions[i])));
        Q_EMIT tree.itemClicked(region, 0);
        QVERIFY(TestSupport::PdfText(pdf, viewer.CurrentPage()).contains(u"Region: "_s + regions[i]));
        if (viewer.CurrentPage() > 1) {
            const QString before = TestSupport::PdfText(pdf, viewer.CurrentPage() - 1);
            QVERIFY(!before.contains(u"Region: "_s + regions[i]));
        }
    }

    // Search goes on from the page shown and marks what it found.
    QVERIFY(viewer.FindText(u"region: south"_s));
    const int south = viewer.CurrentPage();
    QVERIFY(TestSupport::PdfText(pdf, south).contains(u"Region: South"_s));
    QVERIFY(!viewer.PageView().image().isNull());
    QSqlQuery customers(
        u"SELECT customer FROM sales WHERE region = 'West' ORDER BY product, order_date, id"_s, f.db());
    QVERIFY(customers.next());
    const QString customer = customers.value(0).toString();
    Q_EMIT tree.itemClicked(tree.topLevelItem(3), 0);
    const int west = viewer.CurrentPage();
    QVERIFY(viewer.FindText(customer));
    QCOMPARE(viewer.CurrentPage(), west);
    QVERIFY(TestSupport::PdfText(pdf, west).contains(customer));
    QVERIFY(viewer.FindText(customer));
    QVERIFY(viewer.CurrentPage() != west);
    QVERIFY(TestSupport::PdfText(pdf, viewer.CurrentPage()).contains(customer));
    QVERIFY(!viewer.FindText(u"No such customer anywhere"_s));

    // Navigation stays within the pages; zoom stays within 50 to 400 percent.
    viewer.LastPage();
    viewer.NextPage();
    QCOMPARE(viewer.CurrentPage(), viewer.Pages().pageCount());
    viewer.FirstPage();
    viewer.PreviousPage();
    QCOMPARE(viewer.CurrentPage(), 1);
    ReportPageView &view = viewer.PageView();
    view.setZoomPercent(200);
    QCOMPARE(view.zoomPercent(), 200);
    const QSize twice = view.image().size();
    view.setZoomPercent(1000);
    QCOMPARE(view.zoomPercent(), 400);
    QVERIFY(qAbs(view.image().width() - twice.width() * 2) <= 1);
    view.setZoomPercent(10);
    QCOMPARE(view.zoomPercent(), 50);
    window->resize(900, 700);
    view.setFit(ReportPageView::Fit::Page);
    QVERIFY(view.image().height() <= view.viewport()->height());
    view.setFit(ReportPageView::Fit::Width);
    QVERIFY(view.image().width() <= view.viewport()->width());
    QVERIFY(view.image().width() > view.viewport()->width() * 3 / 4);
}

void TestFrmCrystal::alertsNarrowTheView()
{
    ViewerFixture f;
    frmCrystal *window = f.view(u"large-orders-alert.rpt"_s);
    QVERIFY(window);
    frmAlert10 *alerts = window->AlertWindow();
    QVERIFY(alerts);
    QCOMPARE(alerts->windowTitle(), u"Alert Triggered in Orders with Alerts"_s);
    QCOMPARE(window->AlertKey(), u"Orders with Alerts"_s);
    const QList<std::pair<QString, QString>> conditions{
        {u"Large order"_s, u"amount >= 2000"_s},
        {u"Unpaid large order"_s, u"amount >= 1500 AND NOT paid"_s},
        {u"Doohickey in the North"_s,
         u"product = 'Doohickey' AND region = 'North' AND strftime('%m', order_date) = '12'"_s}};
    QStringList fired{QString()};
    for (const auto &[name, where] : conditions) {
        if (f.count(u"SELECT count(*) FROM sales WHERE "_s + where) > 0)
            fired.append(name);
    }
    QCOMPARE(TestSupport::ItemTexts(alerts->cmbAlert), fired);

    const int all = f.count(u"SELECT count(*) FROM sales"_s);
    const QString csv = f.dir.filePath(u"narrowed.csv"_s);
    for (const auto &[name, where] : conditions) {
        if (!fired.contains(name))
            continue;
        alerts->cmbAlert->setCurrentText(name);
        alerts->cmdView->click();
        QCOMPARE(window->windowTitle(), u"Orders with Alerts (Alert= "_s + name + u')');
        const int expected = f.count(u"SELECT count(*) FROM sales WHERE "_s + where);
        QCOMPARE(window->Report()->PrintingStatus().NumberOfRecordSelected(), expected);
        // The rows written are exactly the alert's: one line each below the heading.
        QCOMPARE(CsvIds(*window, csv).count(u'\n'), expected + 1);
        QVERIFY(window->Viewer().Pages().pageCount() >= 1);
    }

    const int narrowedPages = window->Viewer().Pages().pageCount();
    window->SetAlertSelection(u"Broken"_s, u"amount >>> 3"_s);
    QCOMPARE(
        f.prompter.take(),
        QStringList{u"Database Connections: Error displaying alert\r\nInvalid Group Selection Formula"_s});
    QCOMPARE(window->Viewer().Pages().pageCount(), narrowedPages);
    QVERIFY(window->Report()->PrintingStatus().NumberOfRecordSelected() < all);

    alerts->cmbAlert->setCurrentIndex(0);
    alerts->cmdView->click();
    QCOMPARE(window->windowTitle(), u"Orders with Alerts"_s);
    QCOMPARE(window->Report()->PrintingStatus().NumberOfRecordSelected(), all);

    QPointer<frmAlert10> watched(alerts);
    window->close();
    QTRY_VERIFY_WITH_TIMEOUT(watched.isNull(), 5000);
}

void TestFrmCrystal::fiftyTwoAlertsOverrun()
{
    ViewerFixture f;
    QString alerts;
    for (int i = 1; i <= 52; ++i)
        alerts += u"<alert name=\"Alert %1\">amount &gt; %2</alert>\n"_s.arg(i).arg(i);
    const QString many =
        f.report(u"many.rpt"_s, u"<title>Many</title><query>SELECT id, amount FROM {S}</query>"
                                "<layout><column field=\"id\" caption=\"Order\" width=\"60\"/>"
                                "</layout>"_s +
                                    alerts);
    auto *window = new frmCrystal(f.globals);
    window->LoadTCReport(many, false);
    int error = 0;
    try {
        window->ViewReport();
    } catch (const QorloError &failure) {
        error = failure.number();
    }
    QCOMPARE(error, int(QorloError::OutOfRange));
    QCOMPARE(window->AlertWindow()->cmbAlert->count(), 1 + frmAlert10::MaxAlerts);
}

void TestFrmCrystal::parametersReachTheQuery()
{
    ViewerFixture f;
    AnswerParameters([](QDialog &dialog) {
        auto *regions = dialog.findChild<QPlainTextEdit *>(u"txtRegions"_s);
        QVERIFY(regions);
        QCOMPARE(regions->toPlainText(), u"North\nEast"_s);
        regions->setPlainText(u"South\nWest"_s);
        dialog.findChild<QDateTimeEdit *>(u"txtFrom"_s)->setDate(QDate(2024, 6, 1));
        dialog.findChild<QDateTimeEdit *>(u"txtTo"_s)->setDate(QDate(2024, 6, 30));
    });
    frmCrystal *window = f.view(u"sales-parameters.rpt"_s);
    QVERIFY(window);
    const int expected = f.count(u"SELECT count(*) FROM sales WHERE region IN ('South', 'West') "
                                 "AND order_date BETWEEN '2024-06-01' AND '2024-06-30'"_s);
    QVERIFY(expected > 0);
    QCOMPARE(window->Report()->PrintingStatus().NumberOfRecordSelected(), expected);

    // Cancelling the dialog shows nothing.
    AnswerParameters([](QDialog &dialog) { dialog.reject(); });
    frmCrystal *cancelled = f.view(u"sales-parameters.rpt"_s);
    QCOMPARE(cancelled->ErrorText(), u"No parameter values"_s);
    QCOMPARE(cancelled->Viewer().Pages().pagesArrived(), 0);

    // The item editor's preview takes the item's stored values and asks for none.
    clsSchedule &schedule = f.globals.Schedule;
    TestSupport::AddItem(schedule, {QString(), u"Parameters"_s, f.path(u"sales-parameters.rpt"_s), u"D"_s,
                                    u"1"_s, u"05-Mar-2026 07:30"_s});
    const QString id = schedule.ReportID();
    const QList<std::pair<QString, QString>> stored{
        {u"Regions"_s, u"East|North"_s}, {u"From"_s, u"2024-02-01"_s}, {u"To"_s, u"2024-02-29"_s}};
    for (const auto &[name, value] : stored) {
        schedule.ParmAddNew();
        schedule.SetParmReportID(id);
        schedule.SetParmName(name);
        schedule.SetParmValue(value);
    }
    schedule.SetPosition(-1);
    const int storedCount = f.count(u"SELECT count(*) FROM sales WHERE region IN ('East', 'North') "
                                    "AND order_date BETWEEN '2024-02-01' AND '2024-02-29'"_s);
    frmCrystal *preview = frmCrystal::PreviewItem(f.globals, id, f.path(u"sales-parameters.rpt"_s), nullptr);
    QVERIFY(preview);
    QCOMPARE(preview->Report()->PrintingStatus().NumberOfRecordSelected(), storedCount);
    QCOMPARE(schedule.Position(), -1);

    // The same from the item editor's Preview, as a window of the editor.
    schedule.Find(id);
    ItemWindows windows(f.globals, nullptr, nullptr);
    frmSchedule &editor = windows.Editor();
    editor.ShowSchedule();
    auto *command = editor.findChild<QAction *>(u"mnuPreview"_s);
    QVERIFY(command);
    command->trigger();
    auto *fromEditor = editor.findChild<frmCrystal *>();
    QVERIFY(fromEditor);
    QCOMPARE(fromEditor->Report()->PrintingStatus().NumberOfRecordSelected(), storedCount);
    QCOMPARE(f.prompter.take(), QStringList());

    // A value set by name is typed by its parameter: a number must be numeric.
    const QString limited = f.report(u"limited.rpt"_s, uR"(<title>Limited</title>
<parameter name="Limit" type="7" prompt="Smallest amount"><default>0</default></parameter>
<query>SELECT id, amount FROM {S} WHERE amount &gt;= {?Limit}</query>
<layout><column field="id" caption="Id" width="60"/></layout>)"_s);
    auto *typed = new frmCrystal(f.globals);
    typed->LoadTCReport(limited, false);
    typed->LoadTCParm(u"{?limit}"_s, u"many"_s);
    QCOMPARE(f.prompter.take(), QStringList{u"Error: ERROR: 'Limit' parameter must be numeric"_s});
    typed->LoadTCParm(u"{?Limit}"_s, u"1500"_s);
    typed->ViewReport();
    QCOMPARE(typed->Report()->PrintingStatus().NumberOfRecordSelected(),
             f.count(u"SELECT count(*) FROM sales WHERE amount >= 1500"_s));
}

void TestFrmCrystal::windowOperations()
{
    ViewerFixture f;
    // Without a title the caption is the file name; a missing table is the engine's box, nothing shown.
    f.report(
        u"untitled.rpt"_s,
        uR"(<query>SELECT id FROM {S}</query><layout><column field="id" caption="Id" width="60"/></layout>)"_s,
        u"no_such_table"_s);
    frmCrystal *untitled = f.view(u"untitled.rpt"_s);
    QCOMPARE(untitled->windowTitle(), u"untitled.rpt"_s);
    const QStringList boxes = f.prompter.take();
    QCOMPARE(boxes.size(), 1);
    QVERIFY2(boxes[0].startsWith(u"Report Viewer: Error: "_s) && boxes[0].contains(u"no_such_table"_s),
             qPrintable(boxes[0]));
    QCOMPARE(untitled->Report()->PrintingStatus().Progress(), int(Engine::ProgressFailed));

    // A missing file is the engine's box; the view goes on with nothing to show.
    auto *missing = new frmCrystal(f.globals);
    missing->LoadTCReport(f.path(u"gone.rpt"_s), false);
    missing->ViewReport();
    QCOMPARE(f.prompter.take().size(), 1);
    QCOMPARE(missing->ErrorText(), QString());
    QVERIFY(!missing->Report());
    missing->close();

    // The report date shows where the report prints its date.
    auto *dated = new frmCrystal(f.globals);
    dated->SetDate(dated->StringToDate(u"2020-05-01"_s));
    dated->LoadTCReport(f.path(u"sales-by-region.rpt"_s), false);
    dated->ViewReport();
    QVERIFY2(ModelText(dated->Viewer().Pages(), 1).contains(u"2020"_s),
             qPrintable(ModelText(dated->Viewer().Pages(), 1)));

    QVERIFY(dated->ShowGroupTree() && !dated->Viewer().GroupTree().isHidden());
    dated->SetGroupTree(false);
    QVERIFY(!dated->ShowGroupTree() && dated->Viewer().GroupTree().isHidden());
    // Without groups there is no tree to show, though it stays switched on.
    QVERIFY(untitled->ShowGroupTree() && untitled->Viewer().GroupTree().isHidden());
    // Refresh reads the database again.
    QSqlQuery insert(f.db());
    QVERIFY2(
        insert.exec(u"INSERT INTO sales SELECT id + 100000, order_date, region, product, customer, quantity, "
                    "unit_price, amount, paid FROM sales WHERE id <= 5"_s),
        qPrintable(insert.lastError().text()));
    dated->RefreshData();
    dated->WaitForFinish();
    QCOMPARE(dated->Report()->PrintingStatus().NumberOfRecordSelected(),
             f.count(u"SELECT count(*) FROM sales"_s));
    dated->FadeIn();
    QCOMPARE(qRound(dated->windowOpacity() * 255), 254);
    dated->SetFade(128);
    QCOMPARE(qRound(dated->windowOpacity() * 255), 128);
    dated->setWindowState(Qt::WindowNoState);
    dated->SetSize(1500, 3000, 12000, 9000);
    QCOMPARE(dated->pos(), QPoint(100, 200));
    QCOMPARE(dated->size(), QSize(800, 600));
    dated->SetSize(0, 0, 0, 0);
    QCOMPARE(dated->size(), QSize(800, 600));
    dated->close();
    QCOMPARE(TWReg::ReadSettingNumber(u"Viewer"_s, u"Width"_s, 0), 12000);
    QCOMPARE(TWReg::ReadSettingNumber(u"Viewer"_s, u"WindowState"_s, -1), 0);

    // A long report is cancelled from the event loop, which keeps turning while it reads.
    const QString big = f.report(u"big.rpt"_s, uR"(<title>Big</title>
<query>SELECT a.id AS id, b.customer AS customer FROM {S} a, {S} b</query>
<layout><column field="id" caption="Id" width="60"/><column field="customer" caption="Customer" width="160"/></layout>)"_s);
    auto *cancelled = new frmCrystal(f.globals);
    cancelled->LoadTCReport(big, false);
    int ticks = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        if (++ticks == 3)
            cancelled->Viewer().Cancel();
    });
    tick.start(20);
    cancelled->ViewReport();
    QVERIFY(ticks >= 3);
    QCOMPARE(cancelled->Report()->PrintingStatus().Progress(), int(Engine::ProgressHalted));
    QVERIFY(!cancelled->Viewer().Busy());
    QCOMPARE(f.prompter.take(), QStringList());
}

QORLO_TEST_MAIN(TestFrmCrystal)
#include "tst_frmcrystal.moc"
