// What every window of the desktop program shares: the colour values of the
// boxes and buttons (blue-green-red order, as they are written throughout the
// program), reading a colour back, the Enabled flag of a control as its own
// property, and geometry in twips.
#pragma once

#include <QCloseEvent>
#include <QColor>
#include <QRect>
#include <QWidget>
#include <QtGlobal>

#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

class QLineEdit;

namespace velmora {

namespace vb {
constexpr quint32 Cyan = 0x00FFFF00;      // required input
constexpr quint32 Yellow = 0x0000FFFF;    // optional input used by the settings
constexpr quint32 Green = 0x0000FF00;     // carbonate pair under Lewis and Randall
constexpr quint32 LightBlue = 0x00FFC0C0; // input not used
constexpr quint32 Red = 0x000000FF;
constexpr quint32 White = 0x00FFFFFF;
constexpr quint32 ReadButton = 0x00FF8080;
constexpr quint32 CalcButton = 0x00C0FFFF;
constexpr quint32 ButtonFace = 0x8000000F;       // the system button face
constexpr quint32 WindowBackground = 0x80000005; // the system window background
} // namespace vb

// Numbers as the user types and reads them, with the decimal separator of the
// user's locale; the program's own number texts write a point. Under a locale
// with a decimal comma, "7,5" is the number 7.5 and "7.5" is no number.
QChar decimalSeparator();
// For tests: the separator in force (a null QChar goes back to the locale's).
void setDecimalSeparator(QChar separator);
// A box's text as the program's number texts write it.
std::string numberFromBox(const QString& text);
// A number text of the program as a box shows it.
QString numberToBox(const std::string& text);

// The windows of the program that are loaded, in the order they were loaded.
const std::vector<QWidget*>& loadedWindows();
bool isLoadedWindow(const QWidget* w);
void windowLoaded(QWidget* w);
void windowUnloaded(QWidget* w);

// The one application-wide instance of the window class W (derived from
// Base, a QWidget): created on first use, possibly without being shown; a
// window that is closed is unloaded (deleted, and forgotten at once), so its
// next use creates it afresh in its design state. W declares `friend
// SingleWindow;` and a private default constructor.
template <class W, class Base> class SingleWindow : public Base {
public:
    static W* instance() {
        if (!current_) new W(); // the constructor registers it
        return static_cast<W*>(current_);
    }
    static bool isLoaded() { return current_ != nullptr; }
    ~SingleWindow() override { forget(); }
    SingleWindow(const SingleWindow&) = delete;
    SingleWindow& operator=(const SingleWindow&) = delete;

protected:
    template <class... Args>
    requires(!(std::is_base_of_v<SingleWindow, std::remove_cvref_t<Args>> ||
               ...)) explicit SingleWindow(Args&&... args)
        : Base(std::forward<Args>(args)...) {
        current_ = this;
        this->setAttribute(Qt::WA_DeleteOnClose);
        windowLoaded(this);
    }
    // Closing always unloads (a dialog's own close handling, which would
    // run its reject(), is not wanted here).
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        forget();
    }
    bool isCurrent() const { return current_ == this; }
    // The window is being unloaded: the next instance() creates a new one.
    void forget() {
        if (current_ == this) current_ = nullptr;
        windowUnloaded(this);
    }

private:
    static inline SingleWindow* current_ = nullptr;
};

// The colour of a blue-green-red value; system colours (high bit set) come
// from the application palette.
QColor vbColor(quint32 bgr);

// Gives `w` a back colour: the Base role of a text box, the Button role of a
// button (painted by the style), the Window role of anything else. A fixed
// colour fixes the colour of the text on it too (black on light colours), so
// that a dark desktop palette never puts light text on it; a system colour
// brings back the system colours of both.
void setBackColor(QWidget* w, quint32 bgr);
// The text colour that reads best on `back` (black or white), and the one of
// disabled text on it.
QColor textColourOn(const QColor& back);
QColor disabledTextColourOn(const QColor& back);
// The value last given by setBackColor (the system colour when none was).
quint32 backColor(const QWidget* w);
// The back colour as the widget's palette paints it.
QColor paintedBackColor(const QWidget* w);

// The control's own Enabled flag, whatever its containers are (a box inside
// a disabled frame keeps its own flag).
bool enabledFlag(const QWidget* w);

// Enables or disables each of the controls.
void setEnabledAll(std::initializer_list<QWidget*> controls, bool enabled);

// Geometry in twips at the platform's twips per pixel. For a window the
// position is that of its frame.
void setTwipsGeometry(QWidget* w, int left, int top, int width, int height);
void moveTwips(QWidget* w, int left, int top);
// A window's geometry in twips: left, top, width, height.
QRect twipsGeometry(const QWidget* w);

} // namespace velmora
