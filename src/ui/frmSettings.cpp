#include "frmSettings.h"

#include "DeskSettings.h"
#include "DialogButtons.h"
#include "NamedControls.h"

#include "core/TWReg.h"
#include "scheduler/PrinterNames.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>

namespace {

const QString kViewer = QStringLiteral("Viewer");
const QString kSystem = QStringLiteral("System");

QRadioButton *Option(QWidget *parent, const char *name, const QString &caption)
{
    auto *option = new QRadioButton(caption, parent);
    option->setObjectName(QLatin1String(name));
    return option;
}

// Two options side by side, one choice.
QWidget *Choice(QWidget *parent, QRadioButton *first, QRadioButton *second)
{
    auto *group = new QButtonGroup(parent);
    group->addButton(first);
    group->addButton(second);
    return SideBySide(parent, {first, second});
}

} // namespace

frmSettings::frmSettings(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmSettings"));
    setWindowTitle(QStringLiteral("Output Settings"));
    optNormal = Option(this, "optNormal", QStringLiteral("Normal"));
    optMaximised = Option(this, "optMaximised", QStringLiteral("Maximised"));
    spnZoom = new QSpinBox(this);
    spnZoom->setObjectName(QStringLiteral("spnZoom"));
    spnZoom->setRange(10, 400);
    spnZoom->setSuffix(QStringLiteral(" %"));
    optScreen = Option(this, "optScreen", QStringLiteral("Screen"));
    optPrinter = Option(this, "optPrinter", QStringLiteral("Printer"));
    cmbPrinter = NamedList(this, "cmbPrinter", {});

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("Viewer window"), Choice(this, optNormal, optMaximised));
    fields->addRow(QStringLiteral("Report Zoom"), spnZoom);
    fields->addRow(QStringLiteral("Report Output"), Choice(this, optScreen, optPrinter));
    fields->addRow(QStringLiteral("Printer"), cmbPrinter);
    fields->addRow(FileKindBoxes());
    // Made after the boxes above, so that Tab reaches it after them.
    txtKnowledgebase = NamedLine(this, "txtKnowledgebase");
    // Wide enough for the address of a web host.
    txtKnowledgebase->setMinimumWidth(txtKnowledgebase->fontMetrics().averageCharWidth() * 50);
    fields->addRow(QStringLiteral("Knowledgebase host"), txtKnowledgebase);
    LayOutSettings(this, fields, [this] { cmdSave_Click(); });
    LoadSettings();
}

// A box for each kind of file, named after its setting: chkrpt, chktxt, ...
QWidget *frmSettings::FileKindBoxes()
{
    auto *group = new QGroupBox(QStringLiteral("View Report Now offers"), this);
    auto *grid = new QGridLayout(group);
    for (const DeskSettings::FileKind &kind : DeskSettings::FileKinds()) {
        auto *box = new QCheckBox(QLatin1String(kind.name), group);
        box->setObjectName(QStringLiteral("chk") + QLatin1String(kind.setting));
        grid->addWidget(box, int(m_fileKinds.size()) / 2, int(m_fileKinds.size()) % 2);
        m_fileKinds.append(box);
    }
    return group;
}

void frmSettings::LoadSettings()
{
    const bool maximised =
        TWReg::ReadSetting(kViewer, QStringLiteral("WindowState"), QStringLiteral("0")) == QLatin1String("2");
    (maximised ? optMaximised : optNormal)->setChecked(true);
    spnZoom->setValue(TWReg::ReadSettingNumber(kSystem, QStringLiteral("Report Zoom"), 100));
    const bool printer = TWReg::ReadSetting(kSystem, QStringLiteral("Report Output"),
                                            QStringLiteral("Screen")) == QLatin1String("Printer");
    (printer ? optPrinter : optScreen)->setChecked(true);
    cmbPrinter->clear();
    cmbPrinter->addItems(InstalledPrinterNames());
    SelectOrAdd(cmbPrinter, TWReg::ReadSetting(kSystem, QStringLiteral("Printer"), QString()));
    for (qsizetype index = 0; index < m_fileKinds.size(); ++index)
        m_fileKinds.at(index)->setChecked(DeskSettings::Offered(DeskSettings::FileKinds().at(index)));
    txtKnowledgebase->setText(DeskSettings::KnowledgebaseHost());
}

void frmSettings::cmdSave_Click()
{
    TWReg::SaveSetting(kViewer, QStringLiteral("WindowState"),
                       optMaximised->isChecked() ? QStringLiteral("2") : QStringLiteral("0"));
    TWReg::SaveSettingNumber(kSystem, QStringLiteral("Report Zoom"), spnZoom->value());
    TWReg::SaveSetting(kSystem, QStringLiteral("Report Output"),
                       optPrinter->isChecked() ? QStringLiteral("Printer") : QStringLiteral("Screen"));
    TWReg::SaveSetting(kSystem, QStringLiteral("Printer"), cmbPrinter->currentText());
    for (qsizetype index = 0; index < m_fileKinds.size(); ++index)
        DeskSettings::SetOffered(DeskSettings::FileKinds().at(index), m_fileKinds.at(index)->isChecked());
    DeskSettings::SetKnowledgebaseHost(txtKnowledgebase->text());
    accept();
}
