#pragma once

#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

// A test main for widget tests: the tool reads and writes the user's
// settings, so they are kept in a sandbox that vanishes with the test.
#define VOK_SANDBOXED_TEST_MAIN(TestClass)                                      \
    int main(int argc, char** argv)                                             \
    {                                                                           \
        QTemporaryDir config;                                                   \
        qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());                \
        qputenv("XDG_DATA_HOME", config.path().toLocal8Bit());                  \
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))                     \
            qputenv("QT_QPA_PLATFORM", "offscreen");                            \
        QApplication app(argc, argv);                                           \
        TestClass test;                                                         \
        return QTest::qExec(&test, argc, argv);                                 \
    }
