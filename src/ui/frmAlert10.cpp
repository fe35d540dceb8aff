#include "frmAlert10.h"

#include "DialogButtons.h"

#include "core/QorloError.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QVBoxLayout>

frmAlert10::frmAlert10(const QString &key, QWidget *parent)
    : QWidget(parent, Qt::Window), cmbAlert(new QComboBox(this)), m_key(key)
{
    setObjectName(QStringLiteral("frmAlert10"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Alert Triggered in ") + key);
    cmbAlert->setObjectName(QStringLiteral("cmbAlert"));
    cmbAlert->addItem(QString()); // the entry that restores the view
    auto *label = new QLabel(QStringLiteral("&Alerts that fired:"), this);
    label->setBuddy(cmbAlert);
    auto *buttons = new QDialogButtonBox(this);
    cmdView = AddButton(buttons, "cmdView", QStringLiteral("&View"), [this] { ShowAlert(); });
    cmdClose = AddButton(
        buttons, "cmdClose", QStringLiteral("&Close"), [this] { close(); }, QDialogButtonBox::RejectRole);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(cmbAlert);
    layout->addStretch();
    layout->addWidget(buttons);
    resize(360, 130);
}

void frmAlert10::AddAlert(const QString &name, const QString &formula)
{
    const int position = cmbAlert->count() - 1;
    if (position >= MaxAlerts)
        throw QorloError(QorloError::OutOfRange);
    cmbAlert->addItem(name);
    m_formulas[size_t(position)] = formula;
}

void frmAlert10::ShowAlert()
{
    const int position = cmbAlert->currentIndex() - 1;
    const QString name = position >= 0 ? cmbAlert->currentText() : QString();
    const QString formula = position >= 0 ? m_formulas[size_t(position)] : QString();
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (!qobject_cast<frmAlert10 *>(window) && window->windowTitle().contains(m_key)) {
            QMetaObject::invokeMethod(window, "SetAlertSelection", Q_ARG(QString, name),
                                      Q_ARG(QString, formula));
            return;
        }
    }
}
