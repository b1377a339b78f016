#include "benchmarks/Table.h"

#include <cstdarg>
#include <cstdio>

namespace Bench {

namespace {

// What each other way takes, as a multiple of our time; of touching, the reverse.
const std::string kColumns[] = {kNaive, kNaiveO3, kGlm, kEigen, kEmbree, kEmbreeBuild};

constexpr int kNameWidth = 36;

[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...)
{
    char text[160];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

/// Three digits and a unit.
std::string TimeText(double nanoseconds)
{
    const char* unit = "ns";
    for (const char* larger : {"us", "ms", "s"}) {
        if (nanoseconds < 1000.0) break;
        nanoseconds /= 1000.0;
        unit = larger;
    }
    return Format("%.*f %s", nanoseconds < 10.0 ? 2 : nanoseconds < 100.0 ? 1 : 0, nanoseconds, unit);
}

std::string RatioText(double ratio)
{
    return ratio < 0.1 ? Format("%.2g", ratio) : Format("%.*f", ratio < 10.0 ? 2 : ratio < 100.0 ? 1 : 0, ratio);
}

const Figure* Find(const Figures& figures, const std::string& row, const std::string& way)
{
    const auto ways = figures.find(row);
    if (ways == figures.end()) return nullptr;
    const auto figure = ways->second.find(way);
    return figure == ways->second.end() ? nullptr : &figure->second;
}

void PrintHeader()
{
    std::printf("%-*s %9s %-9s %6s", kNameWidth, "row", "ours per", "", "+- %");
    for (const std::string& column : kColumns)
        std::printf(" %*s", std::max(7, static_cast<int>(column.size())), column.c_str());
    std::printf(" %7s  %s\n", "/touch", "target");
}

} // namespace

void Table::Print(const std::vector<const Row*>& rows, const Figures& figures)
{
    m_figures.insert(figures.begin(), figures.end());
    for (const Row* row : rows) {
        const Figure* const ours = Find(figures, row->name, kOurs);
        if (!ours) continue;
        if (!m_hasHeader) PrintHeader();
        m_hasHeader = true;
        std::printf("%-*s %9s %-9s %6.1f", kNameWidth, row->name.c_str(), TimeText(ours->nanoseconds).c_str(),
                    row->element.c_str(), 100.0 * ours->spread);
        for (const std::string& column : kColumns) {
            const Figure* const other = Find(figures, row->name, column);
            std::printf(" %*s", std::max(7, static_cast<int>(column.size())),
                        other ? RatioText(other->nanoseconds / ours->nanoseconds).c_str() : "");
        }
        const Figure* const touch = Find(figures, row->name, kTouch);
        std::printf(" %7s", touch ? RatioText(ours->nanoseconds / touch->nanoseconds).c_str() : "");

        std::string notes = m_before.empty() ? "" : "  " + ChangeText(row->name, *ours);
        for (const Target& target : row->targets)
            notes += "  " + JudgedText(*row, target, ours->nanoseconds);
        std::printf("%s\n", notes.c_str());
    }
    std::fflush(stdout);
}

std::string Table::JudgedText(const Row& row, const Target& target, double ours)
{
    const bool isRow = target.reference.find('/') != std::string::npos;
    const Figure* const other =
        isRow ? Find(m_figures, target.reference, kOurs) : Find(m_figures, row.name, target.reference);
    const std::string bound =
        target.reference.empty()
            ? "<= " + TimeText(target.bound)
            : Format("%s %.4g x %s", target.isSpeedUp ? ">=" : "<=", target.bound, target.reference.c_str());
    if (!other && !target.reference.empty()) return bound + ": not measured";
    const double value = !other ? ours : target.isSpeedUp ? other->nanoseconds / ours : ours / other->nanoseconds;
    const bool isMet = target.isSpeedUp ? value >= target.bound : value <= target.bound;
    ++(isMet ? m_met : m_missed);
    return bound + (isMet ? ": met" : Format(": MISSED (%s)", (other ? RatioText(value) : TimeText(value)).c_str()));
}

std::string Table::ChangeText(const std::string& row, const Figure& figure) const
{
    const Figure* const before = Find(m_before, row, kOurs);
    if (!before) return "(new)";
    const double change = figure.nanoseconds / before->nanoseconds - 1.0;
    const bool isBeyond = std::fabs(change) > figure.spread + before->spread;
    return Format("(%+.1f %%%s)", 100.0 * change, !isBeyond ? "" : change < 0.0 ? " FASTER" : " SLOWER");
}

void Table::PrintSummary() const
{
    if (!m_hasHeader) return;
    std::printf("\nTime of the processor for one element, median of all repetitions; +- is between the quartiles.\n"
                "Columns of other ways: their time over ours, so more is better; /touch: ours over reading and\n"
                "writing the same memory. %s"
                "Targets: %d met, %d missed.\n",
                m_before.empty() ? "" : "In brackets: the change; a word where it is beyond both spreads.\n", m_met,
                m_missed);
}

} // namespace Bench
