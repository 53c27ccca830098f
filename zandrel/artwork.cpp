// Draws the application icon (a trace sheet with a "translate" arrow, in the
// 16-colour VGA palette) as PNG files, a Windows .ico and a scalable SVG of
// the 32-pixel picture, and takes the README's picture of the main dialog.
//   zandrel_artwork icons <dir>
//   zandrel_artwork screenshot <file.png>
#include <QApplication>
#include <QColor>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QPolygon>
#include <cstdio>
#include <vector>

#include "resource.h"
#include "zandreldlg.h"

namespace {

constexpr QRgb kPalette[16] = {
    0xff000000, 0xff800000, 0xff008000, 0xff808000, 0xff000080, 0xff800080, 0xff008080, 0xffc0c0c0,
    0xff808080, 0xffff0000, 0xff00ff00, 0xffffff00, 0xff0000ff, 0xffff00ff, 0xff00ffff, 0xffffffff,
};
constexpr QRgb kBlack = kPalette[0];
constexpr QRgb kNavy = kPalette[4];
constexpr QRgb kSilver = kPalette[7];
constexpr QRgb kGray = kPalette[8];
constexpr QRgb kBlue = kPalette[12];
constexpr QRgb kWhite = kPalette[15];

// Where the parts of the picture lie for one icon size, in pixels.
struct IconLayout {
  int size;
  QRect page;                                // the trace sheet, outline included
  int fold;                                  // edge of the folded corner
  int firstLine, lineStep, lineCount, cell;  // rows of hex cells
  double badgeX, badgeY, badgeRadius, rim;   // the round "translate" badge
  QPolygon arrow;
};

const IconLayout kLayouts[] = {
    {32, QRect(4, 1, 19, 29), 6, 10, 3, 6, 2, 23.5, 23.5, 7.9, 1.2,
     QPolygon({{18, 22}, {24, 22}, {24, 19}, {28, 23}, {28, 24}, {24, 28}, {24, 25}, {18, 25}})},
    {16, QRect(1, 0, 10, 15), 3, 4, 2, 5, 1, 11.0, 11.0, 5.0, 1.0,
     QPolygon({{7, 10}, {10, 10}, {10, 7}, {13, 10}, {13, 11}, {10, 14}, {10, 11}, {7, 11}})},
};

QImage DrawIcon(const IconLayout& layout) {
  QImage image(layout.size, layout.size, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  const QRect& page = layout.page;
  const auto inPage = [&](int x, int y) {
    // The top right corner is folded over: cut off above its diagonal.
    return page.contains(x, y) && (x - (page.right() - layout.fold)) <= (y - page.top());
  };
  for (int y = 0; y < layout.size; ++y) {
    for (int x = 0; x < layout.size; ++x) {
      if (!inPage(x, y)) continue;
      const bool edge = !inPage(x - 1, y) || !inPage(x + 1, y) || !inPage(x, y - 1) || !inPage(x, y + 1);
      image.setPixel(x, y, edge ? kBlack : kWhite);
    }
  }
  // The folded flap.
  for (int i = 0; i <= layout.fold; ++i) {
    for (int x = page.right() - layout.fold; x <= page.right() - layout.fold + i; ++x) {
      const int y = page.top() + i;
      const bool edge = i == layout.fold || x == page.right() - layout.fold || x == page.right() - layout.fold + i;
      image.setPixel(x, y, edge ? kBlack : kSilver);
    }
  }
  // Hex cells of the trace: pairs of digits with a gap between them.
  for (int line = 0; line < layout.lineCount; ++line) {
    const int y = layout.firstLine + line * layout.lineStep;
    for (int x = page.left() + 2; x <= page.right() - 2; ++x) {
      if ((x - page.left() - 2) % (layout.cell + 1) == layout.cell) continue;
      if (image.pixel(x, y) == kWhite) image.setPixel(x, y, kGray);
    }
  }
  // The badge, with a dark rim.
  for (int y = 0; y < layout.size; ++y) {
    for (int x = 0; x < layout.size; ++x) {
      const double dx = x + 0.5 - layout.badgeX;
      const double dy = y + 0.5 - layout.badgeY;
      const double distance2 = dx * dx + dy * dy;
      const double r = layout.badgeRadius;
      if (distance2 <= r * r) image.setPixel(x, y, distance2 >= (r - layout.rim) * (r - layout.rim) ? kNavy : kBlue);
    }
  }
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setPen(QColor(kWhite));
  painter.setBrush(QColor(kWhite));
  painter.drawPolygon(layout.arrow);
  return image;
}

int PaletteIndex(QRgb pixel) {
  for (int i = 0; i < 16; ++i) {
    if (kPalette[i] == pixel) return i;
  }
  return 0;
}

// One 4-bit colour image with its transparency mask, as an icon file stores it.
QByteArray IconBitmap(const QImage& image) {
  QByteArray bytes;
  QDataStream out(&bytes, QIODevice::WriteOnly);
  out.setByteOrder(QDataStream::LittleEndian);
  const int size = image.width();
  const int colourRow = ((size * 4 + 31) / 32) * 4;
  const int maskRow = ((size + 31) / 32) * 4;
  out << quint32(40) << qint32(size) << qint32(size * 2) << quint16(1) << quint16(4) << quint32(0)
      << quint32((colourRow + maskRow) * size) << qint32(0) << qint32(0) << quint32(16) << quint32(0);
  for (QRgb colour : kPalette)
    out << quint8(qBlue(colour)) << quint8(qGreen(colour)) << quint8(qRed(colour)) << quint8(0);
  for (int y = size - 1; y >= 0; --y) {  // bottom-up rows
    std::vector<quint8> row(colourRow, 0);
    for (int x = 0; x < size; ++x) {
      const QRgb pixel = image.pixel(x, y);
      const int index = qAlpha(pixel) == 0 ? 0 : PaletteIndex(pixel);
      row[x / 2] |= static_cast<quint8>(x % 2 == 0 ? index << 4 : index);
    }
    out.writeRawData(reinterpret_cast<const char*>(row.data()), colourRow);
  }
  for (int y = size - 1; y >= 0; --y) {
    std::vector<quint8> row(maskRow, 0);
    for (int x = 0; x < size; ++x) {
      if (qAlpha(image.pixel(x, y)) == 0) row[x / 8] |= static_cast<quint8>(0x80 >> (x % 8));
    }
    out.writeRawData(reinterpret_cast<const char*>(row.data()), maskRow);
  }
  return bytes;
}

QByteArray IconFile(const std::vector<QImage>& images) {
  QByteArray bytes;
  QDataStream out(&bytes, QIODevice::WriteOnly);
  out.setByteOrder(QDataStream::LittleEndian);
  out << quint16(0) << quint16(1) << quint16(images.size());
  std::vector<QByteArray> bitmaps;
  for (const QImage& image : images) bitmaps.push_back(IconBitmap(image));
  quint32 offset = 6 + 16 * static_cast<quint32>(images.size());
  for (std::size_t i = 0; i < images.size(); ++i) {
    out << quint8(images[i].width()) << quint8(images[i].height()) << quint8(16) << quint8(0) << quint16(1)
        << quint16(4) << quint32(bitmaps[i].size()) << offset;
    offset += static_cast<quint32>(bitmaps[i].size());
  }
  for (const QByteArray& bitmap : bitmaps) out.writeRawData(bitmap.constData(), static_cast<int>(bitmap.size()));
  return bytes;
}

// The picture as SVG: one rectangle per run of same-coloured pixels in a row,
// drawn with crisp edges so that every size shows the same pixel art.
QByteArray SvgFile(const QImage& image) {
  QByteArray svg;
  svg += QStringLiteral(
             "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%1\" viewBox=\"0 0 %1 %1\" "
             "shape-rendering=\"crispEdges\">\n")
             .arg(image.width())
             .toUtf8();
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width();) {
      const QRgb pixel = image.pixel(x, y);
      int end = x + 1;
      while (end < image.width() && image.pixel(end, y) == pixel) ++end;
      if (qAlpha(pixel) != 0) {
        svg += QStringLiteral("<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"1\" fill=\"%4\"/>\n")
                   .arg(x)
                   .arg(y)
                   .arg(end - x)
                   .arg(QColor(pixel).name())
                   .toUtf8();
      }
      x = end;
    }
  }
  svg += "</svg>\n";
  return svg;
}

