#pragma once

#include "lumenta/platform/IScriptRunnerOutput.h"

#include <QPlainTextEdit>

namespace Host {

/// What scripts print, as one text; errors in red, with file and line before them.
class ScriptOutput final : public QPlainTextEdit, public IScriptRunnerOutput {
    Q_OBJECT

public:
    explicit ScriptOutput(QWidget* pParent = nullptr);

    void OnOutput(const QString& strText) override;
    void OnError(const QString& strText, const QString& strFileName, int nLine) override;

private:
    void Append(const QString& text, const QColor& color);
};

} // namespace Host
