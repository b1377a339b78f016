#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace Host {

/// One line that is safe on a terminal: lines are joined, with a semicolon
/// where the earlier one does not end with a mark of its own, and control
/// characters, invisible formatting and broken surrogates become \u or \U escapes.
QString Printable(const QString& text);

/// The same for a line of JSON text, which keeps its meaning.
QString PrintableJson(const QString& line);

/// A name as one part of a path, from which it can be told again: '/' and '\'
/// get a backslash before them, and what Printable() would escape or join is escaped.
QString PathPart(const QString& name);

/// `name` printable, in single quotes.
QString Quoted(const QString& name);

/// "'a', 'b', 'c'", each name once, in the order of the first; "none" for none.
QString QuotedList(const QStringList& names);

/// A number for people: at most seven digits, never of a locale.
QString NumberText(double value);

/// "1 key", "2 keys".
QString Counted(std::size_t count, const QString& singular, const QString& plural);

/// `text` broken between words to lines of at most 78 columns, each beginning
/// with `indent` spaces and ending with a line end.
QString Wrapped(const QString& text, int indent);

/// Rows of text in columns. Cells are made printable.
class Table {
public:
    /// A heading that starts with '>' is for a column of numbers, on the right.
    explicit Table(const QStringList& headings);

    void AddRow(const QStringList& cells);

    /// All rows under the headings, each line indented by two spaces.
    QString Text() const;

private:
    QStringList m_headings;
    std::vector<bool> m_toTheRight;
    std::vector<QStringList> m_rows;
};

/// What the system says of its last error.
QString SystemErrorText();

/// Writes to standard output.
/// \throws Failure it could not be written
void Print(const QString& text);

/// Writes "lumenta: <line>" to standard error.
void PrintError(const QString& line);

/// A warning about `subject` on standard error.
void PrintWarning(const QString& subject, const QString& text);

} // namespace Host
