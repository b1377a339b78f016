#include "fuzz/Input.h"

#include <QCoreApplication>

int LLVMFuzzerInitialize(int* pCount, char*** pArguments)
{
    static QCoreApplication application(*pCount, *pArguments);
    // What the toolkit has to say of broken input is not asked here.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtFatalMsg) std::fputs(qPrintable(text), stderr);
    });
    return 0;
}
