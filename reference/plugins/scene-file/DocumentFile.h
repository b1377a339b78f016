#pragma once

#include <QByteArray>
#include <QString>

namespace Host {

/// What is wrong with a document.
struct Flaw {
    QString text;       ///< Continues "'name' can't be opened: ".
    QString place = {}; ///< In the body, like "nodes[3].matrix"; empty for all of it.

    QString GetText() const { return place.isEmpty() ? text : QStringLiteral("%1: %2").arg(place, text); }
};

/// The most bytes that a body may have: what Qt can keep in one piece, about.
constexpr quint64 kLargestBody = 2000000000;

/// Whether the file begins as documents do.
bool IsDocumentFile(const QString& fileName);

/// The body of a document, after its frame was found to be whole.
/// \throws FileException the file can't be read
/// \throws Flaw it is no document, one of a newer version, or damaged
QByteArray ReadDocumentFile(const QString& fileName);

/// Frames a body and writes it aside, then into the file's place.
/// \pre it has at most kLargestBody bytes
/// \throws FileException it can't be written; what was there before still is
void WriteDocumentFile(const QString& fileName, const QByteArray& body);

} // namespace Host
