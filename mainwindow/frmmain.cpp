#include "mainwindow/frmmain.h"

#include "options/frmoptions.h"
#include "platform/platform.h"
#include "windowkit/formsupport.h"
#include "windowkit/programpicture.h"
#include "windowkit/toolbaricons.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

#include <utility>
#include <vector>

namespace velmora {

namespace {

constexpr int kToolbarHeightTwips = 420;

// The box and label members of each field, in the order of Field.
constexpr std::pair<QLineEdit * frmMain::*, QLabel * frmMain::*> kFieldMembers[kFieldCount] = {
    {&frmMain::txttds, &frmMain::lbltds}, {&frmMain::txtec, &frmMain::lblec},
    {&frmMain::txtt, &frmMain::lblt},     {&frmMain::txtph, &frmMain::lblph},
    {&frmMain::txtalk, &frmMain::lblalk}, {&frmMain::txtca, &frmMain::lblca},
    {&frmMain::txtmg, &frmMain::lblmg},   {&frmMain::txtk, &frmMain::lblk},
    {&frmMain::txtna, &frmMain::lblna},   {&frmMain::txtzn, &frmMain::lblzn},
    {&frmMain::txtmn, &frmMain::lblmn},   {&frmMain::txtfe, &frmMain::lblfe},
    {&frmMain::txtal, &frmMain::lblal},   {&frmMain::txthco3, &frmMain::lblhco3},
    {&frmMain::txtco3, &frmMain::lblco3}, {&frmMain::txtno2, &frmMain::lblno2},
    {&frmMain::txtno3, &frmMain::lblno3}, {&frmMain::txtf, &frmMain::lblf},
    {&frmMain::txtcl, &frmMain::lblcl},   {&frmMain::txtso4, &frmMain::lblso4},
};

// The client area: the toolbar sits at its top edge, stretched to its width,
// and the controls are placed in client coordinates below it.
class ClientArea : public QWidget {
public:
    using QWidget::QWidget;
    QToolBar* toolbar = nullptr;

protected:
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        if (toolbar) toolbar->setGeometry(0, 0, width(), twipsToPixelsY(kToolbarHeightTwips));
    }
};

QString settingText(int twips) {
    return QString::number(static_cast<float>(twips), 'g', 7);
}

} // namespace

// ---------------------------------------------------------------------------
frmMain::frmMain() {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Velmora"));

    buildMenus();
    auto* area = new ClientArea(this);
    client = area;
    client->setObjectName(QStringLiteral("client"));
    setCentralWidget(client);
    QFont arial(QStringLiteral("Arial"));
    arial.setPointSize(8);
    client->setFont(arial);
    buildToolbar();
    area->toolbar = tbToolBar;
    buildControls();
    buildStatusBar();

    // design placement; an 800 x 600 screen gets its own (start procedure)
    resize(twipsToPixelsX(11400), twipsToPixelsY(8200));
    moveTwips(this, 1200, 900);

    connectHandlers();
    // the menu shortcuts win over a text box's own keys (Ctrl+E moves to
    // the end of the line in some keyboard schemes)
    for (QLineEdit* box : findChildren<QLineEdit*>())
        box->installEventFilter(this);
    theEngine().setObserver(this);
    setMainForm(this);
}

QAction* frmMain::menuShortcutFor(const QKeyEvent* key) const {
    const QKeySequence pressed(key->keyCombination());
    for (QAction* a : {mnuFileNew, mnuFileSave, mnuFilePrint, mnuFileExit})
        if (a->shortcut() == pressed) return a;
    return nullptr;
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (QAction* action = menuShortcutFor(key)) {
            if (event->type() == QEvent::ShortcutOverride) {
                // not claimed by the box: the shortcut runs
                event->ignore();
                return true;
            }
            // the box was handed the key all the same: run the command here
            if (action->isEnabled()) action->trigger();
            return true;
        }
    }
    return SingleWindow::eventFilter(watched, event);
}

frmMain::~frmMain() {
    if (isCurrent()) theEngine().setObserver(nullptr);
    if (mainForm() == this) setMainForm(nullptr);
}

// ---------------------------------------------------------------------------
// Building the window

