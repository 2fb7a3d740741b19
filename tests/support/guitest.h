// The main() of a QtTest program that drives the real windows: offscreen,
// with a private runtime folder and QStandardPaths in test mode, so no test
// touches the user's settings or needs a display.
#pragma once

#include <QApplication>
#include <QtTest>

namespace velmora::test {

// Sets QT_QPA_PLATFORM=offscreen (unless set), a private XDG_RUNTIME_DIR
// (unless set) and QStandardPaths' test mode. Call before QApplication.
void prepareGuiTestEnvironment();

} // namespace velmora::test

#define VELMORA_GUI_TEST_MAIN(TestObject)                                                          \
    int main(int argc, char** argv) {                                                              \
        velmora::test::prepareGuiTestEnvironment();                                                \
        QApplication app(argc, argv);                                                              \
        app.setQuitOnLastWindowClosed(false);                                                      \
        TestObject tc;                                                                             \
        QTEST_SET_MAIN_SOURCE_PATH                                                                 \
        return QTest::qExec(&tc, argc, argv);                                                      \
    }
