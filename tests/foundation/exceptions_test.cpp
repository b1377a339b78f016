#include "lumenta/foundation/Exceptions.h"
#include "tests/foundation/Exact.h"

#include <QLibrary>

#include <exception>
#include <map>
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

const std::map<QByteArray, QString (*)(Thrower, const char*)> kHandlers = {
    {"Exception", &CaughtAs<Exception>}, {"ExporterException", &CaughtAs<ExporterException>},
    {"LoadingException", &CaughtAs<LoadingException>}, {"SavingException", &CaughtAs<SavingException>},
    {"CastException", &CaughtAs<CastException>}, {"ImageFormatException", &CaughtAs<ImageFormatException>},
    {"UnsupportedFormatException", &CaughtAs<UnsupportedFormatException>},
    {"LogicException", &CaughtAs<LogicException>}, {"OutOfMemoryException", &CaughtAs<OutOfMemoryException>},
    {"FileException", &CaughtAs<FileException>}, {"FactoryException", &CaughtAs<FactoryException>},
    {"ObjectLoadingException", &CaughtAs<ObjectLoadingException>},
    {"InvalidParameterException", &CaughtAs<InvalidParameterException>},
};

static_assert(!std::has_virtual_destructor<Exception>::value && !std::has_virtual_destructor<FileException>::value,
              "the virtual table begins with GetErrorText");
static_assert(!std::is_base_of<std::exception, Exception>::value);
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
        AnswerColumns();
        const auto row = [](const char* name, const Exception& e, const char* expected) {
            QTest::newRow(name) << e.GetErrorText() << QString::fromLatin1(expected);
        };
        row("a text alone, placeholders and all", Exception("50% of %1"), "50% of %1");
        row("file: given first, printed last", FileException("a.txt", "Can't open the file"),
            "Can't open the file\nFile: a.txt");
        row("file: a placeholder in the text takes the name", FileException("a", "%1?"), "a?\nFile: %2");
        row("file: a placeholder in the name stays", FileException("%1%2", "text"), "text\nFile: %1%2");
        row("memory: more than 32 bits", OutOfMemoryException("Image", 1ul << 32),
            "Image\nAttempted to allocate 4294967296 bytes");
        row("memory: the largest is not negative", OutOfMemoryException("Image", ~0ul),
            "Image\nAttempted to allocate 18446744073709551615 bytes");
        row("memory: a placeholder in the text takes the size", OutOfMemoryException("%1", 7),
            "7\nAttempted to allocate %2 bytes");
        row("factory", FactoryException("%1Cube"), "Can't create object of type %1Cube");
        row("object: name, then details", ObjectLoadingException("Cube", "no mesh"),
            "Error loading object 'Cube':\nno mesh");
        row("object: a placeholder in the name takes the details", ObjectLoadingException("%2", "d"),
            "Error loading object 'd':\nd");
        row("parameter: given second, printed first", InvalidParameterException("ReadMaterial", "value", "x"),
            "Invalid parameter 'value' passed to method 'ReadMaterial':\nx");
        row("parameter: a placeholder takes the method", InvalidParameterException("m", "%1", "d"),
            "Invalid parameter 'm' passed to method 'd':\n%3");
    }
    void Texts() { CompareAnswer(); }

    void FileNameIsKeptAsGiven()
    {
        QCOMPARE(FileException("..\\Maps//%1.PNG", "%1").GetFileName(), QStringLiteral("..\\Maps//%1.PNG"));
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

        const QHash<QByteArray, QString> composed{
            {"FileException", "text\nFile: file"},
            {"FactoryException", "Can't create object of type text"},
            {"ObjectLoadingException", "Error loading object 'object':\ntext"},
            {"InvalidParameterException", "Invalid parameter 'parameter' passed to method 'method':\ntext"}};
        for (const auto& [thrown, handler] : kHandlers) {
            const QString text = composed.value(thrown, "text");
            QTest::newRow((thrown + " from a linked library").constData()) << &ThrowByName << thrown << text;
            QTest::newRow((thrown + " from a library loaded at run time").constData()) << loaded << thrown << text;
        }
    }

    void AcrossLibraries()
    {
        QFETCH(Thrower, thrower);
        QFETCH(QByteArray, thrown);
        QFETCH(QString, text);
        for (const auto& [name, caught] : kHandlers) {
            const bool catches = name == "Exception" || name == thrown
                || (name == "LoadingException" && thrown == "ObjectLoadingException");
            QCOMPARE(caught(thrower, thrown.constData()), catches ? text : QString());
        }
    }
};

QTEST_APPLESS_MAIN(ExceptionsTest)
#include "exceptions_test.moc"
