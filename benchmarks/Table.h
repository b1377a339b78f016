#pragma once

#include "benchmarks/Measure.h"

namespace Bench {

/// Prints rows to standard output as they are measured.
class Table {
public:
    /// \param before figures of another run to show the change against; may be empty
    explicit Table(Figures before)
        : m_before(std::move(before))
    {
    }

    /// Rows of one group. Targets may speak of rows that were printed before.
    void Print(const std::vector<const Row*>& rows, const Figures& figures);

    /// What the columns mean, and how many targets were met.
    void PrintSummary() const;

    const Figures& GetFigures() const { return m_figures; }

private:
    std::string JudgedText(const Row& row, const Target& target, double ours);
    std::string ChangeText(const std::string& row, const Figure& figure) const;

    Figures m_before;
    Figures m_figures;
    int m_met = 0;
    int m_missed = 0;
    bool m_hasHeader = false;
};

} // namespace Bench
