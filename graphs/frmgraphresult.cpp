#include "graphs/frmgraphresult.h"

#include "engine/engine.h"
#include "graphs/gifwriter.h"
#include "numtext/numtext.h"
#include "options/optionstate.h"
#include "platform/platform.h"
#include "windowkit/mainform.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFontMetricsF>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {

const QColor kPlotArea(255, 255, 192);
const QString kTimes = QStringLiteral("Times New Roman");

// One entry of the "Indices :" list: what is drawn and how it is titled.
struct IndexChoice {
    const char* item; // in the list
    const char* caption;
    PointArray SweepArrays::*data;
    const char* chartTitle;
    const char* axisTitle;
    const char* labelFormat;
};

const IndexChoice kIndices[] = {
    {"LI index", "LI index", &SweepArrays::li, "Langelier index", "LI index", "0.000"},
    {"SI index", "RI index", &SweepArrays::ri, "Stability index(Ryznar index)", "SI index",
     "0.000"},
    {"PSI index", "PSI index", &SweepArrays::por, "Puckorius index", "PSI index", "0.000"},
    {"DFI index", "DFI index", &SweepArrays::dfi, "Driving force index", "DFI index", "0.00E-00"},
    {"ME index", "ME index", &SweepArrays::me, "Momentary Excess", "ME index", "0.00E-00"},
    {"AI index", "AI index", &SweepArrays::ai, "Aggressiveness Index", "AI index", "0.000"},
    {"LR index", "LR index", &SweepArrays::lr, "Larson and Skold Index", "LR index", "0.000"},
    {"SL index", "SL index", &SweepArrays::sl, "Saturation Level index", "SL index", "0.00E+00"},
};
constexpr int kLarsonSkold = 6;

struct SpeciesChoice {
    const char* caption;
    PointArray SweepArrays::*data;
    PointValues frmgraphresult::*values;
};

const SpeciesChoice kSpecies[] = {
    {"H2co3*", &SweepArrays::h2co3, &frmgraphresult::h2co3values},
    {"Hco3-", &SweepArrays::hco3, &frmgraphresult::hco3values},
    {"Co3=", &SweepArrays::co3, &frmgraphresult::co3values},
};

template <class W> W* named(W* w, const char* name) {
    w->setObjectName(QString::fromLatin1(name));
    return w;
}

} // namespace

