#include "reference/tools/PickOverlay.h"

#include "reference/host/Writing.h"

#include <QFontMetrics>
#include <QPainter>
#include <QSet>

#include <algorithm>

namespace Host {

namespace {

constexpr double kTint = 0.3;
constexpr double kLine = 0.9;

/// How much of the node's colour a pixel gets: a tint on a hit mesh, a line along its border.
double CoverOf(const PickMap& map, const QSet<const IMesh*>& hit, QPoint pixel, Picked& picked)
{
    picked = map.At(pixel);
    const bool isHit = hit.contains(picked.mesh);
    for (const QPoint step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
        const Picked neighbour = map.At(pixel + step);
        if (neighbour.mesh == picked.mesh) continue;
        if (isHit) return kLine;
        if (hit.contains(neighbour.mesh)) {
            picked = neighbour;
            return kLine;
        }
    }
    return isHit ? kTint : 0.0;
}

QRgb Mixed(QRgb below, const QColor& above, double cover)
{
    const auto mix = [cover](int a, int b) { return static_cast<int>(a + (b - a) * cover + 0.5); };
    return qRgb(mix(qRed(below), above.red()), mix(qGreen(below), above.green()), mix(qBlue(below), above.blue()));
}

void Tint(QImage& picture, const PickMap& map, const NodeColours& colours, const std::vector<PixelMark>& marks)
{
    QSet<const IMesh*> hit;
    for (const PixelMark& mark : marks)
        if (mark.picked.mesh) hit += mark.picked.mesh;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            Picked picked{};
            const double cover = CoverOf(map, hit, {x, y}, picked);
            if (cover > 0.0) picture.setPixel(x, y, Mixed(picture.pixel(x, y), colours.Of(picked.node), cover));
        }
}

/// Four strokes around the pixel, which itself stays as it is.
void DrawCrossHair(QPainter& painter, QPoint pixel)
{
    constexpr int kFrom = 4;
    constexpr int kTo = 12;
    for (const QPen& pen : {QPen(Qt::white, 3), QPen(Qt::black, 1)}) {
        painter.setPen(pen);
        for (const QPoint direction : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)})
            painter.drawLine(pixel + direction * kFrom, pixel + direction * kTo);
    }
}

/// Beside the pixel, or pushed into the picture above or below it; where possible clear of what is taken.
QRect PlaceOf(QSize label, QPoint pixel, const QRect& picture, const std::vector<QRect>& taken)
{
    constexpr int kAside = 10;
    const int leftmost = picture.right() + 1 - label.width();
    const auto isFree = [&](const QRect& place) {
        return picture.contains(place)
               && std::none_of(taken.begin(), taken.end(), [&](const QRect& other) { return other.intersects(place); });
    };
    for (int above = kAside; above < picture.height(); above += kAside)
        for (const int x : {pixel.x() + kAside, pixel.x() - kAside - label.width(), leftmost, 0})
            for (const int y : {pixel.y() - above - label.height(), pixel.y() + above})
                if (isFree({QPoint(x, y), label})) return {QPoint(x, y), label};
    return {QPoint(std::max(leftmost, 0), 0), label};
}

void DrawLabels(QPainter& painter, const QRect& picture, const NodeColours& colours,
                const std::vector<PixelMark>& marks)
{
    constexpr int kPadding = 4;
    const QFont font = FontOfHeight(std::max(11, std::min(picture.height() / 40, 24)));
    const QFontMetrics metrics(font);
    painter.setFont(font);
    std::vector<QRect> taken;
    taken.reserve(2 * marks.size()); // of each a cross and a label
    for (const PixelMark& mark : marks)
        taken.emplace_back(mark.pixel - QPoint(6, 6), mark.pixel + QPoint(6, 6));
    for (const PixelMark& mark : marks) {
        const QString text = metrics.elidedText(mark.label, Qt::ElideMiddle, picture.width() - 2 * kPadding);
        const QSize size(metrics.horizontalAdvance(text) + 2 * kPadding, metrics.height() + kPadding);
        const QRect place = PlaceOf(size, mark.pixel, picture, taken);
        taken.push_back(place);
        painter.setPen(mark.picked.node ? colours.Of(mark.picked.node) : QColor(Qt::darkGray));
        painter.setBrush(QColor(255, 255, 255, 225));
        painter.drawRect(place.adjusted(0, 0, -1, -1));
        painter.setPen(Qt::black);
        painter.drawText(place, Qt::AlignCenter, text);
    }
}

} // namespace

QImage DrawOverlay(const QImage& picture, const PickMap& map, const NodeColours& colours,
                   const std::vector<PixelMark>& marks)
{
    QImage overlay = picture.convertToFormat(QImage::Format_RGB32);
    Tint(overlay, map, colours, marks);
    QPainter painter(&overlay);
    for (const PixelMark& mark : marks)
        DrawCrossHair(painter, mark.pixel);
    if (CanWrite()) DrawLabels(painter, overlay.rect(), colours, marks);
    return overlay;
}

} // namespace Host
