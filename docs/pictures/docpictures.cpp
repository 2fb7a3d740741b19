#include "docs/pictures/docpictures.h"

#include "app/startup.h"
#include "mainwindow/frmmain.h"

#include <QApplication>
#include <QPixmap>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>

#include <cstdio>
#include <cstdlib>

namespace velmora::test {

QDir pictureFolder(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s OUTPUT_FOLDER\n", argc > 0 ? argv[0] : "pictures");
        std::exit(2);
    }
    return QDir(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
}

frmMain* startWithWorkedSample() {
    QStandardPaths::setTestModeEnabled(true);
    frmMain* main = startProgram();
    runDemoSample(main);
    if (main->cmdshow->isEnabled()) return main;
    std::fprintf(stderr, "the worked sample was not calculated\n");
    return nullptr;
}

bool savePicture(QWidget* w, const QString& file) {
    QTest::qWait(150);
    const bool ok = w->grab().save(file);
    std::printf("%s %s\n", ok ? "wrote" : "could not write", qPrintable(file));
    return ok;
}

int finishPictures(bool ok) {
    QApplication::closeAllWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return ok ? 0 : 1;
}

} // namespace velmora::test