void frmMain::buildMenus() {
    auto action = [this](QMenu* menu, const char* name, const QString& caption) {
        QAction* a = menu->addAction(caption);
        a->setObjectName(QLatin1String(name));
        return a;
    };
    auto separator = [](QMenu* menu, const char* name) {
        QAction* a = menu->addSeparator();
        a->setObjectName(QLatin1String(name));
        return a;
    };
    auto menu = [this](const char* name, const QString& caption) {
        QMenu* m = menuBar()->addMenu(caption);
        m->setObjectName(QLatin1String(name));
        return m;
    };

    mnuFile = menu("mnuFile", QStringLiteral("&File"));
    mnuFileNew = action(mnuFile, "mnuFileNew", QStringLiteral("&New"));
    mnuFileNew->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    mnuFileBar0 = separator(mnuFile, "mnuFileBar0");
    mnuFileSave = action(mnuFile, "mnuFileSave", QStringLiteral("&Save results..."));
    mnuFileSave->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    mnuFileSave->setEnabled(false);
    mnuFileBar1 = separator(mnuFile, "mnuFileBar1");
    mnuFileProperties = action(mnuFile, "mnuFileProperties", QStringLiteral("Propert&ies"));
    mnuFileBar2 = separator(mnuFile, "mnuFileBar2");
    mnuFilePrint = action(mnuFile, "mnuFilePrint", QStringLiteral("&Print results..."));
    mnuFilePrint->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_P));
    mnuFilePrint->setEnabled(false);
    mnuFileBar3 = separator(mnuFile, "mnuFileBar3");
    mnuFileBar5 = separator(mnuFile, "mnuFileBar5");
    mnuFileExit = action(mnuFile, "mnuFileExit", QStringLiteral("E&xit"));
    mnuFileExit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));

    mnusetting = menu("mnusetting", QStringLiteral("&Setting"));
    mnusettingis = action(mnusetting, "mnusettingis", QStringLiteral("&ionic strength equations"));
    mnusittingac =
        action(mnusetting, "mnusittingac", QStringLiteral("&activity coefficient equations"));

    mnuoption = menu("mnuoption", QStringLiteral("&Options"));
    mnuoptionoptions = action(mnuoption, "mnuoptionoptions", QStringLiteral("&options"));

    mnuView = menu("mnuView", QStringLiteral("&View"));
    mnuViewToolbar = action(mnuView, "mnuViewToolbar", QStringLiteral("&Toolbar"));
    mnuViewToolbar->setCheckable(true);
    mnuViewToolbar->setChecked(true);
    mnuViewStatusBar = action(mnuView, "mnuViewStatusBar", QStringLiteral("Status &Bar"));
    mnuViewStatusBar->setCheckable(true);
    mnuViewStatusBar->setChecked(true);

    mnuhelp = menu("mnuhelp", QStringLiteral("&Help"));
    mnuhelpcontents = action(mnuhelp, "mnuhelpcontents", QStringLiteral("&contents"));
    mnuHelpAbout = action(mnuhelp, "mnuHelpAbout", QStringLiteral("&About "));
}

void frmMain::buildToolbar() {
    tbToolBar = new QToolBar(client);
    tbToolBar->setObjectName(QStringLiteral("tbToolBar"));
    tbToolBar->setMovable(false);
    tbToolBar->setFloatable(false);
    tbToolBar->setIconSize(QSize(16, 16));
    tbToolBar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    const char* keys[] = {"New", "Save", "Print", "Sample", "Graph"};
    for (int i = 0; i < 5; ++i) {
        if (i > 0) tbToolBar->addSeparator()->setObjectName(QStringLiteral("tbSeparator%1").arg(i));
        const QString key = QLatin1String(keys[i]);
        QAction* b = tbToolBar->addAction(toolbarIcon(key), key);
        b->setObjectName(QStringLiteral("tbToolBar") + key);
        b->setData(key);
    }
    toolbarButton(7)->setToolTip(QStringLiteral("Sample Properties"));
    // nothing to save, print or draw before a calculation
    toolbarButton(3)->setEnabled(false);
    toolbarButton(5)->setEnabled(false);
    toolbarButton(9)->setEnabled(false);
    tbToolBar->setGeometry(0, 0, twipsToPixelsX(11400), twipsToPixelsY(kToolbarHeightTwips));
}

