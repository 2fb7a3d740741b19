// The graph window: one chosen index, or the three carbonate species,
// against the pH values of the sweep; printed with a time and date stamp or
// saved as a GIF picture.
#pragma once

#include "graphs/chartspace.h"
#include "windowkit/formsupport.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QPainter;
class QPrinter;
class QPushButton;
class QRadioButton;

namespace velmora {

class frmgraphresult : public SingleWindow<frmgraphresult, QWidget> {
    Q_OBJECT

public:
    // --- controls, named as everywhere in the program
    QGroupBox *frachart = nullptr, *fraseri = nullptr, *fraprint = nullptr;
    QLabel *lblxcat = nullptr, *lblin = nullptr, *lblspecies = nullptr, *lblchart = nullptr,
           *lblno = nullptr, *lblnote = nullptr, *Label1 = nullptr;
    QComboBox *Cmbx = nullptr, *Cmbin = nullptr, *cmbspecies = nullptr, *Cmochart = nullptr;
    QPushButton *cmdaddin = nullptr, *cmdaddsp = nullptr, *cmdremove = nullptr, *cmdprint = nullptr,
                *cmdsave = nullptr;
    QCheckBox* chkdatalabel = nullptr;
    QRadioButton *optFitToPrinter = nullptr, *optNormal = nullptr;
    QWidget* Picture1 = nullptr; // holds the chart control
    ChartSpace* ChartSpace1 = nullptr;

    // --- window state
    int indexguard = 0; // "Add indices" acts only while it is not 2
    PointValues xvalues{}, indexvalues{}, h2co3values{}, hco3values{}, co3values{};
    QString gifname; // the last picture file written

    // The size of the exported picture, in pixels.
    static constexpr int kGifWidth = 800, kGifHeight = 400;

    // Where the chart of `picture` (pixels at `pictureDpi`) lands on a
    // printable area of `printable` device pixels at `printerDpi`: at its
    // natural size, or fitted to the width or height, whichever limits first;
    // centred either way.
    static QRectF printRect(QSizeF picture, double pictureDpi, QSizeF printable, double printerDpi,
                            bool fit);

public slots:
    void Form_Load();
    void Cmbx_Click();
    void cmdaddin_Click();
    void cmdaddsp_Click();
    void Cmbin_Click();
    void cmbspecies_Click();
    void Cmochart_Click();
    void chkdatalabel_Click();
    void cmdremove_Click();
    void cmdsave_Click();
    void cmdprint_Click();

private:
    friend SingleWindow;
    frmgraphresult();

    void fillindexseries(int position);
    void fillspeciesseries();
    void formatcategoryaxis();
    void applycharttype();
    bool printchartpicture(QPainter& painter, QPrinter& printer, bool fit);

    // The number of sweep points drawn: phsteps rounded, halves to even.
    static int sweepPoints();
    bool xIsPh() const;
    bool indexChosen() const;
    bool speciesChosen() const;
};

} // namespace velmora
