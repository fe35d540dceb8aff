// The parameter editor's controls and the loading of an item's parameters.
#include "frmPList.h"

#include "DialogButtons.h"
#include "NamedControls.h"
#include "ParameterText.h"
#include "TabOrder.h"
#include "WindowHandler.h"

#include "core/CommonFile.h"
#include "core/LineReader.h"
#include "run/MultiRun.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QRadioButton>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kNameColumnPixels = 2100 / 15;

template <class Control> Control *Named(Control *control, const char *name)
{
    control->setObjectName(QLatin1String(name));
    return control;
}

QComboBox *NumberList(QWidget *parent, const char *name, int count)
{
    auto *list = Named(new QComboBox(parent), name);
    for (int number = 0; number < count; ++number)
        list->addItem(QString::number(number));
    return list;
}

QLabel *Buddy(const QString &text, QWidget *field)
{
    auto *label = new QLabel(text, field->parentWidget());
    label->setBuddy(field);
    return label;
}

} // namespace

frmPList::frmPList(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmPList"));
    setWindowTitle(QStringLiteral("Parameters"));
    lName = Named(new QLabel(this), "lName");
    lStatus = Named(new QLabel(this), "lStatus");
    fgPList = Named(new QTableWidget(0, 2, this), "fgPList");
    fgPList->setHorizontalHeaderLabels({QStringLiteral("Parameter"), QStringLiteral("Value")});
    fgPList->verticalHeader()->hide();
    fgPList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fgPList->setSelectionBehavior(QAbstractItemView::SelectRows);
    fgPList->setSelectionMode(QAbstractItemView::SingleSelection);
    fgPList->horizontalHeader()->setStretchLastSection(true);
    fgPList->setColumnWidth(0, kNameColumnPixels);
    connect(fgPList, &QTableWidget::currentCellChanged, this,
            [this](int row, int, int previous) { OnRowChanged(row, previous); });

    frValues = Named(new QGroupBox(QStringLiteral("Parameter Values"), this), "frValues");
    m_values = new QFormLayout(frValues);
    txtFrame = Named(new QLabel(frValues), "txtFrame");
    txtFrame->setWordWrap(true);
    m_values->addRow(txtFrame);
    lPrompt = Named(new QLabel(frValues), "lPrompt");
    lDefaults = Named(new QLabel(frValues), "lDefaults");
    m_values->addRow(QStringLiteral("Prompt"), lPrompt);
    m_values->addRow(QStringLiteral("Default"), lDefaults);
    BuildEditors(m_values);
    BuildMultipleControls(m_values);
    BuildLayout(frValues);
    SetTabOrder();
    Clear();
    resize(QSize(520, 560).expandedTo(minimumSizeHint()));
}

void frmPList::BuildEditors(QFormLayout *values)
{
    QWidget *frame = values->parentWidget();
    txtPList = Named(new QLineEdit(frame), "txtPList");
    values->addRow(Buddy(QStringLiteral("&Value"), txtPList), txtPList);

    dtpPlist = Named(new QDateEdit(frame), "dtpPlist");
    dtpPlist->setCalendarPopup(true);
    dtpPlist->setLocale(QLocale::c());
    dtpPlist->setDisplayFormat(QStringLiteral("dd-MMM-yyyy"));
    // Text that cannot be read as a date shows as the year 1200.
    dtpPlist->setMinimumDate(QDate(100, 1, 1));
    cmbHour = NumberList(frame, "cmbHour", 24);
    cmbMin = NumberList(frame, "cmbMin", 60);
    m_timeRow = SideBySide(frame, {Buddy(QStringLiteral("Hour"), cmbHour), cmbHour,
                                   Buddy(QStringLiteral("Minute"), cmbMin), cmbMin});
    m_dateRow = SideBySide(frame, {dtpPlist, m_timeRow});
    values->addRow(Buddy(QStringLiteral("&Date"), dtpPlist), m_dateRow);

    OptPListTrue = Named(new QRadioButton(QStringLiteral("True"), frame), "OptPList0");
    OptPListFalse = Named(new QRadioButton(QStringLiteral("False"), frame), "OptPList1");
    m_booleanRow = SideBySide(frame, {OptPListTrue, OptPListFalse});
    values->addRow(QStringLiteral("Value"), m_booleanRow);

    cmbDynDate = Named(new QComboBox(frame), "cmbDynDate");
    cmbDynDate->addItems(ParameterText::DynamicDateEntries());
    values->addRow(Buddy(QStringLiteral("D&ynamic Date"), cmbDynDate), cmbDynDate);
    txtAdjDate = Named(new QLineEdit(frame), "txtAdjDate");
    txtAdjDate->setMaximumWidth(80);
    lDynPreview = Named(new QLabel(frame), "lDynPreview");
    m_adjustRow = SideBySide(frame, {txtAdjDate, lDynPreview});
    values->addRow(Buddy(QStringLiteral("&Adjust (days)"), txtAdjDate), m_adjustRow);

    const auto edited = [this] { OnValueEdited(); };
    connect(txtPList, &QLineEdit::textEdited, this, edited);
    connect(dtpPlist, &QDateEdit::dateChanged, this, edited);
    connect(cmbHour, &QComboBox::currentIndexChanged, this, edited);
    connect(cmbMin, &QComboBox::currentIndexChanged, this, edited);
    connect(OptPListTrue, &QRadioButton::toggled, this, edited);
    connect(cmbDynDate, &QComboBox::currentIndexChanged, this, edited);
    // The adjustment is stored once typed, not at each key: a sign alone is no number yet.
    connect(txtAdjDate, &QLineEdit::textEdited, this, [this] { RefreshDynamicControls(); });
    connect(txtAdjDate, &QLineEdit::editingFinished, this, edited);
}

