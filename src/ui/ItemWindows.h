#pragma once
// The windows that edit one schedule item and its parts: the item editor, the parameter and multi-run
// editors and the two collection windows. One of each per process, made when first used, and each
// opened over the window it was asked from.

#include <QObject>
#include <QPointer>

class Dispatcher;
class QDialog;
class QorloGlobals;
class QWidget;
class frmMulti;
class frmPList;
class frmPack;
class frmPackList;
class frmSchedule;

class ItemWindows : public QObject
{
    Q_OBJECT
public:
    // The windows belong to `owner` when there is one; without a dispatcher nothing stops the schedule.
    ItemWindows(QorloGlobals &globals, Dispatcher *dispatcher, QWidget *owner);
    ~ItemWindows() override;

    QorloGlobals &globals;

    // The item editor on the item at the cursor. The schedule stops meanwhile; during a run the editor
    // is refused.
    void OpenEditor(QWidget *opener);
    // The parameter editor on the item at `position`, when it has something to edit.
    void OpenParameters(int position, QWidget *opener);
    // The multi-run editor on the item at the cursor.
    void OpenMultiRun(QWidget *opener);
    // The collection window on the collection at `position`, or on a new collection.
    void OpenCollection(int position, QWidget *opener);
    void OpenNewCollection(QWidget *opener);
    // The picker that adds reports to the collection `collectionID`.
    void OpenCollectionPicker(const QString &collectionID, QWidget *opener);

    frmSchedule &Editor();
    frmPList &Parameters();
    frmMulti &MultiRun();
    frmPack &Collection();
    frmPackList &CollectionPicker();

private:
    // Stops the schedule before an editor opens; false when the editor is refused.
    bool StopForEditing(bool refuseWhileRunning);
    // Opens the window without waiting, modal to the opener; an open window comes to the front.
    static void Show(QDialog &window, QWidget *opener);

    Dispatcher *m_dispatcher;
    QWidget *m_owner;
    QPointer<frmSchedule> m_editor;
    QPointer<frmPList> m_parameters;
    QPointer<frmMulti> m_multiRun;
    QPointer<frmPack> m_collection;
    QPointer<frmPackList> m_picker;
};
