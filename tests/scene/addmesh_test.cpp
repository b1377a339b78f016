#include "benchmarks/SceneStandIns.h"
#include "lumenta/scene/AddMesh.h"
#include "tests/foundation/Exact.h"

namespace {

/// What the two entry points make of a text, in a scene that counted 41 meshes.
QString Added(const char* text)
{
    StandIn::Scene any, lights;
    any.setProperty("object-creator-next-index", 41);
    addMeshToRoot(&any, text);
    const bool took = tryAddMeshToRoot(&lights, text);
    return any.root.created.join(';') + (took ? "; a light: " : "; no light: ") + lights.root.created.join(';');
}

} // namespace

class AddMeshTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Texts_data()
    {
        AnswerColumns();
        Row("a group has its fixed name", Added("node.group,anything"), "group Group; no light: ");
        Row("a light, too", Added("node.light,Lamp"), "light Light; a light: light Light");
        Row("a word with a space is a source", Added(" node.group, Box "), "mesh [Box_42] of [node.group]; no light: ");
        Row("a name that looks like a placeholder", Added("a b,%2%1"), "mesh [%2%1_42] of [a b]; no light: ");
        Row("one field", Added("abc"), "; no light: ");
        Row("three fields, one empty", Added("node.light,,c"), "; a light: ");
    }

    void Texts() { CompareAnswer(); }

    void MeshesAreCountedWhenTheyAreMade()
    {
        StandIn::Scene scene;
        addMeshToRoot(&scene, "m.obj,Box");
        scene.root.refusal = "unreadable";
        QVERIFY_EXCEPTION_THROWN(addMeshToRoot(&scene, "m.obj,Box"), QString);
        scene.root.refusal.clear();
        addMeshToRoot(&scene, "n.obj,Table");
        QCOMPARE(scene.root.created, QStringList({"mesh [Box_1] of [m.obj]", "mesh [Table_2] of [n.obj]"}));
        QCOMPARE(scene.property("object-creator-next-index"), QVariant(2));
        scene.setProperty("object-creator-next-index", std::numeric_limits<int>::max());
        addMeshToRoot(&scene, "o.obj,Last"); // no overflow
    }
};

QTEST_APPLESS_MAIN(AddMeshTest)
#include "addmesh_test.moc"
