#include "reference/tools/Texts.h"

#include "reference/tools/Failure.h"

#include <QVector>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Host {

namespace {

constexpr int kColumns = 78;

bool IsUnsafe(uint codePoint)
{
    switch (QChar::category(codePoint)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

bool EndsWithMark(const QString& text)
{
    return !text.isEmpty() && QStringLiteral(".,:;!? ").contains(text.back());
}

QString Escaped(uint codePoint)
{
    return codePoint > 0xffff ? QStringLiteral("\\U%1").arg(codePoint, 8, 16, QLatin1Char('0'))
                              : QStringLiteral("\\u%1").arg(codePoint, 4, 16, QLatin1Char('0'));
}

/// JSON has escapes of four digits only, and writes the rest as surrogates.
QString EscapedInJson(uint codePoint)
{
    return QChar::requiresSurrogates(codePoint)
               ? Escaped(QChar::highSurrogate(codePoint)) + Escaped(QChar::lowSurrogate(codePoint))
               : Escaped(codePoint);
}

template <typename Escape>
QString InOneLine(const QString& text, const Escape& escape)
{
    QString printable;
    const QVector<uint> codePoints = QString(text).replace(QLatin1String("\r\n"), QLatin1String("\n")).toUcs4();
    for (const uint codePoint : codePoints) {
        if (codePoint == '\n')
            printable += EndsWithMark(printable) ? QStringLiteral(" ") : QStringLiteral("; ");
        else if (IsUnsafe(codePoint))
            printable += escape(codePoint);
        else
            printable += QString::fromUcs4(&codePoint, 1);
    }
    return printable;
}

} // namespace

QString Printable(const QString& text)
{
    return InOneLine(text, Escaped);
}

QString PrintableJson(const QString& line)
{
    return InOneLine(line, EscapedInJson);
}

QString PathPart(const QString& name)
{
    QString part;
    const QVector<uint> codePoints = name.toUcs4();
    for (const uint codePoint : codePoints) {
        if (codePoint == '/' || codePoint == '\\') part += QLatin1Char('\\');
        part += IsUnsafe(codePoint) ? Escaped(codePoint) : QString::fromUcs4(&codePoint, 1);
    }
    return part;
}

QString Quoted(const QString& name)
{
    return QLatin1Char('\'') + Printable(name) + QLatin1Char('\'');
}

QString QuotedList(const QStringList& names)
{
    QStringList quoted;
    for (const QString& name : names)
        quoted += Quoted(name);
    quoted.removeDuplicates();
    return quoted.isEmpty() ? QStringLiteral("none") : quoted.join(QStringLiteral(", "));
}

QString NumberText(double value)
{
    return QString::number(value, 'g', 7);
}

QString Counted(std::size_t count, const QString& singular, const QString& plural)
{
    return QString::number(count) + QLatin1Char(' ') + (count == 1 ? singular : plural);
}

QString Wrapped(const QString& text, int indent)
{
    const QString margin(indent, QLatin1Char(' '));
    QString wrapped;
    QString line;
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& word : words) {
        if (!line.isEmpty() && indent + line.size() + 1 + word.size() > kColumns) {
            wrapped += margin + line + QLatin1Char('\n');
            line.clear();
        }
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
    }
    return wrapped + margin + line + QLatin1Char('\n');
}

Table::Table(const QStringList& headings)
{
    for (const QString& heading : headings) {
        m_toTheRight.push_back(heading.startsWith(QLatin1Char('>')));
        m_headings += m_toTheRight.back() ? heading.mid(1) : heading;
    }
    m_rows.push_back(m_headings);
}

void Table::AddRow(const QStringList& cells)
{
    QStringList printable;
    for (const QString& cell : cells)
        printable += Printable(cell);
    m_rows.push_back(printable);
}

QString Table::Text() const
{
    std::vector<int> widths(m_toTheRight.size(), 0);
    for (const QStringList& row : m_rows)
        for (int i = 0; i < row.size(); ++i)
            widths[static_cast<std::size_t>(i)] = qMax(widths[static_cast<std::size_t>(i)], row[i].size());

    QString text;
    for (const QStringList& row : m_rows) {
        QString line;
        for (int i = 0; i < row.size(); ++i) {
            const auto column = static_cast<std::size_t>(i);
            line += QStringLiteral("  ");
            line += m_toTheRight[column] ? row[i].rightJustified(widths[column]) : row[i].leftJustified(widths[column]);
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}

QString SystemErrorText()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

void Print(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0)
        throw Failure{QStringLiteral("standard output"), SystemErrorText()};
}

void PrintError(const QString& line)
{
    const QByteArray bytes = QStringLiteral("lumenta: %1\n").arg(Printable(line)).toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

void PrintWarning(const QString& subject, const QString& text)
{
    PrintError(subject + QStringLiteral(": warning: ") + text);
}

} // namespace Host
