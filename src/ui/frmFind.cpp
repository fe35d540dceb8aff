#include "frmFind.h"

#include "DialogButtons.h"
#include "NamedControls.h"

#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

frmFind::frmFind(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmFind"));
    setWindowTitle(QStringLiteral("Find and Replace"));
    cmbOptions = new QComboBox(this);
    cmbOptions->setObjectName(QStringLiteral("cmbOptions"));
    // The field each choice changes, by its column number.
    cmbOptions->addItem(QStringLiteral("Destination"), int(clsSchedule::colDest));
    cmbOptions->addItem(QStringLiteral("EMail Address"), int(clsSchedule::colEmail));
    cmbOptions->addItem(QStringLiteral("Printer"), int(clsSchedule::colPrinter));
    cmbOptions->addItem(QStringLiteral("File/Folder"), int(clsSchedule::colFile));
    txtFind = NamedLine(this, "txtFind");
    txtReplace = NamedLine(this, "txtReplace");
    chkCase = new QCheckBox(QStringLiteral("Case Sensitive"), this);
    chkCase->setObjectName(QStringLiteral("chkCase"));

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("Field"), cmbOptions);
    fields->addRow(QStringLiteral("Find"), txtFind);
    fields->addRow(QStringLiteral("Replace with"), txtReplace);
    fields->addRow(QString(), chkCase);
    auto *buttons = new QDialogButtonBox(this);
    AddButton(buttons, "cmdReplace", QStringLiteral("Replace ALL"), [this] { cmdReplace_Click(); });
    AddExitButton(buttons, this);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(buttons);
}

void frmFind::cmdReplace_Click()
{
    clsSchedule &schedule = m_globals.Schedule;
    const int column = cmbOptions->currentData().toInt();
    const QString matchCase = chkCase->isChecked() ? QStringLiteral("Y") : QStringLiteral("N");
    const qint16 found = schedule.ChangePreview(column, txtFind->text(), matchCase);
    if (!m_globals.prompter.AskYesNo(QStringLiteral("Find/Replace schedule"),
                                     QStringLiteral("You have asked to modify ") + QString::number(found) +
                                         QStringLiteral(" schedule items\r\nPlease confirm you wish to "
                                                        "apply this change to the schedule?")))
        return;
    const qint16 changed = schedule.ChangeBulk(column, txtFind->text(), txtReplace->text(), matchCase);
    m_globals.prompter.ShowMessage(QStringLiteral("Changes made"), QStringLiteral("This changed ") +
                                                                       QString::number(changed) +
                                                                       QStringLiteral(" schedule items"));
    if (changed > 0) {
        m_globals.SaveSchedule();
        m_globals.ViewTable();
    }
}
