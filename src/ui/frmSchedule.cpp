// The schedule item editor's controls, menus and commands.
#include "frmSchedule.h"

#include "DialogButtons.h"
#include "frmCrystal.h"

#include "core/Printers.h"
#include "scheduler/ItemRouter.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QStringList Destinations()
{
    return {QStringLiteral("Disk File"), QStringLiteral("Email"), QStringLiteral("Printer"),
            QStringLiteral("MultiRun")};
}

QStringList Formats()
{
    return {QStringLiteral("Crystal Report"),
            QStringLiteral("Excel Worksheet"),
            QStringLiteral("Excel Data"),
            QStringLiteral("Acrobat File"),
            QStringLiteral("Rich Text"),
            QStringLiteral("HTML Document"),
            QStringLiteral("DHTML Document"),
            QStringLiteral("XML Document"),
            QStringLiteral("CSV File"),
            QStringLiteral("MS Word doc"),
            QStringLiteral("Text File"),
            QStringLiteral("Paginated Text"),
            QStringLiteral("Record Format"),
            QStringLiteral("Tab Separated Text"),
            QStringLiteral("Tab Separated Values")};
}

QStringList Frequencies()
{
    return {QStringLiteral("Once"),           QStringLiteral("Day(s)"),
            QStringLiteral("Week(s)"),        QStringLiteral("Month(s)"),
            QStringLiteral("Business Day"),   QStringLiteral("Business Hour"),
            QStringLiteral("Business Month"), QStringLiteral("Last day of month"),
            QStringLiteral("Hour(s)"),        QStringLiteral("Minute(s)"),
            QStringLiteral("Custom Calendar")};
}

QStringList NoRecordChoices()
{
    return {QStringLiteral("Send Empty Report"), QStringLiteral("No report is sent"),
            QStringLiteral("Notify recipient"), QStringLiteral("Notify administrator")};
}

// The machine's printers; a machine without one offers "No Printer".
QStringList PrinterNames()
{
    QStringList names;
    for (const PrinterInfo &printer : Printers::Installed())
        names.append(printer.name);
    if (names.isEmpty())
        names.append(QStringLiteral("No Printer"));
    return names;
}

QRadioButton *Option(QWidget *parent, const char *name, const QString &caption)
{
    auto *option = new QRadioButton(caption, parent);
    option->setObjectName(QLatin1String(name));
    return option;
}

QWidget *Page(QFormLayout *&fields)
{
    auto *page = new QWidget;
    fields = new QFormLayout(page);
    return page;
}

} // namespace

frmSchedule::frmSchedule(QorloGlobals &globals, QWidget *parent)
    : QDialog(parent), m_globals(globals), m_nextRun(this, "dtDay", "cmbHour", "cmbMin")
{
    setObjectName(QStringLiteral("frmSchedule"));
    auto *layout = new QVBoxLayout(this);
    auto *menus = new QMenuBar(this);
    QMenu *file = menus->addMenu(QStringLiteral("&File"));
    QAction *save = file->addAction(QStringLiteral("&Save"), this, [this] { WriteSchedule(); });
    save->setObjectName(QStringLiteral("mnuSave"));
    QAction *exit = file->addAction(QStringLiteral("E&xit"), this, [this] { reject(); });
    exit->setObjectName(QStringLiteral("mnuExit"));
    QAction *run = menus->addAction(QStringLiteral("&Run"), this, [this] { RunNow(); });
    run->setObjectName(QStringLiteral("mnuRun"));
    QAction *preview = menus->addAction(QStringLiteral("&Preview"), this, [this] {
        if (WriteSchedule())
            frmCrystal::PreviewItem(m_globals, m_shownID, m_globals.Schedule.File(), this);
    });
    preview->setObjectName(QStringLiteral("mnuPreview"));
    layout->setMenuBar(menus);
    BuildFields(layout);
    BuildTabs(layout);
    BuildCommands(layout);
}

QLineEdit *frmSchedule::LineEdit(const char *name)
{
    auto *edit = new QLineEdit(this);
    edit->setObjectName(QLatin1String(name));
    return edit;
}

