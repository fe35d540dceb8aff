// The parameter editor's value editors: a row shown by its type, stored back in text form, several values
// of one parameter, and the save.
#include "frmPList.h"

#include "ParameterText.h"
#include "WindowHandler.h"

#include "calendar/EvaluateDate.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "engine/Codes.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QTableWidget>

frmPList::Editor frmPList::EditorOf(const Row &row) const
{
    switch (row.parameter.valueType) {
    case Engine::StringField:
    case Engine::NumberField:
    case Engine::CurrencyField: return Editor::Text;
    case Engine::DateField: return Editor::Date;
    case Engine::DateTimeField: return Editor::DateTime;
    case Engine::BooleanField: return Editor::Boolean;
    default: break;
    }
    return Editor::None;
}

// A row that the multi-run file feeds, or of a type without editor, keeps its stored value.
bool frmPList::Editable(int row) const
{
    const Row &shown = m_rows.at(row);
    return EditorOf(shown) != Editor::None && shown.parameter.bracedName() != MultiRunParameter;
}

void frmPList::ShowRow(int row)
{
    QScopedValueRollback showing(m_showing, true);
    m_row = row;
    const Row &shown = m_rows.at(row);
    frValues->setTitle(QStringLiteral("Parameter Values: ") + shown.parameter.name);
    lPrompt->setText(shown.parameter.prompt);
    lDefaults->setText(shown.parameter.defaults.join(QLatin1Char('|')));
    if (shown.parameter.bracedName() == MultiRunParameter) {
        txtFrame->setText(QStringLiteral("Controlled by Multi-Run"));
        return ShowEditor(Editor::None);
    }
    const Editor editor = EditorOf(shown);
    if (editor == Editor::None) {
        txtFrame->setText(QStringLiteral("Can't currently process a parameter with a type of ") +
                          ParameterText::TypeName(shown.parameter.valueType));
        return ShowEditor(Editor::None);
    }
    ShowEditor(editor);
    if (!shown.parameter.multiple)
        return ShowValue(shown.value);
    ValueList = shown.value.split(QLatin1Char('|'));
    ValueIndex = int(ValueList.size()) - 1;
    ShowValuePosition();
    ShowValue(ValueList.at(ValueIndex));
}

void frmPList::ShowEditor(Editor editor)
{
    m_editor = editor;
    const bool multiple = m_row >= 0 && m_rows.at(m_row).parameter.multiple;
    m_values->setRowVisible(txtFrame, editor == Editor::None);
    m_values->setRowVisible(lPrompt, m_row >= 0);
    m_values->setRowVisible(lDefaults, m_row >= 0);
    m_values->setRowVisible(txtPList, editor == Editor::Text);
    m_values->setRowVisible(m_booleanRow, editor == Editor::Boolean);
    m_values->setRowVisible(cmbDynDate, editor == Editor::Date || editor == Editor::DateTime);
    m_timeRow->setVisible(editor == Editor::DateTime);
    m_values->setRowVisible(m_multipleRow, editor != Editor::None && multiple);
    RefreshDynamicControls();
}

void frmPList::ShowValue(const QString &value)
{
    QScopedValueRollback showing(m_showing, true);
    switch (m_editor) {
    case Editor::Text: txtPList->setText(value); break;
    case Editor::Boolean:
        (value == QLatin1String("False") ? OptPListFalse : OptPListTrue)->setChecked(true);
        break;
    case Editor::Date:
    case Editor::DateTime: ShowDate(value); break;
    case Editor::None: break;
    }
    RefreshDynamicControls();
}

// A keyword of the list shows with its adjustment; any other text is a fixed date, read as the run
// reads it.
void frmPList::ShowDate(const QString &value)
{
    const ParameterText::DynamicParts parts = ParameterText::SplitDynamic(value);
    const int entry = ParameterText::DynamicEntryIndex(parts.keyword);
    if (entry > 0) {
        cmbDynDate->setCurrentIndex(entry);
        const double days = Numbers::RoundEven(Numbers::NumericPrefix(parts.adjustment));
        txtAdjDate->setText(QString::number(qint64(days)));
        return;
    }
    cmbDynDate->setCurrentIndex(0);
    txtAdjDate->clear();
    const double date = DynDates::EvaluateDate(m_globals.Schedule, value);
    dtpPlist->setDate(DayDate::ToDate(date));
    cmbHour->setCurrentIndex(DayDate::Hour(date));
    cmbMin->setCurrentIndex(DayDate::Minute(date));
}

