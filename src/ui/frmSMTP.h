#pragma once
// The mail settings window: edits the schedule's mail settings and sends a test message.

#include <QDialog>

class QorloGlobals;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QPlainTextEdit;

class frmSMTP : public QDialog
{
    Q_OBJECT
public:
    explicit frmSMTP(QorloGlobals &globals, QWidget *parent = nullptr);

    // All fields from the schedule, as each opening of the window shows them.
    void LoadSettings();

private:
    void BuildFields();
    QLineEdit *AddLine(const char *name);
    // The checks of both buttons; false, with the message shown and the focus on the field, at the first
    // that fails.
    bool FieldsComplete(bool forTest);
    bool Refuse(QWidget *field, const QString &text);
    void cmdSave_Click();
    void cmdTest_Click();
    void SaveFields();
    void SendTestMessage();

    QorloGlobals &m_globals;
    QLineEdit *m_server = nullptr;
    QLineEdit *m_port = nullptr;
    QLineEdit *m_from = nullptr;
    QLineEdit *m_testTo = nullptr;
    QPlainTextEdit *m_message = nullptr;
    QLineEdit *m_delay = nullptr;
    QComboBox *m_encryption = nullptr;
    QCheckBox *m_secure = nullptr;
    QGroupBox *m_secureFrame = nullptr;
    QLineEdit *m_user = nullptr;
    QLineEdit *m_password = nullptr;
};