void frmMain::buildStatusBar() {
    sbStatusBar = new QStatusBar(this);
    sbStatusBar->setObjectName(QStringLiteral("sbStatusBar"));
    setStatusBar(sbStatusBar);
    auto panel = [this](const char* name) {
        auto* l = new QLabel(sbStatusBar);
        l->setObjectName(QLatin1String(name));
        l->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        l->setTextFormat(Qt::PlainText);
        return l;
    };
    panel1_ = panel("sbStatusBarPanel1");
    panel2_ = panel("sbStatusBarPanel2");
    panel3_ = panel("sbStatusBarPanel3");
    panel2_->setMinimumWidth(90);
    panel3_->setMinimumWidth(70);
    panel2_->setAlignment(Qt::AlignCenter);
    panel3_->setAlignment(Qt::AlignCenter);
    sbStatusBar->addWidget(panel1_, 1);
    sbStatusBar->addPermanentWidget(panel2_);
    sbStatusBar->addPermanentWidget(panel3_);
    setState(Workflow::EnteringData);

    clock_ = new QTimer(this);
    clock_->setInterval(1000);
    connect(clock_, &QTimer::timeout, this, &frmMain::refreshClock);
    refreshClock();
}

void frmMain::buildControls() {
    auto frame = [](QWidget* parent, const char* name, const QString& caption) {
        auto* f = new QGroupBox(caption, parent);
        f->setObjectName(QLatin1String(name));
        return f;
    };
    auto label = [](QWidget* parent, const QByteArray& name, const QString& caption) {
        auto* l = new QLabel(caption, parent);
        l->setObjectName(QLatin1String(name));
        l->setTextFormat(Qt::PlainText);
        l->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        return l;
    };
    auto box = [](QWidget* parent, const QByteArray& name, const QString& tip) {
        auto* b = new QLineEdit(parent);
        b->setObjectName(QLatin1String(name));
        b->setToolTip(tip);
        return b;
    };
    frawater = frame(client, "frawater", QStringLiteral("Enter water characteristics below :"));
    Frame4 = frame(frawater, "Frame4", QString());
    fratdsec = frame(frawater, "fratdsec", QString());
    frmcations = frame(frawater, "frmcations", QStringLiteral("cations :"));
    frmanions = frame(frawater, "frmanions", QStringLiteral("Anions :"));
    // the labelled boxes of the analysis, lbl<name> and txt<name>, one per row
    // of their frame
    QGroupBox* const frames[] = {Frame4, fratdsec, frmcations, frmanions};
    for (const FieldInfo& fi : kFields) {
        QGroupBox* f = frames[static_cast<int>(fi.group)];
        const QByteArray name(fi.name);
        QLabel* l = label(f, "lbl" + name, QString::fromLatin1(fi.caption));
        QLineEdit* b = box(f, "txt" + name, QString::fromLatin1(fi.tip));
        const int top = 285 + 375 * fi.row;
        setTwipsGeometry(l, 120, top, 2400, 315);
        setTwipsGeometry(b, 2520, top, 1215, 315);
        const auto [boxMember, labelMember] = kFieldMembers[static_cast<std::size_t>(fi.field)];
        this->*boxMember = b;
        this->*labelMember = l;
    }

    frasample = frame(client, "frasample", QStringLiteral("Sample properties :"));
    txtnam = box(frasample, "txtnam", QString());
    txtorg = box(frasample, "txtorg", QString());
    txtdat = box(frasample, "txtdat", QString());
    txtloc = box(frasample, "txtloc", QString());
    setTwipsGeometry(txtnam, 120, 300, 3120, 400);
    setTwipsGeometry(txtorg, 3360, 300, 3120, 400);
    setTwipsGeometry(txtdat, 120, 850, 3120, 400);
    setTwipsGeometry(txtloc, 3360, 850, 3120, 400);
    for (QLineEdit* b : {txtnam, txtorg, txtdat, txtloc}) {
        b->setReadOnly(true);
        b->setEnabled(false);
    }
    setBackColor(txtnam, vb::White);

    fraaccuracy = frame(client, "fraaccuracy", QStringLiteral("Accuracy Test Results :"));
    auto accuracyRow = [&](int i, QLabel*& l, const char* lname, const QString& caption,
                           QLineEdit*& b, const char* bname) {
        l = label(fraaccuracy, lname, caption);
        b = box(fraaccuracy, bname, QString());
        b->setReadOnly(true);
        setTwipsGeometry(l, 120, 300 + 400 * i, 1900, 315);
        setTwipsGeometry(b, 2040, 300 + 400 * i, 1215, 315);
        l->setEnabled(false);
        b->setEnabled(false);
    };
    accuracyRow(0, lblsumca, "lblsumca", QStringLiteral("Sum of Cations ="), txtsumca, "txtsumca");
    accuracyRow(1, lblsuman, "lblsuman", QStringLiteral("Sum of Anions  ="), txtsuman, "txtsuman");
    accuracyRow(2, lbldiff, "lbldiff", QStringLiteral("Percent diffrence(%) ="), txtdiff,
                "txtdiff");

    Image1 = new QLabel(client);
    Image1->setObjectName(QStringLiteral("Image1"));
    Image1->setAlignment(Qt::AlignCenter);

    auto button = [this](const char* name, const QString& caption) {
        auto* b = new QPushButton(caption, client);
        b->setObjectName(QLatin1String(name));
        b->setAutoDefault(false);
        b->setEnabled(false);
        return b;
    };
    cmdread = button("cmdread", QStringLiteral("&Read Data"));
    cmdcalc = button("cmdcalc", QStringLiteral("&Calculate"));
    cmdclear = button("cmdclear", QStringLiteral("&Clear"));
    cmdshow = button("cmdshow", QStringLiteral("&Show results"));
    cmdaccuracy = button("cmdaccuracy", QStringLiteral("Water analysis accuracy test"));
    setBackColor(cmdread, vb::ReadButton);
    setBackColor(cmdcalc, vb::CalcButton);
    setBackColor(cmdaccuracy, vb::ButtonFace);

    // the arrangement for the Langelier equation
    for (QLineEdit* b : {txtt, txtph, txtalk, txtca, txttds})
        setBackColor(b, vb::Cyan);
    for (QLineEdit* b : {txtec, txtmg, txtk, txtna, txtzn, txtmn, txtfe, txtal, txthco3, txtco3,
                         txtno2, txtno3, txtf}) {
        setBackColor(b, vb::LightBlue);
        b->setEnabled(false);
    }
    for (QLineEdit* b : {txtcl, txtso4}) {
        setBackColor(b, vb::Yellow);
        b->setEnabled(false);
    }
    for (QLabel* l : {lblec, lblmg, lblk, lblna, lblzn, lblmn, lblfe, lblal, lblhco3, lblco3,
                      lblno2, lblno3, lblf, lblcl, lblso4})
        l->setEnabled(false);
    frmanions->setEnabled(false);
    frasample->setEnabled(false);
    fraaccuracy->setEnabled(false);

    // the left and width of these stay as designed on an 800 x 600 screen
    setTwipsGeometry(fratdsec, 4080, 240, 3855, 1095);
    setTwipsGeometry(cmdread, 8700, 2040, 2400, 375);
    setTwipsGeometry(cmdcalc, 8700, 2520, 2400, 375);
    setTwipsGeometry(cmdclear, 8700, 3000, 2400, 375);
    setTwipsGeometry(cmdshow, 8700, 3480, 2400, 375);
    setTwipsGeometry(cmdaccuracy, 8700, 4500, 2400, 450);
    setTwipsGeometry(Image1, 8700, 600, 2400, 1335);
    Image1->setPixmap(programPicture(Image1->size()));
    // the rest is designed as an 800 x 600 screen places it
    placeControls();
}

