// A platform for tests: records messages and modal dialogs instead of
// blocking, with a fake screen, settings store, clock and dialogs' answers.
// Constructing one installs it; destroying it restores the Qt platform.
#pragma once

#include "platform/platform.h"

#include <QDialog>
#include <QMap>
#include <QPointer>
#include <QPrinter>
#include <QStringList>

namespace velmora::test {

class RecordingPlatform : public Platform {
public:
    struct Message {
        QString text;
        Icon icon;
    };
    RecordingPlatform() { setPlatform(this); }
    ~RecordingPlatform() override {
        if (&platform() == this) setPlatform(nullptr);
    }
    RecordingPlatform(const RecordingPlatform&) = delete;
    RecordingPlatform& operator=(const RecordingPlatform&) = delete;

    QList<Message> messages;
    QList<QPointer<QDialog>> modalDialogs; // shown, not executed
    QStringList saveFilters;               // of every save dialog asked for
    QMap<QString, QString> settings;       // "app/section/key" -> value
    int settingWrites = 0;
    QString saveName;               // the save dialog's file name (empty: cancelled)
    std::optional<int> printCopies; // the print dialog's copies (empty: cancelled)
    QString printToPdf;             // the PDF file the chosen printer writes
    int printDialogs = 0;
    QSize screen{1024, 768};
    int tppX = 15, tppY = 15;
    QSize twipsOverride; // when valid, the screen size in twips
    QDateTime clock{QDate(2024, 5, 17), QTime(10, 30)};

    void useSmallScreen() { screen = QSize(800, 600); }
    QStringList texts() const {
        QStringList out;
        for (const Message& m : messages)
            out << m.text;
        return out;
    }
    const Message& last() const { return messages.last(); }
    void clear() { messages.clear(), modalDialogs.clear(), saveFilters.clear(); }
    static QString settingKey(const QString& key) { return "Velmora/Settings/" + key; }

    Answer message(QWidget*, const QString& text, const QString&, Icon icon, Buttons) override {
        messages.append({text, icon});
        return Answer::Ok;
    }
    void execModal(QDialog* dialog) override {
        modalDialogs.append(dialog);
        dialog->show();
    }
    QString saveFileName(QWidget*, const QString& filter) override {
        saveFilters.append(filter);
        return saveName;
    }
    std::optional<PrintJob> printDialog(QWidget*) override {
        ++printDialogs;
        if (!printCopies) return std::nullopt;
        PrintJob job{std::make_unique<QPrinter>(QPrinter::HighResolution), *printCopies};
        job.printer->setOutputFormat(QPrinter::PdfFormat);
        job.printer->setOutputFileName(printToPdf);
        return job;
    }
    QSize screenPixels() override { return screen; }
    int twipsPerPixelX() override { return tppX; }
    int twipsPerPixelY() override { return tppY; }
    QSize screenTwips() override {
        return twipsOverride.isValid() ? twipsOverride : Platform::screenTwips();
    }
    void writeSetting(const QString& app, const QString& section, const QString& key,
                      const QString& value) override {
        ++settingWrites;
        settings.insert(app + '/' + section + '/' + key, value);
    }
    QString readSetting(const QString& app, const QString& section, const QString& key) override {
        return settings.value(app + '/' + section + '/' + key);
    }
    QDateTime now() override { return clock; }
};

} // namespace velmora::test
