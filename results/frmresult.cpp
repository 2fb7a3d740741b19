#include "results/frmresult.h"

#include "numtext/numtext.h"
#include "platform/platform.h"
#include "results/frmenterper.h"
#include "results/frmmore.h"
#include "results/results.h"
#include "windowkit/mainform.h"
#include "windowkit/windowsupport.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <exception>

namespace velmora {

using interp::Index;

namespace {

// Where each index lives on the window, how its value is written and which
// handler its interpretation button runs.
struct IndexDesign {
    Index index;
    const char* labelName;
    const char* labelCaption;
    const char* boxName;
    bool rounded; // rounded to 4 decimals, otherwise the scientific pattern
    void (frmresult::*click)();
};

const IndexDesign kDesign[] = {
    {Index::Langelier, "lbllan", "Langelier        =", "txtlan", true, &frmresult::cmdlan_Click},
    {Index::Ryznar, "lblryz", "Ryznar           =", "txtryz", true, &frmresult::cmdri_Click},
    {Index::Puckorius, "lblpor", "puckorius      =", "txtpor", true, &frmresult::cmdpor_Click},
    {Index::DrivingForce, "lbldfi", "Driving Force         =", "txtdfi", false,
     &frmresult::cmddfi_Click},
    {Index::MomentaryExcess, "lblme", "Momentary Excess=", "txtme", false, &frmresult::cmdme_Click},
    {Index::Aggressiveness, "lblai", "Aggressiveness     =", "txtai", false,
     &frmresult::cmdai_Click},
    {Index::SaturationLevel, "lblsl", "Saturation Level    =", "txtsl", false,
     &frmresult::cmdsl_Click},
    {Index::LarsonSkold, "lbllr", "Larson-Scold =", "txtlr", false, &frmresult::cmdlr_Click},
};

double valueAtMeasuredPh(const Engine& engine, Index index) {
    return (engine.sw.*interp::indexArray(index))(0);
}

// The button look that paints its background colour; the design state
// shows the ordinary button face.
QString buttonStyle(const QColor& colour) {
    return QStringLiteral("QPushButton { background-color: %1; color: black;"
                          " border: 1px solid #7a7a7a; border-radius: 3px; padding: 4px 10px; }"
                          " QPushButton:disabled { color: #8a8a8a; }"
                          " QPushButton:pressed { border: 2px inset #5a5a5a; }"
                          " QPushButton:focus { border: 2px solid #303030; }")
        .arg(colour.name());
}

// Room for the longest value text the formats produce ("-8.8888E-308").
int valueBoxWidth(const QLineEdit* box) {
    return box->fontMetrics().horizontalAdvance(QStringLiteral("-8.8888E-308")) + 24;
}

} // namespace

frmresult::frmresult() {
    setObjectName("frmresult");
    setWindowTitle("Results");

    fraindex_ = new QGroupBox("Water stability indices at measured pH :", this);
    fraindex_->setObjectName("fraindex");
    auto* indexGrid = new QGridLayout(fraindex_);
    indexGrid->setVerticalSpacing(6);

    frainter_ = new QGroupBox("Indices Interpretation  :", this);
    frainter_->setObjectName("frainter");
    auto* interGrid = new QGridLayout(frainter_);
    interGrid->setVerticalSpacing(8);

    int row = 0;
    for (const IndexDesign& d : kDesign) {
        IndexControls c;
        c.index = d.index;
        c.label = new QLabel(d.labelCaption, fraindex_);
        c.label->setObjectName(d.labelName);
        c.box = new QLineEdit(fraindex_);
        c.box->setObjectName(d.boxName);
        c.box->setReadOnly(true);
        c.box->setMinimumWidth(valueBoxWidth(c.box));
        c.label->setBuddy(c.box);
        indexGrid->addWidget(c.label, row, 0);
        indexGrid->addWidget(c.box, row, 1);

        c.button = new QPushButton(interp::buttonCaption(d.index), frainter_);
        c.button->setObjectName(interp::buttonName(d.index));
        c.button->setStyleSheet(buttonStyle(c.button->palette().color(QPalette::Button)));
        c.button->setMinimumHeight(30);
        connect(c.button, &QPushButton::clicked, this, d.click);
        indices_.push_back(c);
        ++row;
    }
    // Buttons in two columns, in the order of the values on the left.
    for (std::size_t i = 0; i < indices_.size(); ++i)
        interGrid->addWidget(indices_[i].button, int(i / 2), int(i % 2));
    auto* hint = new QLabel("Click each button to see results interpretations.", frainter_);
    hint->setObjectName("lblinter");
    hint->setWordWrap(true);
    interGrid->addWidget(hint, int(indices_.size() / 2), 0, 1, 2);
    interGrid->setRowStretch(int(indices_.size() / 2) + 1, 1);

    cmdmore_ = new QPushButton("&More results", this);
    cmdmore_->setObjectName("cmdmore");

    auto* frames = new QHBoxLayout;
    frames->addWidget(fraindex_);
    frames->addWidget(frainter_);
    auto* bottom = new QHBoxLayout;
    bottom->addStretch(1);
    bottom->addWidget(cmdmore_);
    auto* outer = new QVBoxLayout(this);
    outer->addLayout(frames);
    outer->addLayout(bottom);

    // Design state: everything but More results disabled.
    fraindex_->setEnabled(false);
    frainter_->setEnabled(false);
    for (IndexControls& c : indices_) {
        c.label->setEnabled(false);
        c.box->setEnabled(false);
        c.button->setEnabled(false);
    }

    connect(cmdmore_, &QPushButton::clicked, this, &frmresult::cmdmore_Click);

    adjustSize();
}

const frmresult::IndexControls& frmresult::controls(Index index) const {
    for (const IndexControls& c : indices_)
        if (c.index == index) return c;
    return indices_.front(); // every index has its controls
}

void frmresult::publishIndices(const Engine& engine) {
    for (const IndexDesign& d : kDesign) {
        const IndexControls& c = controls(d.index);
        fraindex_->setEnabled(true);
        c.label->setEnabled(true);
        c.box->setEnabled(true);
        frainter_->setEnabled(true);
        c.button->setEnabled(true);
        const double v = valueAtMeasuredPh(engine, d.index);
        const std::string text = d.rounded ? fmt::rounded(v, 4) : fmt::scientific(v);
        c.box->setText(numberToBox(text));
        c.box->setCursorPosition(0);
    }
}

void frmresult::setButtonColour(QPushButton* button, const QColor& colour) {
    button->setProperty("backColour", colour);
    button->setStyleSheet(buttonStyle(colour));
}

QColor frmresult::buttonColour(Index index) const {
    return controls(index).button->property("backColour").value<QColor>();
}

void frmresult::colourButtons(const Engine& engine, const IndexFlags& chosen) {
    static const Index order[] = {
        Index::Langelier,      Index::Ryznar,       Index::Puckorius,       Index::LarsonSkold,
        Index::Aggressiveness, Index::DrivingForce, Index::SaturationLevel, Index::MomentaryExcess};
    for (Index index : order) {
        const IndexControls& c = controls(index);
        if (index == Index::LarsonSkold && !chosen.bllr) {
            c.box->clear();
            c.box->setEnabled(false);
            c.label->setEnabled(false);
            c.button->setEnabled(false);
            continue;
        }
        if (const interp::Row* row = interp::rowFor(index, valueAtMeasuredPh(engine, index)))
            setButtonColour(c.button, QColor(row->colour.r, row->colour.g, row->colour.b));
    }
}

void frmresult::clearLangelierRyznar() {
    controls(Index::Langelier).box->clear();
    controls(Index::Ryznar).box->clear();
}

void frmresult::interpret(Index index) {
    if (MainForm* m = mainForm()) m->interpretationOpened();

    const bool fresh = !frmenterper::isLoaded();
    frmenterper* w = frmenterper::instance();
    if (fresh) {
        // A new interpretation window opens beside the Results window.
        const QRect r = frameGeometry();
        const QSize screen = platform().screenPixels();
        int x = r.right() + 1;
        if (screen.width() > 0 && x + w->width() > screen.width())
            x = std::max(0, screen.width() - w->width());
        w->move(x, std::max(0, r.top()));
    }
    showInFront(w);
    w->setWindowTitle(interp::windowCaption(index));

    if (const interp::Row* row = interp::rowFor(index, valueAtMeasuredPh(theEngine(), index))) {
        w->setBackColour(QColor(row->colour.r, row->colour.g, row->colour.b));
        interpretationtext_ = QString::fromStdString(row->text());
    } else {
        // Only a value that is not a number matches no row: say nothing
        // rather than repeat the explanation of another index.
        interpretationtext_.clear();
    }
    // The text box shows line breaks, not the carriage returns before them.
    QString shown = interpretationtext_;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    w->text1()->setPlainText(shown);

    if (index == Index::Langelier) w->setTextBold();
}

void frmresult::cmdlan_Click() {
    interpret(Index::Langelier);
}
void frmresult::cmdri_Click() {
    interpret(Index::Ryznar);
}
void frmresult::cmdpor_Click() {
    interpret(Index::Puckorius);
}
void frmresult::cmdai_Click() {
    interpret(Index::Aggressiveness);
}
void frmresult::cmddfi_Click() {
    interpret(Index::DrivingForce);
}
void frmresult::cmdlr_Click() {
    interpret(Index::LarsonSkold);
}
void frmresult::cmdme_Click() {
    interpret(Index::MomentaryExcess);
}
void frmresult::cmdsl_Click() {
    interpret(Index::SaturationLevel);
}

void frmresult::cmdmore_Click() {
    try {
        publishResultsWindows(theEngine(), theOptions());
    } catch (const std::exception& e) {
        platform().message(this, QStringLiteral("More results: %1").arg(e.what()),
                           QStringLiteral("Velmora"), Platform::Icon::Critical);
        return;
    }
    frmmore* more = frmmore::instance();
    showInFront(more);
    placeOnSmallScreen(more, 1755, 2145);
}

} // namespace velmora
