// The main window: the boxes of one water analysis, the workflow buttons,
// the menus, the toolbar and the status bar, whose first panel names the
// workflow state. It is the engine's observer: what a reading or a
// calculation does to the window arrives through EngineObserver.
#pragma once

#include "engine/engine.h"
#include "intake/arrangement.h"
#include "intake/readdata.h"
#include "mainwindow/workflow.h"
#include "report/reportlayout.h"
#include "windowkit/formsupport.h"
#include "windowkit/mainform.h"

#include <QList>
#include <QMainWindow>
#include <QString>
#include <initializer_list>

class QAction;
class QGroupBox;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QStatusBar;
class QTimer;
class QToolBar;

namespace velmora {

// The one main window (instance()), created hidden in its design state on
// first use.
class frmMain : public SingleWindow<frmMain, QMainWindow>, public EngineObserver, public MainForm {
    Q_OBJECT

public:
    ~frmMain() override;

    // --- controls, named as everywhere in the program
    QWidget* client = nullptr; // the client area (toolbar and controls)
    QGroupBox *frawater = nullptr, *Frame4 = nullptr, *fratdsec = nullptr, *frmcations = nullptr,
              *frmanions = nullptr, *frasample = nullptr, *fraaccuracy = nullptr;
    QLineEdit *txttds = nullptr, *txtec = nullptr, *txtt = nullptr, *txtph = nullptr,
              *txtalk = nullptr, *txtca = nullptr, *txtmg = nullptr, *txtk = nullptr,
              *txtna = nullptr, *txtzn = nullptr, *txtmn = nullptr, *txtfe = nullptr,
              *txtal = nullptr, *txthco3 = nullptr, *txtco3 = nullptr, *txtno2 = nullptr,
              *txtno3 = nullptr, *txtf = nullptr, *txtcl = nullptr, *txtso4 = nullptr;
    QLabel *lbltds = nullptr, *lblec = nullptr, *lblt = nullptr, *lblph = nullptr,
           *lblalk = nullptr, *lblca = nullptr, *lblmg = nullptr, *lblk = nullptr, *lblna = nullptr,
           *lblzn = nullptr, *lblmn = nullptr, *lblfe = nullptr, *lblal = nullptr,
           *lblhco3 = nullptr, *lblco3 = nullptr, *lblno2 = nullptr, *lblno3 = nullptr,
           *lblf = nullptr, *lblcl = nullptr, *lblso4 = nullptr;
    QLineEdit *txtnam = nullptr, *txtorg = nullptr, *txtdat = nullptr, *txtloc = nullptr;
    QLineEdit *txtsumca = nullptr, *txtsuman = nullptr, *txtdiff = nullptr;
    QLabel *lblsumca = nullptr, *lblsuman = nullptr, *lbldiff = nullptr;
    QPushButton *cmdread = nullptr, *cmdaccuracy = nullptr, *cmdcalc = nullptr, *cmdshow = nullptr,
                *cmdclear = nullptr;
    QLabel* Image1 = nullptr;

    QMenu *mnuFile = nullptr, *mnusetting = nullptr, *mnuoption = nullptr, *mnuView = nullptr,
          *mnuhelp = nullptr;
    QAction *mnuFileNew = nullptr, *mnuFileBar0 = nullptr, *mnuFileSave = nullptr,
            *mnuFileBar1 = nullptr, *mnuFileProperties = nullptr, *mnuFileBar2 = nullptr,
            *mnuFilePrint = nullptr, *mnuFileBar3 = nullptr, *mnuFileBar5 = nullptr,
            *mnuFileExit = nullptr;
    QAction *mnusettingis = nullptr, *mnusittingac = nullptr, *mnuoptionoptions = nullptr;
    QAction *mnuViewToolbar = nullptr, *mnuViewStatusBar = nullptr;
    QAction *mnuhelpcontents = nullptr, *mnuHelpAbout = nullptr;

    QToolBar* tbToolBar = nullptr;
    QStatusBar* sbStatusBar = nullptr;

    // Toolbar button by position, 1 to 9 (2, 4, 6 and 8 are separators).
    QAction* toolbarButton(int position) const;
    // Status panel 1 to 3 (workflow state, date, time).
    QLabel* statusPanel(int panel) const;
    QString statusText() const;
    Workflow state() const { return state_; }
    void setState(Workflow state);

