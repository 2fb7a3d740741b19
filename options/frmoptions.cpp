#include "options/frmoptions.h"

#include "engine/engine.h"
#include "options/optionstate.h"
#include "options/sweepsettings.h"
#include "platform/platform.h"
#include "windowkit/formsupport.h"
#include "windowkit/mainform.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>

#include <exception>

namespace velmora {

frmOptions::frmOptions() : SingleWindow(mainWindowParent()) {
    setObjectName(QStringLiteral("frmOptions"));
    setWindowTitle(QStringLiteral("Options"));
    setModal(false);
    QFont arial(QStringLiteral("Arial"));
    arial.setPointSize(8);
    setFont(arial);

    tbsOptions = new QTabBar(this);
    tbsOptions->setObjectName(QStringLiteral("tbsOptions"));
    tbsOptions->addTab(QStringLiteral("Corrosion indices"));
    tbsOptions->addTab(QStringLiteral("Sweep "));
    tbsOptions->setExpanding(false);
    setTwipsGeometry(tbsOptions, 120, 120, 4965, 360);

    for (int i = 0; i < 2; ++i) {
        picoptions[i] = new QWidget(this);
        picoptions[i]->setObjectName(QStringLiteral("picoptions"));
        picoptions[i]->setProperty("Index", i);
    }

    auto label = [](QWidget* parent, const char* name, const QString& caption) {
        auto* l = new QLabel(caption, parent);
        l->setObjectName(QLatin1String(name));
        l->setTextFormat(Qt::PlainText);
        return l;
    };

    // page 0: the indices
    fraSample2 = new QGroupBox(QStringLiteral("Indices :"), picoptions[0]);
    fraSample2->setObjectName(QStringLiteral("fraSample2"));
    setTwipsGeometry(fraSample2, 0, 0, 4965, 3180);
    lblindex = label(fraSample2, "lblindex",
                     QStringLiteral("Please choose corrosion or scaling indices. "));
    setTwipsGeometry(lblindex, 120, 330, 4700, 270);
    struct Check {
        QCheckBox*& box;
        const char* name;
        const char* caption;
    };
    const Check checks[] = {
        {chkli, "chkli", "Langelier index (suitable for  6.5< pH<9.5 )"},
        {chkri, "chkri", "Ryznar index"},
        {chkpor, "chkpor", "porcorius index    (suitable for pH<8.3)"},
        {chklr, "chklr", "Larson and Scold index (for cast-iron and low-carbon steel)"},
        {chkdfi, "chkdfi", "Driving Force index"},
        {chkai, "chkai", "Aggressiveness index (for asbestos-cement pipe)"},
        {chkme, "chkme", "Momentary Excess index"},
        {chksl, "chksl", "Sturation Level index"},
    };
    int i = 0;
    for (const Check& c : checks) {
        c.box = new QCheckBox(QLatin1String(c.caption), fraSample2);
        c.box->setObjectName(QLatin1String(c.name));
        setTwipsGeometry(c.box, 90, 630 + 315 * i, 4845, 300);
        ++i;
    }

    // page 1: the pH sweep
    Label3 = label(picoptions[1], "Label3", QStringLiteral("Please choose pH sweep component.  "));
    setTwipsGeometry(Label3, 120, 120, 4700, 270);
    chkphsweep = new QCheckBox(QStringLiteral("pH sweep"), picoptions[1]);
    chkphsweep->setObjectName(QStringLiteral("chkphsweep"));
    setTwipsGeometry(chkphsweep, 120, 450, 3000, 300);
    frasweep = new QGroupBox(QStringLiteral("pH sweep :"), picoptions[1]);
    frasweep->setObjectName(QStringLiteral("frasweep"));
    setTwipsGeometry(frasweep, 0, 840, 4965, 2340);
    auto row = [&](int r, QLabel*& caption, const char* cname, const QString& ctext,
                   QLineEdit*& box, const char* bname, QLabel*& hint, const char* hname,
                   const QString& htext) {
        caption = label(frasweep, cname, ctext);
        box = new QLineEdit(frasweep);
        box->setObjectName(QLatin1String(bname));
        hint = label(frasweep, hname, htext);
        setTwipsGeometry(caption, 120, 400 + 600 * r, 1500, 315);
        setTwipsGeometry(box, 1680, 400 + 600 * r, 1095, 315);
        setTwipsGeometry(hint, 2895, 400 + 600 * r, 1950, 315);
    };
    row(0, lblini, "lblini", QStringLiteral("Start pH         ="), txtinitialph, "txtinitialph",
        lblini2, "lblini2", QStringLiteral("Between 1.0 to 14"));
    row(1, lblstep, "lblstep", QStringLiteral("pH increment  ="), txtincrementph, "txtincrementph",
        lblstep2, "lblstep2", QStringLiteral("Between 0.1 to 2"));
    row(2, lblnum, "lblnum", QStringLiteral("Step numbers ="), txtstep, "txtstep", lblnum2,
        "lblnum2", QStringLiteral("Between 1 to 140"));

    auto button = [this](const char* name, const QString& caption, int left) {
        auto* b = new QPushButton(caption, this);
        b->setObjectName(QLatin1String(name));
        b->setAutoDefault(false);
        setTwipsGeometry(b, left, 3810, 1215, 375);
        return b;
    };
    cmdOK = button("cmdOK", QStringLiteral("OK"), 1380);
    cmdCancel = button("cmdCancel", QStringLiteral("Cancel"), 2640);
    cmdApply = button("cmdApply", QStringLiteral("&Apply"), 3870);
    cmdOK->setDefault(true);

    setFixedSize(twipsToPixelsX(5205), twipsToPixelsY(4350));

    // design state: nothing checked, the sweep controls disabled
    chkphsweep_Click();
    tbsOptions_Click();

    connect(tbsOptions, &QTabBar::currentChanged, this, &frmOptions::tbsOptions_Click);
    connect(chkphsweep, &QCheckBox::toggled, this, &frmOptions::chkphsweep_Click);
    connect(txtinitialph, &QLineEdit::textChanged, this, &frmOptions::txtinitialph_Change);
    connect(txtincrementph, &QLineEdit::textChanged, this, &frmOptions::txtincrementph_Change);
    connect(txtstep, &QLineEdit::textChanged, this, &frmOptions::txtstep_Change);
    connect(cmdOK, &QPushButton::clicked, this, &frmOptions::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmOptions::cmdCancel_Click);
    connect(cmdApply, &QPushButton::clicked, this, [this] { cmdApply_Click(); });
}

// ---------------------------------------------------------------------------

void frmOptions::tbsOptions_Click() {
    const int selected = tbsOptions->currentIndex();
    for (int i = 0; i < tbsOptions->count() && i < 2; ++i) {
        if (i == selected) {
            setTwipsGeometry(picoptions[i], 120, 480, 4965, 3180);
            picoptions[i]->setEnabled(true);
        } else {
            picoptions[i]->move(twipsToPixelsX(-20000), picoptions[i]->y());
            picoptions[i]->setEnabled(false);
        }
    }
}

void frmOptions::keyPressEvent(QKeyEvent* event) {
    // keys the focused control does not use arrive here (Form_KeyDown)
    if (event->key() == Qt::Key_Tab && event->modifiers() == Qt::ControlModifier) {
        selectNextTab();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmOptions::selectNextTab() {
    tbsOptions->setCurrentIndex((tbsOptions->currentIndex() + 1) % tbsOptions->count());
}

void frmOptions::chkphsweep_Click() {
    setEnabledAll({frasweep, txtinitialph, txtincrementph, txtstep, lblini, lblnum, lblstep,
                   lblini2, lblnum2, lblstep2},
                  chkphsweep->isChecked());
}

void frmOptions::showMessage(const std::string& text) {
    platform().message(this, QString::fromStdString(text), QStringLiteral("Velmora"),
                       Platform::Icon::None);
}

void frmOptions::checkBox(QLineEdit* box, const std::optional<std::string>& message) {
    if (!message) return;
    showMessage(*message);
    box->setText(QString());
}

void frmOptions::txtinitialph_Change() {
    checkBox(txtinitialph, checkInitialPh(numberFromBox(txtinitialph->text())));
}

void frmOptions::txtincrementph_Change() {
    checkBox(txtincrementph, checkIncrementPh(numberFromBox(txtincrementph->text())));
}

void frmOptions::txtstep_Change() {
    checkBox(txtstep, checkSteps(numberFromBox(txtstep->text())));
}

bool frmOptions::cmdApply_Click() {
    return apply(false);
}

void frmOptions::cmdOK_Click() {
    apply(true);
}

bool frmOptions::apply(bool hideOnceApplied) {
    IndexFlags& flags = theOptions().index;
    flags.blli = chkli->isChecked();
    flags.blri = chkri->isChecked();
    flags.blpor = chkpor->isChecked();
    flags.bllr = chklr->isChecked();
    flags.bldfi = chkdfi->isChecked();
    flags.blai = chkai->isChecked();
    flags.blme = chkme->isChecked();
    flags.blsl = chksl->isChecked();

    // the main window rearranges chloride and sulphate for the index
    MainForm* m = mainForm();
    if (m) m->indicesApplied();

    // the sweep list
    if (chkphsweep->isChecked()) {
        try {
            const SweepApplyResult r = applySweep(
                numberFromBox(txtinitialph->text()), numberFromBox(txtincrementph->text()),
                numberFromBox(txtstep->text()), theOptions().sweep, theEngine().sw.phstart);
            if (r.outcome != SweepApplyResult::Outcome::Applied) {
                showMessage(r.message);
                if (r.clearStepBox) txtstep->setText(QString());
                return false;
            }
        } catch (const std::exception& e) {
            // like every message of this dialog: OK only, no icon
            showMessage(std::string("Apply failed: ") + e.what() + ".");
            return false;
        }
        if (m) m->sweepApplied();
    }
    // OK: the dialog goes before the workflow moves back
    if (hideOnceApplied) hide();
    if (m) m->optionsApplied(chkphsweep->isChecked());
    return true;
}

void frmOptions::cmdCancel_Click() {
    close();
}

void frmOptions::reject() {
    cmdCancel_Click();
}

} // namespace velmora
