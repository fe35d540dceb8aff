#include "frmConnect.h"

#include "DialogButtons.h"
#include "DesktopOpen.h"
#include "NamedControls.h"
#include "TabOrder.h"

#include "connect/OdbcSources.h"
#include "core/TWReg.h"
#include "run/ReportConnections.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMoveEvent>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QString kSection = QStringLiteral("ConnectionProperties");
constexpr int kTwipsPerPixel = 15;
// A longer server name is cut short in the tree.
constexpr int kServerShown = 24;

const char *const kFieldNames[frmConnect::FieldCount] = {"txtField0", "txtField1", "txtField2",
                                                         "txtField3", "txtField4", "txtField5"};
const char *const kFieldCaptions[frmConnect::FieldCount] = {
    "Database Driver", "Server", "Database", "Database User", "Password", "Confirm Password"};

} // namespace

frmConnect::frmConnect(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmConnect"));
    setWindowTitle(QStringLiteral("Database Connection Information"));
    BuildFields();
    BuildMenus();
    move(
        TWReg::ReadSettingNumber(kSection, QStringLiteral("FormLeft"), x() * kTwipsPerPixel) / kTwipsPerPixel,
        TWReg::ReadSettingNumber(kSection, QStringLiteral("FormTop"), y() * kTwipsPerPixel) / kTwipsPerPixel);
    LoadSettings();
}

void frmConnect::BuildFields()
{
    tvRecords = new QTreeWidget(this);
    tvRecords->setObjectName(QStringLiteral("tvRecords"));
    tvRecords->setHeaderHidden(true);
    tvRecords->setRootIsDecorated(false);
    connect(tvRecords, &QTreeWidget::currentItemChanged, this, &frmConnect::OnNodeChanged);

    auto *fields = new QFormLayout;
    for (int field = 0; field < FieldCount; ++field) {
        txtField[size_t(field)] = NamedLine(this, kFieldNames[field]);
        connect(txtField[size_t(field)], &QLineEdit::textEdited, this, [this] { m_changed = true; });
        fields->addRow(QLatin1String(kFieldCaptions[field]), txtField[size_t(field)]);
    }
    txtField[fldPassword]->setEchoMode(QLineEdit::Password);
    txtField[fldConfirm]->setEchoMode(QLineEdit::Password);
    cmbDSN = NamedList(this, "cmbDSN", {});
    connect(cmbDSN, &QComboBox::textActivated, this, [this](const QString &source) {
        txtField[fldServer]->setText(source);
        m_changed = true;
    });
    fields->insertRow(fldServer + 1, QStringLiteral("ODBC data sources"), cmbDSN);

    txtFile = NamedLine(this, "txtFile");
    txtFile->setReadOnly(true);
    auto *fileBox = new QGroupBox(QStringLiteral("Using configuration file:"), this);
    txtFile->setAccessibleName(fileBox->title());
    (new QVBoxLayout(fileBox))->addWidget(txtFile);
    lblStatus = new QLabel(this);
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    lblMessage = new QLabel(this);
    lblMessage->setObjectName(QStringLiteral("lblMessage"));

    auto *right = new QVBoxLayout;
    right->addLayout(fields);
    right->addWidget(lblStatus);
    right->addWidget(lblMessage);
    right->addStretch();
    auto *body = new QHBoxLayout;
    body->addWidget(tvRecords, 2);
    body->addLayout(right, 3);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(fileBox);
    layout->addLayout(body);
    QWidget *buttons = BuildButtons();
    layout->addWidget(buttons);
    // Reading order: the file, the list of connections, the fields top down, then the buttons.
    QList<QWidget *> order{txtFile, tvRecords};
    for (int row = 0; row < fields->rowCount(); ++row)
        order.append(fields->itemAt(row, QFormLayout::FieldRole)->widget());
    for (QPushButton *button : buttons->findChildren<QPushButton *>())
        order.append(button);
    SetTabOrder(order);
    resize(720, 420);
}