// The picker for a fixed date, the adjustment and its date for a keyword.
void frmPList::RefreshDynamicControls()
{
    const bool dated = m_editor == Editor::Date || m_editor == Editor::DateTime;
    const bool dynamic = dated && cmbDynDate->currentIndex() > 0;
    m_values->setRowVisible(m_dateRow, dated && !dynamic);
    m_values->setRowVisible(m_adjustRow, dynamic);
    QString preview;
    if (dynamic) {
        try {
            preview = QStringLiteral("gives ") +
                      FormatDate(DynDates::EvaluateDate(m_globals.Schedule, EditedDate()));
        } catch (const QorloError &) {
            // An adjustment that is no number yet has no date; storing it says why.
        }
    }
    lDynPreview->setText(preview);
}

QString frmPList::EditedDate() const
{
    if (cmbDynDate->currentIndex() > 0)
        return cmbDynDate->currentText() +
               ParameterText::Adjustment(ParameterText::AdjustmentDays(txtAdjDate->text()));
    if (m_editor == Editor::DateTime)
        return ParameterText::DateTimeValue(dtpPlist->date(), cmbHour->currentIndex(),
                                            cmbMin->currentIndex());
    return ParameterText::DateValue(dtpPlist->date());
}

QString frmPList::EditedValue() const
{
    switch (m_editor) {
    case Editor::Text: return txtPList->text();
    case Editor::Boolean:
        return OptPListFalse->isChecked() ? QStringLiteral("False") : QStringLiteral("True");
    case Editor::Date:
    case Editor::DateTime: return EditedDate();
    case Editor::None: break;
    }
    return QString();
}

void frmPList::StoreRow()
{
    if (m_row < 0 || !Editable(m_row))
        return;
    const QString value = EditedValue();
    if (!m_rows.at(m_row).parameter.multiple)
        return SetRowValue(value);
    ValueList[ValueIndex] = value;
    SetRowValue(ValueList.join(QLatin1Char('|')));
}

void frmPList::SetRowValue(const QString &value)
{
    m_rows[m_row].value = value;
    fgPList->item(m_row, 1)->setText(value);
}

// A value that cannot be stored keeps its row on show.
void frmPList::OnRowChanged(int row, int previous)
{
    if (m_switching || row == previous || row == m_row)
        return;
    if (!RunHandler(m_globals.prompter, [this] { StoreRow(); })) {
        QScopedValueRollback switching(m_switching, true);
        fgPList->setCurrentCell(m_row, 1);
        return;
    }
    if (row >= 0)
        RunHandler(m_globals.prompter, [this, row] { ShowRow(row); });
}

void frmPList::OnValueEdited()
{
    if (m_showing)
        return;
    RunHandler(m_globals.prompter, [this] { StoreRow(); });
    RefreshDynamicControls();
}

void frmPList::ShowValuePosition()
{
    lPos->setText(QString::number(ValueIndex + 1) + QStringLiteral(" of ") +
                  QString::number(ValueList.size()));
}

void frmPList::AddValue()
{
    RunHandler(m_globals.prompter, [this] {
        StoreRow();
        if (m_row < 0 || !Editable(m_row))
            return;
        ValueList.append(QString());
        ShowListValue(int(ValueList.size()) - 1);
    });
}

// The last value deleted leaves one empty value.
void frmPList::DeleteValue()
{
    RunHandler(m_globals.prompter, [this] {
        if (m_row < 0 || !Editable(m_row))
            return;
        ValueList.removeAt(ValueIndex);
        if (ValueList.isEmpty())
            ValueList.append(QString());
        ShowListValue(std::min(ValueIndex, int(ValueList.size()) - 1));
    });
}

// The value list into the row, and the value at `index` on show.
void frmPList::ShowListValue(int index)
{
    SetRowValue(ValueList.join(QLatin1Char('|')));
    ValueIndex = index;
    ShowValuePosition();
    ShowValue(ValueList.at(ValueIndex));
}

void frmPList::StepValue(int step)
{
    RunHandler(m_globals.prompter, [this, step] {
        StoreRow();
        const int next = ValueIndex + step;
        if (m_row < 0 || !Editable(m_row) || next < 0 || next >= ValueList.size())
            return;
        ShowListValue(next);
    });
}

void frmPList::cmdSave_Click()
{
    RunHandler(m_globals.prompter, [this] {
        StoreRow();
        clsSchedule &schedule = m_globals.Schedule;
        for (const Row &row : m_rows) {
            schedule.ParmUpdate(EditReportID, row.parameter.name, QString::number(row.parameter.valueType),
                                row.value, row.parameter.prompt);
        }
        m_globals.SaveSchedule();
        accept();
    });
}
