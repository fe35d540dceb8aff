#include "WindowFixture.h"
#include "TestMain.h"

#include "ui/frmDomain.h"

#include <QFile>
#include <QLineEdit>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// An application folder with two shortcuts set and the shortcuts window over it.
struct DomainFixture : GlobalsFixture
{
    DomainFixture()
    {
        globals.Schedule.SaveDomain(0, u"alpha.example"_s);
        globals.Schedule.SaveDomain(3, u"delta.example"_s);
    }
    void open()
    {
        window = std::make_unique<frmDomain>(globals);
        window->open();
        QApplication::setActiveWindow(window.get());
        grid = Child<QTableWidget>(window.get(), "fgDomain");
        edit = Child<QLineEdit>(window.get(), "txtEdit");
    }
    QString cell(int row) const { return grid->item(row, 1)->text(); }
    void click(const char *name) { Click(window.get(), name); }
    // The ten shortcuts as the schedule file holds them.
    QStringList savedDomains() const
    {
        const auto file = saved();
        QStringList domains;
        for (int row = 0; row < 10; ++row)
            domains.append(file->Domain(row));
        return domains;
    }

    std::unique_ptr<frmDomain> window;
    QTableWidget *grid = nullptr;
    QLineEdit *edit = nullptr;
};

} // namespace

class TestFrmDomain : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void gridAndEditKeys();
    void saveAndExit();
};

void TestFrmDomain::gridAndEditKeys()
{
    DomainFixture f;
    f.open();
    QCOMPARE(f.grid->rowCount(), 10);
    QCOMPARE(f.grid->horizontalHeaderItem(0)->text(), u"Shortcut"_s);
    QCOMPARE(f.grid->horizontalHeaderItem(1)->text(), u"Domain"_s);
    QCOMPARE(f.grid->item(9, 0)->text(), u"@9"_s);
    // All ten rows are in view.
    f.window->adjustSize();
    const QRect last = f.grid->visualItemRect(f.grid->item(9, 1));
    QVERIFY2(
        last.top() >= 0 && last.bottom() < f.grid->viewport()->height(),
        qPrintable(
            u"row 9 at %1..%2 of %3"_s.arg(last.top()).arg(last.bottom()).arg(f.grid->viewport()->height())));
    QVERIFY(!(f.grid->item(2, 0)->flags() & Qt::ItemIsSelectable));
    QCOMPARE(f.cell(3), u"delta.example"_s);
    QCOMPARE(f.grid->currentColumn(), 1);

    // A printable key starts over with that character; Escape drops the edit.
    QTest::keyClick(f.grid, Qt::Key_X, Qt::NoModifier);
    QVERIFY(f.edit->isVisible());
    QCOMPARE(f.edit->text(), u"x"_s);
    QTest::keyClick(f.edit, Qt::Key_Escape);
    QVERIFY(!f.edit->isVisible());
    QCOMPARE(f.cell(0), u"alpha.example"_s);
    QVERIFY(f.window->isVisible());

    // Space opens the cell's text with the caret at its end; Enter keeps the edit on the same row.
    QTest::keyClick(f.grid, Qt::Key_Space);
    QCOMPARE(f.edit->cursorPosition(), u"alpha.example"_s.size());
    QTest::keyClicks(f.edit, u".org"_s);
    QTest::keyClick(f.edit, Qt::Key_Return);
    QVERIFY(!f.edit->isVisible());
    QCOMPARE(f.cell(0), u"alpha.example.org"_s);
    QCOMPARE(f.grid->currentRow(), 0);
    QCOMPARE(QApplication::focusWidget(), f.grid);
    QVERIFY(f.window->isVisible());

    // Down stores and moves one row; on the last row it only stores. Up moves back.
    QTest::keyClick(f.grid, Qt::Key_B);
    QTest::keyClicks(f.edit, u".example"_s);
    QTest::keyClick(f.edit, Qt::Key_Down);
    QCOMPARE(f.cell(0), u"b.example"_s);
    QCOMPARE(f.grid->currentRow(), 1);
    f.grid->setCurrentCell(9, 1);
    QTest::keyClick(f.grid, Qt::Key_Z);
    QTest::keyClick(f.edit, Qt::Key_Down);
    QCOMPARE(f.cell(9), u"z"_s);
    QCOMPARE(f.grid->currentRow(), 9);
    QTest::keyClick(f.grid, Qt::Key_Backspace);
    QTest::keyClick(f.edit, Qt::Key_Backspace);
    QTest::keyClick(f.edit, Qt::Key_Up);
    QCOMPARE(f.cell(9), QString());
    QCOMPARE(f.grid->currentRow(), 8);

    // A double click edits the cell's text; leaving the cell stores it, and so does the grid's focus.
    const QPoint delta = f.grid->visualItemRect(f.grid->item(3, 1)).center();
    QTest::mouseClick(f.grid->viewport(), Qt::LeftButton, {}, delta);
    QVERIFY(!f.edit->isVisible());
    QTest::mouseDClick(f.grid->viewport(), Qt::LeftButton, {}, delta);
    QVERIFY(f.edit->isVisible());
    QCOMPARE(f.edit->text(), u"delta.example"_s);
    QTest::keyClick(f.edit, Qt::Key_S);
    f.grid->setCurrentCell(5, 1);
    QVERIFY(!f.edit->isVisible());
    QCOMPARE(f.cell(3), u"delta.examples"_s);
    QTest::keyClick(f.grid, Qt::Key_E);
    f.grid->setFocus();
    QVERIFY(!f.edit->isVisible());
    QCOMPARE(f.cell(5), u"e"_s);
    QVERIFY(!QFile::exists(f.dir.filePath(u"Qorlo.XML"_s)));
}

void TestFrmDomain::saveAndExit()
{
    DomainFixture f;
    f.open();
    f.grid->setCurrentCell(7, 1);
    QTest::keyClick(f.grid, Qt::Key_H);
    QTest::keyClicks(f.edit, u".example"_s);
    // Save takes the open edit along.
    f.click("cmdSave");
    QVERIFY(!f.window->isVisible());
    const QStringList expected = {u"alpha.example"_s, {}, {}, u"delta.example"_s, {}, {}, {},
                                  u"h.example"_s,     {}, {}};
    QCOMPARE(f.savedDomains(), expected);

    // Exit keeps neither the file nor the schedule; the next opening shows the schedule again.
    f.globals.Schedule.SaveDomain(1, u"beta.example"_s);
    f.open();
    QCOMPARE(f.cell(1), u"beta.example"_s);
    QTest::keyClick(f.grid, Qt::Key_O);
    QTest::keyClick(f.edit, Qt::Key_Return);
    f.click("cmdExit");
    QVERIFY(!f.window->isVisible());
    QCOMPARE(f.globals.Schedule.Domain(0), u"alpha.example"_s);
    QCOMPARE(f.savedDomains(), expected);
}

QORLO_TEST_MAIN(TestFrmDomain)
#include "tst_frmdomain.moc"
