// Everything that blocks or touches the world outside the program: message
// boxes, file and print dialogs, the printer, the screen, the settings store
// and the clock. The real implementation uses Qt; tests install a recorder.
// This is the only place that may call QMessageBox, QFileDialog, QPrintDialog,
// QScreen or QSettings, or create a QPrinter.
#pragma once

#include <QDateTime>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

class QWidget;
class QDialog;
class QPrinter;

namespace velmora {

class Platform {
public:
    enum class Icon { None, Information, Warning, Critical, Question };
    enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
    enum class Answer { Ok, Cancel, Yes, No };

    virtual ~Platform() = default;

    // A modal message box.
    virtual Answer message(QWidget* parent, const QString& text, const QString& title, Icon icon,
                           Buttons buttons = Buttons::Ok) = 0;

    // Shows a dialog modally (the About window). The recorder only shows it.
    virtual void execModal(QDialog* dialog) = 0;

    // A save dialog with a filter; empty when cancelled.
    virtual QString saveFileName(QWidget* parent, const QString& filter) = 0;

    // A print dialog. On OK: the printer it set up (one copy a run: the
    // program prints its copies itself, each on new pages) and the number of
    // copies chosen (at least 1). Nothing on Cancel.
    struct PrintJob {
        std::unique_ptr<QPrinter> printer;
        int copies = 1;
    };
    virtual std::optional<PrintJob> printDialog(QWidget* parent) = 0;

    // The screen: its size in pixels and the twips per pixel.
    virtual QSize screenPixels() = 0;
    virtual int twipsPerPixelX() = 0;
    virtual int twipsPerPixelY() = 0;
    // The screen size in twips; by default the pixel size times the twips
    // per pixel (a test may give a size whose quotient is not exact).
    virtual QSize screenTwips() {
        const QSize px = screenPixels();
        return {px.width() * twipsPerPixelX(), px.height() * twipsPerPixelY()};
    }

    // The per-user settings store.
    virtual void writeSetting(const QString& app, const QString& section, const QString& key,
                              const QString& value) = 0;
    virtual QString readSetting(const QString& app, const QString& section, const QString& key) = 0;

    // The clock.
    virtual QDateTime now() = 0;
};

// The platform in force (the Qt one unless a test installed another).
Platform& platform();
// Installs `p` (not owned); nullptr restores the Qt platform.
void setPlatform(Platform* p);

// True when the screen is exactly 800 by 600 pixels, computed as the screen
// size in twips divided by the twips per pixel.
bool isSmallScreen();

// Writes `bytes` as the file `path` through a temporary file next to it that
// replaces the file only once it is complete (through a symbolic link, the
// file it points to; an existing file keeps its permissions). False on any
// failure, which leaves an existing file of that name as it was.
// `error`, when given, receives the reason of a failure.
bool replaceFile(const QString& path, const QByteArray& bytes, QString* error = nullptr);

// The clock's time in the system locale's long time format (without a time
// zone) and its date in the short date format, as the printouts stamp them.
QString longTimeText(const QDateTime& when);
QString shortDateText(const QDateTime& when);

// Twips to pixels and back, at the twips per pixel of the platform.
int twipsToPixelsX(int twips);
int twipsToPixelsY(int twips);
int pixelsToTwipsX(int pixels);
int pixelsToTwipsY(int pixels);

} // namespace velmora