QWidget *frmConnect::BuildButtons()
{
    auto *buttons = new QDialogButtonBox(this);
    const auto last = [this] { return m_globals.Connections.Count() - 1; };
    AddButton(buttons, "cmdFirst", QStringLiteral("&First"), [this] { MoveTo(0); });
    AddButton(buttons, "cmdPrevious", QStringLiteral("&Previous"), [this] { MoveTo(qMax(m_row - 1, 0)); });
    AddButton(buttons, "cmdNext", QStringLiteral("&Next"), [this, last] { MoveTo(qMin(m_row + 1, last())); });
    AddButton(buttons, "cmdLast", QStringLiteral("&Last"), [this, last] { MoveTo(last()); });
    AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { SaveRow(); });
    AddButton(buttons, "cmdCancel", QStringLiteral("&Cancel"), [this] { ShowRow(m_row); });
    AddButton(buttons, "cmdTest", QStringLiteral("&Test"), [this] { cmdTest_Click(); });
    return buttons;
}

void frmConnect::BuildMenus()
{
    auto *bar = new QMenuBar(this);
    const auto add = [this](QMenu *menu, const char *name, const QString &caption, auto slot) {
        QAction *entry = menu->addAction(caption);
        entry->setObjectName(QLatin1String(name));
        connect(entry, &QAction::triggered, this, slot);
        return entry;
    };
    QMenu *file = bar->addMenu(QStringLiteral("&File"));
    add(file, "mnuOpen", QStringLiteral("&Open"), [this] { mnuOpen_Click(); });
    add(file, "mnuSaveAs", QStringLiteral("Save &As"), [this] { mnuSaveAs_Click(); });
    file->addSeparator();
    add(file, "mnuExit", QStringLiteral("E&xit"), [this] { close(); });
    QMenu *edit = bar->addMenu(QStringLiteral("&Edit"));
    add(edit, "mnuInsert", QStringLiteral("Insert &new entry"), [this] { mnuInsert_Click(); });
    add(edit, "mnuDelete", QStringLiteral("&Delete entry"), [this] { mnuDelete_Click(); });
    QMenu *options = bar->addMenu(QStringLiteral("&Options"));
    m_caseSensitive = add(options, "mnuCaseSensitive", QStringLiteral("Case Sensitive"),
                          [this] { mnuCaseSensitive_Click(); });
    m_caseSensitive->setCheckable(true);
    m_retainUser = add(options, "mnuRetainUser", QStringLiteral("Retain Report User"),
                       [this] { mnuRetainUser_Click(); });
    m_retainUser->setCheckable(true);
    options->addSeparator();
    add(options, "mnuLockPassword", QStringLiteral("&Lock Password..."), [this] { mnuLockPassword_Click(); });
    QMenu *help = bar->addMenu(QStringLiteral("&Help"));
    add(help, "mnuHelp", QStringLiteral("&Help"),
        [this] { OpenHelpPage(m_globals.prompter, m_globals.AppPath, QStringLiteral("connect.htm")); });
    layout()->setMenuBar(bar);
}

void frmConnect::LoadSettings()
{
    const clsConnect &connections = m_globals.Connections;
    txtFile->setText(connections.Connection_File);
    m_caseSensitive->setChecked(connections.CaseSensitive);
    m_retainUser->setChecked(connections.UserOption == QLatin1String("Yes"));
    cmbDSN->clear();
    cmbDSN->addItems(OdbcSources::DataSourceNames());
    cmbDSN->setCurrentIndex(-1);
    FillTree();
    ShowRow(connections.Count() > 0 ? 0 : -1);
}

void frmConnect::FillTree()
{
    m_showing = true;
    tvRecords->clear();
    for (int row = 0; row < m_globals.Connections.Count(); ++row) {
        auto *node = new QTreeWidgetItem(tvRecords, {NodeText(row)});
        node->setData(0, Qt::UserRole, QString(QStringLiteral("xmlConnect") + QString::number(row)));
    }
    m_showing = false;
}

QString frmConnect::NodeText(int row) const
{
    clsConnect &connections = m_globals.Connections;
    connections.Locate(qint16(row));
    QString server = connections.Server();
    if (server.size() > kServerShown)
        server = server.left(kServerShown - 3) + QStringLiteral("...");
    const QString database = connections.Database();
    if (server.isEmpty() && database.isEmpty())
        return QStringLiteral("(blank)");
    return server + QStringLiteral(" (") + database + QLatin1Char(')');
}

bool frmConnect::MoveTo(int row)
{
    if (row < 0 || row >= m_globals.Connections.Count() || !LeaveRow())
        return false;
    ShowRow(row);
    return true;
}

