// Lists what a model is made of: the tree of its nodes, their triangles and
// what they wear; then each material with its colour and who wears it.
//
//     lumenta script parts-list.js MODEL

function repeated(text, times) {
    return new Array(times + 1).join(text);
}

function depthOf(node) {
    var depth = 0;
    for (node = node.parent; node !== scene.root; node = node.parent)
        ++depth;
    return depth;
}

function materialNames(node) {
    return node.meshes.map(function (mesh) { return mesh.material.name; });
}

var total = 0;
scene.nodes.forEach(function (node) {
    var triangles = node.meshes.reduce(function (sum, mesh) { return sum + mesh.triangleCount; }, 0);
    var line = repeated("  ", depthOf(node)) + node.name + " (" + node.type + ")";
    if (triangles > 0)
        line += ": " + triangles + " triangles, " + materialNames(node).join(" and ");
    print(line);
    total += triangles;
});

print();
scene.materials.forEach(function (material) {
    var wearers = scene.nodes.filter(function (node) { return materialNames(node).indexOf(material.name) >= 0; });
    print(material.name + " [" + material.get("diffuse") + "]: " + (wearers.join(", ") || "worn by nobody"));
});

print();
print(total + " triangles in " + scene.nodes.length + " nodes");
scene.animations.forEach(function (animation) {
    print("animation '" + animation.name + "': " + animation.length + " ms");
});
