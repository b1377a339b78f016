#pragma once

#include "lumenta/interfaces/IUserInterface.h"

namespace Host {

/// A work that the user interface shows while the object lives, however it ends.
class ShownProgress {
public:
    /// \param ui outlives it
    ShownProgress(IUserInterface& ui, const QString& title)
        : m_ui(ui)
    {
        m_ui.BeginProgress(title);
    }
    ~ShownProgress() { m_ui.EndProgress(); }
    ShownProgress(const ShownProgress&) = delete;
    ShownProgress& operator=(const ShownProgress&) = delete;

private:
    IUserInterface& m_ui;
};

} // namespace Host
