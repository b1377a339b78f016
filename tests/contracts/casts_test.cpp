#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/ISettings.h"

#include <QLibrary>
#include <QtTest>

#include <memory>

namespace {

/// An object of the plug-in.
std::unique_ptr<QObject> Make(const QString& kind)
{
    using Maker = QObject* (*)(const QString&);
    const auto maker = reinterpret_cast<Maker>(QLibrary::resolve(CONTRACT_PLUGIN, "MakeObject"));
    return std::unique_ptr<QObject>(maker ? maker(kind) : nullptr);
}

} // namespace

class CastsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ByName_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("casts");
        const QByteArray mesh = "com.quillwright.lumenta.IMeshNode";
        const QByteArray light = "com.quillwright.lumenta.ILightNode";
        const QByteArray document = "com.quillwright.lumenta.IDocumentContext";
        QTest::newRow("a mesh node is a node") << "mesh node" << QByteArray("INode") << true;
        QTest::newRow("a mesh node holds meshes") << "mesh node" << mesh << true;
        QTest::newRow("a mesh node gives no light") << "mesh node" << light << false;
        QTest::newRow("a mesh node is no mesh") << "mesh node" << QByteArray("IMesh") << false;
        QTest::newRow("a document") << "document" << document << true;
        QTest::newRow("a document holds no meshes") << "document" << mesh << false;
        QTest::newRow("settings") << "settings" << QByteArray("ISettings") << true;
        QTest::newRow("settings are no scene") << "settings" << QByteArray("IScene") << false;
    }
    void ByName()
    {
        QFETCH(QString, kind);
        QFETCH(QByteArray, name);
        QFETCH(bool, casts);
        const auto object = Make(kind);
        QVERIFY(object);
        QCOMPARE(object->qt_metacast(name.constData()) != nullptr, casts);
        QCOMPARE(object->inherits(name.constData()), casts);
    }

    void ByTypeReachesTheImplementation()
    {
        const auto object = Make("mesh node");
        QVERIFY(object);
        QCOMPARE(qobject_cast<INode*>(object.get())->GetName(), QStringLiteral("node of a plug-in"));
        QCOMPARE(qobject_cast<IMeshNode*>(object.get())->GetSource(), QStringLiteral("mesh of a plug-in"));
        QCOMPARE(qobject_interface_iid<ILightNode*>(), "com.quillwright.lumenta.ILightNode");
        QVERIFY(!qobject_cast<IMesh*>(object.get()) && !qobject_cast<ILightNode*>(object.get()));
    }

    void SignalOfThePlugInArrives()
    {
        const auto object = Make("settings");
        auto* const settings = qobject_cast<ISettings*>(object.get());
        QVERIFY(settings);
        const char* const text = SIGNAL(onValueChanged(QString, QVariant));
        QSignalSpy byText(settings, text);
        QSignalSpy byAddress(settings, &ISettings::onValueChanged); // that is one address in all libraries
        settings->SetValue("embree/samples", 16);
        const QList<QVariantList> expected{{"embree/samples", 16}};
        QCOMPARE(static_cast<const QList<QVariantList>&>(byText), expected);
        QCOMPARE(static_cast<const QList<QVariantList>&>(byAddress), expected);
    }
};

QTEST_APPLESS_MAIN(CastsTest)

#include "casts_test.moc"
