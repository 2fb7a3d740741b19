#include "mainwindow/frmproperties.h"

#include "mainwindow/properties.h"
#include "results/windowsupport.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace velmora {

namespace {

frmproperties* s_instance = nullptr;

QLineEdit* addRow(QGroupBox* frame, QFormLayout* form, const char* name, const char* label) {
    auto* box = new QLineEdit(frame);
    box->setObjectName(name);
    box->setMinimumWidth(240);
    auto* caption = new QLabel(label, frame);
    caption->setObjectName(QStringLiteral("lbl%1").arg(QString::fromLatin1(name + 3)));
    caption->setBuddy(box);
    form->addRow(caption, box);
    return box;
}

// Enables a main-window box, makes it bold and, when given, sets its text.
void showOnMainWindow(const char* name, const QString* text) {
    QLineEdit* box = mainControl<QLineEdit>(name);
    if (!box) return;
    box->setEnabled(true);
    QFont f = box->font();
    f.setBold(true);
    box->setFont(f);
    if (text) {
        box->setText(*text);
        box->setCursorPosition(0);
    }
}

void enableSampleFrame() {
    if (QWidget* frame = mainControl<QWidget>("frasample")) frame->setEnabled(true);
}

} // namespace

frmproperties* frmproperties::instance() {
    if (!s_instance) s_instance = new frmproperties;
    return s_instance;
}

bool frmproperties::isLoaded() {
    return s_instance != nullptr;
}

frmproperties::~frmproperties() {
    if (s_instance == this) s_instance = nullptr;
}

frmproperties::frmproperties() {
    setObjectName("frmproperties");
    setWindowTitle("Sample properties");
    setAttribute(Qt::WA_DeleteOnClose);

    auto* frame1 = new QGroupBox("Operator and organization :", this);
    frame1->setObjectName("Frame1");
    auto* form1 = new QFormLayout(frame1);
    txtname_ = addRow(frame1, form1, "txtname", "Operator name :");
    txtfamily_ = addRow(frame1, form1, "txtfamily", "Operator family name :");
    txtorgan_ = addRow(frame1, form1, "txtorgan", "Organization name :");

    auto* frame2 = new QGroupBox("Date and location :", this);
    frame2->setObjectName("Frame2");
    auto* form2 = new QFormLayout(frame2);
    txtdate_ = addRow(frame2, form2, "txtdate", "Date of sampling :");
    txtlocation_ = addRow(frame2, form2, "txtlocation", "Location name :");

    auto* ok = new QPushButton("OK", this);
    ok->setObjectName("cmdOK");
    ok->setDefault(true);
    auto* cancel = new QPushButton("Cancel", this);
    cancel->setObjectName("cmdCancel");
    connect(ok, &QPushButton::clicked, this, &frmproperties::cmdOK_Click);
    connect(cancel, &QPushButton::clicked, this, &frmproperties::cmdCancel_Click);

    // One label column for both frames.
    int labelWidth = 0;
    for (QLabel* l : findChildren<QLabel*>())
        labelWidth = std::max(labelWidth, l->sizeHint().width());
    for (QLabel* l : findChildren<QLabel*>())
        l->setMinimumWidth(labelWidth);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* outer = new QVBoxLayout(this);
    outer->addWidget(frame1);
    outer->addWidget(frame2);
    outer->addLayout(buttons);
    adjustSize();
}

QString frmproperties::operatorName() const {
    return txtname_->text();
}
QString frmproperties::familyName() const {
    return txtfamily_->text();
}
QString frmproperties::organization() const {
    return txtorgan_->text();
}
QString frmproperties::date() const {
    return txtdate_->text();
}
QString frmproperties::location() const {
    return txtlocation_->text();
}

void frmproperties::cmdOK_Click() {
    const QString name = operatorName();
    const QString family = familyName();
    const QString organ = organization();
    const QString when = date();
    const QString where = location();

    for (const char* box : {"txtnam", "txtorg", "txtdat", "txtloc"})
        showOnMainWindow(box, nullptr);
    if (!name.isEmpty()) {
        const QString text = "operator name :" + name + " " + family;
        showOnMainWindow("txtnam", &text);
        enableSampleFrame();
    }
    if (!organ.isEmpty()) {
        const QString text = "Organization name :" + organ;
        showOnMainWindow("txtorg", &text);
        enableSampleFrame();
    }
    if (!when.isEmpty()) {
        const QString text = "Date of samplling :" + when;
        showOnMainWindow("txtdat", &text);
        enableSampleFrame();
    }
    if (!where.isEmpty()) {
        const QString text = "sample location name :" + where;
        showOnMainWindow("txtloc", &text);
        enableSampleFrame();
    }
    hide();
}

void frmproperties::cmdCancel_Click() {
    close();
}

void openPropertiesDialog() {
    frmproperties* dialog = frmproperties::instance();
    placeOnSmallScreen(dialog, 1200, 2000);
    showInFront(dialog);
}

SampleProperties currentSampleProperties() {
    SampleProperties p;
    if (!frmproperties::isLoaded()) return p;
    const frmproperties* d = frmproperties::instance();
    p.operatorName = d->operatorName().toStdString();
    p.familyName = d->familyName().toStdString();
    p.organization = d->organization().toStdString();
    p.date = d->date().toStdString();
    p.location = d->location().toStdString();
    return p;
}

} // namespace velmora
