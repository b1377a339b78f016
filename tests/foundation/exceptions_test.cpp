#include "lumenta/foundation/Exceptions.h"
#include "tests/foundation/Exact.h"

#include <QLibrary>

#include <exception>
#include <map>

extern "C" void ThrowByName(const char* className); // tests/foundation/thrower.cpp, linked
using Thrower = void (*)(const char* className);
Q_DECLARE_METATYPE(Thrower)

namespace {

/// Whether a handler for `Class` catches what is thrown, its text whole.
template <typename Class>
bool Catches(Thrower thrower, const char* thrown)
{
    try {
        thrower(thrown);
    } catch (const Class& e) {
        return e.GetErrorText().contains("text");
    } catch (...) {
    }
    return false;
}

const std::map<QByteArray, bool (*)(Thrower, const char*)> kHandlers = {
    {"Exception", &Catches<Exception>}, {"ExporterException", &Catches<ExporterException>},
    {"LoadingException", &Catches<LoadingException>}, {"SavingException", &Catches<SavingException>},
    {"CastException", &Catches<CastException>}, {"ImageFormatException", &Catches<ImageFormatException>},
    {"UnsupportedFormatException", &Catches<UnsupportedFormatException>},
    {"LogicException", &Catches<LogicException>}, {"OutOfMemoryException", &Catches<OutOfMemoryException>},
    {"FileException", &Catches<FileException>}, {"FactoryException", &Catches<FactoryException>},
    {"ObjectLoadingException", &Catches<ObjectLoadingException>},
    {"InvalidParameterException", &Catches<InvalidParameterException>},
};

static_assert(!std::has_virtual_destructor<Exception>::value, "the virtual table begins with GetErrorText");
static_assert(!std::has_virtual_destructor<FileException>::value, "the virtual table begins with GetErrorText");
static_assert(!std::is_base_of<std::exception, Exception>::value);
static_assert(sizeof(FileException) == sizeof(Exception) + sizeof(QString)
                  && sizeof(Exception) == sizeof(void*) + sizeof(QString),
              "nothing but the text, and for files the name");

} // namespace

class ExceptionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Texts_data()
    {
        AnswerColumns();
        Row("a text alone, placeholders and all", Exception("50% of %1").GetErrorText(), "50% of %1");
        Row("file: given first, printed last, placeholders and all", FileException("%1%2", "text").GetErrorText(),
            "text\nFile: %1%2");
        Row("file: a placeholder in the text takes the name", FileException("a", "%1?").GetErrorText(), "a?\nFile: %2");
        Row("file: the name is kept as given", FileException("..\\a//%1.PNG", "%1").GetFileName(), "..\\a//%1.PNG");
        Row("memory: the largest is not negative", OutOfMemoryException("Image", ~0ul).GetErrorText(),
            "Image\nAttempted to allocate 18446744073709551615 bytes");
        Row("factory", FactoryException("%1Cube").GetErrorText(), "Can't create object of type %1Cube");
        Row("object: a placeholder in the name takes the details", ObjectLoadingException("%2", "d").GetErrorText(),
            "Error loading object 'd':\nd");
        Row("parameter: a placeholder takes the method", InvalidParameterException("m", "%1", "d").GetErrorText(),
            "Invalid parameter 'm' passed to method 'd':\n%3");
    }
    void Texts() { CompareAnswer(); }

    void AcrossLibraries_data()
    {
        QTest::addColumn<Thrower>("thrower");
        static QLibrary plugin(QStringLiteral(EXCEPTION_PLUGIN)); // symbols stay local unless asked otherwise
        const auto loaded = reinterpret_cast<Thrower>(plugin.resolve("ThrowByName"));
        QVERIFY2(loaded && loaded != &ThrowByName, qPrintable(plugin.errorString()));
        QTest::newRow("from a linked library") << &ThrowByName;
        QTest::newRow("from a library loaded at run time") << loaded;
    }

    void AcrossLibraries()
    {
        QFETCH(Thrower, thrower);
        for (const auto& [thrown, itself] : kHandlers) {
            for (const auto& [name, catches] : kHandlers) {
                const bool is = name == thrown || name == "Exception"
                    || (name == "LoadingException" && thrown == "ObjectLoadingException");
                QVERIFY2(catches(thrower, thrown.constData()) == is, qPrintable(thrown + " caught as " + name));
            }
        }
    }
};

QTEST_APPLESS_MAIN(ExceptionsTest)
#include "exceptions_test.moc"
