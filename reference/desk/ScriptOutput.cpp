#include "reference/desk/ScriptOutput.h"

#include <QFontDatabase>

namespace Host {

namespace {

constexpr int kMostLines = 10000; ///< Of a script that never stops to talk the last ones are kept.

} // namespace

ScriptOutput::ScriptOutput(QWidget* pParent)
    : QPlainTextEdit(pParent)
{
    setReadOnly(true);
    setMaximumBlockCount(kMostLines);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

void ScriptOutput::OnOutput(const QString& strText)
{
    Append(strText, palette().text().color());
}

void ScriptOutput::OnError(const QString& strText, const QString& strFileName, int nLine)
{
    Append(QStringLiteral("%1:%2: %3\n").arg(strFileName, QString::number(nLine), strText), Qt::red);
}

void ScriptOutput::Append(const QString& text, const QColor& color)
{
    QTextCharFormat format;
    format.setForeground(color);
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertText(text, format);
    setTextCursor(end);
}

} // namespace Host
