#include "reference/host/Writing.h"

#include <QFontMetrics>
#include <QGuiApplication>

namespace Host {

bool CanWrite()
{
    // Without fonts Qt still lists families, and draws each letter as a box.
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) && QFontMetrics(QFont()).inFont(u'A');
}

QFont FontOfHeight(int pixels)
{
    QFont font;
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(pixels);
    return font;
}

} // namespace Host
