#pragma once
// The Advance window: moves every run time of the schedule past a chosen moment without running
// anything. The main window stops the schedule before opening it.

#include "MomentControls.h"

#include <QDialog>

class QorloGlobals;
class QLabel;

class frmAdv : public QDialog
{
    Q_OBJECT
public:
    explicit frmAdv(QorloGlobals &globals, QWidget *parent = nullptr);

    // The present moment in the controls and an empty status, at each opening of the window.
    void LoadSettings();

private:
    void cmdAnalyse_Click();
    void cmdProcess_Click();

    QorloGlobals &m_globals;
    MomentControls m_moment;
    QLabel *m_status = nullptr;
};
