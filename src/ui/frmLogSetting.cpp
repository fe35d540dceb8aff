#include "frmLogSetting.h"

#include "DialogButtons.h"
#include "HandlerErrors.h"
#include "NamedControls.h"

#include "core/DayDate.h"
#include "core/Numbers.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QLineEdit>

frmLogSetting::frmLogSetting(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmLogSetting"));
    setWindowTitle(QStringLiteral("Log File Settings"));
    txtRetain = NamedLine(this, "txtRetain");
    dtDelete = NamedDatePicker(this, "dtDelete");
    cmbReview = NamedList(this, "cmbReview",
                          {QStringLiteral("Daily"), QStringLiteral("Weekly"), QStringLiteral("Monthly")});
    cmbWebLog =
        NamedList(this, "cmbWebLog",
                  {QStringLiteral("Today"), QStringLiteral("This week"), QStringLiteral("Last 7 days")});

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("Retain Log File entries (days)"), txtRetain);
    fields->addRow(QStringLiteral("Next check Log File entries on "), dtDelete);
    fields->addRow(QStringLiteral("Review Log Entries"), cmbReview);
    fields->addRow(QStringLiteral("Display Web Log"), cmbWebLog);
    LayOutSettings(this, fields, [this] { cmdSave_Click(); });
    LoadSettings();
}

void frmLogSetting::LoadSettings()
{
    const clsLog &log = m_globals.Log;
    txtRetain->setText(QString::number(log.RetainLog));
    dtDelete->setDate(DayDate::ToDate(log.DeleteLogDate));
    // The interval is stored by its first letter.
    cmbReview->setCurrentIndex(-1);
    for (int index = 0; index < cmbReview->count(); ++index) {
        if (!log.CheckRetainLog.isEmpty() &&
            cmbReview->itemText(index).startsWith(log.CheckRetainLog.left(1)))
            cmbReview->setCurrentIndex(index);
    }
    SelectOrAdd(cmbWebLog, log.WebLogSetting);
}

// Days that are no number end the handler before anything is stored.
void frmLogSetting::cmdSave_Click()
{
    const bool saved = RunHandler(m_globals.prompter, [this] {
        const qint32 days = Numbers::TextToInt32(txtRetain->text());
        clsLog &log = m_globals.Log;
        log.RetainLog = days;
        log.DeleteLogDate = DayDate::FromDate(dtDelete->date());
        log.CheckRetainLog = cmbReview->currentText().left(1);
        log.WebLogSetting = cmbWebLog->currentText();
        log.Save();
        log.Clear();
        log.Load(log.FileName());
    });
    if (saved)
        accept();
}
