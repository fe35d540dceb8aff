// The schedule item editor's filling from the item and writing back into it.
#include "frmSchedule.h"

#include "calendar/BusinessCalendar.h"
#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "MultiRunControl.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QTabWidget>
#include <QTableWidget>

namespace {

// Frequencies and destinations are stored in a long form or as their first letter: the first entry
// whose whole text or first letter equals the value.
void SelectByTextOrLetter(QComboBox *list, const QString &value)
{
    int found = -1;
    for (int index = 0; index < list->count() && found < 0; ++index) {
        const QString text = list->itemText(index);
        if (text == value || text.left(1) == value)
            found = index;
    }
    list->setCurrentIndex(found);
}

// A stored value the list does not offer stays the item's until the operator picks another.
void SelectText(QComboBox *list, const QString &value)
{
    if (!value.isEmpty() && list->findText(value) < 0)
        list->addItem(value);
    list->setCurrentIndex(list->findText(value));
}

// Exactly one option of the group checked, or none for a value that matches none.
void CheckOnly(std::initializer_list<QRadioButton *> options, const QRadioButton *checked)
{
    for (QRadioButton *option : options) {
        option->setAutoExclusive(false);
        option->setChecked(option == checked);
        option->setAutoExclusive(true);
    }
}

QString TwoDigits(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

// The recipients known anywhere in the schedule, offered for the notices.
void ShowAddresses(QComboBox *list, const QStringList &known, const QString &value)
{
    list->clear();
    list->addItems(known);
    list->setCurrentText(value);
}

} // namespace

void frmSchedule::ShowSchedule()
{
    if (m_globals.Schedule.Position() < 0)
        ShowNewItem();
    else
        ShowItem();
    ShowWhenOrCollections();
    ShowDestinationTabs(true);
    RefreshDayLine();
}

void frmSchedule::ShowItem()
{
    clsSchedule &schedule = m_globals.Schedule;
    QScopedValueRollback filling(m_filling, true);
    m_shownID = schedule.ReportID();
    setWindowTitle(QStringLiteral("Edit schedule for Item ") + m_shownID);
    txtReportName->setText(schedule.Name());
    txtReportFile->setText(schedule.File());
    txtDesc->setPlainText(schedule.ReportDescription());
    SelectByTextOrLetter(cmbDest, schedule.Dest());
    SelectText(cmbFormat, schedule.OutputFormat());
    m_calendarFile = schedule.CustomCalendarFile();
    ShowWhen();
    ShowOutput();
    ShowCollections();
}

// A new item: scheduled to run from now on, daily, to a disk file not yet named.
void frmSchedule::ShowNewItem()
{
    QScopedValueRollback filling(m_filling, true);
    m_shownID.clear();
    setWindowTitle(QStringLiteral("Edit schedule for Item "));
    for (QLineEdit *field : {txtReportName, txtReportFile, txtOutput, txtMail, txtMailCC, txtMailBCC,
                             txtMailFrom, txtMailSubject, txtMRFile})
        field->clear();
    for (QPlainTextEdit *field : {txtDesc, txtAttachFiles, txtMailMessage, txtAttachfilesMR, txtNotifyMsg,
                                  txtErrorMsg, txtMultiSuccessMsg, txtMultiErrorMsg})
        field->clear();
    cmbDest->setCurrentIndex(0);
    cmbFormat->setCurrentIndex(0);
    CheckOnly({optRunScheduled, optRunHold, optRunCollection}, optRunScheduled);
    m_nextRun.Show(DayHourMinute::Of(Now()));
    txtEvery->setText(QStringLiteral("1"));
    cmbWhen->setCurrentIndex(1);
    chkDateStamp->setChecked(false);
    m_calendarFile.clear();
    fgCollection->setRowCount(0);
}

void frmSchedule::ShowWhen()
{
    clsSchedule &schedule = m_globals.Schedule;
    const QString state = schedule.Schedule();
    const QRadioButton *checked = state == QLatin1String("Y")   ? optRunScheduled
                                  : state == QLatin1String("N") ? optRunHold
                                  : state == QLatin1String("C") ? optRunCollection
                                                                : nullptr;
    CheckOnly({optRunScheduled, optRunHold, optRunCollection}, checked);
    const std::optional<double> nextRun = DayDate::Parse(schedule.NextRun());
    const bool dated = checked == optRunScheduled && nextRun;
    m_nextRun.Show(DayHourMinute::Of(dated ? *nextRun : Now()));
    txtEvery->setText(schedule.FreqTimes());
    SelectByTextOrLetter(cmbWhen, schedule.Frequency());
}

void frmSchedule::ShowOutput()
{
    clsSchedule &schedule = m_globals.Schedule;
    txtMail->setText(schedule.Email());
    txtMailCC->setText(schedule.RptToCC());
    txtMailBCC->setText(schedule.RptToBCC());
    txtMailFrom->setText(schedule.RptFrom());
    txtAttachFiles->setPlainText(schedule.MailAttach());
    txtMailSubject->setText(schedule.RptSubject());
    txtMailMessage->setPlainText(schedule.RptMessage());
    txtOutput->setText(schedule.Location());
    ShowPrinter();
    txtPRCopies->setText(QString::number(schedule.PrinterCopies()));
    SelectText(cmbOrient, schedule.PrinterOrient());
    txtMRFile->setText(schedule.Prompt());
    txtAttachfilesMR->setPlainText(schedule.MailAttach());
    SelectText(cmbNoRecs, schedule.NoRecords());
    chkRetain->setChecked(schedule.RetainData() == QLatin1String("Yes"));
    const QStringList known = schedule.NotifyEmailList();
    ShowAddresses(cmbNotifyTo, known, schedule.NotifyTo());
    txtNotifyMsg->setPlainText(schedule.NotifyMsg());
    ShowAddresses(cmbErrorTo, known, schedule.ErrorTo());
    txtErrorMsg->setPlainText(schedule.ErrorMsg());
    ShowAddresses(cmbMultiSuccessTo, known, schedule.MultiRunLineSuccessTo());
    txtMultiSuccessMsg->setPlainText(schedule.MultiRunLineSuccessMsg());
    ShowAddresses(cmbMultiErrorTo, known, schedule.MultiRunLineErrorTo());
    txtMultiErrorMsg->setPlainText(schedule.MultiRunLineErrorMsg());
}

void frmSchedule::ShowDestinationTabs(bool filling)
{
    const QString dest =
        cmbDest->currentText().isEmpty() ? QStringLiteral("D") : cmbDest->currentText().left(1);
    const auto show = [this](Tab tab, bool visible) { tbOutput->setTabVisible(tab, visible); };
    show(tabEmail, dest == QLatin1String("E"));
    show(tabMessage, dest == QLatin1String("E"));
    show(tabDisk, dest == QLatin1String("D"));
    show(tabPrinter, dest == QLatin1String("P"));
    show(tabMultirun, dest == QLatin1String("M"));
    show(tabEachRun, dest == QLatin1String("M"));
    // The destination's own tab comes to the front.
    const Tab first = dest == QLatin1String("E")   ? tabEmail
                      : dest == QLatin1String("P") ? tabPrinter
                      : dest == QLatin1String("M") ? tabMultirun
                                                   : tabDisk;
    tbOutput->setCurrentIndex(first);
    const QString file = txtReportFile->text();
    if (!filling && dest == QLatin1String("M") && txtMRFile->text().isEmpty() && !file.isEmpty())
        txtMRFile->setText(MultiRunControlFile::DefaultName(m_globals.AppPath, file));
    SetOptions();
}

void frmSchedule::SetOptions()
{
    const QString dest = cmbDest->currentText();
    if (dest == QLatin1String("Printer"))
        return;
    if (dest == QLatin1String("Email"))
        chkDateStamp->setVisible(true);
    const bool attached = StoredField(clsSchedule::colEMailAttach) == QLatin1String("Attached");
    CheckOnly({optAttach, optBody}, attached ? optAttach : optBody);
    chkDateStamp->setChecked(StoredField(clsSchedule::colDateStamp) == QLatin1String("Y"));
    const bool onePage = StoredField(clsSchedule::colHTMLPages) == QLatin1String("One Page");
    CheckOnly({optOnePage, optSepPage}, onePage ? optOnePage : optSepPage);
    frHTML->setVisible(cmbFormat->currentText().contains(QLatin1String("DHTML Document")));
    // A report in the mail body carries no date stamp.
    if (optBody->isChecked()) {
        chkDateStamp->setVisible(false);
        chkDateStamp->setChecked(false);
    }
}

// The item shown as stored, wherever the cursor is; a new item has nothing stored yet.
QString frmSchedule::StoredField(int column) const
{
    const clsSchedule &schedule = m_globals.Schedule;
    for (int row = 0; row < schedule.Count() && !m_shownID.isEmpty(); ++row) {
        if (schedule.Cell(row, clsSchedule::colReportID) == m_shownID)
            return schedule.Cell(row, column);
    }
    return QString();
}

void frmSchedule::RefreshDayLine()
{
    clsSchedule &schedule = m_globals.Schedule;
    const DayHourMinute picked = m_nextRun.Picked();
    const double timeOfDay = picked.Moment() - picked.Day;
    const QString when = cmbWhen->currentText();
    QString text;
    if (when == QLatin1String("Business Day"))
        text = FormatDateTime(DynDates::NextBusinessDay(schedule, picked.Day, Now()) + timeOfDay);
    else if (when == QLatin1String("Business Hour"))
        text = FormatDateTime(DynDates::NextBusinessHour(schedule, picked.Moment(), Now()));
    else if (when == QLatin1String("Business Month"))
        text = FormatDateTime(DynDates::NextBusinessMonth(schedule, picked.Day) + timeOfDay);
    else if (when == QLatin1String("Custom Calendar"))
        text = m_calendarFile.isEmpty() ? QStringLiteral("No Filename specified")
                                        : CommonFile::FileNameOnly(m_calendarFile);
    else
        text = QLocale::c().toString(m_nextRun.Date->date(), QStringLiteral("dddd"));
    lDayMessage->setText(text);
}

bool frmSchedule::WriteSchedule()
{
    clsSchedule &schedule = m_globals.Schedule;
    const QString dest = cmbDest->currentText().left(1);
    // Checked before anything is written, so that a refused number leaves the item as it was.
    const bool printed = dest == QLatin1String("P") || dest == QLatin1String("M");
    const qint16 copies = printed ? Numbers::TextToInt16(txtPRCopies->text()) : 0;
    // The item shown, wherever the grid's refreshes have left the cursor meanwhile.
    if (m_shownID.isEmpty()) {
        schedule.AddNew();
        m_shownID = schedule.ReportID();
        setWindowTitle(QStringLiteral("Edit schedule for Item ") + m_shownID);
    } else {
        schedule.Find(m_shownID);
    }
    const QString file = txtReportFile->text();
    QString name = txtReportName->text();
    if (name.isEmpty() && file == QLatin1String("COLLECTION"))
        name = QStringLiteral("Report Collection");
    schedule.SetFile(file);
    schedule.SetName(name);
    const QString extension = CommonFile::FileExtension(file).toLower();
    const QString notSaved = QStringLiteral("Not Saved");
    if (extension == QLatin1String("rpt") && dest == QLatin1String("D") && txtOutput->text().isEmpty()) {
        m_globals.prompter.ShowMessage(notSaved, QStringLiteral("Disk file destination is blank"));
        return false;
    }
    if (extension == QLatin1String("rpt") && dest == QLatin1String("E") && txtMail->text().isEmpty()) {
        m_globals.prompter.ShowMessage(notSaved, QStringLiteral("Email Address is blank"));
        return false;
    }
    if (extension == QLatin1String("xml") && name.isEmpty())
        schedule.SetName(QStringLiteral("Qorlo Global Command file"));
    WriteWhen();
    schedule.SetReportDescription(txtDesc->toPlainText());
    schedule.SetDest(dest);
    schedule.SetLocation(txtOutput->text());
    schedule.SetOutputFormat(cmbFormat->currentText());
    schedule.SetNoRecords(cmbNoRecs->currentText());
    schedule.SetNotifyTo(cmbNotifyTo->currentText());
    schedule.SetNotifyMsg(txtNotifyMsg->toPlainText());
    schedule.SetErrorTo(cmbErrorTo->currentText());
    schedule.SetErrorMsg(txtErrorMsg->toPlainText());
    WriteOutput(dest, copies);
    schedule.SetEMailAttach(optAttach->isChecked() ? QStringLiteral("Attached") : QStringLiteral("In Body"));
    schedule.SetHTMLPages(optOnePage->isChecked() ? QStringLiteral("One Page")
                                                  : QStringLiteral("Separate Pages"));
    schedule.SetRetainData(chkRetain->isChecked() ? QStringLiteral("Yes") : QStringLiteral("No"));
    schedule.SetDateStamp(chkDateStamp->isChecked() ? QStringLiteral("Y") : QStringLiteral("N"));
    m_globals.SaveSchedule();
    return true;
}

void frmSchedule::WriteWhen()
{
    clsSchedule &schedule = m_globals.Schedule;
    if (optRunScheduled->isChecked()) {
        const DayHourMinute picked = m_nextRun.Picked();
        schedule.SetSchedule(QStringLiteral("Y"));
        schedule.SetNextRun(FormatDate(picked.Day) + QLatin1Char(' ') + TwoDigits(picked.Hour) +
                            QLatin1Char(':') + TwoDigits(picked.Minute));
    } else {
        schedule.SetSchedule(optRunCollection->isChecked() ? QStringLiteral("C") : QStringLiteral("N"));
        schedule.SetNextRun(QString());
    }
    schedule.SetFreqTimes(txtEvery->text());
    schedule.SetFrequency(cmbWhen->currentText());
}

// Each destination takes the fields of its own tabs; the others keep what the item had.
void frmSchedule::WriteOutput(const QString &dest, qint16 copies)
{
    clsSchedule &schedule = m_globals.Schedule;
    const bool printer = dest == QLatin1String("P");
    const bool multiRun = dest == QLatin1String("M");
    const bool mail = dest == QLatin1String("E");
    if (printer || multiRun) {
        schedule.SetPrinter(cmbPrinter->currentText());
        schedule.SetPrinterCopies(copies);
        schedule.SetPrinterOrient(cmbOrient->currentText());
    }
    if (multiRun) {
        schedule.SetPrompt(txtMRFile->text());
        schedule.SetMailAttach(txtAttachfilesMR->toPlainText());
        schedule.SetMultiRunLineSuccessTo(cmbMultiSuccessTo->currentText());
        schedule.SetMultiRunLineSuccessMsg(txtMultiSuccessMsg->toPlainText());
        schedule.SetMultiRunLineErrorTo(cmbMultiErrorTo->currentText());
        schedule.SetMultiRunLineErrorMsg(txtMultiErrorMsg->toPlainText());
    }
    if (mail) {
        schedule.SetEmail(txtMail->text());
        schedule.SetRptToCC(txtMailCC->text());
        schedule.SetRptToBCC(txtMailBCC->text());
        schedule.SetRptFrom(txtMailFrom->text());
        schedule.SetRptSubject(txtMailSubject->text());
        schedule.SetRptMessage(txtMailMessage->toPlainText());
        schedule.SetMailAttach(txtAttachFiles->toPlainText());
    }
}