frmgraphresult::frmgraphresult() {
    setObjectName("frmgraphresult");
    setWindowTitle("Graphic results");

    // The chart frame: the X category and the two kinds of series.
    frachart = named(new QGroupBox("Chart :", this), "frachart");
    lblxcat = named(new QLabel(" X Category :", frachart), "lblxcat");
    Cmbx = named(new QComboBox(frachart), "Cmbx");
    Cmbx->addItem("pH");
    Label1 =
        named(new QLabel("Please choose X  catagory and then add your index or specie .", frachart),
              "Label1");
    Label1->setWordWrap(true);
    cmdaddin = named(new QPushButton("Add indices", frachart), "cmdaddin");
    cmdaddsp = named(new QPushButton("Add specie", frachart), "cmdaddsp");
    auto* chartGrid = new QGridLayout(frachart);
    chartGrid->addWidget(lblxcat, 0, 0);
    chartGrid->addWidget(Cmbx, 0, 1);
    chartGrid->addWidget(Label1, 1, 0, 1, 2);
    chartGrid->addWidget(cmdaddin, 2, 0);
    chartGrid->addWidget(cmdaddsp, 2, 1);

    fraseri = named(new QGroupBox("Series :", this), "fraseri");
    lblin = named(new QLabel("Indices :", fraseri), "lblin");
    Cmbin = named(new QComboBox(fraseri), "Cmbin");
    for (const IndexChoice& c : kIndices)
        Cmbin->addItem(c.item);
    lblspecies = named(new QLabel("Species :", fraseri), "lblspecies");
    cmbspecies = named(new QComboBox(fraseri), "cmbspecies");
    cmbspecies->addItem("Carbonate Species");
    cmdremove = named(new QPushButton(fraseri), "cmdremove");
    auto* seriesGrid = new QGridLayout(fraseri);
    seriesGrid->addWidget(lblin, 0, 0);
    seriesGrid->addWidget(Cmbin, 0, 1);
    seriesGrid->addWidget(lblspecies, 1, 0);
    seriesGrid->addWidget(cmbspecies, 1, 1);
    seriesGrid->addWidget(cmdremove, 2, 1);

    chkdatalabel = named(new QCheckBox("Remove data labels", this), "chkdatalabel");
    lblchart = named(new QLabel("Chart type :", this), "lblchart");
    Cmochart = named(new QComboBox(this), "Cmochart");
    Cmochart->addItems({"ColumnClustered", "Line", "LineMarkers"});

    fraprint = named(new QGroupBox("Ptint :", this), "fraprint");
    optFitToPrinter = named(new QRadioButton("Fit to printer", fraprint), "optFitToPrinter");
    optNormal = named(new QRadioButton("Normal", fraprint), "optNormal");
    optFitToPrinter->setChecked(true);
    cmdprint = named(new QPushButton("print", fraprint), "cmdprint");
    auto* printGrid = new QGridLayout(fraprint);
    printGrid->addWidget(optFitToPrinter, 0, 0);
    printGrid->addWidget(optNormal, 1, 0);
    printGrid->addWidget(cmdprint, 0, 1, 2, 1);
    cmdsave = named(new QPushButton("Save as GIF", this), "cmdsave");

    Picture1 = named(new QWidget(this), "Picture1");
    ChartSpace1 = named(new ChartSpace(Picture1), "ChartSpace1");
    auto* pictureLayout = new QVBoxLayout(Picture1);
    pictureLayout->setContentsMargins(0, 0, 0, 0);
    pictureLayout->addWidget(ChartSpace1);
    Picture1->setMinimumSize(480, 300);

    lblno = named(new QLabel("Note :", this), "lblno");
    lblnote = named(new QLabel("Alkalinity(actual alkalinity) value at measured pH point is more "
                               "than alkalinities at others  pH points those have been stimated "
                               "by computer program. this causes index value at measured pH "
                               "point differ from others pH points.",
                               this),
                    "lblnote");
    lblnote->setWordWrap(true);
    QFont small = lblnote->font();
    small.setPointSizeF(small.pointSizeF() * 0.9);
    lblno->setFont(small);
    lblnote->setFont(small);

    // Controls on the left, the chart on the right with the note below it.
    auto* left = new QVBoxLayout;
    left->addWidget(frachart);
    left->addWidget(fraseri);
    auto* type = new QHBoxLayout;
    type->addWidget(lblchart);
    type->addWidget(Cmochart, 1);
    left->addLayout(type);
    left->addWidget(chkdatalabel);
    left->addStretch(1);
    left->addWidget(fraprint);
    left->addWidget(cmdsave);
    auto* note = new QHBoxLayout;
    note->addWidget(lblno, 0, Qt::AlignTop);
    note->addWidget(lblnote, 1);
    auto* right = new QVBoxLayout;
    right->addWidget(Picture1, 1);
    right->addLayout(note);
    auto* all = new QHBoxLayout(this);
    all->addLayout(left);
    all->addLayout(right, 1);
    for (QWidget* w : std::initializer_list<QWidget*>{frachart, fraseri, fraprint})
        w->setFixedWidth(240);

    connect(Cmbx, &QComboBox::activated, this, &frmgraphresult::Cmbx_Click);
    connect(cmdaddin, &QPushButton::clicked, this, &frmgraphresult::cmdaddin_Click);
    connect(cmdaddsp, &QPushButton::clicked, this, &frmgraphresult::cmdaddsp_Click);
    connect(Cmbin, &QComboBox::activated, this, &frmgraphresult::Cmbin_Click);
    connect(cmbspecies, &QComboBox::activated, this, &frmgraphresult::cmbspecies_Click);
    connect(Cmochart, &QComboBox::activated, this, &frmgraphresult::Cmochart_Click);
    connect(chkdatalabel, &QCheckBox::toggled, this, &frmgraphresult::chkdatalabel_Click);
    connect(cmdremove, &QPushButton::clicked, this, &frmgraphresult::cmdremove_Click);
    connect(cmdsave, &QPushButton::clicked, this, &frmgraphresult::cmdsave_Click);
    connect(cmdprint, &QPushButton::clicked, this, &frmgraphresult::cmdprint_Click);

    // The design state, the one Remove restores.
    for (QComboBox* list : {Cmbx, Cmbin, cmbspecies, Cmochart})
        list->setCurrentIndex(-1);
    setEnabledAll({fraseri, lblin, Cmbin, lblspecies, cmbspecies, chkdatalabel}, false);
    for (QWidget* w : std::initializer_list<QWidget*>{cmdremove, chkdatalabel, lblno, lblnote})
        w->hide();

    resize(740, 500);
    Form_Load();
}

