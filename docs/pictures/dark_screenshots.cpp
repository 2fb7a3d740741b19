// Pictures of the main window and the Results window on a dark desktop
// palette, after the worked sample.   dark_screenshots OUTPUT_FOLDER
#include "docs/pictures/docpictures.h"
#include "mainwindow/frmmain.h"
#include "results/frmresult.h"
#include "tests/support/darkpalette.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QStyleFactory>

using namespace velmora;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QDir out = test::pictureFolder(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(test::darkPalette());
    frmMain* main = test::startWithWorkedSample();
    if (!main) return 1;
    bool ok = test::savePicture(main, out.filePath("mainwindow-dark.png"));
    main->cmdshow->click();
    frmresult::instance()->move(20, 20);
    ok = test::savePicture(frmresult::instance(), out.filePath("results-dark.png")) && ok;

    return test::finishPictures(ok);
}
