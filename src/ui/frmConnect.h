#pragma once
// The connection editor: the rows of the connection list, one in view with its password masked, saved
// back to the list's file (passwords scrambled there); connections learned from a report, a
// connection tested for real, and the machine's ODBC data sources to choose a server from.

#include <QDialog>

#include <array>

class QorloGlobals;
class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

class frmConnect : public QDialog
{
    Q_OBJECT
public:
    // The fields of txtField, in their order.
    enum Field { fldDriver, fldServer, fldDatabase, fldUser, fldPassword, fldConfirm, FieldCount };

    explicit frmConnect(QorloGlobals &globals, QWidget *parent = nullptr);

    // The list, its options and the first row, as each opening of the window shows them.
    void LoadSettings();
    // The row in view, -1 for none.
    int Row() const { return m_row; }

protected:
    void moveEvent(QMoveEvent *event) override;

private:
    void BuildFields();
    QWidget *BuildButtons();
    void BuildMenus();
    void FillTree();
    QString NodeText(int row) const;
    // Shows the row after the operator has decided on the changes of the one in view; false when the
    // row in view stays.
    bool MoveTo(int row);
    bool LeaveRow();
    void ShowRow(int row);
    void ShowStatus();
    // Writes the fields into the row in view and saves the list; false when the passwords differ.
    bool SaveRow();
    void WarnUnknownDataSource(const QString &server);
    void OnNodeChanged(QTreeWidgetItem *node);
    void cmdTest_Click();
    void mnuOpen_Click();
    void mnuSaveAs_Click();
    void mnuInsert_Click();
    void mnuDelete_Click();
    void mnuCaseSensitive_Click();
    void mnuRetainUser_Click();
    // The password the main window asks before it opens this one; typed twice, empty for none.
    void mnuLockPassword_Click();
    QString ConnectFolder() const;

    QorloGlobals &m_globals;
    std::array<QLineEdit *, FieldCount> txtField{};
    QComboBox *cmbDSN = nullptr;
    QTreeWidget *tvRecords = nullptr;
    QLineEdit *txtFile = nullptr;
    QLabel *lblStatus = nullptr;
    QLabel *lblMessage = nullptr;
    QAction *m_caseSensitive = nullptr;
    QAction *m_retainUser = nullptr;
    int m_row = -1;
    // The fields hold edits not yet saved.
    bool m_changed = false;
    // The tree's selection follows the row shown, without asking again.
    bool m_showing = false;
};
