#include "reference/tools/PickMap.h"

#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/Studio.h"
#include "reference/host/Writing.h"
#include "reference/tools/Texts.h"

#include <QFontMetrics>
#include <QPainter>
#include <QSet>

#include <algorithm>

namespace Host {

namespace {

constexpr QRgb kBackground = 0xffe4e4e4;
constexpr QRgb kPalette[] = {0xffe8742c, 0xff2f7fc1, 0xff3f9c46, 0xffc73e5f, 0xff8b62b5, 0xffe3b51e,
                             0xff2aa7a0, 0xff8a5a3c, 0xffe58bb5, 0xff7f9a1f, 0xff4b4f8f, 0xff7cc0e8};

/// Every colour once, neighbours far apart, as `index` runs through 24 bits.
QRgb ColourAt(unsigned int index)
{
    constexpr unsigned int kStep = 0x9e3779; // odd, so it comes round only after all
    return 0xff000000u | (index * kStep & 0xffffffu);
}

bool IsTaken(QRgb colour)
{
    return colour == kBackground || std::find(std::begin(kPalette), std::end(kPalette), colour) != std::end(kPalette);
}

/// Mesh nodes of which the map holds a pixel, in tree order.
std::vector<const INode*> NodesIn(const PickMap& map, const NodeColours& colours)
{
    QSet<const INode*> seen;
    for (int y = 0; y < map.GetSize().height(); ++y)
        for (int x = 0; x < map.GetSize().width(); ++x)
            seen += map.At({x, y}).node;
    std::vector<const INode*> nodes = colours.GetNodes();
    nodes.erase(std::remove_if(nodes.begin(), nodes.end(), [&](const INode* node) { return !seen.contains(node); }),
                nodes.end());
    return nodes;
}

} // namespace

PickMap::PickMap(const IScene& scene, QSize size, const Progress& progress)
    : m_size(size)
    , m_pixels(static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()))
{
    const PickTiles tiles(scene, size);
    for (int row = 0; row < tiles.Rows(); ++row) {
        tiles.PickRow(row, m_pixels);
        if (progress) progress(100 * (row + 1) / tiles.Rows());
    }
    m_list = tiles.GetList();
}

Picked PickMap::At(QPoint pixel) const
{
    if (!QRect(QPoint(), m_size).contains(pixel)) return {};
    return m_list[m_pixels[static_cast<std::size_t>(pixel.y()) * static_cast<std::size_t>(m_size.width())
                           + static_cast<std::size_t>(pixel.x())]];
}

NodeColours::NodeColours(const IScene& scene)
{
    unsigned int next = 1; // at 0 is black, that of no hue
    for (const INode* node : CollectAllChildren({scene.GetRoot()})) {
        if (node->GetType() != eNodeTypeMesh) continue;
        if (m_nodes.size() >= std::size(kPalette))
            while (IsTaken(ColourAt(next)))
                ++next;
        m_colours.insert(node, m_nodes.size() < std::size(kPalette) ? kPalette[m_nodes.size()] : ColourAt(next++));
        m_nodes.push_back(node);
    }
}

QColor NodeColours::Of(const INode* node) const
{
    return QColor(m_colours.value(node));
}

QImage MapPicture(const PickMap& map, const NodeColours& colours)
{
    QImage picture = NewPicture(map.GetSize(), QImage::Format_RGB32);
    const INode* last = nullptr;
    QRgb colour = kBackground;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const INode* const node = map.At({x, y}).node;
            if (node != last) colour = node ? colours.Of(node).rgb() : kBackground;
            last = node;
            picture.setPixel(x, y, colour);
        }
    return picture;
}

QImage WithLegend(const QImage& picture, const PickMap& map, const NodeColours& colours)
{
    const std::vector<const INode*> nodes = NodesIn(map, colours);
    if (!CanWrite() || nodes.empty()) return picture;

    constexpr int kLine = 20;
    constexpr int kSwatch = 12;
    const int nLines = std::max(1, std::min(static_cast<int>(nodes.size()), picture.height() / kLine));
    const bool allFit = nLines == static_cast<int>(nodes.size());
    const QFont font = FontOfHeight(kSwatch);
    const QFontMetrics metrics(font);
    QStringList texts;
    for (int i = 0; i < nLines; ++i)
        texts += NodePath(*nodes[static_cast<std::size_t>(i)]);
    if (!allFit) texts.last() = QStringLiteral("and %1 more").arg(static_cast<int>(nodes.size()) - nLines + 1);
    int widest = 0;
    for (QString& text : texts) {
        text = metrics.elidedText(text, Qt::ElideMiddle, 30 * kSwatch);
        widest = std::max(widest, metrics.horizontalAdvance(text));
    }

    QImage whole = NewPicture(picture.size() + QSize(widest + 3 * kSwatch, 0), picture.format());
    whole.fill(Qt::white);
    QPainter painter(&whole);
    painter.setFont(font);
    painter.drawImage(0, 0, picture);
    for (int i = 0; i < nLines; ++i) {
        const QRect line(picture.width() + kSwatch, i * kLine, widest + kSwatch, kLine);
        if (allFit || i + 1 < nLines)
            painter.fillRect(line.x() - kSwatch / 2, line.y() + (kLine - kSwatch) / 2, kSwatch, kSwatch,
                             colours.Of(nodes[static_cast<std::size_t>(i)]));
        painter.drawText(line.adjusted(kSwatch, 0, kSwatch, 0), Qt::AlignLeft | Qt::AlignVCenter, texts[i]);
    }
    return whole;
}

QString NodePath(const INode& node)
{
    QStringList parts;
    for (const INode* each = &node; each->GetParent(); each = each->GetParent())
        parts.prepend(PathPart(each->GetName()));
    return QLatin1Char('/') + parts.join(QLatin1Char('/'));
}

} // namespace Host
