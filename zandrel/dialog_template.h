// Dialogs laid out the way a Windows dialog template lays them out: places
// and sizes in dialog units, turned into pixels with the dialog font.
#pragma once
#include <QFont>
#include <QIcon>
#include <QRect>
#include <QString>
#include <span>

class QDialog;
class QFontMetrics;
class QWidget;

namespace zandrel {

// One horizontal dialog unit is a quarter of the font's average character
// width, one vertical unit an eighth of its height; rounded like MulDiv.
class DialogUnits {
 public:
  explicit DialogUnits(const QFontMetrics& metrics);
  int X(int units) const { return Scale(units, m_baseX, 4); }
  int Y(int units) const { return Scale(units, m_baseY, 8); }
  QRect Rect(int x, int y, int width, int height) const { return QRect(X(x), Y(y), X(width), Y(height)); }

 private:
  static int Scale(int units, int base, int divisor) { return (units * base + divisor / 2) / divisor; }
  int m_baseX;
  int m_baseY;
};

enum class ControlKind {
  PushButton,     // never the default button
  DefPushButton,  // the dialog's default button
  Label,          // static text, no mnemonic
  Edit,           // one line, border, scrolls horizontally
  Icon,           // static picture of the application icon, at its own size
};

struct ControlTemplate {
  int id;
  ControlKind kind;
  const char* text;
  int x, y, width, height;  // dialog units
};

struct DialogTemplate {
  const char* caption;
  int width, height;  // dialog units, client area
  bool minimizeBox;
  std::span<const ControlTemplate> controls;  // also the tab order
};

// The templates' "MS Sans Serif" 8 point, or the nearest sans serif the
// platform has.
QFont DialogFont();

// Gives the dialog its font, caption, frame and size, and creates the
// controls in template order, each tagged with its identifier.
void ApplyDialogTemplate(QDialog& dialog, const DialogTemplate& dialogTemplate);

// The control that carries the identifier, or null (the first one for
// IDC_STATIC).
QWidget* FindControl(const QWidget& dialog, int id);

// The string table; an unknown identifier gives an empty string.
QString LoadResourceString(int id);

// Icon resource IDR_MAINFRAME, 32 x 32 and 16 x 16.
QIcon ApplicationIcon();

}  // namespace zandrel
