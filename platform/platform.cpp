// The Qt implementation of the platform: real message boxes, dialogs, the
// primary screen, QSettings and the system clock.
#include "platform/platform.h"

#include <QDialog>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QScreen>
#include <QSettings>

#include <QFile>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

namespace {

class QtPlatform final : public Platform {
public:
    Answer message(QWidget* parent, const QString& text, const QString& title, Icon icon,
                   Buttons buttons) override {
        QMessageBox box(parent);
        box.setWindowTitle(title);
        box.setText(text);
        switch (icon) {
        case Icon::None:
            box.setIcon(QMessageBox::NoIcon);
            break;
        case Icon::Information:
            box.setIcon(QMessageBox::Information);
            break;
        case Icon::Warning:
            box.setIcon(QMessageBox::Warning);
            break;
        case Icon::Critical:
            box.setIcon(QMessageBox::Critical);
            break;
        case Icon::Question:
            box.setIcon(QMessageBox::Question);
            break;
        }
        switch (buttons) {
        case Buttons::Ok:
            box.setStandardButtons(QMessageBox::Ok);
            break;
        case Buttons::OkCancel:
            box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
            break;
        case Buttons::YesNo:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            break;
        case Buttons::YesNoCancel:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            break;
        }
        switch (box.exec()) {
        case QMessageBox::Cancel:
            return Answer::Cancel;
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        default:
            // Escape on a box without Cancel answers as its only button does
            return buttons == Buttons::YesNo ? Answer::No : Answer::Ok;
        }
    }

    void execModal(QDialog* dialog) override { dialog->exec(); }

    QString saveFileName(QWidget* parent, const QString& filter) override {
        return QFileDialog::getSaveFileName(parent, QString(), QString(), filter);
    }

    std::optional<PrintJob> printDialog(QWidget* parent) override {
        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        QPrintDialog dialog(printer.get(), parent);
        if (dialog.exec() != QDialog::Accepted) return std::nullopt;
        PrintJob job;
        job.copies = std::max(1, printer->copyCount());
        printer->setCopyCount(1);
        job.printer = std::move(printer);
        return job;
    }

    QSize screenPixels() override {
        const QScreen* screen = QGuiApplication::primaryScreen();
        return screen ? screen->size() : QSize(800, 600);
    }
    int twipsPerPixelX() override { return twipsPerPixel(true); }
    int twipsPerPixelY() override { return twipsPerPixel(false); }

    void writeSetting(const QString& app, const QString& section, const QString& key,
                      const QString& value) override {
        QSettings settings(app, app);
        settings.setValue(section + QLatin1Char('/') + key, value);
    }
    QString readSetting(const QString& app, const QString& section, const QString& key) override {
        const QSettings settings(app, app);
        return settings.value(section + QLatin1Char('/') + key).toString();
    }

    QDateTime now() override { return QDateTime::currentDateTime(); }

private:
    static int twipsPerPixel(bool x) {
        const QScreen* screen = QGuiApplication::primaryScreen();
        const double dpi =
            screen ? (x ? screen->logicalDotsPerInchX() : screen->logicalDotsPerInchY()) : 96.0;
        const int tpp = dpi > 0 ? static_cast<int>(std::lround(1440.0 / dpi)) : 15;
        return tpp > 0 ? tpp : 15;
    }
};

Platform* installed = nullptr;

} // namespace

Platform& platform() {
    static QtPlatform qt;
    return installed ? *installed : qt;
}

void setPlatform(Platform* p) {
    installed = p;
}

bool isSmallScreen() {
    Platform& p = platform();
    const QSize twips = p.screenTwips();
    const int tx = p.twipsPerPixelX();
    const int ty = p.twipsPerPixelY();
    if (tx <= 0 || ty <= 0) return false;
    return static_cast<double>(twips.width()) / tx == 800.0 &&
           static_cast<double>(twips.height()) / ty == 600.0;
}

bool replaceFile(const QString& path, const QByteArray& bytes, QString* error) {
    auto fail = [error](int code) {
        if (error) *error = QString::fromLocal8Bit(std::strerror(code));
        return false;
    };
    if (path.isEmpty()) return fail(ENOENT);
    std::string target = QFile::encodeName(path).toStdString();
    struct stat existing {};
    const bool exists = ::stat(target.c_str(), &existing) == 0;
    if (exists && !S_ISREG(existing.st_mode))
        return fail(S_ISDIR(existing.st_mode) ? EISDIR : EINVAL);
    if (exists) {
        // through a symbolic link the file it points to is replaced
        if (char* real = ::realpath(target.c_str(), nullptr)) {
            target = real;
            std::free(real);
        }
    }

    // next to the target, so that the rename stays on one file system
    std::string temp;
    int fd = -1;
    for (int attempt = 0; fd < 0; ++attempt) {
        temp = target + ".tmp" + std::to_string(::getpid()) + "-" + std::to_string(attempt);
        fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && (errno != EEXIST || attempt > 100)) return fail(errno);
    }
    int code = 0; // the first failure's errno
    auto check = [&code](bool done) {
        if (!done && code == 0) code = errno ? errno : EIO;
        return done;
    };
    if (exists) check(::fchmod(fd, existing.st_mode & 07777) == 0);
    for (qsizetype done = 0; code == 0 && done < bytes.size();) {
        errno = 0;
        const ssize_t n =
            ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (n < 0 && errno == EINTR) continue;
        if (check(n > 0)) done += n;
    }
    if (code == 0) check(::fsync(fd) == 0);
    check(::close(fd) == 0);
    if (code == 0) check(::rename(temp.c_str(), target.c_str()) == 0);
    if (code == 0) return true;
    ::unlink(temp.c_str());
    return fail(code);
}

QString longTimeText(const QDateTime& when) {
    const QLocale locale = QLocale::system();
    QString format = locale.timeFormat(QLocale::LongFormat);
    format.remove(QRegularExpression(QStringLiteral("\\s*\\bt+\\b\\s*")));
    return locale.toString(when.time(), format.trimmed());
}

QString shortDateText(const QDateTime& when) {
    return QLocale::system().toString(when.date(), QLocale::ShortFormat);
}

int twipsToPixelsX(int twips) {
    const int tpp = platform().twipsPerPixelX();
    return tpp > 0 ? static_cast<int>(std::lround(static_cast<double>(twips) / tpp)) : twips / 15;
}
int twipsToPixelsY(int twips) {
    const int tpp = platform().twipsPerPixelY();
    return tpp > 0 ? static_cast<int>(std::lround(static_cast<double>(twips) / tpp)) : twips / 15;
}
int pixelsToTwipsX(int pixels) {
    return pixels * platform().twipsPerPixelX();
}
int pixelsToTwipsY(int pixels) {
    return pixels * platform().twipsPerPixelY();
}

} // namespace velmora
