// Pictures of the graph window for the documentation, after the worked sample
// with its pH sweep: graph-index.png (the Langelier index, lines with markers),
// graph-carbonate.png (the carbonate species) and example-chart.gif (the index
// chart as Save as GIF writes it).   graphs_screenshots OUTPUT_FOLDER
#include "docs/pictures/docpictures.h"
#include "graphs/frmgraphresult.h"
#include "graphs/gifwriter.h"
#include "mainwindow/frmmain.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QPushButton>

#include <cstdio>

using namespace velmora;

static void choose(QComboBox* list, int position) {
    list->setCurrentIndex(position);
    emit list->activated(position);
}

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QDir out = test::pictureFolder(argc, argv);
    frmMain* main = test::startWithWorkedSample();
    if (!main) return 1;
    QAction* graphButton = main->toolbarButton(9);
    if (!graphButton || !graphButton->isEnabled()) {
        std::fprintf(stderr, "the sweep of the worked sample was not calculated\n");
        return 1;
    }
    main->tbToolBar_ButtonClick(graphButton);
    frmgraphresult* g = frmgraphresult::instance();
    g->move(20, 20);

    choose(g->Cmbx, 0);
    g->cmdaddin->click();
    choose(g->Cmochart, 2);
    choose(g->Cmbin, 0);
    bool ok = test::savePicture(g, out.filePath("graph-index.png"));
    const QString gif = out.filePath("example-chart.gif");
    const bool gifOk =
        saveGif(renderChart(g->ChartSpace1->state(),
                            QSize(frmgraphresult::kGifWidth, frmgraphresult::kGifHeight)),
                gif);
    std::printf("%s %s\n", gifOk ? "wrote" : "could not write", qPrintable(gif));
    ok = ok && gifOk;

    g->cmdremove->click();
    g->cmdaddsp->click();
    choose(g->cmbspecies, 0);
    ok = test::savePicture(g, out.filePath("graph-carbonate.png")) && ok;

    return test::finishPictures(ok);
}
