#include "reference/host/ContactSheet.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Writing.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Host {

namespace {

constexpr int kMargin = 24;
constexpr int kGap = 12;

/// How large captions are, so that they stay legible beside large pictures.
int CaptionHeight(QSize picture)
{
    return std::clamp(picture.height() / 24, 13, 40);
}

void CheckPictures(const std::vector<SheetPicture>& pictures)
{
    const auto fail = [](const QString& details) {
        throw InvalidParameterException(QStringLiteral("MakeContactSheet"), QStringLiteral("pictures"), details);
    };
    if (pictures.empty() || pictures.front().image.isNull())
        fail(QStringLiteral("There is no picture."));
    for (const SheetPicture& picture : pictures)
        if (picture.image.size() != pictures.front().image.size())
            fail(QStringLiteral("The pictures differ in size."));
}

/// Where everything stands on the sheet.
struct Layout {
    QSize picture;
    int columns;
    int rows;
    int titleHeight;   ///< 0 without a title.
    int captionHeight; ///< 0 without captions.

    QSize SheetSize() const
    {
        return {2 * kMargin + columns * picture.width() + (columns - 1) * kGap,
                2 * kMargin + titleHeight + rows * (picture.height() + captionHeight) + (rows - 1) * kGap};
    }

    QRect PictureAt(int index) const
    {
        return {QPoint(kMargin + index % columns * (picture.width() + kGap),
                       kMargin + titleHeight + index / columns * (picture.height() + captionHeight + kGap)),
                picture};
    }
};

/// About as many columns as rows; a few more where that fills the last row.
int ColumnsFor(int count)
{
    const int square = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(count))));
    for (int columns = square; columns <= square + 2; ++columns)
        if (count % columns == 0)
            return columns;
    return square;
}

Layout ArrangedLayout(int count, QSize picture, int columns, bool titled, bool captioned)
{
    const int used = std::min(columns > 0 ? columns : ColumnsFor(count), count);
    const int line = 2 * CaptionHeight(picture);
    return {picture, used, (count + used - 1) / used, titled ? line + kGap : 0, captioned ? line : 0};
}

Layout LayoutOf(const std::vector<SheetPicture>& pictures, const QString& title, int columns)
{
    const bool captioned = std::any_of(pictures.begin(), pictures.end(),
                                       [](const SheetPicture& picture) { return !picture.caption.isEmpty(); });
    const bool canWrite = CanWrite();
    return ArrangedLayout(static_cast<int>(pictures.size()), pictures.front().image.size(), columns,
                          canWrite && !title.isEmpty(), canWrite && captioned);
}

} // namespace

QImage MakeContactSheet(const std::vector<SheetPicture>& pictures, const QString& title, int columns)
{
    CheckPictures(pictures);
    const Layout layout = LayoutOf(pictures, title, columns);
    QImage sheet(layout.SheetSize(), QImage::Format_RGB32);
    if (sheet.isNull())
        throw OutOfMemoryException(QStringLiteral("No room for a contact sheet of %1 pictures").arg(pictures.size()));

    sheet.fill(QColor(250, 250, 248));
    QPainter painter(&sheet);
    painter.setPen(QColor(60, 62, 66));
    const int captionPixels = CaptionHeight(layout.picture);
    if (layout.titleHeight > 0) {
        painter.setFont(FontOfHeight(captionPixels * 3 / 2));
        const QRect place(kMargin, kMargin, sheet.width() - 2 * kMargin, layout.titleHeight - kGap);
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(title, Qt::ElideMiddle, place.width()));
    }
    if (layout.captionHeight > 0)
        painter.setFont(FontOfHeight(captionPixels));
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        const QRect place = layout.PictureAt(static_cast<int>(i));
        painter.drawImage(place.topLeft(), pictures[i].image);
        if (layout.captionHeight > 0) {
            const QString caption =
                painter.fontMetrics().elidedText(pictures[i].caption, Qt::ElideMiddle, place.width());
            painter.drawText(QRect(place.left(), place.bottom() + 1, place.width(), layout.captionHeight),
                             Qt::AlignCenter, caption);
        }
    }
    return sheet;
}

QSize ContactSheetSize(int count, QSize picture, int columns)
{
    return ArrangedLayout(count, picture, columns, true, true).SheetSize();
}

} // namespace Host
