// The multi-run editor's controls, its placement in MultiForm.XML, and the loading of an item.
#include "frmMulti.h"

#include "DialogButtons.h"
#include "DesktopOpen.h"
#include "MultiRunCells.h"
#include "ReportParameters.h"
#include "TabOrder.h"
#include "WindowHandler.h"

#include "core/CommonFile.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"
#include "store/clsViewer.h"

#include <QComboBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

constexpr int kTwipsPerPixel = 15;
const QString kAll = QStringLiteral("*ALL*");
const QString kTableMap = QStringLiteral("{$TableMap}");
const QString kCustom = QStringLiteral("Custom");

QComboBox *ComboBox(QWidget *parent, const char *name, const QStringList &choices)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(QLatin1String(name));
    list->addItems(choices);
    return list;
}

QLabel *Label(QWidget *parent, const char *name)
{
    auto *label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

frmMulti::frmMulti(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmMulti"));
    setWindowTitle(QStringLiteral("Multi-Run"));
    auto *layout = new QVBoxLayout(this);
    auto *menus = new QMenuBar(this);
    layout->setMenuBar(menus);
    BuildFields(layout);
    BuildGrids(layout);
    BuildButtons(layout);
    BuildMenus(menus);
    SetTabOrder();
}

QStringList frmMulti::OutputChoices()
{
    return {QStringLiteral("EMail"), QStringLiteral("Printer"), QStringLiteral("Disk File"),
            QStringLiteral("Both (Disk and EMail)")};
}

QStringList frmMulti::FormatChoices()
{
    return {QStringLiteral("Crystal Report"),     QStringLiteral("Excel Worksheet"),
            QStringLiteral("Excel Data"),         QStringLiteral("Rich Text"),
            QStringLiteral("CSV File"),           QStringLiteral("MS Word doc"),
            QStringLiteral("HTML Document"),      QStringLiteral("DHTML Document"),
            QStringLiteral("XML Document"),       QStringLiteral("Acrobat File"),
            QStringLiteral("Text File"),          QStringLiteral("Paginated Text"),
            QStringLiteral("Tab Separated Text"), QStringLiteral("Tab Separated Values"),
            QStringLiteral("Record Format")};
}

bool frmMulti::AllParameters() const
{
    return cmbParameter->currentText() == kAll;
}

void frmMulti::BuildMenus(QMenuBar *menus)
{
    const auto add = [this](QMenu *menu, const char *name, const QString &caption, auto command) {
        QAction *entry = menu->addAction(caption);
        entry->setObjectName(QLatin1String(name));
        connect(entry, &QAction::triggered, this,
                [this, command] { RunHandler(m_globals.prompter, command); });
        return entry;
    };
    QMenu *file = menus->addMenu(QStringLiteral("&File"));
    add(file, "mnuSave", QStringLiteral("&Save"), [this] { Save(); });
    add(file, "mnuSaveAs", QStringLiteral("Save &As..."), [this] { SaveAs(); });
    file->addSeparator();
    add(file, "mnuExit", QStringLiteral("E&xit"), [this] { reject(); });
    QMenu *edit = menus->addMenu(QStringLiteral("&Edit"));
    add(edit, "mnuNewValue", QStringLiteral("&New Value"), [this] { NewValue(); });
    add(edit, "mnuNewComment", QStringLiteral("New &Comment"), [this] { NewComment(); });
    add(edit, "mnuCopyValue", QStringLiteral("C&opy Value"), [this] { CopyValue(); });
    add(edit, "mnuDelValue", QStringLiteral("&Delete Value"), [this] { DeleteValue(); });
    edit->addSeparator();
    mnuTableMap = add(edit, "mnuTableMap", QStringLiteral("Table Map"), [this] { ToggleTableMap(); });
    mnuTableMap->setCheckable(true);
    QMenu *sort = menus->addMenu(QStringLiteral("S&ort"));
    add(sort, "mnuSortValue", QStringLiteral("By &Value"), [this] { SortRows(colValue); });
    add(sort, "mnuSortDest", QStringLiteral("By &Destination"), [this] { SortRows(colDestination); });
    QMenu *help = menus->addMenu(QStringLiteral("&Help"));
    add(help, "mnuHelp", QStringLiteral("&Help"),
        [this] { OpenHelpPage(m_globals.prompter, m_globals.AppPath, QStringLiteral("multirun.htm")); });
}

void frmMulti::BuildFields(QVBoxLayout *layout)
{
    lName = Label(this, "lName");
    lFile = Label(this, "lFile");
    lControlFile = Label(this, "lControlFile");
    cmdBrowse = new QPushButton(QStringLiteral("..."), this);
    cmdBrowse->setObjectName(QStringLiteral("cmdBrowse"));
    cmdBrowse->setToolTip(QStringLiteral("Click to browse for  a file name"));
    cmdBrowse->setAutoDefault(false);
    connect(cmdBrowse, &QPushButton::clicked, this,
            [this] { RunHandler(m_globals.prompter, [this] { BrowseControlFile(); }); });
    cmbParameter = ComboBox(this, "cmbParameter", {});
    cmbParameter->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    cmbOutput = ComboBox(this, "cmbOutput", OutputChoices() + QStringList{kCustom});
    cmbFormat = ComboBox(this, "cmbFormat", FormatChoices() + QStringList{kCustom});
    connect(cmbParameter, &QComboBox::currentIndexChanged, this, [this] { OnParameterChanged(); });

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("Report"), lName);
    fields->addRow(QStringLiteral("Report File"), lFile);
    auto *control = new QHBoxLayout;
    control->addWidget(lControlFile, 1);
    control->addWidget(cmdBrowse);
    fields->addRow(QStringLiteral("Control File"), control);
    auto *choices = new QHBoxLayout;
    const auto choice = [&](const QString &caption, QComboBox *list) {
        auto *label = new QLabel(caption, this);
        label->setBuddy(list);
        choices->addWidget(label);
        choices->addWidget(list, 1);
    };
    choice(QStringLiteral("&Parameter"), cmbParameter);
    choice(QStringLiteral("&Output to"), cmbOutput);
    choice(QStringLiteral("&Format"), cmbFormat);
    layout->addLayout(fields);
    layout->addLayout(choices);
}

