#include "frmBusinessCal.h"

#include "DialogButtons.h"
#include "HandlerErrors.h"
#include "NamedControls.h"
#include "frmList.h"

#include "core/CommonFile.h"
#include "core/Numbers.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QStringList NumberTexts(int first, int last, int step)
{
    QStringList numbers;
    for (int number = first; number <= last; number += step)
        numbers.append(QString::number(number));
    return numbers;
}

// Two fields on one labelled row; each gets its own name for screen readers.
QWidget *Pair(QWidget *first, const QString &firstName, QWidget *second, const QString &secondName = {})
{
    first->setAccessibleName(firstName);
    if (!secondName.isEmpty())
        second->setAccessibleName(secondName);
    return SideBySide(first->parentWidget(), {first, second});
}

} // namespace

frmBusinessCal::frmBusinessCal(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmBusinessCal"));
    setWindowTitle(QStringLiteral("Business Calendar"));
    BuildFields();
    LoadSettings();
}

void frmBusinessCal::BuildFields()
{
    cmbBWeek =
        NamedList(this, "cmbBWeek", {QStringLiteral("Monday-Friday"), QStringLiteral("Monday-Saturday")});
    cmbBMonth = NamedList(this, "cmbBMonth", {QStringLiteral("First Day"), QStringLiteral("Last Day")});
    cmbStartHr = NamedList(this, "cmbStartHr", NumberTexts(0, 23, 1));
    cmbStartMin = NamedList(this, "cmbStartMin", NumberTexts(0, 45, 15));
    cmbEndHr = NamedList(this, "cmbEndHr", NumberTexts(0, 23, 1));
    cmbEndMin = NamedList(this, "cmbEndMin", NumberTexts(0, 45, 15));
    cmbFreq = NamedList(this, "cmbFreq",
                        NumberTexts(5, 60, 5) + QStringList{QStringLiteral("90"), QStringLiteral("120"),
                                                            QStringLiteral("180"), QStringLiteral("240"),
                                                            QStringLiteral("360")});
    lBCal = new QLabel(this);
    lBCal->setObjectName(QStringLiteral("lBCal"));
    lBCal->setFrameShape(QFrame::StyledPanel);
    auto *browse = new QPushButton(QStringLiteral("..."), this);
    browse->setObjectName(QStringLiteral("cmdHolidays"));
    browse->setAccessibleName(QStringLiteral("Choose the holiday list"));
    browse->setFixedWidth(qMax(browse->sizeHint().height(), browse->minimumSizeHint().width()));
    lBCal->setMinimumWidth(browse->fontMetrics().averageCharWidth() * 24);
    connect(browse, &QPushButton::clicked, this, &frmBusinessCal::cmdHolidays_Click);
    auto *holidays = new QHBoxLayout;
    holidays->addWidget(lBCal, 1);
    holidays->addWidget(browse);

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("Business Week"), cmbBWeek);
    fields->addRow(QStringLiteral("Business Month"), cmbBMonth);
    fields->addRow(QStringLiteral("Business Day Starts"),
                   Pair(cmbStartHr, QStringLiteral("Business day starts, hour"), cmbStartMin,
                        QStringLiteral("Business day starts, minute")));
    fields->addRow(QStringLiteral("Business Day Ends"),
                   Pair(cmbEndHr, QStringLiteral("Business day ends, hour"), cmbEndMin,
                        QStringLiteral("Business day ends, minute")));
    fields->addRow(QStringLiteral("Business Hour Schedule"),
                   Pair(cmbFreq, QStringLiteral("Business hour schedule, minutes"),
                        new QLabel(QStringLiteral("mins"), this)));
    fields->addRow(QStringLiteral("Holidays (exclude list)"), holidays);

    auto *buttons = new QDialogButtonBox(this);
    AddButton(buttons, "cmdEditHols", QStringLiteral("Edit &Hols"), [this] { cmdEditHols_Click(); });
    AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { cmdSave_Click(); });
    AddExitButton(buttons, this);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(buttons);
}

void frmBusinessCal::LoadSettings()
{
    clsSchedule &schedule = m_globals.Schedule;
    // Empty acts as Monday-Friday; any other week is kept as it stands.
    SelectOrAdd(cmbBWeek, schedule.Business_Week.isEmpty() ? cmbBWeek->itemText(0) : schedule.Business_Week);
    while (cmbBMonth->count() > 2)
        cmbBMonth->removeItem(2);
    if (Numbers::IsNumeric(schedule.Business_Month))
        SelectOrAdd(cmbBMonth, schedule.Business_Month);
    else
        cmbBMonth->setCurrentIndex(cmbBMonth->findText(schedule.Business_Month));
    SelectOrAdd(cmbStartHr, QString::number(schedule.BusinessHour_Start.Hour));
    SelectOrAdd(cmbStartMin, QString::number(schedule.BusinessHour_Start.Minute));
    SelectOrAdd(cmbEndHr, QString::number(schedule.BusinessHour_End.Hour));
    SelectOrAdd(cmbEndMin, QString::number(schedule.BusinessHour_End.Minute));
    if (schedule.BusinessHour_Schedule < 1 || schedule.BusinessHour_Schedule > 300)
        schedule.BusinessHour_Schedule = 60;
    SelectOrAdd(cmbFreq, QString::number(schedule.BusinessHour_Schedule));
    lBCal->setText(schedule.Holiday_List);
}

void frmBusinessCal::cmdHolidays_Click()
{
    const QString file = m_globals.prompter.AskOpenFileName(
        windowTitle(), CommonFile::FolderOf(CommonFile::CompletePath(m_globals.AppPath, lBCal->text())),
        QStringLiteral("List File (*.lst)"));
    if (!file.isEmpty())
        lBCal->setText(CommonFile::FileNameOnly(file));
}

void frmBusinessCal::cmdEditHols_Click()
{
    frmList::OpenList(m_globals, this, frmList::Date, lBCal->text());
}

void frmBusinessCal::cmdSave_Click()
{
    clsSchedule &schedule = m_globals.Schedule;
    schedule.Business_Week = cmbBWeek->currentText();
    schedule.Business_Month = cmbBMonth->currentText();
    schedule.BusinessHour_Start = {qint16(cmbStartHr->currentText().toInt()),
                                   qint16(cmbStartMin->currentText().toInt())};
    schedule.BusinessHour_End = {qint16(cmbEndHr->currentText().toInt()),
                                 qint16(cmbEndMin->currentText().toInt())};
    schedule.BusinessHour_Schedule = qint16(cmbFreq->currentText().toInt());
    schedule.Holiday_List = lBCal->text();
    m_globals.SaveSchedule();
    accept();
}
