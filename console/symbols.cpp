#include "console/symbols.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

// The macro has to stand outside any namespace.
static void InitSymbolResource() {
    Q_INIT_RESOURCE(console_symbols);
}

namespace {

constexpr int SIZE = 96;  // pixels, of which the toolkit makes the size that is wanted

QPixmap Draw(QByteArray Svg, const QColor& rColor) {
    QSvgRenderer Renderer(Svg.replace("currentColor", rColor.name().toLatin1()));
    QPixmap Picture(SIZE, SIZE);
    Picture.fill(Qt::transparent);
    QPainter Painter(&Picture);
    Renderer.render(&Painter);
    return Picture;
}

}  // namespace

QIcon GetSymbol(const QString& rName, const QPalette& rPalette) {
    InitSymbolResource();
    QFile File(":/symbols/" + rName + ".svg");
    if (!File.open(QIODevice::ReadOnly)) {
        qFatal("There is no symbol %s.", qPrintable(rName));
    }
    const QByteArray Svg = File.readAll();
    QIcon Icon(Draw(Svg, rPalette.color(QPalette::Active, QPalette::ButtonText)));
    Icon.addPixmap(Draw(Svg, rPalette.color(QPalette::Disabled, QPalette::ButtonText)), QIcon::Disabled);
    return Icon;
}
