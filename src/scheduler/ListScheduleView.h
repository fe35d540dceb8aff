#pragma once
// The schedule grid without a window: the items' ReportIDs in schedule order, the row colours and the
// caption, for the windowless front and for tests.

#include "ScheduleView.h"

#include <QList>
#include <QStringList>

class clsSchedule;

class ListScheduleView : public ScheduleView
{
public:
    explicit ListScheduleView(clsSchedule &schedule);

    void ViewTable() override;
    void RefreshRow(int row) override;
    void SetSchedule(int colour, int row) override;
    int Rows() const override { return int(m_ids.size()) + 1; }
    QString RowReportID(int row) const override;
    int SelectedRow() const override { return m_selectedRow; }
    int SelectedColumn() const override { return m_selectedColumn; }
    void SetSelectedRow(int row) override { m_selectedRow = row; }
    void SetSelectedColumn(int column) override { m_selectedColumn = column; }
    void SetCaption(const QString &caption) override { m_caption = caption; }
    void SetStatusText(const QString &text) override { m_statusText = text; }
    void SetStartStopMenu(bool startEnabled, bool stopEnabled) override;

    QString Caption() const { return m_caption; }
    QString StatusText() const { return m_statusText; }
    bool StartEnabled() const { return m_startEnabled; }
    bool StopEnabled() const { return m_stopEnabled; }
    int Colour(int row) const;

private:
    clsSchedule &m_schedule;
    QStringList m_ids;
    QList<int> m_colours;
    QString m_caption;
    QString m_statusText;
    bool m_startEnabled = true;
    bool m_stopEnabled = false;
    int m_selectedRow = 0;
    int m_selectedColumn = 0;
};