QPlainTextEdit *frmSchedule::TextEdit(const char *name)
{
    auto *edit = new QPlainTextEdit(this);
    edit->setObjectName(QLatin1String(name));
    return edit;
}

QComboBox *frmSchedule::ComboBox(const char *name, const QStringList &choices, bool editable)
{
    auto *list = new QComboBox(this);
    list->setObjectName(QLatin1String(name));
    list->addItems(choices);
    list->setEditable(editable);
    return list;
}

void frmSchedule::BuildFields(QVBoxLayout *layout)
{
    txtReportName = LineEdit("txtReportName");
    txtReportFile = LineEdit("txtReportFile");
    txtDesc = TextEdit("txtDesc");
    cmbDest = ComboBox("cmbDest", Destinations());
    cmbFormat = ComboBox("cmbFormat", Formats());
    optRunScheduled = Option(this, "optRun0", QStringLiteral("Scheduled to Run"));
    optRunHold = Option(this, "optRun1", QStringLiteral("On Hold"));
    optRunCollection = Option(this, "optRun2", QStringLiteral("In a Collection"));
    txtEvery = LineEdit("txtEvery");
    cmbWhen = ComboBox("cmbWhen", Frequencies());
    lDayMessage = new QLabel(this);
    lDayMessage->setObjectName(QStringLiteral("lDayMessage"));

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("Report Title"), txtReportName);
    fields->addRow(QStringLiteral("File name"), txtReportFile);
    fields->addRow(QStringLiteral("Description"), txtDesc);
    fields->addRow(QStringLiteral("Destination"), cmbDest);
    fields->addRow(QStringLiteral("Format"), cmbFormat);
    auto *run = new QHBoxLayout;
    run->addWidget(optRunScheduled);
    run->addWidget(optRunHold);
    run->addWidget(optRunCollection);
    fields->addRow(run);
    auto *frWhen = new QGroupBox(this);
    frWhen->setObjectName(QStringLiteral("frWhen"));
    auto *when = new QFormLayout(frWhen);
    QHBoxLayout *nextRun = m_nextRun.Row();
    nextRun->addWidget(lDayMessage);
    when->addRow(QStringLiteral("Next Run"), nextRun);
    when->addRow(QStringLiteral("Then every"), txtEvery);
    when->addRow(QStringLiteral("When"), cmbWhen);
    fields->addRow(frWhen);
    layout->addLayout(fields);

    const auto dayLine = [this] { RefreshDayLine(); };
    connect(m_nextRun.Date, &QDateEdit::dateChanged, this, dayLine);
    connect(m_nextRun.Hour, &QComboBox::currentIndexChanged, this, dayLine);
    connect(m_nextRun.Minute, &QComboBox::currentIndexChanged, this, dayLine);
    connect(cmbWhen, &QComboBox::currentIndexChanged, this, dayLine);
    connect(cmbDest, &QComboBox::currentIndexChanged, this, [this] {
        if (!m_filling)
            ShowDestinationTabs(false);
    });
}

void frmSchedule::BuildTabs(QVBoxLayout *layout)
{
    tbOutput = new QTabWidget(this);
    tbOutput->setObjectName(QStringLiteral("tbOutput"));
    tbOutput->addTab(EmailTab(), QStringLiteral("Email"));
    tbOutput->addTab(MessageTab(), QStringLiteral("Message"));
    QFormLayout *disk = nullptr;
    tbOutput->addTab(Page(disk), QStringLiteral("Disk"));
    txtOutput = LineEdit("txtOutput");
    disk->addRow(QStringLiteral("File Name"), txtOutput);
    tbOutput->addTab(PrinterTab(), QStringLiteral("Printer"));
    tbOutput->addTab(MultirunTab(), QStringLiteral("Multirun"));
    tbOutput->addTab(OptionsTab(), QStringLiteral("Options"));
    tbOutput->addTab(NotifyTab(), QStringLiteral("Notify"));
    tbOutput->addTab(EachRunTab(), QStringLiteral("Each Run"));
    layout->addWidget(tbOutput);
}

