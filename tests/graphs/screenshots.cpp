// Pictures of the graph window for the documentation: the program started as
// the user starts it, the worked sample calculated with a pH sweep from 6.5 in
// steps of 0.5 (five points), the toolbar's Graph pressed, then
//   graph-index.png    the Langelier index, lines with markers, data labels shown
//   graph-species.png  the three carbonate species
//   example-chart.gif  the index chart exported as the Save as GIF button writes it
//
//   graphs_screenshots OUTPUT_FOLDER
//
// Run it under a real display (xvfb-run) or offscreen.
#include "app/startup.h"
#include "graphs/frmgraphresult.h"
#include "graphs/gifwriter.h"
#include "mainwindow/frmmain.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>

#include <cstdio>

using namespace velmora;

namespace {

bool save(QWidget* w, const QString& file) {
    QTest::qWait(150);
    const bool ok = w->grab().save(file);
    std::printf("%s %s\n", ok ? "wrote" : "could not write", qPrintable(file));
    return ok;
}

void choose(QComboBox* list, int position) {
    list->setCurrentIndex(position);
    emit list->activated(position);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    // (absolute: the program may change the current folder as it starts)
    const QDir out(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());

    QStandardPaths::setTestModeEnabled(true);
    frmMain* main = startProgram();
    runDemoSample(main);
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
    bool ok = save(g, out.filePath("graph-index.png"));
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
    ok = save(g, out.filePath("graph-species.png")) && ok;

    QApplication::closeAllWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return ok ? 0 : 1;
}