// ---------------------------------------------------------------------------
// Small helpers

int frmgraphresult::sweepPoints() {
    const double steps = theEngine().sw.phsteps;
    const double n = std::nearbyint(steps); // the default rounding: halves to even
    return std::isfinite(n) ? int(std::clamp(n, 0.0, 140.0)) : 0;
}

bool frmgraphresult::xIsPh() const {
    return Cmbx->currentIndex() == 0;
}

bool frmgraphresult::indexChosen() const {
    return !Cmbin->isHidden() && !Cmbin->currentText().isEmpty();
}

bool frmgraphresult::speciesChosen() const {
    return !cmbspecies->isHidden() && cmbspecies->currentIndex() == 0;
}

// ---------------------------------------------------------------------------
// The chart and its series

void frmgraphresult::Form_Load() {
    ChartSpace1->clearAndAddChart();
    ChartSpace1->state().plotFill = kPlotArea;
    ChartSpace1->redraw();
    indexguard = 1;
}

void frmgraphresult::Cmbx_Click() {
    for (PointValues* a : {&xvalues, &indexvalues, &h2co3values, &hco3values, &co3values})
        a->fill(std::nullopt);
    cmdaddsp->setEnabled(true);
    cmdaddin->setEnabled(true);
    ChartSpace1->state().left.tickSize = 7;
    if (xIsPh()) {
        const SweepArrays& sw = theEngine().sw;
        for (int i = 1; i <= sweepPoints(); ++i)
            xvalues[std::size_t(i)] = sw.ph(i);
    }
    formatcategoryaxis();
    ChartSpace1->redraw();
}

void frmgraphresult::formatcategoryaxis() {
    AxisState& bottom = ChartSpace1->state().bottom;
    bottom.titleVisible = true;
    bottom.titleFont = FontSpec{kTimes, 10, true, Qt::black};
    bottom.title = QStringLiteral("pH");
    bottom.tickSize = 7;
}

void frmgraphresult::cmdaddin_Click() {
    if (indexguard == 2) return;
    setEnabledAll({fraseri, lblin, Cmbin}, true);
    cmdremove->setEnabled(true);
    cmdremove->show();
    cmdremove->setText("Remove index ");
    cmdaddsp->setEnabled(false);

    SeriesState index;
    index.labelFormat = QStringLiteral("0.000");
    index.labelsShown = true;
    index.labelPosition = LabelPosition::Automatic;
    index.type = ChartType::Line;
    index.caption = QStringLiteral("index");
    ChartSpace1->state().series[0] = index;
    ChartSpace1->state().legend = true;
    ++indexguard;
    ChartSpace1->redraw();
}

void frmgraphresult::cmdaddsp_Click() {
    setEnabledAll({fraseri, lblspecies, cmbspecies}, true);
    setEnabledAll({lblin, Cmbin}, false);
    cmdremove->setEnabled(true);
    cmdremove->show();
    cmdremove->setText("Remove Specie ");
    cmdaddin->setEnabled(false);
}