void frmMain::connectHandlers() {
    connect(cmdread, &QPushButton::clicked, this, &frmMain::cmdread_Click);
    connect(cmdaccuracy, &QPushButton::clicked, this, &frmMain::cmdaccuracy_Click);
    connect(cmdcalc, &QPushButton::clicked, this, &frmMain::cmdcalc_Click);
    connect(cmdshow, &QPushButton::clicked, this, &frmMain::cmdshow_Click);
    connect(cmdclear, &QPushButton::clicked, this, &frmMain::cmdclear_Click);

    connect(mnuFileNew, &QAction::triggered, this, &frmMain::mnuFileNew_Click);
    connect(mnuFileSave, &QAction::triggered, this, &frmMain::mnuFileSave_Click);
    connect(mnuFileProperties, &QAction::triggered, this, &frmMain::mnuFileProperties_Click);
    connect(mnuFilePrint, &QAction::triggered, this, &frmMain::mnuFilePrint_Click);
    connect(mnuFileExit, &QAction::triggered, this, &frmMain::mnuFileExit_Click);
    connect(mnusettingis, &QAction::triggered, this, &frmMain::mnusettingis_Click);
    connect(mnusittingac, &QAction::triggered, this, &frmMain::mnusittingac_Click);
    connect(mnuoptionoptions, &QAction::triggered, this, &frmMain::mnuoptionoptions_Click);
    connect(mnuhelpcontents, &QAction::triggered, this, &frmMain::mnuhelpcontents_Click);
    connect(mnuHelpAbout, &QAction::triggered, this, &frmMain::mnuHelpAbout_Click);
    // a checkable action has already turned its check mark when it triggers;
    // the handlers turn it themselves
    connect(mnuViewToolbar, &QAction::triggered, this, [this](bool checked) {
        mnuViewToolbar->setChecked(!checked);
        mnuViewToolbar_Click();
    });
    connect(mnuViewStatusBar, &QAction::triggered, this, [this](bool checked) {
        mnuViewStatusBar->setChecked(!checked);
        mnuViewStatusBar_Click();
    });
    connect(tbToolBar, &QToolBar::actionTriggered, this, &frmMain::tbToolBar_ButtonClick);

    connect(txtal, &QLineEdit::textChanged, this, &frmMain::txtal_Change);
    connect(txtco3, &QLineEdit::textChanged, this, &frmMain::txtco3_Change);
    connect(txtf, &QLineEdit::textChanged, this, &frmMain::txtf_Change);
    connect(txtfe, &QLineEdit::textChanged, this, &frmMain::txtfe_Change);
    connect(txthco3, &QLineEdit::textChanged, this, &frmMain::txthco3_Change);
    connect(txtk, &QLineEdit::textChanged, this, &frmMain::txtk_Change);
    connect(txtmg, &QLineEdit::textChanged, this, &frmMain::txtmg_Change);
    connect(txtmn, &QLineEdit::textChanged, this, &frmMain::txtmn_Change);
    connect(txtna, &QLineEdit::textChanged, this, &frmMain::txtna_Change);
    connect(txtno2, &QLineEdit::textChanged, this, &frmMain::txtno2_Change);
    connect(txtno3, &QLineEdit::textChanged, this, &frmMain::txtno3_Change);
    connect(txtzn, &QLineEdit::textChanged, this, &frmMain::txtzn_Change);
    connect(txtalk, &QLineEdit::textChanged, this, &frmMain::txtalk_Change);
    connect(txtca, &QLineEdit::textChanged, this, &frmMain::txtca_Change);
    connect(txtt, &QLineEdit::textChanged, this, &frmMain::txtt_Change);
    connect(txtph, &QLineEdit::textChanged, this, &frmMain::txtph_Change);
    connect(txtec, &QLineEdit::textChanged, this, &frmMain::txtec_Change);
    connect(txttds, &QLineEdit::textChanged, this, &frmMain::txttds_Change);
    connect(txtcl, &QLineEdit::textChanged, this, &frmMain::txtcl_Change);
    connect(txtso4, &QLineEdit::textChanged, this, &frmMain::txtso4_Change);
}

