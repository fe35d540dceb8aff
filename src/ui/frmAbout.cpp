#include "frmAbout.h"

#include "DialogButtons.h"

#include "store/clsSchedule.h"

#include <QLabel>
#include <QVBoxLayout>

#include <cups/cups.h>
#include <sql.h>

namespace {

QString AboutText()
{
    return QStringLiteral("<h3>QorloMANAGER</h3>"
                          "<p>Report scheduler, version %1</p>"
                          "<p>&copy; 2025 Tessaly Works. The maker has not published a licence for this "
                          "program yet: ask Tessaly Works before passing it on.</p>"
                          "<p>Built on Qt %2 (run with Qt %3), the CUPS library %4.%5, unixODBC (ODBC %6), "
                          "SQLite and PostgreSQL through Qt's database drivers, and the DejaVu and "
                          "Liberation fonts.</p>")
        .arg(clsSchedule::ApplicationVersion(), QStringLiteral(QT_VERSION_STR),
             QString::fromLatin1(qVersion()))
        .arg(CUPS_VERSION_MAJOR)
        .arg(CUPS_VERSION_MINOR)
        .arg(QString::number(ODBCVER >> 8) + QLatin1Char('.') + QString::number(ODBCVER & 0xFF, 16));
}

} // namespace

frmAbout::frmAbout(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About QorloMANAGER"));
    auto *text = new QLabel(AboutText(), this);
    text->setObjectName(QStringLiteral("lblAbout"));
    text->setWordWrap(true);
    text->setTextFormat(Qt::RichText);
    auto *buttons = new QDialogButtonBox(this);
    AddButton(
        buttons, "cmdOK", QStringLiteral("OK"), [this] { accept(); }, QDialogButtonBox::AcceptRole);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(buttons);
    resize(420, 240);
}