void frmPList::BuildMultipleControls(QFormLayout *values)
{
    QWidget *frame = values->parentWidget();
    lPos = Named(new QLabel(frame), "lPos");
    udMultiUp = Named(new QToolButton(frame), "udMultiUp");
    udMultiUp->setArrowType(Qt::UpArrow);
    udMultiDown = Named(new QToolButton(frame), "udMultiDown");
    udMultiDown->setArrowType(Qt::DownArrow);
    for (QToolButton *step : {udMultiUp, udMultiDown})
        step->setToolTip(QStringLiteral("Click to edit another value"));
    lPlus = Named(new QPushButton(QStringLiteral("Add Value"), frame), "lPlus");
    lPlus->setToolTip(QStringLiteral("Click to create another value"));
    lDel = Named(new QPushButton(QStringLiteral("Delete Value"), frame), "lDel");
    lDel->setToolTip(QStringLiteral("Click to Delete a value"));
    for (QPushButton *button : {lPlus, lDel})
        button->setAutoDefault(false);
    m_multipleRow = SideBySide(frame, {lPos, udMultiDown, udMultiUp, lPlus, lDel});
    values->addRow(QStringLiteral("Values"), m_multipleRow);

    connect(udMultiDown, &QToolButton::clicked, this, [this] { StepValue(-1); });
    connect(udMultiUp, &QToolButton::clicked, this, [this] { StepValue(1); });
    connect(lPlus, &QPushButton::clicked, this, [this] { AddValue(); });
    connect(lDel, &QPushButton::clicked, this, [this] { DeleteValue(); });
}

void frmPList::BuildLayout(QGroupBox *frame)
{
    auto *buttons = new QDialogButtonBox(this);
    cmdSave = AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { cmdSave_Click(); });
    cmdSave->setDefault(true);
    cmdExit = AddExitButton(buttons, this);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lName);
    layout->addWidget(lStatus);
    layout->addWidget(fgPList, 1);
    layout->addWidget(frame);
    layout->addWidget(buttons);
}

void frmPList::SetTabOrder()
{
    ::SetTabOrder({fgPList, txtPList, dtpPlist, cmbHour, cmbMin, OptPListTrue, OptPListFalse, cmbDynDate,
                   txtAdjDate, udMultiDown, udMultiUp, lPlus, lDel, cmdSave, cmdExit});
}

void frmPList::Clear()
{
    m_rows.clear();
    m_row = -1;
    fgPList->setRowCount(0);
    lName->clear();
    lStatus->clear();
    MultiRunParameter.clear();
    ValueList.clear();
    ValueIndex = 0;
    frValues->setTitle(QStringLiteral("Parameter Values"));
    lPrompt->clear();
    lDefaults->clear();
    txtFrame->setText(QStringLiteral("Cannot process paramater"));
    ShowEditor(Editor::None);
}

