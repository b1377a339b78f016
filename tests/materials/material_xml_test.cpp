#include "lumenta/foundation/Exceptions.h"
#include "lumenta/materials/MaterialXml.h"
#include "tests/foundation/DecimalComma.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/resource.h>

using Parameters = QMap<QString, QVariant>;

namespace {

const QString kUnreadable = QStringLiteral("Can't parse XML material description"), kVersion = QStringLiteral("Unsupported or missing version");
const QString kEmpty = QStringLiteral("Material tag not contain any child tags"), kDouble = QStringLiteral("Material tag contain double child tags");
const QString kLacks = QStringLiteral("Invalid material format: 'parameter' node doesn't have necessary attributes");

/// What has been read, and the message if it was not all.
QString Read(const QByteArray& xml, Parameters parameters = {})
{
    QString name = "unnamed", error;
    try {
        ReadMaterial(xml, name, parameters);
    } catch (const InvalidParameterException& e) {
        error = " / " + e.GetErrorText().remove("Invalid parameter 'xml' passed to method 'ReadMaterial':\n");
    }
    for (auto entry = parameters.cbegin(); entry != parameters.cend(); ++entry)
        name += (entry->type() == QVariant::String ? " " : " typed ") + entry.key() + "=" + entry->toString();
    return name + error;
}

} // namespace

class MaterialXmlTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    static QByteArray Repeat(int count, const QByteArray& text) { return text.repeated(count); }
    static QByteArray Parameter(const QByteArray& value) { return "<parameter name='a' value='" + value + "'/>"; }
    static QByteArray Material(const QByteArray& content, const QByteArray& attributes = "version='1' name='oak'")
    {
        return "<material " + attributes + ">" + content + "</material>";
    }
    static QByteArray Declared(const QByteArray& declarations, const QByteArray& value, const QByteArray& content = "")
    {
        return "<!DOCTYPE material [" + declarations + "]>" + Material(content + Parameter(value));
    }

