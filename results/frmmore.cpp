#include "results/frmmore.h"

#include "numtext/numtext.h"
#include "results/frmsymbols.h"
#include "windowkit/windowsupport.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <initializer_list>

namespace velmora {

namespace {

struct Field {
    const char* box;
    const char* label;
    const char* caption;
};

const Field kWater[] = {
    {"txti", "lbli", "I     ="},      {"txtckw", "lblckw", "ckw   ="},
    {"txtpckw", "lblpckw", "pckw ="}, {"txtkw", "lblkw", "kw    ="},
    {"txtpkw", "lblpkw", "pkw  ="},
};
const Field kHydrogen[] = {
    {"txtphs", "lblphs", "phs  ="},
    {"txtch", "lblch", "ch    ="},
    {"txtoh", "lbloh", "oh-   ="},
};
const Field kDavies[] = {
    {"txta", "lbla", "A    ="},
    {"txtlantd", "lbllantd", "LanT  ="},
    {"txtlandd", "lbllandd", "LanD  ="},
    {"txtlanmd", "lbllanmd", "LanM  ="},
};
const Field kDebye[] = {
    {"txtlanth", "lbllanth", "LanT  ="},
    {"txtlandh", "lbllandh", "LanD  ="},
    {"txtlanmh", "lbllanmh", "LanM  ="},
};
const Field kCarbonate[] = {
    {"txtct", "lblct", "ct      ="},     {"txth2co3", "lblh2co3", "H2co3*="},
    {"txthco3", "lblhco3", "hco3-   ="}, {"txtco3", "lblco3", "co3=    ="},
    {"txtck1", "lblck1", "ck1      ="},  {"txtck2", "lblck2", "ck2      ="},
    {"txtcks", "lblcks", "cks      ="},  {"txtpca", "lblpca", "pca      ="},
    {"txtpcks", "lblpcks", "pcks ="},    {"txtpck2", "lblpck2", "pck2 ="},
    {"txta0", "lbla0", "a0     ="},      {"txta1", "lbla1", "a1     ="},
    {"txta2", "lbla2", "a2        ="},   {"txtpk1", "lblpk1", "pk1   ="},
    {"txtpk2", "lblpk2", "pk2   ="},     {"txtpks", "lblpks", "pks   ="},
};

// Adds label and box pairs to a frame's grid, `perColumn` pairs a column.
template <std::size_t N>
void addFields(QGroupBox* frame, const Field (&fields)[N], int perColumn, bool enabled) {
    auto* grid = new QGridLayout(frame);
    grid->setVerticalSpacing(4);
    grid->setHorizontalSpacing(6);
    for (std::size_t i = 0; i < N; ++i) {
        auto* label = new QLabel(fields[i].caption, frame);
        label->setObjectName(fields[i].label);
        auto* box = new QLineEdit(frame);
        box->setObjectName(fields[i].box);
        box->setReadOnly(true);
        box->setMinimumWidth(box->fontMetrics().horizontalAdvance(QStringLiteral("-8.8888E-88")) +
                             18);
        label->setBuddy(box);
        const int row = int(i) % perColumn;
        const int col = 2 * (int(i) / perColumn);
        grid->addWidget(label, row, col);
        grid->addWidget(box, row, col + 1);
        if (!enabled) {
            label->setEnabled(false);
            box->setEnabled(false);
        }
    }
    grid->setRowStretch(perColumn, 1);
}

QGroupBox* makeFrame(const char* name, const char* caption, QWidget* parent) {
    auto* frame = new QGroupBox(caption, parent);
    frame->setObjectName(name);
    return frame;
}

} // namespace

frmmore::frmmore() {
    setObjectName("frmmore");
    setWindowTitle("Equilibrium chemical data");

    QGroupBox* water = makeFrame("frmwater", "Water chemistry :", this);
    addFields(water, kWater, 5, true);
    QGroupBox* hydrogen = makeFrame("frmhydrogen", "Hydrogen chemistry :", this);
    addFields(hydrogen, kHydrogen, 3, true);
    fradavies_ = makeFrame("fradavies", "Davies variables :", this);
    addFields(fradavies_, kDavies, 4, false);
    fradebye_ = makeFrame("fradebye", "Debye - Huckel  variables :", this);
    addFields(fradebye_, kDebye, 3, false);
    QGroupBox* carbonate = makeFrame("frmcarbonate", "Carbonate chemistry :", this);
    addFields(carbonate, kCarbonate, 8, true);
    fradavies_->setEnabled(false);
    fradebye_->setEnabled(false);

    auto* cmddiscript = new QPushButton("Symbols &Definition", this);
    cmddiscript->setObjectName("cmddiscript");
    connect(cmddiscript, &QPushButton::clicked, this, &frmmore::cmddiscript_Click);

    // water | hydrogen | Davies above, carbonate | Debye-Huckel below.
    auto* grid = new QGridLayout(this);
    grid->addWidget(water, 0, 0);
    grid->addWidget(hydrogen, 0, 1);
    grid->addWidget(fradavies_, 0, 2);
    grid->addWidget(carbonate, 1, 0, 2, 2);
    grid->addWidget(fradebye_, 1, 2);
    auto* button = new QHBoxLayout;
    button->addStretch(1);
    button->addWidget(cmddiscript);
    grid->addLayout(button, 2, 2, Qt::AlignBottom);

    adjustSize();
}

QLineEdit* frmmore::box(const char* name) const {
    return findChild<QLineEdit*>(QString::fromLatin1(name));
}

QLabel* frmmore::label(const char* name) const {
    return findChild<QLabel*>(QString::fromLatin1(name));
}

void frmmore::setBox(const char* name, const std::string& text) {
    if (QLineEdit* b = box(name)) {
        b->setText(numberToBox(text));
        b->setCursorPosition(0);
    }
}

void frmmore::publishEquilibrium(const Engine& engine) {
    const AnalysisRecord& r = engine.rec;
    const SweepArrays& s = engine.sw;
    const std::pair<const char*, double> values[] = {
        {"txta0", s.a0(0)},     {"txta1", s.a1(0)},  {"txta2", s.a2(0)},
        {"txtco3", s.co3(0)},   {"txtoh", s.oh(0)},  {"txtch", s.ch(0)},
        {"txtphs", s.phs(0)},   {"txtpk1", r.pk1},   {"txtpk2", r.pk2},
        {"txtpkw", r.pkw},      {"txtkw", r.kw},     {"txtpks", r.pks},
        {"txtck1", r.ck1},      {"txtck2", r.ck2},   {"txtckw", r.ckw},
        {"txtcks", r.cks},      {"txtpca", r.pca},   {"txtpcks", r.pcks},
        {"txtpck2", r.pck2},    {"txtpckw", r.pckw}, {"txth2co3", s.h2co3(0)},
        {"txthco3", s.hco3(0)}, {"txtct", s.ct},     {"txti", r.ionic},
    };
    for (const auto& [name, value] : values)
        setBox(name, fmt::scientific(value));
}

void frmmore::publishDebye(const AnalysisRecord& rec) {
    fradebye_->setEnabled(true);
    for (const char* name : {"txtlanmh", "txtlandh", "txtlanth"})
        box(name)->setEnabled(true);
    for (const char* name : {"lbllanmh", "lbllandh", "lbllanth"})
        label(name)->setEnabled(true);
    setBox("txtlanmh", fmt::rounded(rec.lanm, 5));
    setBox("txtlandh", fmt::rounded(rec.land, 5));
    setBox("txtlanth", fmt::rounded(rec.lant, 5));
}

void frmmore::publishDavies(const AnalysisRecord& rec) {
    fradavies_->setEnabled(true);
    fradebye_->setEnabled(true);
    for (const char* name : {"txtlanmd", "txtlandd", "txtlantd", "txta"})
        box(name)->setEnabled(true);
    for (const char* name : {"lbllanmd", "lbllandd", "lbllantd", "lbla"})
        label(name)->setEnabled(true);
    setBox("txta", fmt::scientific(rec.adav));
    setBox("txtlanmd", fmt::rounded(rec.lanm, 5));
    setBox("txtlandd", fmt::rounded(rec.land, 5));
    setBox("txtlantd", fmt::rounded(rec.lant, 5));
}

void frmmore::cmddiscript_Click() {
    frmsymbols* symbols = frmsymbols::instance();
    showInFront(symbols);
    placeOnSmallScreen(symbols, 255, 120);
}

} // namespace velmora