// ---------------------------------------------------------------------------
// Small accessors

QAction* frmMain::toolbarButton(int position) const {
    const QList<QAction*> buttons = tbToolBar->actions();
    return position >= 1 && position <= buttons.size() ? buttons.at(position - 1) : nullptr;
}

QLabel* frmMain::statusPanel(int panel) const {
    switch (panel) {
    case 1:
        return panel1_;
    case 2:
        return panel2_;
    case 3:
        return panel3_;
    }
    return nullptr;
}

QString frmMain::statusText() const {
    return panel1_->text();
}

void frmMain::setState(Workflow state) {
    state_ = state;
    panel1_->setText(statusTextOf(state));
}

QLineEdit* frmMain::box(Field f) const {
    return this->*kFieldMembers[static_cast<std::size_t>(f)].first;
}

QLabel* frmMain::label(Field f) const {
    return this->*kFieldMembers[static_cast<std::size_t>(f)].second;
}

QList<QLineEdit*> frmMain::analysisBoxes() const {
    QList<QLineEdit*> boxes;
    for (const FieldInfo& fi : kFields)
        boxes.append(box(fi.field));
    return boxes;
}

AnalysisTexts frmMain::analysisTexts() const {
    AnalysisTexts t;
    for (const FieldInfo& fi : kFields)
        t[fi.field] = numberFromBox(box(fi.field)->text());
    return t;
}

void frmMain::refreshClock() {
    const QDateTime now = platform().now();
    const QLocale locale;
    panel2_->setText(locale.toString(now.date(), QLocale::ShortFormat));
    panel3_->setText(locale.toString(now.time(), QLocale::ShortFormat));
}

