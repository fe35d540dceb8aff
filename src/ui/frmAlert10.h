#pragma once
// The alerts of a report that fired: View narrows the report window to the records of the chosen alert,
// and the empty entry restores the window's view.

#include <QStringList>
#include <QWidget>
#include <array>

class QComboBox;
class QPushButton;

class frmAlert10 : public QWidget
{
    Q_OBJECT
public:
    static constexpr int MaxAlerts = 51;

    // `key`: the caption of the report window it belongs to.
    explicit frmAlert10(const QString &key, QWidget *parent = nullptr);

    QString Key() const { return m_key; }
    // Lists one more alert; the 52nd overruns the formulas and raises error 9.
    void AddAlert(const QString &name, const QString &formula);
    // cmdView: the chosen alert (none for the empty entry) to the first open window whose caption holds
    // the key.
    void ShowAlert();

    QComboBox *cmbAlert;
    QPushButton *cmdView;
    QPushButton *cmdClose;

private:
    QString m_key;
    std::array<QString, MaxAlerts> m_formulas;
};
