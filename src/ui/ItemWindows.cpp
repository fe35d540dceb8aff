#include "ItemWindows.h"

#include "frmMulti.h"
#include "frmPList.h"
#include "frmPack.h"
#include "frmPackList.h"
#include "frmSchedule.h"

#include "scheduler/Dispatcher.h"
#include "scheduler/QorloGlobals.h"

ItemWindows::ItemWindows(QorloGlobals &items, Dispatcher *dispatcher, QWidget *owner)
    : QObject(owner), globals(items), m_dispatcher(dispatcher), m_owner(owner)
{
}

// A window the owner has already taken with it is gone; the others go with this object.
ItemWindows::~ItemWindows()
{
    delete m_picker.data();
    delete m_collection.data();
    delete m_multiRun.data();
    delete m_parameters.data();
    delete m_editor.data();
}

bool ItemWindows::StopForEditing(bool refuseWhileRunning)
{
    return !m_dispatcher || m_dispatcher->StopForEditing(refuseWhileRunning);
}

void ItemWindows::OpenEditor(QWidget *opener)
{
    if (!StopForEditing(true))
        return;
    // The editor can page through the schedule: all rows are refreshed when the main window is back.
    globals.RefreshRowIndex = -1;
    Editor().ShowSchedule();
    Show(Editor(), opener);
}

void ItemWindows::OpenParameters(int position, QWidget *opener)
{
    StopForEditing(false);
    if (Parameters().LoadTables(position))
        Show(Parameters(), opener);
}

void ItemWindows::OpenMultiRun(QWidget *opener)
{
    StopForEditing(false);
    MultiRun().LoadForm();
    Show(MultiRun(), opener);
}

void ItemWindows::OpenCollection(int position, QWidget *opener)
{
    globals.RefreshRowIndex = -1;
    Collection().LoadForm(position);
    Show(Collection(), opener);
}

void ItemWindows::OpenNewCollection(QWidget *opener)
{
    globals.RefreshRowIndex = -1;
    Collection().NewCollection();
    Show(Collection(), opener);
}

void ItemWindows::OpenCollectionPicker(const QString &collectionID, QWidget *opener)
{
    CollectionPicker().SetCollection(collectionID);
    Show(CollectionPicker(), opener);
}

frmSchedule &ItemWindows::Editor()
{
    if (!m_editor)
        m_editor = new frmSchedule(*this, m_owner);
    return *m_editor;
}

frmPList &ItemWindows::Parameters()
{
    if (!m_parameters)
        m_parameters = new frmPList(globals, m_owner);
    return *m_parameters;
}

frmMulti &ItemWindows::MultiRun()
{
    if (!m_multiRun)
        m_multiRun = new frmMulti(globals, m_owner);
    return *m_multiRun;
}

frmPack &ItemWindows::Collection()
{
    if (!m_collection)
        m_collection = new frmPack(*this, m_owner);
    return *m_collection;
}

frmPackList &ItemWindows::CollectionPicker()
{
    if (!m_picker)
        m_picker = new frmPackList(*this, m_owner);
    return *m_picker;
}

void ItemWindows::Show(QDialog &window, QWidget *opener)
{
    if (window.isVisible()) {
        window.raise();
        window.activateWindow();
        return;
    }
    if (opener && window.parentWidget() != opener)
        window.setParent(opener, window.windowFlags());
    window.open();
}
