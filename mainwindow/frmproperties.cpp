#include "mainwindow/frmproperties.h"

#include "mainwindow/frmmain.h"
#include "mainwindow/properties.h"
#include "windowkit/windowsupport.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace velmora {

namespace {

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

} // namespace

frmproperties::frmproperties() {
    setObjectName("frmproperties");
    setWindowTitle("Sample properties");

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

    auto* ok = cmdOK_ = new QPushButton("OK", this);
    ok->setObjectName("cmdOK");
    ok->setDefault(true);
    auto* cancel = cmdCancel_ = new QPushButton("Cancel", this);
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
    const QString organ = organization();
    const QString when = date();
    const QString where = location();

    if (frmMain::isLoaded()) {
        frmMain* m = frmMain::instance();
        // Each text behind its prefix; an empty field leaves its box as it was.
        const std::pair<QLineEdit*, QString> shown[] = {
            {m->txtnam, name.isEmpty() ? QString() : "operator name :" + name + " " + familyName()},
            {m->txtorg, organ.isEmpty() ? QString() : "Organization name :" + organ},
            {m->txtdat, when.isEmpty() ? QString() : "Date of samplling :" + when},
            {m->txtloc, where.isEmpty() ? QString() : "sample location name :" + where},
        };
        for (const auto& [box, text] : shown) {
            box->setEnabled(true);
            QFont f = box->font();
            f.setBold(true);
            box->setFont(f);
        }
        for (const auto& [box, text] : shown) {
            if (text.isEmpty()) continue;
            box->setText(text);
            box->setCursorPosition(0);
            m->frasample->setEnabled(true);
        }
    }
    hide();
}

void frmproperties::cmdCancel_Click() {
    close();
}

void frmproperties::keyPressEvent(QKeyEvent* event) {
    const bool plain = event->modifiers() == Qt::NoModifier ||
                       (event->modifiers() == Qt::KeypadModifier && event->key() == Qt::Key_Enter);
    if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        auto* focused = qobject_cast<QPushButton*>(focusWidget());
        (focused && focused->isEnabled() ? focused : cmdOK_)->click();
        return;
    }
    if (plain && event->key() == Qt::Key_Escape) {
        cmdCancel_->click();
        return;
    }
    SingleWindow::keyPressEvent(event);
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