void frmgraphresult::Cmbin_Click() {
    const int position = Cmbin->currentIndex();
    if (position < 0 || position >= int(std::size(kIndices))) return;
    if (position == kLarsonSkold) {
        MainForm* m = mainForm();
        if (!m || !m->chlorideAndSulphateGiven()) {
            QString text = QStringLiteral("please ");
            if (!theOptions().index.bllr)
                text += QStringLiteral("select Larson-scold index in options window and");
            text += QStringLiteral(" specify the amounts of cl and so4 ions.");
            platform().message(this, text, QStringLiteral("Velmora"), Platform::Icon::None);
        }
    }
    const IndexChoice& c = kIndices[position];
    auto& slot = ChartSpace1->state().series[0];
    if (slot) slot->caption = QString::fromLatin1(c.caption);
    fillindexseries(position);
    if (slot) slot->labelFormat = QString::fromLatin1(c.labelFormat);
    formatcategoryaxis();

    chkdatalabel->setEnabled(true);
    chkdatalabel->show();
    lblno->show();
    lblnote->show();
    ChartSpace1->redraw();
}

void frmgraphresult::fillindexseries(int position) {
    const IndexChoice& c = kIndices[position];
    const PointArray& data = theEngine().sw.*c.data;
    for (int i = 1; i <= sweepPoints(); ++i)
        indexvalues[std::size_t(i)] = data(i);
    ChartState& chart = ChartSpace1->state();
    auto& slot = chart.series[0];
    if (xIsPh()) {
        if (slot) slot->categories = xvalues;
        chart.titleVisible = true;
        chart.titleFont = FontSpec{kTimes, 10, true, Qt::black};
        chart.title = QString::fromLatin1(c.chartTitle);
        chart.left.titleVisible = true;
        chart.left.title = QString::fromLatin1(c.axisTitle);
    }
    if (slot) slot->values = indexvalues;
    applycharttype();
}

void frmgraphresult::cmbspecies_Click() {
    if (cmbspecies->currentIndex() != 0) return;
    ChartSpace1->clearAndAddChart();
    ChartState& chart = ChartSpace1->state();
    for (std::size_t k = 0; k < std::size(kSpecies); ++k) {
        SeriesState s;
        s.caption = QString::fromLatin1(kSpecies[k].caption);
        s.labelFormat = QStringLiteral("0.00000");
        s.labelsShown = true;
        s.labelPosition = LabelPosition::Top;
        s.type = ChartType::Line;
        chart.series[k + 1] = s;
    }
    chart.legend = true;
    fillspeciesseries();
    formatcategoryaxis();
    ChartSpace1->redraw();
}

void frmgraphresult::fillspeciesseries() {
    ChartState& chart = ChartSpace1->state();
    const SweepArrays& sw = theEngine().sw;
    for (std::size_t k = 0; k < std::size(kSpecies); ++k) {
        PointValues& values = this->*kSpecies[k].values;
        for (int i = 1; i <= sweepPoints(); ++i)
            values[std::size_t(i)] = (sw.*kSpecies[k].data)(i);
        auto& slot = chart.series[k + 1];
        if (!slot) continue;
        if (xIsPh()) slot->categories = xvalues;
        chart.titleVisible = true;
        chart.titleFont.family = kTimes;
        chart.title = QStringLiteral("Carbonate species distribution");
        slot->values = values;
        applycharttype();
    }
    chart.left.numberFormat = QStringLiteral("0.0000");
    chart.left.titleVisible = true;
    chart.left.titleFont = FontSpec{kTimes, 8, false, Qt::black};
    chart.left.title = QStringLiteral("Cocentration , mol/l");
}

void frmgraphresult::applycharttype() {
    static constexpr ChartType kTypes[] = {ChartType::ColumnClustered, ChartType::Line,
                                           ChartType::LineMarkers};
    const int position = Cmochart->currentIndex();
    if (position < 0 || position >= int(std::size(kTypes))) return; // no type chosen yet
    ChartState& chart = ChartSpace1->state();
    if (indexChosen() && chart.series[0]) chart.series[0]->type = kTypes[position];
    if (speciesChosen())
        for (std::size_t k = 1; k <= 3; ++k)
            if (chart.series[k]) chart.series[k]->type = kTypes[position];
}

void frmgraphresult::Cmochart_Click() {
    applycharttype();
    ChartSpace1->redraw();
}

