// A platform for tests: records messages and modal dialogs instead of
// blocking, answers as preset, with a fake screen, settings and clock.
// Constructing one installs it; destroying it restores the Qt platform.
#pragma once

#include "platform/platform.h"

#include <QDialog>
#include <QList>
#include <QMap>
#include <QPointer>
#include <QStringList>

namespace velmora::test {

class RecordingPlatform : public Platform {
public:
    struct Message {
        QString text;
        QString title;
        Icon icon = Icon::None;
        Buttons buttons = Buttons::Ok;
    };

    RecordingPlatform();
    ~RecordingPlatform() override;
    RecordingPlatform(const RecordingPlatform&) = delete;
    RecordingPlatform& operator=(const RecordingPlatform&) = delete;

    QList<Message> messages;
    QList<QPointer<QDialog>> modalDialogs; // shown (not executed) by execModal
    QStringList saveFilters;               // the filter of every save dialog asked for
    QMap<QString, QString> settings;       // "app/section/key" -> value
    int settingWrites = 0;

    Answer answer = Answer::Ok;     // the answer to a message when `answers` is empty
    QList<Answer> answers;          // answers used first, one per message
    QString saveName;               // the file name the save dialog returns (empty: cancelled)
    std::optional<int> printCopies; // the print dialog's copies (empty: cancelled)
    QString printToPdf;             // the PDF file the chosen printer writes
    int printDialogs = 0;           // how many print dialogs were shown
    QSize screen{1024, 768};        // pixels
    int tppX = 15, tppY = 15;
    QSize twipsOverride; // when valid, the screen size in twips
    QDateTime clock;     // fixed; 17 May 2024 10:30:00 unless set

    // The 800 x 600 screen at 15 twips per pixel.
    void useSmallScreen() { screen = QSize(800, 600); }

    QStringList texts() const;
    const Message& last() const { return messages.last(); }
    void clear();

    Answer message(QWidget* parent, const QString& text, const QString& title, Icon icon,
                   Buttons buttons) override;
    void execModal(QDialog* dialog) override;
    QString saveFileName(QWidget* parent, const QString& filter) override;
    std::optional<PrintJob> printDialog(QWidget* parent) override;
    QSize screenPixels() override { return screen; }
    int twipsPerPixelX() override { return tppX; }
    int twipsPerPixelY() override { return tppY; }
    QSize screenTwips() override;
    void writeSetting(const QString& app, const QString& section, const QString& key,
                      const QString& value) override;
    QString readSetting(const QString& app, const QString& section, const QString& key) override;
    QDateTime now() override { return clock; }

    static QString settingKey(const QString& app, const QString& section, const QString& key) {
        return app + QLatin1Char('/') + section + QLatin1Char('/') + key;
    }
};

} // namespace velmora::test
