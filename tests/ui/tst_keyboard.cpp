// Keyboard and focus as a desktop user expects them, over the faults found when the item editor and the
// main window were tried with the keyboard.
#include "AppObjects.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowChecks.h"
#include "WindowFixture.h"

#include "scheduler/Dispatcher.h"
#include "ui/ItemWindows.h"
#include "ui/frmMain.h"
#include "ui/frmSchedule.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

namespace {

struct KeyboardApp : GlobalsFixture
{
    KeyboardApp()
    {
        globals.Viewer.ApplyStartDefaults();
        for (const QString &name : {u"Sales"_s, u"Costs"_s, u"Stock"_s}) {
            AddItem(schedule,
                    {QString(), name, path(name + u".rpt"_s), u"D"_s, u"1"_s, u"05-Mar-2026 07:30"_s});
            schedule.SetLocation(path(name + u".pdf"_s));
        }
        globals.SaveSchedule();
    }
    // The item editor on the second item, shown and in front.
    frmSchedule &editor()
    {
        schedule.Find(u"2"_s);
        windows.OpenEditor(nullptr);
        frmSchedule &window = windows.Editor();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qWarning("the editor did not come to the front");
        return window;
    }

    FixedClock clock{QDateTime(QDate(2026, 3, 2), QTime(9, 0))};
    ClockGuard guard{clock};
    ItemWindows windows{globals, nullptr, nullptr};
};

} // namespace

class TestKeyboard : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void returnPressesSaveNotFirst();
    void tabsFollowTheReadingOrder();
    void focusAndTab();
    void clickAfterADialogIsKept();
};

void TestKeyboard::returnPressesSaveNotFirst()
{
    KeyboardApp app;
    frmSchedule &editor = app.editor();
    auto *name = Child<QLineEdit>(&editor, "txtReportName");
    name->setText(u"Costs EU"_s);
    QTest::keyClick(name, Qt::Key_Return);
    // Saved and closed, not moved to the first item.
    QVERIFY(!editor.isVisible());
    QCOMPARE(editor.windowTitle(), u"Edit schedule for Item 2"_s);
    app.schedule.Find(u"2"_s);
    QCOMPARE(app.saved()->Cell(1, clsSchedule::colName), u"Costs EU"_s);
    for (const char *navigation : {"cmdFirst", "cmdPrior", "cmdNext", "cmdLast"})
        QVERIFY2(!Child<QPushButton>(&editor, navigation)->autoDefault(), navigation);
}

// Each destination shows its tab; on every tab of every destination Tab follows the reading order and
// each field has its label.
void TestKeyboard::tabsFollowTheReadingOrder()
{
    KeyboardApp app;
    frmSchedule &editor = app.editor();
    QStringList chain = TabChain(&editor);
    QCOMPARE(chain.mid(0, 5), (QStringList{u"txtReportName"_s, u"txtReportFile"_s, u"txtDesc"_s, u"cmbDest"_s,
                                           u"cmbFormat"_s}));
    QCOMPARE(chain.last(), u"cmdExit"_s);
    auto *tabs = Child<QTabWidget>(&editor, "tbOutput");
    QCOMPARE(tabs->tabText(tabs->currentIndex()), u"Disk"_s);
    for (const auto &[destination, shown] :
         {std::pair{u"Email"_s, u"Email"_s}, std::pair{u"Printer"_s, u"Printer"_s},
          std::pair{u"MultiRun"_s, u"Multirun"_s}, std::pair{u"Disk File"_s, u"Disk"_s}}) {
        Child<QComboBox>(&editor, "cmbDest")->setCurrentText(destination);
        QCOMPARE(tabs->tabText(tabs->currentIndex()), shown);
        for (int tab = 0; tab < tabs->count(); ++tab) {
            if (!tabs->isTabVisible(tab))
                continue;
            tabs->setCurrentIndex(tab);
            const QStringList faults = TabOrderFaults(&editor) + UnlabelledFields(&editor);
            QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
        }
    }
}

// The first field has the focus, also when the editor opens again after the focus was elsewhere; Tab
// walks the chain from it and leaves a multi-line field instead of typing into it.
void TestKeyboard::focusAndTab()
{
    KeyboardApp app;
    frmSchedule &first = app.editor();
    QCOMPARE(first.focusWidget(), Child<QWidget>(&first, "txtReportName"));
    Child<QWidget>(&first, "txtEvery")->setFocus();
    first.reject();
    frmSchedule &editor = app.editor();
    QCOMPARE(editor.focusWidget(), Child<QWidget>(&editor, "txtReportName"));
    QTest::keyClick(&editor, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget()->objectName(), u"txtReportFile"_s);

    auto *description = Child<QPlainTextEdit>(&editor, "txtDesc");
    description->setFocus();
    QTest::keyClicks(description, u"Monthly"_s);
    QTest::keyClick(description, Qt::Key_Tab);
    QCOMPARE(description->toPlainText(), u"Monthly"_s);
    QCOMPARE(QApplication::focusWidget()->objectName(), u"cmbDest"_s);
    for (QPlainTextEdit *field : editor.findChildren<QPlainTextEdit *>())
        QVERIFY2(field->tabChangesFocus(), qPrintable(field->objectName()));
}

void TestKeyboard::clickAfterADialogIsKept()
{
    KeyboardApp app;
    Dispatcher dispatcher(app.globals);
    frmMain window(app.globals, dispatcher);
    window.ShowWindow();
    app.globals.ViewTable();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto *grid = Child<QTableWidget>(&window, "fgView");

    // The editor was open; the click that brings the main window back selects row 3, and the refresh
    // that coming back makes keeps it.
    Child<QAction>(&window, "mnuModifyReport")->setEnabled(true);
    window.SetSelectedRow(1);
    Child<QAction>(&window, "mnuModifyReport")->trigger();
    window.findChild<frmSchedule *>()->reject();
    const QRect third = grid->visualRect(grid->model()->index(2, 2));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, third.center());
    QCOMPARE(window.SelectedRow(), 3);
    QCOMPARE(app.globals.RefreshRowIndex, qint16(-1));
    dispatcher.MainWindowInFront();
    QCOMPARE(window.SelectedRow(), 3);
    QCOMPARE(grid->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(grid->selectionModel()->selectedRows().first().row(), 2);
}

QORLO_TEST_MAIN(TestKeyboard)
#include "tst_keyboard.moc"
