#pragma once
// The main window's entries for the operator's desk: the calendar, list, log, connection and output
// windows, find and replace, viewing a file, the connection test, the window list, help and the
// support mails. One object of the main window, which owns the windows it opens.

#include <QObject>
#include <QString>

#include <array>

class QorloGlobals;
class QAction;
class QMenu;
class QMenuBar;
class QWindow;
class frmMain;
class frmAbout;
class frmBusinessCal;
class frmConnect;
class frmDates;
class frmFind;
class frmFormat;
class frmLog;
class frmLogSetting;
class frmSettings;

class DeskCommands : public QObject
{
    Q_OBJECT
public:
    static constexpr int WindowEntries = 6;

    DeskCommands(QorloGlobals &globals, frmMain &main);

    // The entries go into the main window's menus; the list, window and help menus are the desk's own,
    // put in front of `help`, whose entries this adds to.
    void AddEntries(QMenu *schedule, QMenu *settings, QMenu *view, QMenu *help);
    // Entry 0 says "No Forms open", or the open windows have entries 0 on, at most six.
    void RebuildWindowList();

    void OpenBusinessCalendar();
    void OpenDynamicDates();
    void OpenExportFormats();
    void OpenFindReplace();
    void OpenLogSettings();
    void OpenLogViewer();
    void OpenConnections();
    void OpenTableMap();
    void OpenOutputSettings();
    void OpenAbout();
    void NewList();
    void EditList();
    void DeleteList();
    void ViewReportNow();
    void TestConnection();
    void OpenHelp();
    void OpenKnowledgebase();
    void SendXmlFiles();
    void SendConnectionDetails();

private:
    QAction *Add(QMenu *menu, const char *name, const QString &caption, void (DeskCommands::*command)());
    void AddListMenu(QMenuBar *bar, QAction *before);
    void AddWindowMenu(QMenuBar *bar, QAction *before);
    void OnFocusWindowChanged(QWindow *window);
    // The ReportID and File of the selected row; empty without a selection.
    bool SelectedItem(QString &reportID, QString &file) const;
    template <typename Window> void OpenOnce(Window *&window);

    QorloGlobals &m_globals;
    frmMain &m_main;
    std::array<QAction *, WindowEntries> m_windowEntries{};
    frmBusinessCal *m_businessCal = nullptr;
    frmDates *m_dates = nullptr;
    frmFormat *m_formats = nullptr;
    frmFind *m_find = nullptr;
    frmLogSetting *m_logSettings = nullptr;
    frmLog *m_log = nullptr;
    frmConnect *m_connect = nullptr;
    frmSettings *m_output = nullptr;
    frmAbout *m_about = nullptr;
};