void frmgraphresult::chkdatalabel_Click() {
    const bool shown = !chkdatalabel->isChecked();
    ChartState& chart = ChartSpace1->state();
    if (indexChosen() && chart.series[0]) chart.series[0]->labelsShown = shown;
    if (speciesChosen())
        for (std::size_t k = 1; k <= 3; ++k)
            if (chart.series[k]) chart.series[k]->labelsShown = shown;
    ChartSpace1->redraw();
}

void frmgraphresult::cmdremove_Click() {
    chkdatalabel->setEnabled(false);
    ChartSpace1->clearAndAddChart();
    cmdaddin->setEnabled(true);
    cmdaddsp->setEnabled(true);
    setEnabledAll({lblin, Cmbin, lblspecies, cmbspecies, fraseri}, false);
    Cmbin->setCurrentIndex(-1);
    cmbspecies->setCurrentIndex(-1);
    for (QWidget* w : std::initializer_list<QWidget*>{cmdremove, chkdatalabel, lblnote, lblno})
        w->hide();
    chkdatalabel->setChecked(false);
    indexguard = 1;
}

// ---------------------------------------------------------------------------
// Keeping the chart: the GIF picture and the printout

void frmgraphresult::cmdsave_Click() {
    const QString name = platform().saveFileName(this, QStringLiteral("GIF(*.GIF)"));
    if (name.isEmpty()) return; // cancelled
    gifname = name + QStringLiteral(".GIF");
    const QImage picture = renderChart(ChartSpace1->state(), QSize(kGifWidth, kGifHeight));
    QString error;
    if (!saveGif(picture, gifname, &error))
        platform().message(this,
                           QStringLiteral("The chart could not be saved as %1: %2")
                               .arg(QDir::toNativeSeparators(gifname), error),
                           QStringLiteral("Velmora"), Platform::Icon::Critical);
}

QRectF frmgraphresult::printRect(QSizeF picture, double pictureDpi, QSizeF printable,
                                 double printerDpi, bool fit) {
    QSizeF size = picture * (printerDpi / pictureDpi);
    if (fit && !picture.isEmpty()) size = picture.scaled(printable, Qt::KeepAspectRatio);
    return {
        QPointF((printable.width() - size.width()) / 2, (printable.height() - size.height()) / 2),
        size};
}

bool frmgraphresult::printchartpicture(QPainter& painter, QPrinter& printer, bool fit) {
    const QRect source = ChartSpace1->viewport()->rect();
    if (source.isEmpty()) return false;
    const QRectF printable = printer.pageRect(QPrinter::DevicePixel);
    const QRectF target = printRect(QSizeF(source.size()), ChartSpace1->logicalDpiX(),
                                    printable.size(), printer.resolution(), fit);
    ChartSpace1->render(&painter, target, source, Qt::IgnoreAspectRatio);
    return true;
}

void frmgraphresult::cmdprint_Click() {
    std::optional<Platform::PrintJob> job = platform().printDialog(this);
    if (!job || !job->printer) return; // cancelled
    QPrinter& printer = *job->printer;
    printer.setPageOrientation(QPageLayout::Landscape);
    QPainter painter;
    if (!painter.begin(&printer)) return;

    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(10);
    font.setBold(true);
    const double cm = printer.resolution() / 2.54;
    const QDateTime now = platform().now();
    const QString lines[] = {
        QStringLiteral("Time :") + longTimeText(now) + QString(7, QLatin1Char(' ')) +
            QStringLiteral("Velmora"),
        QStringLiteral("Date :") + shortDateText(now) + QString(19, QLatin1Char(' ')) +
            QStringLiteral(" Version 1.0 "),
    };
    for (int copy = 1; copy <= std::max(job->copies, 1); ++copy) {
        if (copy > 1 && !printer.newPage()) { // failures end the printout silently
            printer.abort();
            return;
        }
        if (!printchartpicture(painter, printer, optFitToPrinter->isChecked())) {
            printer.abort();
            return;
        }
        painter.setFont(font);
        painter.setPen(Qt::black);
        const QFontMetricsF metrics(font, &printer);
        double y = 2 * cm;
        for (const QString& line : lines) {
            painter.drawText(QPointF(2 * cm, y + metrics.ascent()), line);
            y += metrics.lineSpacing();
        }
    }
    painter.end();
}

} // namespace velmora
