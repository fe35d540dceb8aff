// The collection windows over the demo folder, from the main window's menu; the scenario test runs a
// collection the windows made.
#include "DemoWindows.h"
#include "TestMain.h"

#include "scheduler/Dispatcher.h"
#include "ui/frmMain.h"
#include "ui/frmPack.h"
#include "ui/frmPackList.h"
#include "ui/frmSchedule.h"

#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

namespace {

struct PackApp : DemoWindows
{
    // The demo schedule's first four items, which the cases below name; the later ones are left out.
    PackApp()
    {
        while (schedule.Count() > 4) {
            schedule.SetPosition(schedule.Count() - 1);
            schedule.Delete(schedule.ReportID());
        }
        schedule.Save(path(u"Qorlo.XML"_s));
        globals.Viewer.ApplyStartDefaults();
        globals.ViewTable();
    }
    frmPack *pack() { return main.findChild<frmPack *>(); }
    frmPackList *picker() { return main.findChild<frmPackList *>(); }
    QTableWidget *members() { return Child<QTableWidget>(pack(), "fgTable"); }
    QTableWidget *list() { return Child<QTableWidget>(picker(), "fgList"); }
    // The member IDs of the collection, in the order of the collection table.
    QStringList stored(const QString &collection)
    {
        QStringList ids;
        for (int row = 0; row < schedule.CollectionCount(); ++row) {
            schedule.SetCollectionPosition(row);
            if (schedule.CollectionID() == collection)
                ids.append(schedule.CollectionItem());
        }
        return ids;
    }
    // A new collection from the main menu, with the members added through the picker.
    QString newCollection(const QStringList &members)
    {
        Trigger(&main, "mnuNewPack");
        const QString id = Child<QLabel>(pack(), "lPackID")->text();
        Trigger(pack(), "mnuAddReport");
        for (const QString &member : members) {
            const int row = int(ColumnTexts(list()).indexOf(member));
            Q_EMIT list()->cellClicked(row, 1);
            prompter.setNextAnswers({true});
            Trigger(picker(), "mnuAddCollection");
        }
        return id;
    }

    Dispatcher dispatcher{globals};
    frmMain main{globals, dispatcher};
};

} // namespace

class TestFrmPack : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void newAndEditFromTheMainWindow();
    void pickerAddsMarkedReports();
    void reorderAndRemove();
    void editorsOfCollectionAndMember();
};

void TestFrmPack::newAndEditFromTheMainWindow()
{
    PackApp app;
    Trigger(&app.main, "mnuNewPack");
    frmPack *pack = app.pack();
    QVERIFY(pack && pack->isVisible());
    QCOMPARE(pack->windowTitle(), u"Report Collection"_s);
    QCOMPARE(Child<QLineEdit>(pack, "txtPack")->text(), u"New Collection"_s);
    QCOMPARE(Child<QLabel>(pack, "lPackID")->text(), u"5"_s);
    auto saved = app.saved();
    saved->Find(u"5"_s);
    QCOMPARE(saved->File(), u"COLLECTION"_s);
    QCOMPARE(saved->Schedule() + saved->FreqTimes() + saved->Frequency(), u"N1W"_s);

    Child<QLineEdit>(pack, "txtPack")->setText(u"Morning"_s);
    Trigger(pack, "mnuSaveCollection");
    saved = app.saved();
    saved->Find(u"5"_s);
    QCOMPARE(saved->Name(), u"Morning"_s);
    QCOMPARE(saved->CollectionName(), u"Morning"_s);
    pack->reject();

    // Edit works on a collection only.
    app.globals.ViewTable();
    SelectItem(app.main, u"3"_s);
    Trigger(&app.main, "mnuEditPack");
    QCOMPARE(app.prompter.take(),
             QStringList{u"Edit Collection: Please select a collection from the list"_s});
    QVERIFY(!pack->isVisible());
    SelectItem(app.main, u"5"_s);
    Trigger(&app.main, "mnuEditPack");
    QVERIFY(pack->isVisible());
    QCOMPARE(Child<QLineEdit>(pack, "txtPack")->text(), u"Morning"_s);
}

