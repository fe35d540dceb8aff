#include "frmDates.h"

#include "DialogButtons.h"
#include "HandlerErrors.h"
#include "NamedControls.h"

#include "calendar/DynamicDate.h"
#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace {

// The preview rows: caption and keyword. The period row's label sits under its picker.
struct PreviewRow
{
    const char *caption;
    const char *keyword;
};
constexpr PreviewRow kRows[] = {
    {"TODAY", "today"},
    {"WEEK.START.TY is", "week.start.ty"},
    {"WEEK.END.TY is", "week.end.ty"},
    {"MONTH.START.TY is", "month.start.ty"},
    {"MONTH.END.TY is", "month.end.ty"},
    {"LASTMTH.START.TY is", "lastmth.start.ty"},
    {"LASTMTH.END.TY is", "lastmth.end.ty"},
    {"PERIOD1.START.TY is", "period1.end.ty"},
    {"YEAR.END.TY is", "year.end.ty"},
    {"YEAR.START.LY is", "year.start.ly"},
    {"YEAR.END.LY is", "year.end.ly"},
};
constexpr int kPeriodRow = 7;

} // namespace

frmDates::frmDates(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmDates"));
    setWindowTitle(QStringLiteral("Dynamic Dates"));
    BuildFields();
    LoadSettings();
}

void frmDates::BuildFields()
{
    lDate = new QLabel(this);
    lDate->setObjectName(QStringLiteral("lDate"));
    txtDate = NamedLine(this, "txtDate");
    cmbThisWeek = NamedList(this, "cmbThisWeek",
                            {QStringLiteral("Sunday"), QStringLiteral("Monday"), QStringLiteral("Tuesday"),
                             QStringLiteral("Wednesday"), QStringLiteral("Thursday"),
                             QStringLiteral("Friday"), QStringLiteral("Saturday")});
    cmbMonthLen =
        NamedList(this, "cmbMonthLen",
                  {QStringLiteral("Full Month"), QStringLiteral("4 Weeks"), QStringLiteral("4-4-5 Weeks")});
    connect(cmbMonthLen, &QComboBox::currentIndexChanged, this, &frmDates::cmbMonthLen_Click);
    dtpYear = NamedDatePicker(this, "dtpYear");
    dtpPeriod1 = NamedDatePicker(this, "dtpPeriod1");

    auto *settings = new QFormLayout;
    settings->addRow(lDate);
    settings->addRow(QStringLiteral("Adj"), txtDate);
    settings->addRow(QStringLiteral("Week starts on"), cmbThisWeek);
    settings->addRow(QStringLiteral("Month length"), cmbMonthLen);
    settings->addRow(QStringLiteral("YEAR.START.TY is"), dtpYear);

    auto *buttons = new QDialogButtonBox(this);
    AddButton(buttons, "cmdApply", QStringLiteral("&Apply"), [this] { cmdApply_Click(); });
    AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { cmdSave_Click(); });
    AddExitButton(buttons, this);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(settings);
    layout->addWidget(PreviewRows());
    layout->addWidget(buttons);
}

QWidget *frmDates::PreviewRows()
{
    auto *box = new QGroupBox(QStringLiteral("Value"), this);
    auto *grid = new QGridLayout(box);
    for (int row = 0; row < int(std::size(kRows)); ++row) {
        auto *value = new QLabel(box);
        value->setObjectName(QStringLiteral("lValue") + QString::number(row));
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_values.append(value);
        grid->addWidget(new QLabel(QLatin1String(kRows[row].caption), box), row, 0);
        if (row == kPeriodRow) {
            auto *period = new QVBoxLayout;
            dtpPeriod1->setAccessibleName(QLatin1String(kRows[row].caption));
            period->addWidget(dtpPeriod1);
            period->addWidget(value);
            grid->addLayout(period, row, 1);
        } else {
            grid->addWidget(value, row, 1);
        }
    }
    return box;
}

double frmDates::Reference() const
{
    return Today() + m_globals.Schedule.Today_Adjust;
}

void frmDates::LoadSettings()
{
    clsSchedule &schedule = m_globals.Schedule;
    m_loading = true;
    lDate->setText(QStringLiteral("Today is ") + FormatDate(Today()));
    txtDate->setText(QString::number(schedule.Today_Adjust));
    if (schedule.Week_Start == 0)
        schedule.Week_Start = 1;
    cmbThisWeek->setCurrentIndex(schedule.Week_Start - 1);
    cmbMonthLen->setCurrentIndex(schedule.Month_Length);
    m_loading = false;
    EnablePeriodPicker();
    const double yearStart = DayDate::Year(schedule.Year_Start) > 1900
                                 ? schedule.Year_Start
                                 : DayDate::FromParts(DayDate::Year(Today()), 1, 1);
    dtpYear->setDate(DayDate::ToDate(yearStart));
    RefreshPreview();
}

void frmDates::EnablePeriodPicker()
{
    const bool fiscal = m_globals.Schedule.Month_Length != 0;
    dtpPeriod1->setEnabled(fiscal);
    m_values.at(kPeriodRow)->setVisible(!fiscal);
    dtpPeriod1->setDate(DayDate::ToDate(
        DynDates::DynamicDate(m_globals.Schedule, Reference(), QStringLiteral("period1.end.ty"))));
}

void frmDates::cmbMonthLen_Click()
{
    if (m_loading)
        return;
    m_globals.Schedule.Month_Length = qint16(cmbMonthLen->currentIndex());
    EnablePeriodPicker();
}

void frmDates::SaveVals()
{
    clsSchedule &schedule = m_globals.Schedule;
    const qint16 adjust = Numbers::ToInt16(Numbers::NumericPrefix(txtDate->text()));
    schedule.Today_Adjust = adjust;
    schedule.Week_Start = qint16(cmbThisWeek->currentIndex() + 1);
    schedule.Month_Length = qint16(cmbMonthLen->currentIndex());
    if (dtpPeriod1->isEnabled())
        schedule.Period_One = DayDate::FromDate(dtpPeriod1->date());
    else if (const std::optional<double> date = DayDate::Parse(m_values.at(kPeriodRow)->text()))
        schedule.Period_One = *date;
    schedule.Year_Start = DayDate::FromDate(dtpYear->date());
}

void frmDates::RefreshPreview()
{
    SaveVals();
    for (int row = 0; row < m_values.size(); ++row)
        m_values.at(row)->setText(
            DynDates::DynamicDateText(m_globals.Schedule, Reference(), QLatin1String(kRows[row].keyword)));
}

void frmDates::cmdApply_Click()
{
    RunHandler(m_globals.prompter, [this] { RefreshPreview(); });
}

void frmDates::cmdSave_Click()
{
    if (!RunHandler(m_globals.prompter, [this] { SaveVals(); }))
        return;
    m_globals.SaveSchedule();
    accept();
}
