#pragma once
// The list file editor: one entry a line, edited in a control laid over the cell that suits the list's
// kind (free text, a date, a date and time, or a printer). The business calendar opens it on the
// holiday list, the item editor on a custom calendar.

#include <QDialog>

class QorloGlobals;
class QAction;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QTableWidget;

class frmList : public QDialog
{
    Q_OBJECT
public:
    // The kinds of list, as callers name them.
    static inline const QString Std = QStringLiteral("Std");
    static inline const QString Date = QStringLiteral("Date");
    static inline const QString DateTime = QStringLiteral("DateTime");
    static inline const QString Printer = QStringLiteral("Printer");

    explicit frmList(QorloGlobals &globals, QWidget *parent = nullptr);

    // A new editor of that kind on the file (a name without a folder lies in the application folder),
    // shown; it is deleted when closed.
    static frmList *OpenList(QorloGlobals &globals, QWidget *parent, const QString &kind,
                             const QString &file);

    // An empty list of that kind, with no file name.
    void ClearForm(const QString &kind);
    // The lines of the file into the grid, two enclosing double quotes stripped; a missing or empty
    // name does nothing.
    void LoadFile(const QString &path);
    QString Kind() const { return m_kind; }
    QString FileName() const { return m_fileName; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void BuildMenus();
    void BuildEditors();
    QList<QWidget *> Editors() const;
    // The controls that edit a cell of the list's kind, the first taking the focus.
    QList<QWidget *> KindEditors() const;
    QAction *AddKind(QMenu *menu, const char *name, const QString &caption, const QString &kind);
    void SetKind(const QString &kind);
    void LoadPrinters();
    // The kind's controls over the current cell, showing its text.
    void ShowEditor();
    void PlaceEditor();
    void WriteCell(const QString &text);
    void WriteDateCell();
    void AddRow(int row);
    void mnuNew_Click();
    void mnuOpen_Click();
    void mnuSave_Click();
    void mnuSaveAs_Click();
    void mnuInsertLine_Click();
    void mnuDeleteLine_Click();
    void SaveTo(const QString &path);
    void ShowFileName(const QString &path);

    QorloGlobals &m_globals;
    QString m_kind = Std;
    QString m_fileName;
    QList<QAction *> m_kindEntries;
    QTableWidget *fgList = nullptr;
    QLineEdit *txtEdit = nullptr;
    QDateEdit *dtList = nullptr;
    QComboBox *cmbHours = nullptr;
    QComboBox *cmbMins = nullptr;
    QComboBox *cmbPrinter = nullptr;
    QLabel *lblFile = nullptr;
    // Filling the controls from a cell must not write the cell back.
    bool m_filling = false;
};