void TestFrmPack::pickerAddsMarkedReports()
{
    PackApp app;
    clsSchedule &schedule = app.schedule;
    app.select(u"1"_s);
    schedule.SetSchedule(u"C"_s);
    app.select(u"2"_s);
    schedule.SetSchedule(u"N"_s);
    Trigger(&app.main, "mnuNewPack");
    const QString id = Child<QLabel>(app.pack(), "lPackID")->text();
    Trigger(app.pack(), "mnuAddReport");
    frmPackList *picker = app.picker();
    QVERIFY(picker && picker->isVisible());
    QCOMPARE(picker->windowTitle(), u"Add Reports to Collection"_s);
    // A collection is never offered, so that collections do not nest.
    QCOMPARE(ColumnTexts(app.list(), 0), (QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
    for (const auto &[menu, ids] : {std::pair{"mnuViewScheduled", QStringList{u"3"_s, u"4"_s}},
                                    std::pair{"mnuViewUnscheduled", QStringList{u"1"_s, u"2"_s}},
                                    std::pair{"mnuViewCollected", QStringList{u"1"_s}},
                                    std::pair{"mnuViewAll", QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s}}}) {
        Trigger(picker, menu);
        QCOMPARE(ColumnTexts(app.list(), 0), ids);
    }

    // A click marks a row and a second one unmarks it.
    Q_EMIT app.list()->cellClicked(0, 1);
    Q_EMIT app.list()->cellClicked(1, 2);
    Q_EMIT app.list()->cellClicked(3, 0);
    Q_EMIT app.list()->cellClicked(0, 0);
    QVERIFY(!picker->IsMarked(0) && picker->IsMarked(1) && picker->IsMarked(3));
    app.prompter.setNextAnswers({false});
    Trigger(picker, "mnuAddCollection");
    QCOMPARE(app.prompter.take(),
             QStringList{
                 u"Add Reports to Collection: Confirm you wish to load 2\r\nreports into this collection"_s});
    QVERIFY(app.stored(id).isEmpty());
    app.prompter.setNextAnswers({true});
    Trigger(picker, "mnuAddCollection");
    QCOMPARE(app.stored(id), (QStringList{u"2"_s, u"4"_s}));
    QVERIFY(!picker->IsMarked(1) && !picker->IsMarked(3));
    // A member not scheduled of its own runs in collections only; a scheduled one stays scheduled.
    QCOMPARE(app.saved()->Cell(1, clsSchedule::colSchedule), u"C"_s);
    QCOMPARE(app.saved()->Cell(3, clsSchedule::colSchedule), u"Y"_s);
    QCOMPARE(ColumnTexts(app.members(), frmPack::colStep), (QStringList{u"1"_s, u"2"_s}));
    QCOMPARE(ColumnTexts(app.members(), frmPack::colName),
             (QStringList{u"Disk usage"_s, u"Regional sales"_s}));
    QCOMPARE(ColumnTexts(app.members(), frmPack::colFile).last(), app.path(u"sales-parameters.rpt"_s));

    // Nothing marked adds nothing and still saves; a report added again is listed again.
    QFile::remove(app.path(u"Qorlo.XML"_s));
    app.prompter.setNextAnswers({true});
    Trigger(picker, "mnuAddCollection");
    QVERIFY(QFile::exists(app.path(u"Qorlo.XML"_s)));
    QCOMPARE(app.stored(id).size(), 2);
    Q_EMIT app.list()->cellClicked(3, 0);
    app.prompter.setNextAnswers({true});
    Trigger(picker, "mnuAddCollection");
    QCOMPARE(ColumnTexts(app.members(), frmPack::colID), (QStringList{u"2"_s, u"4"_s, u"4"_s}));
}

void TestFrmPack::reorderAndRemove()
{
    PackApp app;
    const QString id = app.newCollection({u"3"_s, u"4"_s, u"1"_s});
    QCOMPARE(app.stored(id), (QStringList{u"3"_s, u"4"_s, u"1"_s}));
    frmPack *pack = app.pack();
    app.members()->clearSelection();
    app.prompter.take();
    Trigger(pack, "mnuMoveUp");
    QCOMPARE(app.prompter.take(), QStringList{u"Report Collection: Please select a report from the list"_s});

    app.members()->selectRow(2);
    Trigger(pack, "mnuMoveUp");
    QCOMPARE(app.stored(id), (QStringList{u"3"_s, u"1"_s, u"4"_s}));
    QCOMPARE(ColumnTexts(app.members(), frmPack::colID), (QStringList{u"3"_s, u"1"_s, u"4"_s}));
    Trigger(pack, "mnuMoveUp");
    Trigger(pack, "mnuMoveUp");
    QCOMPARE(app.stored(id), (QStringList{u"1"_s, u"3"_s, u"4"_s}));
    Trigger(pack, "mnuMoveDown");
    QCOMPARE(app.stored(id), (QStringList{u"3"_s, u"1"_s, u"4"_s}));

    // Removing asks first; the member's own item stays in the schedule.
    app.members()->selectRow(0);
    app.prompter.setNextAnswers({false, true});
    Trigger(pack, "mnuRemove");
    QCOMPARE(app.stored(id).size(), 3);
    Trigger(pack, "mnuRemove");
    QCOMPARE(app.prompter.take(),
             (QStringList{u"Report Collection: Confirm you wish to remove report from the Collection?"_s,
                          u"Report Collection: Confirm you wish to remove report from the Collection?"_s}));
    QCOMPARE(app.stored(id), (QStringList{u"1"_s, u"4"_s}));
    QVERIFY(app.schedule.Confirm(u"3"_s));
}

void TestFrmPack::editorsOfCollectionAndMember()
{
    PackApp app;
    app.select(u"2"_s);
    app.schedule.SetSchedule(u"N"_s);
    const QString id = app.newCollection({u"2"_s});
    frmPack *pack = app.pack();
    Child<QLineEdit>(pack, "txtPack")->setText(u"Morning"_s);
    Trigger(pack, "mnuSaveCollection");
    Trigger(pack, "mnuScheduleCollection");
    auto *editor = app.main.findChild<frmSchedule *>();
    QVERIFY(editor && editor->isVisible());
    QCOMPARE(editor->windowTitle(), u"Edit schedule for Item "_s + id);
    editor->reject();

    // The member runs in the collection: the collections that run it take the place of its when frame.
    app.members()->selectRow(0);
    Trigger(pack, "mnuSetDest");
    QVERIFY(editor->isVisible());
    QCOMPARE(editor->windowTitle(), u"Edit schedule for Item 2"_s);
    auto *collections = Child<QTableWidget>(editor, "fgCollection");
    QVERIFY(collections->isVisibleTo(editor) && !Child<QWidget>(editor, "frWhen")->isVisibleTo(editor));
    QCOMPARE(collections->rowCount(), 1);
    QCOMPARE(collections->item(0, 0)->text(), u"Morning"_s);
}

QORLO_TEST_MAIN(TestFrmPack)
#include "tst_frmpack.moc"
