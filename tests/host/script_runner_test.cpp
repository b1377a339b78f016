// Scripts against a document that holds the built-in figure, where a decimal comma reigns.

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/platform/IScriptRunnerOutput.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/Picking.h"
#include "lumenta/script/OutputHandlerHolder.h"
#include "reference/host/services/Application.h"
#include "reference/host/services/Document.h"
#include "tests/foundation/DecimalComma.h"
#include "tests/foundation/Exact.h"

#include <QScriptValue>

#include <functional>

using namespace Host;

namespace {

/// Keeps what it hears in one list; some prints make it do something.
struct Console final : IScriptRunnerOutput {
    QStringList told;
    std::function<void(const QString&)> act = [](const QString&) {};

    void OnOutput(const QString& text) override
    {
        told += text.endsWith('\n') ? text.chopped(1) : text + " (without an end)";
        act(told.last());
    }
    void OnError(const QString& text, const QString& file, int line) override
    {
        told += QString("%1:%2: %3").arg(file).arg(line).arg(text);
    }
};

/// What a script prints, and its error, if any.
QString Told(Document& document, const QString& program)
{
    Console console;
    ScriptRunner& runner = *document.GetScriptRunner();
    console.act = [&](const QString& text) {
        if (text == "bury") QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (text == "stop") runner.Stop();
        if (text == "throw") throw FileException("console", "It is full");
        if (text == "throw more") throw 1;
        if (text == "again") runner.Run("print(typeof mine)\nprint(again)", "inner.js");
    };
    const OutputHandlerHolder holder(runner, console);
    const bool ran = runner.Run(program, "s.js");
    if (ran != !console.told.join('\n').contains("s.js:")) console.told += ran ? "ran" : "failed";
    return console.told.join(" | ");
}

} // namespace

class ScriptRunnerTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    const Application m_application{QStringList()};

