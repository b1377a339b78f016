// Paints the largest part of a model red, poses the model in the middle of its
// first animation, draws it from four sides, and tells what the middle of each
// picture shows.
//
//     lumenta script four-views.js MODEL -- OUT.png [WIDTH]
//
// The pictures are OUT-front.png, OUT-left.png, OUT-back.png and OUT-right.png.

var out = args[0];
if (!/\.png$/.test(out))
    throw new Error("the name of a picture is missing, as in: -- out.png");
var width = args.length > 1 ? Number(args[1]) : 300;
var height = Math.round(width * 4 / 3);

function triangles(node) {
    return node.meshes.reduce(function (sum, mesh) { return sum + mesh.triangleCount; }, 0);
}

var largest = scene.nodes.reduce(function (a, b) { return triangles(b) > triangles(a) ? b : a; });
var red = scene.createMaterial("red");
red.set("diffuse", [0.6, 0.02, 0.02]);
red.set("specularLevel", 0.3);
largest.setMaterial(red);
print("red: " + largest.name);

if (scene.animations.length > 0)
    scene.pose(0, scene.animations[0].length / 2);

var camera = scene.camera;
camera.frameAspect = width / height;
["front", "left", "back", "right"].forEach(function (side) {
    camera.lookFrom(side);
    camera.pitch = 10;
    camera.frame();
    var file = out.replace(/\.png$/, "-" + side + ".png");
    scene.render(file, width, height).forEach(function (remark) { print(remark); });

    var hit = scene.pick(Math.floor(width / 2), Math.floor(height / 2), width, height);
    var point = hit && hit.point.map(function (number) { return number.toFixed(2); }).join(" ");
    print(file + ": " + (hit ? (hit.node || "the ground") + " at " + point : "nothing"));
});
