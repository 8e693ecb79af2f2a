#include "platform/appkit/ImageIcon.h"

#include "platform/appkit/Utf8.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace tarn {

namespace {

// The drawings leave the colour of their strokes open: "currentColor" is the colour of text in the palette in force.
class ImageIconEngine final : public QIconEngine {
public:
  explicit ImageIconEngine(QString name) : name_(std::move(name)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    QSvgRenderer renderer(imageDrawing(name_).replace("currentColor", strokeColor(mode).name().toLatin1()));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    if (mode == QIcon::Disabled) painter->setOpacity(0.5);
    renderer.render(painter, QRectF(rect));
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const QString key = QStringLiteral("tarn-%1-%2x%3-%4-%5")
                            .arg(name_)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(strokeColor(mode).rgba())
                            .arg(static_cast<int>(mode));
    QPixmap drawn;
    if (QPixmapCache::find(key, &drawn)) return drawn;
    drawn = QPixmap(size);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    paint(&painter, QRect(QPoint(), size), mode, state);
    painter.end();
    QPixmapCache::insert(key, drawn);
    return drawn;
  }

  QIconEngine* clone() const override { return new ImageIconEngine(name_); }
  QString key() const override { return QStringLiteral("tarn"); }
  bool isNull() override { return false; }

private:
  static QColor strokeColor(QIcon::Mode mode) {
    const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
    return QGuiApplication::palette().color(role);
  }

  QString name_;
};

}  // namespace

QByteArray imageDrawing(const QString& name) {
  QFile file(QLatin1String(":/images/") + name + QLatin1String(".svg"));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QIcon imageIcon(const NSImage& image) {
  return image.isNone() ? QIcon() : QIcon(new ImageIconEngine(toQString(image.name())));
}

}  // namespace tarn