void frmMulti::BuildGrids(QVBoxLayout *layout)
{
    fgMulti = new QTableWidget(0, ColumnCount, this);
    fgMulti->setObjectName(QStringLiteral("fgMulti"));
    fgMulti->verticalHeader()->hide();
    fgMulti->setSelectionBehavior(QAbstractItemView::SelectRows);
    fgMulti->setSelectionMode(QAbstractItemView::SingleSelection);
    fgMulti->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::AnyKeyPressed);
    m_cells = new MultiRunCells(*this);
    fgMulti->setItemDelegate(m_cells);
    fgMulti->horizontalHeader()->setStretchLastSection(false);
    fgMulti->setColumnWidth(colValue, 120);
    fgMulti->setColumnWidth(colOutput, 80);
    fgMulti->setColumnWidth(colFormat, 100);
    fgMulti->setColumnWidth(colDestination, 180);
    fgMulti->setColumnWidth(colSubject, 90);
    fgMulti->setColumnWidth(colBrowse, 30);
    connect(fgMulti, &QTableWidget::cellChanged, this, &frmMulti::OnCellChanged);
    connect(fgMulti, &QTableWidget::currentCellChanged, this, [this](int row) { OnCurrentRowChanged(row); });
    connect(fgMulti, &QTableWidget::cellDoubleClicked, this, [this](int row, int column) {
        if (column == colBrowse)
            RunHandler(m_globals.prompter, [this, row] { BrowseDestination(row); });
    });

    fgList = new QTableWidget(0, 2, this);
    fgList->setObjectName(QStringLiteral("fgList"));
    fgList->setHorizontalHeaderLabels({QStringLiteral("Parameter"), QStringLiteral("Value")});
    fgList->verticalHeader()->hide();
    fgList->horizontalHeader()->setStretchLastSection(true);
    fgList->setColumnWidth(0, 160);
    fgList->setMaximumHeight(140);
    fgList->hide();
    connect(fgList, &QTableWidget::cellChanged, this, [this] { StoreAllValues(); });
    layout->addWidget(fgMulti, 1);
    layout->addWidget(fgList);
    SetHeadings(-1);
}

void frmMulti::BuildButtons(QVBoxLayout *layout)
{
    auto *buttons = new QDialogButtonBox(this);
    cmdNewValue = AddButton(buttons, "cmdNewValue", QStringLiteral("&New Value"),
                            [this] { RunHandler(m_globals.prompter, [this] { NewValue(); }); });
    cmdNewValue->setAutoDefault(false);
    cmdSave = AddButton(buttons, "cmdSave", QStringLiteral("&Save"),
                        [this] { RunHandler(m_globals.prompter, [this] { Save(); }); });
    cmdSave->setAutoDefault(false);
    cmdExit = AddExitButton(buttons, this);
    cmdExit->setAutoDefault(false);
    layout->addWidget(buttons);
}

void frmMulti::SetTabOrder()
{
    ::SetTabOrder(
        {cmdBrowse, cmbParameter, cmbOutput, cmbFormat, fgMulti, fgList, cmdNewValue, cmdSave, cmdExit});
}

