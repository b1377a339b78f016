#include "lumenta/skin/Node.h"

#include "lumenta/skin/Geometry.h"

namespace SkinAnimation {

Node::Node(const QString& name_, const Matrix& originGlobal, const Matrix& geometryTransform_, Node* parent_)
    : name(name_)
    , originGlobalTransform(originGlobal)
    , globalTransform(originGlobal)
    , geometryTransform(geometryTransform_)
    , normalCount(0)
    , parent(parent_)
{
    Inverse(originGlobalInverse, originGlobal);
    bindTransform = geometryTransform * originGlobal;
    localTransform = originGlobal * (parent ? parent->originGlobalInverse : Matrix());
    meshTransform = geometryTransform * globalTransform;
}

Node::~Node()
{
    // The subtree is a list of nodes still to be freed, linked through their
    // `parent` fields, which nobody reads any more. So a chain of any length
    // needs neither stack nor memory.
    Node* condemned = nullptr;
    const auto release = [&condemned](Node& node) {
        for (Geometry* geometry : node.geometries)
            delete geometry;
        for (Node* child : node.children) {
            if (child) {
                child->parent = condemned;
                condemned = child;
            }
        }
        node.geometries.clear();
        node.children.clear();
    };

    release(*this);
    while (condemned) {
        Node* const node = condemned;
        condemned = node->parent;
        release(*node);
        delete node;
    }
}

void Node::SetOriginGlobalTransform(const Matrix& m)
{
    originGlobalTransform = m; // from here on only the copy is read: `m` may be one of our own matrices
    Inverse(originGlobalInverse, originGlobalTransform);
    bindTransform = geometryTransform * originGlobalTransform;
}

} // namespace SkinAnimation
