#include "lumenta/foundation/Exceptions.h"
#include "lumenta/materials/MaterialMimeData.h"
#include "lumenta/materials/MaterialXml.h"

#include <QtTest>

using Parameters = QMap<QString, QVariant>;

class MaterialMimeTest : public QObject {
    Q_OBJECT

private:
    const Parameters m_oak = {{"gloss", 0.5}};
    const QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath("lumenta/oak.mtl");

    static bool Write(const QString& path)
    {
        QFile file(path);
        return QFileInfo(path).dir().mkpath(".") && file.open(QIODevice::WriteOnly) && file.write("other") == 5;
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(QDir(m_folder.path()).removeRecursively() && QDir().mkpath(m_folder.path()));
        QVERIFY(qputenv("TMPDIR", QFile::encodeName(m_folder.path())));
    }

    void AnyReaderGetsNameAndFile()
    {
        Parameters parameters = m_oak;
        QVariant& gloss = parameters["gloss"];
        MaterialMimeData material(parameters, "oak");
        gloss = 1.0; // does not reach its copy
        QMimeData& reader = material;
        reader.setData("text/html", "x");
        QCOMPARE(reader.formats(), (QStringList{"text/uri-list", "text/plain"}));
        QVERIFY(reader.hasUrls() && reader.hasText() && !reader.hasFormat("Text/Plain") && !reader.hasHtml());
        QVERIFY(!reader.hasFormat("text/uri-list "));
        QCOMPARE(reader.data("text/html"), QByteArray("x"));
        QCOMPARE(reader.text(), QString("oak"));
        QCOMPARE(material.retrieveData("text/plain", QVariant::Int), QVariant(QString("oak")));
        QVERIFY(!QFile::exists(QFileInfo(m_path).path())); // so far nobody asked
        QCOMPARE(reader.urls(), QList<QUrl>{QUrl::fromLocalFile(m_path)});
        QCOMPARE(reader.data("text/uri-list"), "file://" + m_path.toUtf8() + "\r\n");
        QCOMPARE(GetDefaultMaterial(m_path), (Parameters{{"gloss", "0.5"}}));
        QCOMPARE(material.GetParameters(), m_oak);
        QCOMPARE(material.GetBaseFolder(), QFileInfo(m_path).path());
        QFile file(m_path);
        QString name;
        Parameters read;
        QVERIFY(file.open(QIODevice::ReadOnly));
        ReadMaterial(file.readAll(), name, read);
        QCOMPARE(name, QString("oak"));
        QVERIFY(material.IsMaterial() && material.GetName() == "oak" && reader.inherits("MaterialMimeData"));

        QVERIFY(Write(m_path) && reader.urls().size() == 1 && QFile(m_path).size() == 5); // written once by each object
        MaterialMimeData(m_oak, "oak").urls();
        QCOMPARE(GetDefaultMaterial(m_path).size(), 1);
    }

    void TheImageIsOfferedInstead()
    {
        const auto offered = [](const QVariant& texture) {
            const MaterialMimeData material({{"texture", texture}}, "oak");
            return material.IsMaterial() ? QString() : material.urls().value(0).toLocalFile();
        };
        QCOMPARE(offered("/wood/a b#1%20.png"), QString("/wood/a b#1%20.png"));
        QCOMPARE(offered(QUrl("/wood/b.png")), QString("/wood/b.png")); // whatever has a text
        QVERIFY(!QFile::exists(m_path));
        QVERIFY(offered("") == m_path && QFile::exists(m_path)); // there is no image, so the material is written
    }

    void RemovesTheFileIfAsked()
    {
        const auto remains = [this](const Parameters& parameters, bool isWritten, bool cleanup) {
            QScopedPointer<MaterialMimeData> material(new MaterialMimeData(parameters, "oak"));
            if (cleanup) material->Cleanup();
            if (isWritten) material->urls();
            const bool isThere = QFile::exists(m_path);
            delete static_cast<QMimeData*>(material.take());
            return isThere && QFile::exists(m_path);
        };
        QVERIFY(remains(m_oak, true, false));
        QVERIFY(remains(m_oak, false, true)); // another's file
        QVERIFY(!remains(m_oak, true, true) && !QFile::exists(m_path) && Write(m_path));
        QVERIFY(remains({{"texture", m_path}}, true, false));
        QVERIFY(!remains({{"texture", m_path}}, false, true) && !QFile::exists(m_path)); // also the image
    }

    /// The exception passes through the toolkit; later the path is offered without a file.
    void AMaterialThatCannotBeWritten()
    {
        for (const QString& name : {QString("a/b"), QString("oak")}) {
            const QString path = m_folder.filePath("lumenta/" + name + ".mtl");
            const MaterialMimeData material(m_oak, name);
            try {
                material.urls();
                QFAIL("nothing thrown");
            } catch (const FileException& e) {
                QCOMPARE(e.GetErrorText(), "Can't open the file\nFile: " + path);
            }
            QCOMPARE(material.urls(), QList<QUrl>{QUrl::fromLocalFile(path)});
            QVERIFY(QDir(QFileInfo(m_path).path()).removeRecursively() && Write(m_folder.filePath("lumenta")));
        }
    }
};

QTEST_GUILESS_MAIN(MaterialMimeTest)
#include "material_mime_test.moc"
