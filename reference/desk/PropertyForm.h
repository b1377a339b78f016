#pragma once

#include "lumenta/foundation/Color.h"

#include <QPointer>
#include <QVariant>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class IFileSource;
class IUserInterface;
class QFormLayout;

namespace Host {

/// A form of values. Each row shows what its `get` answers and hands what a hand
/// makes of it to its `set`; then all rows look again, since one value may have
/// held, or changed, another.
///
/// What `set` throws is shown, and the row goes back to what is.
class PropertyForm final : public QWidget {
    Q_OBJECT

public:
    template <typename T>
    struct Value {
        std::function<T()> get;
        std::function<void(const T&)> set;
    };

    /// \param ui outlives the form
    explicit PropertyForm(IUserInterface& ui, QWidget* pParent = nullptr);

    void AddHeading(const QString& title);
    void AddText(const QString& title, const Value<QString>& value);
    void AddSwitch(const QString& title, const Value<bool>& value);
    void AddNumber(const QString& title, int least, int most, const Value<int>& value);
    void AddAmount(const QString& title, double least, double most, const Value<double>& value);
    /// Linear.
    void AddColor(const QString& title, const Value<ColorF>& value);
    /// One of several that are not shown afterwards.
    void AddChoice(const QString& title, const QStringList& choices, const std::function<void(int)>& choose);
    /// \param value gets and sets where the file is
    /// \param shown what the row reads of that
    void AddFile(const QString& title, std::unique_ptr<IFileSource> source, const Value<QString>& value,
                 const std::function<QString(const QString& path)>& shown);
    void AddWidget(QWidget* pWidget);

    /// Has all rows show what is.
    void Refresh();

private:
    template <typename Widget>
    void AddRow(const QString& title, Widget* pWidget, const std::function<void(Widget&)>& show);
    void Apply(const std::function<void()>& work);

    IUserInterface& m_ui;
    QFormLayout* m_pLayout;
    std::vector<std::function<void()>> m_rows;
};

} // namespace Host
