#include "AllContracts.h"
#include "lumenta/foundation/Exceptions.h"

#include <QtTest>

#include <dlfcn.h>

#include <cstring>
#include <map>
#include <type_traits>

namespace {

/// A last operation behind all those of `Class`: its place is their number.
template <typename Class>
struct Probe : Class {
    virtual void Last() = 0;

protected:
    ~Probe() = default; // NOLINT(modernize-use-override): not all have a virtual one
};

/// The place in the table of virtual operations to which a pointer to one of
/// them leads, as compilers lay it out. Of an operation that is not virtual it
/// makes an address, far beyond any table.
template <typename Class, typename Signature>
qint64 PlaceOf(Signature Class::*operation)
{
    qintptr words[2];
    static_assert(sizeof operation == sizeof words);
    std::memcpy(words, &operation, sizeof words);
    return (words[0] & ~qintptr(1)) / qintptr(sizeof(void*));
}

/// A contract as the compiler sees it, beside what operations.txt says of it.
struct Contract {
    bool isQObject, isAbstract, hasVirtualDestructor;
    std::size_t size;
    qint64 first = 0;       ///< Place of the first operation of its own.
    QStringList listed{};   ///< By operations.txt.
    QStringList compiled{}; ///< By the compiler, as far as listed at all.

    void Add(const char* operation, qint64 place)
    {
        listed.append(operation);
        if (place >= first && place < first + compiled.size()) compiled[int(place - first)] = operation;
    }
};

template <typename Class>
Contract Compiled()
{
    Contract contract{std::is_base_of_v<QObject, Class>, std::is_abstract_v<Class>,
                      std::has_virtual_destructor_v<Class>, sizeof(Class)};
    // A virtual destructor takes two places.
    contract.first = contract.isQObject ? PlaceOf(&Probe<QObject>::Last) : contract.hasVirtualDestructor ? 2 : 0;
    for (qint64 place = contract.first; place < PlaceOf(&Probe<Class>::Last); ++place)
        contract.compiled.append("an operation that the table does not name");
    return contract;
}

std::map<QByteArray, Contract> ReadContracts()
{
    std::map<QByteArray, Contract> contracts;
// clang-format off
#define CONTRACT(name)                                                                                                 \
    {                                                                                                                  \
        using Class = name;                                                                                            \
        [[maybe_unused]] Contract& contract = contracts.emplace(#name, Compiled<Class>()).first->second;
#define OPERATION(name, ...) contract.Add(#name, PlaceOf<Class, __VA_ARGS__>(&Class::name));
#define END_CONTRACT }
// clang-format on
#include "operations.txt"
    return contracts;
}

const std::map<QByteArray, Contract> kContracts = ReadContracts();

void ContractRows()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : kContractNames)
        QTest::newRow(name) << QByteArray(name);
}

struct BareGenerator : IGenerator {
    void Generate(IMeshNodeBuilder&) override {}
    QVariant GetValue(const QString&) const override { return {}; }
    void SetValue(const QString&, const QVariant&) override {}
};

struct BareUploader : IUploader {
    void Upload(const QString&, const QMap<QString, QVariant>&) override {}
    void Cancel() override {}
};

struct Exporter : IExporter {};

} // namespace

class OperationsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EachHasItsPlace_data() { ContractRows(); }
    void EachHasItsPlace()
    {
        QFETCH(QByteArray, name);
        QVERIFY2(kContracts.count(name), "operations.txt lacks the contract");
        const Contract& contract = kContracts.at(name);
        for (int i = 0; i < qMax(contract.listed.size(), contract.compiled.size()); ++i) {
            const QString listed = contract.listed.value(i, "nothing");
            const QString compiled = contract.compiled.value(i, "nothing");
            QVERIFY2(listed == compiled,
                     qPrintable(QStringLiteral("%1, place %2: %3 in operations.txt, %4 in the header")
                                    .arg(QString(name), QString::number(i + 1), listed, compiled)));
        }
    }

    void NumberAndPlacesThatTheLibraryFixes_data() { ContractRows(); }
    void NumberAndPlacesThatTheLibraryFixes()
    {
        QFETCH(QByteArray, name);
        const std::map<QByteArray, std::pair<int, QString>> pinned = {
#define PINNED(name, number, places) {#name, {number, places}},
#include "numbers.txt"
        };
        QVERIFY2(pinned.count(name), "numbers.txt lacks the contract");
        const auto& [number, places] = pinned.at(name);
        const QStringList compiled = kContracts.at(name).compiled;
        QCOMPARE(compiled.size(), number);
        const QStringList all = places.split(", ", Qt::SkipEmptyParts);
        for (const QString& fixed : all) {
            const int place = fixed.section(' ', 0, 0).toInt();
            QCOMPARE(QStringLiteral("%1 %2").arg(place).arg(compiled.value(place - 1)), fixed);
        }
    }

    void NothingButOperations_data() { ContractRows(); }
    void NothingButOperations()
    {
        QFETCH(QByteArray, name);
        const Contract& contract = kContracts.at(name);
        QVERIFY(contract.isAbstract);
        QCOMPARE(contract.size, contract.isQObject ? sizeof(QObject) : sizeof(void*));
        const bool deletedByContract =
            contract.isQObject || name == "IFileDialog" || name == "IImageSaver" || name == "IMeshNodeBuilder";
        QCOMPARE(contract.hasVirtualDestructor, deletedByContract);
    }

    void WhichHaveABodyInTheLibrary_data() { ContractRows(); }
    void WhichHaveABodyInTheLibrary()
    {
        QFETCH(QByteArray, name);
        const Contract& contract = kContracts.at(name);
        if (!contract.hasVirtualDestructor) return; // the library holds nothing of it
        const QByteArray symbol = "_ZTV" + QByteArray::number(name.size()) + name;
        auto* const table = static_cast<void**>(dlsym(RTLD_DEFAULT, symbol.constData()));
        void* const pure = dlsym(RTLD_DEFAULT, "__cxa_pure_virtual");
        QVERIFY(table && pure);
        QStringList bodies;
        for (int i = 0; i < contract.compiled.size(); ++i)
            if (table[2 + contract.first + i] != pure) bodies.append(contract.compiled[i]); // 2: two words come before
        const QMap<QByteArray, QStringList> expected{{"IGenerator", {"CreateEditor", "GetParameters", "GetPresets"}},
                                                     {"IUploader", {"SetPin"}}};
        QCOMPARE(bodies, expected.value(name));
    }

    void WhatTheBodiesDo()
    {
        BareGenerator generator;
        QVERIFY(!generator.CreateEditor(this));
        QVERIFY(generator.GetParameters().isEmpty() && generator.GetPresets().isEmpty());
        delete static_cast<IExporter*>(new Exporter); // pure as its destructor is, it has a body
        QString text;
        try {
            BareUploader().SetPin("1234");
        } catch (const Exception& e) {
            text = e.GetErrorText();
        }
        QCOMPARE(text, QStringLiteral("Not implement"));
    }

    void ContractVersionIsTheProjects() { QCOMPARE(LUMENTA_CONTRACT_VERSION, PROJECT_CONTRACT_VERSION); }
};

QTEST_APPLESS_MAIN(OperationsTest)

#include "operations_test.moc"
