#include "lumenta/foundation/Exceptions.h"

#include <QLibrary>
#include <QtTest>

#include <exception>
#include <type_traits>

extern "C" void ThrowByName(const char* className); // tests/foundation/thrower.cpp, linked
using Thrower = void (*)(const char* className);
Q_DECLARE_METATYPE(Thrower)

namespace {

/// What a handler for `Class` says of an exception: its text, or null if it
/// goes past.
template <typename Class>
QString CaughtAs(Thrower thrower, const char* thrown)
{
    try {
        thrower(thrown);
    } catch (const Class& e) {
        return e.GetErrorText();
    } catch (...) {
    }
    return QString();
}

struct Handler {
    const char* className;
    QString (*caught)(Thrower, const char*);
};

#define HANDLER(Class) Handler{#Class, &CaughtAs<Class>}
const Handler kHandlers[] = {
    HANDLER(Exception), HANDLER(ExporterException), HANDLER(LoadingException), HANDLER(SavingException),
    HANDLER(CastException), HANDLER(ImageFormatException), HANDLER(UnsupportedFormatException),
    HANDLER(LogicException), HANDLER(OutOfMemoryException), HANDLER(FileException), HANDLER(FactoryException),
    HANDLER(ObjectLoadingException), HANDLER(InvalidParameterException),
};
#undef HANDLER

static_assert(!std::has_virtual_destructor<Exception>::value && !std::has_virtual_destructor<FileException>::value,
              "the virtual table begins with GetErrorText");
static_assert(!std::is_base_of<std::exception, Exception>::value);
static_assert(std::is_base_of<LoadingException, ObjectLoadingException>::value);
static_assert(sizeof(FileException) == sizeof(Exception) + sizeof(QString)
                  && sizeof(InvalidParameterException) == sizeof(Exception)
                  && sizeof(Exception) == sizeof(void*) + sizeof(QString),
              "nothing but the text, and for files the name");

} // namespace

class ExceptionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const QString file = QStringLiteral("a.txt");
        const QString text = QStringLiteral("Can't open the file");
        QTest::newRow("a text alone, placeholders and all") << Exception(QStringLiteral("50% of %1")).GetErrorText() << "50% of %1";
        QTest::newRow("file: given first, printed last") << FileException(file, text).GetErrorText() << "Can't open the file\nFile: a.txt";
        QTest::newRow("file: a placeholder in the text takes the name")
            << FileException(file, QStringLiteral("%1?")).GetErrorText() << "a.txt?\nFile: %2";
        QTest::newRow("file: a placeholder in the name stays")
            << FileException(QStringLiteral("%1%2.txt"), text).GetErrorText() << "Can't open the file\nFile: %1%2.txt";
        QTest::newRow("memory without a size") << OutOfMemoryException(text).GetErrorText() << "Can't open the file";
        QTest::newRow("memory: more than 32 bits")
            << OutOfMemoryException(QStringLiteral("Image"), 1ul << 32).GetErrorText() << "Image\nAttempted to allocate 4294967296 bytes";
        QTest::newRow("memory: the largest size is not negative")
            << OutOfMemoryException(QStringLiteral("Image"), ~0ul).GetErrorText()
            << "Image\nAttempted to allocate 18446744073709551615 bytes";
        QTest::newRow("memory: a placeholder in the text takes the size")
            << OutOfMemoryException(QStringLiteral("%1"), 7).GetErrorText() << "7\nAttempted to allocate %2 bytes";
        QTest::newRow("factory") << FactoryException(QStringLiteral("%1Cube")).GetErrorText() << "Can't create object of type %1Cube";
        QTest::newRow("object: name, then details")
            << ObjectLoadingException(QStringLiteral("Cube"), QStringLiteral("no mesh")).GetErrorText()
            << "Error loading object 'Cube':\nno mesh";
        QTest::newRow("object: a higher placeholder in the name comes after the details'")
            << ObjectLoadingException(QStringLiteral("%2"), QStringLiteral("d")).GetErrorText() << "Error loading object 'd':\nd";
        QTest::newRow("parameter: given second, printed first")
            << InvalidParameterException(QStringLiteral("ReadMaterial"), QStringLiteral("value"), QStringLiteral("x")).GetErrorText()
            << "Invalid parameter 'value' passed to method 'ReadMaterial':\nx";
        QTest::newRow("parameter: a placeholder in the parameter takes the method")
            << InvalidParameterException(QStringLiteral("m"), QStringLiteral("%1"), QStringLiteral("d")).GetErrorText()
            << "Invalid parameter 'm' passed to method 'd':\n%3";
    }

    void Texts()
    {
        QFETCH(QString, text);
        QTEST(text, "expected");
    }

    void FileNameIsKeptAsGiven()
    {
        const FileException e(QStringLiteral("..\\Maps//%1.PNG"), QStringLiteral("%1"));
        QCOMPARE(e.GetFileName(), QStringLiteral("..\\Maps//%1.PNG"));
        QCOMPARE(FileException(e).GetFileName(), e.GetFileName());
        QCOMPARE(FileException(e).GetErrorText(), e.GetErrorText());
    }

    void AcrossLibraries_data()
    {
        QTest::addColumn<Thrower>("thrower");
        QTest::addColumn<QByteArray>("thrown");
        QTest::addColumn<QString>("text");

        static QLibrary plugin(QStringLiteral(EXCEPTION_PLUGIN)); // symbols stay local unless asked otherwise
        const auto loaded = reinterpret_cast<Thrower>(plugin.resolve("ThrowByName"));
        QVERIFY2(loaded, qPrintable(plugin.errorString()));
        QVERIFY(loaded != &ThrowByName);

        for (const Handler& handler : kHandlers) {
            const QByteArray thrown = handler.className;
            QString text = QStringLiteral("text");
            if (thrown == "FileException")
                text = QStringLiteral("text\nFile: file");
            if (thrown == "FactoryException")
                text = QStringLiteral("Can't create object of type text");
            if (thrown == "ObjectLoadingException")
                text = QStringLiteral("Error loading object 'object':\ntext");
            if (thrown == "InvalidParameterException")
                text = QStringLiteral("Invalid parameter 'parameter' passed to method 'method':\ntext");
            QTest::newRow((thrown + " from a linked library").constData()) << &ThrowByName << thrown << text;
            QTest::newRow((thrown + " from a library loaded at run time").constData()) << loaded << thrown << text;
        }
    }

    void AcrossLibraries()
    {
        QFETCH(Thrower, thrower);
        QFETCH(QByteArray, thrown);
        QFETCH(QString, text);
        for (const Handler& handler : kHandlers) {
            const QByteArray name = handler.className;
            const bool catches = name == "Exception" || name == thrown
                || (name == "LoadingException" && thrown == "ObjectLoadingException");
            const QString caught = handler.caught(thrower, thrown.constData());
            QVERIFY2(caught == (catches ? text : QString()), handler.className);
        }
    }
};

QTEST_APPLESS_MAIN(ExceptionsTest)
#include "exceptions_test.moc"
