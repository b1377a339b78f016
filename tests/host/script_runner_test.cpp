// Scripts against a document that holds the built-in figure, where a decimal comma reigns.

#include "lumenta/foundation/Exceptions.h"
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

#include <cstring>
#include <functional>

using namespace Host;

namespace {

const Application kApplication{QStringList()}; // clazy:exclude=non-pod-global-static (for all tests)

struct Console final : IScriptRunnerOutput {
    QStringList told;
    std::function<void(const QString&)> act = [](const QString&) {}; // on what is printed

    void OnOutput(const QString& text) override { act((told += text.chopped(1)).last()); }
    void OnError(const QString& text, const QString& file, int line) override
    {
        told += QString("%1:%2: %3").arg(file).arg(line).arg(text);
    }
};

/// What a script prints, and its error, if any.
QString Told(const QString& program)
{
    Document document(kApplication);
    document.Open(":figure");
    ScriptRunner& runner = *document.GetScriptRunner();
    Console console;
    console.act = [&runner](const QString& text) {
        if (text == "bury") QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (text == "stop") runner.Stop();
        if (text == "throw") throw FileException("console", "It is full");
        if (text == "throw more") throw 1;
        if (text == "again") runner.Run("print(typeof mine)\nprint(again)", "inner.js");
    };
    const OutputHandlerHolder holder(runner, console);
    const bool ran = runner.Run(program, "s.js");
    if (ran == console.told.join(' ').contains("s.js:")) console.told += ran ? "ran" : "failed";
    return console.told.join(" | ") + (document.GetScene()->IsUpdating() ? " in an open batch" : "");
}

/// As scripts show them.
QString Shown(float number) { return QScriptValue(static_cast<double>(number)).toString(); }
QString Shown(const TVec3<float>& v) { return Shown(v.x) + ',' + Shown(v.y) + ',' + Shown(v.z); }

} // namespace

class ScriptRunnerTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

