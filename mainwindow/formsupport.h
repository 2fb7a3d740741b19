// What every window of the desktop program shares: the colour values of the
// boxes and buttons (blue-green-red order, as they are written throughout the
// program), reading a colour back, the Enabled flag of a control as its own
// property, and geometry in twips.
#pragma once

#include <QColor>
#include <QRect>
#include <QtGlobal>

class QWidget;

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

// The colour of a blue-green-red value; system colours (high bit set) come
// from the application palette.
QColor vbColor(quint32 bgr);

// Gives `w` a back colour: the Base role of a text box, the Button role of a
// button (painted by the style), the Window role of anything else.
void setBackColor(QWidget* w, quint32 bgr);
// The value last given by setBackColor (the system colour when none was).
quint32 backColor(const QWidget* w);
// The back colour as the widget's palette paints it.
QColor paintedBackColor(const QWidget* w);

// The control's own Enabled flag, whatever its containers are (a box inside
// a disabled frame keeps its own flag).
bool enabledFlag(const QWidget* w);

// Geometry in twips at the platform's twips per pixel. For a window the
// position is that of its frame.
void setTwipsGeometry(QWidget* w, int left, int top, int width, int height);
void moveTwips(QWidget* w, int left, int top);
// A window's geometry in twips: left, top, width, height.
QRect twipsGeometry(const QWidget* w);

} // namespace velmora