bool frmPList::LoadTables(int position)
{
    Clear();
    clsSchedule &schedule = m_globals.Schedule;
    schedule.SetPosition(position);
    ListPosition = position;
    EditReportID = schedule.ReportID();
    const QString file = schedule.File();
    if (file.isEmpty())
        return false;
    if (file == QLatin1String("COLLECTION")) {
        if (!m_globals.prompter.AskYesNo(
                QStringLiteral("Collection Parameters"),
                QStringLiteral("Do you want to edit parameters for this collection?")))
            return false;
        if (!LoadCollection())
            return false;
    } else if (CommonFile::FileExtension(file).toLower() != QLatin1String("rpt")) {
        lStatus->setText(QStringLiteral("Applications do not have parameters"));
        return true;
    } else {
        LoadReport(CommonFile::CompletePath(m_globals.AppPath, file));
    }
    if (m_rows.isEmpty())
        return true;
    MatchStoredValues();
    ReadMultiRunParameter();
    FillGrid();
    fgPList->setCurrentCell(0, 1);
    return true;
}

void frmPList::LoadReport(const QString &file)
{
    clsSchedule &schedule = m_globals.Schedule;
    // A report that does not exist gives an empty grid without a word.
    if (!QFileInfo::exists(file))
        return;
    lName->setText(schedule.Name());
    const QList<ReportParameter> parameters = ReadReportParameters(file);
    if (parameters.isEmpty()) {
        schedule.ParmRemove(EditReportID);
        m_globals.SaveSchedule();
        lStatus->setText(QStringLiteral("No parameters used in report"));
        return;
    }
    for (const ReportParameter &parameter : parameters)
        AddRow(parameter);
}

// The parameters of every member report, each name once; the values belong to the collection.
bool frmPList::LoadCollection()
{
    clsSchedule &schedule = m_globals.Schedule;
    lName->setText(schedule.Name());
    for (int entry = 0; entry < schedule.CollectionCount(); ++entry) {
        schedule.SetCollectionPosition(entry);
        if (schedule.CollectionID() != EditReportID)
            continue;
        const QString file = CommonFile::CompletePath(m_globals.AppPath, schedule.CollectionFile());
        if (CommonFile::FileExtension(file).toLower() != QLatin1String("rpt") || !QFileInfo::exists(file))
            continue;
        for (const ReportParameter &parameter : ReadReportParameters(file)) {
            const bool known = std::any_of(m_rows.cbegin(), m_rows.cend(), [&](const Row &row) {
                return row.parameter.name == parameter.name;
            });
            if (!known)
                AddRow(parameter);
        }
    }
    if (!m_rows.isEmpty())
        return true;
    m_globals.prompter.ShowMessage(QStringLiteral("Parameters"),
                                   QStringLiteral("The reports in this collection do not have parameters"));
    return false;
}

void frmPList::AddRow(const ReportParameter &parameter)
{
    m_rows.append({parameter, QString()});
}

// The first stored value of a name wins, and only over a value still empty.
void frmPList::MatchStoredValues()
{
    const clsSchedule &schedule = m_globals.Schedule;
    for (int stored = 0; stored < schedule.ParmCount(); ++stored) {
        if (schedule.ParmCell(stored, clsSchedule::parmReportID) != EditReportID)
            continue;
        const QString name = schedule.ParmCell(stored, clsSchedule::parmName);
        for (Row &row : m_rows) {
            if (row.parameter.name == name && row.value.isEmpty()) {
                row.value = schedule.ParmCell(stored, clsSchedule::parmValue);
                break;
            }
        }
    }
}

// The parameter that the item's multi-run file feeds: the first field of its first line, read as the
// multi-run reads it, past blank lines and comments and without its quotes.
void frmPList::ReadMultiRunParameter()
{
    const QString prompt = m_globals.Schedule.Prompt();
    const QString file = CommonFile::CompletePath(m_globals.AppPath, prompt);
    if (prompt.isEmpty() || !QFileInfo(file).isFile())
        return;
    LineReader reader(file);
    while (!reader.atEnd()) {
        const QString line = reader.readLine().trimmed();
        if (line.isEmpty() || MultiRun::IsComment(line))
            continue;
        MultiRunParameter = MultiRun::StripQuotes(line.section(QLatin1Char(','), 0, 0));
        return;
    }
}

void frmPList::FillGrid()
{
    fgPList->setRowCount(int(m_rows.size()));
    for (int row = 0; row < m_rows.size(); ++row) {
        for (int column = 0; column < 2; ++column) {
            auto *cell =
                new QTableWidgetItem(column == 0 ? m_rows.at(row).parameter.name : m_rows.at(row).value);
            fgPList->setItem(row, column, cell);
        }
    }
}
