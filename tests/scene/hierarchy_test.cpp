#include "benchmarks/NaiveScene.h"
#include "benchmarks/SceneStandIns.h"
#include "benchmarks/Workloads.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "tests/foundation/Exact.h"

#include <deque>

using StandIn::Node;
using List = std::vector<INode*>;

Q_DECLARE_METATYPE(List)

namespace {

QString PositionOf(const INode* node)
{
    try {
        return QString::number(GetNodePos(node));
    } catch (const Exception& error) {
        return (dynamic_cast<const LogicException*>(&error) ? "illogical: " : "") + error.GetErrorText();
    }
}

} // namespace

class HierarchyTest : public QObject {
    Q_OBJECT

    // r(a(b, c), d(e)), a stranger x, y, which its parent d doesn't list, and p and q, each under the other.
    Node r, a{0, &r}, b{0, &a}, c{0, &a}, d{0, &r}, e{0, &d}, x, y, p, q{0, &p};

private Q_SLOTS:
    void Lists_data()
    {
        QTest::addColumn<List>("found");
        QTest::addColumn<List>("expected");
        const auto sorted = SortAccordingToTheSceneTree;
        QTest::newRow("all of a branch") << CollectAllChildren(MakeListOfNodes(&a)) << List{&a, &b, &c};
        QTest::newRow("a child before its parent") << CollectAllChildren(MakeListOfNodes(&b, &a)) << List{&b, &a, &c};
        QTest::newRow("listed twice") << CollectAllChildren({&a, &a, &c, &r}) << List{&a, &b, &c, &r, &d, &e};
        q.children = {&q, &p, &c};
        QTest::newRow("each under the other") << CollectAllChildren({&q}) << List{&q, &p, &c};
        QTest::newRow("sorted, each once") << sorted({&e, &b, &a, &e, &a}, &r, false) << List{&a, &b, &e};
        QTest::newRow("sorted back to front") << sorted({&a, &e, &b}, &r, true) << List{&e, &b, &a};
        QTest::newRow("only what is under the root") << sorted({&d, &c, &x, &r, &a}, &a, false) << List{&a, &c};
        QTest::newRow("one alone stays, even a stranger") << sorted({&x}, &r, true) << List{&x};
        QTest::newRow("relatives") << List{GetNextSibling(&b), GetNextSibling(&c), GetFirstChild(&a), GetFirstChild(&b)}
                                   << List{&c, nullptr, &b, nullptr};
    }

    void Lists()
    {
        QFETCH(List, found);
        QTEST(found, "expected");
    }

    void Positions_data()
    {
        AnswerColumns();
        const QString invalid = QStringLiteral("Invalid parameter 'pNode' passed to method 'GetNodePos()':\n");
        Row("a second child", PositionOf(&c), "1");
        Row("no node", PositionOf(nullptr), invalid + "pNode is NULL");
        Row("a root", PositionOf(&r), invalid + "pNode has no parent (removed?)");
        Row("not listed", PositionOf((y.parent = &d, &y)), "illogical: GetNodePos: can't find node in its siblings");
    }

    void Positions() { CompareAnswer(); }

    void GlobalMatricesMultiplyUpwards()
    {
        Workloads::Random random(1);
        for (Node* const node : {&r, &a, &b})
            node->matrix = Workloads::RandomTransform(random);
        Matrix result;
        GetNodeGlobalMatrix(result, &b);
        QCOMPARE(Floats(result), Floats((b.matrix * a.matrix) * r.matrix));
        GetNodeGlobalMatrix(result, nullptr);
        QCOMPARE(Floats(result), Floats(Matrix()));
    }

    void ListsEqualTheirDefinition()
    {
        Workloads::Random random(2);
        for (int round = 0; round < 5000; ++round) {
            // Odd rounds: whatever hangs where, also twice, as long as nothing hangs under itself.
            const std::uint32_t size = round % 50 == 0 ? 1 + random.Below(800) : 9;
            std::deque<Node> nodes(size);
            for (std::uint32_t i = 1; i + 1 < size; ++i)
                for (std::uint32_t times = round % 2 ? random.Below(4) : 1; times > 0; --times)
                    nodes[random.Below(i)].children.push_back(&nodes[i]);
            List list;
            for (std::uint32_t count = random.Below(size + 3); count > 0; --count)
                list.push_back(&nodes[random.Below(size)]);
            const bool reverse = random.Below(2) == 0;
            QCOMPARE(CollectAllChildren(list), Naive::CollectAllChildren(list));
            QCOMPARE(SortAccordingToTheSceneTree(list, &nodes[0], reverse),
                     Naive::SortAccordingToTheSceneTree(list, &nodes[0], reverse));
        }
    }
};

QTEST_APPLESS_MAIN(HierarchyTest)
#include "hierarchy_test.moc"