int WriteIcons(const QString& directory) {
  std::vector<QImage> images;
  for (const IconLayout& layout : kLayouts) {
    images.push_back(DrawIcon(layout));
    const QString png = QDir(directory).filePath(QStringLiteral("icon%1.png").arg(layout.size));
    if (!images.back().save(png)) return 1;
  }
  QFile ico(QDir(directory).filePath(QStringLiteral("zandrel.ico")));
  if (!ico.open(QIODevice::WriteOnly) || ico.write(IconFile(images)) < 0) return 1;
  QFile svg(QDir(directory).filePath(QStringLiteral("zandrel.svg")));
  if (!svg.open(QIODevice::WriteOnly) || svg.write(SvgFile(images.front())) < 0) return 1;
  return 0;
}

int WriteScreenshot(const QString& file) {
  CZandrelDlg dlg;
  dlg.show();
  qobject_cast<QLineEdit*>(dlg.GetDlgItem(IDC_INPUT_PATH))->setText(QStringLiteral("/home/anna/traces/pri-0412.txt"));
  qobject_cast<QLineEdit*>(dlg.GetDlgItem(IDC_OUTPUT_PATH))->setText(QStringLiteral("/home/anna/traces/message.txt"));
  QApplication::processEvents();
  return dlg.grab().save(file) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  const QStringList args = QApplication::arguments();
  if (args.size() == 3 && args[1] == u"icons") return WriteIcons(args[2]);
  if (args.size() == 3 && args[1] == u"screenshot") return WriteScreenshot(args[2]);
  std::fputs("usage: zandrel_artwork icons <dir> | screenshot <file.png>\n", stderr);
  return 2;
}