private Q_SLOTS:
    void initTestCase() { QVERIFY(LetDecimalCommaReign(m_folder)); }

    void Programs_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("told");
        const auto row = [](const char* name, const char* program, const QString& told) {
            QTest::newRow(name) << program << told;
        };
        // What a script finds and does. Nodes 1 and 2 are "jumper" and "trousers".
        const QString n = "var n = scene.nodes[1];", removed = n + "scene.remove(n);", m = "var m = scene.materials[1];";
        const auto with = [&row](const QString& begin, const char* name, const QString& program, const QString& told) {
            row(name, qPrintable(begin + program), told);
        };
        row("printing", "print(); print(1, 'a', [1, 2], null, undefined, 0.5, true)", " | 1 a 1,2 null undefined 0.5 true");
        with(n, "the same object", "print(n === scene.find('jumper'), n === n.parent.children[0], n == scene.root)",
             "true true false");
        with(n, "an object's own keeps", "n.mine = 3; print(scene.find('jumper').mine, scene.nodes[2].mine)", "3 undefined");
        with(n, "a node", "n.name = 'x'; n.visible = false; print(n, n.type, n.visible, n.color, scene.find('jumper'))",
             "x mesh false undefined null");
        with(n, "placement", "n.parent = scene.root; n.matrix = [1,0,0,0, 0,1,0,0, 0,0,1,0, 1,2,0.5,1]; n.move([0,0,1]);"
             "print(n.position, n.matrix.slice(12))", "1,2,1.5 1,2,1.5,1");
        with("var g = scene.root.createGroup('g'), l = g.createLight('l');", "a tree",
             "l.radius = 0.5; l.move([2, 0, 0]); print(g.box.min, l.type); l.parent = scene.root;"
             "print(g.box, g.children.length, scene.root.children.length)", "1.5,-0.5,-0.5 light | null 0 3");
        with(n + m, "materials", "m.name = 'oak'; scene.find('figure').setMaterial(m); n.setMaterial(null, 0);"
             "print(n.meshes[0].material, scene.nodes[2].meshes[0].material === m, scene.material('oak') === m);"
             "scene.removeMaterial(m); print(scene.nodes[2].meshes[0].material)", "Default true true | Default");
        with(m, "parameters", "m.set('diffuse', [1, 0.5, 0]); m.set('opacity', 0.5); m.set('twoSided', true);"
             "print(m.get('diffuse'), m.parameters.opacity, m.get('twoSided'), m.get('x'));"
             "m.set('opacity', null); print(m.get('opacity'), m.xml.indexOf('\"1 0.5 0 1\"') > 0)",
             "1 0.5 0 1 0.5 true undefined | 1 true");
        row("surroundings", "scene.background = [1, 0, 0.5]; scene.ground = false; scene.sunDirection = [0, 0, 2];"
            "print(scene.background, scene.ground, scene.sunDirection); scene.background = 'studio';"
            "print(scene.background)", "1,0,0.5 false 0,0,1 | studio");
        with(n, "selection", "scene.selection = [scene.nodes[2], n]; scene.remove(scene.nodes[2]);"
             "print(scene.selection.length, scene.selection[0] === n)", "1 true");
        row("an animation by name", "scene.pose('wave', 100); print(scene.animation, scene.time); scene.rest();"
            "print(scene.animation)", "1 100 | null");
        row("a batch", "print(scene.batch(function () { return 7 }))", "7");
        row("runs know nothing of each other", "var mine; print('again'); print('outer')",
            "again | undefined | inner.js:2: ReferenceError: Can't find variable: again | outer");

        // What goes wrong.
        const QString at = "s.js:1: Error: ";
        row("the line of a nested call", "\nfunction f() {\n  scene.find(1) }\nf()",
            "s.js:3: Error: scene.find(name): invalid parameter '1', string expected");
        row("caught", "try { scene.root.createMesh('a', 'none.x') } catch (e) { print(e instanceof Error, e.message) }",
            "true no plug-in that reads models is in ''");
        row("what a saver says", "scene.save('x.none')", at + "Can't find scene saver for file 'x.none'");
        row("a missing argument", "scene.find()", at + "scene.find(name): invalid parameter 'undefined', string expected");
        row("text for a flag", "scene.ground = 'no'", at + "scene.ground: invalid parameter 'no', boolean expected");
        row("NaN", "scene.pose(0, NaN)", at + "scene.pose(time) should be in range [-3.40282e+38, 3.40282e+38]");
        row("above", "scene.camera.pitch = 90.5", at + "camera.pitch should be in range [-90, 90]");
        row("beside the view", "scene.pick(30, 0, 30, 40)", at + "scene.pick(x) should be in range [0, 29]");
        row("no such animation", "scene.pose(2, 0)", at + "scene.pose(animation) should be in range [0, 1]");
        row("no name of one", "scene.pose('x', 0)", at + "scene.pose(animation): there is no animation 'x'");
        row("within an array", "scene.root.move([0, 0, '1'])",
            at + "node.move(offset)[2]: invalid parameter '1', float expected");
        row("a short array", "scene.root.matrix = [1]", at + "node.matrix: invalid parameter '1', array of 16 numbers expected");
        with(m, "a senseless value", "m.set('opacity', 'x')", at + "material.set(value): 'x' makes no sense for 'opacity'");
        row("no light", "scene.root.radius = 1", at + "node.radius: '' is no light");
        row("no such mesh", "scene.nodes[1].setMaterial(null, 1)", at + "node.setMaterial(mesh) should be in range [0, 0]");
        row("under itself", "scene.nodes[0].parent = scene.nodes[1]", at + "Invalid parameter 'pParent' passed to method "
            "'IScene::MoveNodes':\nIt lies under one of the nodes");
        row("read-only", "scene.root.id = 7", at + "node.id can't be assigned to");
        row("no picture", "scene.render('x.jpg', 9, 9)", at + "'x.jpg': only pictures that end in .png can be written");
        row("no renderer", "scene.render('x.png', 9, 9)", at + "no plug-in that makes pictures is in ''");
        with(removed, "a removed node", "n.name", at + "node.name: the node 'jumper' was removed");
        with(removed, "as an argument", "(function f(x) { scene.remove(x) })(n)", // the engine shows it, too
             at + "scene.remove(node): the node 'jumper' was removed");
        with(removed, "after its end", "print('bury'); n.name",
             "bury | " + at + "cannot access member `name' of deleted QObject");
        with(removed, "after its end, as an argument", "print('bury'); (function f(x) { scene.remove(x) })(n)",
             "bury | " + at + "scene.remove(node): invalid parameter 'Error: cannot access member `toString' of deleted "
             "QObject', node expected");
        row("of something else", "scene.root.move.call(scene, [0, 0, 0])", at + "node.move: called on what is no node");
        row("a text that asks for itself", "var o = {toString: scene.root.__proto__.toString}; scene.find(o)",
            at + "scene.find(name): invalid parameter '[no node]', string expected");
        row("thrown text", "\nthrow 'x'", "s.js:2: x");
        row("syntax: nothing is run", "print(1)\nvar a = ;", "s.js:2: SyntaxError: Parse error");
        row("syntax, unended", "print(1)\nif (a", "s.js:2: SyntaxError: Expected `;', `)'");
        const QString endless = "s.js:1: RangeError: Maximum call stack size exceeded.";
        row("without end", "function f() { f() } f()", endless);
        row("without end, through a binding", "function f() { scene.batch(f) } f()", endless);
        row("without end, through texts", "var o = {toString: function () { return print(o) }}; print(o)", endless);
        row("stopped in a loop", "print(1)\nwhile (true)\n  try { print('stop') } catch (e) {}",
            "1 | stop | s.js:3: the script was stopped");
        row("stopped in a line", "print('stop'); print(2)", "stop | s.js:1: the script was stopped");
        row("a receiver that fails", "try { print('throw') } catch (e) { print(e.message) } print('throw more')",
            "throw | It is full\nFile: console | throw more | " + at + "print: a receiver has failed");
    }

    void Programs()
    {
        QFETCH(QString, program);
        Document document(m_application);
        document.Open(":figure");
        QTEST(Told(document, program), "told");
        QVERIFY(!document.GetScene()->IsUpdating());
    }

    /// Nodes, boxes, points: what the script prints is what C++ finds in a document of its own.
    void AgreesWithTheLibrary()
    {
        Document scripted(m_application), direct(m_application);
        scripted.Open(":figure");
        direct.Open(":figure");
        const QString found = Told(scripted, "scene.pose('wave', 700); scene.camera.lookFrom('left'); scene.camera.pitch = 20;"
            "scene.camera.frame(); print(scene.root.box.min, scene.camera.distance);"
            "for (var y = 0; y < 400; y += 7) { var hit = scene.pick(150, y, 300, 400);"
            "print(hit && (hit.node || 'ground') + ' ' + hit.mesh + ' ' + hit.point) }");
        Scene& scene = *direct.GetScene();
        scene.SetAnimation(1, 700.0f);
        scene.GetCamera()->LookFrom(eCameraViewLeft);
        scene.GetCamera()->SetAngles(scene.GetCamera()->GetHeading(), 20.0f);
        const TBBox<float> box = ComputeNodeBBox(scene.GetRoot());
        TBBox<float> visible;
        UpdateBBoxRecursive(visible, scene.GetRoot(), Matrix());
        scene.GetCamera()->FrameBox(visible);
        QStringList expected{Shown(box.min) + ' ' + Shown(scene.GetCamera()->GetDistance())};
        int nodes = 0;
        for (int y = 0; y < 400; y += 7) {
            INode* node = nullptr;
            const IMesh* mesh = nullptr;
            TVec3<float> point{};
            FindNodeByScreenPoint({150, y}, {300, 400}, scene, node, mesh);
            const bool hit = FindIntersectionByScreenPoint({150, y}, {300, 400}, scene, point);
            expected += !hit ? "null" : (node ? node->GetName() + " 0 " : QString("ground null ")) + Shown(point);
            nodes += node != nullptr;
        }
        QCOMPARE(found, expected.join(" | "));
        QVERIFY2(nodes > 10 && expected.contains("null"), "the view shows too little");
    }

    void ReceiversComeAndGo()
    {
        Document document(m_application);
        ScriptRunner& runner = *document.GetScriptRunner();
        Console first, second, third;
        for (Console* console : {&first, &second, &first, &third}) runner.AddOutput(*console);
        first.act = [&](const QString&) {
            runner.RemoveOutput(second);
            runner.RemoveOutput(first);
            runner.RemoveOutput(first);
        };
        QVERIFY(!runner.Run("print(1); print(2); x", "s.js"));
        const QString error = "s.js:1: ReferenceError: Can't find variable: x";
        QCOMPARE(first.told, QStringList("1"));
        QCOMPARE(second.told, QStringList());
        QCOMPARE(third.told, QStringList({"1", "2", error}));
    }

private:
    /// As JavaScript shows numbers: the shortest text that reads back as the same double.
    static QString Shown(float number)
    {
        return QScriptValue(static_cast<double>(number)).toString();
    }
    static QString Shown(const TVec3<float>& v) { return Shown(v.x) + ',' + Shown(v.y) + ',' + Shown(v.z); }
};

QTEST_MAIN(ScriptRunnerTest)
#include "script_runner_test.moc"