bool frmConnect::LeaveRow()
{
    if (!m_changed || m_row < 0)
        return true;
    if (!m_globals.prompter.AskYesNo(
            QStringLiteral("Save changes?"),
            QStringLiteral("This record has changed. Would you like to save your changes?")))
        return true;
    return SaveRow();
}

void frmConnect::ShowRow(int row)
{
    clsConnect &connections = m_globals.Connections;
    m_row = row;
    const bool shown = row >= 0 && row < connections.Count();
    if (shown)
        connections.Locate(qint16(row));
    const QString values[FieldCount] = {
        shown ? connections.DLL() : QString(),      shown ? connections.Server() : QString(),
        shown ? connections.Database() : QString(), shown ? connections.User() : QString(),
        shown ? connections.Password() : QString(), shown ? connections.Password() : QString()};
    for (int field = 0; field < FieldCount; ++field)
        txtField[size_t(field)]->setText(values[field]);
    m_changed = false;
    m_showing = true;
    tvRecords->setCurrentItem(shown ? tvRecords->topLevelItem(row) : nullptr);
    m_showing = false;
    ShowStatus();
}

void frmConnect::ShowStatus()
{
    const int count = m_globals.Connections.Count();
    lblStatus->setText(QStringLiteral("Record ") + QString::number(count == 0 ? 0 : m_row + 1) +
                       QStringLiteral(" of ") + QString::number(count));
    lblMessage->setText(count == 0 ? QStringLiteral("No configuration settings were found in this file!")
                                   : QString());
}

void frmConnect::OnNodeChanged(QTreeWidgetItem *node)
{
    if (m_showing || !node)
        return;
    const int row = tvRecords->indexOfTopLevelItem(node);
    if (row != m_row && !MoveTo(row))
        ShowRow(m_row);
}

bool frmConnect::SaveRow()
{
    const QString password = txtField[fldPassword]->text();
    if (password != txtField[fldConfirm]->text()) {
        m_globals.prompter.ShowMessage(QStringLiteral("Error saving record!"),
                                       QStringLiteral("Passwords do not match!"));
        return false;
    }
    const QString server = txtField[fldServer]->text();
    if (txtField[fldDriver]->text().contains(QLatin1String("odbc"), Qt::CaseInsensitive))
        WarnUnknownDataSource(server);
    clsConnect &connections = m_globals.Connections;
    if (m_row < 0 || m_row >= connections.Count())
        return true;
    connections.Locate(qint16(m_row));
    connections.SetDLL(txtField[fldDriver]->text());
    connections.SetServer(server);
    connections.SetDatabase(txtField[fldDatabase]->text());
    connections.SetUser(txtField[fldUser]->text());
    connections.SetPassword(password);
    connections.Save();
    m_changed = false;
    tvRecords->topLevelItem(m_row)->setText(0, NodeText(m_row));
    return true;
}

// The save goes on: the data source may be made on the machine that runs the schedule.
void frmConnect::WarnUnknownDataSource(const QString &server)
{
    if (OdbcSources::Exists(server))
        return;
    m_globals.prompter.ShowMessage(QStringLiteral("ODBC connection not configured"),
                                   QStringLiteral("Warning: The ODBC connection '") + server +
                                       QStringLiteral("' does not exist on the local machine"),
                                   Prompter::Icon::Warning);
}

void frmConnect::cmdTest_Click()
{
    const QString server = txtField[fldServer]->text();
    const QString database = txtField[fldDatabase]->text();
    const QString failure = ReportBinding::TestConnection(txtField[fldDriver]->text(), server, database,
                                                          txtField[fldUser]->text(),
                                                          txtField[fldPassword]->text(), m_globals.AppPath);
    if (failure.isEmpty())
        m_globals.prompter.ShowMessage(QStringLiteral("Test Connection"), QStringLiteral("Connected to ") +
                                                                              server + QStringLiteral(" (") +
                                                                              database + QLatin1Char(')'));
    else
        m_globals.prompter.ShowMessage(QStringLiteral("Test Connection"), failure, Prompter::Icon::Warning);
}

void frmConnect::moveEvent(QMoveEvent *event)
{
    QDialog::moveEvent(event);
    if (!isVisible())
        return;
    TWReg::SaveSettingNumber(kSection, QStringLiteral("FormTop"), y() * kTwipsPerPixel);
    TWReg::SaveSettingNumber(kSection, QStringLiteral("FormLeft"), x() * kTwipsPerPixel);
}
