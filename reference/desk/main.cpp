#include "reference/desk/DeskWindow.h"
#include "reference/desk/Guarded.h"
#include "reference/host/Caught.h"
#include "reference/host/services/Application.h"
#include "reference/host/services/PluginFolders.h"

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QMessageBox>
#include <QStandardPaths>

#include <clocale>

namespace {

/// The last net: what a handler of the toolkit's own lets through.
class DeskApplication final : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* pReceiver, QEvent* pEvent) override
    {
        if (!m_pUserInterface) return QApplication::notify(pReceiver, pEvent);
        bool bTaken = false;
        Host::Guarded(*m_pUserInterface, [&] { bTaken = QApplication::notify(pReceiver, pEvent); });
        return bTaken;
    }

    void SetUserInterface(IUserInterface* pUserInterface) { m_pUserInterface = pUserInterface; }

private:
    IUserInterface* m_pUserInterface = nullptr;
};

int Run(DeskApplication& desk)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    QDir().mkpath(folder);
    Host::Application application(Host::PluginFolders(), folder + QStringLiteral("/desk.ini"));
    Host::DeskWindow window(application);
    desk.SetUserInterface(&window.GetUserInterface());
    window.show();
    const QString source = QCoreApplication::arguments().value(1);
    if (!source.isEmpty()) window.Open(source);
    const int nStatus = QApplication::exec();
    desk.SetUserInterface(nullptr);
    return nStatus;
}

} // namespace

int main(int argc, char* argv[])
{
    DeskApplication desk(argc, argv);
    QApplication::setApplicationName(QStringLiteral("lumenta-desk"));
    QApplication::setApplicationVersion(QStringLiteral(LUMENTA_VERSION));
    // The toolkit has taken over the locale's decimal mark; files have a point.
    std::setlocale(LC_NUMERIC, "C");
    QLocale::setDefault(QLocale::c());
    try {
        return Run(desk);
    } catch (...) {
        QMessageBox::critical(nullptr, QStringLiteral("Lumenta"), Host::CaughtText());
    }
    return 1;
}