void frmMulti::LoadForm()
{
    clsSchedule &schedule = m_globals.Schedule;
    m_reportID = schedule.ReportID();
    m_reportFile = CommonFile::CompletePath(m_globals.AppPath, schedule.File());
    m_valueHeading = QStringLiteral("Value");
    lName->setText(schedule.Name());
    lFile->setText(schedule.File());
    const QString prompt = schedule.Prompt();
    m_controlFile = prompt.isEmpty() ? MultiRunControlFile::DefaultName(m_globals.AppPath, schedule.File())
                                     : CommonFile::CompletePath(m_globals.AppPath, prompt);
    mnuTableMap->setChecked(false);
    LoadParameters();
    LoadControlFile(m_controlFile);
    LoadPlacement();
}

// Where the window was when it last closed, never smaller than its content.
void frmMulti::LoadPlacement()
{
    clsViewer placement(m_globals.AppPath, QStringLiteral("MultiForm.XML"));
    placement.Viewer_Top = 2000;
    placement.Viewer_Left = 2000;
    placement.Viewer_Width = 7575;
    placement.Viewer_Height = 5130;
    placement.Load(m_globals.PathOf(QStringLiteral("MultiForm.XML")));
    move(placement.Viewer_Left / kTwipsPerPixel, placement.Viewer_Top / kTwipsPerPixel);
    resize(QSize(placement.Viewer_Width / kTwipsPerPixel, placement.Viewer_Height / kTwipsPerPixel)
               .expandedTo(minimumSizeHint()));
}

void frmMulti::SavePlacement()
{
    clsViewer placement(m_globals.AppPath, QStringLiteral("MultiForm.XML"));
    placement.Viewer_Top = y() * kTwipsPerPixel;
    placement.Viewer_Left = x() * kTwipsPerPixel;
    placement.Viewer_Width = width() * kTwipsPerPixel;
    placement.Viewer_Height = height() * kTwipsPerPixel;
    placement.Save();
}

void frmMulti::done(int result)
{
    SavePlacement();
    QDialog::done(result);
}

void frmMulti::LoadParameters()
{
    m_filling = true;
    cmbParameter->clear();
    m_filling = false;
    if (!QFileInfo::exists(m_reportFile))
        return;
    const QList<ReportParameter> parameters = ReadReportParameters(m_reportFile);
    if (parameters.isEmpty()) {
        m_globals.prompter.ShowMessage(
            QStringLiteral("No parameters in report"),
            QStringLiteral("Warning - Multi-run expects a report to have at least one parameter"),
            Prompter::Icon::Warning);
        return;
    }
    m_filling = true;
    for (const ReportParameter &parameter : parameters)
        cmbParameter->addItem(parameter.bracedName());
    if (parameters.size() >= 2)
        cmbParameter->addItem(kAll);
    m_filling = false;
}

void frmMulti::LoadControlFile(const QString &path)
{
    m_controlFile = path;
    lControlFile->setText(path);
    const MultiRunControl control = MultiRunControlFile::Read(path);
    m_filling = true;
    fgMulti->setRowCount(0);
    for (const MultiRunRow &row : control.rows)
        AddGridRow(row);
    m_filling = false;
    SelectParameter(control.parameter);
    QStringList outputs;
    QStringList formats;
    for (const MultiRunRow &row : control.rows) {
        if (!row.comment) {
            outputs.append(row.output);
            formats.append(row.format);
        }
    }
    ShowCommonChoice(cmbOutput, outputs, true);
    ShowCommonChoice(cmbFormat, formats, false);
    // The headings of the first data row, as comments have none of their own.
    int first = 0;
    while (first < fgMulti->rowCount() && GridRow(first).comment)
        ++first;
    SetHeadings(first < fgMulti->rowCount() ? first : -1);
}

// The file's parameter, "{$TableMap}" added when the report lacks it, else the first entry.
void frmMulti::SelectParameter(const QString &parameter)
{
    int index = cmbParameter->findText(parameter);
    if (index < 0 && parameter == kTableMap) {
        cmbParameter->addItem(kTableMap);
        mnuTableMap->setChecked(true);
        index = cmbParameter->count() - 1;
    }
    cmbParameter->setCurrentIndex(index < 0 && cmbParameter->count() > 0 ? 0 : index);
    OnParameterChanged();
}

// The value all rows share, or "Custom" when they differ. Outputs are matched by their first letter,
// as a file may hold the letter alone.
void frmMulti::ShowCommonChoice(QComboBox *list, const QStringList &values, bool byLetter)
{
    if (values.isEmpty())
        return;
    if (values.count(values.first()) != values.size())
        return list->setCurrentText(kCustom);
    const QString value = values.first();
    for (int entry = 0; entry < list->count(); ++entry) {
        const QString text = list->itemText(entry);
        if (text == value || (byLetter && !value.isEmpty() && text.startsWith(value.left(1))))
            return list->setCurrentIndex(entry);
    }
}
