#pragma once
// The About box: the program's version, its licence and the libraries it is built on.

#include <QDialog>

class frmAbout : public QDialog
{
    Q_OBJECT
public:
    explicit frmAbout(QWidget *parent = nullptr);
};