private Q_SLOTS:
    void initTestCase() { QVERIFY(LetDecimalCommaReign(m_folder)); }

    void Programs_data()
    {
        AnswerColumns();
        const auto row = [](auto name, const QString& program, auto told) { Row(name, Told(program), told); };
        const QString n = "var n = scene.nodes[1];", removed = n + "scene.remove(n);";
        const QString m = "var m = scene.materials[1];";
        row("printing", "print(); print(1, 'a', [1, 2], null, 0.5, true)", " | 1 a 1,2 null 0.5 true");
        row("the same object", n + "print(n === scene.find('jumper'), n === n.parent.children[0])", "true true");
        row("placement", n + "n.parent = scene.root; n.matrix = [1,0,0,0, 0,1,0,0, 0,0,1,0, 1,2,0.5,1];"
            "n.move([0,0,1]); print(n.position, n.matrix.slice(12), n.type)", "1,2,1.5 1,2,1.5,1 mesh");
        row("lights", "var g = scene.root.createGroup('g'), l = g.createLight('l'); l.radius = 0.5; print(g.box.min);"
            "l.parent = scene.root; print(g.box, g.radius, l.type)", "-0.5,-0.5,-0.5 | null undefined light");
        row("materials", n + m + "scene.root.setMaterial(m); n.setMaterial(null, 0); print(n.meshes[0].material);"
            "var o = scene.nodes[2]; print(o.meshes[0].material === m); scene.removeMaterial(m);"
            "print(o.meshes[0].material)", "Default | true | Default");
        row("parameters", m + "m.set('diffuse', [1, 0.5, 0]); m.set('opacity', 0.5); print(m.get('diffuse'),"
            "m.get('opacity'), m.get('x')); m.set('opacity', null); print(m.get('opacity'),"
            "m.xml.indexOf('\"1 0.5 0 1\"') > 0)", "1 0.5 0 1 0.5 undefined | 1 true");
        row("a batch", "print(scene.batch(function () { return 7 }))", "7");
        row("runs know nothing of each other", "var mine; print('again'); print('outer')",
            "again | undefined | inner.js:2: ReferenceError: Can't find variable: again | outer");

        const QString at = "s.js:1: Error: ";
        row("the line of a nested call", "\nfunction f() {\n  scene.find(1) }\nf()",
            "s.js:3: Error: scene.find(name): invalid parameter '1', string expected");
        row("caught", "try { scene.save('a') } catch (e) { print(e) }", "Error: Can't find scene saver for file 'a'");
        row("NaN", "scene.pose(0, NaN)", at + "scene.pose(time) should be in range [-3.40282e+38, 3.40282e+38]");
        row("beside the view", "scene.pick(30, 0, 30, 40)", at + "scene.pick(x) should be in range [0, 29]");
        row("array", "scene.root.move([0, '1', 0])", at + "node.move(offset)[1]: invalid parameter '1', float expected");
        row("read-only", "scene.root.id = 7", at + "node.id can't be assigned to");
        row("a removed node", removed + "n.name", at + "node.name: the node 'jumper' was removed");
        row("after its end", removed + "print('bury'); (function (shown) { shown.name })(n)",
            "bury | " + at + "cannot access member `name' of deleted QObject");
        row("an array that ends what it holds", n + "var list = [n]; list.length = 2; list.__defineGetter__(1, function () {"
            "scene.remove(n); print('bury'); return scene.root }); scene.selection = list",
            "bury | " + at + "scene.selection[0]: invalid parameter 'Error: cannot access member `toString' of deleted "
            "QObject', node expected");
        row("a colour that ends its material", m + "var v = [1, 1]; v.length = 3; v.__defineGetter__(2, function () {"
            "scene.removeMaterial(m); print('bury'); return 1 }); m.set('diffuse', v)",
            "bury | " + at + "material.set: called on what is no material");
        row("of something else", "scene.root.move.call(scene, [0, 0, 0])", at + "node.move: called on what is no node");
        row("a text that asks for itself", "var o = {toString: scene.root.__proto__.toString}; scene.find(o)",
            at + "scene.find(name): invalid parameter '[no node]', string expected");
        row("syntax: nothing is run", "print(1)\nvar a = ;", "s.js:2: SyntaxError: Parse error");
        const QString endless = "s.js:1: RangeError: Maximum call stack size exceeded.";
        row("without end", "function f() { f() } f()", endless);
        row("without end, through a binding", "function f() { scene.batch(f) } f()", endless);
        row("stopped", "\nwhile (true) try { print('stop') } catch (e) {}", "stop | s.js:2: the script was stopped");
        row("a receiver that fails", "try { print('throw') } catch (e) { print(e.message) } print('throw more')",
            "throw | It is full\nFile: console | throw more | " + at + "print: a receiver has failed");
    }

    void Programs() { CompareAnswer(); }

    void NumbersThatLookLikePointers()
    {
        Document document(kApplication);
        const quint32 bits = 0xffffffff; // the engine's own NaN has others
        Matrix matrix;
        std::memcpy(matrix.m, &bits, sizeof bits);
        document.GetScene()->GetRoot()->CreateGroup("n")->SetMatrix(matrix);
        Console console;
        const OutputHandlerHolder holder(*document.GetScriptRunner(), console);
        document.GetScriptRunner()->Run("print(scene.find('n').matrix.slice(0, 2))", "s.js");
        QCOMPARE(console.told, QStringList("NaN,0"));
    }

    void AgreesWithTheLibrary()
    {
        const QString found = Told("scene.pose('wave', 700); scene.camera.lookFrom('left');"
            "scene.camera.frame(scene.root); print(scene.root.box.max, scene.camera.distance);"
            "for (var y = 0; y < 400; y += 7) { var hit = scene.pick(150, y, 300, 400);"
            "print(hit && (hit.node || 'ground') + ' ' + hit.mesh + ' ' + hit.point) }");
        Document document(kApplication);
        document.Open(":figure");
        Scene& scene = *document.GetScene();
        scene.SetAnimation(1, 700.0f);
        scene.GetCamera()->LookFrom(eCameraViewLeft);
        scene.GetCamera()->FrameBox(ComputeNodeBBox(scene.GetRoot()));
        QString expected = Shown(ComputeNodeBBox(scene.GetRoot()).max) + ' ' + Shown(scene.GetCamera()->GetDistance());
        for (int y = 0; y < 400; y += 7) {
            INode* node = nullptr;
            const IMesh* mesh = nullptr;
            TVec3<float> point{};
            FindNodeByScreenPoint({150, y}, {300, 400}, scene, node, mesh);
            const bool hit = FindIntersectionByScreenPoint({150, y}, {300, 400}, scene, point);
            expected += !hit ? " | null" : " | " + (node ? node->GetName() + " 0 " : "ground null ") + Shown(point);
        }
        QCOMPARE(found, expected);
        QVERIFY(found.count("trousers 0") > 3 && found.contains("ground") && found.contains("null |"));
    }

    void ReceiversComeAndGo()
    {
        Document document(kApplication);
        ScriptRunner& runner = *document.GetScriptRunner();
        Console first, second, third;
        for (Console* console : {&first, &second, &first, &third}) runner.AddOutput(*console);
        first.act = [&](auto&) { for (Console* each : {&second, &first, &first}) runner.RemoveOutput(*each); };
        QVERIFY(!runner.Run("print(1); print(2); x", "s.js"));
        QCOMPARE(first.told + second.told, QStringList("1"));
        QCOMPARE(third.told, QStringList({"1", "2", "s.js:1: ReferenceError: Can't find variable: x"}));
    }
};

QTEST_MAIN(ScriptRunnerTest)
#include "script_runner_test.moc"
