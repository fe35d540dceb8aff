#include "frmFormat.h"

#include "DialogButtons.h"
#include "NamedControls.h"

#include "core/Numbers.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>

frmFormat::frmFormat(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmFormat"));
    setWindowTitle(QStringLiteral("Export Formats"));
    cmbExcel = NamedList(this, "cmbExcel", {QStringLiteral("Excel"), QStringLiteral("Excel Data")});
    cmbCrystal = NamedList(this, "cmbCrystal", {QStringLiteral("Crystal Reports")});
    txtCPI = NamedLine(this, "txtCPI");
    txtPage = NamedLine(this, "txtPage");

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("Excel Export"), cmbExcel);
    fields->addRow(QStringLiteral("Crystal Reports Export"), cmbCrystal);
    fields->addRow(QStringLiteral("Characters per Inch"), txtCPI);
    fields->addRow(QStringLiteral("Lines Per Page"), txtPage);
    LayOutSettings(this, fields, [this] { cmdSave_Click(); });
    LoadSettings();
}

void frmFormat::LoadSettings()
{
    const clsSchedule &schedule = m_globals.Schedule;
    cmbExcel->setCurrentIndex(cmbExcel->findText(schedule.Excel_Format));
    cmbCrystal->setCurrentIndex(cmbCrystal->findText(schedule.Crystal_Format));
    txtCPI->setText(schedule.Text_FormatCPI);
    txtPage->setText(schedule.Text_FormatPage);
}

bool frmFormat::TextSettingsValid()
{
    const QString cpi = txtCPI->text();
    if (!cpi.isEmpty() && !Numbers::IsNumeric(cpi))
        return Refuse(txtCPI, QStringLiteral("CPI value error"), QStringLiteral("Text CPI must be a number"));
    if (!cpi.isEmpty() && (Numbers::NumericPrefix(cpi) < 8 || Numbers::NumericPrefix(cpi) > 16))
        return Refuse(txtCPI, QStringLiteral("CPI range error"),
                      QStringLiteral("Text CPI must be between 8 and 16"));
    const QString page = txtPage->text();
    if (!page.isEmpty() && !Numbers::IsNumeric(page))
        return Refuse(txtPage, QStringLiteral("Page value error"),
                      QStringLiteral("Text lines per page must be a number"));
    if (!page.isEmpty() && (Numbers::NumericPrefix(page) < 0 || Numbers::NumericPrefix(page) > 200))
        return Refuse(txtPage, QStringLiteral("Page range error"),
                      QStringLiteral("Text Lines per Page must be between 0 and 200"));
    return true;
}

bool frmFormat::Refuse(QLineEdit *field, const QString &title, const QString &text)
{
    m_globals.prompter.ShowMessage(title, text);
    field->setFocus();
    return false;
}

void frmFormat::cmdSave_Click()
{
    if (!TextSettingsValid())
        return;
    clsSchedule &schedule = m_globals.Schedule;
    schedule.Excel_Format = cmbExcel->currentText();
    schedule.Crystal_Format = cmbCrystal->currentText();
    schedule.Text_FormatCPI = txtCPI->text();
    schedule.Text_FormatPage = txtPage->text();
    m_globals.SaveSchedule();
    accept();
}