QWidget *frmSchedule::EmailTab()
{
    QFormLayout *fields = nullptr;
    QWidget *page = Page(fields);
    txtMail = LineEdit("txtMail");
    txtMailCC = LineEdit("txtMailCC");
    txtMailBCC = LineEdit("txtMailBCC");
    txtMailFrom = LineEdit("txtMailFrom");
    txtAttachFiles = TextEdit("txtAttachFiles");
    fields->addRow(QStringLiteral("Email Address"), txtMail);
    fields->addRow(QStringLiteral("CC"), txtMailCC);
    fields->addRow(QStringLiteral("BCC"), txtMailBCC);
    fields->addRow(QStringLiteral("From"), txtMailFrom);
    fields->addRow(QStringLiteral("Attach Files"), txtAttachFiles);
    return page;
}

QWidget *frmSchedule::MessageTab()
{
    QFormLayout *fields = nullptr;
    QWidget *page = Page(fields);
    txtMailSubject = LineEdit("txtMailSubject");
    txtMailMessage = TextEdit("txtMailMessage");
    fields->addRow(QStringLiteral("Subject"), txtMailSubject);
    fields->addRow(QStringLiteral("Message"), txtMailMessage);
    return page;
}

QWidget *frmSchedule::PrinterTab()
{
    QFormLayout *fields = nullptr;
    QWidget *page = Page(fields);
    cmbPrinter = ComboBox("cmbPrinter", {});
    txtPRCopies = LineEdit("txtPRCopies");
    cmbOrient = ComboBox(
        "cmbOrient", {QStringLiteral("[Default]"), QStringLiteral("Portrait"), QStringLiteral("Landscape")});
    fields->addRow(QStringLiteral("Printer"), cmbPrinter);
    fields->addRow(QStringLiteral("Copies"), txtPRCopies);
    fields->addRow(QStringLiteral("Orientation"), cmbOrient);
    return page;
}

QWidget *frmSchedule::MultirunTab()
{
    QFormLayout *fields = nullptr;
    QWidget *page = Page(fields);
    txtMRFile = LineEdit("txtMRFile");
    txtAttachfilesMR = TextEdit("txtAttachfilesMR");
    fields->addRow(QStringLiteral("Control File"), txtMRFile);
    fields->addRow(QStringLiteral("Attach Files"), txtAttachfilesMR);
    return page;
}

QWidget *frmSchedule::OptionsTab()
{
    QFormLayout *fields = nullptr;
    QWidget *page = Page(fields);
    cmbNoRecs = ComboBox("cmbNoRecs", NoRecordChoices());
    fields->addRow(QStringLiteral("If no records"), cmbNoRecs);
    frEmail = new QGroupBox(QStringLiteral("Email"), page);
    frEmail->setObjectName(QStringLiteral("frEmail"));
    optAttach = Option(frEmail, "optAttach", QStringLiteral("Attached"));
    optBody = Option(frEmail, "optBody", QStringLiteral("In Body"));
    auto *mail = new QHBoxLayout(frEmail);
    mail->addWidget(optAttach);
    mail->addWidget(optBody);
    fields->addRow(frEmail);
    frHTML = new QGroupBox(QStringLiteral("HTML"), page);
    frHTML->setObjectName(QStringLiteral("frHTML"));
    optOnePage = Option(frHTML, "optOnePage", QStringLiteral("One Page"));
    optSepPage = Option(frHTML, "optSepPage", QStringLiteral("Separate Pages"));
    auto *html = new QHBoxLayout(frHTML);
    html->addWidget(optOnePage);
    html->addWidget(optSepPage);
    fields->addRow(frHTML);
    chkDateStamp = new QCheckBox(QStringLiteral("Date Stamp"), page);
    chkDateStamp->setObjectName(QStringLiteral("chkDateStamp"));
    chkRetain = new QCheckBox(QStringLiteral("Retain Data"), page);
    chkRetain->setObjectName(QStringLiteral("chkRetain"));
    fields->addRow(chkDateStamp);
    fields->addRow(chkRetain);
    return page;
}