bool frmMain::sweepChecked() const {
    return frmOptions::instance()->chkphsweep->isChecked();
}

bool frmMain::larsonSkoldChecked() const {
    return frmOptions::instance()->chklr->isChecked();
}

void frmMain::reportFailure(const QString& command, const char* what) {
    platform().message(this, QStringLiteral("%1 failed: %2.").arg(command, QString::fromUtf8(what)),
                       QStringLiteral("Velmora"), Platform::Icon::Critical);
}

// ---------------------------------------------------------------------------
// Placement

void frmMain::applySmallScreenPlacement() {
    moveTwips(this, 400, 100);
    resize(width(), twipsToPixelsY(8500));
    placeControls();
}

void frmMain::placeControls() {
    auto topHeight = [](QWidget* w, int top, int height) {
        w->setGeometry(w->x(), twipsToPixelsY(top), w->width(), twipsToPixelsY(height));
    };
    setTwipsGeometry(frawater, 360, 480, 8175, 4815);
    setTwipsGeometry(Frame4, 120, 240, 3855, 1455);
    topHeight(fratdsec, 240, 1095);
    setTwipsGeometry(frmcations, 4080, 1320, 3855, 3375);
    setTwipsGeometry(frmanions, 120, 1680, 3855, 3015);
    setTwipsGeometry(frasample, 360, 5500, 6600, 1600);
    topHeight(txtnam, 300, 400);
    topHeight(txtorg, 300, 400);
    topHeight(txtdat, 850, 400);
    topHeight(txtloc, 850, 400);
    setTwipsGeometry(fraaccuracy, 7080, 5500, 3375, 1600);
    topHeight(cmdread, 2040, 375);
    topHeight(cmdcalc, 2520, 375);
    topHeight(cmdclear, 3000, 375);
    topHeight(cmdshow, 3480, 375);
    topHeight(cmdaccuracy, 4500, 450);
    topHeight(Image1, 600, 1335);
}

bool frmMain::restoreSavedPlacement() {
    int twips[4];
    const char* keys[] = {"MainLeft", "MainTop", "MainWidth", "MainHeight"};
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        const double v = platform()
                             .readSetting(QStringLiteral("Velmora"), QStringLiteral("Settings"),
                                          QLatin1String(keys[i]))
                             .toDouble(&ok);
        if (!ok || v < -1e7 || v > 1e7) return false;
        twips[i] = static_cast<int>(v);
    }
    const int left = twipsToPixelsX(twips[0]), top = twipsToPixelsY(twips[1]);
    const int width = twipsToPixelsX(twips[2]), height = twipsToPixelsY(twips[3]);
    const QSize screen = platform().screenPixels();
    const QSize least = minimumSizeHint().expandedTo(QSize(200, 150));
    if (left < 0 || top < 0 || width < least.width() || height < least.height() ||
        left + width > screen.width() || top + height > screen.height())
        return false;
    move(left, top);
    resize(width, height);
    return true;
}

// ---------------------------------------------------------------------------
// Window events

void frmMain::Form_Load() {
    QDir::setCurrent(QCoreApplication::applicationDirPath());
}

void frmMain::showEvent(QShowEvent* event) {
    refreshClock();
    clock_->start();
    QMainWindow::showEvent(event);
}

void frmMain::hideEvent(QHideEvent* event) {
    clock_->stop();
    QMainWindow::hideEvent(event);
}

void frmMain::closeEvent(QCloseEvent* event) {
    // every other window of the program goes first, the newest first
    const std::vector<QWidget*> windows = loadedWindows();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        QWidget* w = *it;
        if (w != this && isLoadedWindow(w)) w->close();
    }
    if (!isMinimized()) {
        Platform& p = platform();
        const QString app = QStringLiteral("Velmora"), section = QStringLiteral("Settings");
        p.writeSetting(app, section, QStringLiteral("MainLeft"), settingText(pixelsToTwipsX(x())));
        p.writeSetting(app, section, QStringLiteral("MainTop"), settingText(pixelsToTwipsY(y())));
        p.writeSetting(app, section, QStringLiteral("MainWidth"),
                       settingText(pixelsToTwipsX(width())));
        p.writeSetting(app, section, QStringLiteral("MainHeight"),
                       settingText(pixelsToTwipsY(height())));
    }
    if (isCurrent()) theEngine().setObserver(nullptr);
    if (mainForm() == this) setMainForm(nullptr);
    SingleWindow::closeEvent(event);
}

} // namespace velmora
