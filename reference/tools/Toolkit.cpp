#include "reference/tools/Toolkit.h"

#include <QGuiApplication>

#include <clocale>

namespace Host {

void PrepareToolkit()
{
    // Nothing is ever shown.
    qputenv("QT_QPA_PLATFORM", "offscreen");

    // The toolkit gets no words: it would take some of them for its own.
    // And it lives until the process ends: it is not good at taking itself down.
    static char name[] = "lumenta";
    static char* words[] = {name, nullptr};
    static int nWords = 1;
    static const auto* const application = new QGuiApplication(nWords, words);
    Q_UNUSED(application)
    // It has taken over the locale's decimal mark.
    std::setlocale(LC_NUMERIC, "C");
}

} // namespace Host
