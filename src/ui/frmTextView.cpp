#include "frmTextView.h"

#include "DialogButtons.h"

#include "core/Ansi.h"

#include <QFile>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

frmTextView::frmTextView(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmTextView"));
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("txtView"));
    m_text->setReadOnly(true);
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_file = new QLabel(this);
    m_file->setObjectName(QStringLiteral("lFile"));
    m_file->setBuddy(m_text);
    auto *buttons = new QDialogButtonBox(this);
    AddExitButton(buttons, this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_file);
    layout->addWidget(m_text);
    layout->addWidget(buttons);
    resize(720, 480);
}

void frmTextView::ShowFile(const QString &path)
{
    setWindowTitle(path);
    m_file->setText(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_text->setPlainText(QStringLiteral("Cannot read ") + path + QStringLiteral(": ") +
                             file.errorString());
        return;
    }
    m_text->setPlainText(Ansi::Decode(file.readAll()));
}
