#pragma once
// A read-only window over a text file, such as the SMTP log.

#include <QDialog>

class QLabel;
class QPlainTextEdit;

class frmTextView : public QDialog
{
    Q_OBJECT
public:
    explicit frmTextView(QWidget *parent = nullptr);

    // Shows the file's text (Windows-1252, as the program writes its logs), or a line saying that it
    // cannot be read.
    void ShowFile(const QString &path);

private:
    // The file's name above its text.
    QLabel *m_file = nullptr;
    QPlainTextEdit *m_text = nullptr;
};