private Q_SLOTS:
    /// Everything here must hold where a decimal comma reigns, in a locale that really exists.
    void initTestCase() { QVERIFY(LetDecimalCommaReign(m_folder)); }

    void Documents_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("read");
        const QByteArray one = Parameter("1");
        const auto row = [](auto name, const QByteArray& xml, const QString& read) {
            QTest::newRow(name) << xml << read;
        };
        row("the first of two, inside something else", "<x><y>" + Material(one) + "</y><material/></x>", "oak a=1");
        row("a prefix", "<m:material xmlns:m='m'/>", "unnamed / Invalid material format: bad root node");
        for (const char* version : {"1", "01", " 1 ", "+1"})
            row(version, Material(one, QByteArray("name='oak' version='") + version + "'"), "oak a=1");
        for (const char* version : {"", "1.0", "1,0", "2", "0x1", "4294967297"})
            row(version, Material(one, QByteArray("name='oak' version='") + version + "'"), "unnamed / " + kVersion);
        row("no version", Material(one, "name='oak'"), "unnamed / " + kVersion);
        row("no name", Material("", "version='1'"), "unnamed / Invalid material format: can't find 'material.name'");
        row("neither version nor name", Material("", ""), "unnamed / " + kVersion);
        row("an empty name", Material(one, "version='1' name=''"), " a=1");
        row("no content", Material(""), "oak / " + kEmpty);
        row("white space only", Material(" \n\t&#32;"), "oak / " + kEmpty);
        const QString unsupported = "oak a=1 / Invalid material format: unsupported node '";
        row("a comment", Material(one + "<!-- -->"), unsupported + "#comment'");
        row("an unknown entity", Material(one + "&oops;"), unsupported + "oops'");
        row("another case", Material(one + "<Parameter name='b' value=''/>"), unsupported + "Parameter'");
        row("an instruction of the right name", Material("<?parameter name='a' value='1'?>"), "oak / " + kLacks);
        row("no value", Material(one + "<parameter name='b'/>"), "oak a=1 / " + kLacks);
        row("a value without a name", Material(one + "<parameter value='2'/>"), "oak a=1 / " + kLacks);
        row("the same again", Material(one + one + "<x/>"), "oak a=1 / " + kDouble);
        row("another value, and back", Material(one + Parameter("2") + one), "oak a=1");
        row("an attribute twice", Material("<parameter name='a' value='1' value='2'/>"), "oak a=2");
        row("declared and unknown entities", Declared("<!ENTITY e 'x&amp;y'>", "&e;&f;&#x2f;"), "oak a=x&y/");
        row("no UTF-8", Material(Parameter("\xff\xc3")), QString::fromUtf8("oak a=\uFFFD\uFFFD"));
        row("a NUL", Material(Parameter(QByteArray("x\0y", 3))), "oak a=x" + QString(QChar(0)) + "y");
        row("no character at all", Material(Parameter("\xef\xbf\xbf")), "unnamed / " + kUnreadable);

        const QString refused = "unnamed / " + kUnreadable; // what would exhaust stack, memory or patience
        row("1,000 levels", Repeat(998, "<x>") + Material(one) + Repeat(998, "</x>"), "oak a=1");
        row("1,001 levels", Repeat(999, "<x>") + Material(one) + Repeat(999, "</x>"), refused);
        row("1,000 elements side by side", Material(Repeat(500, Parameter("2") + one)), "oak a=1");
        row("1,000,000 levels", Repeat(1000000, "<x>"), refused);
        row("levels declared", Declared("<!ENTITY e '" + Repeat(300, "<x>") + "'>", "", Repeat(9, "&e;")), refused);
        row("brackets", Declared("<!ELEMENT x " + Repeat(480, "(") + "y" + Repeat(480, ")") + ">", ""), "oak a=");
        row("100,000 brackets", Declared("<!ELEMENT x " + Repeat(100000, "("), ""), refused);
        const QByteArray both = "<!ENTITY f '" + Repeat(15, "&e;") + "'><!ENTITY e '" + Repeat(600, "x") + "'>";
        row("20,000 entities", Declared(Repeat(20000, "<!ENTITY e 'x'>"), ""), refused);
        row("entities of entities", Declared(both, Repeat(15, "&f;")), refused);
        row("entities of entities, as content", Declared(both, "", Repeat(15, "&f;")), refused);
        const QByteArray longest = "<!ENTITY e '" + Repeat(900, "x") + "'>";
        row("20 references", Declared(longest, Repeat(20, "&e;")), "oak a=" + Repeat(18000, "x"));
        row("21 references", Declared(longest, Repeat(21, "&e;")), refused);
        row("as many, nothing declared", Material(Parameter(Repeat(1000000, "&lt;"))), "oak a=" + Repeat(1000000, "<"));
        row("20 MB of value", Material(Parameter(Repeat(20000000, "x"))), "oak a=" + Repeat(20000000, "x"));
    }

    /// On a small stack, and in memory that grows with the document only.
    void Documents()
    {
        QFETCH(QByteArray, xml);
        QString read;
        QScopedPointer<QThread> thread(QThread::create([&] { read = Read(xml); }));
        thread->setStackSize(512 * 1024);
        thread->start();
        thread->wait();
        QTEST(read, "read");
        rusage usage;
        QVERIFY(getrusage(RUSAGE_SELF, &usage) == 0 && usage.ru_maxrss < 1000000); // kB
    }

    /// The map's value is compared with the text, in its own type.
    void WhatTheMapHoldsTakesPart()
    {
        QCOMPARE(Read(Material(Parameter("01")), {{"a", 1}, {"b", 7}}), "oak typed a=1 typed b=7 / " + kDouble);
        QCOMPARE(Read(Material(Parameter("5e-1")), {{"a", 0.5}}), "oak typed a=0.5 / " + kDouble);
        QCOMPARE(Read(Material(Parameter("0,5")), {{"a", 0.5}, {"b", 7}}), QString("oak a=0,5 typed b=7"));
        QCOMPARE(Read(Material(Parameter("01")), {{"a", "1"}}), QString("oak a=01"));
    }

    void NothingIsFetched()
    {
        const int socket = ::socket(AF_INET, SOCK_STREAM, 0), watch = inotify_init();
        sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t size = sizeof address;
        auto* const pAddress = reinterpret_cast<sockaddr*>(&address);
        QVERIFY(!bind(socket, pAddress, size) && !listen(socket, 9) && !getsockname(socket, pAddress, &size));
        QTemporaryFile secret;
        QVERIFY(secret.open());
        const QByteArray file = secret.fileName().toUtf8();
        QVERIFY(inotify_add_watch(watch, file.constData(), IN_ALL_EVENTS) > 0);
        const QByteArray host = "http://127.0.0.1:" + QByteArray::number(ntohs(address.sin_port)) + "/";
        for (const QByteArray& url : {file, "file://" + file, host}) {
            const QByteArray type = "<!DOCTYPE material SYSTEM '" + url + "' [<!ENTITY e SYSTEM '" + url
                + "'><!ENTITY % p PUBLIC 'p' '" + url + "'>%p;]>";
            QCOMPARE(Read(type + Material("&e;")), QString("oak / Invalid material format: unsupported node 'e'"));
            QCOMPARE(Read(type + Material(Parameter("&e;"))), "unnamed / " + kUnreadable);
        }
        pollfd touched[] = {{socket, POLLIN, 0}, {watch, POLLIN, 0}};
        QCOMPARE(poll(touched, 2, 0), 0);
        QVERIFY(QFile(secret.fileName()).open(QIODevice::ReadOnly));
        QCOMPARE(poll(touched, 2, 0), 1); // so it would have been noticed
    }

    /// Cut off it is refused whole, and however it is damaged, no other exception leaves.
    void DamagedDocuments()
    {
        const QByteArray xml = MaterialToXml("oak", {{"a", QString("\"<&>")}, {"b", 2}}).trimmed();
        QCOMPARE(Read(xml), QString("oak a=\"<&> b=2"));
        for (int i = 0; i < xml.size(); ++i) {
            QCOMPARE(Read(xml.left(i)), "unnamed / " + kUnreadable);
            for (const char byte : {'\0', '\xff', '<', '>', '&', '"', '/', ' '})
                Read(QByteArray(xml).replace(i, 1, &byte, 1));
        }
    }

    /// By way of a file; each text as a name, too.
    void Values()
    {
        Parameters written = {{"double", 1234567.25}, {"flag", true}, {"no text", QSize(1, 2)},
                              {"integer", std::numeric_limits<qlonglong>::min()}};
        Parameters read = {{"double", "1234567.25"}, {"flag", "true"}, {"no text", ""},
                           {"integer", "-9223372036854775808"}};
        for (const char* text : {"", " ", "\"<&>'", " \n\t\r ", "%1", "]]>", "&amp;", "\U0001D11E", "<!-- -->"})
            written[text] = read[text] = QString::fromUtf8(text);
        QTemporaryFile file;
        QVERIFY(file.open() && file.write(MaterialToXml("<\"&\n'>", written)) > 0 && file.flush());
        QCOMPARE(GetDefaultMaterial(file.fileName()), read);
        QVERIFY_EXCEPTION_THROWN(GetDefaultMaterial(m_folder.filePath("none")), FileException);
    }

    void TheDocumentAsWritten()
    {
        QString xml = MaterialToXml("oak", {{"a", 2}, {"Z", 1}});
        static const QRegularExpression attributes(R"((\w+="[^"]*") (name="[^"]*"))");
        xml.replace(attributes, R"(\2 \1)"); // either comes first
        QCOMPARE(xml, QString("<?xml version=\"1.0\" ?>\n<material name=\"oak\" version=\"1\">\n"
            " <parameter name=\"Z\" value=\"1\"/>\n <parameter name=\"a\" value=\"2\"/>\n</material>\n"));
    }
};

QTEST_GUILESS_MAIN(MaterialXmlTest)
#include "material_xml_test.moc"
