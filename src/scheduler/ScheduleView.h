#pragma once
// What the core needs of the schedule grid and the main window's caption; row 0 is the heading and
// each further row shows one item, its ReportID in column 0.

#include <QString>

class ScheduleView
{
public:
    // Back colours of SetSchedule.
    static constexpr int RunningColour = 255;
    static constexpr int NormalColour = 16777215;

    virtual ~ScheduleView() = default;
    // Refills the grid from the schedule.
    virtual void ViewTable() = 0;
    // Rewrites the six cells of the row from the item whose ReportID is in its column 0.
    virtual void RefreshRow(int row) = 0;
    // Paints the cells of the row, columns 1 to the last, without firing the selection handlers.
    virtual void SetSchedule(int colour, int row) = 0;
    // Rows including the heading.
    virtual int Rows() const = 0;
    virtual QString RowReportID(int row) const = 0;
    virtual int SelectedRow() const = 0;
    virtual int SelectedColumn() const = 0;
    virtual void SetSelectedRow(int row) = 0;
    virtual void SetSelectedColumn(int column) = 0;
    virtual void SetCaption(const QString &caption) = 0;
    // The enabled state of the menu entries that start and stop the schedule.
    virtual void SetStartStopMenu(bool startEnabled, bool stopEnabled) = 0;
    // The short status line of the main window.
    virtual void SetStatusText(const QString &text) = 0;
    // Lays the window out from the viewer settings and shows it; a front without windows has none.
    virtual void ShowWindow() {}
    // Opens the mail settings window without waiting for it; a front without windows has none.
    virtual void OpenMailSettings() {}
};
