#include "reference/tools/ProgressBar.h"

#include <QByteArray>

#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace Host {

namespace {

constexpr int kCells = 30;
constexpr int kUsualColumns = 79;

void WriteRaw(const QByteArray& bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

/// As many as fit without the cursor going on to the next line, where it could
/// not be wiped away.
int MostColumns()
{
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col - 1 : kUsualColumns;
}

} // namespace

ProgressBar::ProgressBar()
    : m_onTerminal(isatty(STDERR_FILENO) == 1)
{
}

ProgressBar::~ProgressBar()
{
    Clear();
}

Progress ProgressBar::Part(const QString& label, double first, double last)
{
    return Part([label](int) { return label; }, first, last);
}

Progress ProgressBar::Part(const std::function<QString(int nPercent)>& label, double first, double last)
{
    if (!m_onTerminal)
        return {};
    return [this, label, first, last](int nPercent) {
        Show(label(nPercent), static_cast<int>(first + (last - first) * qBound(0, nPercent, 100) / 100.0));
    };
}

void ProgressBar::Clear()
{
    if (!m_shown.isEmpty())
        WriteRaw("\r\033[K");
    m_shown.clear();
}

void ProgressBar::Show(const QString& label, int percent)
{
    const int full = kCells * percent / 100;
    const QString line = QStringLiteral("[%1%2] %3% %4")
                             .arg(QString(full, QLatin1Char('#')), QString(kCells - full, QLatin1Char('.')))
                             .arg(percent, 3)
                             .arg(label)
                             .left(MostColumns());
    if (line == m_shown)
        return;
    WriteRaw("\r" + line.toLocal8Bit() + "\033[K");
    m_shown = line;
}

} // namespace Host
