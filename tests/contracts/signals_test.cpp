#include "AllContracts.h"

#include <QtTest>

#include <map>

namespace {

using MetaObject = const QMetaObject*;

template <typename Class>
MetaObject MetaObjectOf()
{
    if constexpr (std::is_base_of_v<QObject, Class>) return &Class::staticMetaObject;
    return nullptr;
}

QStringList Signals(MetaObject contract)
{
    QStringList result;
    for (int i = contract->methodOffset(); i < contract->methodCount(); ++i) {
        const QMetaMethod method = contract->method(i);
        const QByteArray names = method.parameterNames().join(',');
        const bool plain = method.methodType() == QMetaMethod::Signal && method.returnType() == QMetaType::Void;
        result += (plain ? "" : "no signal: ") + method.methodSignature() + (names.isEmpty() ? "" : ' ' + names);
    }
    return result;
}

/// Has the signals of a contract without implementing it.
class Emitter : public QObject {
public:
    MetaObject contract = nullptr;
    const QMetaObject* metaObject() const override { return contract; }
};

// What the signals carry. Addresses are only compared, never followed.
char places[3];
auto node = reinterpret_cast<const INode*>(&places[0]);
auto image = reinterpret_cast<IImage*>(&places[1]);
auto snapshot = reinterpret_cast<const ISnapshot*>(&places[2]);
auto nodeFlags = eNodeChangedMatrix | eNodeChangedLight;
auto sceneFlags = eSceneChangedGround | eSceneChangedDocument;
auto slot = eMaterialSlotBump;
auto exitCode = eRenderExitFailed;
sSceneModifications batch{"Group 3 objects", {}, {node}, {}, {}, true};
int place = 7;

/// Its slots have the signatures of the signals.
class Receiver : public QObject {
    Q_OBJECT

public:
    int whole = 0; ///< Calls that brought what was sent.

public Q_SLOTS:
    void nodeChanged(const INode* p, eNodeChangedFlags what) { whole += p == node && what == nodeFlags; }
    void sceneChanged(eSceneChangedFlags what) { whole += what == sceneFlags; }
    void beforeSceneUpdate(const sSceneModifications& b)
    {
        whole += b.strTitle == batch.strTitle && b.removed == batch.removed;
    }
    void imageLoad(eMaterialSlot s, IImage* p) { whole += s == slot && p == image; }
    void done(eRenderExitCode code) { whole += code == exitCode; }
    void insertSnapshot(const ISnapshot* p, int n) { whole += p == snapshot && n == place; }
};

/// A signal, connected as clients connect it: by its normalised signature.
struct Connection {
    MetaObject contract;
    QByteArray signal;
    std::vector<void*> arguments; // the first is for what is returned

    int Index() const { return contract->indexOfSignal(signal.constData()); }
    QList<QByteArray> Types() const { return contract->method(Index()).parameterTypes(); }
};

Connection connections[] = {
    {&IScene::staticMetaObject, "nodeChanged(const INode*,eNodeChangedFlags)", {nullptr, &node, &nodeFlags}},
    {&IScene::staticMetaObject, "sceneChanged(eSceneChangedFlags)", {nullptr, &sceneFlags}},
    {&IScene::staticMetaObject, "beforeSceneUpdate(sSceneModifications)", {nullptr, &batch}},
    {&IMaterial::staticMetaObject, "imageLoad(eMaterialSlot,IImage*)", {nullptr, &slot, &image}},
    {&IRender::staticMetaObject, "done(eRenderExitCode)", {nullptr, &exitCode}},
    {&ISnapshotManager::staticMetaObject, "insertSnapshot(const ISnapshot*,int)", {nullptr, &snapshot, &place}},
};

} // namespace

Q_DECLARE_METATYPE(MetaObject)
Q_DECLARE_METATYPE(Connection*)

class SignalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The first of all: what is registered stays so.
    void LoadingRegistersNothing()
    {
        for (const Connection& connection : connections) {
            const QList<QByteArray> types = connection.Types();
            for (const QByteArray& type : types)
                QVERIFY2(type == "int" || QMetaType::type(type) == QMetaType::UnknownType, type.constData());
        }
    }

    void ArrivesFromAnotherThread_data()
    {
        QTest::addColumn<Connection*>("wanted");
        for (Connection& connection : connections)
            QTest::newRow(connection.signal.constData()) << &connection;
    }
    void ArrivesFromAnotherThread()
    {
        QFETCH(Connection*, wanted);
        RegisterSignalArgumentTypes();
        Emitter emitter;
        Receiver receiver;
        emitter.contract = wanted->contract;
        QVERIFY(QObject::connect(&emitter, ('2' + wanted->signal).constData(), &receiver,
                                 ('1' + wanted->signal).constData()));
        const QList<QByteArray> types = wanted->Types();
        for (const QByteArray& type : types)
            QVERIFY2(QMetaType::type(type) != QMetaType::UnknownType, type.constData());
        const QScopedPointer<QThread> thread(QThread::create([&] {
            QMetaObject::activate(&emitter, wanted->contract, wanted->Index() - wanted->contract->methodOffset(),
                                  wanted->arguments.data());
        }));
        thread->start();
        QVERIFY(thread->wait());
        QCOMPARE(receiver.whole, 0); // queued until this thread asks for it
        QCoreApplication::sendPostedEvents(&receiver);
        QCOMPARE(receiver.whole, 1);
    }

    void EachContractHasItsSignalsAlone_data()
    {
        QTest::addColumn<MetaObject>("contract");
#define CONTRACT(name)                                                                                                 \
    if (MetaObject contract = MetaObjectOf<name>()) QTest::newRow(#name) << contract;
#define OPERATION(...)
#define END_CONTRACT
#include "operations.txt"
    }
    void EachContractHasItsSignalsAlone()
    {
        QFETCH(MetaObject, contract);
        QCOMPARE(contract->className(), QTest::currentDataTag());
        QCOMPARE(contract->superClass(), &QObject::staticMetaObject);
        const std::map<QByteArray, QStringList> listed = {
#define SIGNALS(name, ...) {#name, {__VA_ARGS__}},
#include "signals.txt"
        };
        const auto expected = listed.find(contract->className());
        QCOMPARE(Signals(contract), expected == listed.end() ? QStringList() : expected->second);
        QCOMPARE(contract->propertyCount(), contract->propertyOffset());
        QCOMPARE(contract->enumeratorCount(), contract->enumeratorOffset());
        QCOMPARE(contract->classInfoCount(), contract->classInfoOffset());
        QCOMPARE(contract->constructorCount(), 0);
    }
};

QTEST_GUILESS_MAIN(SignalsTest)

#include "signals_test.moc"
