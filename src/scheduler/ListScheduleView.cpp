#include "ListScheduleView.h"

#include "store/clsSchedule.h"

ListScheduleView::ListScheduleView(clsSchedule &schedule) : m_schedule(schedule) {}

void ListScheduleView::ViewTable()
{
    m_ids.clear();
    for (int row = 0; row < m_schedule.Count(); ++row)
        m_ids.append(m_schedule.Cell(row, clsSchedule::colReportID));
    m_colours = QList<int>(m_ids.size(), NormalColour);
}

void ListScheduleView::RefreshRow(int row)
{
    // Only the ReportID is shown here, and a changed one is found again by the next ViewTable.
    Q_UNUSED(row);
}

void ListScheduleView::SetSchedule(int colour, int row)
{
    if (row >= 1 && row <= m_colours.size())
        m_colours[row - 1] = colour;
}

QString ListScheduleView::RowReportID(int row) const
{
    return row >= 1 && row <= m_ids.size() ? m_ids.at(row - 1) : QString();
}

void ListScheduleView::SetStartStopMenu(bool startEnabled, bool stopEnabled)
{
    m_startEnabled = startEnabled;
    m_stopEnabled = stopEnabled;
}

int ListScheduleView::Colour(int row) const
{
    return row >= 1 && row <= m_colours.size() ? m_colours.at(row - 1) : NormalColour;
}
