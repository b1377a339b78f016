#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <vector>

namespace Host {

/// A picture of a contact sheet, and what is written below it.
struct SheetPicture {
    QImage image;
    QString caption; ///< May be empty.
};

/// Pictures of one size in rows, read from left to right, with captions and a
/// title above. Format RGB32.
///
/// Writing needs a QGuiApplication (platform "offscreen" will do) and a font.
/// Without either the sheet comes out all the same, with the pictures alone.
/// \param columns pictures in a row; 0 makes the sheet about square, with a full last row if
///                that costs no more than two columns
/// \throws InvalidParameterException the pictures differ in size, or there are
///         none
/// \throws OutOfMemoryException the sheet does not fit in memory
QImage MakeContactSheet(const std::vector<SheetPicture>& pictures, const QString& title, int columns = 0);

/// The size of such a sheet of `count` pictures, with title and captions. At least 1 picture.
QSize ContactSheetSize(int count, QSize picture, int columns = 0);

} // namespace Host
