#pragma once
// The main() of a widget test: its own settings folder and the offscreen platform, then a QApplication.

#include "TestMain.h"

#include <QApplication>

#define QORLO_TEST_MAIN_WIDGETS(TestClass)                                                                   \
    int main(int argc, char **argv)                                                                          \
    {                                                                                                        \
        TestSupport::PrepareEnvironment();                                                                   \
        QApplication app(argc, argv);                                                                        \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
