#pragma once

#include "reference/host/Progress.h"

#include <QString>

namespace Host {

/// A bar on standard error while work goes on, wiped away when it ends. Draws
/// nothing where standard error is no terminal.
///
/// The owner's thread, as all progress.
class ProgressBar {
public:
    ProgressBar();
    ~ProgressBar();

    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Reports for a piece of the whole work that begins at `first` and ends
    /// at `last` percent. Valid as long as the bar.
    Progress Part(const QString& label, double first, double last);

    /// The same with a label that changes: that of each percentage.
    Progress Part(const std::function<QString(int nPercent)>& label, double first, double last);

    /// Wipes the bar, so that a line can be written in its place.
    void Clear();

private:
    void Show(const QString& label, int percent);

    bool m_onTerminal;
    QString m_shown; ///< What the line holds now.
};

} // namespace Host
