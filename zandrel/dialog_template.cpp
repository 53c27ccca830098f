#include "dialog_template.h"

#include <QDialog>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVariant>

#include "resource.h"

// Resources of a static library are registered by name from outside any
// namespace; doing it here keeps the icon working for every user of the library.
static void RegisterZandrelResources() {
  static const bool registered = [] {
    Q_INIT_RESOURCE(zandrel);
    return true;
  }();
  (void)registered;
}

namespace zandrel {
namespace {

constexpr char kControlIdProperty[] = "controlId";
constexpr int kIconPixels = 32;

struct StringResource {
  int id;
  const char* text;
};

constexpr StringResource kStringTable[] = {
    {IDS_ABOUTBOX, "&About Zandrel..."},
};

QWidget* CreateControl(QDialog& dialog, const ControlTemplate& control, const DialogUnits& units) {
  const QString text = QString::fromLatin1(control.text);
  const QRect place = units.Rect(control.x, control.y, control.width, control.height);
  QWidget* widget = nullptr;
  switch (control.kind) {
    case ControlKind::PushButton:
    case ControlKind::DefPushButton: {
      auto* button = new QPushButton(text, &dialog);
      const bool isDefault = control.kind == ControlKind::DefPushButton;
      button->setAutoDefault(isDefault);
      button->setDefault(isDefault);
      widget = button;
      break;
    }
    case ControlKind::Label: {
      auto* label = new QLabel(text, &dialog);
      label->setTextFormat(Qt::PlainText);
      label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
      widget = label;
      break;
    }
    case ControlKind::Edit: {
      auto* edit = new QLineEdit(text, &dialog);
      // A file dropped on a field belongs to the dialog, not to the field's text.
      edit->setAcceptDrops(false);
      widget = edit;
      break;
    }
    case ControlKind::Icon: {
      auto* picture = new QLabel(&dialog);
      picture->setPixmap(ApplicationIcon().pixmap(QSize(kIconPixels, kIconPixels)));
      widget = picture;
      break;
    }
  }
  if (control.kind == ControlKind::Icon) {
    widget->setGeometry(QRect(place.topLeft(), QSize(kIconPixels, kIconPixels)));
  } else {
    widget->setGeometry(place);
  }
  widget->setProperty(kControlIdProperty, control.id);
  return widget;
}

}  // namespace

DialogUnits::DialogUnits(const QFontMetrics& metrics)
    : m_baseX(metrics.averageCharWidth()), m_baseY(metrics.height()) {}

QFont DialogFont() {
  QFont font;
  // Microsoft Sans Serif is the scalable face with the old bitmap face's metrics.
  font.setFamilies({QStringLiteral("Microsoft Sans Serif"), QStringLiteral("MS Sans Serif")});
  font.setStyleHint(QFont::SansSerif);
  font.setPointSize(8);
  return font;
}

void ApplyDialogTemplate(QDialog& dialog, const DialogTemplate& dialogTemplate) {
  dialog.setFont(DialogFont());
  dialog.setWindowTitle(QString::fromLatin1(dialogTemplate.caption));
  Qt::WindowFlags flags =
      Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
  if (dialogTemplate.minimizeBox) flags |= Qt::WindowMinimizeButtonHint;
  dialog.setWindowFlags(flags);

  const DialogUnits units(QFontMetrics(dialog.font()));
  dialog.setFixedSize(units.X(dialogTemplate.width), units.Y(dialogTemplate.height));

  QWidget* previousTabStop = nullptr;
  for (const ControlTemplate& control : dialogTemplate.controls) {
    QWidget* widget = CreateControl(dialog, control, units);
    if (!(widget->focusPolicy() & Qt::TabFocus)) continue;
    if (previousTabStop) QWidget::setTabOrder(previousTabStop, widget);
    previousTabStop = widget;
  }
}

QWidget* FindControl(const QWidget& dialog, int id) {
  const auto children = dialog.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
  for (QWidget* child : children) {
    const QVariant value = child->property(kControlIdProperty);
    if (value.isValid() && value.toInt() == id) return child;
  }
  return nullptr;
}

QString LoadResourceString(int id) {
  for (const StringResource& entry : kStringTable) {
    if (entry.id == id) return QString::fromLatin1(entry.text);
  }
  return {};
}

QIcon ApplicationIcon() {
  RegisterZandrelResources();
  QIcon icon;
  icon.addFile(QStringLiteral(":/zandrel/icon32.png"), QSize(32, 32));
  icon.addFile(QStringLiteral(":/zandrel/icon16.png"), QSize(16, 16));
  return icon;
}

}  // namespace zandrel
