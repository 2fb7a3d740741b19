#include "tests/support/recordingplatform.h"

#include <QPrinter>

namespace velmora::test {

RecordingPlatform::RecordingPlatform() : clock(QDate(2024, 5, 17), QTime(10, 30, 0)) {
    setPlatform(this);
}

RecordingPlatform::~RecordingPlatform() {
    if (&platform() == this) setPlatform(nullptr);
}

Platform::Answer RecordingPlatform::message(QWidget*, const QString& text, const QString& title,
                                            Icon icon, Buttons buttons) {
    messages.append({text, title, icon, buttons});
    return answers.isEmpty() ? answer : answers.takeFirst();
}

void RecordingPlatform::execModal(QDialog* dialog) {
    modalDialogs.append(dialog);
    dialog->show();
}

QString RecordingPlatform::saveFileName(QWidget*, const QString& filter) {
    saveFilters.append(filter);
    return saveName;
}

std::optional<Platform::PrintJob> RecordingPlatform::printDialog(QWidget*) {
    ++printDialogs;
    if (!printCopies) return std::nullopt;
    PrintJob job;
    job.printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    job.printer->setOutputFormat(QPrinter::PdfFormat);
    job.printer->setOutputFileName(printToPdf);
    job.copies = *printCopies;
    return job;
}

QSize RecordingPlatform::screenTwips() {
    if (twipsOverride.isValid()) return twipsOverride;
    return {screen.width() * tppX, screen.height() * tppY};
}

void RecordingPlatform::writeSetting(const QString& app, const QString& section, const QString& key,
                                     const QString& value) {
    ++settingWrites;
    settings.insert(settingKey(app, section, key), value);
}

QString RecordingPlatform::readSetting(const QString& app, const QString& section,
                                       const QString& key) {
    return settings.value(settingKey(app, section, key));
}

QStringList RecordingPlatform::texts() const {
    QStringList out;
    for (const Message& m : messages)
        out.append(m.text);
    return out;
}

void RecordingPlatform::clear() {
    messages.clear();
    modalDialogs.clear();
    saveFilters.clear();
}

} // namespace velmora::test