QWidget *frmSchedule::NotifyTab()
{
    QFormLayout *fields = nullptr;
    QWidget *page = Page(fields);
    cmbNotifyTo = ComboBox("cmbNotifyTo", {}, true);
    txtNotifyMsg = TextEdit("txtNotifyMsg");
    cmbErrorTo = ComboBox("cmbErrorTo", {}, true);
    txtErrorMsg = TextEdit("txtErrorMsg");
    fields->addRow(QStringLiteral("On Success"), cmbNotifyTo);
    fields->addRow(txtNotifyMsg);
    fields->addRow(QStringLiteral("On Error"), cmbErrorTo);
    fields->addRow(txtErrorMsg);
    return page;
}

QWidget *frmSchedule::EachRunTab()
{
    QFormLayout *fields = nullptr;
    QWidget *page = Page(fields);
    cmbMultiSuccessTo = ComboBox("cmbMultiSuccessTo", {}, true);
    txtMultiSuccessMsg = TextEdit("txtMultiSuccessMsg");
    cmbMultiErrorTo = ComboBox("cmbMultiErrorTo", {}, true);
    txtMultiErrorMsg = TextEdit("txtMultiErrorMsg");
    fields->addRow(QStringLiteral("On Success"), cmbMultiSuccessTo);
    fields->addRow(txtMultiSuccessMsg);
    fields->addRow(QStringLiteral("On Error"), cmbMultiErrorTo);
    fields->addRow(txtMultiErrorMsg);
    return page;
}

void frmSchedule::BuildCommands(QVBoxLayout *layout)
{
    auto *buttons = new QDialogButtonBox(this);
    clsSchedule &schedule = m_globals.Schedule;
    AddButton(buttons, "cmdFirst", QStringLiteral("First"),
              [this, &schedule] { Navigate([&schedule] { schedule.MoveFirst(); }); });
    AddButton(buttons, "cmdPrior", QStringLiteral("Prior"),
              [this, &schedule] { Navigate([&schedule, this] { schedule.MovePrior(m_shownID); }); });
    AddButton(buttons, "cmdNext", QStringLiteral("Next"),
              [this, &schedule] { Navigate([&schedule, this] { schedule.MoveNext(m_shownID); }); });
    AddButton(buttons, "cmdLast", QStringLiteral("Last"),
              [this, &schedule] { Navigate([&schedule] { schedule.MoveLast(); }); });
    AddButton(buttons, "cmdRun", QStringLiteral("&Run Now"), [this] { RunNow(); });
    AddButton(buttons, "cmdApply", QStringLiteral("&Apply"), [this] { WriteSchedule(); });
    AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { cmdSave_Click(); });
    AddButton(
        buttons, "cmdExit", QStringLiteral("E&xit"), [this] { reject(); }, QDialogButtonBox::RejectRole);
    layout->addWidget(buttons);
}

void frmSchedule::cmdSave_Click()
{
    if (WriteSchedule())
        accept();
}

void frmSchedule::RunNow()
{
    clsSchedule &schedule = m_globals.Schedule;
    if (!schedule.ProcessingID.isEmpty())
        return m_globals.prompter.ShowMessage(
            QStringLiteral("Run Now"), QStringLiteral("Please wait until report has finished processing"));
    const int position = schedule.Position();
    RunScheduleItem(m_globals, m_shownID);
    schedule.SetPosition(position);
    m_globals.SaveSchedule();
}

// A refused item stays in the window, so that the operator's input is not lost by the move.
template <typename Move> void frmSchedule::Navigate(Move move)
{
    if (!WriteSchedule())
        return;
    move();
    ShowSchedule();
}

// The machine's printers are listed afresh at each filling, as printers come and go.
void frmSchedule::ShowPrinter()
{
    const QString printer = m_globals.Schedule.Printer();
    cmbPrinter->clear();
    cmbPrinter->addItems(PrinterNames());
    // A printer the machine no longer has stays the item's until the operator picks another.
    if (!printer.isEmpty() && cmbPrinter->findText(printer) < 0)
        cmbPrinter->addItem(printer);
    cmbPrinter->setCurrentIndex(std::max(0, cmbPrinter->findText(printer)));
}