    // The box of an analysis field and its label, and all twenty boxes in the
    // order of Field.
    QLineEdit* box(Field f) const;
    QLabel* label(Field f) const;
    QList<QLineEdit*> analysisBoxes() const;
    AnalysisTexts analysisTexts() const;

    // What the report shows, read from the boxes, the option dialogs, the
    // sample properties and the measured point of the last calculation.
    report::ReportInputs reportInputs() const;

    // Disables the accuracy frame, its labels and boxes, and empties the boxes.
    void clearAccuracyFrame();

    // The placement for an 800 x 600 pixel screen.
    void applySmallScreenPlacement();
    // Puts the window where it was closed last time when that fits on the
    // screen; false when nothing was restored.
    bool restoreSavedPlacement();

    // --- MainForm: what the dialogs publish, and the other windows ask
    QWidget* asWidget() override;
    void equationChosen(Equation chosen, bool larsonSkold) override;
    void indicesApplied() override;
    void sweepApplied() override;
    void optionsApplied(bool sweepChecked) override;
    void interpretationOpened() override;
    bool chlorideAndSulphateGiven() const override;

    // --- EngineObserver
    void pointCompleted(bool sweep) override;
    void ionBalanceJudged(bool acceptable) override;
    void ionBalanceDone() override;
    void measuredPointReady() override;
    void message(const std::string& text, const std::string& title, MessageIcon icon) override;

public slots:
    void Form_Load();
    void cmdread_Click();
    void cmdaccuracy_Click();
    void cmdcalc_Click();
    void cmdshow_Click();
    void cmdclear_Click();
    void mnuFileNew_Click();
    void mnuFileSave_Click();
    void mnuFileProperties_Click();
    void mnuFilePrint_Click();
    void mnuFileExit_Click();
    void mnusettingis_Click();
    void mnusittingac_Click();
    void mnuoptionoptions_Click();
    void mnuViewToolbar_Click();
    void mnuViewStatusBar_Click();
    void mnuhelpcontents_Click();
    void mnuHelpAbout_Click();
    void tbToolBar_ButtonClick(QAction* button);

    // change handlers of the analysis boxes
    void txtal_Change();
    void txtco3_Change();
    void txtf_Change();
    void txtfe_Change();
    void txthco3_Change();
    void txtk_Change();
    void txtmg_Change();
    void txtmn_Change();
    void txtna_Change();
    void txtno2_Change();
    void txtno3_Change();
    void txtzn_Change();
    void txtalk_Change();
    void txtca_Change();
    void txtt_Change();
    void txtph_Change();
    void txtec_Change();
    void txttds_Change();
    void txtcl_Change();
    void txtso4_Change();

protected:
    void closeEvent(QCloseEvent* event) override; // Form_Unload
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    friend SingleWindow;
    frmMain();
    void buildMenus();
    void buildToolbar();
    void buildStatusBar();
    void buildControls();
    void placeControls();
    void connectHandlers();
    void refreshClock();
    void showAccuracySums();

    // True when every box of the set holds text.
    bool filled(const PerField<bool>& needed) const;
    // A box, its label and its colour as the arrangement has them.
    void arrangeBox(Field f, const Arrangement& a);

    enum class Block { Lewis, Langelier, Russell };
    bool rejectText(QLineEdit* box);
    void plainChange(QLineEdit* box);
    void requirementChange(QLineEdit* box, std::initializer_list<Block> blocks);
    void runBlock(Block block, QLineEdit* box);
    void lewisBlock();
    void russellBlock();
    void langelierBlock(QLineEdit* box);
    void chlorideSulphateChange(QLineEdit* box);
    void workflowAfterEdit();
    void enterReadyToRead(bool enableRead, bool disableCalc);
    bool sweepChecked() const;
    bool larsonSkoldChecked() const;
    void reportFailure(const QString& command, const char* what);
    QAction* menuShortcutFor(const QKeyEvent* key) const;

    QLabel *panel1_ = nullptr, *panel2_ = nullptr, *panel3_ = nullptr;
    QTimer* clock_ = nullptr;
    Workflow state_ = Workflow::EnteringData;
};

} // namespace velmora
